// Changes inputs of the machine item by item, and tables cell by cell, so that more of them are
// read and executed than bytes changed at random would give. The same seed and the same inputs
// give the same mutants.
#pragma once

#include "code_items.h"
#include "input.h"

#include "../any_mutator.h"
#include "../random.h"

#include <cstddef>
#include <istream>
#include <optional>
#include <set>
#include <string>
#include <string_view>

class MachineMutator : public AnyMutator {
public:
    MachineMutator(std::istream& dictionary, unsigned seed) : words_(dictionary), random_(seed) {}

    std::string mutate(std::string_view input, std::string_view other,
                       std::size_t maxSize) override;

private:
    using Mutation = bool (MachineMutator::*)();
    struct Weighted;
    struct Run {
        std::size_t begin;
        std::size_t end;
    };

    void changeCode();
    Mutation chooseMutation();
    bool needsTable(Part part) const;

    // The mutations of code. False, with nothing changed, if the code has nothing for it.
    bool replaceKeyword();
    bool replaceOperand();
    bool replaceType();
    bool replaceSection();
    bool replaceInitial();
    bool deleteRun();
    bool copyRun();
    bool swapRuns();
    bool loopRun();
    bool skipRun();
    bool insertAssignment();
    bool insertCall();
    bool replaceEntry();

    // What to put there.
    std::string makeLiteral();
    std::string makeOperand(std::size_t place, const std::string& former);
    std::string makeTarget(std::size_t place);
    std::string makeCallee(const std::string& keyword);
    std::string makeLabel();
    std::string makeValue(std::size_t place);
    CodeItems makeAssignment(std::size_t place);
    CodeItems adapt(CodeItems run, std::size_t place);
    void adaptName(CodeItem& item, std::size_t place);

    // Places.
    template <typename Predicate>
    std::optional<std::size_t> choose(const Predicate& isSought);
    std::optional<Run> chooseRun(const CodeItems& items);
    std::optional<std::size_t> choosePlace();
    std::vector<std::string> declaredFor(std::size_t place) const;
    std::string chooseName(std::size_t place);

    void insert(std::size_t place, const CodeItems& items);
    void replace(Run run, const CodeItems& items);

    // Tables.
    void changeTable(Part part);
    std::string makeCell(const std::string& former);
    std::string makeArgument();

    CodeWords words_;
    Random random_;
    MachineInput input_;
    MachineInput other_;
    CodeItems items_;
    CodeItems otherItems_;
};
