// Names, and lists of records that are found by name.
//
// A word of the source is looked up once, when it is scanned: its spelling leads to all that is
// known about the name. Three words are kept apart: a name is a text, a spelling is one way to
// write a name, with what its uses ask, and an identity is what spellings that differ in case
// alone have in common. Names are equal exactly if their identity is the same object.
#pragma once

#include "qyx_tables.h"

#include <QString>
#include <QStringView>

#include <algorithm>
#include <cstddef>
#include <deque>
#include <list>
#include <string>
#include <utility>
#include <vector>

// What all spellings of one name share.
struct Identity {
    std::size_t hash;  // of the case-folded characters
    QString text;      // the spelling seen first
    int row;           // in TokensTable, NO_ROW if the name is no token
    int typRow;        // in TypsTable, NO_ROW if the name is no type
};

constexpr std::size_t CACHE_LINE_SIZE = 64;

// One way to spell a name. What every use of the name asks is repeated from its identity, so that
// one cache line holds it all.
struct alignas(CACHE_LINE_SIZE) Spelling {
    const Identity* identity;
    std::size_t identityHash;
    int row;
    bool isAscii;
    QString text;
    std::string utf8;
};

// The one spelling with that text; it lives as long as the process. The reserved words and types
// are known from the start.
const Spelling& SpellingOf(QStringView text);

// The text, kept for as long as the process lives.
QStringView KeepText(const QString& text);

// A hash table of slots by open addressing. A slot tells its hash, and an empty one is false.
template <typename Slot>
class HashSlots {
public:
    HashSlots() = default;
    explicit HashSlots(std::size_t size) : slots_(size) {}  // a power of two

    // The slot of which isSought holds among those with that hash, else an empty one.
    template <typename IsSought>
    Slot find(std::size_t hash, IsSought isSought) const {
        if (slots_.empty()) {
            return Slot();
        }
        std::size_t index = hash & (slots_.size() - 1);
        while (slots_[index] && !isSought(slots_[index])) {
            index = (index + 1) & (slots_.size() - 1);
        }
        return slots_[index];
    }
    void insert(Slot slot) {
        ++used_;
        if (used_ > slots_.size() / 2) {
            grow();
        }
        place(slots_, slot);
    }

private:
    static constexpr std::size_t GROWTH = 2;

    std::vector<Slot> slots_;  // none or a power of two, at most half of it used
    std::size_t used_ = 0;

    static void place(std::vector<Slot>& slots, Slot slot) noexcept {
        std::size_t index = slot.hash() & (slots.size() - 1);
        while (slots[index]) {
            index = (index + 1) & (slots.size() - 1);
        }
        slots[index] = slot;
    }
    void grow() {
        std::vector<Slot> larger(std::max(GROWTH, slots_.size() * GROWTH));
        for (const Slot& slot : slots_) {
            if (slot) {
                place(larger, slot);
            }
        }
        slots_ = std::move(larger);
    }
};

// What no source knows, drawn anew for each process: nobody can make names of equal hashes, which
// would make every lookup slow. No output depends on it, as lists keep the order of insertion.
struct HashSecret {
    quint64 begin;
    quint64 factor;
};

// All names and their spellings, the reserved words and the types from the start.
class NameTable {
public:
    explicit NameTable(HashSecret secret);

    const Spelling& spellingOf(QStringView text);

private:
    static constexpr std::size_t USUAL_SIZE = 1024;  // slots that most programs can do with

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

    const HashSecret secret_;
    std::deque<Identity> identities_;
    std::deque<Spelling> spellings_;
    HashSlots<IdentitySlot> identitySlots_ = HashSlots<IdentitySlot>(USUAL_SIZE);
    HashSlots<SpellingSlot> spellingSlots_ = HashSlots<SpellingSlot>(USUAL_SIZE);

    const Identity& addIdentity(const QString& text, int row, int typRow);
    const Identity& identityOf(const QString& text);
    const Spelling& addSpelling(QStringView view, std::size_t hash);
};

// Records in the order in which they were appended, found by the identity of their `spelling`. A
// record stays where it is while others are appended. Names neither change nor repeat.
template <typename Record>
class NameList {
public:
    NameList() = default;
    NameList(const NameList&) = delete;  // the index points into the records
    NameList& operator=(const NameList&) = delete;
    NameList(NameList&&) noexcept = default;
    NameList& operator=(NameList&&) noexcept = default;
    ~NameList() = default;

    Record& append(Record record) {
        Record& stored = records_.emplace_back(std::move(record));
        index_.insert({stored.spelling->identity, &stored});
        return stored;
    }
    // The record of that name, or null. A list that may not grow still lets its records be
    // marked.
    Record* find(const Spelling& spelling) const {
        const Identity* identity = spelling.identity;
        return index_
            .find(spelling.identityHash,
                  [identity](const Slot& slot) { return slot.identity == identity; })
            .record;
    }
    void clear() { *this = NameList(); }
    bool isEmpty() const { return records_.empty(); }
    auto begin() const { return records_.begin(); }
    auto end() const { return records_.end(); }

private:
    struct Slot {
        const Identity* identity = nullptr;
        Record* record = nullptr;

        explicit operator bool() const { return identity != nullptr; }
        std::size_t hash() const { return identity->hash; }
    };

    std::list<Record> records_;
    HashSlots<Slot> index_;
};
