#include <deque>
#include <filesystem>
#include <optional>
#include <random>
#include <string_view>
#include <system_error>
#include <variant>

#include "io/IntelHexRecord.hpp"
#include "io/import/GenericInFile.hpp"
#include "io/import/IntelHexInFile.hpp"
#include "io/import/MotorolaS_InFile.hpp"
#include "io/import/RawBinaryInFile.hpp"
#include "tests/io/IoFixtures.hpp"

namespace {

using namespace Io::Import;
using Buffer::Area;
using Buffer::AreaList;
using Tests::ExpectedFacts;
using Tests::temporaryFile;

struct Detected {
    std::string file;
    InFileType type;
};

TEST(GenericInFileTest, DetectsTheFormatByTheFirstCharacterOfEveryLine) {
    using enum InFileType;
    for (const Detected& row :
         {Detected{"", RawBinary}, Detected{"\n\n//\n", RawBinary},
          Detected{"// remark\n\n:00000001FF", IntelHex}, Detected{":00000001FF\n# end", RawBinary},
          Detected{":00000001FF\nS9030000FC\n", MotorolaS},
          Detected{"S9030000FC\n:00000001FF\n", IntelHex}, Detected{"s9030000FC\n", RawBinary},
          Detected{" :00000001FF\n", RawBinary}, Detected{"\r\n:00000001FF\r\n\r\n", IntelHex},
          Detected{":\n\r", RawBinary}, Detected{":\n\x1A junk\njunk", IntelHex},
          Detected{std::string("\0junk\n:\n", 8), IntelHex}}) {
        const GenericInFile file(temporaryFile(row.file));
        EXPECT_EQ(file.type(), row.type) << row.file;
    }
    EXPECT_THROW(GenericInFile("/no/such/file"), Io::bad_open);
    EXPECT_THROW(GenericInFile("/", rawBinary), Io::bad_open);
    EXPECT_EQ(GenericInFile(temporaryFile(":00000001FF\r\n"), rawBinary).getDataLength(), 13U);
}

/// A file and what its reader makes of it.
struct Reading {
    std::string file;
    AreaList areas;
    std::optional<std::uint64_t> start;
    std::vector<Facts::Fact> facts;
};

/// In the facts of a row, the path of the row's file.
constexpr std::string_view thisFile = "this file";

std::vector<Facts::Fact> factsOf(const Reading& row, const std::string& path) {
    std::vector<Facts::Fact> facts = row.facts;
    const auto setPath = [&path](auto& fact) {
        if constexpr (requires { fact.file; }) fact.file = path;
    };
    for (Facts::Fact& fact : facts) std::visit(setPath, fact);
    return facts;
}

void expectAnswers(const TessaronImportApi& reader, const Reading& row) {
    const Area first = row.areas.empty() ? Area{} : row.areas.front();
    const Area last = row.areas.empty() ? Area{} : row.areas.back();
    EXPECT_EQ(reader.getDataAreas(), row.areas) << row.file;
    EXPECT_EQ(reader.hasStartAddress(), row.start.has_value()) << row.file;
    EXPECT_EQ(reader.getStartAddress(), row.start.value_or(0)) << row.file;
    EXPECT_EQ(reader.getMinAddress(), first.start) << row.file;
    EXPECT_EQ(reader.getDataLength(), last.end() - first.start) << row.file;
}

/// The same comes out when the format of the file is detected first.
template <class Reader>
void expectReadings(InFileType type, const std::vector<Reading>& rows) {
    for (const Reading& row : rows) {
        const std::string path = temporaryFile(row.file);
        SCOPED_TRACE(row.file);
        {
            const ExpectedFacts expected(factsOf(row, path));
            expectAnswers(Reader(path), row);
        }
        if (GenericInFile(path).type() != type) continue;
        const ExpectedFacts expected(factsOf(row, path));
        expectAnswers(GenericInFile(path), row);
    }
}

Facts::Fact contradictory(std::uint64_t number, std::string_view line) {
    return Facts::RecordContradictory{thisFile, number, line};
}

Facts::Fact noRecord(std::uint64_t number, std::string_view line) {
    return Facts::LineNotARecord{thisFile, number, line};
}

const Facts::Fact emptyFile = Facts::TextFileEmpty{thisFile};
const Facts::Fact lastLineMismatched = Facts::LastLineMismatched{thisFile};
const std::string endOfHex = ":00000001FF\n";

TEST(IntelHexInFileTest, WhatCountsAndWhatIsPassedOver) {
    expectReadings<IntelHexInFile>(
        InFileType::IntelHex,
        {
            {"", {}, {}, {emptyFile}},
            {endOfHex, {}, {}, {}},
            {":xyyzz0 1 anything", {}, {}, {lastLineMismatched}},
            {":xxyyzz01 anything", {}, {}, {}},
            {":10000000", {}, {}, {lastLineMismatched}},
            {":0000000", {}, {}, {lastLineMismatched}},
            {endOfHex + "\n", {}, {}, {lastLineMismatched}},
            // A wrong last line alone is reported, and no start address stays.
            {":0400000500000100F6\n:03000002100000EB\n:", {}, {}, {lastLineMismatched}},
            {":0100000041be\n// remark\n\n:0100010042BC \n:0200020043bb\n" + endOfHex,
             {{0, 1}},
             {},
             {}},
            {":0100000041BE\n" + std::string(":0100010042BC\0rest", 18) + "\n" + endOfHex,
             {{0, 2}},
             {},
             {}},
            {endOfHex + endOfHex, {}, {}, {contradictory(1, ":00000001FF")}},
            {":0100000041BE\n:0100010042BD\n:00000006FA\n" + endOfHex,
             {},
             {},
             {contradictory(2, ":0100010042BD")}},
            {":0100000041BE\nS9030000FC\n:0100010042BC\n" + endOfHex, {{0, 2}}, {}, {}},
            {":00000006FA\n" + endOfHex, {}, {}, {contradictory(1, ":00000006FA")}},
            {":020001040001F8\n" + endOfHex, {}, {}, {contradictory(1, ":020001040001F8")}},
            {":0400000500000100F6\n:01000004010AF0\n:03000002100000EB\n" + endOfHex,
             {},
             0x100,
             {contradictory(3, ":03000002100000EB")}},
            // The base of an extended record replaces the one before it; no wrap within a record.
            {":020000021000EC\n:0100000041BE\n:020000040001F9\n:0100010041BD\n:02000002FFFFFE\n"
             ":04FFFE000102030BEE\n" +
                 endOfHex,
             {{0x10000, 2}, {0x10FFEE + 0x1000 - 0xFFE - 2, 4}},
             {},
             {}},
            {":040000031234000FA4\n" + endOfHex, {}, 0x1234F, {}},
            // Not ascending, and one address twice.
            {":0100020043BA\n:02000000414"
             "27B\n:0100010099"
             "65\n" +
                 endOfHex,
             {{0, 2}, {1, 2}},
             {},
             {}},
        });
}

TEST(TextReaderTest, AFaultIsShownThoughItsLineHasLeftMemory) {
    const auto among = [](const std::string& line, const std::string& others) {
        std::string file;
        for (int i = 0; i < 1000; ++i) file += others;
        return file + line + "\n" + file;
    };
    const std::string remark = "//" + std::string(1000, 'x') + "\n";
    expectReadings<IntelHexInFile>(InFileType::IntelHex,
                                   {{among(":0100010042BD", remark) + endOfHex,
                                     {},
                                     {},
                                     {contradictory(1001, ":0100010042BD")}}});
    const std::string header = "S0FF0000" + std::string(504, '0') + "00\n";
    expectReadings<MotorolaS_InFile>(
        InFileType::MotorolaS,
        {{among("Sfirst", header) + "Ssecond\nS", {}, {}, {noRecord(1001, "Sfirst")}}});
}

TEST(IntelHexInFileTest, TheLaterByteWinsAndRangesAreCheckedAtTheirStartAlone) {
    using enum Facts::ReadOperation;
    const char* const information =
        "Information about current IntelHexInFile Object\n"
        "dataLength: (int)17\nminAddress: (int)16\nmaxAddress: (int)32\n";
    const auto outside = [&](auto operation, std::uint64_t start, std::uint64_t end) {
        return Facts::ReadRangeOutside{
            Facts::InputFormat::IntelHex, operation, start, end, 16, 33, information};
    };
    const ExpectedFacts expected({outside(GetMemory, 15, 25), outside(FillMemoryBuffer, 32, 34)});
    const IntelHexInFile reader(
        temporaryFile(":020010000102EB\n:0100120003EA\n:01001000FFF0\n:0100200005DA\n" + endOfHex));
    const Buffer::MemoryBuffer all = reader.getMemory();
    EXPECT_EQ(all.getStartAddress(), 0x10U);
    std::vector<std::uint8_t> wanted(17);
    wanted[0] = 0xFF, wanted[1] = 2, wanted[2] = 3, wanted[16] = 5;
    EXPECT_EQ(Tests::bytesOf(all), wanted);
    EXPECT_EQ(all.getElements()[3], Buffer::MemoryElement{});
    EXPECT_EQ(reader.getMemory(0x20, 100).getDataLength(), 100U);
    EXPECT_EQ(reader.getMemory(0, 0).getDataLength(), 0U);
    EXPECT_EQ(reader.getMemory(15, 10).getDataLength(), 0U);
    Buffer::MemoryBuffer own(0x11, 3);
    own.fillMemory(std::vector<Buffer::MemoryElement>{{7, 9, 1}}, 0x11, 3);
    reader.fillMemoryBuffer(own);
    EXPECT_EQ(Tests::bytesOf(own), (std::vector<std::uint8_t>{2, 3, 7}));
    Buffer::MemoryBuffer beyond(0x20, 2);
    reader.fillMemoryBuffer(beyond);
    EXPECT_EQ(beyond.getElements()[0], Buffer::MemoryElement{});
}

TEST(IntelHexInFileTest, RecordsInAnyOrderHideEachOtherByteByByte) {
    std::minstd_rand random(7);
    for (int round = 0; round < 50; ++round) {
        std::vector<int> wanted(80, -1);
        std::string file;
        for (int i = 0; i < 12; ++i) {
            std::vector<std::uint8_t> data(1 + random() % 20);
            for (auto& byte : data) byte = static_cast<std::uint8_t>(random());
            const auto address = static_cast<std::uint16_t>(random() % 60);
            std::ranges::copy(data, wanted.begin() + address);
            std::string record(Io::intelRecordLength(data.size()) + Io::textSlack, '\0');
            Io::writeIntelRecord(record.data(), address, 0, data);
            record.resize(Io::intelRecordLength(data.size()));
            file += record;
        }
        const IntelHexInFile reader(temporaryFile(file + endOfHex));
        const std::uint64_t from = reader.getMinAddress();
        for (std::uint64_t start = from; start < 80; start += 9) {
            const auto elements = reader.getMemory(start, 7).getElements();
            for (std::size_t i = 0; i < 7; ++i) {
                const int byte = start + i < 80 ? wanted[start + i] : -1;
                EXPECT_EQ(elements[i].hasValue != 0 ? elements[i].value : -1, byte) << file;
            }
        }
    }
}

TEST(GenericInFileTest, ARawFileNeedsNoMemoryOfATextReader) {
    constexpr std::uint64_t size = std::uint64_t{1} << 43U;
    const std::string path = temporaryFile(":0100000041BE\nS1041000AA41\nS1041000AA41\nraw\n");
    std::error_code refused;
    std::filesystem::resize_file(path, size, refused);
    if (refused) GTEST_SKIP() << "no file of 8 TiB: " << refused.message();
    const ExpectedFacts expected({Facts::RawFileTooLong{0xFFFFFFFF, size}});
    EXPECT_EQ(GenericInFile(path).type(), InFileType::RawBinary);
    std::filesystem::remove(path);
}

TEST(MotorolaS_InFileTest, WhatCountsAndWhatEndsTheParse) {
    const std::string s0 = "S00F000068656C6C6F202020202000003C\n";  // "hello     ", 0, 0
    const std::string s0Wrong = "S00F000068656C6C6F202020202000003D";
    const std::string data = "S1041000AA41\nS205010000BB3E\nS30680000000CCAD\n";
    const AreaList one{{0x1000, 1}};
    const AreaList three{{0x1000, 1}, {0x10000, 1}, {0x80000000, 1}};
    expectReadings<MotorolaS_InFile>(
        InFileType::MotorolaS,
        {
            {"", {}, {}, {emptyFile}},
            {"S1041000AA41\n", {}, {}, {}},
            {s0 + data + "S9030000FC\n", three, {}, {}},
            {data + "S9031234B6\n\n", three, 0x1234, {}},
            {data + "S804012345"
                    "92\nS705800000007A\nlast",
             three,
             0x80000000,
             {}},
            {"S1041000AA41\nS1041001BB2F\n", one, {}, {}},
            {"S1041000AA41\n\nlast", one, {}, {noRecord(2, "")}},
            {"S1041000AA41\ns1041001BB2F\nS1041001BB2E\nlast",
             one,
             {},
             {noRecord(2, "s1041001BB2F")}},
            {"S1041000AA41\nS1041001BBCC2F\nlast", one, {}, {noRecord(2, "S1041001BBCC2F")}},
            {"S1041000AA41\nS1041001BB2E\nlast", {}, {}, {contradictory(2, "S1041001BB2E")}},
            {"S9031234B6\nS70680000000AACF\nlast",
             {},
             0x1234,
             {contradictory(2, "S70680000000AACF")}},
            {"S1041000AA41\nS00600004844521B\nlast",
             {},
             {},
             {contradictory(2, "S00600004844521B")}},
            {s0Wrong + "\nlast", {}, {}, {contradictory(1, s0Wrong)}},
            // The count of an S5: two bytes of address, then the data field is what counts.
            {"S5030000FC\nlast", {}, {}, {}},
            {"S1041000AA41\nS5030001FB\nlast", {}, {}, {contradictory(2, "S5030001FB")}},
            {"S1041000AA41\nS50500000001F9\nS5030000FC\nlast", one, {}, {}},
            {"S1031000EC\nS50500000001F9\nlast", {}, {}, {}},
            {"S1031000EC\nS50D000000000000000000000001F1\nlast", {}, {}, {}},
            {"S1041000AA41\nS50C0000010000000000000001F1\nlast",
             {},
             {},
             {contradictory(2, "S50C0000010000000000000001F1")}},
        });
}

TEST(MotorolaS_InFileTest, ReportsACountThatIsTooLow) {
    // The long line is a record in spite of its count.
    const std::string longRecord = "S1021000" + std::string(510, '0') + "ED";
    const Facts::Fact low = Facts::RecordCountTooLow{2, 2};
    std::vector<Reading> rows{{"S1021000ED\nS", {}, {}, {low, noRecord(1, "S1021000ED")}}};
    // Types that the format does not have leave no room for any data.
    std::deque<std::string> lines;
    for (const char type : std::string("46ABCDEFabcdef")) {
        lines.push_back(std::string("S") + type + "051000AABB85");
        rows.push_back({lines.back() + "\nS",
                        {},
                        {},
                        {Facts::RecordCountTooLow{5, 255}, noRecord(1, lines.back())}});
    }
    expectReadings<MotorolaS_InFile>(InFileType::MotorolaS, rows);
    const ExpectedFacts expected({low, low});
    const MotorolaS_InFile twice(temporaryFile(longRecord + "\n" + longRecord + "\nS"));
    EXPECT_EQ(twice.getDataLength(), 255U);
}

TEST(MotorolaS_InFileTest, CutsASpanThatIsTooLong) {
    const ExpectedFacts expected({Facts::DataSpanTooLong{0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFE}});
    const MotorolaS_InFile reader(temporaryFile("S1040000AA51\nS306FFFFFFFF01FC\nlast"));
    EXPECT_EQ(reader.getDataLength(), 0xFFFFFFFFU);
    const MotorolaS_InFile longest(temporaryFile("S1040000AA51\nS306FFFFFFFE01FD\nlast"));
    EXPECT_EQ(longest.getDataLength(), 0xFFFFFFFFU);
}

TEST(RawBinaryInFileTest, TheFileIsTheImage) {
    const char* const information =
        "Information about current RawBinaryInFile Object\n"
        "dataLength: (int)4\nminAddress: (int)0\nmaxAddress: (int)4\n";
    const ExpectedFacts expected(
        {Facts::ReadRangeOutside{Facts::InputFormat::RawBinary,
                                 Facts::ReadOperation::FillMemoryBuffer, 3, 5, 0, 4, information}});
    const RawBinaryInFile reader(temporaryFile("a\r\nb"));
    EXPECT_EQ(Tests::bytesOf(reader.getMemory()),
              (std::vector<std::uint8_t>{'a', '\r', '\n', 'b'}));
    EXPECT_EQ(Tests::bytesOf(reader.getMemory(3, 2)), (std::vector<std::uint8_t>{'b', 0}));
    EXPECT_EQ(reader.getMemory(3, 2).getElements()[1].hasValue, 0);
    EXPECT_EQ(reader.getMemory(9, 2).getElements()[0].hasValue, 0);
    EXPECT_EQ(reader.getDataAreas(), (AreaList{{0, 4}}));
    EXPECT_FALSE(reader.hasStartAddress());
    Buffer::MemoryBuffer own(1, 2);
    reader.fillMemoryBuffer(own);
    EXPECT_EQ(Tests::bytesOf(own), (std::vector<std::uint8_t>{'\r', '\n'}));
    Buffer::MemoryBuffer beyond(3, 2);
    reader.fillMemoryBuffer(beyond);
    EXPECT_EQ(beyond.getElements()[0].hasValue, 0);
    EXPECT_EQ(RawBinaryInFile(temporaryFile("")).getMemory().getDataLength(), 0U);
}

}  // namespace
