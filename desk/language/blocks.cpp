#include "language/blocks.h"

#include "check/tokens.h"

#include <algorithm>

namespace {

struct OpenBlock {
    Token code;
    int begin;
    int branch;  // where its branch begins, NONE while it has none
    Token branchCode;
};

bool IsBegin(Token code) {
    return IsUnitBegin(code) || IsSectionBegin(code) || IsCompoundBegin(code);
}

bool IsEnd(Token code) {
    return IsUnitEnd(code) || IsCompoundEnd(code) || code == TOKEN_END_VAR;
}

bool DoesEnd(Token begin, Token end) {
    return IsSectionBegin(begin) ? end == TOKEN_END_VAR : EndOf(begin) == end;
}

bool HasBranches(Token code) {
    return code == TOKEN_IF || code == TOKEN_CASE;
}

class BlockReader {
public:
    explicit BlockReader(const Model& model) : tokens_(model.source, model.facts) {}

    std::vector<Block> read() {
        for (int index = 0; index < tokens_.count(); ++index) {
            take(index);
        }
        std::stable_sort(blocks_.begin(), blocks_.end(), [](const Block& a, const Block& b) {
            return a.span.begin != b.span.begin ? a.span.begin < b.span.begin
                                                : a.span.end > b.span.end;
        });
        return std::move(blocks_);
    }

private:
    Tokens tokens_;
    std::vector<OpenBlock> open_;
    std::vector<Block> blocks_;

    void take(int index) {
        const Token code = tokens_.code(index);
        if (IsBegin(code)) {
            open_.push_back({code, tokens_.span(index).begin, NONE, TOKEN_UNKNOWN});
        } else if (IsEnd(code)) {
            end(index);
        } else if (code == TOKEN_ELSE || code == TOKEN_ELSIF) {
            branch(index, code);
        } else if (code == TOKEN_COLON && isIn(TOKEN_CASE)) {
            takeColon(index);
        }
    }

    bool isIn(Token code) const { return !open_.empty() && open_.back().code == code; }

    // The labels of a CASE are numbers; other names with a colon are those of GOTO.
    void takeColon(int colon) {
        int first = colon;
        while (tokens_.isOneOf(
            first - 1, {TOKEN_NUMBER, TOKEN_MINUS, TOKEN_DOT_DOT, TOKEN_COMMA, TOKEN_DOT})) {
            --first;
        }
        if (first < colon) {
            branch(first, TOKEN_NUMBER);
        }
    }

    // Another branch of the innermost block begins.
    void branch(int index, Token code) {
        if (!open_.empty() && HasBranches(open_.back().code)) {
            endBranch(index);
            open_.back().branch = tokens_.span(index).begin;
            open_.back().branchCode = code;
        }
    }

    void endBranch(int index) {
        const OpenBlock& open = open_.back();
        if (open.branch != NONE) {
            blocks_.push_back({open.branchCode,
                               {open.branch, tokens_.span(index - 1).end},
                               tokens_.span(index).begin});
        }
    }

    // What is open within the block that ends has no end of its own.
    void end(int index) {
        const Token code = tokens_.code(index);
        const auto begin =
            std::find_if(open_.rbegin(), open_.rend(),
                         [code](const OpenBlock& open) { return DoesEnd(open.code, code); });
        if (begin == open_.rend()) {
            return;
        }
        open_.erase(begin.base(), open_.end());
        endBranch(index);
        const Span last = tokens_.span(index);
        blocks_.push_back({open_.back().code, {open_.back().begin, last.end}, last.begin});
        open_.pop_back();
    }
};

}  // namespace

std::vector<Block> BlocksOf(const Model& model) {
    return BlockReader(model).read();
}
