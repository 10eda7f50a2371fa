#include "inspect/LineRuns.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "io/InFile.hpp"
#include "io/field/FieldLines.hpp"
#include "util/Hex.hpp"

namespace Inspect {

namespace {

/// The bytes of a record's first fields, those in front of its data.
struct Head {
    std::array<std::uint8_t, 8> bytes{};
    bool isRead = false;

    /// The big-endian number of `count` bytes from `at` on.
    std::uint64_t number(std::size_t at, std::size_t count) const {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < count; ++i) value = value << 8U | bytes[at + i];
        return value;
    }
};

/// `count` bytes of two digits each from column `at` on.
Head headOf(std::string_view line, std::size_t at, std::size_t count) {
    Head head;
    head.isRead =
        line.size() >= at + 2 * count && Util::readHex(head.bytes.data(), line.data() + at, count);
    return head;
}

/// The area of the data record that `line` is, or an empty one. Keeps the base address in force.
class RecordAreas {
public:
    explicit RecordAreas(bool isIntel) : isIntel_(isIntel) {}

    Buffer::Area next(std::string_view line) { return isIntel_ ? intel(line) : motorola(line); }

private:
    Buffer::Area intel(std::string_view line) {
        const Head head = headOf(line, 1, 4);
        if (!line.starts_with(':') || !head.isRead) return {};
        const std::uint8_t type = head.bytes[3];
        if (type == 0) return {base_ + head.number(1, 2), head.bytes[0]};
        if (type == 2 || type == 4) {
            const Head address = headOf(line, 9, 2);
            base_ = address.number(0, 2) << (type == 2 ? 4U : 16U);
        }
        return {};
    }

    static Buffer::Area motorola(std::string_view line) {
        if (line.size() < 2 || line[0] != 'S' || line[1] < '1' || line[1] > '3') return {};
        const auto addressBytes = static_cast<std::size_t>(line[1] - '0') + 1;
        const Head head = headOf(line, 2, 1 + addressBytes);
        const std::size_t others = addressBytes + 1;
        if (!head.isRead || head.bytes[0] < others) return {};
        return {head.number(1, addressBytes), head.bytes[0] - others};
    }

    bool isIntel_;
    std::uint64_t base_ = 0;
};

/// Lets a line that goes on where the run ends, and has as many bytes as the lines before it,
/// belong to the run. A shorter one does so as its last line.
bool extend(LineRun& run, const Buffer::Area& area, std::uint64_t line) {
    const std::uint64_t lines = run.area.length / run.bytesPerLine;
    const bool isNext = area.start == run.area.end() && line == run.firstLine + lines &&
                        run.area.length % run.bytesPerLine == 0;
    if (!isNext || area.length > run.bytesPerLine) return false;
    run.area.length += area.length;
    return true;
}

}  // namespace

std::vector<LineRun> lineRunsOf(const std::string& path, const std::string& format) {
    std::vector<LineRun> runs;
    if (format != "Intel HEX" && format != "S-records") return runs;
    RecordAreas areas(format == "Intel HEX");
    for (Io::Field::FieldLines lines(Io::openInput(path)); lines.next();) {
        const Buffer::Area area = areas.next(lines.line());
        if (area.length == 0) continue;
        if (runs.empty() || !extend(runs.back(), area, lines.number()))
            runs.push_back({area, lines.number(), area.length});
    }
    return runs;
}

}  // namespace Inspect
