#include <benchmark/benchmark.h>

#include "bench/crypto/Contest.hpp"

namespace Contest {

namespace {

/// 16 MiB, as large flash images are. Start-up costs do not count, and no first-level cache holds
/// it.
Bytes message() {
    static const Value bytes = [] {
        Value made(std::size_t{16} << 20U);
        std::uint32_t x = 1;
        for (std::uint8_t& byte : made) {
            x = x * 1664525U + 1013904223U;
            byte = static_cast<std::uint8_t>(x >> 24U);
        }
        return made;
    }();
    return bytes;
}

void run(benchmark::State& state, const Entrant& entrant, const Entrant& first) {
    const Value expected = first.compute(message().first(100'000));
    if (entrant.compute(message().first(100'000)) != expected) {
        state.SkipWithError("the value differs");
        return;
    }
    for ([[maybe_unused]] const auto iteration : state)
        benchmark::DoNotOptimize(entrant.compute(message()));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(message().size()));
}

}  // namespace

void enter(const std::string& algorithm, const std::vector<Entrant>& entrants) {
    for (const Entrant& entrant : entrants)
        benchmark::RegisterBenchmark((algorithm + '/' + entrant.library).c_str(), run, entrant,
                                     entrants.front())
            ->Unit(benchmark::kMillisecond);
}

}  // namespace Contest

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    Contest::enterHashes();
    Contest::enterCrcs();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
