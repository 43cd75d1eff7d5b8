// What is to be said about a script, whatever the form in which it is said.
#pragma once

#include "check/edits.h"
#include "facts/level.h"

#include <QString>

#include <optional>
#include <vector>

// An advice on how to mend what a diagnostic tells.
struct Help {
    QString id;    // of the rule that gives it
    QString text;  // what to do, no full stop at its end
    Span span;     // the place that it is about where that is another than the diagnostic's
    // What makes of the text that was compiled one that goes on compiling, where that is certain;
    // none otherwise. It may leave out what the author has to write in another way.
    std::vector<Edit> mend = {};
    // What does to that text, in a diagnostic to the script, just what the help says; none if
    // somebody has to choose. It is certain where there is a mend.
    std::vector<Edit> offer = {};
    // Whether it is true whatever the names around it mean.
    bool isAboutText = false;
};

// A message about a piece of a script.
struct Diagnostic {
    Level level = Level::Error;
    QString id;       // the constant of the catalogue in lower case with hyphens
    QString message;  // as the compiler words it
    Span span;        // empty where there is no token, as at the end of the script
    std::vector<Help> helps;
    // Where the message stands, if that is not where the span begins: the compiler's place before
    // the first line or column, where no character is.
    std::optional<Place> ownPlace = std::nullopt;

    Place placeIn(const Source& source) const {
        return ownPlace ? *ownPlace : source.placeOf(span.begin);
    }
};

// A script and all that is to be said about it, in the order of the script.
struct FileReport {
    Source source;
    std::vector<Diagnostic> diagnostics;
};
