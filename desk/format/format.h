// Formats scripts and proves that nothing but their layout has changed.
#pragma once

#include "facts/facts.h"
#include "format/layout.h"
#include "format/line_edits.h"

#include <optional>

struct FormatOptions {
    int indent = DEFAULT_INDENT;
    // Whether a script with an error is formatted before the statement that has it.
    bool isBeforeError = false;
};

// A script in its layout, or why it has none.
struct FormatResult {
    std::optional<QString> text;
    QString reason;  // a sentence without its full stop, where there is no text
};

FormatResult FormatScript(const Source& source, const Facts& facts, const FormatOptions& options);

// All of a script but its layout.
struct ScriptContent {
    QString error;  // the text of the error, empty if it compiles
    QByteArray code;
    QString tokens;  // each with a NUL after it, which none can hold; a comment is an empty one,
                     // semicolons are left out
    QString comments;  // each with a NUL after it
    QString unread;    // what is not formatted
};

ScriptContent ContentOf(const Source& source, const Facts& facts);

// What is wrong with the text that came of a script, a sentence without its full stop: its code
// is another, tokens or comments are, or formatting changes it again. Empty if nothing is: the
// text is the script in its layout. The facts are what the compiler tells about the text.
QString FaultOfFormatted(const ScriptContent& before, const Source& after,
                         const Facts& factsAfter, const FormatOptions& options);
