#include "qyx_names.h"

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

constexpr std::size_t ASCII_COUNT = 128;

constexpr std::size_t HASH_SEED = 0xCBF29CE484222325;
constexpr std::size_t HASH_FACTOR = 0x9E3779B97F4A7C15;
constexpr unsigned HASH_SHIFT = 32;

std::size_t Mix(std::size_t hash, std::size_t value) {
    hash = (hash ^ value) * HASH_FACTOR;
    return hash ^ (hash >> HASH_SHIFT);
}

// Four characters at a time, then the rest one by one.
std::size_t HashOf(QStringView text) {
    constexpr qsizetype step = sizeof(std::size_t) / sizeof(QChar);
    std::size_t hash = HASH_SEED;
    qsizetype i = 0;
    for (; i + step <= text.size(); i += step) {
        std::size_t four = 0;
        std::memcpy(&four, text.data() + i, sizeof four);
        hash = Mix(hash, four);
    }
    for (; i < text.size(); ++i) {
        hash = Mix(hash, text[i].unicode());
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

std::size_t FoldedHashOf(QStringView text) {
    std::size_t hash = HASH_SEED;
    for (const QChar c : text) {
        hash = Mix(hash, Folded(c));
    }
    return hash;
}

// Whether the spelling is that text. The UTF-8 form of a short name lies in the spelling itself
// and of an ASCII name it is as long as the text, so that most names are compared without a
// detour.
bool IsSpelled(const Spelling& spelling, QStringView text) {
    if (spelling.utf8.size() != static_cast<std::size_t>(text.size())) {
        return spelling.text == text;
    }
    return std::equal(text.begin(), text.end(), spelling.utf8.begin(),
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
        const std::size_t hash = HashOf(text);
        const SpellingSlot found = spellingSlots_.find(hash, [=](const SpellingSlot& slot) {
            return slot.textHash == hash && IsSpelled(*slot.spelling, text);
        });
        return found ? *found.spelling : addSpelling(text, hash);
    }

private:
    static constexpr std::size_t USUAL_SIZE = 1024;  // slots that most programs can do with

    std::deque<Identity> identities_;
    std::deque<Spelling> spellings_;
    HashSlots<IdentitySlot> identitySlots_ = HashSlots<IdentitySlot>(USUAL_SIZE);
    HashSlots<SpellingSlot> spellingSlots_ = HashSlots<SpellingSlot>(USUAL_SIZE);

    const Identity& addIdentity(const QString& text, int row, int typRow) {
        identities_.push_back({FoldedHashOf(text), text, row, typRow});
        identitySlots_.insert({&identities_.back()});
        return identities_.back();
    }

    const Identity& identityOf(QStringView text) {
        const std::size_t hash = FoldedHashOf(text);
        const IdentitySlot found = identitySlots_.find(hash, [=](const IdentitySlot& slot) {
            return slot.identity->hash == hash && StrCmp(slot.identity->text, text, true) == 0;
        });
        return found ? *found.identity : addIdentity(text.toString(), NO_ROW, NO_ROW);
    }

    const Spelling& addSpelling(QStringView text, std::size_t hash) {
        const Identity& identity = identityOf(text);
        spellings_.push_back({&identity, identity.hash, identity.row, text.toString(),
                              text.toUtf8().toStdString()});
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
