#include <algorithm>
#include <array>
#include <fstream>
#include <map>
#include <sstream>

#include "io/import/Malformed.hpp"
#include "io/import/elf/ElfInFile.hpp"
#include "io/import/elf/SymbolTable.hpp"
#include "tests/io/IoFixtures.hpp"

namespace {

using Facts::FormatFault;
using Io::Import::ElfFile;
using Io::Import::ElfInFile;

const std::string folder = TESSARON_TEST_DATA "/elf/";

using Bytes = std::map<std::uint64_t, std::uint8_t>;

/// The data of S3 records, each sound.
Bytes bytesOfRecords(const std::string& path) {
    Bytes bytes;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with("S3")) continue;
        const auto number = [&](std::size_t at, std::size_t digits) {
            return std::stoul(line.substr(at, digits), nullptr, 16);
        };
        const std::size_t count = number(2, 2) - 5;
        for (std::size_t i = 0; i < count; ++i)
            bytes[number(4, 8) + i] = static_cast<std::uint8_t>(number(12 + 2 * i, 2));
    }
    return bytes;
}

Bytes bytesOfImage(const ElfInFile& file) {
    Bytes bytes;
    for (const Buffer::Area& area : file.getDataAreas()) {
        const auto values = Tests::bytesOf(file.getMemory(area.start, area.length));
        for (std::size_t i = 0; i < values.size(); ++i) bytes[area.start + i] = values[i];
    }
    return bytes;
}

/// The lines "address name" of nm and readelf.
std::map<std::string, std::uint64_t> symbolsOf(const std::string& path) {
    std::map<std::string, std::uint64_t> symbols;
    std::ifstream file(path);
    for (std::string address, name; file >> address >> name;)
        symbols[name] = std::stoul(address, nullptr, 16);
    return symbols;
}

class ElfFiles : public testing::TestWithParam<const char*> {};

/// tests/data/elf/make.sh has made the files, by linkers, objcopy, nm and readelf.
TEST_P(ElfFiles, AreReadAsBinutilsReadThem) {
    const std::string path = folder + GetParam();
    const ElfInFile file(path + ".elf");
    const Bytes wanted = bytesOfRecords(path + ".srec");
    Bytes got = bytesOfImage(file);
    ASSERT_EQ(wanted.size() >= 24, true);
    for (const auto& [address, byte] : wanted) {
        ASSERT_TRUE(got.contains(address)) << std::hex << address;
        EXPECT_EQ(got[address], byte) << std::hex << address;
        got.erase(address);
    }
    // A segment may also have what aligns its sections, which are not data for objcopy.
    for (const auto& [address, byte] : got) EXPECT_EQ(byte, 0) << std::hex << address;
    EXPECT_LT(got.size(), 32U);
    auto symbols = symbolsOf(path + ".nm");
    EXPECT_EQ(file.getStartAddress(), symbols["entry"]);
    std::size_t found = 0;
    for (const auto& symbol : ElfFile(path + ".elf").symbols()) {
        if (!symbols.contains(symbol.name)) continue;
        EXPECT_EQ(symbol.address, symbols[symbol.name]) << symbol.name;
        ++found;
    }
    EXPECT_GE(found + 1, symbols.size());
}

INSTANTIATE_TEST_SUITE_P(Targets, ElfFiles,
                         testing::Values("arm", "armeb", "aarch64", "aarch64be", "riscv32",
                                         "riscv64", "mips", "mips64el", "powerpc", "powerpc64",
                                         "m68k", "i386", "x86-64", "avr", "headers", "headers64"),
                         [](const auto& target) {
                             std::string name = target.param;
                             std::erase(name, '-');
                             return name;
                         });

/// A change of the file arm.elf, a little-endian one of 32 bits, and what is wrong then. The places
/// are those of Elf32_Ehdr and of its first Elf32_Phdr, which follows at byte 52.
struct Damage {
    const char* name;
    std::size_t size;  ///< to which the file is cut
    std::map<std::size_t, std::uint8_t> bytes;
    FormatFault fault;
    std::uint64_t where;
    std::uint64_t number;
};

constexpr std::size_t whole = 100'000;

class DamagedElf : public testing::TestWithParam<Damage> {};

TEST_P(DamagedElf, IsRefusedWithTheReason) {
    const Damage& damage = GetParam();
    std::string contents = Tests::contentsOf(folder + "arm.elf");
    contents.resize(std::min(contents.size(), damage.size));
    for (const auto& [at, byte] : damage.bytes) contents[at] = static_cast<char>(byte);
    const std::string path = Tests::temporaryFile(contents);
    const Tests::ExpectedFacts expected({Facts::FileMalformed{
        Facts::InputFormat::Elf, path, damage.fault, damage.where, damage.number}});
    EXPECT_THROW(ElfInFile{path}, Io::Import::Malformed);
}

INSTANTIATE_TEST_SUITE_P(
    Damages, DamagedElf,
    testing::Values(
        Damage{"Empty", 0, {}, FormatFault::MagicMissing, 0, 0},
        Damage{"Magic", whole, {{1, 'e'}}, FormatFault::MagicMissing, 0, 0},
        Damage{"Class", whole, {{4, 3}}, FormatFault::VariantUnknown, 4, 3},
        Damage{"ByteOrder", whole, {{5, 0}}, FormatFault::VariantUnknown, 5, 0},
        Damage{"Version", whole, {{6, 2}}, FormatFault::VariantUnknown, 6, 2},
        Damage{"HeaderCut", 51, {}, FormatFault::Truncated, 0, 52},
        Damage{"SectionsCut", 60, {{48, 0}, {32, 60}, {33, 0}}, FormatFault::Truncated, 60, 40},
        Damage{"ProgramsBeyond",
               whole,
               {{48, 0}, {32, 0}, {33, 0}, {30, 1}},
               FormatFault::Truncated,
               0x10034,
               64},
        Damage{
            "ProgramsTooMany", whole, {{44, 0xFE}, {45, 0xFF}}, FormatFault::Truncated, 52, 0xFFFE},
        Damage{"ProgramsShort", whole, {{42, 31}}, FormatFault::EntryTooShort, 52, 31},
        Damage{"NoPrograms", whole, {{44, 0}}, FormatFault::NothingToLoad, 0, 0},
        Damage{"SegmentBeyond",
               whole,
               {{52 + 19, 0x7F}, {52 + 23, 0x7F}},
               FormatFault::Truncated,
               0x100,
               0x7F00002C},
        Damage{"MemoryShort", whole, {{52 + 20, 1}}, FormatFault::SegmentTooLong, 0, 0x2C}),
    [](const auto& damage) { return damage.param.name; });

TEST(Elf, LoadsAtVirtualAddressesWithoutPhysicalOnes) {
    std::string contents = Tests::contentsOf(folder + "arm.elf");
    for (const std::size_t header : {52U, 84U})
        std::fill_n(contents.begin() + static_cast<std::ptrdiff_t>(header + 12), 4, '\0');
    const ElfInFile file(Tests::temporaryFile(contents));
    EXPECT_EQ(file.getDataAreas(), (Buffer::AreaList{{0x8000, 0x2C}, {0x20000, 4}}));
}

/// Names in C++ by the Itanium C++ ABI, section 5.1.
TEST(SymbolTable, OnlyNamesOfCppAreMangled) {
    EXPECT_EQ(Io::Import::demangled("_Z5firstIiEvT_"), "void first<int>(int)");
    for (const char* const name : {"main", "_Z", "_Znothing", "Z5first", ""})
        EXPECT_EQ(Io::Import::demangled(name), name);
}

TEST(SymbolTable, FindsASymbolByItsNameOrThatOfCpp) {
    using Io::Import::Symbol;
    using enum Symbol::Kind;
    Io::Import::SymbolTable table({{"main", 0x100, 8, Function, true, false},
                                   {"_Z3addii", 0x200, 4, Function, true, false},
                                   {"_ZN2ns4sizeE", 0x300, 4, Data, true, false},
                                   {"_Z3twoi", 0x310, 4, Function, true, false},
                                   {"_Z3twov", 0x320, 4, Function, true, false},
                                   {"count", 0x400, 4, Data, false, false},
                                   {"count", 0x404, 4, Data, true, false},
                                   {"count", 0x408, 4, Data, false, false},
                                   {"static", 0x500, 4, Data, false, false},
                                   {"static", 0x504, 4, Data, false, false},
                                   {"table", 0x600, 0, Other, true, false},
                                   {"table", 0x600, 16, Data, true, false},
                                   {"add", 0x700, 2, Function, false, false}});
    struct Row {
        const char* name;
        std::uint64_t address;  ///< 0 if there is none
        std::uint64_t size;
        bool isAmbiguous = false;
    };
    for (const Row& row : {
             Row{"main", 0x100, 8},
             Row{"_Z3addii", 0x200, 4},
             Row{"add(int, int)", 0x200, 4},
             Row{"add", 0x700, 2},
             Row{"ns::size", 0x300, 4},
             Row{"two", 0x310, 4, true},
             Row{"two()", 0x320, 4},
             Row{"count", 0x404, 4},
             Row{"static", 0x500, 4, true},
             Row{"table", 0x600, 16},
             Row{"Main", 0, 0},
             Row{"", 0, 0},
         }) {
        const auto found = table.find(row.name);
        ASSERT_EQ(found.symbol != nullptr, row.address != 0) << row.name;
        if (found.symbol == nullptr) continue;
        EXPECT_EQ(found.symbol->address, row.address) << row.name;
        EXPECT_EQ(found.symbol->size, row.size) << row.name;
        EXPECT_EQ(found.isAmbiguous, row.isAmbiguous) << row.name;
    }
}

}  // namespace
