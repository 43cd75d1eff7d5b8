// One script as an editor sees it, also while it is broken: all that it is asked about the script
// is answered from here.
#pragma once

#include "check/file_check.h"

#include <chrono>

// How long an editor waits for what is proved by a compile.
constexpr std::chrono::seconds PATIENCE(5);

// Places are those of the script. While the script has errors, the facts are those of the text
// without the pieces that do not compile: what was put in for such a piece stands at its begin.
struct Model {
    Source source;
    Facts facts;  // tokens and comments are always those of the whole script
    std::vector<Diagnostic> diagnostics;
    bool isWhole = true;  // whether the facts are those of the script without any change
    std::vector<Span> changes = {};  // the pieces that are not what was compiled
};

// A model that is being made. Whoever owns it compiles, as for a FileCheck.
class ModelBuild {
public:
    ModelBuild(const Source& source, int maxErrors, FindMore findMore = {});

    // The text to be compiled next.
    const Source& next() const { return check_.next(); }
    // Takes what the compiler told of it. False when the model is complete.
    bool take(const Facts& facts);

    // After the end.
    Model model() const;

private:
    FileCheck check_;
    Source source_;
    Facts facts_;  // of the text compiled last, but the tokens and comments of the first
    Edits edits_;  // that led to that text
    bool hasTokens_ = false;

    void keep(const Facts& facts);
};

// Makes the model of a script and waits for it. Compiles that fail leave the facts empty.
Model ModelOf(const Source& source, int maxErrors, const FindMore& findMore = {});
