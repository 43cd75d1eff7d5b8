#include "tokens.h"

#include <algorithm>

namespace {

constexpr std::string_view BLANKS = " \t\n\r";
constexpr std::string_view DIGITS = "0123456789";
constexpr std::string_view HEX_DIGITS = "0123456789ABCDEFabcdef";
constexpr std::string_view PAIRED_SIGNS = "*+-/:<=>";

bool IsOneOf(char c, std::string_view characters) {
    return characters.find(c) != std::string_view::npos;
}

bool IsDigit(char c) {
    return IsOneOf(c, DIGITS);
}

// All bytes outside ASCII count as letters.
bool IsLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

// The place of the first character from `start` on that is none of these.
std::size_t SkipFrom(std::string_view text, std::size_t start, std::string_view characters) {
    return std::min(text.find_first_not_of(characters, start), text.size());
}

// The place behind the mark that is sought from `start` on, else the end.
std::size_t BehindMark(std::string_view text, std::size_t start, std::string_view mark) {
    const std::size_t place = text.find(mark, start);
    return place == std::string_view::npos ? text.size() : place + mark.size();
}

bool IsAt(std::string_view text, std::size_t place, std::string_view piece) {
    return text.substr(std::min(place, text.size()), piece.size()) == piece;
}

std::size_t StringSize(std::string_view text) {
    const std::size_t end = std::min(text.find_first_of("'\n", 1), text.size());
    return IsAt(text, end, "'") ? end + 1 : end;
}

std::size_t NameSize(std::string_view text) {
    const auto* const end = std::find_if(text.begin(), text.end(),
                                         [](char c) { return !IsLetter(c) && !IsDigit(c); });
    return static_cast<std::size_t>(end - text.begin());
}

std::size_t ExponentEnd(std::string_view text, std::size_t start) {
    if (!IsAt(text, start, "E") && !IsAt(text, start, "e")) {
        return start;
    }
    const bool hasSign = IsAt(text, start + 1, "+") || IsAt(text, start + 1, "-");
    return SkipFrom(text, start + (hasSign ? 2 : 1), DIGITS);
}

// The two dots of a range are no part of a number.
std::size_t NumberSize(std::string_view text) {
    const std::size_t digits = SkipFrom(text, 0, DIGITS);
    if (IsAt(text, digits, "#")) {
        return SkipFrom(text, digits + 1, HEX_DIGITS);
    }
    if (IsAt(text, digits, ".") && !IsAt(text, digits, "..")) {
        return ExponentEnd(text, SkipFrom(text, digits + 1, DIGITS));
    }
    return digits;
}

bool BeginsNumber(std::string_view text) {
    return IsDigit(text[0]) || (text[0] == '.' && text.size() > 1 && IsDigit(text[1]));
}

std::size_t SignSize(std::string_view text) {
    const bool isPair =
        text.size() > 1 && IsOneOf(text[0], PAIRED_SIGNS) && IsOneOf(text[1], PAIRED_SIGNS);
    return isPair || IsAt(text, 0, "..") ? 2 : 1;
}

struct Extent {
    TokenKind kind;
    std::size_t size;
};

// The first token of a text that is not empty.
Extent FirstToken(std::string_view text) {
    if (IsOneOf(text[0], BLANKS)) {
        return {TokenKind::BLANK, SkipFrom(text, 0, BLANKS)};
    }
    if (IsAt(text, 0, "//")) {
        return {TokenKind::COMMENT, BehindMark(text, 0, "\n")};
    }
    if (IsAt(text, 0, "(*")) {
        return {TokenKind::COMMENT, BehindMark(text, 2, "*)")};
    }
    if (text[0] == '\'') {
        return {TokenKind::STRING, StringSize(text)};
    }
    if (IsLetter(text[0])) {
        return {TokenKind::NAME, NameSize(text)};
    }
    if (BeginsNumber(text)) {
        return {TokenKind::NUMBER, NumberSize(text)};
    }
    return {TokenKind::SIGN, SignSize(text)};
}

SourceToken MakeToken(TokenKind kind, std::string_view text, const Words& words) {
    const bool mayBeWord = kind == TokenKind::NAME || kind == TokenKind::SIGN;
    const Word* const word = mayBeWord ? words.find(text) : nullptr;
    const bool isWord = kind == TokenKind::NAME && word != nullptr;
    return {isWord ? TokenKind::WORD : kind, std::string(text), word};
}

}  // namespace

Tokens Tokenize(std::string_view source, const Words& words) {
    Tokens tokens;
    while (!source.empty()) {
        const Extent first = FirstToken(source);
        tokens.push_back(MakeToken(first.kind, source.substr(0, first.size), words));
        source.remove_prefix(first.size);
    }
    return tokens;
}

std::string Join(const Tokens& tokens) {
    std::string text;
    for (const SourceToken& token : tokens) {
        text += token.text;
    }
    return text;
}

bool IsSolid(const SourceToken& token) {
    return token.kind != TokenKind::BLANK && token.kind != TokenKind::COMMENT;
}
