// What a run knows of its bytes: origins, the record, and what is held against a record.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "inspect/Digest.hpp"
#include "inspect/LineRuns.hpp"
#include "inspect/RunRecord.hpp"
#include "io/Host.hpp"
#include "io/formats/FieldReading.hpp"
#include "parser/commands/CmdContext.hpp"
#include "strict/record/Comparison.hpp"
#include "strict/record/Proof.hpp"
#include "strict/record/Provenance.hpp"
#include "strict/record/RunRecording.hpp"
#include "strict/script/ParsedScript.hpp"
#include "strict/script/Program.hpp"
#include "tests/strict/RunFilesFixture.hpp"
#include "tests/strict/TakenDiagnostics.hpp"
#include "util/Hex.hpp"

namespace Strict {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

/// A run of a script whose statements are sound, without the checks and words around it.
class Rehearsal {
public:
    explicit Rehearsal(const std::string& text)
        : program_(parsed(text)), reports_(&program_.text(), sink), provenance_(reports_) {
        files.keepDigests();
        context_.reading = &reading_;
        context_.observer = &provenance_;
        const Io::HostScope hosting(files);
        const Parser::StatementList& statements = program_.statements();
        for (std::size_t i = 0; i < statements.size(); ++i) {
            reports_.enter(statements[i]);
            provenance_.enter(statements[i]);
            EXPECT_TRUE(program_.commands()[i]->execute(context_)) << statements[i].text;
        }
    }

    Inspect::RunRecord record(bool withDetails = false) {
        return recordOf({"script digest", &variables, &program_, &context_, &provenance_, &files},
                        {.hasLines = withDetails, .hasImageDigests = true});
    }

    /// Says in `sink` where the outputs differ from the files on disk.
    bool matchesDisk() {
        const Inspect::RunRecord made = record(true);
        return compareWithDisk(
            files, [&]() -> const Inspect::RunRecord& { return made; }, provenance_, sink);
    }

    const std::map<std::string, std::string> variables{{"a", "b"}};
    Tests::TakenDiagnostics sink;
    RunFiles files{RunFiles::Mode::Comparison};

private:
    static Program parsed(const std::string& text) {
        auto script = std::make_unique<const ScriptText>("s.tsn", text);
        ParsedScript parsed(*script);
        EXPECT_TRUE(parsed.isWhole()) << text;
        return parsed.takeProgram(std::move(script));
    }

    Program program_;
    StatementReports reports_;
    Io::Formats::FieldReading reading_;
    Provenance provenance_;
    Parser::WrapperLib::CmdContext context_;
};

/// Runs in a folder of its own, so that scripts and records name files without it.
class RecordTest : public Tests::RunFilesTest {
protected:
    void SetUp() override {
        RunFilesTest::SetUp();
        before_ = fs::current_path();
        fs::current_path(folder_);
        folder_ = ".";
        // Lines 1 and 3 give 0x11 to 0x13, line 2 gives 0x20 and 0x21.
        put("in.hex", ":020010000102EB\n:020020000304D7\n:020012000506E1\n:00000001FF\n");
        // Lines 1 and 2 both give 0x11.
        put("twice.hex", ":020010000102EB\n:020011000203E8\n:00000001FF\n");
    }

    void TearDown() override {
        folder_ = fs::current_path();
        fs::current_path(before_);
        RunFilesTest::TearDown();
    }

private:
    fs::path before_;
};

std::string areaText(const Buffer::Area& area) {
    return Util::hexNumber(area.start, 1) + "+" + std::to_string(area.length);
}

/// "10+2 line 1 of in.hex by 3" for each range of the last image: its addresses, its origin, the
/// line of the script.
Lines origins(const std::string& script) {
    Rehearsal run(script);
    const Inspect::RunRecord record = run.record(true);
    EXPECT_EQ(run.sink.lines, Lines{}) << script;
    Lines lines;
    for (const Inspect::OriginRange& range : record.images.back().ranges) {
        EXPECT_EQ(Inspect::lineAt(range.lines(), range.area.start), range.firstLine) << script;
        EXPECT_EQ(Inspect::lineAt(range.lines(), range.area.end() - 1), range.lastLine) << script;
        const Inspect::RangeOrigin& origin = record.images.back().originOf(range);
        std::string line = areaText(range.area);
        if (origin.kind == Inspect::MapKind::Filler) line += " filler";
        if (!origin.file.empty())
            line +=
                " line " + std::to_string(range.firstLine) +
                (range.lastLine == range.firstLine ? "" : " to " + std::to_string(range.lastLine)) +
                " of " + origin.file;
        lines.push_back(line + " by " + std::to_string(origin.line));
    }
    return lines;
}

TEST_F(RecordTest, EveryByteHasItsOrigin) {
    struct Row {
        const char* last;  ///< the statements after those that make @a, @b and @f
        Lines origins;
    };
    // @a has 0x10 to 0x13, @b 0x12 to 0x15, @f the bytes of in.hex.
    const std::string before =
        "NEW_BUFFER @a FROM_VALUES {1,2,3,4} -changeStartAddressTo=0x10\n"
        "NEW_BUFFER @b FROM_VALUES {5,6,7,8} -changeStartAddressTo=0x12\n"
        "NEW_BUFFER @f FROM_FILE in.hex\n";
    const std::vector<Row> rows{
        {"NEW_BUFFER @x FROM_BUFFERS {@a @b} -onOverlap=First", {"10+4 by 1", "14+2 by 2"}},
        {"NEW_BUFFER @x FROM_BUFFERS {@a @b} -onOverlap=Last", {"10+2 by 1", "12+4 by 2"}},
        {"NEW_BUFFER @x FROM_BUFFERS {@b @a} -onOverlap=First", {"10+2 by 1", "12+4 by 2"}},
        {"NEW_BUFFER @x FROM_BUFFERS {@b @a} -onOverlap=Last", {"10+4 by 1", "14+2 by 2"}},
        {"NEW_BUFFER @x FROM_FILE twice.hex -onOverlap=First",
         {"10+2 line 1 of twice.hex by 4", "12+1 line 2 of twice.hex by 4"}},
        {"NEW_BUFFER @x FROM_FILE twice.hex -onOverlap=Last",
         {"10+1 line 1 of twice.hex by 4", "11+2 line 2 of twice.hex by 4"}},
        {"NEW_BUFFER @x FROM_FILE_BINARY raw.bin", {"0+3 line 0 of raw.bin by 4"}},
        {"NEW_BUFFER @x FROM_BUFFER @f -changeStartAddressTo=0x8000",
         {"8000+2 line 1 of in.hex by 3", "8002+2 line 3 of in.hex by 3",
          "8010+2 line 2 of in.hex by 3"}},
        {"NEW_BUFFER @x FROM_BUFFER @f -changeStartAddressTo=0",
         {"0+2 line 1 of in.hex by 3", "2+2 line 3 of in.hex by 3", "10+2 line 2 of in.hex by 3"}},
        {"NEW_BUFFER @x FROM_BUFFER @f -useAreas={{0x11, 2}}",
         {"11+1 line 1 of in.hex by 3", "12+1 line 3 of in.hex by 3"}},
        {"FILL_BUFFER @f WITH_VALUES {9} -useAreas={{0x11, 1}}\n"
         "NEW_BUFFER @x FROM_BUFFER @f",
         {"10+1 line 1 of in.hex by 3", "11+1 by 4", "12+2 line 3 of in.hex by 3",
          "20+2 line 2 of in.hex by 3"}},
        {"FILL_BUFFER @f WITH_FILLER {0xFF} -useAreas={{0x12, 4}}\n"
         "NEW_BUFFER @x FROM_BUFFER @f -changeStartAddressTo=0x110",
         {"110+2 line 1 of in.hex by 3", "112+2 line 3 of in.hex by 3", "114+2 filler by 4",
          "120+2 line 2 of in.hex by 3"}},
    };
    put("raw.bin", "abc");
    for (const Row& row : rows) EXPECT_EQ(origins(before + row.last), row.origins) << row.last;
    // Of two fillers the first counts, or without a rule the last, and a written byte before both.
    const std::string fillers =
        "NEW_BUFFER @g EMPTY -useBufferRange={0x20, 4}\n"
        "NEW_BUFFER @h EMPTY -useBufferRange={0x22, 4}\n"
        "FILL_BUFFER @g WITH_FILLER {1}\nFILL_BUFFER @h WITH_FILLER {2}\n";
    const std::vector<Row> merged{
        {"NEW_BUFFER @x FROM_BUFFERS {@g @h} -onOverlap=Last",
         {"20+4 filler by 3", "24+2 filler by 4"}},
        {"NEW_BUFFER @x FROM_BUFFERS {@g @h} -onOverlap=First",
         {"20+4 filler by 3", "24+2 filler by 4"}},
        {"NEW_BUFFER @x FROM_BUFFERS {@h @g} -onOverlap=First",
         {"20+2 filler by 3", "22+4 filler by 4"}},
        {"NEW_BUFFER @x FROM_BUFFERS {@g @h}", {"20+2 filler by 3", "22+4 filler by 4"}},
        {"FILL_BUFFER @h WITH_VALUES {9} -useAreas={{0x23, 1}}\n"
         "NEW_BUFFER @x FROM_BUFFERS {@g @h} -onOverlap=First",
         {"20+3 filler by 3", "23+1 by 5", "24+2 filler by 4"}},
    };
    for (const Row& row : merged) EXPECT_EQ(origins(fillers + row.last), row.origins) << row.last;
}

TEST_F(RecordTest, WhatAFileLosesIsListed) {
    const std::string lost = "1:25 cropped: 4 bytes of in.hex are left out: ";
    const std::string nothing =
        "1:25 empty-image: nothing of the 6 bytes of in.hex, which are from 0x00000010 to "
        "0x00000021, lies where the image is";
    struct Row {
        const char* options;
        Lines said;
    };
    for (const Row& row :
         {Row{"", {}}, Row{"-useBufferRange={0x10, 0x12}", {}},
          Row{"-useAreas={{0x20, 2}, {0x10, 4}}", {}},
          // Lines 1 and 3 give what follows each other.
          Row{"-useAreas={{0x20, 2}}", {lost + "from 0x00000010 to 0x00000013"}},
          Row{"-useBufferRange={0x14, 0x10}", {lost + "from 0x00000010 to 0x00000013"}},
          Row{"-useAreas={{0x11, 2}}",
              {lost + "at 0x00000010, at 0x00000013, from 0x00000020 to 0x00000021"}},
          Row{"-useBufferRange={0, 0x10}", {nothing}}, Row{"-useAreas={{0x14, 12}}", {nothing}}}) {
        const Rehearsal run(std::string("NEW_BUFFER @x FROM_FILE in.hex ") + row.options + "\n");
        EXPECT_EQ(run.sink.lines, row.said) << row.options;
    }
}

// An image of zeros, and one with a zero at every other address over it.
TEST_F(RecordTest, OverlapsAndAreasAreListedUpToALimit) {
    struct Row {
        unsigned dots;
        std::size_t overlaps;  ///< that are reported, with the number of the others
        const char* lastOverlap;
        const char* otherAreas;  ///< that were wiped, beside the first three
    };
    const std::vector<Row> rows{
        {4, 4, "@dots has the same 1 byte at 0x00000006 as", "at 0x00000005"},
        {5, 5, "@dots has the same 1 byte at 0x00000008 as", "at 0x00000005 and in 1 more range"},
        {20, 20, "@dots has the same 1 byte at 0x00000026 as",
         "at 0x00000005 and in 16 more ranges"},
        {21, 21, "@dots overlaps in 1 more range", "at 0x00000005 and in 17 more ranges"},
        {22, 21, "@dots overlaps in 2 more ranges", "at 0x00000005 and in 18 more ranges"},
    };
    for (const Row& row : rows) {
        std::string dots;
        std::string zeros = "0";
        for (unsigned i = 0; i < row.dots; ++i) {
            const auto address = static_cast<std::uint8_t>(2 * i);
            const auto checksum = static_cast<std::uint8_t>(0xFF - address);
            dots += ":0100" + Util::hexByte(address) + "0000" + Util::hexByte(checksum) + "\n";
            zeros += i == 0 ? "" : ",0,0";
        }
        put("dots.hex", dots + ":00000001FF\n");
        Rehearsal run("NEW_BUFFER @zeros FROM_VALUES {" + zeros +
                      "}\nNEW_BUFFER @dots FROM_FILE dots.hex\n"
                      "NEW_BUFFER @x FROM_BUFFERS {@zeros @dots}\n");
        Lines& said = run.sink.lines;
        std::erase_if(said, [](const std::string& line) { return line.starts_with("+"); });
        ASSERT_EQ(said.size(), row.overlaps + 1) << row.dots;
        EXPECT_NE(said[row.overlaps - 1].find(std::string(" overlap: ") + row.lastOverlap),
                  std::string::npos)
            << said[row.overlaps - 1];
        EXPECT_NE(said.back().find(std::string(": at 0x00000001, at 0x00000003, ") +
                                   row.otherAreas + " ("),
                  std::string::npos)
            << said.back();
    }
}

TEST_F(RecordTest, LinesFollowAnImageThatMovesOrTakesAPart) {
    put("long.hex",
        ":04001000010203"
        "04E2\n:0400140005060708CE\n:00000001FF\n");
    struct Row {
        const char* options;
        const char* area;  ///< of whole lines in front of it, to its end
        std::uint64_t firstLine;
    };
    for (const Row& row :
         {Row{"-changeStartAddressTo=0x8000", "8000+8", 1}, Row{"-useAreas={{0x10, 5}}", "10+5", 1},
          Row{"-useAreas={{0x13, 1}}", "10+4", 1}, Row{"-useAreas={{0x14, 1}}", "14+1", 2},
          Row{"-useAreas={{0x15, 3}}", "14+4", 2},
          Row{"-useAreas={{0x15, 2}} -changeStartAddressTo=0x8001", "8000+3", 2}}) {
        Rehearsal run(std::string("NEW_BUFFER @f FROM_FILE long.hex ") + row.options + "\n");
        const Inspect::RunRecord record = run.record(true);
        ASSERT_EQ(record.images.back().ranges.size(), 1U);
        const Inspect::OriginRange& range = record.images.back().ranges[0];
        ASSERT_EQ(range.lines().size(), 1U) << row.options;
        EXPECT_EQ(areaText(range.lines()[0].area), row.area) << row.options;
        EXPECT_EQ(range.lines()[0].firstLine, row.firstLine) << row.options;
        EXPECT_EQ(range.lines()[0].bytesPerLine, 4U);
    }
}

TEST_F(RecordTest, BytesAtOtherPlacesHaveTheLinesThatTheyCameFrom) {
    put("long.hex",
        ":040010000102030"
        "4E2\n:0400140005060708CE\n:00000001FF\n");
    Rehearsal run(
        "NEW_BUFFER @f FROM_FILE in.hex\n"
        "NEW_BUFFER @even FROM_BUFFER @f -useLane={0, 2, 1}\n"
        "NEW_BUFFER @odd FROM_BUFFER @f -useLane={1, 2, 1}\n"
        "NEW_BUFFER @both FROM_BUFFERS {@even, @odd} -interleave=1\n"
        "NEW_BUFFER @long FROM_FILE long.hex\n"
        "NEW_BUFFER @lane FROM_BUFFER @long -useLane={1, 2, 1}\n"
        "NEW_BUFFER @back FROM_BUFFER @long -swapBytes=8\n");
    Lines ranges;
    for (const Inspect::ImageRecord& image : run.record(true).images)
        for (const Inspect::OriginRange& range : image.ranges)
            ranges.push_back(image.name + " " + areaText(range.area) + " " +
                             image.originOf(range).file + " " + std::to_string(range.firstLine) +
                             "-" + std::to_string(range.lastLine));
    EXPECT_EQ(ranges,
              (Lines{"@f 10+2 in.hex 1-1", "@f 12+2 in.hex 3-3", "@f 20+2 in.hex 2-2",
                     "@even 8+1 in.hex 1-1", "@even 9+1 in.hex 3-3", "@even 10+1 in.hex 2-2",
                     "@odd 8+1 in.hex 1-1", "@odd 9+1 in.hex 3-3", "@odd 10+1 in.hex 2-2",
                     // Neighbours come from different images.
                     "@both 10+4  0-0", "@both 20+2  0-0", "@long 10+8 long.hex 1-2",
                     "@lane 8+4 long.hex 1-2", "@back 10+8 long.hex 1-2"}));
    // A difference names all lines that it may come from.
    put("a.hex", ":080010000907060504030201C3\n:00000001FF\n");
    Rehearsal compared(
        "NEW_BUFFER @long FROM_FILE long.hex\n"
        "NEW_BUFFER @back FROM_BUFFER @long -swapBytes=8\n"
        "WRITE_FILE a.hex WITH_BUFFERS {@back}\n");
    EXPECT_FALSE(compared.matchesDisk());
    EXPECT_EQ(compared.sink.lines.back(),
              "+ 1:0 0x00000010 of @back has 09 in the file and 08 in the image, from long.hex, "
              "lines 1 to 2");
}

TEST_F(RecordTest, TheRecordHasValuesWithTheirPlacesAndOutputs) {
    // CRC-32 of "123456789" is CBF43926, by the catalogue of CRCs.
    Rehearsal run(
        "NEW_BUFFER @a FROM_VALUES {0x31,0x32,0x33,0x34,0x35,0x36,0x37,0x38,0x39}\n"
        "NEW_CRC @c FROM_BUFFER @a -setType=Crc32_Vector_AUTOSAR\n"
        "NEW_HASH @c FROM_BUFFER @a -setType=Hash_Md5\n"
        "NEW_BUFFER @b EMPTY -useBufferRange={0x100, 4}\n"
        "NEW_BUFFER @d EMPTY -useBufferRange={0x200, 8}\n"
        "FILL_BUFFER @b WITH_CRC @c\n"
        "FILL_BUFFER @d WITH_CRC @c -useAreas={{0x200, 4}, {0x204, 4}}\n"
        "WRITE_FILE ./a.bin WITH_BUFFERS {@a} -setFormat=MotorolaS_32 -setFormat=RawBinary\n"
        "WRITE_FILE b.hex WITH_BUFFERS {@d @b}\n");
    const Inspect::RunRecord record = run.record();
    EXPECT_EQ(record.scriptSha256, "script digest");
    EXPECT_EQ(record.variables, run.variables);
    ASSERT_EQ(record.values.size(), 2U);
    const Inspect::ValueRecord& crc = record.values[0];
    EXPECT_EQ(crc.name + " " + crc.kind + " " + crc.bytes, "@c crc 2639F4CB") << "as PRINT_CRC";
    EXPECT_EQ(crc.line, 2U);
    Lines places;
    for (const auto& place : crc.places)
        places.push_back(place.image + " " + areaText(place.area) + " by " +
                         std::to_string(place.line));
    EXPECT_EQ(places, (Lines{"@b 100+4 by 6", "@d 200+4 by 7", "@d 204+4 by 7"}));
    // MD5 of the same text, RFC 1321's md5sum.
    const Inspect::ValueRecord& hash = record.values[1];
    EXPECT_EQ(hash.kind + " " + hash.bytes, "hash 25F9E794323B453885F5181F1B624D0B");
    EXPECT_TRUE(hash.places.empty());
    ASSERT_EQ(record.outputs.size(), 2U);
    EXPECT_EQ(record.outputs[0].format, "RawBinary") << "the last format counts";
    EXPECT_EQ(record.outputs[0].size, 9U);
    // SHA-256 of the same text, by sha256sum.
    EXPECT_EQ(record.outputs[0].sha256,
              "15e2b0d3c33891ebb0f1ef609ec419420c20e320ce94c65fbc8c3312448eb225");
    EXPECT_EQ(record.outputs[0].line, 8U);
    EXPECT_EQ(record.outputs[1].path, "b.hex");
    EXPECT_EQ(record.outputs[1].format, "IntelHexExtended");
    EXPECT_EQ(record.outputs[1].images, (Lines{"@d", "@b"}));
}

// Bytes with fillers among them are digested in pieces of 4096.
TEST_F(RecordTest, TheDigestsOfAnImageAreThoseOfItsBytes) {
    for (const unsigned size : {1U, 4095U, 4096U, 4097U, 10'000U}) {
        Rehearsal run("NEW_BUFFER @a EMPTY -useBufferRange={0x100, " + std::to_string(size) +
                      "}\nFILL_BUFFER @a WITH_FILLER {1, 2, 3}\n"
                      "WRITE_FILE a.bin WITH_BUFFERS {@a} -setFormat=RawBinary\n");
        std::string bytes;
        for (unsigned i = 0; i < size; ++i) bytes += static_cast<char>(1 + i % 3);
        const Inspect::RunRecord record = run.record();
        EXPECT_EQ(record.outputs[0].sha256, Inspect::sha256Of(bytes)) << size;
        const Inspect::Digest digest = Inspect::digestOf(*record.images[0].image);
        EXPECT_EQ(digest.sha256, Inspect::sha256Of(bytes)) << size;
        Inspect::Digester digester;
        for (const char& byte : bytes)
            digester.take({reinterpret_cast<const std::uint8_t*>(&byte), 1});
        EXPECT_EQ(digest.crc32, digester.finish().crc32) << size;
    }
}

TEST_F(RecordTest, TheDigestsOfAnImageWithWideGapsAreThoseOfItsRanges) {
    constexpr std::size_t most = std::size_t{64} << 20U;
    for (const std::size_t gaps : {most, most + 1}) {
        Rehearsal run("NEW_BUFFER @a FROM_VALUES {1, 2} -useBufferRange={0, " +
                      std::to_string(gaps + 3) + "}\nFILL_BUFFER @a WITH_FILLER {3} -useAreas={{" +
                      std::to_string(gaps + 2) + ", 1}}\n");
        std::string bytes = "\1\2\3";
        if (gaps == most) bytes.insert(2, gaps, '\0');
        const std::string manifest = Inspect::manifestOf(run.record());
        EXPECT_NE(manifest.find(Inspect::sha256Of(bytes)), std::string::npos) << gaps;
    }
}

TEST_F(RecordTest, ThePageOfARunListsUpToALimit) {
    const auto pageOf = [this](unsigned ranges) {
        std::string lines;
        for (unsigned i = 0; i < ranges; ++i) {
            const std::string head = "01" + Util::hexNumber(std::uint64_t{2} * i, 4) + "00" + "00";
            const unsigned sum = 1 + (2 * i >> 8U) + (2 * i & 0xFFU);
            lines +=
                ":" + head + Util::hexByte(static_cast<std::uint8_t>(0x100 - (sum & 0xFFU))) + "\n";
        }
        put("many.hex", lines + ":00000001FF\n");
        return Inspect::reportOf(Rehearsal("NEW_BUFFER @f FROM_FILE many.hex\n").record());
    };
    const auto has = [](const std::string& page, const char* text) {
        return page.find(text) != std::string::npos;
    };
    EXPECT_TRUE(has(Inspect::reportOf(Rehearsal("NEW_BUFFER @e EMPTY\n").record()), ">@e, empty<"));
    EXPECT_TRUE(has(pageOf(1), ">@f, 0x00000000, 1 byte<"));
    EXPECT_TRUE(has(pageOf(1), ">NEW_BUFFER @f FROM_FILE many.hex</span>"));
    EXPECT_TRUE(has(pageOf(1), "<li id=\"line-1\"><span class=\"no\">1</span>"));
    const std::string few = pageOf(4);
    EXPECT_TRUE(has(few, "@f 0x00000006"));
    EXPECT_FALSE(has(few, "more range"));
    EXPECT_TRUE(has(pageOf(5), " and 1 more range<"));
    EXPECT_FALSE(has(pageOf(200), "more ranges</section>"));
    EXPECT_TRUE(has(pageOf(201), "1 more range</section>"));
    const char* const first = "The maps show the first ranges of each image only.";
    EXPECT_FALSE(has(pageOf(12'000), first));
    EXPECT_TRUE(has(pageOf(12'001), first));

    Inspect::RunRecord record;
    record.scriptPath = "s.tsn";
    for (const std::size_t line : {0U, 1U})
        record.remarks.push_back({.severity = "warning",
                                  .name = "overlap",
                                  .text = "said of " + std::to_string(line),
                                  .file = "s.tsn",
                                  .line = line,
                                  .hint = ""});
    record.scriptText = std::string(200'000, 'x');
    const std::string longest = Inspect::reportOf(record);
    EXPECT_TRUE(has(longest, "</strong> s.tsn: said of 0")) << "no line to link to";
    EXPECT_TRUE(has(longest, "</a>: said of 1"));
    EXPECT_FALSE(has(longest, "too long for this page"));
    record.scriptText += 'x';
    const std::string tooLong = Inspect::reportOf(record);
    EXPECT_TRUE(has(tooLong, "too long for this page"));
    EXPECT_TRUE(has(tooLong, "</strong> line 1: said of 1")) << "there is nothing to link to";
}

TEST_F(RecordTest, AFileOnDiskIsComparedWithWhatTheScriptMakes) {
    struct Row {
        const char* name;
        const char* disk;
        Lines found;
    };
    const std::string differs = "differs: a.hex is not what the script makes today (";
    const std::vector<Row> rows{
        {"equal", ":020000040000FA\n:0400100001020506DE\n:020020000304D7\n:00000001FF\n", {}},
        {"line ends",
         ":020000040000FA\r\n:0400100001020506DE\r\n:020020000304D7\r\n:00000001FF\r\n",
         {differs + "only the line ends differ)"}},
        {"records",
         ":020010000102EB\n:020012000506E1\n:020020000304D7\n:00000001FF\n",
         {differs + "the bytes of the images are the same, the rest of the file differs)"}},
        {"format", "S1070010010205 06DA\nS9030000FC\n", {differs + "the formats differ)"}},
        {"another byte",
         ":0400100001020906DA\n:020020000304D7\n:00000001FF\n",
         {differs + "they differ at the addresses 0x00000012 (1 byte))",
          "+ 1:0 0x00000012 of @f has 09 in the file and 05 in the image, from in.hex, line 3"}},
        {"a byte too few",
         ":0400100001020506DE\n:0100200003DC\n:00000001FF\n",
         {differs + "they differ at the addresses 0x00000021 (1 byte))",
          "+ 1:0 0x00000021 of @f has no byte in the file and 04 in the image, from in.hex, "
          "line 2"}},
        {"a byte too many",
         ":0400100001020506DE\n:03002000030407CF\n:00000001FF\n",
         {differs + "they differ at the addresses 0x00000022 (1 byte))",
          "+ 0x00000022 has 07 in the file and no byte in the image"}},
    };
    for (const Row& row : rows) {
        std::string disk = row.disk;
        std::erase(disk, ' ');
        put("a.hex", disk);
        Rehearsal run(
            "NEW_BUFFER @f FROM_FILE in.hex\n"
            "WRITE_FILE a.hex WITH_BUFFERS {@f} -skipUnwritten\n");
        const bool isEqual = run.matchesDisk();
        EXPECT_EQ(run.sink.lines, row.found) << row.name;
        EXPECT_EQ(isEqual, row.found.empty()) << row.name;
    }
}

TEST_F(RecordTest, ADifferenceShowsEightAreasAndExplainsFour) {
    std::string values = "0";
    for (int i = 1; i < 18; ++i) values += ",0";
    for (const std::size_t areas : {4U, 5U, 8U, 9U}) {
        std::string disk(18, '\0');
        for (std::size_t i = 0; i < areas; ++i) disk[2 * i] = 1;
        put("a.bin", disk);
        Rehearsal run("NEW_BUFFER @v FROM_VALUES {" + values +
                      "} -changeStartAddressTo=0x100\n"
                      "WRITE_FILE a.bin WITH_BUFFERS {@v} -setFormat=RawBinary\n");
        EXPECT_FALSE(run.matchesDisk());
        ASSERT_EQ(run.sink.lines.size(), 1U + 4) << areas;
        EXPECT_EQ(run.sink.lines[4],
                  "+ 1:0 0x00000106 of @v has 01 in the file and 00 in the image");
        const std::string& said = run.sink.lines[0];
        EXPECT_EQ(static_cast<std::size_t>(std::ranges::count(said, ',')),
                  std::min<std::size_t>(areas, 8) - 1);
        EXPECT_EQ(said.ends_with(" and in 1 more area)"), areas == 9) << said;
    }
}

TEST_F(RecordTest, ARunIsComparedWithTheManifestOfAnother) {
    const std::string script =
        "NEW_BUFFER @f FROM_FILE in.hex\n"
        "NEW_CRC @c FROM_BUFFER @f -useAreas={{0x10, 2}} -setType=Crc32_Vector_AUTOSAR\n"
        "WRITE_FILE a.bin WITH_BUFFERS {@f} -setFormat=RawBinary\n";
    Rehearsal run(script);
    const Inspect::RunRecord record = run.record();
    const std::string manifest = Inspect::manifestOf(record);
    put("a.bin", "\1\2\5\6" + std::string(12, '\0') + "\3\4");
    const std::string digest = record.outputs[0].sha256;
    const std::string other = " is not the one of m.json (its ";
    const std::string outputDigest = "\"size\": 18,\n      \"sha256\": \"";
    struct Row {
        std::string from;  ///< of the manifest
        std::string to;
        Lines found;
    };
    const std::vector<Row> rows{
        {"\"version\": 1", "\"version\": 1", {}},
        {"\"version\": 1",
         "\"version\": 2",
         {"differs: m.json is of another version (it is 1, not 2)"}},
        {"script digest",
         "another one",
         {"differs: the script s.tsn" + other + "SHA-256 is script digest, not another one)"}},
        {"\"a\": \"b\"", "\"a\": \"c\"", {"differs: the variables are not those of m.json"}},
        {"\"path\": \"in.hex\"",
         "\"path\": \"other.hex\"",
         {"differs: m.json lists no input in.hex",
          "differs: the script has no input other.hex, which m.json lists"}},
        {"\"format\": \"Intel HEX\"",
         "\"format\": \"ELF\"",
         {"differs: the input in.hex" + other + "format is Intel HEX, not ELF)"}},
        {"\"format\": \"Intel HEX\"",
         "\"format\": " + std::string(1'000'000, '[') + std::string(1'000'000, ']'),
         {"differs: the input in.hex" + other + "format is Intel HEX, not a list)"}},
        {"\"start\": \"0x00000010\",\n          \"length\": 4",
         "\"start\": \"0x00000010\",\n          \"length\": 5",
         {"differs: the input in.hex" + other + "areas are others)"}},
        {"\"line\": 2", "\"line\": 7", {"differs: the value @c" + other + "line is 2, not 7)"}},
        {"\"name\": \"@c\"",
         "\"name\": \"@d\"",
         {"differs: m.json lists no value @c",
          "differs: the script has no value @d, which m.json lists"}},
        {digest,
         "0000",
         {"differs: the image @f" + other + "SHA-256 is " + digest + ", not 0000)"}},
        {outputDigest + digest,
         outputDigest + "0000",
         {"differs: the output a.bin" + other + "SHA-256 is " + digest + ", not 0000)",
          "differs: the file a.bin" + other + "SHA-256 is " + digest + ", not 0000)"}},
        {"\"outputs\"", "\"inputs2\"", {"differs: m.json is not a manifest"}},
        {"{", "", {"differs: m.json is not a manifest"}},
    };
    for (const Row& row : rows) {
        const std::size_t at = manifest.find(row.from);
        ASSERT_NE(at, std::string::npos) << row.from << "\n" << manifest;
        const std::string changed = std::string(manifest).replace(at, row.from.size(), row.to);
        Tests::TakenDiagnostics sink;
        EXPECT_EQ(compareWithManifest("m.json", changed, manifest, sink), row.found.empty())
            << row.from;
        EXPECT_EQ(sink.lines, row.found) << row.from;
    }
    fs::remove("a.bin");
    Tests::TakenDiagnostics sink;
    EXPECT_FALSE(compareWithManifest("m.json", manifest, manifest, sink));
    EXPECT_EQ(sink.lines, Lines{"differs: the output a.bin is missing"});
}

}  // namespace
}  // namespace Strict
