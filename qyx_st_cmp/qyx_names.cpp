#include "qyx_names.h"

#include <QRandomGenerator>

#include <algorithm>
#include <cstring>

namespace {

// Both halves of the 128 bits of a product depend on all bits of both factors.
quint64 Mix(quint64 hash, quint64 value, quint64 factor) {
    __extension__ using Wide = unsigned __int128;
    constexpr unsigned half = 64;
    const Wide product = static_cast<Wide>(hash ^ value) * factor;
    return static_cast<quint64>(product) ^ static_cast<quint64>(product >> half);
}

// Four characters at a time, then the rest one by one.
std::size_t HashOf(QStringView text, const HashSecret& secret) {
    constexpr qsizetype step = sizeof(quint64) / sizeof(QChar);
    quint64 hash = secret.begin;
    qsizetype i = 0;
    for (; i + step <= text.size(); i += step) {
        quint64 four = 0;
        std::memcpy(&four, text.data() + i, sizeof four);
        hash = Mix(hash, four, secret.factor);
    }
    for (; i < text.size(); ++i) {
        hash = Mix(hash, text[i].unicode(), secret.factor);
    }
    return hash;
}

ushort Folded(QChar c) {
    const ushort unit = c.unicode();
    const bool isCapital = unit >= 'A' && unit <= 'Z';
    if (unit < ASCII_COUNT) {
        return isCapital ? static_cast<ushort>(unit - 'A' + 'a') : unit;
    }
    return c.toCaseFolded().unicode();
}

std::size_t FoldedHashOf(QStringView text, const HashSecret& secret) {
    quint64 hash = secret.begin;
    for (const QChar c : text) {
        hash = Mix(hash, Folded(c), secret.factor);
    }
    return hash;
}

// Whether the spelling is that text. The UTF-8 form of a short name lies in the spelling itself,
// so that most names are compared without a detour.
bool IsSpelled(const Spelling& spelling, QStringView text) {
    if (!spelling.isAscii) {
        return spelling.text == text;
    }
    return spelling.utf8.size() == static_cast<std::size_t>(text.size()) &&
           std::equal(text.begin(), text.end(), spelling.utf8.begin(),
                      [](QChar c, char ascii) { return c == QLatin1Char(ascii); });
}

}  // namespace

NameTable::NameTable(HashSecret secret) : secret_(secret) {
    for (int row = 0; row < TOKENS_COUNT; ++row) {
        addIdentity(TokensTable[row].text, row, NO_ROW);
    }
    for (int row = 0; row < TYPS_COUNT; ++row) {
        addIdentity(TypsTable[row].name, NO_ROW, row);
    }
}

const Spelling& NameTable::spellingOf(QStringView text) {
    const std::size_t hash = HashOf(text, secret_);
    const SpellingSlot found = spellingSlots_.find(hash, [=](const SpellingSlot& slot) {
        return slot.textHash == hash && IsSpelled(*slot.spelling, text);
    });
    return found ? *found.spelling : addSpelling(text, hash);
}

const Identity& NameTable::addIdentity(const QString& text, int row, int typRow) {
    identities_.push_back({FoldedHashOf(text, secret_), text, row, typRow});
    identitySlots_.insert({&identities_.back()});
    return identities_.back();
}

const Identity& NameTable::identityOf(const QString& text) {
    const std::size_t hash = FoldedHashOf(text, secret_);
    const IdentitySlot found = identitySlots_.find(hash, [&](const IdentitySlot& slot) {
        return slot.identity->hash == hash && StrCmp(slot.identity->text, text, true) == 0;
    });
    return found ? *found.identity : addIdentity(text, NO_ROW, NO_ROW);
}

// The text of a new name serves its identity and its first spelling.
const Spelling& NameTable::addSpelling(QStringView view, std::size_t hash) {
    const QString text = view.toString();
    const Identity& identity = identityOf(text);
    std::string utf8 = text.toUtf8().toStdString();
    const bool isAscii = utf8.size() == static_cast<std::size_t>(text.size());
    spellings_.push_back(
        {&identity, identity.hash, identity.row, isAscii, text, std::move(utf8)});
    spellingSlots_.insert({hash, &spellings_.back()});
    return spellings_.back();
}

namespace {

HashSecret DrawnSecret() {
    QRandomGenerator* const source = QRandomGenerator::system();
    const quint64 begin = source->generate64();
    return {begin, source->generate64() | 1U};
}

}  // namespace

const Spelling& SpellingOf(QStringView text) {
    // Never deleted: the process ends first.
    static NameTable& table = *new NameTable(DrawnSecret());
    return table.spellingOf(text);
}

QStringView KeepText(const QString& text) {
    return SpellingOf(text).text;
}
