#include "facts/transfer.h"

#include <cstring>
#include <type_traits>

namespace {

// Both directions go through the same list of fields, so they cannot differ.
template <typename Archive, typename AnyFacts>
void Pass(Archive& archive, AnyFacts& facts) {
    archive.pass(facts.tokens);
    archive.pass(facts.comments);
    archive.pass(facts.units);
    archive.pass(facts.names);
    archive.pass(facts.uses);
    archive.pass(facts.declarations);
    archive.pass(facts.statements);
    archive.pass(facts.operations);
    archive.pass(facts.items);
    archive.pass(facts.messages);
    archive.pass(facts.error.expected);
    archive.pass(facts.error.token);
    archive.pass(facts.error.current);
    archive.pass(facts.error.next);
    archive.pass(facts.open);
    archive.pass(facts.texts);
    archive.pass(facts.codes);
}

class Writer {
public:
    explicit Writer(const std::function<void(std::string_view)>& take) : take_(take) {}

    template <typename Value>
    void pass(const Value& value) {
        static_assert(std::is_trivially_copyable_v<Value>);
        hand(&value, 1);
    }
    template <typename Element>
    void pass(const std::vector<Element>& elements) {
        passAll(elements.data(), static_cast<int>(elements.size()));
    }
    void pass(const QString& text) { passAll(text.constData(), text.size()); }
    void pass(const QByteArray& text) { passAll(text.constData(), text.size()); }

private:
    const std::function<void(std::string_view)>& take_;

    template <typename Element>
    void passAll(const Element* elements, int count) {
        static_assert(std::is_trivially_copyable_v<Element>);
        hand(&count, 1);
        hand(elements, count);
    }
    template <typename Element>
    void hand(const Element* elements, int count) {
        take_({reinterpret_cast<const char*>(elements),
               static_cast<std::size_t>(count) * sizeof(Element)});
    }
};

class Reader {
public:
    explicit Reader(const QByteArray& bytes)
        : next_(bytes.constData()), end_(next_ + bytes.size()) {}

    // Whether all values were there and nothing after them.
    bool isWhole() const { return isWhole_ && next_ == end_; }

    template <typename Value>
    void pass(Value& value) {
        take(&value, 1);
    }
    template <typename Element>
    void pass(std::vector<Element>& elements) {
        elements.resize(static_cast<std::size_t>(takeCount(sizeof(Element))));
        take(elements.data(), static_cast<int>(elements.size()));
    }
    void pass(QString& text) {
        text.resize(takeCount(sizeof(QChar)));
        take(text.data(), text.size());
    }
    void pass(QByteArray& text) {
        text.resize(takeCount(1));
        take(text.data(), text.size());
    }

private:
    const char* next_;
    const char* const end_;
    bool isWhole_ = true;

    // The number of elements that follow, 0 if there are not so many.
    int takeCount(std::size_t elementSize) {
        int count = 0;
        take(&count, 1);
        const auto there = static_cast<std::size_t>(end_ - next_) / elementSize;
        isWhole_ = isWhole_ && count >= 0 && static_cast<std::size_t>(count) <= there;
        return isWhole_ ? count : 0;
    }
    template <typename Element>
    void take(Element* elements, int count) {
        const auto size = static_cast<std::size_t>(count) * sizeof(Element);
        isWhole_ = isWhole_ && size <= static_cast<std::size_t>(end_ - next_);
        if (isWhole_ && size > 0) {
            std::memcpy(elements, next_, size);
            next_ += size;
        }
    }
};

}  // namespace

void PassBytes(const Facts& facts, const std::function<void(std::string_view)>& take) {
    Writer writer(take);
    Pass(writer, facts);
}

std::optional<Facts> FactsOf(const QByteArray& bytes) {
    Facts facts;
    Reader reader(bytes);
    Pass(reader, facts);
    return reader.isWhole() ? std::optional(std::move(facts)) : std::nullopt;
}
