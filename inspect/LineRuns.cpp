#include "inspect/LineRuns.hpp"

#include <algorithm>
#include <utility>

#include "io/InFile.hpp"
#include "io/formats/InputFormats.hpp"

namespace Inspect {

namespace {

/// Collects the lines that have data.
class Collector final : public Io::Import::RecordVisitor {
public:
    void visit(const Io::Import::RecordLines& records) override {
        if (records.size == 0) return;
        const Buffer::Area area{records.address, records.count * records.size};
        if (!extend(records, area)) runs_.push_back({area, records.firstLine, records.size});
    }

    std::vector<LineRun> takeRuns() { return std::move(runs_); }

private:
    /// Lets lines that go on where the last run ends, and have as many bytes as its lines, belong
    /// to it. A shorter one does so as its last line.
    bool extend(const Io::Import::RecordLines& records, const Buffer::Area& area) {
        if (runs_.empty()) return false;
        LineRun& run = runs_.back();
        const std::uint64_t lines = run.area.length / run.bytesPerLine;
        const bool isNext = area.start == run.area.end() &&
                            records.firstLine == run.firstLine + lines &&
                            run.area.length % run.bytesPerLine == 0;
        const bool fits = records.size == run.bytesPerLine ||
                          (records.count == 1 && records.size < run.bytesPerLine);
        if (!isNext || !fits) return false;
        run.area.length += area.length;
        return true;
    }

    std::vector<LineRun> runs_;
};

}  // namespace

std::vector<LineRun> lineRunsOf(const std::string& path, Facts::InputFormat format,
                                std::uint32_t addressUnit) {
    Collector collector;
    if (const auto walk = Io::Formats::rowOf(format).walk)
        walk(path, Io::openInput(path), addressUnit, collector);
    return collector.takeRuns();
}

std::vector<std::uint64_t> linesAt(const std::vector<LineRun>& runs, std::uint64_t address) {
    std::vector<std::uint64_t> lines;
    for (const LineRun& run : runs)
        if (run.area.contains({address, 1}))
            lines.push_back(run.firstLine + (address - run.area.start) / run.bytesPerLine);
    return lines;
}

std::uint64_t lineAt(std::span<const LineRun> runs, std::uint64_t address, std::uint64_t firstLine,
                     std::uint64_t lastLine) {
    // Runs are in the order of the file, and the first line may lie within one of them.
    auto run = std::ranges::upper_bound(runs, firstLine, {}, &LineRun::firstLine);
    if (run != runs.begin()) --run;
    for (; run != runs.end() && run->firstLine <= lastLine; ++run) {
        const std::uint64_t line = run->firstLine + (address - run->area.start) / run->bytesPerLine;
        const bool isIn = run->area.contains({address, 1}) && line >= firstLine && line <= lastLine;
        if (isIn) return line;
    }
    return 0;
}

}  // namespace Inspect
