// What one token, one lookup and one item of target code cost.

#include "qyx_files.h"
#include "qyx_functions.h"
#include "qyx_il.h"
#include "qyx_lists.h"
#include "qyx_scanner.h"

#include <benchmark/benchmark.h>

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <utility>
#include <vector>

namespace {

constexpr QLatin1String SOURCE_LINES =
    "    // level and flow of the tank\n"
    "    IF (tankLevel12 >= 16#3F) AND NOT pumpReady7 THEN\n"
    "        valveFlow3 := valveFlow3 + burnerLoad81 * 0.25 - (mixerSpeed5 MOD 90);\n"
    "        boilerState9 := (tankLevel12 SHL 2) + 1250;\n"
    "    ELSIF sqrt(lineRatio4) <> 17.5 THEN\n"
    "        pumpReady7 := FALSE;\n"
    "    END_IF;\n"_L1;
constexpr int SOURCE_REPETITIONS = 1000;

// Files of the benchmarks lie in a folder that vanishes at the end.
QString FileIn(QLatin1String name) {
    static const QTemporaryDir folder;
    return folder.filePath(name);
}

QString WriteSource() {
    const QByteArray lines(SOURCE_LINES.data(), SOURCE_LINES.size());
    QFile file(FileIn("source"_L1));
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(lines.repeated(SOURCE_REPETITIONS) + "END_PROGRAM\n") < 0) {
        std::exit(EXIT_FAILURE);
    }
    return file.fileName();
}

// All tokens of a source, comments among them; the time is that of the whole source.
void BM_Scan(benchmark::State& state) {
    const QString source = WriteSource();
    FunctionsList.clear();
    AddBuildInFunctions(FunctionsList);
    std::int64_t tokens = 0;
    for ([[maybe_unused]] auto iteration : state) {
        state.PauseTiming();
        CloseInputCodeFile();
        ReadInputCodeFile(source);
        OpenInputCodeFile();
        GetChar();
        SkipWhite();
        state.ResumeTiming();
        do {
            benchmark::DoNotOptimize(Scan());
            ++tokens;
        } while (TokenChar != TOKEN_END_PROGRAM);
    }
    CloseInputCodeFile();
    state.SetItemsProcessed(tokens);
}
BENCHMARK(BM_Scan)->Unit(benchmark::kMicrosecond);

std::vector<QString> ShuffledNames(std::int64_t count) {
    std::vector<QString> names;
    for (std::int64_t i = 0; i < count; ++i) {
        names.push_back(QStringLiteral("tankLevel%1").arg(i));
    }
    std::shuffle(names.begin(), names.end(), std::minstd_rand());
    return names;
}

// The record of a word that was seen before, one of that many.
void BM_Spelling(benchmark::State& state) {
    const std::vector<QString> names = ShuffledNames(state.range(0));
    std::size_t next = 0;
    for ([[maybe_unused]] auto iteration : state) {
        benchmark::DoNotOptimize(&SpellingOf(names[next]));
        next = (next + 1) % names.size();
    }
}
BENCHMARK(BM_Spelling)->Arg(100)->Arg(10'000);

// A variable by the record of its name, one of that many.
void BM_LookupVariable(benchmark::State& state) {
    VarsList variables;
    std::vector<const Spelling*> spellings;
    for (const QString& name : ShuffledNames(state.range(0))) {
        VarItem item;
        item.spelling = &SpellingOf(name);
        item.type = TYP_INT;
        AddVarToVarsList(variables, std::move(item));
        spellings.push_back(&SpellingOf(name));
    }
    std::shuffle(spellings.begin(), spellings.end(), std::minstd_rand());
    std::size_t next = 0;
    for ([[maybe_unused]] auto iteration : state) {
        benchmark::DoNotOptimize(&IsVarInVarsList(variables, *spellings[next]));
        next = (next + 1) % spellings.size();
    }
}
BENCHMARK(BM_LookupVariable)->Arg(100)->Arg(10'000);

// Writes items to a code file; the file's blocks are part of the cost.
template <typename EmitItem>
void MeasureItem(benchmark::State& state, const EmitItem& emitItem) {
    OpenOutputCodeFile(FileIn("code"_L1));
    for ([[maybe_unused]] auto iteration : state) {
        emitItem();
    }
    CloseOutputCodeFile();
    DeleteOutputCodeFile();
    state.SetItemsProcessed(state.iterations());
}

// Keeps the code file at some tens of megabytes.
constexpr int ITEMS = 2'000'000;

// "MOV @tankLevel12 #A0"
void BM_WriteLoad(benchmark::State& state) {
    const VarItem variable;
    const Spelling& name = SpellingOf(QStringLiteral("tankLevel12"));
    MeasureItem(state, [&] { EmitLoad(OperandOf(variable, name)); });
}
BENCHMARK(BM_WriteLoad)->Iterations(ITEMS);

// "MOV #A0 $PUSH"
void BM_WritePush(benchmark::State& state) {
    MeasureItem(state, EmitPush);
}
BENCHMARK(BM_WritePush)->Iterations(ITEMS);

}  // namespace
