// JSON as it is written, without a tree of it in memory: facts about a large script are many.
#pragma once

#include <QString>
#include <QStringView>

#include <string>
#include <string_view>

// Writes to standard output, in one line for each element of the arrays at a depth: 1 is that of
// the elements of an outermost array. Whoever calls sees to it that objects and arrays are closed
// and that only values in objects have keys.
class JsonWriter {
public:
    explicit JsonWriter(int depthOfLines) : depthOfLines_(depthOfLines) {}
    JsonWriter(const JsonWriter&) = delete;
    JsonWriter& operator=(const JsonWriter&) = delete;
    ~JsonWriter();

    void beginObject();
    void endObject();
    void beginArray();
    void endArray();
    void key(std::string_view key);  // ASCII without quotes
    void value(QStringView text);
    void value(std::string_view utf8);
    void value(int number);
    void value(bool isTrue);
    void null();

    template <typename Value>
    void member(std::string_view name, const Value& of) {
        key(name);
        value(of);
    }

private:
    int depthOfLines_;
    std::string text_;
    int depth_ = 0;
    bool isFirst_ = true;  // of the innermost object or array
    bool isAfterKey_ = false;

    void beginValue();
    void open(char bracket);
    void close(char bracket);
    void string(std::string_view utf8);
};
