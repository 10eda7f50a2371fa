#include "cli/Conversion.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "parser/commands/CmdWriteFile.hpp"
#include "parser/grammar/FormatChoice.hpp"
#include "strict/script/ParsedScript.hpp"
#include "strict/script/PathArgument.hpp"

namespace {

using Parser::Part;
using Parser::Statement;

TEST(ConversionTest, NamesPathsAsAScriptReadsThem) {
    struct Row {
        std::string path;
        std::string argument;  ///< empty if no script can name the path
    };
    const std::vector<Row> rows{
        {"a.hex", R"("a.hex")"},
        {"a b\tc\nd", "\"a b\tc\nd\""},
        {"$1 (a) [b] @c;,#", R"("$1 (a) [b] @c;,#")"},
        {"a WITH b", R"("a WITH b")"},
        {"a\rb", "\"a\rb\""},
        {"caf\xE9", "\"caf\xE9\""},
        {"-useAreas", R"("-useAreas")"},
        {"//a///b c", R"({/"/a/"/"/b c})"},
        {"a SUBSTITUTE b WITH c", R"({a SUBSTITUTE" b WITH c})"},
        {"SUBSTITUTE", R"("SUBSTITUTE")"},
        {"a\r\nb", "{a\r\"\nb}"},
        {"", ""},
        {" a", ""},
        {"a\n", ""},
        {"a\"b", ""},
        {"a'b", ""},
        {"a{b", ""},
        {"a}b", ""},
        {"a\x1A", ""},
    };
    for (const Row& row : rows) {
        const auto argument = Strict::argumentOf(row.path);
        EXPECT_EQ(argument.obstacle.empty(), !row.argument.empty()) << row.path;
        if (!row.argument.empty()) {
            EXPECT_EQ(argument.text, row.argument);
        }
    }
}

TEST(ConversionTest, ReadsFormatsAsTheGrammarDoes) {
    struct Row {
        const char* text;
        const char* keyword;  ///< null if it is not a format
        std::optional<std::uint32_t> number = std::nullopt;
    };
    const std::vector<Row> rows{
        {"RawBinary", "RawBinary"},
        {"MotorolaS", "MotorolaS"},
        {"MotorolaS_32", "MotorolaS", 32},
        {"IntelHexExtended_0x10", "IntelHexExtended", 16},
        {"Uf2_RP2040", "Uf2", 0xE48BFF56},
        {"Uf2_0xE48BFF56", "Uf2", 0xE48BFF56},
        {"Vmem_4", "Vmem", 4},
        {"RawBinary_4", nullptr},
        {"RawBinary CALL_APP touch WITH_ARGUMENTS x", nullptr},
        {"RawBinary\n", nullptr},
        {"rawbinary", nullptr},
        {"MotorolaS_", nullptr},
        {"MotorolaS_32x", nullptr},
        {"Uf2", nullptr},
        {"Uf2_RP2040_", nullptr},
        {"Vmem", nullptr},
        {"", nullptr},
    };
    for (const Row& row : rows) {
        const auto format = Parser::formatIn(row.text);
        ASSERT_EQ(format.has_value(), row.keyword != nullptr) << row.text;
        if (!format) continue;
        EXPECT_STREQ(Parser::WrapperLib::CmdWriteFile::formats()[format->row].keyword, row.keyword);
        EXPECT_EQ(format->number, row.number) << row.text;
    }
}

TEST(ConversionTest, NamesFilesThatNoScriptCanName) {
    std::ostringstream complaints;
    const Strict::Policy policy;
    Strict::Printer printer(complaints, policy, Strict::DiagnosticFormat::Text, false, false);
    const auto program =
        CommandLine::programFor({.input = "a\"b.bin", .output = " {c}.bin"}, printer);
    ASSERT_TRUE(program) << complaints.str();
    const Parser::StatementList& statements = program->statements();
    EXPECT_EQ(program->pathOf(*statements[0].last(Parser::Role::InputFile)), "a\"b.bin");
    EXPECT_EQ(program->pathOf(*statements[1].last(Parser::Role::OutputFile)), " {c}.bin");
}

/// The grammar takes the blanks after a number as a part of it.
std::string_view withoutBlanks(std::string_view text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

/// A statement in one text, with all that a run looks at.
std::string described(const Statement& statement, const Strict::ScriptText& script) {
    std::ostringstream text;
    text << static_cast<unsigned>(statement.kind) << " at " << script.offsetOf(statement.text)
         << ": " << statement.text;
    for (const Part& part : statement.parts) {
        text << "  " << static_cast<unsigned>(part.role) << ", " << part.choice << ": " << part.text
             << " at " << script.offsetOf(part.text);
        for (const Parser::Number& number : statement.numbersOf(part))
            text << ", " << number.value() << " as " << withoutBlanks(number.text) << " at "
                 << script.offsetOf(number.text);
        text << "\n";
    }
    return text.str();
}

std::vector<std::string> described(const Parser::StatementList& statements,
                                   const Strict::ScriptText& script) {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < statements.size(); ++i)
        texts.push_back(described(statements[i], script));
    return texts;
}

/// What a conversion makes says the same as the statements of the script that it prints.
TEST(ConversionTest, MakesTheStatementsOfItsScript) {
    const std::string hex = testing::TempDir() + "conversion.hex";
    // Sixteen bytes at 0, and 0x100 to begin to run.
    std::ofstream(hex) << ":10000000000102030405060708090A0B0C0D0E0F78\n"
                          ":0400000500000100F6\n"
                          ":00000001FF\n";
    const auto format = [](const char* text) { return Parser::formatIn(text); };
    const std::vector<CommandLine::Conversion> conversions{
        {.input = "in.bin", .output = "out.bin"},
        {.input = "in.elf", .output = "out.txt", .fill = {0xFF}},
        {.input = "in.uf2", .output = "a//b.h", .crop = Buffer::Area{0x10, 0x20}},
        {.input = "in.txt", .output = "out", .format = format("Uf2_RP2040"), .fill = {1, 2, 3}},
        {.input = "in", .output = "out", .format = format("Uf2_0x12345678")},
        {.input = hex, .output = "out.s19"},
        {.input = "in.bin",
         .output = "lane.bin",
         .arranging = {.lane = {{1, 2, 1}}, .swappedWord = 2}},
        {.input = "a.bin",
         .output = "bus.bin",
         .fill = {0xFF},
         .arranging = {.furtherInputs = {"b.bin", "c.hex"},
                       .interleave = 2,
                       .swappedWord = 4,
                       .alignment = 16}},
        {.input = hex,
         .output = "out.hex",
         .fill = {0xFF},
         .offset = 0x100,
         .arranging = {.lane = {{0, 4, 4}}, .inputUnit = 2, .outputUnit = 4, .shortGaps = 8}},
        {.input = hex,
         .output = "out.hex",
         .format = format("IntelHexSegment_32"),
         .crop = Buffer::Area{8, 4},
         .fill = {0},
         .offset = 0x10},
    };
    std::ostringstream complaints;
    const Strict::Policy policy;
    Strict::Printer printer(complaints, policy, Strict::DiagnosticFormat::Text, false, false);
    for (const CommandLine::Conversion& conversion : conversions) {
        const auto program = CommandLine::programFor(conversion, printer);
        ASSERT_TRUE(program) << complaints.str();
        const Strict::ScriptText script("", std::string(program->text().written()), {});
        const Strict::ParsedScript parsed(script);
        EXPECT_TRUE(parsed.isWhole());
        EXPECT_EQ(described(program->statements(), program->text()),
                  described(parsed.statements(), script));
    }
}

}  // namespace
