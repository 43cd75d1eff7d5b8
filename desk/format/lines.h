// The lines of a layout and what makes up their columns.
#pragma once

#include "format/pieces.h"

constexpr int LEAST_COMMENT_COLUMN = 36;  // of comments after declarations

struct LayoutLine {
    int indent = 0;
    QString text;              // of several lines where a comment within is
    QString comment = {};      // at its end
    int colon = NONE;          // of a declaration: the length of what stands before the ":"
    int commentColumn = NONE;  // where it begins if the line is shorter, else after two blanks
    LineKind kind = LineKind::Structure;
    bool isBlankBefore = false;
    bool isConstant = false;
    bool isContinuation = false;  // of the line before it
    bool isComment = false;       // it holds nothing else

    // The column after the text.
    int end() const {
        const int lastLine = text.lastIndexOf(u'\n') + 1;
        return (lastLine == 0 ? indent : 0) + text.size() - lastLine;
    }
};

using LayoutLines = std::vector<LayoutLine>;

// Brings the ":" of declarations and the comments at the ends of lines below each other.
void Align(LayoutLines& lines);

QString TextOf(const LayoutLines& lines);
