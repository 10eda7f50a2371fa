#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "buffer/MemoryBuffer.hpp"

namespace {

using Buffer::MemoryBuffer;
using Buffer::MemoryElement;

constexpr std::uint64_t imageSize = std::uint64_t{1} << 20U;

void countBytes(benchmark::State& state) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * imageSize));
}

/// The pattern has `state.range(0)` elements.
void fillWithFiller(benchmark::State& state) {
    MemoryBuffer image(0, imageSize);
    const std::vector<MemoryElement> pattern(static_cast<std::size_t>(state.range(0)),
                                             MemoryElement{0, 0xFF, 0});
    for (auto _ : state) image.fillMemory(pattern, 0, imageSize);
    countBytes(state);
}
BENCHMARK(fillWithFiller)->Arg(1)->Arg(4)->Arg(imageSize);

void extract(benchmark::State& state) {
    MemoryBuffer image(0, imageSize);
    image.overlayBytes(std::vector<std::uint8_t>(imageSize / 2, 0x5A), 0);
    for (auto _ : state) benchmark::DoNotOptimize(image.extractMemory(0, imageSize));
    countBytes(state);
}
BENCHMARK(extract);

void overlay(benchmark::State& state) {
    MemoryBuffer image(0, imageSize);
    const MemoryBuffer other(0, imageSize);
    for (auto _ : state) image.overlay(other);
    countBytes(state);
}
BENCHMARK(overlay);

void overlayBytes(benchmark::State& state) {
    MemoryBuffer image(0, imageSize);
    const std::vector<std::uint8_t> bytes(imageSize, 0x5A);
    for (auto _ : state) image.overlayBytes(bytes, 0);
    countBytes(state);
}
BENCHMARK(overlayBytes);

void appendBytes(benchmark::State& state) {
    const MemoryBuffer image(0, imageSize);
    std::vector<std::uint8_t> bytes;
    for (auto _ : state) {
        bytes.clear();
        image.appendBytes(bytes, 0, imageSize);
        benchmark::DoNotOptimize(bytes.data());
    }
    countBytes(state);
}
BENCHMARK(appendBytes);

}  // namespace
