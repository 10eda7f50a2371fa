// The readers of the three input formats: every question of their interface, asked in different
// ways that must agree, and what they read written and read again.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <variant>
#include <vector>

#include "facts/Listener.hpp"
#include "fuzz/Check.hpp"
#include "fuzz/PlatformInMemory.hpp"
#include "io/export/IntelHexOutFile.hpp"
#include "io/export/MotorolaS_OutFile.hpp"
#include "io/import/GenericInFile.hpp"
#include "io/import/IntelHexInFile.hpp"
#include "io/import/MotorolaS_InFile.hpp"

namespace {

using Buffer::Area;
using Buffer::AreaList;
using Buffer::MemoryBuffer;
using Buffer::MemoryElement;
using Fuzz::check;
using Io::Import::GenericInFile;
using Io::Import::InFileType;

constexpr const char* inputPath = "input";
constexpr const char* outputPath = "output";

/// What a file holds: addresses, ascending, with their bytes.
using Contents = std::vector<std::pair<std::uint64_t, std::uint8_t>>;

constexpr std::uint64_t addressSpaceEnd = 0x100000000;
/// Longest range that is looked at element by element: a record and a little more. Most of the time
/// is spent on that.
constexpr std::uint64_t longestWindow = 0x120;

std::uint64_t endOf(const Area& area) {
    return area.start + area.length;
}

/// A run begins after the previous one, or at its last address if the file has that one twice.
void checkAreas(const AreaList& areas) {
    for (std::size_t i = 0; i < areas.size(); ++i) {
        check(areas[i].length > 0, "a run has addresses");
        if (i == 0) continue;
        const std::uint64_t end = endOf(areas[i - 1]);
        check(areas[i].start > end || areas[i].start == end - 1, "runs ascend");
    }
}

/// Reads run by run.
Contents contentsOf(const GenericInFile& file, const AreaList& areas) {
    Contents contents;
    for (const Area& area : areas) {
        const MemoryBuffer image = file.getMemory(area.start, area.length);
        check(image.getStartAddress() == area.start && image.getDataLength() == area.length,
              "an image has the range that was asked for");
        for (std::uint64_t i = 0; i < area.length; ++i) {
            const MemoryElement element = image.viewElements()[i];
            check(element == MemoryElement{element.value, 0, 1}, "a run has data everywhere");
            // Only the last address of the run before can come again.
            if (contents.empty() || contents.back().first != area.start + i)
                contents.emplace_back(area.start + i, element.value);
            check(contents.back().second == element.value, "an address has one value");
        }
    }
    return contents;
}

/// The elements of `range`. They are found together: a search for each takes most of the time.
std::vector<MemoryElement> expectedIn(const Contents& contents, const Area& range) {
    std::vector<MemoryElement> elements(range.length);
    auto entry = std::ranges::lower_bound(contents, range.start, {}, &Contents::value_type::first);
    for (; entry != contents.end() && entry->first < endOf(range); ++entry)
        elements[entry->first - range.start] = {entry->second, 0, 1};
    return elements;
}

void checkGetMemory(const GenericInFile& file, const Contents& contents, const Area& range) {
    const MemoryBuffer image = file.getMemory(range.start, range.length);
    check(image.getStartAddress() == range.start && image.getDataLength() == range.length,
          "an image has the range that was asked for");
    check(image.getElements() == expectedIn(contents, range),
          "an image holds what the file has there");
}

/// An image in which elements of all kinds lie side by side.
MemoryBuffer motley(const Area& range) {
    std::vector<MemoryElement> fillers;
    std::vector<MemoryElement> values;
    fillers.reserve(range.length);
    values.reserve(range.length);
    for (std::uint64_t i = 0; i < range.length; ++i) {
        fillers.push_back({0, static_cast<std::uint8_t>(i % 3 * 0x11), 0});
        values.push_back(i % 2 == 0 ? MemoryElement{0x55, 0, 1} : fillers.back());
    }
    MemoryBuffer image(range.start, range.length);
    if (range.length == 0) return image;
    image.fillMemory(fillers, range.start, range.length);
    image.fillMemory(values, range.start, range.length);
    return image;
}

void checkFill(const GenericInFile& file, const Contents& contents, const Area& range) {
    const std::uint64_t fileEnd = file.getMinAddress() + file.getDataLength();
    // A file without data counts as one that reaches over address 0, but not one of raw bytes.
    const bool isEmptyText = contents.empty() && file.type() != InFileType::RawBinary;
    const bool isTaken =
        range.start >= file.getMinAddress() && endOf(range) <= fileEnd + (isEmptyText ? 1 : 0);
    const MemoryBuffer before = motley(range);
    MemoryBuffer after = before;
    file.fillMemoryBuffer(after);
    const std::vector<MemoryElement> wanted = expectedIn(contents, range);
    for (std::uint64_t i = 0; i < range.length; ++i) {
        MemoryElement expected = before.viewElements()[i];
        if (isTaken) {
            const MemoryElement data = wanted[i];
            if (data.hasValue != 0)
                expected = {data.value, expected.filler, 1};
            else
                expected.filler = 0;
        }
        check(after.viewElements()[i] == expected, "a filled image has what the file has there");
    }
}

void checkRange(const GenericInFile& file, const Contents& contents, const Area& range) {
    if (range.length > longestWindow || range.start + range.length < range.start) return;
    checkFill(file, contents, range);
    if (range.length == 0 || range.start >= file.getMinAddress()) {
        checkGetMemory(file, contents, range);
        return;
    }
    const MemoryBuffer refused = file.getMemory(range.start, range.length);
    check(refused.getStartAddress() == 0 && refused.getDataLength() == 0,
          "a range in front of the data is refused");
}

/// Ranges around the ends of the runs, and around those of the file.
void checkRanges(const GenericInFile& file, const Contents& contents, AreaList areas) {
    constexpr std::size_t mostAreas = 8;
    constexpr std::uint64_t slack = 3;
    if (areas.size() > mostAreas)
        areas.erase(areas.begin() + mostAreas / 2, areas.end() - mostAreas / 2);
    const Area whole{file.getMinAddress(), file.getDataLength()};
    areas.push_back(whole);
    for (const Area& area : areas) {
        const std::uint64_t before = area.start - std::min(area.start, slack);
        const std::uint64_t end = endOf(area);
        checkRange(file, contents, area);
        checkRange(file, contents, {area.start, area.length + slack});
        checkRange(file, contents, {before, end - before});
        checkRange(file, contents, {area.start, area.length / 2});
        checkRange(file, contents, {area.start + area.length / 2, area.length - area.length / 2});
        checkRange(file, contents, {end, slack});
        checkRange(file, contents, {end - std::min(end, slack), 2 * slack});
        checkRange(file, contents, {before, 0});
    }
    if (whole.length <= longestWindow)
        check(file.getMemory().getElements() ==
                  file.getMemory(whole.start, whole.length).getElements(),
              "the whole image is that of the whole span");
}

void checkSpan(const GenericInFile& file, const AreaList& areas) {
    constexpr std::uint64_t mostElements = 0xFFFFFFFF;
    check(file.hasStartAddress() || file.getStartAddress() == 0, "no start address reads as 0");
    const std::uint64_t start = areas.empty() ? 0 : areas.front().start;
    std::uint64_t end = areas.empty() ? 0 : endOf(areas.back());
    if (file.type() == InFileType::MotorolaS) end = std::min(end, start + mostElements);
    check(file.getMinAddress() == start, "the data begins where its first run does");
    check(file.getMinAddress() + file.getDataLength() == end,
          "the data ends where its last run does");
}

template <class Writer, class Style>
void checkWritten(const std::vector<MemoryBuffer>& images, const Contents& contents,
                  const Style& style, InFileType type) {
    Writer writer(outputPath, style);
    for (const MemoryBuffer& image : images) writer.insertMemoryBuffer(image);
    writer.saveToFile();
    const GenericInFile again(outputPath);
    check(again.type() == type, "a written file is of its own format");
    check(contentsOf(again, again.getDataAreas()) == contents, "what is written is read again");
}

/// What was read goes out in every format that has addresses, and comes in again.
void checkRoundTrips(const GenericInFile& file, const Contents& contents, const AreaList& areas,
                     std::uint32_t recordLength) {
    constexpr std::uint64_t segmentEnd = 0x100000;
    using namespace Io::Export;
    if (!areas.empty() && endOf(areas.back()) > addressSpaceEnd) return;
    std::vector<MemoryBuffer> images;
    for (const Area& area : areas) images.push_back(file.getMemory(area.start, area.length));
    checkWritten<IntelHexOutFile>(images, contents, IntelHexOutputStyle{false, recordLength},
                                  InFileType::IntelHex);
    if (areas.empty() || endOf(areas.back()) <= segmentEnd)
        checkWritten<IntelHexOutFile>(images, contents, IntelHexOutputStyle{true, recordLength},
                                      InFileType::IntelHex);
    MotorolaSOutputStyle style;
    style.maximumRecordSize = recordLength;
    checkWritten<MotorolaS_OutFile>(images, contents, style, InFileType::MotorolaS);
}

/// The facts that readers report, one after the other: which they are and the lines they show.
class Heard : public Facts::Listener {
public:
    void hear(const Facts::Fact& fact) override {
        facts_.push_back(static_cast<char>(fact.index()));
        if (const auto* const record = std::get_if<Facts::RecordContradictory>(&fact))
            facts_ += record->line;
        if (const auto* const line = std::get_if<Facts::LineNotARecord>(&fact))
            facts_ += line->line;
    }
    const std::string& facts() const { return facts_; }

private:
    std::string facts_;
};

/// What `Reader` answers about the input and what it reports on the way.
template <class Reader>
auto answersOf() {
    Heard heard;
    const Facts::ListenerScope scope(heard);
    const Reader reader(inputPath);
    return std::tuple(reader.getDataAreas(), reader.getMinAddress(), reader.getDataLength(),
                      reader.hasStartAddress(), reader.getStartAddress(), heard.facts());
}

/// A file whose format is detected on the way is read as one whose format is known.
void checkAtOnce(const GenericInFile& file) {
    const auto direct = file.type() == InFileType::IntelHex
                            ? answersOf<Io::Import::IntelHexInFile>()
                            : answersOf<Io::Import::MotorolaS_InFile>();
    check(answersOf<GenericInFile>() == direct, "the pass that detects the format reads the same");
    if (file.getDataLength() > longestWindow) return;
    check(GenericInFile(inputPath).takeMemory().getElements() == file.getMemory().getElements(),
          "an image that is taken is the one that is given");
}

void checkText(const GenericInFile& file, std::uint32_t recordLength) {
    checkAtOnce(file);
    const AreaList areas = file.getDataAreas();
    checkAreas(areas);
    checkSpan(file, areas);
    const Contents contents = contentsOf(file, areas);
    checkRanges(file, contents, areas);
    checkRoundTrips(file, contents, areas, recordLength);
}

/// Byte n of a file of raw bytes has the address n.
Contents contentsOf(std::string_view bytes) {
    Contents contents;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        contents.emplace_back(i, static_cast<std::uint8_t>(bytes[i]));
    return contents;
}

void checkRaw(const GenericInFile& file, std::string_view bytes) {
    const AreaList areas = file.getDataAreas();
    check(areas == AreaList{{0, bytes.size()}}, "raw bytes are one run");
    checkSpan(file, areas);
    checkRanges(file, contentsOf(bytes), areas);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > Fuzz::Machine::mostInput) return 0;
    Fuzz::Machine machine;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    machine.addFile(inputPath, bytes);
    const GenericInFile file(inputPath);
    // A part of the input that sets the length of records would make the files unreadable.
    if (file.type() == InFileType::RawBinary)
        checkRaw(file, bytes);
    else
        checkText(file, static_cast<std::uint32_t>(size % 256));
    const GenericInFile raw(inputPath, Io::Import::rawBinary);
    check(raw.type() == InFileType::RawBinary, "raw bytes are what they were said to be");
    check(contentsOf(raw, raw.getDataAreas()) == contentsOf(bytes),
          "raw bytes are those of the file");
    return 0;
}
