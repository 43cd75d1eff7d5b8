#include "machine/items.h"

#include "machine/forms.h"

#include <cctype>

// A code file is read like the grammar that it follows:
//
//     code        = { definition } program
//     definition  = label { declaration } "BODY:" { instruction | label }
//     program     = "PROG:" name "VAR:" { declaration } "MAIN:" { instruction | label }
//
// Words are what blanks divide; a string is part of a word. A label in the code and the entry of
// a definition look the same, and two words more tell them apart.

namespace {

constexpr char BLANK = ' ';
constexpr char LINE_FEED = '\n';

Span SpanOfWord(const QByteArray& text, int begin) {
    const std::string_view view = TextAt(text, {0, text.size()});
    return {begin, static_cast<int>(EndOfWord(view, static_cast<std::size_t>(begin)))};
}

std::vector<Span> SpansOfWords(const QByteArray& text) {
    std::vector<Span> words;
    for (int begin = 0; begin < text.size(); begin = words.back().end + 1) {
        words.push_back(SpanOfWord(text, begin));
    }
    return words;
}

// Takes the words of a code file item by item.
class Divider {
public:
    explicit Divider(const QByteArray& text) : text_(text), words_(SpansOfWords(text)) {}

    std::optional<CodeFault> divide() {
        while (!fault_ && next_ < words_.size()) {
            isAtProgram() ? takeProgram() : takeDefinition();
        }
        return fault_;
    }
    std::vector<Span> spans() { return std::move(spans_); }

private:
    const QByteArray& text_;
    std::vector<Span> words_;
    std::size_t next_ = 0;
    std::vector<Span> spans_;
    std::optional<CodeFault> fault_;

    // A word from the next one on; past the end there are empty ones.
    std::string_view word(std::size_t ahead = 0) const {
        const std::size_t index = next_ + ahead;
        return index < words_.size() ? TextAt(text_, words_[index]) : std::string_view();
    }
    bool isThere() const { return !fault_ && next_ < words_.size(); }

    void fail(const QString& message) {
        fault_ = CodeFault{static_cast<int>(spans_.size()) + 1, message};
    }

    void take(std::size_t count) {
        if (next_ + count > words_.size()) {
            fail(QStringLiteral("the code ends inside the item"));
            return;
        }
        spans_.push_back({words_[next_].begin, words_[next_ + count - 1].end});
        next_ += count;
    }

    bool isAtProgram() const { return word() == PROGRAM_ENTRY && word(2) == DECLARATIONS_ENTRY; }
    bool isAtDefinition() const {
        const bool isEmptyItem = word(1).empty() && next_ + 1 < words_.size();
        const bool isDeclaration = FieldsOf(word(2)) > 0 && TypeOf(word(3)) != TYP_NONE;
        return IsLabelText(word()) && (word(1) == BODY_ENTRY || isEmptyItem || isDeclaration);
    }

    void takeProgram() {
        take(1);
        take(1);
        take(1);
        takeDeclarations(MAIN_ENTRY);
        takeCode();
    }

    void takeDefinition() {
        if (!IsLabelText(word())) {
            fail(QStringLiteral(
                "a function, a function block or the program begins with a label"));
            return;
        }
        take(1);
        takeDeclarations(BODY_ENTRY);
        takeCode();
    }

    void takeDeclarations(std::string_view end) {
        while (isThere() && word() != end) {
            const std::size_t fields = word().empty() ? 1 : FieldsOf(word(1));
            if (fields == 0) {
                fail(QStringLiteral("a declaration or \"%1\" is due here").arg(TextOf(end)));
                return;
            }
            take(fields);
        }
        if (!isThere() && !fault_) {
            fail(QStringLiteral("the code ends before \"%1\"").arg(TextOf(end)));
        }
        if (!fault_) {
            take(1);
        }
    }

    // Until the code ends, or another unit follows a return.
    void takeCode() {
        bool isAfterReturn = false;
        while (isThere() && !(isAfterReturn && (isAtProgram() || isAtDefinition()))) {
            isAfterReturn = word() == RETURN;
            const std::size_t words = IsLabelText(word()) ? 1 : WordsOfInstruction(word());
            if (words == 0) {
                fail(QStringLiteral("no instruction begins with \"%1\"").arg(ShownText(word())));
                return;
            }
            take(words);
        }
    }
};

// The words of the item at the place where the division stopped: what a message may show of it.
void AddRest(Items& items) {
    const int begin = items.spans.empty() ? 0 : items.spans.back().end + 1;
    if (begin < items.text.size()) {
        items.spans.push_back(SpanOfWord(items.text, begin));
    }
}

ItemsResult DivideCodeFile(const QByteArray& text) {
    ItemsResult result = {{text, {}}, std::nullopt};
    if (!text.endsWith(BLANK)) {
        result.fault = {0, QStringLiteral("the code does not end with a blank: it is not whole")};
        return result;
    }
    Divider divider(result.items.text);
    result.fault = divider.divide();
    result.items.spans = divider.spans();
    if (result.fault) {
        AddRest(result.items);
    }
    return result;
}

// A listing may number its items: "0012", a tab, the item.
int BeginOfItem(const QByteArray& text, Span line) {
    int digits = line.begin;
    while (digits < line.end && std::isdigit(static_cast<unsigned char>(text[digits])) != 0) {
        ++digits;
    }
    constexpr int leastDigits = 4;
    const bool isNumber = digits - line.begin >= leastDigits;
    return isNumber && digits < line.end && text[digits] == '\t' ? digits + 1 : line.begin;
}

Span ItemOfLine(const QByteArray& text, Span line) {
    const bool hasReturn = !line.isEmpty() && text[line.end - 1] == '\r';
    return {BeginOfItem(text, line), line.end - (hasReturn ? 1 : 0)};
}

// Lines with source text and messages begin with ";".
std::vector<Span> ItemsOfListing(const QByteArray& text) {
    std::vector<Span> spans;
    for (int begin = 0; begin < text.size();) {
        const int found = text.indexOf(LINE_FEED, begin);
        const int end = found < 0 ? text.size() : found;
        if (begin == end || text[begin] != COMMENT_MARK) {
            spans.push_back(ItemOfLine(text, {begin, end}));
        }
        begin = end + 1;
    }
    return spans;
}

// The items of a listing, each followed by a blank, are the code file.
QByteArray CodeFileOf(const QByteArray& listing, const std::vector<Span>& spans) {
    QByteArray code;
    for (const Span span : spans) {
        code.append(listing.constData() + span.begin, span.length()).append(BLANK);
    }
    return code;
}

ItemsResult DivideListing(const QByteArray& text) {
    const std::vector<Span> lines = ItemsOfListing(text);
    ItemsResult result = DivideCodeFile(CodeFileOf(text, lines));
    int begin = 0;
    for (std::size_t index = 0; !result.fault && index < lines.size(); ++index) {
        const int end = begin + lines[index].length();
        const Span item = index < result.items.spans.size() ? result.items.spans[index] : Span();
        if (item.begin != begin || item.end != end) {
            result.fault = {static_cast<int>(index) + 1,
                            QStringLiteral("this line of the listing is not one item")};
        }
        begin = end + 1;
    }
    return result;
}

}  // namespace

std::string_view Items::item(int number) const {
    return TextAt(text, spans[static_cast<std::size_t>(number) - 1]);
}

ItemsResult DivideIntoItems(const QByteArray& text) {
    return text.contains(LINE_FEED) ? DivideListing(text) : DivideCodeFile(text);
}

QString Shown(const QString& text) {
    constexpr int shownLength = 80;
    return text.size() > shownLength ? text.left(shownLength) + QStringLiteral("...") : text;
}

QString NameOfItem(const Items& items, int number) {
    return QStringLiteral("item %1 \"%2\"").arg(number).arg(ShownText(items.item(number)));
}
