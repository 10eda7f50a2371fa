// The table of input formats and what is done by it: detection, reading a file once, and the walk
// over records.

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "facts/Listener.hpp"
#include "io/Host.hpp"
#include "io/InFile.hpp"
#include "io/field/FieldFormat.hpp"
#include "io/formats/AnyFile.hpp"
#include "io/formats/FormatDetection.hpp"
#include "io/formats/InputFormats.hpp"
#include "io/import/Malformed.hpp"
#include "tests/io/IoFixtures.hpp"

namespace {

using Facts::InputFormat;
using Io::Import::RecordLines;
using Tests::temporaryFile;

TEST(FormatDetection, FindsTheFormatByTheFirstRecordWhereverItIs) {
    using enum InputFormat;
    struct Row {
        std::string name;
        std::string contents;
        std::optional<InputFormat> format;
    };
    constexpr auto noRecords = std::nullopt;
    constexpr std::size_t piece = std::size_t{1} << 17U;
    const std::string record = ":00000001FF\n";
    // A record across the border of two pieces that are read one after the other, at each place.
    std::vector<Row> rows;
    for (std::size_t at = piece - record.size() - 1; at <= piece + 1; ++at)
        rows.push_back({"input", std::string(at, 'x') + "\n" + record, IntelHex});
    for (const Row& row :
         std::initializer_list<Row>{{"input", "", RawBinary},
                                    {"x.HEX", "", RawBinary},
                                    {"input", "x\n:0000000", RawBinary},
                                    {"input", "x:00000001FF\n", RawBinary},
                                    {"input", ":0000000\n", noRecords},
                                    {"input", "\n\nSome text\n", noRecords},
                                    {"x.HEX", "text", noRecords},
                                    {"x.sre", std::string(4, '\0'), noRecords},
                                    {"x.uf2", "text", RawBinary},
                                    {"input", "\xEF\xBB\xBF:00000001FF", IntelHex},
                                    {"input", "junk\rS9030000FC", MotorolaS},
                                    {"input", "s9030000FC", MotorolaS},
                                    {"input", "\x7F\x45LF\n:00000001FF\n", Elf},
                                    {"input", "\x7F\x45L\n:00000001FF\n", IntelHex},
                                    {"input", "UF2\n\x57\x51\x5D\x9E", Uf2},
                                    {"input", "UF2\n", RawBinary},
                                    {"input", "\n@F000\r\n31 40\nq\n", TiTxt},
                                    {"input", "\xEF\xBB\xBF@F000\n31 40\nq\n", TiTxt},
                                    {"input", "@F000\n314\n", RawBinary},
                                    {"input", "@\n31 40\nq\n", RawBinary}})
        rows.push_back(row);
    for (const Row& row : rows)
        EXPECT_EQ(Io::Formats::formatOf(row.name, Io::openInput(temporaryFile(row.contents))),
                  row.format)
            << row.name << row.contents.substr(0, 20);
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
    };
}

TEST(RecordWalk, VisitsEveryRecordWithItsLineWhileItReadsAndAfterwards) {
    Facts::Unheard unheard;
    const Facts::ListenerScope silence(unheard);
    for (const Walk& walk : walks()) {
        SCOPED_TRACE(walk.contents);
        const std::string path = temporaryFile(walk.contents);
        Visited reading;
        const auto file = Io::Formats::openAny(path, &reading);
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
    Io::Formats::openAny(temporaryFile(upper), &together);
    Io::Formats::openAny(temporaryFile(lower), &apart);
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
    for (const auto& row : Io::Formats::inputFormats())
        for (const std::string_view ending : row.endings)
            EXPECT_EQ(Io::Formats::rowByEnding(std::string(ending)), &row) << ending;
    EXPECT_EQ(Io::Formats::rowByEnding("A.HEX"), &Io::Formats::rowOf(InputFormat::IntelHex));
    EXPECT_EQ(Io::Formats::rowByEnding("hex"), nullptr);
}

}  // namespace
