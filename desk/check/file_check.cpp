#include "check/file_check.h"

#include "check/repair.h"
#include "check/rules.h"
#include "check/tokens.h"
#include "facts/catalogue.h"

#include "qyx_messages.h"

#include <algorithm>
#include <utility>

namespace {

// Compiles for one error that is shown: others may follow from it.
constexpr int ROUNDS_FOR_AN_ERROR = 5;
constexpr int LEAST_ROUNDS = 20;

const MessageFact& ErrorOf(const Facts& facts) {
    return facts.messages.back();
}

bool IsKind(const MessageFact& message, QLatin1String constant) {
    return TextOf(message.constant) == constant;
}

}  // namespace

FileCheck::FileCheck(const Source& source, int maxErrors, FindMore findMore)
    : source_(source),
      edited_(source),
      maxErrors_(maxErrors),
      findMore_(std::move(findMore)),
      roundsLeft_(LEAST_ROUNDS + ROUNDS_FOR_AN_ERROR * maxErrors) {}

bool FileCheck::take(const Facts& facts) {
    takeWarnings(facts);
    if (facts.isCompiled()) {
        takeMore(facts);
        return false;
    }
    const std::vector<Help> helps =
        HelpsForError(edited_, edits_.all().empty() ? facts : factsOfScript(facts));
    const bool isShown = !isConsequence(facts, helps);
    const bool mayMend = !isAfterRepair(facts);
    if (isShown && errors_ == maxErrors_) {
        stop(facts, QStringLiteral("stopped here: there are more errors than are to be shown"));
        return false;
    }
    if (isShown) {
        reportError(facts, helps);
    }
    const bool isAllRead =
        IsKind(ErrorOf(facts), TXT_UNEXPECTED_END_OF_INPUT_FILE) && !facts.open.inComment;
    --roundsLeft_;
    return !isAllRead && ((mayMend && mend(facts, helps)) || repair(facts));
}

// ---------------------------------------------------------------------------------------------
// Messages
// ---------------------------------------------------------------------------------------------

Diagnostic FileCheck::diagnosticOf(const Facts& facts, const MessageFact& message) const {
    Diagnostic diagnostic;
    diagnostic.level = message.isError ? Level::Error : Level::Warning;
    diagnostic.id = QString(IdOf(message.constant));
    diagnostic.message = facts.textOf(message.text).toString();
    diagnostic.span = edits_.original(SpanOfMessage(facts, message));
    if (message.given.line == 0 || message.given.column == 0) {
        diagnostic.ownPlace = message.given;
    }
    return diagnostic;
}

// The facts without the names that were put in: no help is to speak of them.
Facts FileCheck::factsOfScript(const Facts& facts) const {
    Facts ofScript = facts;
    for (NameFact& name : ofScript.names) {
        const QStringView original = source_.text(edits_.original(name.span));
        const bool isPutIn = !name.span.isEmpty() &&
                             !original.contains(facts.textOf(name.text), Qt::CaseInsensitive);
        name.text = isPutIn ? Span() : name.text;
    }
    return ofScript;
}

// What a mend of the text that was compiled is to the script; none if it meets an earlier edit.
std::vector<Edit> FileCheck::mendOfScript(std::vector<Edit> mend) const {
    for (Edit& edit : mend) {
        const std::optional<Span> span = edits_.exact(edit.span);
        if (!span) {
            return {};
        }
        edit.span = *span;
    }
    return mend;
}

void FileCheck::reportError(const Facts& facts, std::vector<Help> helps) {
    Diagnostic error = diagnosticOf(facts, ErrorOf(facts));
    error.helps = std::move(helps);
    for (Help& help : error.helps) {
        help.span = edits_.original(help.span);
        help.mend = mendOfScript(help.mend);
        help.offer =
            KeepComments(edited_, help.offer) ? mendOfScript(help.offer) : std::vector<Edit>();
    }
    found_.push_back(std::move(error));
    ++errors_;
}

// Each compile gives the warnings of those before it again, and more; what the first one gave is
// true in any case.
void FileCheck::takeWarnings(const Facts& facts) {
    for (const MessageFact& message : facts.messages) {
        if (message.isError || (!edits_.all().empty() && dependsOnEdits(facts, message))) {
            continue;
        }
        const Diagnostic warning = diagnosticOf(facts, message);
        const auto isSame = [&warning](const Diagnostic& other) {
            return other.span.begin == warning.span.begin && other.message == warning.message;
        };
        if (std::none_of(warnings_.begin(), warnings_.end(), isSame)) {
            warnings_.push_back(warning);
        }
    }
}

// Whether a help proposes to write the name.
bool FileCheck::isProposed(const QString& name) const {
    const QString code = u'`' + name + u'`';
    return std::any_of(found_.begin(), found_.end(), [&code](const Diagnostic& error) {
        return std::any_of(error.helps.begin(), error.helps.end(), [&code](const Help& help) {
            return help.text.contains(code, Qt::CaseInsensitive);
        });
    });
}

// Whether a warning is about a name that is doubtful, that a piece mentions which was taken out
// or that a help proposes, or about the result of a unit that lacks a piece. The place of the
// warning about a value is the token after the name.
bool FileCheck::dependsOnEdits(const Facts& facts, const MessageFact& message) const {
    const Tokens tokens(edited_, facts);
    const bool isAfterName = IsKind(message, TXT_MIGHT_NOT_HAVE_BEEN_INITIALIZED);
    const int index = tokens.at(message.place) - (isAfterName ? 1 : 0);
    const QString name = tokens.text(index).toString();
    const bool isResult = IsKind(message, TXT_MIGHT_BE_UNDEFINED);
    const auto mentions = [&](const Edit& edit) {
        return isResult ? edit.span.begin < edits_.originalBegin(message.place)
                        : source_.text(edit.span).contains(name, Qt::CaseInsensitive);
    };
    const std::vector<Edit>& all = edits_.all();
    const Span place = edits_.original({message.place, message.place + 1});
    const auto holdsPlace = [&place](const Edit& edit) {
        return !edit.isMend && place.begin >= edit.span.begin && place.end <= edit.span.end;
    };
    const bool isPutIn =
        std::any_of(edits_.all().begin(), edits_.all().end(), holdsPlace) || place.isEmpty();
    return isPutIn || isDoubtfulName(unitAt(facts, message.place), name) || isProposed(name) ||
           std::any_of(all.begin(), all.end(), mentions);
}

void FileCheck::takeMore(const Facts& facts) {
    if (findMore_ && edits_.all().empty()) {
        const std::vector<Diagnostic> more = findMore_(source_, facts);
        warnings_.insert(warnings_.end(), more.begin(), more.end());
    }
}

FileReport FileCheck::report() const {
    FileReport report = {source_, found_};
    report.diagnostics.insert(report.diagnostics.end(), warnings_.begin(), warnings_.end());
    std::stable_sort(
        report.diagnostics.begin(), report.diagnostics.end(),
        [](const Diagnostic& a, const Diagnostic& b) { return a.span.begin < b.span.begin; });
    return report;
}

// The note stands after all errors, also where the last of the compiler's is in a text that was
// put in before them.
void FileCheck::stop(const Facts& facts, const QString& why) {
    Diagnostic note;
    note.level = Level::Note;
    note.id = QStringLiteral("stopped-here");
    note.message = why;
    note.span = edits_.original(facts.error.token);
    if (!found_.empty() && note.span.begin < found_.back().span.begin) {
        note.span = found_.back().span;
    }
    found_.push_back(std::move(note));
}

// ---------------------------------------------------------------------------------------------
// What follows from an earlier error
// ---------------------------------------------------------------------------------------------

bool FileCheck::isConsequence(const Facts& facts, const std::vector<Help>& helps) const {
    const bool isAboutText = !helps.empty() && helps.front().isAboutText;
    return !edits_.all().empty() &&
           (isAfterRepair(facts) || isIndexOfArray(facts) || (!isAboutText && isDoubtful(facts)));
}

// Whether the last repairs are what the compiler stumbles over.
bool FileCheck::isAfterRepair(const Facts& facts) const {
    return !edits_.all().empty() &&
           (isAtError(facts) || isEndAfterEdit(facts) || isAtEdit(facts));
}

// Whether an error has been found at that place: it was not mended by its repair.
bool FileCheck::isAtError(const Facts& facts) const {
    const int place = diagnosticOf(facts, ErrorOf(facts)).span.begin;
    return std::any_of(found_.begin(), found_.end(),
                       [place](const Diagnostic& error) { return error.span.begin == place; });
}

// Whether the script has ended where its rest was taken out. The place is the last token.
bool FileCheck::isEndAfterEdit(const Facts& facts) const {
    const Edit& last = edits_.all().back();
    return IsKind(ErrorOf(facts), TXT_UNEXPECTED_END_OF_INPUT_FILE) && !last.isMend &&
           last.span.end > edits_.originalBegin(ErrorOf(facts).place);
}

// Whether the error is in a text that replaced another, or at the first token after it: then the
// repair did not fit.
bool FileCheck::isAtEdit(const Facts& facts) const {
    const Tokens tokens(edited_, facts);
    const int index = tokens.at(facts.error.token.begin);
    const int before = index == 0 ? 0 : edits_.originalBegin(tokens.span(index - 1).end);
    const int place = edits_.originalBegin(facts.error.token.begin);
    return std::any_of(edits_.all().begin(), edits_.all().end(), [&](const Edit& edit) {
        const bool isNeutral = edit.isMend || edit.text.trimmed().isEmpty();
        const bool isAfter = edit.span.end <= place && edit.span.end >= before;
        return (place >= edit.span.begin && place < edit.span.end) || (isAfter && !isNeutral);
    });
}

// Whether what was read of the statement, the part of a head or the declaration has a name of
// which nothing is known. Where another token was expected, the one that came is not to blame;
// a name that is not declared is so whatever else there is.
bool FileCheck::isDoubtful(const Facts& facts) const {
    const Tokens tokens(edited_, facts);
    const int unit = unitAt(facts, facts.error.token.begin);
    const int error = tokens.at(facts.error.token.begin);
    const bool isInPiece = facts.open.statement != NONE || facts.open.declaration != NONE;
    const bool isAboutName = IsKind(ErrorOf(facts), TXT_UNRECOGNIZED_KEYWORD);
    const int begin = isAboutName ? error - 1 : isInPiece ? tokens.at(facts.open.part) : error;
    const int end = IsKind(ErrorOf(facts), TXT_EXPECTED_BUT) ? error : error + 1;
    for (int index = begin; index < end; ++index) {
        if (isDoubtfulName(unit, tokens.text(index).toString())) {
            return true;
        }
    }
    return false;
}

// Whether it is an element of what was declared as an array, which is refused there.
bool FileCheck::isIndexOfArray(const Facts& facts) const {
    const Tokens tokens(edited_, facts);
    const int bracket = tokens.at(facts.error.token.begin);
    const QString name = tokens.text(bracket - 1).toString().toCaseFolded();
    return IsKind(ErrorOf(facts), TXT_ARRAY_TYPE_REQUIRED) &&
           arrays_.contains({unitAt(facts, facts.error.token.begin), name});
}

bool FileCheck::isDoubtfulName(int unit, const QString& name) const {
    const QString folded = name.toCaseFolded();
    return doubtfulNames_.contains({unit, folded}) || doubtfulNames_.contains({NONE, folded});
}

// The begin of the unit that holds the place, NONE between units.
int FileCheck::unitAt(const Facts& facts, int place) const {
    const auto after =
        std::find_if(facts.units.rbegin(), facts.units.rend(),
                     [place](const UnitFact& unit) { return unit.span.begin <= place; });
    return after == facts.units.rend() ? NONE : edits_.originalBegin(after->span.begin);
}

// ---------------------------------------------------------------------------------------------
// The way on
// ---------------------------------------------------------------------------------------------

// Does what a help says, if it says that for certain: the rest of the piece is then compiled too.
bool FileCheck::mend(const Facts& facts, const std::vector<Help>& helps) {
    // A type that stands for another may be a wrong guess.
    const bool isHead = facts.open.unit != NONE && facts.open.statement == NONE;
    Repair asSaid = isHead ? FindRepair(edited_, facts) : Repair();
    asSaid.edits = helps.empty() ? std::vector<Edit>() : helps.front().mend;
    for (Edit& edit : asSaid.edits) {
        edit.isMend = true;
    }
    const int unit = unitAt(facts, facts.error.token.begin);
    return !asSaid.edits.empty() && roundsLeft_ > 0 && apply(asSaid, unit);
}

bool FileCheck::repair(const Facts& facts) {
    const Repair smallest = FindRepair(edited_, facts);
    if (smallest.edits.empty()) {
        stop(facts, QStringLiteral("stopped here: what follows cannot be told from this error"));
        return false;
    }
    const int unit = unitAt(facts, facts.error.token.begin);
    if (roundsLeft_ > 0 && apply(smallest, unit)) {
        return true;
    }
    const Repair larger = FindLargerRepair(edited_, facts, smallest.edits.front().span);
    if (roundsLeft_ > 0 && !larger.edits.empty() && apply(larger, unit)) {
        return true;
    }
    stop(facts, QStringLiteral("stopped here: too much follows from the errors above"));
    return false;
}

// False if the text would stay what it was.
bool FileCheck::apply(const Repair& repair, int unit) {
    std::vector<Edit> originals;
    for (const Edit& edit : repair.edits) {
        originals.push_back({edits_.original(edit.span), edit.text, edit.isMend});
    }
    for (Edit& edit : originals) {
        edits_.add(std::move(edit));
    }
    for (const QString& name : repair.doubtfulNames) {
        doubtfulNames_.insert({unit, name.toCaseFolded()});
    }
    for (const QString& name : repair.arrays) {
        arrays_.insert({unit, name.toCaseFolded()});
    }
    for (const QString& name : repair.doubtfulDefinitions) {
        doubtfulNames_.insert({NONE, name.toCaseFolded()});
    }
    const QString text = edits_.applyTo(source_.text());
    const bool hasChanged = text != edited_.text();
    edited_ = Source(source_.name(), text);
    return hasChanged;
}
