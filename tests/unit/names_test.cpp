// Names: their spellings and identities, and the tables that find them.

#include "qyx_names.h"

#include <set>
#include <vector>

#include "support.h"

namespace {

// One record for each text and one for each name, so that both are compared as pointers.
TEST(Spellings, EachTextHasOne) {
    for (const QStringView text : {u"Level", u"LEVEL", u"Насос", u"насос", u"a", u"ж", u""}) {
        EXPECT_EQ(&SpellingOf(text), &SpellingOf(text.toString())) << Utf8(text);
    }
    EXPECT_NE(&SpellingOf(u"Насос"), &SpellingOf(u"насос"));
    EXPECT_EQ(SpellingOf(u"Насос").identity, SpellingOf(u"насос").identity);
    EXPECT_NE(SpellingOf(u"Насос").identity, SpellingOf(u"Насосы").identity);
}

TEST(Spellings, KeepTheirTextInBothEncodings) {
    for (const QStringView text : {u"Level_1", u"Насос", u"Ж1", u"\u0131", u""}) {
        EXPECT_EQ(SpellingOf(text).text, text);
        EXPECT_EQ(SpellingOf(text).utf8, Utf8(text));
    }
}

// As many units as bytes, yet not the same characters.
TEST(Spellings, AreNotTakenForOthersOfTheSameLength) {
    const Spelling& cyrillic = SpellingOf(u"ЖЖ");
    EXPECT_NE(&SpellingOf(u"abcd"), &cyrillic);
    EXPECT_NE(&SpellingOf(u"\u00D0\u0096\u00D0\u0096"), &cyrillic);
    EXPECT_EQ(&SpellingOf(u"ЖЖ"), &cyrillic);
}

TEST(Spellings, RepeatWhatTheirIdentityTells) {
    for (const QStringView text : {u"While", u"Level", u"Real", u":="}) {
        const Spelling& spelling = SpellingOf(text);
        EXPECT_EQ(spelling.identityHash, spelling.identity->hash) << Utf8(text);
        EXPECT_EQ(spelling.row, spelling.identity->row) << Utf8(text);
    }
}

TEST(Spellings, StayWhereTheyAreWhileTenThousandAreAdded) {
    const Spelling& first = SpellingOf(u"stays");
    const QStringView kept = KeepText(QStringLiteral("a kept text"));
    std::set<const Spelling*> others;
    for (int i = 0; i < 10000; ++i) {
        others.insert(&SpellingOf(QStringLiteral("spelling%1").arg(i)));
    }
    EXPECT_EQ(others.size(), 10000U);
    EXPECT_EQ(&SpellingOf(u"stays"), &first);
    EXPECT_EQ(KeepText(QStringLiteral("a kept text")).data(), kept.data());
    EXPECT_EQ(Utf8(kept), "a kept text");
}

// The identity of a name is that of its capitals, but for the dotless i.
TEST(Spellings, LettersAreTheSameNameInEitherCase) {
    for (uint unicode = 0; unicode < 0xFFFF; ++unicode) {
        const QString letter = QChar(unicode);
        if (IsAlphaR(letter[0])) {
            EXPECT_EQ(SpellingOf(letter).identity == SpellingOf(letter.toUpper()).identity,
                      unicode != 0x0131)
                << Utf8(letter);
        }
    }
}

TEST(Spellings, ReservedWordsAreFoundInAnyCase) {
    for (int row = 0; row < TOKENS_COUNT; ++row) {
        const QString text = TokensTable[row].text;
        SCOPED_TRACE(Utf8(text));
        EXPECT_EQ(Lookup(text), row);
        EXPECT_EQ(Lookup(text.toLower()), row);
        EXPECT_EQ(Lookup(MixedCase(text)), row);
        EXPECT_EQ(SpellingOf(text).identity->typRow, NO_ROW);
    }
}

TEST(Spellings, TypesAreFoundInAnyCase) {
    for (int row = 0; row < TYPS_COUNT; ++row) {
        const QString name = TypsTable[row].name;
        SCOPED_TRACE(Utf8(name));
        EXPECT_EQ(SpellingOf(name).identity->typRow, row);
        EXPECT_EQ(SpellingOf(name.toLower()).identity->typRow, row);
        EXPECT_EQ(SpellingOf(MixedCase(name)).identity->typRow, row);
        EXPECT_EQ(Lookup(name), NO_ROW);
    }
}

TEST(Spellings, OtherTextsAreNoReservedWordsAndNoTypes) {
    for (const QStringView text : {u"", u"WORD", u"END", u"IF ", u"=>", u"..."}) {
        EXPECT_EQ(Lookup(text), NO_ROW) << Utf8(text);
        EXPECT_EQ(SpellingOf(text).identity->typRow, NO_ROW) << Utf8(text);
    }
    EXPECT_EQ(Lookup(u"BOOL"), NO_ROW);
}

// ---------------------------------------------------------------------------------------------
// Tables of slots
// ---------------------------------------------------------------------------------------------

struct NumberSlot {
    int number = 0;
    std::size_t slotHash = 0;

    explicit operator bool() const { return number != 0; }
    std::size_t hash() const { return slotHash; }
};

int NumberIn(const HashSlots<NumberSlot>& slots, std::size_t hash, int number) {
    return slots.find(hash, [number](const NumberSlot& slot) { return slot.number == number; })
        .number;
}

TEST(Slots, AnEmptyTableHoldsNothing) {
    EXPECT_EQ(NumberIn(HashSlots<NumberSlot>(), 5, 1), 0);
    EXPECT_EQ(NumberIn(HashSlots<NumberSlot>(4), 5, 1), 0);
}

// All with one hash, with hashes that differ above the bits that the table uses, and with others.
TEST(Slots, EverySlotIsFoundWhateverTheHashes) {
    for (const std::size_t factor : {std::size_t{0}, std::size_t{1} << 32U, std::size_t{3}}) {
        HashSlots<NumberSlot> slots;
        for (int number = 1; number <= 300; ++number) {
            const std::size_t hash = static_cast<std::size_t>(number) * factor;
            EXPECT_EQ(NumberIn(slots, hash, number), 0);
            slots.insert({number, hash});
        }
        for (int number = 1; number <= 300; ++number) {
            const std::size_t hash = static_cast<std::size_t>(number) * factor;
            EXPECT_EQ(NumberIn(slots, hash, number), number);
        }
    }
}

// With a factor of zero all hashes are equal, and the texts alone tell names apart.
TEST(Spellings, OfOneHashAreToldApartByAllOfTheText) {
    NameTable table({0, 0});
    const std::vector<QString> names = {
        QStringLiteral("a"),
        QStringLiteral("A"),
        QStringLiteral("ab"),
        QStringLiteral(u"\u0416\u0416"),  // as UTF-8 the bytes of the next one
        QStringLiteral(u"\u00D0\u0096\u00D0\u0096"),
        QStringLiteral("IF")};
    for (const QString& name : names) {
        EXPECT_EQ(table.spellingOf(name).text, name);
        EXPECT_EQ(&table.spellingOf(name), &table.spellingOf(QString(name))) << Utf8(name);
    }
    EXPECT_EQ(table.spellingOf(names[0]).identity, table.spellingOf(names[1]).identity);
    EXPECT_NE(table.spellingOf(names[0]).identity, table.spellingOf(names[2]).identity);
    EXPECT_NE(table.spellingOf(names[3]).identity, table.spellingOf(names[4]).identity);
    EXPECT_NE(table.spellingOf(names[5]).row, NO_ROW);
}

}  // namespace
