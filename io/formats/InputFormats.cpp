#include "io/formats/InputFormats.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <utility>

#include "io/field/FieldInFile.hpp"
#include "io/import/RawBinaryInFile.hpp"
#include "io/import/dfuse/DfuSeInFile.hpp"
#include "io/import/elf/ElfInFile.hpp"
#include "io/import/titxt/TiTxtInFile.hpp"
#include "io/import/uf2/Uf2InFile.hpp"
#include "io/import/vmem/VmemInFile.hpp"

namespace Io::Formats {

namespace {

using Facts::InputFormat;
using Import::ReadOptions;
using Import::RecordVisitor;
using Import::TessaronImportApi;
using Platform::InputFile;
using Pointer = std::unique_ptr<TessaronImportApi>;

template <InputFormat format>
Pointer openRecords(const std::string& path, InputFile file, const ReadOptions& options,
                    RecordVisitor* visitor) {
    auto reader =
        std::make_unique<Field::FieldInFile>(path, std::move(file), format, options, visitor);
    return reader->isDamaged() ? nullptr : std::move(reader);
}

template <InputFormat format>
void walkRecords(const std::string& path, InputFile file, std::uint32_t addressUnit,
                 RecordVisitor& visitor) {
    Field::walkRecords(path, std::move(file), format, addressUnit, visitor);
}

/// Reads a file of a format that has no lines.
template <class Reader>
Pointer openBinary(const std::string& path, InputFile file, const ReadOptions& /*options*/,
                   RecordVisitor* /*visitor*/) {
    return std::make_unique<Reader>(path, std::move(file));
}

Pointer openUf2(const std::string& path, InputFile file, const ReadOptions& options,
                RecordVisitor* /*visitor*/) {
    return std::make_unique<Import::Uf2InFile>(path, std::move(file), options.family);
}

Pointer openElf(const std::string& path, InputFile file, const ReadOptions& options,
                RecordVisitor* /*visitor*/) {
    return std::make_unique<Import::ElfInFile>(path, std::move(file), options.addressUnit);
}

Pointer openElfSections(const std::string& path, InputFile file, const ReadOptions& options,
                        const Import::SectionChoice& choice) {
    return std::make_unique<Import::ElfInFile>(path, std::move(file), options.addressUnit, choice);
}

Pointer openTiTxt(const std::string& path, InputFile file, const ReadOptions& options,
                  RecordVisitor* visitor) {
    return std::make_unique<Import::TiTxtInFile>(path, std::move(file), visitor,
                                                 options.addressUnit);
}

void walkTiTxt(const std::string& path, InputFile file, std::uint32_t addressUnit,
               RecordVisitor& visitor) {
    const Import::TiTxtInFile walked(path, std::move(file), &visitor, addressUnit);
}

Pointer openVmem(const std::string& path, InputFile file, const ReadOptions& /*options*/,
                 RecordVisitor* visitor) {
    return std::make_unique<Import::VmemInFile>(path, std::move(file), visitor);
}

void walkVmem(const std::string& path, InputFile file, std::uint32_t /*addressUnit*/,
              RecordVisitor& visitor) {
    const Import::VmemInFile walked(path, std::move(file), &visitor);
}

constexpr auto hexEndings = std::to_array<std::string_view>({".hex", ".ihx", ".ihex"});
constexpr auto sRecordEndings =
    std::to_array<std::string_view>({".mot", ".s19", ".s28", ".s37", ".srec", ".sre"});
constexpr auto rawEndings = std::to_array<std::string_view>({".bin", ".raw", ".img"});
constexpr auto elfEndings = std::to_array<std::string_view>({".elf", ".axf"});
constexpr auto sharedElfEndings = std::to_array<std::string_view>({".out"});
constexpr auto uf2Endings = std::to_array<std::string_view>({".uf2"});
constexpr auto sharedTiTxtEndings = std::to_array<std::string_view>({".txt"});
constexpr auto vmemEndings = std::to_array<std::string_view>({".vmem"});
constexpr auto dfuSeEndings = std::to_array<std::string_view>({".dfu"});

constexpr auto hexKinds = std::to_array<std::string_view>(
    {"data", "end of file", "extended segment address", "start segment address",
     "extended linear address", "start linear address"});
constexpr auto sRecordKinds =
    std::to_array<std::string_view>({"S0 header", "S1 data", "S2 data", "S3 data", "S4", "S5 count",
                                     "S6 count", "S7 end", "S8 end", "S9 end"});

constexpr std::array<InputFormatRow, Facts::inputFormatCount> rows{{
    {.format = InputFormat::IntelHex,
     .name = "Intel HEX",
     .word = "IntelHex",
     .endings = hexEndings,
     .startAddress = StartAddress::Optional,
     .mayCountWords = true,
     .open = &openRecords<InputFormat::IntelHex>,
     .walk = &walkRecords<InputFormat::IntelHex>,
     .recordKinds = hexKinds},
    {.format = InputFormat::MotorolaS,
     .name = "S-records",
     .word = "MotorolaS",
     .endings = sRecordEndings,
     .startAddress = StartAddress::Always,
     .mayCountWords = true,
     .open = &openRecords<InputFormat::MotorolaS>,
     .walk = &walkRecords<InputFormat::MotorolaS>,
     .recordKinds = sRecordKinds},
    {.format = InputFormat::RawBinary,
     .name = "raw bytes",
     .word = "RawBinary",
     .keyword = "FROM_FILE_BINARY",
     .trace = "SetRawFileAsSource -> ",
     .endings = rawEndings,
     .open = &openBinary<Import::RawBinaryInFile>},
    {.format = InputFormat::Elf,
     .name = "ELF",
     .word = "Elf",
     .keyword = "FROM_ELF",
     .trace = "SetElfFileAsSource -> ",
     .endings = elfEndings,
     .sharedEndings = sharedElfEndings,
     .startAddress = StartAddress::Always,
     .mayCountWords = true,
     .looksLike = &Import::ElfInFile::looksLike,
     .open = &openElf,
     .openSections = &openElfSections},
    {.format = InputFormat::Uf2,
     .name = "UF2",
     .word = "Uf2",
     .keyword = "FROM_UF2",
     .trace = "SetUf2FileAsSource -> ",
     .endings = uf2Endings,
     .hasFamilies = true,
     .looksLike = &Import::Uf2InFile::looksLike,
     .open = &openUf2},
    {.format = InputFormat::TiTxt,
     .name = "TI-TXT",
     .word = "TiTxt",
     .keyword = "FROM_TI_TXT",
     .trace = "SetTiTxtFileAsSource -> ",
     .sharedEndings = sharedTiTxtEndings,
     .mayCountWords = true,
     .looksLike = &Import::TiTxtInFile::looksLike,
     .open = &openTiTxt,
     .walk = &walkTiTxt},
    {.format = InputFormat::Vmem,
     .name = "VMEM",
     .word = "Vmem",
     .keyword = "FROM_VMEM",
     .trace = "SetVmemFileAsSource -> ",
     .endings = vmemEndings,
     .looksLike = &Import::VmemInFile::looksLike,
     .open = &openVmem,
     .walk = &walkVmem},
    {.format = InputFormat::DfuSe,
     .name = "DfuSe",
     .word = "DfuSe",
     .keyword = "FROM_DFUSE",
     .trace = "SetDfuSeFileAsSource -> ",
     .endings = dfuSeEndings,
     .looksLike = &Import::DfuSeInFile::looksLike,
     .open = &openBinary<Import::DfuSeInFile>},
}};

constexpr bool areInOrder() {
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (static_cast<std::size_t>(rows[i].format) != i || rows[i].name.empty() ||
            rows[i].word.empty())
            return false;
    return true;
}
static_assert(areInOrder(), "each format has a row, at the place of its number");

}  // namespace

std::span<const InputFormatRow> inputFormats() {
    return rows;
}

const InputFormatRow& rowOf(InputFormat format) {
    return rows[static_cast<std::size_t>(format)];
}

std::string_view sourceOf(const InputFormatRow& row) {
    return row.keyword == nullptr ? "FROM_FILE" : row.keyword;
}

bool isOfRecords(const InputFormatRow& row) {
    return row.keyword == nullptr;
}

const InputFormatRow* rowCalled(std::string_view text) {
    const auto lettersOf = [](std::string_view name) {
        std::string letters;
        for (const char c : name)
            if (std::isalnum(static_cast<unsigned char>(c)) != 0)
                letters += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        return letters;
    };
    const std::string letters = lettersOf(text);
    const auto* const found = std::ranges::find_if(rows, [&](const InputFormatRow& row) {
        return letters == lettersOf(row.word) || letters == lettersOf(row.name);
    });
    return found == rows.end() ? nullptr : found;
}

const InputFormatRow* rowByEnding(std::string_view path) {
    const auto* const found = std::ranges::find_if(rows, [path](const InputFormatRow& row) {
        return hasEnding(path, row.endings) || hasEnding(path, row.sharedEndings);
    });
    return found == rows.end() ? nullptr : found;
}

bool hasEnding(std::string_view path, std::span<const std::string_view> endings) {
    const auto isSame = [](char one, char other) {
        return std::tolower(static_cast<unsigned char>(one)) == other;
    };
    return std::ranges::any_of(endings, [&](std::string_view ending) {
        return path.size() >= ending.size() &&
               std::ranges::equal(path.substr(path.size() - ending.size()), ending, isSame);
    });
}

}  // namespace Io::Formats
