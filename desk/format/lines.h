// The lines of a layout and what makes up their columns.
#pragma once

#include "format/pieces.h"

constexpr int LEAST_COMMENT_COLUMN = 36;  // of comments after declarations

struct LayoutLine {
    int indent = 0;
    Span text;                 // of several lines where a comment within is
    int end = 0;               // the column after the text
    QString comment = {};      // at its end
    int colon = NONE;          // of a declaration: the length of what stands before the ":"
    int gap = 0;               // the blanks to put there
    int commentColumn = NONE;  // where it begins if the line is shorter, else after two blanks
    LineKind kind = LineKind::Structure;
    bool isBlankBefore = false;
    bool isConstant = false;
    bool isContinuation = false;  // of the line before it
    bool isComment = false;       // it holds nothing else
    bool hasLineFeed = false;     // within the text

    // To the right.
    void move(int columns) {
        indent += columns;
        end += hasLineFeed ? 0 : columns;
    }
    void widenGap(int columns) {
        gap += columns;
        end += hasLineFeed ? 0 : columns;
    }
};

// Lines and the text that theirs are pieces of.
struct Layout {
    std::vector<LayoutLine> lines;
    QString text;
};

// Brings the ":" of declarations and the comments at the ends of lines below each other.
void Align(std::vector<LayoutLine>& lines);

QString TextOf(const Layout& layout);
