#include <benchmark/benchmark.h>

#include <map>
#include <string>

#include "parser/ScriptParser.hpp"
#include "parser/text/Preparation.hpp"
#include "parser/text/VariableExpansion.hpp"

namespace {

/// A script of `statements` statements of several kinds.
std::string scriptOf(std::int64_t statements) {
    std::string script;
    for (std::int64_t number = 0; number < statements; number += 4) {
        const std::string name = std::to_string(number);
        script += "NEW_BUFFER @B" + name + " FROM_FILE inFile -useAreas={{0x08000000, 0x20000}}\n";
        script += "NEW_CRC @C" + name + " FROM_BUFFER @B" + name + " -setType=Crc32_Standard\n";
        script +=
            "FILL_BUFFER @B" + name + " WITH_CRC @C" + name + " -useAreas={{4 * (2 + 3), 4}}\n";
        script += "PRINT_TEXT {number [" + name + " + 1]} // as a remark\n";
    }
    return script;
}

/// The time for a statement must not depend on their number.
void parse(benchmark::State& state) {
    std::string script = scriptOf(state.range(0));
    Parser::removeComments(script);
    for (auto _ : state) {
        Parser::ScriptParser parser;
        if (!parser.parseScript(script).full) state.SkipWithError("the script is not parsed");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(parse)
    ->Arg(1)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Complexity(benchmark::oN)
    ->Unit(benchmark::kMillisecond);

void prepare(benchmark::State& state) {
    const std::string script = scriptOf(state.range(0));
    for (auto _ : state) {
        std::string text = script;
        std::map<std::string, std::string> variables{{"inFile", "firmware.hex"}};
        Parser::removeComments(text);
        Parser::takeSubstitutions(text, variables);
        Parser::expandVariables(text, variables);
        benchmark::DoNotOptimize(text.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(prepare)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

void calculate(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(Parser::calculated("length [0x100 + 4] bytes"));
}
BENCHMARK(calculate);

}  // namespace
