#include <random>

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
using Tests::printedBy;
using Tests::temporaryFile;

struct Detected {
    std::string file;
    InFileType type;
};

TEST(GenericInFileTest, TellsTheFormatFromTheFirstCharacterOfEveryLine) {
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
    bool hasStart;
    std::uint64_t start;
    /// Follows "file: <path>" of a report; empty for none.
    std::string report;
};

/// The same comes out when the format of the file is found out first.
template <class Reader>
void expectReadings(InFileType type, const std::vector<Reading>& rows) {
    for (const Reading& row : rows) {
        const std::string path = temporaryFile(row.file);
        const std::string report =
            row.report.empty()
                ? ""
                : "file: " + path + row.report + " Execution aboarded. The file was not parsed.\n";
        const auto check = [&](const TessaronImportApi& reader) {
            EXPECT_EQ(reader.getDataAreas(), row.areas) << row.file;
            EXPECT_EQ(reader.hasStartAddress(), row.hasStart) << row.file;
            EXPECT_EQ(reader.getStartAddress(), row.start) << row.file;
            const bool isEmpty = row.areas.empty();
            EXPECT_EQ(reader.getMinAddress(), isEmpty ? 0 : row.areas.front().start) << row.file;
            const Area last = isEmpty ? Area{} : row.areas.back();
            EXPECT_EQ(reader.getDataLength(), last.start + last.length - reader.getMinAddress());
        };
        EXPECT_EQ(printedBy([&] { check(Reader(path)); }), report) << row.file;
        auto found = InFileType::RawBinary;
        const std::string printed = printedBy([&] {
            const GenericInFile reader(path);
            found = reader.type();
            if (found == type) check(reader);
        });
        if (found != type) continue;
        EXPECT_EQ(printed, report) << row.file;
    }
}

const std::string endOfHex = ":00000001FF\n";

TEST(IntelHexInFileTest, WhatCountsAndWhatIsPassedOver) {
    const std::string logical =
        " contains logical error. Please check line for Crc or Address/Type conflicts.";
    expectReadings<IntelHexInFile>(
        InFileType::IntelHex,
        {
            {"", {}, false, 0, " was empty."},
            {endOfHex, {}, false, 0, ""},
            {":xyyzz0 1 anything", {}, false, 0, " has no intel format (last line mismatched)."},
            {":xxyyzz01 anything", {}, false, 0, ""},
            {":10000000", {}, false, 0, " has no intel format (last line mismatched)."},
            {":0000000", {}, false, 0, " has no intel format (last line mismatched)."},
            {endOfHex + "\n", {}, false, 0, " has no intel format (last line mismatched)."},
            {":0100000041be\n// remark\n\n:0100010042BC \n:0200020043bb\n" + endOfHex,
             {{0, 1}},
             false,
             0,
             ""},
            {":0100000041BE\n" + std::string(":0100010042BC\0rest", 18) + "\n" + endOfHex,
             {{0, 2}},
             false,
             0,
             ""},
            {endOfHex + endOfHex, {}, false, 0, " line: :00000001FF" + logical},
            {":0100000041BE\n:0100010042BD\n" + endOfHex,
             {},
             false,
             0,
             " line: :0100010042BD" + logical},
            {":0100000041BE\nS9030000FC\n:0100010042BC\n" + endOfHex, {{0, 2}}, false, 0, ""},
            {":00000006FA\n" + endOfHex, {}, false, 0, " line: :00000006FA" + logical},
            {":020001040001F8\n" + endOfHex, {}, false, 0, " line: :020001040001F8" + logical},
            {":0400000500000100F6\n:01000004010AF0\n:03000002100000EB\n" + endOfHex,
             {},
             true,
             0x100,
             " line: :03000002100000EB" + logical},
            // The base of an extended record replaces the one before it; no wrap within a record.
            {":020000021000EC\n:0100000041BE\n:020000040001F9\n:0100010041BD\n:02000002FFFFFE\n"
             ":04FFFE000102030BEE\n" +
                 endOfHex,
             {{0x10000, 2}, {0x10FFEE + 0x1000 - 0xFFE - 2, 4}},
             false,
             0,
             ""},
            {":040000031234000FA4\n" + endOfHex, {}, true, 0x1234F, ""},
            // Not ascending, and one address twice.
            {":0100020043BA\n:020000004142\x37\x42\n:0100010099\x36\x35\n" + endOfHex,
             {{0, 2}, {1, 2}},
             false,
             0,
             ""},
        });
}

TEST(IntelHexInFileTest, TheLaterByteWinsAndRangesAreCheckedAtTheirStartAlone) {
    const std::string path =
        temporaryFile(":020010000102EB\n:0100120003EA\n:01001000FFF0\n:0100200005DA\n" + endOfHex);
    const std::string lines =
        "  Possible max range could be from int [16 to 33].\n"
        "Information about current IntelHexInFile Object\n"
        "dataLength: (int)17\nminAddress: (int)16\nmaxAddress: (int)32\n";
    const std::string printed = printedBy([&] {
        const IntelHexInFile reader(path);
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
    });
    EXPECT_EQ(
        printed,
        "IntelHexInFile(getMemory-Operation). The requested extraction range from int "
        "address [15 to 25] was out of range. Empty buffer was returned.\n" +
            lines +
            "IntelHexInFile(fillMemoryBuffer-Operation). The requested extraction range from int "
            "address [32 to 34] was out of range. Nothing was filled\n" +
            lines);
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
            file.resize(file.size() + Io::intelRecordLength(data.size()));
            Io::writeIntelRecord(&file[file.size() - Io::intelRecordLength(data.size())], address,
                                 0, data);
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

TEST(MotorolaS_InFileTest, WhatCountsAndWhatEndsTheParse) {
    const std::string header = "S0110000202020202020202020200000544573\n";
    const std::string s0 = "S00F000068656C6C6F202020202000003C\n";  // "hello     ", 0, 0
    const std::string data = "S1041000AA41\nS205010000BB3E\nS30680000000CCAD\n";
    const std::string pattern = " did not match parsing pattern.";
    const std::string logical =
        " contains logical error. Please check line for Crc or Address/Type conflicts.";
    const AreaList three{{0x1000, 1}, {0x10000, 1}, {0x80000000, 1}};
    expectReadings<MotorolaS_InFile>(
        InFileType::MotorolaS,
        {
            {"", {}, false, 0, " was empty."},
            {"S1041000AA41\n", {}, false, 0, ""},
            {data + "S9030000FC\n", three, false, 0, ""},
            {data + "S9031234B6\n\n", three, true, 0x1234, ""},
            {data + "S804012345\x39\x32\nS705800000007A\nlast", three, true, 0x80000000, ""},
            {"S1041000AA41\nS1041001BB2F\n", {{0x1000, 1}}, false, 0, ""},
            {"S1041000AA41\n\nlast", {{0x1000, 1}}, false, 0, " line: " + pattern},
            {"S1041000AA41\ns1041001BB2F\nlast",
             {{0x1000, 1}},
             false,
             0,
             " line: s1041001BB2F" + pattern},
            {"S1041000AA41\nS1041001BBCC2F\nlast",
             {{0x1000, 1}},
             false,
             0,
             " line: S1041001BBCC2F" + pattern},
            {"S1041000AA41\nS1041001BB2E\nlast", {}, false, 0, " line: S1041001BB2E" + logical},
            {"S1041000AA41\nS70680000000AACF\nlast",
             {},
             false,
             0,
             " line: S70680000000AACF" + logical},
            {"S1041000AA41\nS0060000484452\x31\x42\nlast",
             {},
             false,
             0,
             " line: S00600004844521B" + logical},
            {s0.substr(0, s0.size() - 3) + "00\nlast",
             {},
             false,
             0,
             " line: " + s0.substr(0, s0.size() - 3) + "00" + logical},
            // The count of an S5: two bytes of address, then the data field is what counts.
            {"S503000\x30"
             "FC\nlast",
             {},
             false,
             0,
             ""},
            {"S1041000AA41\nS5030001FB\nlast", {}, false, 0, " line: S5030001FB" + logical},
            {"S1041000AA41\nS505000000\x30\x31"
             "F9\nlast",
             {{0x1000, 1}},
             false,
             0,
             ""},
            {"S1031000EC\nS5050000000\x31"
             "F9\nlast",
             {},
             false,
             0,
             ""},
        });
}

TEST(MotorolaS_InFileTest, ReportsACounterThatIsTooLowAndASpanThatIsTooLong) {
    const auto counterReport = [](const char* counter, const char* size) {
        return std::string("MotorolaS_InFile(storeParsedSize-Operation). Logical error\n") +
               "The value of counter is : (int)" + counter +
               ". This is to low, because the addressSize is already : (int)" + size +
               "\nThis error could be also generated, if the SRecord Type was unknown or the "
               "counter was to less.\n";
    };
    const auto read = [](const std::string& file) {
        const std::string path = temporaryFile(file);
        std::string printed = printedBy([&] { const MotorolaS_InFile reader(path); });
        EXPECT_EQ(printedBy([&] { const GenericInFile reader(path); }), printed);
        return printed.erase(std::min(printed.find("file: "), printed.size()));
    };
    EXPECT_EQ(read("S1021000ED\nS"), counterReport("2", "2"));
    EXPECT_EQ(read("S4021000ED\nS"), counterReport("2", "255"));
    EXPECT_EQ(read("S6FF1000ED\nS"), counterReport("255", "255"));
    const std::string path = temporaryFile("S10400000000FB\nS306FFFFFFFF01FC\nlast");
    EXPECT_EQ(
        printedBy([] {
            const MotorolaS_InFile reader(temporaryFile("S1040000AA51\nS306FFFFFFFF01FC\nlast"));
            EXPECT_EQ(reader.getDataLength(), 0xFFFFFFFFU);
        }),
        "MotorolaS_InFile(constructor-Operation). The information extracted from output "
        "file, contains too much DataElements.\n"
        "  The max possible amount of Elements is : (int)4294967295\n"
        "  The max Address is changed from: (int)4294967295 to: (int)4294967294\n");
}

TEST(RawBinaryInFileTest, TheFileIsTheImage) {
    const std::string path = temporaryFile("a\r\nb");
    const std::string printed = printedBy([&] {
        const RawBinaryInFile reader(path);
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
    });
    EXPECT_EQ(printed,
              "RawBinaryInFile(fillMemoryBuffer-Operation). The requested extraction range from "
              "int address [3 to 5] was out of range. Nothing was filled\n"
              "  Possible max range could be from int [0 to 4].\n"
              "Information about current RawBinaryInFile Object\n"
              "dataLength: (int)4\nminAddress: (int)0\nmaxAddress: (int)4\n");
    EXPECT_EQ(RawBinaryInFile(temporaryFile("")).getMemory().getDataLength(), 0U);
}

}  // namespace
