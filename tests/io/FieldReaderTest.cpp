#include <array>
#include <cstdio>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "io/InFile.hpp"
#include "io/field/FieldFormat.hpp"
#include "io/field/FieldReading.hpp"
#include "tests/io/IoFixtures.hpp"

namespace {

using namespace Facts;
using Buffer::Area;
using Io::Field::FieldReading;
using Io::Import::SourceRun;
using Tests::temporaryFile;

/// Takes what a reader reports of one kind.
template <class Wanted>
class Collected : public Listener {
public:
    void hear(const Fact& fact) override {
        const auto& field = std::get<FieldFact>(fact);
        if (const auto* const wanted = std::get_if<Wanted>(&field)) facts.push_back(*wanted);
    }
    std::vector<Wanted> facts;

private:
    ListenerScope scope_{*this};
};

std::unique_ptr<Io::Import::TessaronImportApi> openField(const std::string& path) {
    return FieldReading().open(path, Buffer::OverlapRule::NotSet);
}

TEST(FieldReadingTest, FindsTheFormatByTheFirstRecordWhereverItIs) {
    struct Row {
        std::string name;
        std::string contents;
        Io::Field::FieldFormat format;
    };
    using Io::Field::RawFormat;
    constexpr std::size_t piece = std::size_t{1} << 17U;
    const std::string record = ":00000001FF\n";
    // A record across the border of two pieces that are read one after the other, at each place.
    std::vector<Row> rows;
    for (std::size_t at = piece - record.size() - 1; at <= piece + 1; ++at)
        rows.push_back({"input", std::string(at, 'x') + "\n" + record, RecordFormat::IntelHex});
    for (const Row& row :
         std::initializer_list<Row>{{"input", "", RawFormat{}},
                                    {"x.HEX", "", RawFormat{}},
                                    {"input", "x\n:0000000", RawFormat{}},
                                    {"input", "x:00000001FF\n", RawFormat{}},
                                    {"input", ":0000000\n", ForeignFormat::NoRecords},
                                    {"input", "\n\nSome text\n", ForeignFormat::NoRecords},
                                    {"x.HEX", "text", ForeignFormat::NoRecords},
                                    {"x.sre", std::string(4, '\0'), ForeignFormat::NoRecords},
                                    {"input", "\xEF\xBB\xBF:00000001FF", RecordFormat::IntelHex},
                                    {"input", "junk\rS9030000FC", RecordFormat::SRecords},
                                    {"input", "s9030000FC", RecordFormat::SRecords},
                                    {"input", "\x7F\x45LF\n:00000001FF\n", ForeignFormat::Elf},
                                    {"input", "\x7F\x45L\n:00000001FF\n", RecordFormat::IntelHex},
                                    {"input", "UF2\n\x57\x51\x5D\x9E", ForeignFormat::Uf2},
                                    {"input", "UF2\n", RawFormat{}},
                                    {"input", "\n@F000\r\n31 40\nq\n", ForeignFormat::TiTxt},
                                    {"input", "@F000\n314\n", RawFormat{}},
                                    {"input", "@\n31 40\nq\n", RawFormat{}}})
        rows.push_back(row);
    for (const Row& row : rows)
        EXPECT_EQ(Io::Field::fieldFormatOf(row.name, Io::openInput(temporaryFile(row.contents))),
                  row.format)
            << row.name << row.contents.substr(0, 20);
}

/// A data record of one byte. Its checksum makes the sum of its bytes 0.
std::string oneByte(unsigned address, unsigned value) {
    const unsigned sum = 1 + (address >> 8U) + (address & 0xFFU) + value;
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), ":01%04X00%02X%02X\n", address, value, -sum & 0xFFU);
    return text.data();
}

TEST(FieldReadingTest, NamesTheLinesOfEveryByte) {
    const std::string path = temporaryFile("# remark\n" + oneByte(7, 1) + "\n" + oneByte(8, 2) +
                                           oneByte(3, 4) + oneByte(8, 5) + ":00000001FF\n");
    const auto reader = openField(path);
    const std::vector<SourceRun> runs{{{7, 2}, 2, 4}, {{3, 1}, 5, 5}, {{8, 1}, 6, 6}};
    EXPECT_EQ(reader->getSourceRuns(), runs);
    EXPECT_EQ(Tests::bytesOf(reader->takeMemory()), (std::vector<std::uint8_t>{4, 0, 0, 0, 1, 5}));
    EXPECT_EQ(reader->getSourceRuns(), runs) << "after the image was taken";
    for (const auto& [address, line] : std::initializer_list<std::pair<unsigned, unsigned>>{
             {2, 0}, {3, 5}, {4, 0}, {7, 2}, {8, 6}, {9, 0}})
        EXPECT_EQ(reader->findLine(address), line) << address;
}

TEST(FieldReadingTest, ListsTwentyRangesOfEachKindAndCountsTheOthers) {
    std::string text;
    for (unsigned i = 0; i < 50; ++i) text += oneByte(2 * i, 1);
    for (unsigned i = 0; i < 50; ++i) text += oneByte(2 * i, i < 23 ? 2 : 1);
    const std::string path = temporaryFile(text + ":00000001FF\n");
    {
        Collected<RecordsConflict> conflicts;
        openField(path);
        ASSERT_EQ(conflicts.facts.size(), 20U);
        for (unsigned i = 0; i < 20; ++i) {
            RecordsConflict fact = conflicts.facts[i];
            fact.file = {};
            EXPECT_EQ(fact, (RecordsConflict{{}, 2 * i, 2 * i + 1, 2 * i, 1, i + 1, 2, i + 51}));
        }
    }
    Collected<FurtherOverlaps> further;
    openField(path);
    ASSERT_EQ(further.facts.size(), 2U);
    EXPECT_EQ(further.facts[0].count, 3U);
    EXPECT_EQ(further.facts[1].count, 7U);
}

TEST(FieldReadingTest, TakesACountOfAllRecordsForAnEnd) {
    const std::string data = "S104000001FA\nS5030001FB\n";  // as srec_cat writes it
    for (const auto& [rest, isMissing] : std::initializer_list<std::pair<std::string, bool>>{
             {"", false}, {"\n", false}, {"S104000101F9\n", true}, {"S9030000FC\n", false}}) {
        Collected<EndMissing> missing;
        EXPECT_NE(openField(temporaryFile(data + rest)), nullptr);
        EXPECT_EQ(missing.facts.size(), isMissing ? 1U : 0U) << rest;
    }
}

TEST(FieldReadingTest, ReadsEveryWayToCountSRecords) {
    const std::string data = "S104000001FA\nS104000101F9\n";
    struct Row {
        std::string counts;
        std::size_t wrong;
    };
    for (const Row& row :
         {Row{"S5030002FA\n", 0}, Row{"S604000002F9\n", 0}, Row{"S50500000002F8\n", 0},
          Row{"S50202FB\n", 0}, Row{"S5030001FB\n", 1}, Row{"S5030002FA\nS5030000FC\n", 0},
          Row{"S5030002FA\nS5030001FB\n", 1}}) {
        Collected<LineDamaged> damage;
        const auto reader = openField(temporaryFile(data + row.counts + "S9030000FC\n"));
        EXPECT_EQ(damage.facts.size(), row.wrong) << row.counts;
        for (const LineDamaged& fact : damage.facts)
            EXPECT_EQ(fact.fault, RecordFault::RecordCount) << row.counts;
        EXPECT_EQ(reader == nullptr, row.wrong != 0) << row.counts;
    }
}

}  // namespace
