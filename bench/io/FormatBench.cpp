#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "buffer/MemoryBuffer.hpp"
#include "io/export/EmbeddedC_AssemblerOutFile.hpp"
#include "io/export/IntelHexOutFile.hpp"
#include "io/export/MotorolaS_OutFile.hpp"
#include "io/export/RawBinaryOutFile.hpp"
#include "io/import/GenericInFile.hpp"

/// Bytes a second are those of the image, whatever the file makes of them.
namespace {

using Buffer::MemoryBuffer;

/// An image of `mebibytes` whose bytes have no pattern.
MemoryBuffer imageOf(std::int64_t mebibytes) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(mebibytes) << 20U);
    std::uint32_t state = 1;
    for (std::uint8_t& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<std::uint8_t>(state >> 24U);
    }
    MemoryBuffer image(0x08000000, bytes.size());
    image.overlayBytes(bytes, 0x08000000);
    return image;
}

std::string filePath() {
    return (std::filesystem::temp_directory_path() / "tessaron-format-bench").string();
}

using Save = std::function<void(const MemoryBuffer&)>;

template <class Writer, class... Style>
Save saving(Style... style) {
    return [=](const MemoryBuffer& image) {
        Writer writer(filePath(), style...);
        writer.insertMemoryBuffer(image);
        writer.saveToFile();
    };
}

void countBytes(benchmark::State& state) {
    state.SetBytesProcessed(state.iterations() * (state.range(0) << 20U));
}

void write(benchmark::State& state, const Save& save) {
    const MemoryBuffer image = imageOf(state.range(0));
    for (auto _ : state) save(image);
    countBytes(state);
    std::filesystem::remove(filePath());
}

void read(benchmark::State& state, const Save& save) {
    save(imageOf(state.range(0)));
    for (auto _ : state) {
        const Io::Import::GenericInFile file(filePath());
        benchmark::DoNotOptimize(file.getMemory());
    }
    countBytes(state);
    std::filesystem::remove(filePath());
}

void registerAll() {
    using namespace Io::Export;
    MotorolaSOutputStyle longest;
    longest.maximumRecordSize = 32;
    const Save intelHex = saving<IntelHexOutFile>(IntelHexOutputStyle{});
    const Save motorola = saving<MotorolaS_OutFile>(longest);
    const Save raw = saving<RawBinaryOutFile>();
    const Save embedded = saving<EmbeddedC_AssemblerOutFile>(EmbeddedOutputStyle{});
    const auto add = [](const char* name, auto work, const Save& save) {
        benchmark::RegisterBenchmark(name, work, save)
            ->Arg(1)
            ->Arg(16)
            ->Unit(benchmark::kMillisecond);
    };
    add("write Intel HEX", write, intelHex);
    add("read Intel HEX", read, intelHex);
    add("write S-records", write, motorola);
    add("read S-records", read, motorola);
    add("write raw binary", write, raw);
    add("read raw binary", read, raw);
    add("write assembler text", write, embedded);
}

}  // namespace

int main(int argumentCount, char** arguments) {
    benchmark::Initialize(&argumentCount, arguments);
    registerAll();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
