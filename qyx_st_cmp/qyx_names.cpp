#include "qyx_names.h"

#include <QRandomGenerator>

#include <algorithm>
#include <cstring>
#include <deque>

namespace {

struct SpellingSlot {
    std::size_t textHash = 0;
    const Spelling* spelling = nullptr;

    explicit operator bool() const { return spelling != nullptr; }
    std::size_t hash() const { return textHash; }
};

struct IdentitySlot {
    const Identity* identity = nullptr;

    explicit operator bool() const { return identity != nullptr; }
    std::size_t hash() const { return identity->hash; }
};

// What no source knows, drawn anew for each process: nobody can make names of equal hashes, which
// would make every lookup slow. No output depends on it, as lists keep the order of insertion.
struct HashSecret {
    quint64 begin = QRandomGenerator::system()->generate64();
    quint64 factor = QRandomGenerator::system()->generate64() | 1U;
};

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

// All names and their spellings, the reserved words and the types from the start.
class NameTable {
public:
    NameTable() {
        for (int row = 0; row < TOKENS_COUNT; ++row) {
            addIdentity(TokensTable[row].text, row, NO_ROW);
        }
        for (int row = 0; row < TYPS_COUNT; ++row) {
            addIdentity(TypsTable[row].name, NO_ROW, row);
        }
    }

    const Spelling& spellingOf(QStringView text) {
        const std::size_t hash = HashOf(text, secret_);
        const SpellingSlot found = spellingSlots_.find(hash, [=](const SpellingSlot& slot) {
            return slot.textHash == hash && IsSpelled(*slot.spelling, text);
        });
        return found ? *found.spelling : addSpelling(text, hash);
    }

private:
    static constexpr std::size_t USUAL_SIZE = 1024;  // slots that most programs can do with

    const HashSecret secret_;
    std::deque<Identity> identities_;
    std::deque<Spelling> spellings_;
    HashSlots<IdentitySlot> identitySlots_ = HashSlots<IdentitySlot>(USUAL_SIZE);
    HashSlots<SpellingSlot> spellingSlots_ = HashSlots<SpellingSlot>(USUAL_SIZE);

    const Identity& addIdentity(const QString& text, int row, int typRow) {
        identities_.push_back({FoldedHashOf(text, secret_), text, row, typRow});
        identitySlots_.insert({&identities_.back()});
        return identities_.back();
    }

    const Identity& identityOf(const QString& text) {
        const std::size_t hash = FoldedHashOf(text, secret_);
        const IdentitySlot found = identitySlots_.find(hash, [=](const IdentitySlot& slot) {
            return slot.identity->hash == hash && StrCmp(slot.identity->text, text, true) == 0;
        });
        return found ? *found.identity : addIdentity(text, NO_ROW, NO_ROW);
    }

    // The text of a new name serves its identity and its first spelling.
    const Spelling& addSpelling(QStringView view, std::size_t hash) {
        const QString text = view.toString();
        const Identity& identity = identityOf(text);
        std::string utf8 = text.toUtf8().toStdString();
        const bool isAscii = utf8.size() == static_cast<std::size_t>(text.size());
        spellings_.push_back(
            {&identity, identity.hash, identity.row, isAscii, text, std::move(utf8)});
        spellingSlots_.insert({hash, &spellings_.back()});
        return spellings_.back();
    }
};

}  // namespace

const Spelling& SpellingOf(QStringView text) {
    static NameTable& table = *new NameTable;  // never deleted: the process ends first
    return table.spellingOf(text);
}

QStringView KeepText(const QString& text) {
    return SpellingOf(text).text;
}
