#include "machine/coverage.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <set>
#include <utility>

namespace {

// The instructions of an END_ belong to what it ends.
bool IsAtEnd(const Source& source, const Facts& facts, int place) {
    return source.text(TokenAt(facts, place))
        .startsWith(QLatin1String("END_"), Qt::CaseInsensitive);
}

LineCoverage& LineAt(std::map<int, LineCoverage>& lines, int line) {
    return lines.try_emplace(line, LineCoverage{line}).first->second;
}

void Add(LineCoverage& line, qint64 count) {
    ++line.statements;
    line.executed += count > 0 ? 1 : 0;
    line.count = std::max(line.count, count);
}

int Sum(const std::vector<LineCoverage>& lines, int LineCoverage::*part) {
    return std::accumulate(
        lines.begin(), lines.end(), 0,
        [part](int sum, const LineCoverage& line) { return sum + line.*part; });
}

}  // namespace

int Coverage::statements() const {
    return Sum(lines, &LineCoverage::statements);
}

int Coverage::executed() const {
    return Sum(lines, &LineCoverage::executed);
}

// The first instruction of a statement, or of a part of it on a line of its own, is executed as
// often as that is.
Coverage CoverageOf(const Source& source, const Facts& facts, const Code& code,
                    const std::vector<qint64>& executions) {
    std::map<int, LineCoverage> lines;
    std::set<std::pair<int, int>> seen;
    for (std::size_t index = 0; index < code.instructions.size(); ++index) {
        const auto item = static_cast<std::size_t>(code.instructions[index].item) - 1;
        const ItemFact& fact = facts.items[item];
        const int line = source.placeOf(fact.place).line;
        if (fact.statement != NONE && !IsAtEnd(source, facts, fact.place) &&
            seen.insert({fact.statement, line}).second) {
            Add(LineAt(lines, line), executions[index]);
        }
    }
    Coverage coverage;
    for (const auto& [number, line] : lines) {
        coverage.lines.push_back(line);
    }
    return coverage;
}
