#include "strict/script/ScriptAssembly.hpp"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Strict {
namespace {

using Lines = std::vector<std::string>;
using Files = std::map<std::string, std::string>;
using Variables = ScriptAssembly::Variables;

/// Keeps diagnostics as "file:line:column kind: text", then " < file:line" for each INCLUDE.
class TakenPlaces final : public DiagnosticSink {
public:
    static std::string textOf(const Place& place) {
        return place.file + ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
    }
    static std::string endOf(const Place& place) {
        std::string text;
        for (const IncludingLine& line : place.includedFrom)
            text += " < " + line.file + ":" + std::to_string(line.line);
        return text;
    }

    void take(const Diagnostic& diagnostic) override {
        const Place place = diagnostic.place.value_or(Place{});
        lines.push_back((diagnostic.place ? textOf(place) + " " : "") +
                        nameOf(diagnostic.kind.value()) + ": " + diagnostic.text + endOf(place));
    }
    void countMore(Kind /*kind*/, std::uint64_t /*count*/) override {}

    Lines lines;
};

/// A script s.tsn and the files that it may include.
struct Assembly {
    explicit Assembly(const std::string& script, Files included = {}, const Variables& given = {})
        : files(std::move(included)) {
        ScriptAssembly assembly(
            [this](const std::string& path) {
                ++reads;
                const auto file = files.find(path);
                if (file == files.end())
                    return ScriptFile{{}, {}, true, {Kind::CannotOpen, "cannot open " + path}};
                return ScriptFile{file->second};
            },
            {"recipes/"}, sink);
        text = assembly.assemble("s.tsn", {script}, given);
        hasOnlyReadFaults = assembly.hasOnlyReadFaults();
    }

    std::string prepared() const {
        return text == nullptr ? "(nothing)" : std::string(text->prepared());
    }

    Files files;
    TakenPlaces sink;
    std::unique_ptr<ScriptText> text;
    std::size_t reads = 0;
    bool hasOnlyReadFaults = true;
};

TEST(ScriptAssemblyTest, AParameterIsReplacedAsAWholeWordByItsValueAsItIs) {
    struct Row {
        std::string script;  ///< after the directive
        Variables given;
        std::string prepared;
    };
    const Variables app{{"in", "a.hex"}};
    const std::vector<Row> rows{
        {"FROM_FILE in", app, "FROM_FILE a.hex"},
        {"in in.in {in} 'in' (in)", app, "a.hex a.hex.a.hex {a.hex} 'a.hex' (a.hex)"},
        // The characters of names bound a word.
        {"in inn min @in in-1 in_ in& #in IN", app, "a.hex inn min @in in-1 in_ in& #in IN"},
        {"in // in", app, "a.hex "},
        // No value has a meaning of its own.
        {"in", {{"in", "$& $1 $$ \\ .* in"}}, "$& $1 $$ \\ .* in"},
        {"in",
         {{"in", "}\"' // x\nSUBSTITUTE a WITH b\nINCLUDE no.tsn"}},
         "}\"' // x\nSUBSTITUTE a WITH b\nINCLUDE no.tsn"},
        {"in a", {{"in", ""}}, " a"},
        {"in", {}, "d a.bin // is not a value"},
        // SUBSTITUTE acts on the script, may bring a parameter in, and leaves values alone.
        {"SUBSTITUTE a WITH (in)\na in", {{"in", "a"}}, "\n(a) a"},
        {"SUBSTITUTE [x-z.] WITH -\nx in.", {{"in", "x.y"}}, "\n- x.y-"},
    };
    for (const Row& row : rows) {
        const bool hasDefault = row.given.empty();
        const Assembly done(std::string(" \tPARAMETER in") +
                                (hasDefault ? " DEFAULT  d a.bin \n" : "\n") + row.script,
                            {}, row.given);
        const std::string expected = hasDefault ? " \t\nd a.bin" : " \t\n" + row.prepared;
        EXPECT_EQ(done.prepared(), expected) << row.script;
        EXPECT_EQ(done.sink.lines, Lines{}) << row.script;
    }
}

TEST(ScriptAssemblyTest, ValuesAreNotReplacedOnceMore) {
    const Assembly done("PARAMETER a\nPARAMETER b DEFAULT a\na b", {}, {{"a", "b"}});
    EXPECT_EQ(done.prepared(), "\n\nb a");
}

TEST(ScriptAssemblyTest, TheParametersOfAFileAreItsOwn) {
    const Files files{{"one.tsn", "PARAMETER image\nPARAMETER name DEFAULT none\n(image name x)"}};
    const Assembly done(
        "PARAMETER x\n"
        "SUBSTITUTE NUMBER WITH 7\n"
        "INCLUDE one.tsn WITH { image=@A, name={x, NUMBER} } // a remark\n"
        "INCLUDE one.tsn WITH{image = 'x, y' ,// the second\n name=image}\n"
        "  INCLUDE \"one.tsn\" WITH { image=@C }\n"
        "name x",
        files, {{"x", "NUMBER"}});
    EXPECT_EQ(done.sink.lines, Lines{});
    EXPECT_EQ(done.prepared(),
              "\n"
              "\n"
              "\n\n(@A {NUMBER, 7} x) \n"
              "\n\n('NUMBER, y' image x)\n"
              "  \n\n(@C none x)\n"
              "name NUMBER");
}

TEST(ScriptAssemblyTest, AValueOfAnIncludeGoesOnToACommaABraceOrARemark) {
    const Files files{{"one.tsn", "PARAMETER v\nPARAMETER w DEFAULT -\nv|w"}};
    const std::vector<std::pair<std::string, std::string>> rows{
        {"v=a", "a|-"},
        {" v = a b ,w= c ", "a b|c"},
        {"v=a,", "a|-"},
        {"v=a // , w=1\n, w=2", "a|2"},
        {"v={a, {b, c}}, w=1", "{a, {b, c}}|1"},
        {"v=x \"p, q\", w='}'", "x \"p, q\"|'}'"},
        {"v='a, w=1'", "'a, w=1'|-"},
        // Signs that are not quotes: within a word, in braces, without a second one in the line.
        {"v=it's, w=don't", "it's|don't"},
        {"v=x' y, w=z'", "x' y|z'"},
        {"v={'a}', w=1", "{'a}'|1"},
        {"v='a, w=2", "'a|2"},
        {"v='a\n', w=2", "'a\n'|2"},
    };
    for (const auto& [values, prepared] : rows) {
        const Assembly done("INCLUDE one.tsn WITH {" + values + "}", files);
        EXPECT_EQ(done.sink.lines, Lines{}) << values;
        EXPECT_EQ(done.prepared(), "\n\n" + prepared) << values;
    }
}

TEST(ScriptAssemblyTest, AVariableOfAScriptWithoutParametersActsOnAllThatItIncludes) {
    const Assembly done("INCLUDE one.tsn WITH { a=file }", {{"one.tsn", "PARAMETER a\na file"}},
                        {{"file", "x"}});
    EXPECT_EQ(done.prepared(), "\nx x");
}

TEST(ScriptAssemblyTest, ADirectiveBeginsALineOutsideOfBracesQuotesAndRemarks) {
    const Files files{{"one.tsn", "1"}, {"a b.tsn", "2"}, {"x.tsn", "3"}};
    const std::vector<std::pair<std::string, std::string>> rows{
        {"INCLUDE one.tsn", "1"},
        {"a\n\t INCLUDE\tone.tsn \nb", "a\n\t 1 \nb"},
        {"INCLUDE {a b.tsn}\nINCLUDE ' a b.tsn'", "2\n2"},
        {"{ a\nINCLUDE one.tsn\n}", "{ a\nINCLUDE one.tsn\n}"},
        {"{{} {}\n}\nINCLUDE one.tsn", "{{} {}\n}\n1"},
        {"'a\nINCLUDE one.tsn\n' \"\nINCLUDE one.tsn\n\"",
         "'a\nINCLUDE one.tsn\n' \"\nINCLUDE one.tsn\n\""},
        // An apostrophe within a word, in braces, in a remark or without a second one is not a
        // quote.
        {"it's\nINCLUDE one.tsn\n{don't}\nINCLUDE one.tsn", "it's\n1\n{don't}\n1"},
        {"a // don't {\nINCLUDE one.tsn\n 'b\nINCLUDE one.tsn", "a \n1\n 'b\n1"},
        {"// INCLUDE one.tsn\n a INCLUDE one.tsn", "\n a INCLUDE one.tsn"},
        {"INCLUDES one.tsn\nINCLUDE-x", "INCLUDES one.tsn\nINCLUDE-x"},
        // The path may come from a parameter, and is looked for among the recipes at last.
        {"PARAMETER p DEFAULT x\nINCLUDE p.tsn", "\n3"},
        {"INCLUDE only.tsn", "r"},
    };
    Files all = files;
    all["recipes/only.tsn"] = "r";
    all["recipes/one.tsn"] = "not this one";
    for (const auto& [script, prepared] : rows) {
        const Assembly done(script, all);
        EXPECT_EQ(done.sink.lines, Lines{}) << script;
        EXPECT_EQ(done.prepared(), prepared) << script;
    }
}

TEST(ScriptAssemblyTest, APathBeginsInTheFolderOfItsFileAndAFileIsReadOnce) {
    const Assembly done("INCLUDE a/one.tsn\nINCLUDE a/one.tsn\nINCLUDE a/b/two.tsn",
                        {{"a/one.tsn", "INCLUDE b/two.tsn"}, {"a/b/two.tsn", "2"}});
    EXPECT_EQ(done.prepared(), "2\n2\n2");
    EXPECT_EQ(done.reads, 2U);
}

TEST(ScriptAssemblyTest, APlaceIsThatOfTheTextWithTheIncludesThatLeadThere) {
    const Assembly done("PARAMETER v\n// x\nINCLUDE a/one.tsn WITH { p=@q }\n<end>\n",
                        {{"a/one.tsn", "// remark\nPARAMETER p\n  INCLUDE two.tsn\n<one> p v"},
                         {"a/two.tsn", "SUBSTITUTE S WITH long text\n\n<two> S"}},
                        {{"v", "1"}});
    const auto at = [&](std::string_view word) {
        const std::string_view text = done.text->prepared();
        const Place place = done.text->placeOf(text.substr(text.find(word), word.size()));
        return TakenPlaces::textOf(place) + TakenPlaces::endOf(place) + " " +
               std::to_string(place.caretLength);
    };
    // The parameter v of the script has no meaning in the file.
    EXPECT_EQ(at("<one>"), "a/one.tsn:4:1 < s.tsn:3 5");
    EXPECT_EQ(at("@q"), "a/one.tsn:4:7 < s.tsn:3 1");
    EXPECT_EQ(at("<two>"), "a/two.tsn:3:1 < a/one.tsn:3 < s.tsn:3 5");
    EXPECT_EQ(at("text"), "a/two.tsn:3:7 < a/one.tsn:3 < s.tsn:3 1");
    EXPECT_EQ(at("<end>"), "s.tsn:4:1 5");
    // What lies in two files has the length of its beginning.
    EXPECT_EQ(at("<one> @q v\n<end>"), "a/one.tsn:4:1 < s.tsn:3 9");
    const std::string_view text = done.text->prepared();
    const auto notes = done.text->variableNotes(text.substr(text.find("@q"), 2));
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_EQ(notes[0].text, "the parameter p is replaced by \"@q\"");
}

TEST(ScriptAssemblyTest, WhatIsWrongIsReportedWhereItIs) {
    struct Row {
        std::string script;
        Lines lines;
    };
    const Files files{{"p.tsn", "PARAMETER one // remark\none"},
                      {"loop.tsn", "\nINCLUDE back.tsn"},
                      {"back.tsn", "INCLUDE loop.tsn"},
                      {"bad.tsn", " PARAMETER"}};
    const std::vector<Row> rows{
        {"\n INCLUDE no.tsn", {"s.tsn:2:10 cannot-open: cannot open no.tsn"}},
        {"PARAMETER p DEFAULT {}\nINCLUDE p", {"s.tsn:2:9 syntax: the name of the file is empty"}},
        {"INCLUDE s.tsn", {"s.tsn:1:9 syntax: s.tsn includes itself"}},
        {"INCLUDE loop.tsn",
         {"back.tsn:1:9 syntax: loop.tsn includes itself < loop.tsn:2 < s.tsn:1"}},
        {"INCLUDE bad.tsn", {"bad.tsn:1:11 syntax: expected the name of a parameter < s.tsn:1"}},
        {"INCLUDE p.tsn",
         {"p.tsn:1:11 missing-parameter: the parameter one has no value and no default < s.tsn:1"}},
        {"INCLUDE p.tsn WITH { on=1, one=2, one=3 }",
         {"s.tsn:1:22 unused-variable: on is not a parameter of p.tsn",
          "s.tsn:1:35 duplicate-name: one has a value already"}},
        {"PARAMETER a\nPARAMETER b DEFAULT 1\nPARAMETER c\nb c",
         {"unused-variable: B is not a parameter of s.tsn",
          "unused-variable: s.tsn declares the parameter a and does not use it",
          "s.tsn:3:11 missing-parameter: the parameter c has no value and no default"}},
        {"PARAMETER a\nPARAMETER a DEFAULT 2\na",
         {"s.tsn:2:11 duplicate-name: there is already a parameter called a",
          "unused-variable: B is not a parameter of s.tsn"}},
        {"PARAMETER a\nSUBSTITUTE a WITH b\na",
         {"s.tsn:2:12 duplicate-name: there is already a parameter called a",
          "unused-variable: B is not a parameter of s.tsn"}},
        {"PARAMETER 1x\nPARAMETER -x\nPARAMETER a b\nPARAMETER c DEFAULT // 1\nINCLUDE\nINCLUDE {a",
         {"s.tsn:1:11 syntax: expected the name of a parameter",
          "s.tsn:2:11 syntax: expected the name of a parameter",
          "s.tsn:3:13 syntax: expected DEFAULT or the end of the line",
          "s.tsn:4:21 syntax: expected the value of the parameter",
          "s.tsn:5:8 syntax: expected the name of a file",
          "s.tsn:6:9 syntax: expected the name of a file"}},
        {"INCLUDE a b\nINCLUDE a WITH x\nINCLUDE a WITH { =1 }\nINCLUDE a WITH { b 1 }\n"
         "INCLUDE a WITH { b= }\nINCLUDE a WITH { b=1 } c\nINCLUDE a WITH { b=1",
         {"s.tsn:1:11 syntax: expected the end of the line after an INCLUDE",
          "s.tsn:2:16 syntax: expected {", "s.tsn:3:18 syntax: expected the name of a parameter",
          "s.tsn:4:20 syntax: expected =", "s.tsn:5:21 syntax: expected the value of the parameter",
          "s.tsn:6:24 syntax: expected the end of the line after an INCLUDE",
          "s.tsn:7:21 syntax: expected }, but the file ends here"}},
        {"PARAMETER WITH_CRC\nPARAMETER WITH_CRC\na",
         {"s.tsn:1:11 syntax: WITH_CRC is a word of the language, which a parameter would replace",
          "s.tsn:2:11 syntax: WITH_CRC is a word of the language, which a parameter would "
          "replace"}},
        {"INCLUDE p.tsn WITH { one=\x01 }",
         {"s.tsn:1:26 syntax: a script with directives cannot have the character 0x01"}},
    };
    for (const Row& row : rows) {
        const bool isOfScript = row.script.starts_with("PARAMETER a");
        const Assembly done(row.script, files,
                            isOfScript ? Variables{{"a", "1"}, {"B", "1"}} : Variables{});
        EXPECT_EQ(done.sink.lines, row.lines) << row.script;
    }
    EXPECT_TRUE(Assembly("INCLUDE no.tsn").hasOnlyReadFaults);
    EXPECT_FALSE(Assembly("INCLUDE no.tsn\nINCLUDE s.tsn").hasOnlyReadFaults);
}

TEST(ScriptAssemblyTest, DepthNumberAndLengthHaveBounds) {
    // A chain of files of which the last one is at the level of its number.
    Files chain;
    for (std::size_t i = 1; i <= ScriptAssembly::deepest; ++i)
        chain["f" + std::to_string(i)] = "INCLUDE f" + std::to_string(i + 1);
    const std::string last = "f" + std::to_string(ScriptAssembly::deepest + 1);
    chain[last] = "end";
    const Assembly tooDeep("INCLUDE f1", chain);
    ASSERT_EQ(tooDeep.sink.lines.size(), 1U);
    EXPECT_TRUE(tooDeep.sink.lines[0].starts_with(
        "f64:1:9 syntax: there are more than 64 levels of included files < f63:1"))
        << tooDeep.sink.lines[0];
    EXPECT_EQ(Assembly("INCLUDE f2", chain).prepared(), "end");

    // Each level doubles the files, or the value.
    Files doubled;
    for (int i = 0; i < 40; ++i) {
        const std::string next = "INCLUDE d" + std::to_string(i + 1);
        doubled["d" + std::to_string(i)] = next + "\n" + next;
        doubled["v" + std::to_string(i)] =
            "PARAMETER p\nINCLUDE v" + std::to_string(i + 1) + " WITH { p=p p }";
    }
    doubled["d40"] = doubled["v40"] = "";
    const Assembly tooMany("INCLUDE d0", doubled);
    ASSERT_EQ(tooMany.sink.lines.size(), 1U);
    EXPECT_NE(tooMany.sink.lines[0].find("there are more than 65536 included files"),
              std::string::npos);
    const Assembly tooLong("INCLUDE v0 WITH { p=1234 }", doubled);
    ASSERT_EQ(tooLong.sink.lines.size(), 1U);
    EXPECT_NE(tooLong.sink.lines[0].find("the script becomes longer than 64 MiB"),
              std::string::npos);
}

}  // namespace
}  // namespace Strict
