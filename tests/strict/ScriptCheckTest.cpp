#include "strict/script/ScriptCheck.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "parser/grammar/Statement.hpp"
#include "strict/script/ParsedScript.hpp"
#include "strict/script/Program.hpp"
#include "tests/strict/TakenDiagnostics.hpp"

namespace Strict {
namespace {

using Lines = std::vector<std::string>;
using Parser::Role;

/// What is wrong with a script.
Lines checked(const std::string& text, const std::map<std::string, std::string>& variables = {}) {
    const ScriptText script("s.tsn", text, variables);
    const ParsedScript parsed(script);
    Tests::TakenDiagnostics sink;
    ScriptCheck(script, sink).check(parsed);
    return sink.lines;
}

/// Makes one name of each kind.
const std::string makers =
    "NEW_BUFFER @image FROM_VALUES {1}\n"
    "NEW_CRC @sum FROM_BUFFER @image -setType=Crc32_Standard\n"
    "NEW_HASH @digest FROM_BUFFER @image -setType=Hash_Sha2_256\n"
    "NEW_SIGNATURE @approval FROM_FILE s.bin\n";

std::string with(std::string statement, const std::string& name) {
    for (std::size_t at = statement.find('%'); at != std::string::npos; at = statement.find('%'))
        statement.replace(at, 1, name);
    return statement;
}

TEST(ScriptCheckTest, EveryUseOfANameNeedsOneOfItsKind) {
    struct Row {
        const char* statement;  ///< with % for the name
        Lines known;
        Lines unknown;
        const char* what;
    };
    const Lines noImages{"@sum", "@digest", "@approval", "@none"};
    const Lines noCrcs{"@image", "@digest", "@approval", "@none"};
    const Lines noHashes{"@image", "@sum", "@approval", "@none"};
    const Lines noSignatures{"@image", "@sum", "@digest", "@none"};
    const std::vector<Row> rows{
        {"PRINT_BUFFER %", {"@image"}, noImages, "image"},
        {"NEW_BUFFER @x FROM_BUFFER %", {"@image"}, noImages, "image"},
        {"NEW_CRC @x FROM_BUFFERS {@image %}", {"@image"}, noImages, "image"},
        {"WRITE_FILE a.hex WITH_BUFFERS {%}", {"@image"}, noImages, "image"},
        {"FILL_BUFFER % WITH_VALUES {1}", {"@image"}, noImages, "image"},
        {"FILL_BUFFER @image WITH_CRC %", {"@sum"}, noCrcs, "CRC"},
        {"PRINT_CRC %", {"@sum"}, noCrcs, "CRC"},
        {"FILL_BUFFER @image WITH_HASH %", {"@digest"}, noHashes, "hash"},
        {"PRINT_HASH %", {"@digest"}, noHashes, "hash"},
        {"PRINT_TEXT {%} -resolveSymbolsAsHexValue={%}",
         {"@sum", "@digest", "@approval"},
         {"@image", "@none"},
         "CRC, hash or signature"},
        {"PRINT_SIGNATURE %", {"@approval"}, noSignatures, "signature"},
        {"FILL_BUFFER @image WITH_SIGNATURE %", {"@approval"}, noSignatures, "signature"},
        {"VERIFY_BUFFER @image WITH_SIGNATURE %", {"@approval"}, noSignatures, "signature"},
        {"VERIFY_SIGNATURE % FROM_BUFFER @image -setType=Ed25519 -setKeyFile=k",
         {"@approval"},
         noSignatures,
         "signature"},
        {"VERIFY_SIGNATURE @approval FROM_BUFFER % -setType=Ed25519 -setKeyFile=k",
         {"@image"},
         noImages,
         "image"},
        {"NEW_SIGNATURE @x FROM_BUFFER % -setType=Ed25519 -setKeyFile=k",
         {"@image"},
         noImages,
         "image"},
        {"NEW_SIGNATURE @x FROM_STORED %", {"@image"}, noImages, "image"},
        {"NEW_BUFFER @x EMPTY -useBufferRange={0, lengthOf(%)}",
         {"@image", "@approval"},
         {"@sum", "@digest", "@none"},
         "image"},
    };
    for (const Row& row : rows) {
        for (const std::string& name : row.known)
            EXPECT_EQ(checked(makers + with(row.statement, name)), Lines{}) << row.statement;
        for (const std::string& name : row.unknown) {
            const Lines found = checked(makers + with(row.statement, name));
            ASSERT_EQ(found.size(), 1U) << row.statement << name;
            EXPECT_TRUE(found[0].starts_with("5:"));
            EXPECT_TRUE(found[0].ends_with("unknown-name: no " + std::string(row.what) +
                                           " is called " + name))
                << found[0];
        }
    }
}

TEST(ProgramTest, KnowsWhatItsStatementsMake) {
    auto script = std::make_unique<const ScriptText>("s.tsn", makers + "PRINT_BUFFER @other\n");
    ParsedScript parsed(*script);
    const Program program = parsed.takeProgram(std::move(script));
    for (const char* const name : {"@image", "@sum", "@digest", "@approval"})
        EXPECT_TRUE(program.makes(name)) << name;
    for (const char* const name : {"@other", "@", "NEW_BUFFER", ""})
        EXPECT_FALSE(program.makes(name)) << name;
}

TEST(ScriptCheckTest, ASignatureHasATypeAndAKey) {
    const std::string key = " -setKeyFile=k.pem";
    const Lines noType{
        "5:1 key: the statement does not name the type of the signature (add "
        "-setType=Ed25519 or another type)"};
    const Lines noKey{"5:1 key: the statement has no key (add -setKeyFile=FILE)"};
    for (const std::string statement :
         {"NEW_SIGNATURE @x FROM_BUFFER @image", "VERIFY_SIGNATURE @approval FROM_BUFFER @image"}) {
        const std::string signs = makers + statement;
        EXPECT_EQ(checked(signs + key + " -setType=EcdsaP256_Sha256 -setSignatureForm=Der"),
                  Lines{});
        // The type may come from a variable, and has one form.
        EXPECT_EQ(checked(signs + key + " -setType=Ed25519 -setSignatureForm=Der"), Lines{});
        EXPECT_EQ(checked(signs + key), noType);
        EXPECT_EQ(checked(signs + " -setType=Ed25519"), noKey);
    }
    EXPECT_EQ(checked(makers + "NEW_SIGNATURE @x FROM_STORED @image\nNEW_SIGNATURE @y FROM_FILE s"),
              Lines{});
}

TEST(ScriptCheckTest, ANameIsMadeOnceOfEachKind) {
    struct Row {
        const char* statement;
        const char* what;
    };
    const std::vector<Row> rows{
        {"NEW_BUFFER % EMPTY -useBufferRange={0, 1}", "an image"},
        {"NEW_CRC % FROM_BUFFER @i -setType=Crc32_Standard", "a CRC"},
        {"NEW_HASH % FROM_BUFFER @i -setType=Hash_Sha2_256", "a hash"},
        {"NEW_SIGNATURE % FROM_FILE s", "a signature"},
    };
    std::string all = "NEW_BUFFER @i FROM_VALUES {1}\n";
    for (const Row& row : rows) {
        const std::string made = with(row.statement, "@a") + "\n";
        const Lines found = checked("NEW_BUFFER @i FROM_VALUES {1}\n" + made + made);
        ASSERT_EQ(found.size(), 2U) << row.statement;
        EXPECT_TRUE(found[0].ends_with(" duplicate-name: there is already " +
                                       std::string(row.what) +
                                       " called @a (this one would be dropped)"))
            << found[0];
        EXPECT_TRUE(found[0].starts_with("3:"));
        EXPECT_TRUE(found[1].starts_with("+ 2:"));
        all += made;
    }
    EXPECT_EQ(checked(all), Lines{}) << "one name for a thing of each kind";
    EXPECT_EQ(checked("NEW_BUFFER @a FROM_BUFFER @a\n"),
              Lines{"1:27 unknown-name: no image is called @a"})
        << "a statement does not see what it makes";
}

TEST(ScriptCheckTest, OnlyTheStatementThatDoesNotParseIsLeftOut) {
    const auto kinds = [](const std::string& text) {
        Lines found = checked(text);
        for (std::string& line : found) line = line.substr(0, line.find(": "));
        return found;
    };
    EXPECT_EQ(kinds("PRINT_BUFFER @none -nonsense\n"), Lines{"1:20 syntax"})
        << "the option breaks the statement before it";
    EXPECT_EQ(kinds("PRINT_BUFFER @none\nnonsense\n"), (Lines{"1:14 unknown-name", "2:1 syntax"}));
    EXPECT_EQ(
        kinds("NEW_BUFFER @a FROM_VALUES {1\nPRINT_BUFFER @a\nPRINT_BUFFER @a\nPRINT_BUFFER @b\n"),
        (Lines{"2:1 syntax", "+ 1:27 this brace is not closed", "4:14 unknown-name"}))
        << "what a broken statement would have made counts as made";
    EXPECT_EQ(kinds("NEW_CRC @c FROM_BUFFER {\n\t NEW_HASH @h FROM_BUFFER {\nPRINT_CRC @c\n"
                    "PRINT_HASH @h\nPRINT_CRC @h\nPRINT_HASH @c\n"),
              (Lines{"1:24 syntax", "2:27 syntax", "5:11 unknown-name", "6:12 unknown-name"}))
        << "a statement may be indented";
}

TEST(ScriptCheckTest, StatementsThatCalculateTakesAreReportedInTheirOrder) {
    const std::string swallowed =
        "swallowed: the text of CALCULATE goes on over the next statement (it takes all up to the "
        "next ]: remove it)";
    EXPECT_EQ(checked("PRINT_CRC @a\nCALCULATE [1]\nPRINT_CRC @b\n"),
              (Lines{"1:11 unknown-name: no CRC is called @a", "2:1 " + swallowed}));
    EXPECT_EQ(checked("CALCULATE so PRINT_CRC @a [1]"), Lines{"1:1 " + swallowed});
    const Lines both = checked("CALCULATE [1]\nPRINT_CRC @a ]\nPRINT_CRC @b\n");
    ASSERT_EQ(both.size(), 3);
    EXPECT_EQ(both[0], "1:1 " + swallowed);
    EXPECT_EQ(both[1].substr(0, 11), "2:14 syntax");
    EXPECT_EQ(both[2], "3:11 unknown-name: no CRC is called @b");
    EXPECT_EQ(checked("PRINT_TEXT {a}\nCALCULATE [1 + 2]\nthe last of it"), Lines{});
}

TEST(ScriptCheckTest, AdviceForWhatIsNotAStatement) {
    struct Row {
        const char* text;
        const char* advice;
    };
    const char* const unsignedNumber = "a number has no sign";
    const char* const remark = "a remark begins with //";
    const std::vector<Row> rows{
        {"NEW_BUFFER @b EMPTY -useBufferRange={0, -size}", unsignedNumber},
        {"NEW_BUFFER @b EMPTY -useBufferRange={0, +1}", unsignedNumber},
        {"NEW_BUFFER @b EMPTY -useBufferRange={-1, 1}", unsignedNumber},
        {"NEW_BUFFER @b EMPTY -useBufferRange={8 - 4, -1}", unsignedNumber},
        {"# remark", remark},
        {"; remark", remark},
        {"/* remark */", remark},
        {"-- remark", remark},
        {"\xEF\xBB\xBF", "remove the byte order mark at the beginning"},
    };
    for (const Row& row : rows) {
        const Lines found = checked(std::string(row.text) + "\n");
        ASSERT_FALSE(found.empty()) << row.text;
        EXPECT_TRUE(found[0].ends_with(std::string(" (") + row.advice + ")")) << found[0];
    }
}

TEST(ScriptCheckTest, AdviceForWhatIsNotAValue) {
    const char* const hexadecimal = "a hexadecimal number begins with 0x";
    const char* const most = "a number has at most 32 bits";
    const char* const blank = "remove the blank between the parenthesis and the operator";
    struct Row {
        std::string value;
        std::string advice;  ///< empty for a value
    };
    const std::vector<Row> rows{
        {"0x10", ""},
        {"4294967295", ""},
        {"4294967296", most},
        {"0xFFFFFFFF", ""},
        {"0x100000000", most},
        {"FF", std::string(hexadecimal) + ": 0xFF"},
        {"1F", std::string(hexadecimal) + ": 0x1F"},
        {"0c0", std::string(hexadecimal) + ": 0x0c0"},
        {"1234567A", std::string(hexadecimal) + ": 0x1234567A"},
        {"1000H", hexadecimal},
        {"$10", hexadecimal},
        {"(8)-2", ""},
        {"(8) + 2", ""},
        {"(8) - 2", blank},
        {"(8) * 2", blank},
        {"(8) / 2", blank},
        {"(8)\t% 2", blank},
        {"((8)*(2)) * 2", blank},
        {"(8)-FF", std::string(hexadecimal) + ": 0xFF"},
        {"(8)-4294967296", most},
        {"(-1)", "a number has no sign"},
        {"-1", "a number has no sign"},
    };
    for (const Row& row : rows) {
        const Lines found =
            checked("NEW_BUFFER @b FROM_VALUES {1} -changeStartAddressTo=" + row.value + "\n");
        const bool isValue = found.empty() || found[0].find("syntax: ") == std::string::npos;
        EXPECT_EQ(isValue, row.advice.empty()) << row.value;
        if (!isValue) {
            EXPECT_TRUE(found[0].ends_with(" (" + row.advice + ")")) << found[0];
        }
    }
}

// Of variables only the one is named that gave what is wrong.
TEST(ScriptCheckTest, AVariableThatDoesNotParseIsNamed) {
    const auto notes = [](const std::string& rest, const std::string& value) {
        Lines found = checked("NEW_BUFFER @a FROM_VALUES {1}" + rest + "\n", {{"VAR", value}});
        std::erase_if(found, [](const std::string& line) { return !line.starts_with("+"); });
        return found;
    };
    EXPECT_EQ(notes(" VAR", "-useArea=1"),
              Lines{"+ the variable VAR is replaced by \"-useArea=1\""});
    EXPECT_EQ(notes(" VAR", ","), Lines{"+ the variable VAR is replaced by \",\""});
    EXPECT_EQ(notes(",VAR", "-useAreas={{0, 1}}"), Lines{});
    EXPECT_EQ(notes(" -useArea=VAR", "1"), Lines{});
}

TEST(ScriptCheckTest, FortyCharactersOfAWordAreShown) {
    for (const std::size_t length : {39U, 40U, 41U})
        EXPECT_TRUE(checked(std::string(length, 'x'))[0].ends_with(
            "not " + std::string(std::min<std::size_t>(length, 40), 'x')))
            << length;
}

TEST(ScriptCheckTest, TwentySyntaxErrorsAreShown) {
    std::string text;
    const auto lastWith = [&text](int errors) {
        text.clear();
        for (int i = 0; i < errors; ++i) text += "PRINT_BUFFER {\n";
        const Lines found = checked(text);
        EXPECT_EQ(found.size(), static_cast<std::size_t>(std::min(errors, 21)));
        return found.back();
    };
    constexpr const char* more = "syntax: there are more syntax errors than are shown";
    EXPECT_NE(lastWith(20), more);
    EXPECT_EQ(lastWith(21), more);
    EXPECT_EQ(lastWith(22), more);
}

TEST(ScriptCheckTest, AHundredNamesGetASuggestion) {
    std::string text = makers;
    for (int i = 0; i < 101; ++i) text += "PRINT_BUFFER @imago\n";
    const Lines found = checked(text);
    ASSERT_EQ(found.size(), 101U);
    const std::string said = "unknown-name: no image is called @imago";
    EXPECT_EQ(found[99], "104:14 " + said + " (did you mean @image (line 1)?)");
    EXPECT_EQ(found[100], "105:14 " + said);
}

// A statement that gives its parts their roles is checked, whatever else it is.
TEST(ScriptCheckTest, AMadeUpStatementIsCheckedByItsRoles) {
    const ScriptText script("s.tsn", "SIGN @none INTO @new WITH 0x1FF\nSIGN @new INTO @new\n");
    const std::string_view text = script.prepared();
    Parser::StatementList statements;
    const auto add = [&](std::string_view line, std::string_view uses, std::string_view bytes) {
        const std::size_t begin = text.find(line);
        const auto part = [&](std::string_view word) {
            return text.substr(text.find(word, begin), word.size());
        };
        statements.beginStatement();
        statements.add(Role::Keyword, 0, part("SIGN"));
        statements.add(Role::UsesImage, 0, part(uses));
        statements.add(Role::MakesImage, 0,
                       text.substr(text.find("INTO ", begin) + 5, std::string_view("@new").size()));
        if (!bytes.empty()) {
            statements.add({0x1FF, part(bytes)});
            statements.add(Role::Bytes, 0, part(bytes));
        }
        statements.endStatement({}, part(line));
    };
    add("SIGN @none INTO @new WITH 0x1FF\n", "@none", "0x1FF");
    add("SIGN @new INTO @new\n", "@new", "");
    Tests::TakenDiagnostics sink;
    ScriptCheck check(script, sink);
    for (const Parser::Statement& statement : statements) check.check(statement);
    EXPECT_EQ(sink.lines, Lines{}) << "nothing is reported before it is asked for";
    check.reportFound();
    EXPECT_EQ(
        sink.lines,
        (Lines{"1:6 unknown-name: no image is called @none",
               "1:27 truncated-value: the value does not fit into a byte, only its low eight "
               "bits count (-setValueSize=2 or 4 takes larger values)",
               "2:16 duplicate-name: there is already an image called @new (this one would be "
               "dropped)",
               "+ 1:17 the first one is made here"}));
}

TEST(ScriptCheckTest, AnArrayHasANameThatCompilersTake) {
    const auto named = [](const std::string& name) {
        return checked(
            "NEW_BUFFER @i FROM_VALUES {1}\n"
            "WRITE_FILE a.h WITH_BUFFERS {@i} -setFormat=CArray -setArrayName=" +
            name + "\n");
    };
    for (const std::string name : {"int", "class", "while", "xor_eq", "_Bool"})
        EXPECT_EQ(named(name), Lines{"2:66 outside: an array of C cannot have the name " + name +
                                     " (it is a keyword of C or C++)"});
    for (const std::string name : {"uint8_t", "int_least16_t", "uint_fast64_t", "intptr_t"})
        EXPECT_EQ(named(name), Lines{"2:66 outside: an array of C cannot have the name " + name +
                                     " (it is a type of <stdint.h>)"});
    for (const std::string name : {"Int", "classes", "image", "_", "int_t", "uint24_t", "t", "u"})
        EXPECT_EQ(named(name), Lines{}) << name;
    EXPECT_EQ(named("a -setIncludeGuard=A_H"), Lines{});
    EXPECT_EQ(
        named("a -setIncludeGuard=a"),
        Lines{"2:85 outside: the macro a would replace the array's name (a guard needs a name "
              "of its own)"});
    EXPECT_EQ(named("a -setIncludeGuard=do"),
              Lines{"2:85 outside: a macro of C cannot have the name do (it is a keyword of C or "
                    "C++)"});
}

TEST(ScriptCheckTest, LengthsThatAreEndAddresses) {
    struct Row {
        const char* area;
        bool isReported;
    };
    const std::vector<Row> rows{
        {"{0x8000000, 0x8000001}", true}, {"{0x8000000, 0x8000000}", false},
        {"{0x8000000, 0xBFFFFFF}", true}, {"{0x8000000, 0xC000000}", false},
        {"{0x1000000, 0x1000100}", true}, {"{0xFFFFFF, 0x1000100}", false},
        {"{0x8000000, 0x10000}", false},
    };
    for (const Row& row : rows)
        for (const char* const option : {"-useBufferRange=%", "-useAreas={%}"}) {
            const Lines found =
                checked("NEW_BUFFER @a FROM_FILE in.hex " + with(option, row.area) + "\n");
            EXPECT_EQ(!found.empty(), row.isReported) << option << row.area;
        }
    EXPECT_EQ(checked("NEW_BUFFER @a FROM_FILE in.hex -useBufferRange={0x8000000, 0x8001000}\n"),
              Lines{"1:60 end-as-length: this length looks like an end address (the length up to "
                    "that address is 0x1000)"});
}

}  // namespace
}  // namespace Strict
