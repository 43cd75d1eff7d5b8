#include "machine/value.h"

#include "machine/literals.h"

#include "qyx_types.h"

#include <QLocale>

#include <cmath>

namespace {

// A whole number that the text of a variable of type BOOL means, -1 if it means none.
int TruthOf(const QString& text) {
    const bool isTrue = text.compare("TRUE"_L1, Qt::CaseInsensitive) == 0 || text == "1"_L1;
    const bool isFalse = text.compare("FALSE"_L1, Qt::CaseInsensitive) == 0 || text == "0"_L1;
    return isTrue ? 1 : isFalse ? 0 : -1;
}

QString TextOfReal(const Value& value) {
    if (std::isnan(value.real)) {
        return QStringLiteral("nan");
    }
    if (std::isinf(value.real)) {
        return value.real > 0 ? QStringLiteral("inf") : QStringLiteral("-inf");
    }
    QString text = QString::number(value.real, 'g', QLocale::FloatingPointShortest);
    if (value.type == TYP_REAL) {
        for (int digits = 1; text.toFloat() == static_cast<float>(value.real) && digits <= 9;
             ++digits) {
            const QString shorter = QString::number(value.real, 'g', digits);
            if (shorter.toFloat() == static_cast<float>(value.real)) {
                text = shorter;
                break;
            }
        }
    }
    const bool isWhole = !text.contains(u'.') && !text.contains(u'e');
    return isWhole ? text + QStringLiteral(".0") : text;
}

}  // namespace

QString TextOf(const Value& value) {
    if (value.type == TYP_BOOL) {
        return value.whole != 0 ? QStringLiteral("TRUE") : QStringLiteral("FALSE");
    }
    return value.isReal() ? TextOfReal(value) : QString::number(value.whole);
}

bool ReadValue(const QString& text, Typ type, Value& value) {
    if (type == TYP_BOOL) {
        const int truth = TruthOf(text);
        value = Value::Truth(truth > 0);
        return truth >= 0;
    }
    const QByteArray word = text.toUpper().toUtf8();
    const std::optional<Literal> literal =
        ReadLiteral({word.constData(), static_cast<std::size_t>(word.size())});
    if (!literal || literal->type == TYP_STRING) {
        return false;
    }
    const bool isWhole = literal->type < TYP_REAL;
    if (type >= TYP_REAL) {
        const double number = isWhole ? static_cast<double>(literal->whole) : literal->real;
        value = Value::Real(
            type, type == TYP_REAL ? static_cast<double>(static_cast<float>(number)) : number);
        return std::isfinite(value.real);
    }
    value = Value::Whole(type, literal->whole);
    return isWhole && RangeOf(type).holds(literal->whole);
}
