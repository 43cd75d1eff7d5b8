#include "reports/test_table.h"

#include "facts/csv.h"
#include "machine/engine_objects.h"

namespace {

QString LineOf(const QString& key, const QString& value) {
    return CsvText(key) + QStringLiteral(", ") + CsvText(value) + u'\n';
}

QString HeadText(const TestHead& head) {
    QString text = LineOf(QStringLiteral("script"), head.script) +
                   LineOf(QStringLiteral("tick"), QString::number(head.tick));
    for (const QString& choice : head.choices) {
        text += LineOf(QStringLiteral("engine"), choice);
    }
    for (const auto& [name, action] : head.checks) {
        text += QStringLiteral("check, %1, %2\n").arg(name, action);
    }
    for (const Declaration& object : head.objects) {
        text += LineOfObject(object);
    }
    return text + u'\n' + LineOf(QStringLiteral("case"), QStringLiteral("recorded"));
}

}  // namespace

TestTable::TestTable(WholeFile& file, const TestHead& head) : file_(file) {
    QStringList columns = QStringList{QStringLiteral("cycles")} + head.inputs;
    for (const QString& output : head.outputs) {
        columns.append(output + u'?');
    }
    for (const QString& column : columns) {
        widths_.push_back(column.size());
    }
    file_.write(HeadText(head).toStdString());
    row(columns);
}

void TestTable::cycle(const QStringList& inputs, const QStringList& outputs) {
    const QStringList cells = inputs + outputs;
    if (cycles_ > 0 && cells != cells_) {
        end();
    }
    cells_ = cells;
    ++cycles_;
}

void TestTable::end() {
    if (cycles_ > 0) {
        row(QStringList{QString::number(cycles_)} + cells_);
        cycles_ = 0;
    }
}

void TestTable::row(const QStringList& cells) {
    QString text;
    for (int index = 0; index < cells.size(); ++index) {
        const bool isLast = index + 1 == cells.size();
        const QString padded =
            cells[index].leftJustified(widths_[static_cast<std::size_t>(index)]);
        // The comma follows the text, the blanks follow the comma.
        text +=
            isLast ? cells[index] : cells[index] + u',' + padded.mid(cells[index].size()) + u' ';
    }
    file_.write((text + u'\n').toStdString());
}
