// The table of input formats and what is done by it: detection, reading a file once, and the walk
// over records.

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "facts/Listener.hpp"
#include "io/Host.hpp"
#include "io/InFile.hpp"
#include "io/field/RecordLine.hpp"
#include "io/formats/AnyFile.hpp"
#include "io/formats/FormatDetection.hpp"
#include "io/formats/InputFormats.hpp"
#include "io/import/Malformed.hpp"
#include "tests/io/IoFixtures.hpp"

namespace {

using Facts::InputFormat;
using Io::Import::RecordLines;
using Tests::temporaryFile;

/// A file and what it is: a format, or the words for one that is not read.
struct Contents {
    std::string name;
    std::string contents;
    std::optional<InputFormat> format;
    std::string foreign = {};
};

void expectDetected(const std::vector<Contents>& rows) {
    for (const Contents& row : rows) {
        SCOPED_TRACE(row.name + ": " + row.contents.substr(0, 40));
        const auto [format, foreign] =
            Io::Formats::formatOf(row.name, Io::openInput(temporaryFile(row.contents)));
        EXPECT_EQ(format, row.format);
        EXPECT_EQ(foreign, row.foreign);
    }
}

constexpr auto noRecords = std::nullopt;
const std::string record = ":00000001FF\n";

/// The same text in UTF-16, without a byte order mark.
std::string wide(const std::string& text, bool isBigEndian = false) {
    std::string all;
    for (const char c : text) all += isBigEndian ? std::string{'\0', c} : std::string{c, '\0'};
    return all;
}

TEST(FormatDetection, FindsRecordsWhereverTheyAreInAText) {
    using enum InputFormat;
    constexpr std::size_t piece = std::size_t{1} << 17U;
    std::vector<Contents> rows;
    // A record across the border of two pieces that are read one after the other, at each place.
    for (std::size_t at = piece - record.size() - 1; at <= piece + 1; ++at)
        rows.push_back({"input", std::string(at, 'x') + "\n" + record, IntelHex});
    // The place where the second piece would begin if it overlapped the first one.
    for (std::size_t at = piece - 12; at <= piece; ++at)
        rows.push_back({"input", std::string(at, 'x') + ":01234567", RawBinary});
    // A long line that goes on in the second piece.
    for (const std::size_t length : {150U, 1000U, 3000U})
        rows.push_back(
            {"input",
             std::string(piece - 101, 'x') + "\n" + std::string(length, 'x') + "\n:01234567\n",
             IntelHex});
    expectDetected(rows);
    expectDetected({{"input", "", RawBinary},
                    {"x.HEX", "", RawBinary},
                    {"input", "x:00000001FF\n", RawBinary},
                    {"x.HEX", "text", noRecords},
                    {"x.sre", std::string(4, '\0'), noRecords},
                    {"input", "\n\nSome text\n", RawBinary},
                    {"input", "\xEF\xBB\xBF:00000001FF", IntelHex},
                    {"input", "junk\rS9030000FC", MotorolaS},
                    {"input", "s9030000FC", MotorolaS},
                    {"input", "# \xC3\xA4\xE2\x82\xAC\n" + record, IntelHex},
                    {"input", record + std::string(5000, '\0'), IntelHex}});
}

TEST(FormatDetection, DamagedRecordsAreNotRawBytes) {
    using enum InputFormat;
    const std::string some = ":0100000001FE\n:0100010002FC\n";
    std::string damaged = some + some + record;
    damaged[0] = '\xBA';
    expectDetected({{"app", ":0400\n\x1A", IntelHex},
                    {"app", "\n:0400\n\n:01\n", IntelHex},
                    {"app", "\n:0400\nsome text of as many bytes\n", RawBinary},
                    {"app", "x\n:0000000", IntelHex},
                    {"app", "S103\n", MotorolaS},
                    {"app", "  " + some + "\t" + record, IntelHex},
                    // All colons, or all that is in front of the count, are lost.
                    {"app", "0100000001FE\n0100010002FC\n00000001FF\n", IntelHex},
                    {"app", "104000001FA\n9030000FC\n", MotorolaS},
                    {"app", "04000001FA\n030000FC\n", MotorolaS},
                    // A line of a text with other digits is not one.
                    {"app", "0100000001FF\n20261126\n", RawBinary},
                    {"app", damaged, IntelHex},
                    {"app", std::string(20, '\0') + some + record, IntelHex},
                    {"app.dat", "exported by a tool\n" + some, IntelHex}});
}

TEST(FormatDetection, RawBytesAreNotRecords) {
    using enum InputFormat;
    const std::string binary(300, '\x90');
    const std::string sound = ":0100000001FE\n" + record;
    expectDetected({{"a", "S\1\2\3", RawBinary},
                    {"a.bin", "S\1\2\3", RawBinary},
                    {"a.img", ":01234567", RawBinary},
                    {"a.bin", "S1234567 is a part number\n", RawBinary},
                    {"a.bin", "@F000\n31 40\nq\n", RawBinary},
                    {"a", binary + "\n:01234567\n" + binary, RawBinary},
                    {"a", sound + binary, RawBinary},
                    {"a", std::string(140'000, '\xFF') + "\n" + sound, RawBinary},
                    {"a", std::string(140'000, '\0') + "\n" + sound, RawBinary},
                    // A text that begins with a whole record is a text of records.
                    {"a.bin", sound, IntelHex},
                    {"a.raw", "# remark\nS9030000FC\n", MotorolaS},
                    {"a.bin", sound + binary, RawBinary}});
}

TEST(FormatDetection, FindsAFormatByItsMarkOrItsOwnEnding) {
    using enum InputFormat;
    const std::string mark = "UF2\n\x57\x51\x5D\x9E";
    expectDetected({{"input", "\x7F\x45LF\n:00000001FF\n", Elf},
                    {"input", "\x7F\x45L\n:00000001FF\n", IntelHex},
                    {"input", mark, Uf2},
                    {"input", "UF2\n", RawBinary},
                    {"x.bin", mark, Uf2},
                    {"x.uf2", "text", Uf2},
                    {"x.uf2", "\1\2\3", Uf2},
                    {"x.ELF", "\x7F\x45l", Elf},
                    {"x.elf", record, IntelHex},
                    {"x.out", "\1\2\3", RawBinary},
                    {"x.dfu", "\1\2\3UFD\x10\1\2\3\4", DfuSe},
                    {"input", "DfuSe\1", DfuSe},
                    {"input", "DfuSe is a format\n", RawBinary},
                    {"input", "\n@F000\r\n31 40\nq\n", TiTxt},
                    {"input", "\xEF\xBB\xBF@F000\n31 40\nq\n", TiTxt},
                    {"notes.txt", "@F000 or so\n", RawBinary},
                    {"notes.txt", "@ 31 40\nq\n", RawBinary},
                    {"input", "@F000\n3140\n", Vmem},
                    {"input", "// of a tool\n/* 4\n bytes */ @0 12_34xz78\n", Vmem},
                    {"input", "@0\n", RawBinary},
                    {"input", "/* open @0 1234\n", RawBinary},
                    {"x.vmem", "@F000\n31 40\n", Vmem},
                    {"x.vmem", "DEADBEEF\n", Vmem},
                    {"x.hex", "@F000\nDEADBEEF\n", Vmem},
                    {"x.vmem", record, IntelHex}});
}

TEST(FormatDetection, KnowsFormatsThatAreNotRead) {
    using enum InputFormat;
    const std::string archive = "an archive of object files";
    const std::string utf16 = "a text in UTF-16";
    const std::string utf32 = "a text in UTF-32";
    const std::string tektronix = "a Tektronix hexadecimal file";
    const std::string extended = "an extended Tektronix hexadecimal file";
    const std::string mif = "a memory initialization file (MIF)";
    const std::string coe = "a coefficient file (COE)";
    const std::string source = "a source file of C";
    expectDetected({
        {"libapp", "!<arch>\n", noRecords, archive},
        {"app.bin", "!<thin>\n", noRecords, archive},
        {"app", "!<arch", RawBinary},
        {"app", "\xFF\xFE" + wide(record), noRecords, utf16},
        {"app", "\xFE\xFF" + wide(record, true), noRecords, utf16},
        {"app.hex", wide("# " + record + record), noRecords, utf16},
        {"app", "\xFF\xFE" + wide("@F000\n31 40\nq\n"), noRecords, utf16},
        {"app", std::string("\xFF\xFE\0\0", 4) + wide(wide(record)), noRecords, utf32},
        {"app", wide(wide(record, true), true), noRecords, utf32},
        {"app", "\xFF\xFE" + wide("data\x01\x02\x03\x04"), RawBinary},
        {"app", wide(":0"), noRecords, utf16},
        {"app", wide(":"), RawBinary},
        {"app", wide("x" + record), RawBinary},
        {"app", wide(record) + "\1\1", RawBinary},
        // Made by srec_cat.
        {"app", "/00000404010203040A\n/00000000\n", noRecords, tektronix},
        {"app", "/00000000\n", noRecords, tektronix},
        {"app", "/0000000\n", RawBinary},
        {"app", "/00000403\n", RawBinary},
        {"app", "/usr/bin/env\n", RawBinary},
        {"app", "%1163A41000AABBCCDD\n%0781010\n", RawBinary},
        {"app", "%1662080000100001020304\n", noRecords, extended},
        {"app", "%1692080000100001020304\n", RawBinary},
        {"app", "%0781010\n", noRecords, extended},
        {"app", "%053AA\n", noRecords, extended},
        {"app", "%059AA\n", RawBinary},
        {"app", "%0583A\n", noRecords, extended},
        {"app", "%0433\n", RawBinary},
        {"app", "-- made\nDepth = 4;\nWIDTH=8;\nContent\nBegin\n0 : 12;\nEND;\n", noRecords, mif},
        {"app", "DEPTH = 4; CONTENT BEGIN", noRecords, mif},
        {"app", "WIDTH=8;CONTENT BEGIN\n", noRecords, mif},
        {"app", "SIZE=8;CONTENT BEGIN\n", RawBinary},
        {"app", "WIDTH 8;CONTENT BEGIN\n", RawBinary},
        {"app", "WIDTH=8;CONTENT BEGINS\n", RawBinary},
        {"app", "WIDTH=8;CONTENT IN\n", RawBinary},
        {"app", "the width of the content begins here\n", RawBinary},
        {"app.mif", "text\n", noRecords, mif},
        {"app", "; x\nMemory_Initialization_Radix=16;\n", noRecords, coe},
        {"app", "const unsigned char app[4] = {\n  0x01, 2 };\n", noRecords, source},
        {"app", "#define SIZE 4\nchar a[] = { 1 };\n", noRecords, source},
        {"app", "[table]\npoint = { x = 1 }\n", RawBinary},
        {"app", "a[1] = 2; b = { 1 }\n", RawBinary},
        {"app.h", "// empty\n", noRecords, source},
        {"app.c", record, IntelHex},
    });
}

TEST(FormatDetection, ARecordBeginsWithDigitsOfBothCases) {
    for (const char digit : std::string("0123456789ABCDEFabcdef"))
        for (std::size_t at = 0; at < 8; ++at) {
            std::string digits(8, '0');
            digits[at] = digit;
            EXPECT_EQ(Io::Field::recordFormatOf(":" + digits), InputFormat::IntelHex) << digits;
            EXPECT_EQ(Io::Field::recordFormatOf("S1" + digits), InputFormat::MotorolaS) << digits;
        }
    // The neighbours of the digits, and one digit too few.
    for (const std::string digits :
         {"0000000/", "0000000:", "0000000@", "0000000G", "0000000`", "0000000g", "0000000"}) {
        EXPECT_EQ(Io::Field::recordFormatOf(":" + digits), std::nullopt) << digits;
        EXPECT_EQ(Io::Field::recordFormatOf("S1" + digits), std::nullopt) << digits;
    }
    for (const char type : std::string("0123456789"))
        EXPECT_EQ(Io::Field::recordFormatOf(std::string("S") + type + "00000000"),
                  InputFormat::MotorolaS);
    for (const char type : std::string("/:A"))
        EXPECT_EQ(Io::Field::recordFormatOf(std::string("S") + type + "00000000"), std::nullopt);
}

/// The machine itself, with a count.
class CountingHost final : public Io::Host {
public:
    std::optional<Platform::InputFile> openInput(const std::string& path) override {
        ++opened;
        return Host::openInput(path);
    }
    int opened = 0;

private:
    Io::HostScope scope_{*this};
};

class Visited final : public Io::Import::RecordVisitor {
public:
    void visit(const RecordLines& records) override { all.push_back(records); }
    std::vector<RecordLines> all;
};

/// Each record for itself, however many a reader takes together.
std::vector<RecordLines> oneByOne(const std::vector<RecordLines>& records) {
    std::vector<RecordLines> all;
    for (RecordLines some : records)
        for (std::uint64_t i = 0; i < some.count; ++i)
            all.push_back({some.firstLine + i, 1, some.kind, some.isData,
                           some.address + i * some.size, some.size});
    return all;
}

/// A text file and the records that it has, by the documents of its format.
struct Walk {
    std::string contents;
    InputFormat format;
    std::vector<RecordLines> records;
};

std::vector<Walk> walks() {
    using enum InputFormat;
    return {
        {"\xEF\xBB\xBF:02000004080"
         "0F2\n# a remark\n\n:020000001122CB\n"
         ":040010003333333320\n:0400140044444444D8\r\n:0200180055553C\n:00001A00E6\n"
         ":040000050000800077\n:00000001FF\n",
         IntelHex,
         {{1, 1, 4, false, 0, 0},
          {4, 1, 0, true, 0x08000000, 2},
          {5, 1, 0, true, 0x08000010, 4},
          {6, 1, 0, true, 0x08000014, 4},
          {7, 1, 0, true, 0x08000018, 2},
          {8, 1, 0, true, 0x0800001A, 0},
          {9, 1, 5, false, 0, 0},
          {10, 1, 1, false, 0, 0}}},
        {"S005000048446E\n; S1 is\nS1060100010203F2\rS20502000009EF\nS5030002FA\nS9030100FB\n",
         MotorolaS,
         {{1, 1, 0, false, 0, 0},
          {3, 1, 1, true, 0x100, 3},
          {4, 1, 2, true, 0x20000, 1},
          {5, 1, 5, false, 0, 0},
          {6, 1, 9, false, 0, 0}}},
        {"\xEF\xBB\xBF@F000\n01 02 03\n\n04\r\n@10\n05\nq\n",
         TiTxt,
         {{2, 1, 0, true, 0xF000, 3}, {4, 1, 0, true, 0xF003, 1}, {6, 1, 0, true, 0x10, 1}}},
        {"\xEF\xBB\xBF// made\n@10\n0102 0304 /* two\nlines */ 0506\n@20 0708 @0 090a\n",
         Vmem,
         {{3, 1, 0, true, 0x20, 4},
          {4, 1, 0, true, 0x24, 2},
          {5, 1, 0, true, 0x40, 2},
          {5, 1, 0, true, 0, 2}}},
    };
}

TEST(RecordWalk, VisitsEveryRecordWithItsLineWhileItReadsAndAfterwards) {
    Facts::Unheard unheard;
    const Facts::ListenerScope silence(unheard);
    for (const Walk& walk : walks()) {
        SCOPED_TRACE(walk.contents);
        const std::string path = temporaryFile(walk.contents);
        Visited reading;
        const auto file = Io::Formats::openAny(path, std::nullopt, &reading);
        ASSERT_NE(file.reader, nullptr);
        EXPECT_EQ(file.format, walk.format);
        EXPECT_EQ(oneByOne(reading.all), walk.records);
        Visited walking;
        Io::Formats::rowOf(walk.format).walk(path, Io::openInput(path), 1, walking);
        EXPECT_EQ(oneByOne(walking.all), walk.records);
    }
}

TEST(RecordWalk, SeparatesRecordsOfOtherLengthsWithinARun) {
    // Whole records that a decoder takes together, in upper-case digits, and the same line by line.
    const std::string upper =
        ":020000001122CB\n:0200020033AA1F\n:0200040055AAFB\n:0400060044444444E6\n:01000A00AA4B\n"
        ":01000B00AA4A\n:00000001FF\n# what a decoder of whole records may look at\n";
    std::string lower = upper;
    for (char& c : lower) c = c == 'A' ? 'a' : c;
    Facts::Unheard unheard;
    const Facts::ListenerScope silence(unheard);
    Visited together;
    Visited apart;
    Io::Formats::openAny(temporaryFile(upper), std::nullopt, &together);
    Io::Formats::openAny(temporaryFile(lower), std::nullopt, &apart);
    ASSERT_EQ(apart.all.size(), 7U);
    EXPECT_LT(together.all.size(), apart.all.size());
    EXPECT_EQ(oneByOne(together.all), oneByOne(apart.all));
}

TEST(AnyFile, OpensAFileOnceWhateverIsWrongWithIt) {
    std::vector<std::string> contents{"", "raw", "text\n:0", "\x7F\x45LF",
                                      Tests::contentsOf(TESSARON_TEST_DATA "/elf/arm.elf"),
                                      // The lines of a conflict are looked up.
                                      ":0100000001FE\n:0100000002FD\n:00000001FF\n"};
    for (const Walk& walk : walks()) contents.push_back(walk.contents);
    Facts::Unheard unheard;
    const Facts::ListenerScope silence(unheard);
    for (const std::string& text : contents) {
        const std::string path = temporaryFile(text);
        CountingHost host;
        try {
            const auto file = Io::Formats::openAny(path);
            EXPECT_EQ(file.size, text.size());
            if (file.reader != nullptr) file.reader->getSymbols();
        } catch (const Io::Import::Malformed&) {
            EXPECT_EQ(text, "\x7F\x45LF");
        }
        EXPECT_EQ(host.opened, 1) << text.substr(0, 20);
    }
}

TEST(InputFormats, AnEndingBelongsToOneFormat) {
    for (const auto& row : Io::Formats::inputFormats()) {
        for (const auto endings : {row.endings, row.sharedEndings})
            for (const std::string_view ending : endings)
                EXPECT_EQ(Io::Formats::rowByEnding(ending), &row) << ending;
        EXPECT_EQ(Io::Formats::rowCalled(row.word), &row);
        EXPECT_EQ(Io::Formats::rowCalled(row.name), &row);
    }
    EXPECT_EQ(Io::Formats::rowCalled("intel-hex"), &Io::Formats::rowOf(InputFormat::IntelHex));
    EXPECT_EQ(Io::Formats::rowCalled("hex"), nullptr);
    EXPECT_EQ(Io::Formats::rowByEnding("A.HEX"), &Io::Formats::rowOf(InputFormat::IntelHex));
    EXPECT_EQ(Io::Formats::rowByEnding("hex"), nullptr);
}

}  // namespace
