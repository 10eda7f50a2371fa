#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "io/formats/FieldReading.hpp"
#include "tests/io/IoFixtures.hpp"

namespace {

using namespace Facts;
using Buffer::Area;
using Io::Formats::FieldReading;
using Io::Import::SourceRun;
using Tests::ExpectedFacts;
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
    return FieldReading().open(path, {});
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
    EXPECT_TRUE(std::ranges::equal(reader->getSourceRuns(), runs));
    EXPECT_EQ(Tests::bytesOf(reader->takeMemory()), (std::vector<std::uint8_t>{4, 0, 0, 0, 1, 5}));
    EXPECT_TRUE(std::ranges::equal(reader->getSourceRuns(), runs)) << "after the image was taken";
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
    EXPECT_TRUE(further.facts[0].areConflicts);
    EXPECT_EQ(further.facts[0].count, 3U);
    EXPECT_FALSE(further.facts[1].areConflicts);
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

// What follows the end of a text is damage, once for each end.
TEST(FieldReadingTest, NothingFollowsTheEndOfAText) {
    const std::string data = ":0100000001FE\n";
    const std::string more = ":0100010002FC\n:0100020003FA\n";
    const std::string end = ":00000001FF\n";
    struct Row {
        std::string contents;
        std::vector<std::uint64_t> lines;  ///< that are damaged, one after the other...
        std::vector<std::uint64_t> ends;   ///< ...and those that end in front of them
    };
    for (const Row& row :
         {Row{data + end + "\x1A", {}, {}}, Row{data + end + "\x1A\n\n \n", {}, {}},
          Row{data + "\x1A\n" + more + end, {3}, {2}},
          Row{":0100000001FE\x1A\n\n" + more + end, {3}, {1}},
          Row{data + "\x1A\n" + more + "\x1A\n" + end, {3, 6}, {2, 5}}}) {
        Collected<LineDamaged> damage;
        EXPECT_EQ(openField(temporaryFile(row.contents)) == nullptr, !row.lines.empty());
        std::vector<std::uint64_t> lines;
        std::vector<std::uint64_t> ends;
        for (const LineDamaged& fact : damage.facts) {
            EXPECT_EQ(fact.fault, RecordFault::ForeignText) << row.contents;
            EXPECT_EQ(fact.found, 0x1AU);
            lines.push_back(fact.lineNumber);
            ends.push_back(fact.expected);
        }
        EXPECT_EQ(lines, row.lines) << row.contents;
        EXPECT_EQ(ends, row.ends) << row.contents;
    }
}

// A record without data may follow the end record, and is noted.
TEST(FieldReadingTest, NoDataComesAfterTheEnd) {
    const std::string data = ":0100000001FE\n";
    const std::string end = ":00000001FF\n";
    const std::string sData = "S104000001FA\n";
    const std::string sEnd = "S9030000FC\n";
    struct Row {
        std::string contents;
        std::uint64_t noted;  ///< records, the first of them in line 3
        bool isData;          ///< that comes in line 3
    };
    for (const Row& row :
         {Row{data + ":0000000000\n:020000040000FA\n" + end, 0, false}, Row{data + end, 0, false},
          Row{data + end + end, 1, false}, Row{data + end + ":020000040000FA\n", 1, false},
          Row{data + end + ":0400000500000000F7\n", 1, false},
          Row{data + end + ":00000006FA\n:00000007F9\n", 2, false},
          Row{data + end + ":0000000000\n", 1, false}, Row{data + end + ":0100010002FC\n", 0, true},
          Row{sData + "S5030001FB\n" + sEnd, 0, false}, Row{sData + sEnd + sEnd, 1, false},
          Row{sData + sEnd + "S5030001FB\nS0030000FC\n", 2, false},
          Row{sData + sEnd + "S1030000FC\n", 1, false},
          Row{sData + sEnd + "S104000101F9\n", 0, true}}) {
        const std::string path = temporaryFile(row.contents);
        std::uint64_t noted = 0;
        {
            Collected<LinesTolerated> tolerated;
            EXPECT_EQ(openField(path) == nullptr, row.isData) << row.contents;
            for (const LinesTolerated& fact : tolerated.facts) {
                EXPECT_EQ(fact.tolerance, Tolerance::RecordAfterEnd) << row.contents;
                EXPECT_EQ(fact.firstLine, 3U) << row.contents;
                noted += fact.count;
            }
        }
        EXPECT_EQ(noted, row.noted) << row.contents;
        Collected<LineDamaged> damage;
        openField(path);
        ASSERT_EQ(damage.facts.size(), row.isData ? 1U : 0U) << row.contents;
        if (row.isData) {
            EXPECT_EQ(damage.facts[0].fault, RecordFault::AfterEnd);
            EXPECT_EQ(damage.facts[0].lineNumber, 3U);
            EXPECT_EQ(damage.facts[0].found, 1U);
        }
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

// A record without a whole count has at least what surrounds the data.
TEST(FieldReadingTest, SaysHowManyDigitsARecordShouldHave) {
    struct Row {
        std::string line;
        std::uint64_t found, expected;
    };
    for (const Row& row :
         {Row{":", 0, 10}, Row{":0", 1, 10}, Row{":02", 2, 14}, Row{":0200", 4, 14},
          Row{"S1", 0, 2}, Row{"S10", 1, 2}, Row{"S105000001", 8, 12}}) {
        const std::string sound = row.line[0] == 'S' ? "S104000001FA\n" : ":0100000001FE\n";
        Collected<LineDamaged> damage;
        EXPECT_EQ(openField(temporaryFile(sound + row.line + "\n" + sound)), nullptr) << row.line;
        ASSERT_FALSE(damage.facts.empty()) << row.line;
        EXPECT_EQ(damage.facts[0].fault, RecordFault::Digits) << row.line;
        EXPECT_EQ(damage.facts[0].found, row.found) << row.line;
        EXPECT_EQ(damage.facts[0].expected, row.expected) << row.line;
    }
}

// Wherever the digit is, and however many there are.
TEST(FieldReadingTest, NotesEveryDigitInLowerCase) {
    std::vector<std::string> records{"S50202FB"};
    for (unsigned size = 1; size < 12; ++size) {
        std::string digits;
        unsigned sum = size + 0xCD + 0xEF;
        for (unsigned i = 0; i < size; ++i, sum += 0xAB) digits += "AB";
        std::array<char, 64> text{};
        std::snprintf(text.data(), text.size(), ":%02XCDEF00%s%02X", size, digits.c_str(),
                      -sum & 0xFFU);
        records.emplace_back(text.data());
    }
    for (const std::string& record : records)
        for (std::size_t at = 1; at <= record.size(); ++at) {
            std::string line = record;
            const bool isLetter = at < line.size() && line[at] >= 'A';
            if (at < line.size() && !isLetter) continue;
            if (isLetter) line[at] = static_cast<char>(line[at] - 'A' + 'a');
            const bool isHex = line[0] == ':';
            Collected<LinesTolerated> tolerated;
            EXPECT_NE(openField(temporaryFile(isHex ? line + "\n:00000001FF\n"
                                                    : "S104000001FA\nS104000101F9\n" + line +
                                                          "\nS9030000FC\n")),
                      nullptr)
                << line;
            ASSERT_EQ(tolerated.facts.size(), isLetter ? 1U : 0U) << line;
            if (isLetter) {
                EXPECT_EQ(tolerated.facts[0].tolerance, Tolerance::LowerCase) << line;
            }
        }
}

TEST(FieldReadingTest, RefusesDataBeyondTheAddressSpace) {
    const std::string page = ":02000004FFFFFC\n";
    const std::string run = ":04FFFB0001020304F8\n";
    const std::string end = ":00000001FF\n# what a decoder of whole records may look at\n";
    const std::string sEnd = "S70500000000FA\n# what a decoder of whole records may look at\n";
    struct Row {
        std::string contents;
        std::uint64_t line;  ///< that is damaged, and alone
        std::string text;
    };
    for (const Row& row : {Row{page + ":02FFFF000102FD\n" + end, 2, ":02FFFF000102FD"},
                           Row{page + run + ":02FFFF000102FD\n" + end, 3, ":02FFFF000102FD"},
                           Row{"S307FFFFFFFF0102F9\n" + sEnd, 1, "S307FFFFFFFF0102F9"}}) {
        SCOPED_TRACE(row.contents);
        const std::string path = temporaryFile(row.contents);
        const ExpectedFacts expected(
            {FieldFact{LineDamaged{
                 path, row.contents[0] == 'S' ? InputFormat::MotorolaS : InputFormat::IntelHex,
                 row.line, row.text, RecordFault::AddressSpace, 0xFFFFFFFF, 0}},
             FieldFact{LinesTolerated{path, Tolerance::Remark, 1, row.line + 2}}});
        EXPECT_EQ(openField(path), nullptr);
    }
    for (const std::string& sound :
         {page + run + ":01FFFF0005FC\n:00000001FF\n", std::string("S307FFFFFFFE0102FA\n") + sEnd})
        EXPECT_EQ(openField(temporaryFile(sound))->getDataAreas().back().end(), 0x100000000U);
}

TEST(FieldReadingTest, ReportsTwoStartAddressesThatDiffer) {
    const std::string linear = ":040000050000800077\n";
    const std::string sameSegment = ":0400000308000000F1\n";
    const std::string otherLinear = ":040000050000900067\n";
    struct Row {
        std::string contents;
        std::vector<StartAddressesDiffer> facts;
    };
    for (const Row& row :
         {Row{linear + linear + sameSegment + ":00000001FF\n", {}},
          Row{linear + otherLinear + ":00000001FF\n", {{{}, 0x8000, 1, 0x9000, 2}}},
          Row{"S9030100FB\nS9030100FB\n", {}},
          Row{"S9030100FB\nS9030200FA\n", {{{}, 0x100, 1, 0x200, 2}}}, Row{"S9030000FC\n", {}}}) {
        Collected<StartAddressesDiffer> found;
        openField(temporaryFile(row.contents));
        for (StartAddressesDiffer& fact : found.facts) fact.file = {};
        EXPECT_EQ(found.facts, row.facts) << row.contents;
    }
}

TEST(FieldReadingTest, TakesARemarkThatIsAWholeRecordForDamage) {
    const std::string record = "020000001122CB";
    struct Row {
        std::string line;
        bool isDamage;
    };
    for (const Row& row :
         {Row{";" + record, true}, Row{"*" + record, true}, Row{"# :" + record, true},
          Row{"//:" + record + " \t", true}, Row{"; S1060100010203F2", true},
          Row{"/* 00000001FF", true}, Row{"; S1060100010203F3", false},
          Row{"#020000001122CC", false}, Row{"; 020000001122CB and text", false},
          Row{"# 00", false}, Row{"!", false}, Row{"; built 20240131", false}}) {
        Collected<LineDamaged> damage;
        const auto reader =
            openField(temporaryFile(":" + record + "\n" + row.line + "\n:00000001FF\n"));
        EXPECT_EQ(reader == nullptr, row.isDamage) << row.line;
        EXPECT_EQ(damage.facts.size(), row.isDamage ? 1U : 0U) << row.line;
        for (const LineDamaged& fact : damage.facts)
            EXPECT_EQ(fact.fault, RecordFault::InRemark) << row.line;
    }
}

}  // namespace
