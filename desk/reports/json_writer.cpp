#include "reports/json_writer.h"

#include "reports/output.h"

#include <array>
#include <charconv>

namespace {

constexpr std::size_t BLOCK_SIZE = std::size_t{64} * 1024;

// What may not stand in a string as it is.
bool IsEscaped(char c) {
    return static_cast<unsigned char>(c) < ' ' || c == '"' || c == '\\';
}

void AppendEscaped(std::string& text, char c) {
    constexpr std::string_view digits = "0123456789abcdef";
    constexpr unsigned bits = 4;
    constexpr unsigned mask = 15;
    if (c == '"' || c == '\\') {
        text.push_back('\\');
        text.push_back(c);
        return;
    }
    const auto code = static_cast<unsigned char>(c);
    text.append("\\u00");
    text.push_back(digits[code >> bits]);
    text.push_back(digits[code & mask]);
}

bool IsPair(QStringView text, qsizetype at) {
    return at + 1 < text.size() && text[at].isHighSurrogate() && text[at + 1].isLowSurrogate();
}

// A surrogate without its other half, which no UTF-8 has, becomes a replacement character.
QByteArray Utf8Of(QStringView text) {
    QString whole = text.toString();
    for (int at = 0; at < whole.size(); ++at) {
        if (IsPair(whole, at)) {
            ++at;
        } else if (whole.at(at).isSurrogate()) {
            whole[at] = QChar::ReplacementCharacter;
        }
    }
    return whole.toUtf8();
}

}  // namespace

JsonWriter::~JsonWriter() {
    text_.push_back('\n');
    Print(std::string_view(text_));
}

void JsonWriter::beginValue() {
    if (isAfterKey_) {
        isAfterKey_ = false;
        return;
    }
    if (!isFirst_) {
        text_.push_back(',');
    }
    isFirst_ = false;
    if (depth_ == depthOfLines_) {
        text_.push_back('\n');
    }
    if (text_.size() > BLOCK_SIZE) {
        Print(std::string_view(text_));
        text_.clear();
    }
}

void JsonWriter::open(char bracket) {
    beginValue();
    text_.push_back(bracket);
    ++depth_;
    isFirst_ = true;
}

void JsonWriter::close(char bracket) {
    text_.push_back(bracket);
    --depth_;
    isFirst_ = false;
}

void JsonWriter::beginObject() {
    open('{');
}

void JsonWriter::endObject() {
    close('}');
}

void JsonWriter::beginArray() {
    open('[');
}

void JsonWriter::endArray() {
    close(']');
}

void JsonWriter::key(std::string_view key) {
    if (!isFirst_) {
        text_.push_back(',');
    }
    isFirst_ = false;
    if (depth_ == 1) {
        text_.push_back('\n');
    }
    string(key);
    text_.push_back(':');
    isAfterKey_ = true;
}

void JsonWriter::string(std::string_view utf8) {
    text_.push_back('"');
    for (const char c : utf8) {
        if (IsEscaped(c)) {
            AppendEscaped(text_, c);
        } else {
            text_.push_back(c);
        }
    }
    text_.push_back('"');
}

void JsonWriter::value(std::string_view utf8) {
    beginValue();
    string(utf8);
}

void JsonWriter::value(QStringView text) {
    const QByteArray utf8 = Utf8Of(text);
    value(std::string_view(utf8.constData(), static_cast<std::size_t>(utf8.size())));
}

void JsonWriter::value(int number) {
    constexpr std::size_t longest = 12;
    std::array<char, longest> digits;
    char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    beginValue();
    text_.append(digits.data(), end);
}

void JsonWriter::value(bool isTrue) {
    beginValue();
    text_.append(isTrue ? "true" : "false");
}

void JsonWriter::null() {
    beginValue();
    text_.append("null");
}
