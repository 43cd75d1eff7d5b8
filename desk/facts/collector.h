// Collects what the compiler tells into facts.
#pragma once

#include "facts/facts.h"

#include <QHash>

// The compile has ended with an error, which is the last of the messages.
struct CompileStopped {};

// Looks on at one compile of a source. An error leaves the compiler by CompileStopped.
class Collector : public Observer {
public:
    Collector(const Source& source, Records records);

    // Facts are complete once the compile has ended and what is left has been read.
    Facts take();

    // The rest of the source is read for its tokens alone.
    void readOn() { isReadingOn_ = true; }

    void token() override;
    void commentBegun() override;
    void commentEnded() override;
    void unitBegun() override;
    void unitNamed() override;
    void unitEnded() override;
    void declarationBegun() override;
    void variableDeclared(const VarItem& variable, Token section) override;
    void declarationEnded() override;
    void statementBegun() override;
    void statementEnded() override;
    void partBegun(TokenPos pos) override;
    void nameUsed(NameUse use, const Spelling& spelling) override;
    void labelDefined(const LabelItem& label) override;
    void labelUsed(const LabelItem& label) override;
    void operationBegun(Typ left) override;
    void operationEnded(Typ right) override;
    void itemWritten(std::string_view item) override;
    void expected(std::initializer_list<Token> codes) override;
    void typesRefused(Typ current, Typ next) override;
    void messageGiven(const Message& message) override;

private:
    struct OpenOperation {
        std::size_t op;    // the index of its operator
        std::size_t left;  // that of the first token of its left operand
        Typ leftType;
    };

    const Source& source_;
    bool isForLayout_;
    Facts facts_;
    std::vector<const Identity*> identities_;     // of the tokens, null for those without
    std::vector<int> parts_;                      // of the open statements, the place of the part
    int outside_ = 0;                             // where items outside of statements come from
    std::vector<std::size_t> expressions_ = {0};  // of those that are open, the first token
    std::vector<OpenOperation> operations_;
    QHash<const Identity*, int> variables_;    // of the unit, by name
    QHash<const Identity*, int> definitions_;  // of all units, by name
    QHash<const Identity*, int> labels_;       // by the name in upper case
    bool isReadingOn_ = false;

    int offsetOf(TokenPos pos) const;
    int endOfRead() const;
    Span currentSpan() const;
    Span addText(QStringView text);
    int addName(const Spelling& spelling, Span span, NameKind kind);
    int definitionOf(const Spelling& spelling);
    int labelOf(const LabelItem& label);
    Span lastSpanOf(const Identity* identity) const;
    void noteExpression();
    int& currentPart();
};
