#include "io/export/MotorolaS_OutFile.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <optional>
#include <utility>

#include "facts/Listener.hpp"

namespace Io::Export {

namespace {

constexpr std::uint32_t smallestRecord = 21;
constexpr std::uint32_t largestRecord = 32;
constexpr std::size_t moduleNameLength = 10;
constexpr std::size_t descriptionLength = 18;
constexpr std::uint64_t highestAddress = 0xFFFFFFFF;
/// Data records that one count record counts.
constexpr std::uint32_t countedRecords = 65535;

void reportSize(std::uint32_t size, Facts::Bound bound, std::uint32_t allowed) {
    Facts::report(
        Facts::RecordLengthCorrected{Facts::OutputFormat::MotorolaS, size, bound, allowed});
}

/// Writes `value` to `field`, most significant byte first.
void putAddress(std::uint64_t value, std::span<std::uint8_t> field) {
    for (auto byte = field.rbegin(); byte != field.rend(); ++byte, value >>= 8U)
        *byte = static_cast<std::uint8_t>(value);
}

/// Bytes that `value` takes without leading zeros.
std::size_t bytesNeeded(std::uint64_t value) {
    return (static_cast<std::size_t>(std::bit_width(value)) + 7) / 8;
}

}  // namespace

MotorolaS_OutFile::MotorolaS_OutFile(std::string path, const MotorolaSOutputStyle& style)
    : TextOutFile(std::move(path)), outputStyle_(style) {
    std::uint32_t& size = outputStyle_.maximumRecordSize;
    if (size < smallestRecord) reportSize(size, Facts::Bound::Minimum, smallestRecord);
    if (size > largestRecord) reportSize(size, Facts::Bound::Maximum, largestRecord);
    size = std::clamp(size, smallestRecord, largestRecord);
    // The words that addresses count are short beside a record.
    size = wholeWords(size, outputStyle_.addressUnit);
    std::string& name = outputStyle_.moduleName;
    name.insert(0, moduleNameLength - std::min(moduleNameLength, name.size()), ' ');
    std::string& description = outputStyle_.description;
    description.resize(std::max(descriptionLength, description.size()), ' ');
}

void MotorolaS_OutFile::insert(const ImageView& image) {
    std::optional<std::uint64_t> end;
    forStretches(image, [&end](const ImageView& stretch) {
        end = stretch.startAddress + stretch.elements.size();
    });
    if (!end) return;
    *end /= outputStyle_.addressUnit;
    if (*end > highestAddress + 1) {
        Facts::report(Facts::ImageBeyondSRecords{highestAddress});
        return;
    }
    memoryBuffers_.push_back(image);
    // Four bytes reach every address of an image that ends with the address space.
    addressBytes_ = std::max(addressBytes_, bytesNeeded(std::min(*end, highestAddress)));
}

void MotorolaS_OutFile::setAddress(std::uint64_t value, SRecord& record) const {
    record.address.resize(std::max(addressBytes_, bytesNeeded(value)));
    putAddress(value, record.address);
}

void MotorolaS_OutFile::makeRecord(SRecordKind kind, std::uint64_t value, SRecord& record) const {
    constexpr std::array dataTypes{SRecordType::S1, SRecordType::S2, SRecordType::S3};
    constexpr std::array terminatorTypes{SRecordType::S9, SRecordType::S8, SRecordType::S7};
    setAddress(value, record);
    const std::size_t width = record.address.size();
    const auto& types = kind == SRecordKind::Data ? dataTypes : terminatorTypes;
    record.recordType = width <= 4 ? types[width - 2] : SRecordType::Unknown;
}

std::string MotorolaS_OutFile::getStringRepresentation(const SRecord& record) {
    if (record.recordType == SRecordType::Unknown) return {};
    const std::size_t length = sRecordLength(record.address.size() + record.data.size());
    std::string text(length + textSlack, '\0');
    writeSRecord(text.data(), record.recordType, record.address, record.data);
    text.resize(length);
    return text;
}

SRecord MotorolaS_OutFile::header() const {
    SRecord record{SRecordType::S0, {0, 0}, {}};
    if (const auto& text = outputStyle_.headerText) {
        record.data.assign(text->begin(), text->end());
        return record;
    }
    record.data.assign(outputStyle_.moduleName.begin(), outputStyle_.moduleName.end());
    record.data.push_back(outputStyle_.version);
    record.data.push_back(outputStyle_.revision);
    record.data.insert(record.data.end(), outputStyle_.description.begin(),
                       outputStyle_.description.end());
    return record;
}

void MotorolaS_OutFile::saveToFile() {
    const SRecord first = header();
    SRecord terminator;
    makeRecord(SRecordKind::Terminator, executionAddress_ / outputStyle_.addressUnit, terminator);
    // Room for every address beforehand: memory that runs out later would leave half a file.
    Progress progress;
    progress.data.address.reserve(sizeof(std::uint64_t));
    progress.count.address.reserve(sizeof(std::uint64_t));
    PieceWriter out = startOutput();
    writeRecord(out, first);
    for (const ImageView& image : memoryBuffers_)
        forStretches(image, [&](const ImageView& stretch) { writeImage(out, stretch, progress); });
    writeRecord(out, terminator);
    out.finish();
}

void MotorolaS_OutFile::writeRecord(PieceWriter& out, const SRecord& record) {
    if (record.recordType == SRecordType::Unknown) return;
    writeRecord(out, record, record.data);
}

void MotorolaS_OutFile::writeRecord(PieceWriter& out, const SRecord& head,
                                    std::span<const std::uint8_t> data) {
    char* const place = out.reserve(sRecordLength(head.address.size() + data.size()) + textSlack);
    out.commit(writeSRecord(place, head.recordType, head.address, data));
}

void MotorolaS_OutFile::writeImage(PieceWriter& out, const ImageView& image,
                                   Progress& progress) const {
    SRecord& record = progress.data;
    const std::uint32_t unit = outputStyle_.addressUnit;
    std::uint64_t address = image.startAddress / unit;
    makeRecord(SRecordKind::Data, address, record);
    const auto writeData = [&](std::span<const std::uint8_t> data) {
        putAddress(address, record.address);
        writeRecord(out, record, data);
        address += data.size() / unit;
        ++progress.uncounted;
    };
    // An image without elements gives one record without data.
    if (image.elements.empty()) writeData({});
    forEffectiveBytes(image.elements, outputStyle_.maximumRecordSize,
                      [&](std::span<const std::uint8_t> data) {
                          // Due only before a further byte: no file ends with a count.
                          if (progress.uncounted >= countedRecords) writeCount(out, progress);
                          writeData(data);
                      });
}

void MotorolaS_OutFile::writeCount(PieceWriter& out, Progress& progress) const {
    setAddress(progress.uncounted, progress.count);
    writeRecord(out, progress.count);
    progress.uncounted = 0;
}

}  // namespace Io::Export
