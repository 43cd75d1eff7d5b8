#include "language/rename_proof.h"

#include "language/names.h"

#include <algorithm>

namespace {

bool IsSameFact(const Facts& before, const Facts& after, const NameChange& change,
                std::size_t index) {
    const NameFact& one = before.names[index];
    const NameFact& other = after.names[index];
    const QStringView text = after.textOf(other.text);
    const bool isText = static_cast<int>(index) == change.name ? IsSameName(text, change.to)
                                                               : text == before.textOf(one.text);
    return isText && one.kind == other.kind && one.section == other.section &&
           one.type == other.type && one.unit == other.unit;
}

bool AreNamesSame(const Facts& before, const Facts& after, const NameChange& change) {
    bool isSame = before.names.size() == after.names.size();
    for (std::size_t index = 0; isSame && index < before.names.size(); ++index) {
        isSame = IsSameFact(before, after, change, index);
    }
    return isSame;
}

bool AreUsesSame(const Facts& before, const Facts& after) {
    return std::equal(before.uses.begin(), before.uses.end(), after.uses.begin(),
                      after.uses.end(), [](const UseFact& one, const UseFact& other) {
                          return one.name == other.name && one.kind == other.kind;
                      });
}

// A word of an item without the marks around a name.
QString Bare(QString word) {
    word.remove(0, word.startsWith(u'@') || word.startsWith(u'^') ? 1 : 0);
    word.chop(word.endsWith(u':') ? 1 : 0);
    return word;
}

bool IsSameWord(const QString& one, const QString& other, const NameChange& change) {
    const QString from = Bare(one);
    const QString to = Bare(other);
    const bool hasChanged = IsSameName(from, change.from) && IsSameName(to, change.to) &&
                            QString(one).replace(from, to) == other;
    return one == other || hasChanged;
}

QStringList WordsOf(const Facts& facts, const ItemFact& item) {
    const std::string_view text = facts.codeOf(item.text);
    return QString::fromUtf8(text.data(), static_cast<int>(text.size())).split(u' ');
}

bool AreItemsSame(const Facts& before, const Facts& after, const NameChange& change) {
    const auto isSame = [&](const ItemFact& one, const ItemFact& other) {
        const QStringList words = WordsOf(before, one);
        const QStringList others = WordsOf(after, other);
        return std::equal(words.begin(), words.end(), others.begin(), others.end(),
                          [&change](const QString& word, const QString& changed) {
                              return IsSameWord(word, changed, change);
                          });
    };
    return std::equal(before.items.begin(), before.items.end(), after.items.begin(),
                      after.items.end(), isSame);
}

}  // namespace

bool IsSameButForName(const Facts& before, const Facts& after, const NameChange& change) {
    return AreNamesSame(before, after, change) && AreUsesSame(before, after) &&
           AreItemsSame(before, after, change);
}
