// Names, constants, initial values.

#include "check/context.h"
#include "lints/lints_table.h"

#include "qyx_text.h"

#include <QHash>

#include <algorithm>
#include <iterator>

namespace {

// ---------------------------------------------------------------------------------------------
// Sections
// ---------------------------------------------------------------------------------------------

// The declaration that a token begins, null if it begins none.
const DeclarationFact* DeclarationAt(const Subject& subject, int token) {
    const std::vector<DeclarationFact>& all = subject.facts.declarations;
    const int offset = subject.tokens.span(token).begin;
    const auto found = std::lower_bound(
        all.begin(), all.end(), offset,
        [](const DeclarationFact& each, int at) { return each.span.begin < at; });
    return found != all.end() && found->span.begin == offset ? &*found : nullptr;
}

// Whether a section begins as "VAR CONSTANT", or with a line of "CONSTANT" alone.
bool IsConstantHead(const Subject& subject, int section) {
    const Tokens& tokens = subject.tokens;
    return IsSectionBegin(tokens.code(section)) && tokens.is(section + 1, TOKEN_CONSTANT) &&
           (!tokens.isFirstOnLine(section + 1) || tokens.isFirstOnLine(section + 2));
}

// Whether something is stored into the variable, perhaps by who gets a reference to it.
QSet<int> WrittenNames(const Subject& subject) {
    QSet<int> names;
    for (const UseFact& use : subject.facts.uses) {
        if (use.kind == UseKind::Write || use.kind == UseKind::Reference) {
            names.insert(use.name);
        }
    }
    return names;
}

Diagnostic NoConstant(const Subject& subject, const NameFact& name) {
    const QStringView text = subject.textOf(name);
    const bool hasValue = subject.tokens.is(AssignOf(subject, name), TOKEN_ASSIGN);
    return Finding(name.span,
                   QStringLiteral("%1 is no constant: \"CONSTANT\" belongs to the first"
                                  " declaration of the section alone")
                       .arg(Quoted(text)),
                   QStringLiteral("write `CONSTANT` before %1 too%2")
                       .arg(Code(text), hasValue ? ""_L1 : ", and give it a value"_L1));
}

std::vector<Diagnostic> FindDeclarationsAfterConstants(const Subject& subject) {
    std::vector<Diagnostic> findings;
    const QSet<int> written = WrittenNames(subject);
    bool isAfterHead = false;
    for (int index = 0; index < subject.tokens.count(); ++index) {
        const Token code = subject.tokens.code(index);
        isAfterHead = IsSectionBegin(code) ? IsConstantHead(subject, index)
                                           : isAfterHead && code != TOKEN_END_VAR;
        const DeclarationFact* const declaration =
            isAfterHead ? DeclarationAt(subject, index) : nullptr;
        if (declaration != nullptr && !subject.name(declaration->name).isConstant &&
            !written.contains(declaration->name)) {
            findings.push_back(NoConstant(subject, subject.name(declaration->name)));
        }
    }
    return findings;
}

// ---------------------------------------------------------------------------------------------
// Initial values
// ---------------------------------------------------------------------------------------------

bool IsInOneCase(QStringView word) {
    return word == word.toString().toUpper() || word == word.toString().toLower();
}

std::vector<Diagnostic> FindMixedInitialValues(const Subject& subject) {
    std::vector<Diagnostic> findings;
    for (const DeclarationFact& each : subject.facts.declarations) {
        const int value = subject.tokens.at(each.span.end) - 2;
        const bool isTruth = subject.tokens.isOneOf(value, {TOKEN_TRUE, TOKEN_FALSE});
        if (!isTruth || IsInOneCase(subject.tokens.text(value))) {
            continue;
        }
        const QString written = subject.tokens.text(value).toString();
        findings.push_back(
            Finding(subject.tokens.span(value),
                    QStringLiteral("%1 is missing from the code: as an initial value %2 has no"
                                   " meaning")
                        .arg(Quoted(subject.textOf(subject.name(each.name))), Quoted(written)),
                    QStringLiteral("write %1").arg(Code(written.toUpper()))));
    }
    return findings;
}

// ---------------------------------------------------------------------------------------------
// Names that look alike
// ---------------------------------------------------------------------------------------------

struct Likeness {
    char16_t cyrillic;
    char16_t latin;
};

// As they are written: a small letter may look like none where its capital does.
constexpr Likeness LIKENESSES[] = {
    {u'А', u'A'}, {u'В', u'B'}, {u'Е', u'E'}, {u'К', u'K'}, {u'М', u'M'},
    {u'Н', u'H'}, {u'О', u'O'}, {u'Р', u'P'}, {u'С', u'C'}, {u'Т', u'T'},
    {u'У', u'Y'}, {u'Х', u'X'}, {u'а', u'A'}, {u'е', u'E'}, {u'о', u'O'},
    {u'р', u'P'}, {u'с', u'C'}, {u'у', u'Y'}, {u'х', u'X'},
};

// The Latin capital that a letter looks like; a letter like no other is its own capital.
QChar LookOf(QChar letter) {
    const auto* const found =
        std::find_if(std::begin(LIKENESSES), std::end(LIKENESSES),
                     [letter](const Likeness& each) { return each.cyrillic == letter; });
    return found == std::end(LIKENESSES) ? letter.toUpper() : QChar(found->latin);
}

// The same for all names that may look alike, whatever their letters are written as.
QString LookOf(QStringView name) {
    QString look;
    for (const QChar letter : name) {
        look += LookOf(letter.toUpper());
    }
    return look;
}

// Whether two names of one look are different, and look alike as they are written.
bool AreAlike(QStringView one, QStringView other) {
    const auto isSame = [](QChar a, QChar b) { return a.toUpper() == b.toUpper(); };
    const auto isAlike = [&](QChar a, QChar b) { return isSame(a, b) || LookOf(a) == LookOf(b); };
    return !std::equal(one.begin(), one.end(), other.begin(), isSame) &&
           std::equal(one.begin(), one.end(), other.begin(), isAlike);
}

QString AlphabetOf(QChar letter) {
    return letter.unicode() < 0x80 ? QStringLiteral("Latin") : QStringLiteral("Cyrillic");
}

// The first letter in which two names that look alike differ.
int FirstDifference(QStringView one, QStringView other) {
    int at = 0;
    while (one.at(at).toUpper() == other.at(at).toUpper()) {
        ++at;
    }
    return at;
}

Diagnostic LookAlike(const Subject& subject, const NameFact& name, const NameFact& earlier) {
    const QStringView text = subject.textOf(name);
    const QStringView other = subject.textOf(earlier);
    const int at = FirstDifference(text, other);
    const QString place =
        earlier.span.isEmpty()
            ? QStringLiteral("there")
            : QStringLiteral("on line %1").arg(subject.lineOf(earlier.span.begin));
    return Finding(name.span,
                   QStringLiteral("%1 is another name than %2, which looks like it: the letter %3"
                                  " at place %4 is %5 here and %6 %7")
                       .arg(Quoted(text), Quoted(other), Quoted(QString(text.at(at))))
                       .arg(at + 1)
                       .arg(AlphabetOf(text.at(at)), AlphabetOf(other.at(at)), place));
}

// The names of scopes, by their looks. What every unit sees comes before what one unit does.
class Looks {
public:
    explicit Looks(const Subject& subject) : subject_(subject) {}

    // The name that looks like another that sees it, null if none does.
    const NameFact* alike(const NameFact& name) {
        const QString look = LookOf(subject_.textOf(name));
        for (const int scope : {name.unit, NONE}) {
            const NameFact* const known = names_.value({scope, look});
            if (known != nullptr && AreAlike(subject_.textOf(*known), subject_.textOf(name))) {
                return known;
            }
        }
        names_.insert({name.unit, look}, &name);
        return nullptr;
    }

private:
    const Subject& subject_;
    QHash<QPair<int, QString>, const NameFact*> names_;
};

// Whoever declares a name that looks like a built-in is told, not who calls that.
std::vector<Diagnostic> FindLookAlikes(const Subject& subject) {
    std::vector<Diagnostic> findings;
    Looks looks(subject);
    for (const bool areGlobal : {true, false}) {
        for (const NameFact& name : subject.facts.names) {
            const bool isMeant = (name.unit == NONE) == areGlobal;
            const NameFact* const other = isMeant ? looks.alike(name) : nullptr;
            if (other != nullptr) {
                findings.push_back(name.isBuiltIn ? LookAlike(subject, *other, name)
                                                  : LookAlike(subject, name, *other));
            }
        }
    }
    return findings;
}

}  // namespace

Lints LintsOfDeclarations() {
    return {{QLatin1String("declaration-after-constants"), FindDeclarationsAfterConstants},
            {QLatin1String("bool-initial-true"), FindMixedInitialValues},
            {QLatin1String("look-alike-names"), FindLookAlikes}};
}
