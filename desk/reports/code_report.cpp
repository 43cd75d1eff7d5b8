#include "reports/code_report.h"

#include "facts/compile.h"
#include "machine/forms.h"
#include "machine/item_match.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

int LengthOf(std::string_view utf8) {
    return TextOf(utf8).size();
}

// Characters of the text in place of the bytes of the file; a blank stands between two items.
std::vector<Span> SpansInText(const Items& items) {
    std::vector<Span> spans;
    int begin = 0;
    for (int number = 1; number <= items.count(); ++number) {
        const int end = begin + LengthOf(items.item(number));
        spans.push_back({begin, end});
        begin = end + 1;
    }
    return spans;
}

// Reads the lines of a listing from the first to the last.
class ListingReader {
public:
    explicit ListingReader(ItemPlaces& places) : places_(places) {}

    void read() {
        for (int line = 1; line <= places_.source.lineCount(); ++line) {
            const Span span = places_.source.lineAt(line);
            const bool isEndOfText = span.isEmpty() && line == places_.source.lineCount();
            if (!isEndOfText) {
                take(span);
            }
        }
    }

private:
    ItemPlaces& places_;
    QString remark_;

    void take(Span span) {
        static const QRegularExpression sourceLine(
            QStringLiteral("^;Line ([0-9]+): (\".*\")\r?$"));
        static const QRegularExpression number(QStringLiteral("^[0-9]{4,}\t"));
        const QString text = places_.source.text(span).toString();
        if (!text.startsWith(QLatin1Char(COMMENT_MARK))) {
            const int begin = span.begin + number.match(text).capturedLength();
            places_.spans.push_back({begin, span.end - (text.endsWith(u'\r') ? 1 : 0)});
            places_.remarks.push_back(remark_);
        } else if (const auto match = sourceLine.match(text); match.hasMatch()) {
            remark_ = QStringLiteral("line %1 of the script stands above: %2")
                          .arg(match.captured(1), match.captured(2));
        }
    }
};

ItemPlaces ReadListing(const QString& name, const QByteArray& bytes) {
    ItemPlaces places = {Source(name, QString::fromUtf8(bytes)), {}, {}};
    ListingReader(places).read();
    return places;
}

// The whole statement where the item is written for it as such, else the token of its part.
Span PlaceOf(const Facts& facts, const ItemFact& item) {
    if (item.statement != NONE) {
        const Span statement = facts.statements[static_cast<std::size_t>(item.statement)].span;
        if (statement.begin == item.place) {
            return statement;
        }
    }
    const Span token = TokenAt(facts, item.place);
    return token.isEmpty() ? Span{item.place, item.place} : token;
}

bool IsCodeOf(const Facts& facts, const Items& items) {
    if (!facts.isCompiled() || facts.items.size() != static_cast<std::size_t>(items.count())) {
        return false;
    }
    int number = 0;
    return std::all_of(facts.items.begin(), facts.items.end(), [&](const ItemFact& item) {
        return facts.codeOf(item.text) == items.item(++number);
    });
}

QString LineRemark(const Source& source, int line) {
    constexpr int shown = 60;
    const QString text = source.text(source.lineAt(line)).toString().trimmed();
    return QStringLiteral("line %1 of %2 stands for this place: \"%3\"")
        .arg(QString::number(line), source.name(),
             text.size() > shown ? text.left(shown) + QStringLiteral("...") : text);
}

// For each item what there is to be said about the one in its place.
template <typename RemarkOf>
std::vector<QString> RemarksOf(const std::vector<int>& matched, const RemarkOf& remarkOf) {
    std::vector<QString> remarks(matched.size());
    std::transform(matched.begin(), matched.end(), remarks.begin(), remarkOf);
    return remarks;
}

std::vector<QString> RemarksOfScript(const Source& script, const Facts& facts,
                                     const Items& items) {
    if (!facts.isCompiled()) {
        return {};
    }
    const auto factOf = [&facts](int index) {
        return facts.items[static_cast<std::size_t>(index)];
    };
    const ItemLists lists = {items.count(), static_cast<int>(facts.items.size()),
                             [&](int item, int other) {
                                 return items.item(item + 1) == facts.codeOf(factOf(other).text);
                             }};
    return RemarksOf(MatchItems(lists), [&](int index) {
        return LineRemark(script, script.placeOf(factOf(index).place).line);
    });
}

// "item 12 "MOV @x #A0" (after "TST #A0", before "RET"): "
QString NameWithNeighbours(const Items& items, int number) {
    constexpr int shown = 30;
    const auto quoted = [&items](const QString& side, int neighbour) {
        const QString text = TextOf(items.item(neighbour));
        return side + u'"' + text.left(shown) +
               (text.size() > shown ? QStringLiteral("...\"") : QStringLiteral("\""));
    };
    QStringList neighbours;
    if (number > 1) {
        neighbours.append(quoted(QStringLiteral("after "), number - 1));
    }
    if (number < items.count()) {
        neighbours.append(quoted(QStringLiteral("before "), number + 1));
    }
    const QString sides = neighbours.isEmpty() ? QString()
                                               : QStringLiteral(" (") +
                                                     neighbours.join(QStringLiteral(", ")) + u')';
    return NameOfItem(items, number) + sides + QStringLiteral(": ");
}

Diagnostic DiagnosticOf(const Finding& finding, const Items& items, const ItemPlaces& places) {
    Diagnostic diagnostic = {finding.level, finding.id, finding.message, {}, {}};
    if (finding.item > 0 && finding.item <= items.count()) {
        diagnostic.message = NameWithNeighbours(items, finding.item) + finding.message;
    }
    const auto index = static_cast<std::size_t>(finding.item) - 1;
    if (index < places.spans.size()) {
        diagnostic.span = places.spans[index];
    } else if (finding.item > items.count() && !places.spans.empty()) {
        diagnostic.span = places.spans.back();
    }
    if (index < places.remarks.size() && !places.remarks[index].isEmpty()) {
        diagnostic.helps.push_back({QStringLiteral("source-line"), places.remarks[index], {}});
    }
    return diagnostic;
}

}  // namespace

ItemPlaces PlacesInCode(const QString& name, const QByteArray& bytes, const Items& items) {
    if (bytes.contains('\n')) {
        return ReadListing(name, bytes);
    }
    return {Source(name, QString::fromUtf8(bytes)), SpansInText(items), {}};
}

std::optional<ItemPlaces> PlacesInListing(const QString& name, const QByteArray& bytes,
                                          const Items& items) {
    const ItemsResult listed = DivideIntoItems(bytes);
    bool isSame = !listed.fault && listed.items.count() == items.count();
    for (int number = 1; isSame && number <= items.count(); ++number) {
        isSame = listed.items.item(number) == items.item(number);
    }
    return isSame ? std::optional<ItemPlaces>(PlacesInCode(name, bytes, listed.items))
                  : std::nullopt;
}

std::vector<QString> RemarksOfListing(const QString& name, const QByteArray& bytes,
                                      const Items& items) {
    const ItemsResult listed = DivideIntoItems(bytes);
    if (listed.fault) {
        return {};
    }
    const ItemPlaces places = PlacesInCode(name, bytes, listed.items);
    const ItemLists lists = {items.count(), listed.items.count(), [&](int item, int other) {
                                 return items.item(item + 1) == listed.items.item(other + 1);
                             }};
    return RemarksOf(MatchItems(lists), [&places](int index) {
        const auto at = static_cast<std::size_t>(index);
        const bool isTold = at < places.remarks.size() && !places.remarks[at].isEmpty();
        const Place place = places.source.placeOf(places.spans[at].begin);
        return isTold ? places.remarks[at] : LineRemark(places.source, place.line);
    });
}

ScriptPlaces PlacesInScript(const Source& script, const Items& items) {
    const CompileResult result = CompileAndWait(script);
    if (!result.facts) {
        return {std::nullopt, {}, result.failure};
    }
    if (!IsCodeOf(*result.facts, items)) {
        return {std::nullopt, RemarksOfScript(script, *result.facts, items), QString()};
    }
    ItemPlaces places = {script, {}, {}};
    for (const ItemFact& item : result.facts->items) {
        places.spans.push_back(PlaceOf(*result.facts, item));
    }
    return {places, {}, QString()};
}

FileReport ReportOf(const Findings& findings, const Items& items, const ItemPlaces& places) {
    FileReport report = {places.source, {}};
    for (const Finding& finding : findings) {
        report.diagnostics.push_back(DiagnosticOf(finding, items, places));
    }
    std::stable_sort(
        report.diagnostics.begin(), report.diagnostics.end(),
        [](const Diagnostic& a, const Diagnostic& b) { return a.span.begin < b.span.begin; });
    return report;
}
