// Changes sources token by token, so that more of them stay near the language than bytes changed
// at random would. The same seed and the same sources give the same mutants.
#pragma once

#include "outline.h"
#include "random.h"
#include "tokens.h"
#include "words.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

class Mutator {
public:
    // The words must outlive it.
    Mutator(const Words& words, unsigned seed) : words_(words), random_(seed) {}

    // The source with some changes, parts of the other one among them: at most maxSize bytes.
    // Where no change fits, the first maxSize bytes of the source.
    std::string mutate(std::string_view source, std::string_view other, std::size_t maxSize);

private:
    using Mutation = bool (Mutator::*)();
    struct Weighted;
    struct Frame;
    using Renamed = std::map<std::string, std::string>;

    void mutateOnce();
    Mutation chooseMutation();

    // The mutations. False, with nothing changed, if the source has nothing for it.
    bool replaceWord();
    bool replaceInfix();
    bool replaceNumber();
    bool replaceString();
    bool replaceName();
    bool replaceOperand();
    bool deleteTokens();
    bool duplicateTokens();
    bool swapTokens();
    bool deletePiece();
    bool swapPieces();
    bool copyPiece();
    bool nestPiece();
    bool wrapExpression();
    bool extendExpression();
    bool insertComment();
    bool insertWord();
    bool replaceBlank();
    bool insertBlank();
    bool changeCase();

    // Places.
    template <typename Predicate>
    std::optional<std::size_t> chooseToken(Predicate isSought);
    std::optional<Run> choose(const Runs& runs);
    std::optional<Piece> chooseMovablePiece(const Outline& outline);
    const Outline& chooseOutline(const Outline& here, const Outline& other);
    Run chooseRun(std::size_t begin);
    std::optional<Run> chooseExpression(const Outline& here);
    std::size_t nextOperandEnd(const Outline& here, std::size_t end) const;

    // What to put there.
    Tokens read(std::string_view text) const { return Tokenize(text, words_); }
    Tokens makeOperand(const Outline& here, std::size_t place);
    std::string makeHead(const Outline& here, std::size_t place);
    std::optional<Frame> makeFrame(const Outline& from, const Outline& here, std::size_t place);
    std::string chooseVariable(const Scope& scope, const std::string& type);
    std::string chooseCallee(const Outline& here, std::size_t place);
    Tokens adapt(const Outline& from, Run run, const Outline& here, std::size_t place);
    std::string makeName(const Outline& from, std::size_t index, const Outline& here,
                         std::size_t place);
    Renamed renameDeclared(const Outline& from, Run run, const Outline& here);
    std::string makeFreshName(const std::string& name, const Outline& here);

    // Changes.
    template <typename Predicate, typename MakeText>
    bool replaceToken(Predicate isSought, MakeText makeText);
    void replace(Run run, const Tokens& tokens);
    void insert(std::size_t place, const Tokens& tokens) { replace({place, place}, tokens); }
    void swap(Run first, Run second);

    const Words& words_;
    Random random_;
    Tokens tokens_;
    Tokens other_;
};
