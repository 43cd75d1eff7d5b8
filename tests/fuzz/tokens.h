// A source as the mutations see it. No byte is lost: the texts of the tokens, joined, are the
// source again, whatever it holds.
#pragma once

#include "words.h"

#include <string>
#include <string_view>
#include <vector>

enum class TokenKind { BLANK, COMMENT, WORD, NAME, NUMBER, STRING, SIGN };

struct SourceToken {
    TokenKind kind;
    std::string text;
    const Word* word;  // of a WORD, and of a SIGN that the language has; else null
};

using Tokens = std::vector<SourceToken>;

Tokens Tokenize(std::string_view source, const Words& words);
std::string Join(const Tokens& tokens);

// Neither a blank nor a comment.
bool IsSolid(const SourceToken& token);
