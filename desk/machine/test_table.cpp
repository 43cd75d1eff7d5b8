#include "machine/test_table.h"

#include "explain/distance.h"

#include <QRegularExpression>

#include <algorithm>
#include <limits>

namespace {

const QString CYCLES = QStringLiteral("cycles");
const QString FORCE = QStringLiteral("force ");

QString Quoted(const QString& text) {
    return u'"' + text + u'"';
}

// Empty if none of them is like the word.
QString Proposal(const QString& word, const QStringList& known) {
    const QString nearest = NearestWord(word, known);
    return nearest.isEmpty() ? QString() : QStringLiteral("; near it: ") + nearest;
}

bool IsWord(const QString& text, const QString& word) {
    return text.compare(word, Qt::CaseInsensitive) == 0;
}

// Takes the lines of a table one after the other; the first fault ends it.
class TestReader {
public:
    explicit TestReader(Csv csv) : csv_(std::move(csv)) { text_.separator = csv_.separator; }

    TestText read() {
        for (CsvRow& row : csv_.rows) {
            take(row);
        }
        if (csv_.fault) {
            fail(csv_.fault->place, csv_.fault->message);
        }
        if (text_.cases.empty()) {
            fail({1, 1}, QStringLiteral("the table has no line \"case, NAME\""));
        }
        expectRows();
        return std::move(text_);
    }

private:
    using TakeLine = void (TestReader::*)(const CsvRow& row);
    struct Line {
        QString word;
        const char* form;
        std::size_t cells;
        TakeLine take;
    };

    Csv csv_;
    TestText text_;

    static const std::vector<Line>& lines();

    void fail(Place place, const QString& message) {
        if (!text_.fault) {
            text_.fault = CsvFault{place, message};
        }
    }

    void take(CsvRow& row) {
        while (!row.cells.empty() && row.cells.back().text.isEmpty()) {
            row.cells.pop_back();  // a spreadsheet gives all rows the same number
        }
        if (text_.fault || row.cells.empty() || hasFormula(row)) {
            return;
        }
        const QString& first = row.cells.front().text;
        if (IsWord(first, CYCLES)) {
            takeColumns(row);
        } else if (!first.isEmpty() && (first[0].isDigit() || first[0] == u'<')) {
            takeRow(row);
        } else {
            takeLine(row);
        }
    }

    bool hasFormula(const CsvRow& row) {
        const auto formula =
            std::find_if(row.cells.begin(), row.cells.end(),
                         [](const CsvCell& cell) { return cell.text.startsWith(u'='); });
        if (formula == row.cells.end()) {
            return false;
        }
        fail(formula->place,
             QStringLiteral("a cell that begins with = is a formula for a spreadsheet; "
                            "write the value alone"));
        return true;
    }

    // -----------------------------------------------------------------------------------------
    // Lines that begin with a word
    // -----------------------------------------------------------------------------------------

    void takeLine(const CsvRow& row) {
        const CsvCell& word = row.cells.front();
        const auto line = std::find_if(lines().begin(), lines().end(), [&word](const Line& each) {
            return IsWord(word.text, each.word);
        });
        if (line == lines().end()) {
            failUnknown(word);
            return;
        }
        if (row.cells.size() != line->cells || hasEmpty(row)) {
            fail(word.place, QStringLiteral("the line has the form \"%1\"").arg(line->form));
            return;
        }
        if (!text_.cases.empty() && line->word != QLatin1String("case")) {
            fail(word.place,
                 QStringLiteral("a line %1 stands above the first case").arg(Quoted(line->word)));
            return;
        }
        (this->*line->take)(row);
    }

    static bool hasEmpty(const CsvRow& row) {
        return std::any_of(row.cells.begin(), row.cells.end(),
                           [](const CsvCell& cell) { return cell.text.isEmpty(); });
    }

    void failUnknown(const CsvCell& word) {
        QStringList known = {CYCLES};
        for (const Line& line : lines()) {
            known.append(line.word);
        }
        const QString expected =
            text_.cases.empty()
                ? QStringLiteral("%1 or %2")
                      .arg(known.mid(1).join(QStringLiteral(", ")), known.front())
                : QStringLiteral("\"case\", \"cycles\", or a number of cycles such as 5 or <=5");
        fail(word.place, QStringLiteral("a line begins with %1, not with %2%3")
                             .arg(expected, Quoted(word.text), Proposal(word.text, known)));
    }

    void takeScript(const CsvRow& row) {
        if (!text_.preamble.script.isEmpty()) {
            fail(row.cells[0].place, QStringLiteral("the table has a line \"script\" already"));
        }
        text_.preamble.script = row.cells[1].text;
        text_.preamble.scriptPlace = row.cells[1].place;
    }

    void takeTick(const CsvRow& row) {
        bool isNumber = false;
        text_.preamble.tickStep = row.cells[1].text.toUInt(&isNumber);
        if (!isNumber) {
            fail(
                row.cells[1].place,
                QStringLiteral("a whole number of ticks from 0 to 4294967295 is expected, not %1")
                    .arg(Quoted(row.cells[1].text)));
        }
    }

    void takeEngine(const CsvRow& row) {
        const CsvCell& cell = row.cells[1];
        if (!cell.text.contains(u'=')) {
            text_.preamble.engineFile = cell.text;
            text_.preamble.enginePlace = cell.place;
            return;
        }
        Profile profile;
        const QString fault = SetChoice(profile, cell.text.section(u'=', 0, 0).trimmed(),
                                        cell.text.section(u'=', 1).trimmed());
        if (!fault.isEmpty()) {
            fail(cell.place, fault);
        }
        text_.preamble.choices.append(cell.text);
    }

    void takeCheck(const CsvRow& row) {
        const QString fault = text_.preamble.checks.set(row.cells[1].text, row.cells[2].text);
        if (!fault.isEmpty()) {
            fail(row.cells[1].place, fault);
        }
    }

    void takeGlobal(const CsvRow& row) { takeObject(row, Section::EngineGlobal); }
    void takeRegister(const CsvRow& row) { takeObject(row, Section::EngineRegister); }

    void takeObject(const CsvRow& row, Section section) {
        constexpr std::size_t firstNumber = 3;
        Declaration object = {row.cells[1].text, section, TYP_NONE, {}, 0};
        if (!IsName(object.name)) {
            fail(row.cells[1].place,
                 QStringLiteral("a name is expected, not %1").arg(Quoted(object.name)));
        }
        const QByteArray type = row.cells[2].text.toUpper().toUtf8();
        object.type = TypeOf({type.constData(), static_cast<std::size_t>(type.size())});
        if (object.type == TYP_NONE || object.type >= TYP_STRING) {
            fail(row.cells[2].place,
                 QStringLiteral("a type is expected, such as INT or REAL, not %1")
                     .arg(Quoted(row.cells[2].text)));
        }
        for (std::size_t at = firstNumber; at < row.cells.size(); ++at) {
            object.numbers.push_back(numberOf(row.cells[at]));
        }
        text_.preamble.objects.push_back(std::move(object));
        text_.preamble.objectPlaces.push_back(row.cells[1].place);
    }

    Literal numberOf(const CsvCell& cell) {
        bool isNumber = false;
        Literal number;
        number.type = TYP_UDINT;
        number.whole = cell.text.toUInt(&isNumber);
        if (!isNumber) {
            fail(cell.place, QStringLiteral("the number of an object of the engine is expected, "
                                            "not %1")
                                 .arg(Quoted(cell.text)));
        }
        return number;
    }

    void takeCase(const CsvRow& row) {
        expectRows();
        text_.cases.push_back({row.cells[1].text.simplified(), row.cells[0].place.line, {}});
    }

    // A case without rows tests nothing.
    void expectRows() {
        if (!text_.cases.empty() && text_.cases.back().rows.empty()) {
            fail({text_.cases.back().line, 1}, QStringLiteral("the case has no rows"));
        }
    }

    // -----------------------------------------------------------------------------------------
    // Columns and rows
    // -----------------------------------------------------------------------------------------

    void takeColumns(const CsvRow& row) {
        if (text_.cases.empty()) {
            fail(row.cells[0].place,
                 QStringLiteral("a line \"case, NAME\" stands above the columns"));
        }
        std::vector<TestColumn> columns;
        for (std::size_t at = 1; at < row.cells.size(); ++at) {
            columns.push_back(columnOf(row.cells[at]));
            expectOnce(columns);
        }
        text_.columns.push_back(std::move(columns));
    }

    TestColumn columnOf(const CsvCell& cell) {
        TestColumn column = {ColumnUse::Set, cell.text, cell.place};
        if (column.name.startsWith(FORCE, Qt::CaseInsensitive)) {
            column.use = ColumnUse::Force;
            column.name = column.name.mid(FORCE.size()).trimmed();
        } else if (column.name.endsWith(u'?') || column.name.endsWith(u'!')) {
            column.use =
                column.name.endsWith(u'?') ? ColumnUse::AskAtEnd : ColumnUse::AskEachCycle;
            column.name = column.name.chopped(1).trimmed();
        }
        if (!IsName(column.name)) {
            fail(cell.place,
                 QStringLiteral("a column is called \"name\", \"name?\", \"name!\" or "
                                "\"force name\", not %1")
                     .arg(Quoted(cell.text)));
        }
        return column;
    }

    // A variable can be set, and asked at the end and in each cycle, by a column each.
    void expectOnce(const std::vector<TestColumn>& columns) {
        const TestColumn& last = columns.back();
        const bool isAgain =
            std::any_of(columns.begin(), columns.end() - 1, [&last](const TestColumn& each) {
                return each.use == last.use && FoldedName(each.name) == FoldedName(last.name);
            });
        if (isAgain) {
            fail(last.place, QStringLiteral("the columns have this one already"));
        }
    }

    void takeRow(const CsvRow& row) {
        if (text_.cases.empty() || text_.columns.empty()) {
            fail(row.cells[0].place, QStringLiteral("a line \"cycles, NAME, ...\" with the names "
                                                    "of the columns stands above the rows"));
            return;
        }
        TestRow read = {row.cells[0].place.line,
                        static_cast<int>(text_.columns.size()) - 1,
                        0,
                        false,
                        {},
                        {}};
        takeCycles(row.cells[0], read);
        const std::size_t columns = text_.columns.back().size();
        if (row.cells.size() > columns + 1) {
            fail(row.cells[columns + 1].place,
                 QStringLiteral("there is no column for this cell"));
            return;
        }
        for (std::size_t at = 1; at < row.cells.size(); ++at) {
            if (!row.cells[at].text.isEmpty()) {
                read.cells.push_back(row.cells[at]);
                read.columnsOf.push_back(static_cast<int>(at) - 1);
            }
        }
        expectQuestion(row.cells[0], read);
        text_.cases.back().rows.push_back(std::move(read));
    }

    void takeCycles(const CsvCell& cell, TestRow& row) {
        static const QRegularExpression form(QStringLiteral("^(<= *)?([0-9]+)$"));
        const QRegularExpressionMatch match = form.match(cell.text);
        row.isAtMost = !match.captured(1).isEmpty();
        row.cycles = match.captured(2).toInt();
        if (row.cycles < 1) {
            fail(cell.place,
                 QStringLiteral("a number of cycles from 1 to %1 is expected, or the most "
                                "as <=5, not %2")
                     .arg(QString::number(std::numeric_limits<int>::max()), Quoted(cell.text)));
        }
    }

    void expectQuestion(const CsvCell& cycles, const TestRow& row) {
        const auto isAtEnd = [this, &row](int column) {
            return text_
                       .columns[static_cast<std::size_t>(row.columns)]
                               [static_cast<std::size_t>(column)]
                       .use == ColumnUse::AskAtEnd;
        };
        if (row.isAtMost && std::none_of(row.columnsOf.begin(), row.columnsOf.end(), isAtEnd)) {
            fail(cycles.place,
                 QStringLiteral("a row with %1 waits for what its cells of columns with ? say, "
                                "and has none")
                     .arg(cycles.text));
        }
    }
};

const std::vector<TestReader::Line>& TestReader::lines() {
    static const std::vector<Line> all = {
        {QStringLiteral("script"), "script, FILE", 2, &TestReader::takeScript},
        {QStringLiteral("tick"), "tick, NUMBER", 2, &TestReader::takeTick},
        {QStringLiteral("engine"), "engine, FILE", 2, &TestReader::takeEngine},
        {QStringLiteral("check"), "check, NAME, ACTION", 3, &TestReader::takeCheck},
        {QStringLiteral("global"), "global, NAME, TYPE, NUMBER", 4, &TestReader::takeGlobal},
        {QStringLiteral("register"), "register, NAME, TYPE, NUMBER, NUMBER, NUMBER, NUMBER", 7,
         &TestReader::takeRegister},
        {QStringLiteral("case"), "case, NAME", 2, &TestReader::takeCase},
    };
    return all;
}

}  // namespace

TestText ReadTestText(const QByteArray& text) {
    return TestReader(ReadCsv(text)).read();
}
