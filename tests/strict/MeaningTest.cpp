#include "strict/meaning/MeaningCheck.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "strict/meaning/LatestChange.hpp"
#include "strict/script/ParsedScript.hpp"
#include "tests/strict/TakenDiagnostics.hpp"

namespace Strict {
namespace {

using Lines = std::vector<std::string>;

/// What the rules find before the run: "line:column kind" for each finding. Every image counts as
/// used.
Lines found(const std::string& text) {
    const std::map<std::string, std::string> variables;
    auto script = std::make_unique<const ScriptText>("s.tsn", text, variables);
    ParsedScript parsed(*script);
    EXPECT_TRUE(parsed.isWhole()) << text;
    const Program program = parsed.takeProgram(std::move(script));
    Tests::TakenDiagnostics sink;
    StatementReports reports(&program.text(), sink);
    const Provenance provenance(reports);
    MeaningCheck(program, provenance, sink).checkBefore();
    Lines lines;
    for (const std::string& line : sink.lines)
        if (!line.starts_with("+") && line.find("unused-image") == std::string::npos)
            lines.push_back(line.substr(0, line.find(':', line.find(' '))));
    return lines;
}

struct Row {
    const char* script;
    Lines expected;
};

void expect(const std::vector<Row>& rows, const std::string& before = "") {
    for (const Row& row : rows) EXPECT_EQ(found(before + row.script), row.expected) << row.script;
}

const std::string app = "NEW_BUFFER @app FROM_FILE app.hex\n";
const std::string crc = "NEW_CRC @crc FROM_BUFFER @app ";

TEST(MeaningTest, LanesHaveTheRangesOfTheirBus) {
    const auto expectOf = [](const std::string& area, const std::string& made, const Lines& lines) {
        const std::string script =
            "NEW_BUFFER @bus EMPTY -useBufferRange={0x10, 12}\nNEW_BUFFER @l " + made +
            "\nNEW_CRC @crc FROM_BUFFER @l -useAreas={{" + area + "}}";
        EXPECT_EQ(found(script), lines) << script;
    };
    expectOf("8, 6", "FROM_BUFFER @bus -useLane={0, 2, 1}", {});
    expectOf("8, 7", "FROM_BUFFER @bus -useLane={0, 2, 1}", {"3:40 outside"});
    expectOf("5, 4", "FROM_BUFFER @bus -useLane={2, 3, 1}", {"2:41 word-size"});
    expectOf("6, 4", "FROM_BUFFER @bus -useBufferRange={18, 13} -useLane={2, 3, 1}",
             {"2:66 word-size"});
    expectOf("6, 4", "FROM_BUFFER @bus -useBufferRange={18, 12} -useLane={2, 3, 1}", {});
    expectOf("5, 4", "FROM_BUFFER @bus -useBufferRange={18, 12} -useLane={2, 3, 1}",
             {"3:40 outside"});
    expectOf("32, 24", "FROM_BUFFERS {@bus, @bus} -interleave=4", {});
    expectOf("31, 24", "FROM_BUFFERS {@bus, @bus} -interleave=4", {"3:40 outside"});
    expectOf("16, 16", "FROM_BUFFERS {@bus, @bus} -interleave=4 -useBufferRange={8, 8}", {});
    expectOf("16, 12", "FROM_BUFFERS {@bus, @bus} -interleave=4 -useLane={0, 2, 4}", {});
    // What cannot be has no range, and its statement says so when it runs.
    expectOf("0, 99", "FROM_BUFFER @bus -useLane={0, 0, 1}", {});
    expectOf("0, 99", "FROM_BUFFERS {@bus, @bus} -interleave=0", {});
}

TEST(MeaningTest, SignaturesAreValuesAsWell) {
    const std::string key = " -setKeyFile=k.pem";
    const std::string slot = "NEW_BUFFER @slot EMPTY -useBufferRange={0, 96}\n";
    const auto rows = [&](const std::string& type, const std::vector<Row>& list) {
        expect(list, app + slot + "NEW_SIGNATURE @sig FROM_BUFFER @app -useAreas={{96, 96}}" + key +
                         " -setType=" + type + "\n");
    };
    rows("Ed25519",
         {{"FILL_BUFFER @slot WITH_SIGNATURE @sig -useAreas={{0, 64}}", {}},
          {"FILL_BUFFER @slot WITH_SIGNATURE @sig -useAreas={{0, 96}}", {"4:50 value-size"}},
          {"VERIFY_BUFFER @slot WITH_SIGNATURE @sig -useAreas={{0, 63}}", {"4:52 value-size"}},
          {"FILL_BUFFER @slot WITH_SIGNATURE @sig", {"4:34 whole-image"}},
          {"FILL_BUFFER @app WITH_SIGNATURE @sig -useAreas={{32, 64}}", {}},
          {"FILL_BUFFER @app WITH_SIGNATURE @sig -useAreas={{33, 64}}", {"4:49 digest-self"}},
          {"FILL_BUFFER @app WITH_SIGNATURE @sig -useAreas={{32, 64}}\n"
           "FILL_BUFFER @app WITH_VALUES {1} -useAreas={{191, 1}}\n"
           "WRITE_FILE a.hex WITH_BUFFERS {@app}",
           {"5:45 digest-stale"}},
          {"FILL_BUFFER @app WITH_SIGNATURE @sig -useAreas={{32, 64}}\n"
           "FILL_BUFFER @app WITH_VALUES {1} -useAreas={{192, 1}}\n"
           "WRITE_FILE a.hex WITH_BUFFERS {@app}",
           {}}});
    rows("EcdsaP384_Sha384", {{"FILL_BUFFER @slot WITH_SIGNATURE @sig", {}}});
    // Only the key says how many bytes these have.
    rows("EcdsaP384_Sha384 -setSignatureForm=Der",
         {{"FILL_BUFFER @slot WITH_SIGNATURE @sig -useAreas={{0, 95}}", {}}});
    rows("RsaPss_Sha256", {{"FILL_BUFFER @slot WITH_SIGNATURE @sig -useAreas={{0, 95}}", {}}});
    const std::string none = "NEW_BUFFER @none FROM_BUFFERS {}\n";
    expect({{"NEW_SIGNATURE @sig FROM_BUFFER @none -setType=Ed25519 -setKeyFile=k",
             {"2:15 empty-digest"}},
            {"NEW_SIGNATURE @sig FROM_FILE s\nVERIFY_SIGNATURE @sig FROM_BUFFERS {} "
             "-setType=Ed25519 -setKeyFile=k",
             {"3:18 empty-digest"}},
            {"NEW_SIGNATURE @sig FROM_STORED @none", {}},
            {"NEW_HASH @key FROM_KEY k.pem -setType=Hash_Sha2_256", {}}},
           none);
    // A signature that an image holds does not cover its own bytes.
    expect({{"NEW_SIGNATURE @sig FROM_STORED @app -useAreas={{0, 64}}\n"
             "FILL_BUFFER @app WITH_SIGNATURE @sig -useAreas={{0, 64}}\n"
             "WRITE_FILE a.hex WITH_BUFFERS {@app}",
             {}}},
           app);
}

TEST(MeaningTest, AValueFitsItsArea) {
    expect({{"FILL_BUFFER @app WITH_CRC @crc -useAreas={{0, 4}}", {}},
            {"FILL_BUFFER @app WITH_CRC @crc -useAreas={{0, 2}}", {"4:43 value-size"}},
            {"FILL_BUFFER @app WITH_CRC @crc -useAreas={{0, 4}, {8, 8}}", {"4:51 value-size"}},
            // The file may have as many bytes as the value.
            {"FILL_BUFFER @app WITH_CRC @crc", {}},
            {"NEW_BUFFER @its EMPTY -useBufferRange={8, 4}\nFILL_BUFFER @its WITH_CRC @crc", {}},
            {"NEW_BUFFER @its EMPTY -useBufferRange={8, 5}\nFILL_BUFFER @its WITH_CRC @crc",
             {"5:27 whole-image"}},
            {"FILL_BUFFER @app WITH_HASH @sha -useAreas={{0, 32}}", {}},
            {"FILL_BUFFER @app WITH_HASH @sha -useAreas={{0, 16}}", {"4:44 value-size"}},
            {"NEW_BUFFER @its EMPTY -useBufferRange={8, 4}\nFILL_BUFFER @its WITH_HASH @sha",
             {"5:28 whole-image"}},
            {"FILL_BUFFER @app WITH_VALUES {1, 2, 3} -useAreas={{0, 2}}", {"4:51 value-size"}},
            {"FILL_BUFFER @app WITH_VALUES {1, 2, 3} -useAreas={{0, 1 + 2}}", {}},
            {"FILL_BUFFER @app WITH_VALUES {0xAA, 0x55} -useAreas={{0, 100}}", {}},
            {"FILL_BUFFER @app WITH_VALUES {0}", {}},
            {"FILL_BUFFER @app WITH_FILLER {1, 2, 3} -useAreas={{0, 2}}", {"4:51 value-size"}},
            {"FILL_BUFFER @app WITH_STRING 'abcd' -useAreas={{0, 3}}", {"4:48 text-size"}},
            {"FILL_BUFFER @app WITH_STRING ' abc ' -useAreas={{0, 3}}", {}},
            // What has no address is reported as such and as nothing else.
            {"FILL_BUFFER @app WITH_CRC @crc -useAreas={{0, 4}, {8, 0}}", {"4:51 empty-area"}},
            {"FILL_BUFFER @app WITH_VALUES {1, 2} -useAreas={{8, 0}}", {"4:48 empty-area"}},
            {"FILL_BUFFER @app WITH_STRING 'abcd' -useAreas={{8, 0}}", {"4:48 empty-area"}},
            {"NEW_CRC @d FROM_BUFFER @app -useAreas={{9, 9}} -setType=Catalogue{CRC-16/MODBUS}\n"
             "FILL_BUFFER @app WITH_CRC @d -useAreas={{0, 4}}",
             {"5:41 value-size"}},
            {"NEW_CRC @d FROM_BUFFER @app -useAreas={{9, 9}} -setType=Custom{12, 5, 0, true, true, "
             "0}\n"
             "FILL_BUFFER @app WITH_CRC @d -useAreas={{0, 2}}",
             {}},
            {"NEW_CRC @d FROM_BUFFER @app -useAreas={{8, 9}} -setType=Custom{33, 5, 0, true, true, "
             "0x1FFFFFFFF}\n"
             "FILL_BUFFER @app WITH_CRC @d -useAreas={{0, 5}}",
             {}},
            {"NEW_CRC @d FROM_BUFFER @app -useAreas={{8, 8}} -setType=WordSum16\n"
             "FILL_BUFFER @app WITH_CRC @d -useAreas={{0, 4}}",
             {"5:41 value-size"}},
            {"NEW_CRC @d FROM_BUFFER @app -useAreas={{8, 8}} -setType=WordSum32_TwosComplement\n"
             "FILL_BUFFER @app WITH_CRC @d -useAreas={{0, 4}}",
             {}}},
           app +
               "NEW_CRC @crc FROM_BUFFER @app -useAreas={{64, 64}}\n"
               "NEW_HASH @sha FROM_BUFFER @app -useAreas={{64, 64}} -setType=Hash_Sha2_256\n");
}

TEST(MeaningTest, AreasHaveAddressesAndLieInTheirImages) {
    expect({{"PRINT_BUFFER @a -useAreas={{16, 0}}", {"2:28 empty-area"}},
            {"NEW_BUFFER @b FROM_BUFFER @a -useBufferRange={16, 0}", {"2:46 empty-area"}},
            {"PRINT_BUFFER @a -useAreas={{16, 4}, {20, 4}}", {}},
            {"PRINT_BUFFER @a -useAreas={{20, 4}, {16, 5}}", {"2:37 double-area"}},
            {"PRINT_BUFFER @a -useAreas={{16, 9}, {18, 2}, {24, 2}}",
             {"2:37 double-area", "2:46 double-area"}},
            {"PRINT_BUFFER @a -useAreas={{24, 8}}", {}},
            {"PRINT_BUFFER @a -useAreas={{24, 9}}", {"2:28 outside"}},
            {"NEW_HASH @h FROM_BUFFERS {@a, @a} -useAreas={{8, 16}} -setType=Hash_Md5",
             {"2:46 outside"}},
            // The other image may have it.
            {"NEW_CRC @c FROM_BUFFERS {@a, @absent} -useAreas={{0, 4}}", {}},
            {"NEW_BUFFER @b FROM_BUFFER @a -useAreas={{0, 100}}", {}},
            {"NEW_BUFFER @b FROM_BUFFER @a -useAreas={{0, 16}}", {"2:41 outside"}},
            {"NEW_BUFFER @b FROM_BUFFER @a -useAreas={{0, 17}}", {}},
            {"NEW_BUFFER @b FROM_BUFFER @a -useAreas={{31, 1}}", {}},
            {"NEW_BUFFER @b FROM_BUFFER @a -useAreas={{32, 1}}", {"2:41 outside"}},
            {"PRINT_BUFFER @a -useAreas={{16, 4}, {17, 0}}", {"2:37 empty-area"}},
            {"PRINT_BUFFER @a -useAreas={{16, 4}, {16, 4}}", {"2:37 double-area"}},
            {"FILL_BUFFER @a WITH_STRING 'x' -useAreas={{900, 1}}", {}},
            {"NEW_BUFFER @b FROM_BUFFER @a -changeStartAddressTo=0x100\n"
             "FILL_BUFFER @b WITH_VALUES {1} -useAreas={{0x10F, 1}, {0x110, 1}}",
             {"3:55 outside"}},
            {"NEW_BUFFER @f FROM_FILE a.hex\nFILL_BUFFER @f WITH_VALUES {1} -useAreas={{900, 1}}",
             {}}},
           "NEW_BUFFER @a EMPTY -useBufferRange={16, 16}\n");
    // What is made of several images reaches from the lowest to the highest address.
    for (const char* const images : {"{@a @b}", "{@b @a}"})
        expect({{"PRINT_BUFFER @m -useAreas={{16, 1}, {47, 1}}", {}},
                {"PRINT_BUFFER @m -useAreas={{15, 1}}", {"4:28 outside"}},
                {"PRINT_BUFFER @m -useAreas={{48, 1}}", {"4:28 outside"}}},
               "NEW_BUFFER @a EMPTY -useBufferRange={16, 16}\n"
               "NEW_BUFFER @b EMPTY -useBufferRange={40, 8}\n"
               "NEW_BUFFER @m FROM_BUFFERS " +
                   std::string(images) + "\n");
}

TEST(MeaningTest, OptionsNamesAndOutputs) {
    expect(
        {{"NEW_BUFFER @b FROM_VALUES {1} -changeStartAddressTo=1 -changeStartAddressTo=2",
          {"2:55 repeated-option"}},
         {"WRITE_FILE a.hex WITH_BUFFERS {@a} -setFormat=IntelHexSegment -setFormat=RawBinary",
          {"2:74 repeated-option", "2:12 format-ending"}},
         {"WRITE_FILE a.dfu WITH_BUFFERS {@a} -setFormat=DfuSe -setVendorId=1 -setProductId=2", {}},
         {"WRITE_FILE a.dfu WITH_BUFFERS {@a} -setFormat=DfuSe -setVendorId=1 -setVendorId=2",
          {"2:81 repeated-option"}},
         {"WRITE_FILE a.bin WITH_BUFFERS {@a}", {"2:12 format-ending"}},
         {"WRITE_FILE a.hex WITH_BUFFERS {@a} -setFormat=Elf -setElfTemplate=b.elf",
          {"2:12 format-ending"}},
         {"WRITE_FILE a.axf WITH_BUFFERS {@a} -setFormat=Elf -setElfTemplate=b.elf", {}},
         {"WRITE_FILE \"a.ELF\" WITH_BUFFERS {@a}", {"2:12 format-ending"}},
         {"WRITE_FILE a.hex WITH_BUFFERS {@a}", {}},
         {"WRITE_FILE a.b/c.xyz WITH_BUFFERS {@a}", {}},
         {"WRITE_FILE a.txt WITH_BUFFERS {@a}", {}},
         {"WRITE_FILE a.txt WITH_BUFFERS {@a} -setFormat=RawBinary", {"2:12 format-ending"}},
         {"WRITE_FILE a.ihx WITH_BUFFERS {@a} -setFormat=IntelHexSegment_32", {}},
         {"WRITE_FILE a.hex WITH_BUFFERS {@a} -setFormat=Vmem_4", {}},
         {"WRITE_FILE a.s37 WITH_BUFFERS {@a} -setFormat=MotorolaS_28", {}},
         {"WRITE_FILE a.hex WITH_BUFFERS {}", {"2:12 empty-output"}},
         {"NEW_BUFFER @e EMPTY\nWRITE_FILE a.hex WITH_BUFFERS {@e}", {"3:12 empty-output"}},
         {"NEW_BUFFER @e EMPTY\nWRITE_FILE a.hex WITH_BUFFERS {@e @a}", {}},
         {"NEW_BUFFER @e EMPTY\nWRITE_FILE a.hex WITH_BUFFERS {@e @unknown}", {}},
         {"NEW_BUFFER @e EMPTY\nNEW_CRC @c FROM_BUFFER @e", {"3:9 empty-digest"}},
         {"NEW_BUFFER @e EMPTY\nNEW_CRC @c FROM_BUFFERS {@e @unknown}", {}},
         {"NEW_CRC @c FROM_BUFFERS {}", {"2:9 empty-digest"}},
         {"NEW_HASH @h FROM_BUFFERS {} -useAreas={{0, 1}} -setType=Hash_Md5",
          {"2:10 empty-digest"}},
         {"NEW_HASH @h FROM_BUFFERS {@a} -useAreas={} -setType=Hash_Md5", {}},
         {"WRITE_FILE outFile WITH_BUFFERS {@a}", {"2:12 bare-word"}},
         {"WRITE_FILE /tmp/outFile WITH_BUFFERS {@a}", {}},
         {"FILL_BUFFER @a WITH_STRING 'versionText' -useAreas={{0, 16}}", {"2:29 bare-word"}},
         {"FILL_BUFFER @a WITH_STRING 'FW_VERSION' -useAreas={{0, 16}}", {"2:29 bare-word"}},
         {"FILL_BUFFER @a WITH_STRING 'BOOT' -useAreas={{0, 16}}", {}},
         {"FILL_BUFFER @a WITH_STRING 'my_lib' -useAreas={{0, 16}}", {}},
         {"FILL_BUFFER @a WITH_STRING 'Version 1' -useAreas={{0, 16}}", {}},
         {"PRINT_TEXT {buildNumber}", {"2:12 bare-word"}},
         {"PRINT_TEXT {Done.}", {}},
         {"PRINT_TEXT {azAZ09}", {"2:12 bare-word"}},
         {"PRINT_TEXT {Za_Z}", {"2:12 bare-word"}},
         {"PRINT_TEXT {zA}", {"2:12 bare-word"}},
         {"PRINT_TEXT {9zA}", {}},
         {"PRINT_TEXT {_zA}", {}},
         {"PRINT_TEXT {zA-b}", {}},
         {"PRINT_TEXT {Za_z}", {}},
         {"PRINT_TEXT {A_1}", {}},
         {"PRINT_TEXT {Zz09}", {}},
         {"WRITE_FILE a.out WITH_BUFFERS {@a}", {}},
         {"CALL_APP make WITH_ARGUMENTS {flashAll}", {}},
         {"NEW_BUFFER @b FROM_VALUES {1, 2, 3} -useBufferRange={1, 2}", {"2:53 cropped"}},
         {"NEW_BUFFER @b FROM_VALUES {1, 2, 3} -useAreas={{0, 2}, {2, 9}}", {}},
         {"NEW_BUFFER @b FROM_VALUES {1, 2, 3} -useAreas={{0, 1}, {2, 9}}", {"2:56 cropped"}},
         {"NEW_BUFFER @b FROM_VALUES {1, 2, 3} -useAreas={{0, 2}, {1, 2}}", {"2:56 double-area"}},
         {"NEW_BUFFER @b FROM_VALUES {1, 2, 3} -useBufferRange={0, 3}", {}},
         {"NEW_BUFFER @b FROM_VALUES {1, 2, 3} -useBufferRange={0, 9} -useAreas={{0, 2}}",
          {"2:53 cropped"}}},
        "NEW_BUFFER @a EMPTY -useBufferRange={0, 16}\n");
}

TEST(MeaningTest, AValueIsNotPutIntoWhatItCovers) {
    expect(
        {{"NEW_CRC @crc FROM_BUFFER @app\n"
          "FILL_BUFFER @app WITH_CRC @crc -useAreas={{0x100, 4}}",
          {"3:43 digest-self"}},
         {"NEW_CRC @crc FROM_BUFFER @app -useAreas={{0, 0x100}, {0x100 + 3, 64}}\n"
          "FILL_BUFFER @app WITH_CRC @crc -useAreas={{0x100, 4}}",
          {"3:43 digest-self"}},
         // Between two pieces.
         {"NEW_CRC @crc FROM_BUFFER @app -useAreas={{0, 0x100}, {0x104, 64}}\n"
          "FILL_BUFFER @app WITH_CRC @crc -useAreas={{0x100, 4}}",
          {}},
         // Into another image.
         {"NEW_BUFFER @boot FROM_FILE boot.hex\n"
          "NEW_CRC @crc FROM_BUFFER @app\n"
          "FILL_BUFFER @boot WITH_CRC @crc -useAreas={{0x100, 4}}",
          {}},
         // Over a copy, and the other way round; moved as well.
         {"NEW_BUFFER @copy FROM_BUFFER @app\n"
          "NEW_CRC @crc FROM_BUFFER @copy\n"
          "FILL_BUFFER @app WITH_CRC @crc -useAreas={{0x100, 4}}",
          {"4:43 digest-self"}},
         {"NEW_CRC @crc FROM_BUFFER @app\n"
          "NEW_BUFFER @copy FROM_BUFFER @app\n"
          "FILL_BUFFER @copy WITH_CRC @crc -useAreas={{0x100, 4}}",
          {"4:44 digest-self"}},
         {"NEW_BUFFER @part FROM_BUFFER @app -useAreas={{0x100, 0x100}} -changeStartAddressTo=0\n"
          "NEW_CRC @crc FROM_BUFFER @part -useAreas={{0x10, 16}}\n"
          "FILL_BUFFER @app WITH_CRC @crc -useAreas={{0x120, 4}}\n"
          "FILL_BUFFER @app WITH_CRC @crc -useAreas={{0x118, 4}}",
          {"5:43 digest-self"}},
         {"NEW_BUFFER @a FROM_BUFFER @app\nNEW_BUFFER @b FROM_BUFFER @app\n"
          "NEW_CRC @crc FROM_BUFFER @a\nFILL_BUFFER @b WITH_CRC @crc -useAreas={{0, 4}}",
          {"5:41 digest-self"}},
         // Its place was given bytes on purpose.
         {"NEW_BUFFER @copy FROM_BUFFER @app\n"
          "FILL_BUFFER @copy WITH_VALUES {0} -useAreas={{0x100, 4}}\n"
          "NEW_CRC @crc FROM_BUFFER @copy\n"
          "FILL_BUFFER @app WITH_CRC @crc -useAreas={{0x100, 4}}",
          {}},
         // So was its place in the image that was copied, wholly or but for a byte.
         {"NEW_BUFFER @copy FROM_BUFFER @app\n"
          "FILL_BUFFER @app WITH_VALUES {0} -useAreas={{0x100, 4}}\n"
          "NEW_CRC @crc FROM_BUFFER @copy\n"
          "FILL_BUFFER @app WITH_CRC @crc -useAreas={{0x100, 4}}",
          {}},
         // What was there before the copy was made is copied.
         {"NEW_BUFFER @first FROM_BUFFER @app\n"
          "FILL_BUFFER @app WITH_VALUES {0} -useAreas={{0x100, 4}}\n"
          "NEW_BUFFER @copy FROM_BUFFER @app\n"
          "NEW_CRC @crc FROM_BUFFER @copy\n"
          "FILL_BUFFER @app WITH_CRC @crc -useAreas={{0x100, 4}}",
          {"6:43 digest-self"}},
         {"NEW_BUFFER @copy FROM_BUFFER @app\n"
          "FILL_BUFFER @app WITH_VALUES {0} -useAreas={{0x100, 3}}\n"
          "NEW_CRC @crc FROM_BUFFER @copy\n"
          "FILL_BUFFER @app WITH_CRC @crc -useAreas={{0x100, 4}}",
          {"5:43 digest-self"}}},
        app);
}

TEST(MeaningTest, WhatAStoredValueCoversIsNotChanged) {
    const std::string stored = app + crc +
                               "-useAreas={{0, 0x100}}\n"
                               "FILL_BUFFER @app WITH_CRC @crc -useAreas={{0x100, 4}}\n";
    const std::string write = "WRITE_FILE a.hex WITH_BUFFERS {@app}";
    expect(
        {{"FILL_BUFFER @app WITH_VALUES {1} -useAreas={{0xFF, 1}}\n"
          "WRITE_FILE a.hex WITH_BUFFERS {@app}",
          {"4:45 digest-stale"}},
         {"FILL_BUFFER @app WITH_VALUES {1} -useAreas={{0x104, 1}}\n"
          "WRITE_FILE a.hex WITH_BUFFERS {@app}",
          {}},
         // Nobody writes it, or only what was copied before.
         {"FILL_BUFFER @app WITH_VALUES {1} -useAreas={{0xFF, 1}}", {}},
         {"NEW_BUFFER @copy FROM_BUFFER @app\n"
          "FILL_BUFFER @app WITH_VALUES {1} -useAreas={{0xFF, 1}}\n"
          "WRITE_FILE a.hex WITH_BUFFERS {@copy}",
          {}},
         {"FILL_BUFFER @app WITH_VALUES {1} -useAreas={{0xFF, 1}}\n"
          "NEW_BUFFER @copy FROM_BUFFER @app -useAreas={{0, 0x104}} -changeStartAddressTo=0x8000\n"
          "WRITE_FILE a.hex WITH_BUFFERS {@copy}",
          {"4:45 digest-stale"}},
         {"NEW_BUFFER @copy FROM_BUFFER @app -useAreas={{0, 0x104}} -changeStartAddressTo=0x8000\n"
          "FILL_BUFFER @copy WITH_VALUES {1} -useAreas={{0x8080, 1}}\n"
          "WRITE_FILE a.hex WITH_BUFFERS {@copy}",
          {"5:46 digest-stale"}},
         // A variant with a value of its own.
         {"NEW_BUFFER @new FROM_BUFFER @app\n"
          "FILL_BUFFER @new WITH_VALUES {1} -useAreas={{0x80, 1}}\n"
          "NEW_CRC @c2 FROM_BUFFER @new -useAreas={{0, 0x100}}\n"
          "FILL_BUFFER @new WITH_CRC @c2 -useAreas={{0x100, 4}}\n"
          "WRITE_FILE a.hex WITH_BUFFERS {@app}\nWRITE_FILE b.hex WITH_BUFFERS {@new}",
          {}},
         // A value over an area that holds another one, in both orders.
         {"NEW_CRC @all FROM_BUFFER @app -useAreas={{0, 0x104}}\n"
          "FILL_BUFFER @app WITH_CRC @all -useAreas={{0x104, 4}}\n"
          "WRITE_FILE a.hex WITH_BUFFERS {@app}",
          {}},
         {"NEW_CRC @in FROM_BUFFER @app -useAreas={{0, 0x80}}\n"
          "FILL_BUFFER @app WITH_CRC @in -useAreas={{0x80, 4}}\n"
          "WRITE_FILE a.hex WITH_BUFFERS {@app}",
          {"5:42 digest-stale"}},
         // Written twice, and changed between.
         {"WRITE_FILE a.hex WITH_BUFFERS {@app}\n"
          "FILL_BUFFER @app WITH_VALUES {1} -useAreas={{0, 1}}\n"
          "WRITE_FILE b.hex WITH_BUFFERS {@app}",
          {"5:45 digest-stale"}}},
        stored);
    // A value in another image, written together, apart, or after a merge.
    const std::string apart = app +
                              "NEW_BUFFER @boot FROM_FILE boot.hex\n"
                              "NEW_HASH @sha FROM_BUFFER @app -setType=Hash_Sha2_256\n"
                              "FILL_BUFFER @boot WITH_HASH @sha -useAreas={{0, 32}}\n";
    expect({{"WRITE_FILE a.hex WITH_BUFFERS {@boot @app}", {}},
            {"FILL_BUFFER @boot WITH_VALUES {1} -useAreas={{32, 1}}\n"
             "WRITE_FILE a.hex WITH_BUFFERS {@boot @app}",
             {}},
            {"FILL_BUFFER @app WITH_VALUES {1}\nWRITE_FILE a.hex WITH_BUFFERS {@boot @app}",
             {"5:13 digest-stale"}},
            {"FILL_BUFFER @app WITH_VALUES {1}\nWRITE_FILE a.hex WITH_BUFFERS {@boot}",
             {"5:13 digest-stale"}},
            {"WRITE_FILE a.hex WITH_BUFFERS {@boot}\nFILL_BUFFER @app WITH_VALUES {1}\n"
             "WRITE_FILE b.hex WITH_BUFFERS {@app}",
             {"6:13 digest-stale"}},
            {"WRITE_FILE a.hex WITH_BUFFERS {@boot}\nWRITE_FILE b.hex WITH_BUFFERS {@app}\n"
             "NEW_BUFFER @var FROM_BUFFER @app\nFILL_BUFFER @var WITH_VALUES {1}\n"
             "WRITE_FILE c.hex WITH_BUFFERS {@var}",
             {}}},
           apart);
}

// Where images overlap, the run has to show which byte counts, in a copy of what they make as well.
TEST(MeaningTest, AValueOverImagesSideBySideIsFollowed) {
    for (const auto& [length, isKnown] : {std::pair(15, true), {16, true}, {17, false}})
        for (const std::string source : {"FROM_BUFFERS {@app @more}", "FROM_BUFFER @merged"})
            expect({{"FILL_BUFFER @all WITH_VALUES {1} -useAreas={{0, 1}}\n"
                     "WRITE_FILE a.hex WITH_BUFFERS {@all}",
                     isKnown ? Lines{"7:45 digest-stale"} : Lines{}}},
                   "NEW_BUFFER @app EMPTY -useBufferRange={0, " + std::to_string(length) +
                       "}\nNEW_BUFFER @more EMPTY -useBufferRange={16, 16}\n"
                       "NEW_BUFFER @merged FROM_BUFFERS {@app @more}\n"
                       "NEW_BUFFER @all " +
                       source +
                       "\nNEW_CRC @c FROM_BUFFER @all -useAreas={{0, 8}}\n"
                       "FILL_BUFFER @all WITH_CRC @c -useAreas={{24, 4}}\n");
}

// To follow more would take minutes for a thousand values.
TEST(MeaningTest, ACopyOfSoManyChangesIsNotFollowed) {
    const std::string change = "FILL_BUFFER @A WITH_VALUES {1} -useAreas={{4, 1}}\n";
    for (const std::size_t changes : {4096U, 4097U}) {
        std::string script =
            "NEW_BUFFER @A EMPTY -useBufferRange={0, 0x10000}\n"
            "NEW_BUFFER @S EMPTY -useBufferRange={0x20000, 4}\n"
            "NEW_BUFFER @B FROM_BUFFER @A\n";
        for (std::size_t i = 0; i < changes; ++i)
            script +=
                "FILL_BUFFER @B WITH_VALUES {1} -useAreas={{" + std::to_string(8 * i) + ", 1}}\n";
        script += "NEW_CRC @C FROM_BUFFER @B\nFILL_BUFFER @S WITH_CRC @C\n" + change +
                  "WRITE_FILE a.hex WITH_BUFFERS {@S @A}\n";
        const std::string stale = std::to_string(changes + 6) + ":" +
                                  std::to_string(change.find("{4") + 1) + " digest-stale";
        EXPECT_EQ(found(script), changes == 4096 ? Lines{stale} : Lines{});
    }
}

TEST(MeaningTest, FindsChangesByAddressAndNumber) {
    OriginMap changes;
    for (std::uint64_t i = 0; i < 9; ++i) changes.set({i * 4, 2}, i);
    const LatestChange latest(changes);
    const auto any = [](std::size_t) { return true; };
    EXPECT_FALSE(latest.find({0, 36}, 9, any));
    EXPECT_EQ(latest.find({0, 36}, 8, any)->area, (Buffer::Area{32, 2}));
    EXPECT_EQ(latest.find({1, 20}, 0, any)->source, 0U);
    EXPECT_EQ(latest.find({2, 20}, 0, any)->source, 1U);
    EXPECT_FALSE(latest.find({2, 2}, 0, any));
    EXPECT_EQ(latest.find({0, 36}, 3, [](std::size_t n) { return n != 3; })->source, 4U);
    EXPECT_FALSE(LatestChange(OriginMap()).find({0, 9}, 0, any));
}

TEST(MeaningTest, ListsOfAreasKnowWhatSetsOfAddressesKnow) {
    using Buffer::Area;
    using Buffer::AreaList;
    std::mt19937 random(7);
    const auto listOf = [&random](std::size_t most) {
        AreaList areas(random() % (most + 1));
        for (Area& area : areas) area = {random() % 20, random() % 5};
        return areas;
    };
    const auto setOf = [](const AreaList& areas) {
        std::set<std::uint64_t> addresses;
        for (const Area& area : areas)
            for (std::uint64_t at = area.start; at < area.end(); ++at) addresses.insert(at);
        return addresses;
    };
    for (int round = 0; round < 3000; ++round) {
        const AreaList one = listOf(4);
        const AreaList other = listOf(4);
        const Area area{random() % 20, random() % 5};
        std::set<std::uint64_t> common;
        std::ranges::set_intersection(setOf(one), setOf(other),
                                      std::inserter(common, common.end()));
        EXPECT_EQ(setOf(clipped(one, other)), common);
        EXPECT_EQ(haveCommon(one, other), !common.empty());
        common.clear();
        std::ranges::set_intersection(setOf(one), setOf({area}),
                                      std::inserter(common, common.end()));
        EXPECT_EQ(setOf(clipped(one, area)), common);
        EXPECT_EQ(haveCommon(one, area), !common.empty());
        const AreaList apart = united(one);
        EXPECT_EQ(setOf(apart), setOf(one));
        for (std::size_t i = 0; i < apart.size(); ++i) {
            EXPECT_NE(apart[i].length, 0U);
            EXPECT_TRUE(i == 0 || apart[i - 1].end() < apart[i].start);
        }
        EXPECT_EQ(setOf(moved(moved(one, 100), std::uint64_t{0} - 100)), setOf(one));
    }
}

}  // namespace
}  // namespace Strict
