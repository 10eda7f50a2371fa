#include "strict/diagnostics/Printer.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "platform/Paths.hpp"
#include "strict/diagnostics/PendingList.hpp"
#include "strict/diagnostics/RemarkList.hpp"

namespace Strict {
namespace {

constexpr std::size_t most = 20;

std::size_t linesOf(const std::string& text) {
    return static_cast<std::size_t>(std::ranges::count(text, '\n'));
}

/// What is printed of `counts` diagnostics of each kind.
struct Printed {
    std::string text;
    std::size_t errors;
};
Printed printed(const std::map<Kind, std::size_t>& counts, DiagnosticFormat format,
                bool isQuiet = false, const Policy& policy = {}) {
    std::ostringstream out;
    Printer printer(out, policy, format, false, isQuiet);
    for (const auto& [kind, count] : counts)
        for (std::size_t i = 0; i < count; ++i) printer.take({kind, "x"});
    printer.take({std::nullopt, "a note"});
    printer.finish();
    return {out.str(), printer.errors()};
}

TEST(PrinterTest, TwentyOfAKindArePrintedAndTheOthersAreCounted) {
    const auto [all, errors] =
        printed({{Kind::Conflict, most}, {Kind::Overlap, most}}, DiagnosticFormat::Text);
    EXPECT_EQ(linesOf(all), 2 * most + 1);
    EXPECT_EQ(all.find("not shown"), std::string::npos);
    EXPECT_EQ(errors, most);

    const auto [some, moreErrors] =
        printed({{Kind::Conflict, most + 1}, {Kind::Overlap, 1'234'567}}, DiagnosticFormat::Text);
    EXPECT_EQ(linesOf(some), 2 * most + 2);
    EXPECT_TRUE(some.ends_with(
        "tessaron: note: a note\n"
        "tessaron: note: not shown: 1 more of conflict, 1,234,547 more of overlap\n"))
        << some;
    EXPECT_EQ(moreErrors, most + 1) << "a run fails by each error, printed or not";
}

TEST(PrinterTest, TheSumOfAFilesOthersIsPrintedOnce) {
    std::ostringstream out;
    const Policy policy;
    Printer printer(out, policy, DiagnosticFormat::Text, false, false);
    for (int file = 0; file < 2; ++file) {
        for (std::size_t i = 0; i < most; ++i) printer.take({Kind::Conflict, "x"});
        printer.take({.kind = Kind::Conflict, .text = "980 more", .count = 980});
    }
    printer.finish();
    EXPECT_EQ(linesOf(out.str()), most + 2);
    EXPECT_TRUE(
        out.str().ends_with("error: 980 more [conflict]\n"
                            "tessaron: note: not shown: 1,000 more of conflict\n"))
        << out.str();
}

TEST(PrinterTest, NotesOfStatementsAreBoundedAndThoseOfTheRunAreNot) {
    std::ostringstream out;
    const Policy policy;
    Printer printer(out, policy, DiagnosticFormat::Text, false, false);
    for (std::size_t i = 0; i < most + 2; ++i)
        printer.take({std::nullopt, "x", Place{"s.tsn", 1, 0, "", 0, 0}});
    printer.take({std::nullopt, "the run"});
    printer.finish();
    EXPECT_EQ(linesOf(out.str()), most + 2);
    EXPECT_TRUE(
        out.str().ends_with("tessaron: note: the run\n"
                            "tessaron: note: not shown: 2 more notes\n"))
        << out.str();
}

TEST(PrinterTest, TheLastLineOfJsonHasTheNumbers) {
    const auto [text, errors] =
        printed({{Kind::Conflict, most + 3}, {Kind::Overlap, 1}}, DiagnosticFormat::Json);
    EXPECT_EQ(linesOf(text), most + 3);
    EXPECT_TRUE(
        text.ends_with("\n{\"severity\":\"note\",\"text\":\"not shown: 3 more of conflict\","
                       "\"notShown\":{\"conflict\":3}}\n"))
        << text;
}

TEST(PrinterTest, WhatNobodyWantsToSeeIsNotCounted) {
    EXPECT_EQ(printed({{Kind::Overlap, most + 1}}, DiagnosticFormat::Text, true).text,
              "tessaron: note: a note\n");
    Policy policy;
    policy.set(Kind::Overlap, Severity::Ignored);
    EXPECT_EQ(printed({{Kind::Overlap, most + 1}}, DiagnosticFormat::Text, false, policy).text,
              "tessaron: note: a note\n");
}

TEST(PrinterTest, NamesCannotDriveATerminal) {
    std::ostringstream out;
    const Policy policy;
    Printer printer(out, policy, DiagnosticFormat::Text, false, false);
    const Place place{"a\x1B.tsn", 1, 3, "x\ty\xE2\x80\xAEz", 2, 1};
    printer.take({Kind::Overlap, "b\xC2\x9B", place, "c\r", {{"d\x7F", place}}});
    EXPECT_EQ(out.str(),
              "a\\x1B.tsn:1:3: warning: b\\u009B [overlap]\n"
              "    1 | x y\xEF\xBF\xBDz\n"
              "      |   ^ c\\x0D\n"
              "a\\x1B.tsn:1:3: note: d\\x7F\n"
              "    1 | x y\xEF\xBF\xBDz\n"
              "      |   ^\n");
}

TEST(PrinterTest, APlaceIsShownAsFarAsItIsKnown) {
    struct Row {
        Diagnostic diagnostic;
        std::string text;  ///< on standard error
        std::string json;
    };
    const Place column{"s.tsn", 12, 7, "NEW_CRC bc", 8, 2};
    const Place line{"a.hex", 123456, 0, ":00", 0, 0};
    const std::vector<Row> rows{
        {{Kind::Overlap, "x", std::nullopt, "y"},
         "tessaron: warning: x [overlap]\n    y\n",
         R"({"severity":"warning","name":"overlap","text":"x","hint":"y"})"},
        {{Kind::Conflict, "x", column, "y", {{"n", std::nullopt}}},
         "s.tsn:12:7: error: x [conflict]\n   12 | NEW_CRC bc\n      |         ^~ y\n"
         "    note: n\n",
         R"({"severity":"error","name":"conflict","text":"x","file":"s.tsn","line":12,"column":7,)"
         R"("length":2,"source":"NEW_CRC bc","hint":"y","notes":[{"text":"n"}]})"},
        {{Kind::Conflict, "x", column},
         "s.tsn:12:7: error: x [conflict]\n   12 | NEW_CRC bc\n      |         ^~\n",
         R"({"severity":"error","name":"conflict","text":"x","file":"s.tsn","line":12,"column":7,)"
         R"("length":2,"source":"NEW_CRC bc"})"},
        {{Kind::Conflict, "x", line, "y"},
         "a.hex:123456: error: x [conflict]\n 123456 | :00\n          y\n",
         R"({"severity":"error","name":"conflict","text":"x","file":"a.hex","line":123456,)"
         R"("source":":00","hint":"y"})"},
        {{Kind::Conflict, "x", line},
         "a.hex:123456: error: x [conflict]\n 123456 | :00\n",
         R"({"severity":"error","name":"conflict","text":"x","file":"a.hex","line":123456,)"
         R"("source":":00"})"},
        {{Kind::Conflict, "x", Place{"a.hex", 3, 0, "", 0, 0}},
         "a.hex:3: error: x [conflict]\n",
         R"({"severity":"error","name":"conflict","text":"x","file":"a.hex","line":3})"},
        {{Kind::Conflict, "x", Place{"a.hex", 0, 0, "", 0, 0}, "y"},
         "a.hex: error: x [conflict]\n    y\n",
         R"({"severity":"error","name":"conflict","text":"x","file":"a.hex","hint":"y"})"},
        {{std::nullopt, "x", column, "", {{"n", line}}},
         "s.tsn:12:7: note: x\n   12 | NEW_CRC bc\n      |         ^~\n"
         "a.hex:123456: note: n\n 123456 | :00\n",
         R"({"severity":"note","text":"x","file":"s.tsn","line":12,"column":7,"length":2,)"
         R"("source":"NEW_CRC bc","notes":[{"text":"n","file":"a.hex","line":123456,)"
         R"("source":":00"}]})"},
    };
    const Policy policy;
    for (const Row& row : rows) {
        std::ostringstream text, colored, json;
        Printer(text, policy, DiagnosticFormat::Text, false, false).take(row.diagnostic);
        Printer(colored, policy, DiagnosticFormat::Text, true, false).take(row.diagnostic);
        Printer(json, policy, DiagnosticFormat::Json, true, false).take(row.diagnostic);
        EXPECT_EQ(text.str(), row.text);
        EXPECT_EQ(json.str(), row.json + "\n");
        // Colors change nothing else, and each line ends without one.
        std::string bare;
        bool isPlain = true;
        const std::string all = colored.str();
        for (std::size_t at = 0; at < all.size(); ++at) {
            if (all[at] == '\033') {
                const std::size_t end = all.find('m', at);
                isPlain = all.substr(at, end - at) == "\033[0";
                at = end;
                continue;
            }
            EXPECT_TRUE(all[at] != '\n' || isPlain) << all;
            bare += all[at];
        }
        EXPECT_EQ(bare, row.text);
        const std::string shown = !row.diagnostic.kind                    ? "\033[1;36mnote: "
                                  : row.diagnostic.kind == Kind::Conflict ? "\033[1;31merror: "
                                                                          : "\033[1;35mwarning: ";
        EXPECT_NE(all.find(shown), std::string::npos) << all;
    }
}

std::string printedAs(DiagnosticFormat format, const Diagnostic& diagnostic) {
    std::ostringstream out;
    const Policy policy;
    Printer printer(out, policy, format, true, false);
    printer.setSubject("app.tsn");
    printer.take(diagnostic);
    printer.finish(1);
    return out.str();
}

// https://docs.github.com/en/actions/reference/workflow-commands-for-github-actions, and the
// escapes of @actions/core.
TEST(PrinterTest, AWorkflowOfGithubGetsCommands) {
    struct Row {
        Diagnostic diagnostic;
        std::string command;
    };
    const Place place{"s.tsn", 12, 7, "NEW_CRC bc", 8, 2};
    Place included = place;
    included.includedFrom = {{"app.tsn", 3}};
    const std::vector<Row> rows{
        {{Kind::Conflict, "x", place, "y"},
         "::error file=s.tsn,line=12,col=7,title=conflict::x; y"},
        {{Kind::Overlap, "x", Place{"a.hex", 3, 0, ":00", 0, 0}},
         "::warning file=a.hex,line=3,title=overlap::x"},
        {{Kind::Overlap, "x", Place{"a.hex", 0, 0, "", 0, 0}},
         "::warning file=a.hex,title=overlap::x"},
        {{Kind::Overlap, "x"}, "::warning title=overlap::x"},
        {{std::nullopt, "x"}, "::notice::x"},
        {{Kind::Overlap, "50%: a,b::c", Place{"a:b,100%.hex", 1, 0, "", 0, 0}},
         "::warning file=a%3Ab%2C100%25.hex,line=1,title=overlap::50%25: a,b::c"},
        {{Kind::Overlap, "a\r\n::error::b", Place{"c\rd", 0, 0, "", 0, 0}},
         R"(::warning file=c\x0Dd,title=overlap::a\x0D\n::error::b)"},
        {{Kind::Overlap, "x", included, "", {{"n", std::nullopt}, {"m", place}}},
         "::warning file=s.tsn,line=12,col=7,title=overlap::x"
         "%0Aapp.tsn:3: note: included from app.tsn:3%0Anote: n%0As.tsn:12:7: note: m"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(printedAs(DiagnosticFormat::Github, row.diagnostic), row.command + "\n");
}

// Sections 3.27 (result), 3.28 (location), 3.30 (region) and 3.55 (fix) of the standard.
TEST(PrinterTest, AResultOfSarifHasAllThatIsKnown) {
    struct Row {
        Diagnostic diagnostic;
        std::string result;
    };
    const std::string head =
        R"({"ruleId":"conflict","ruleIndex":0,"level":"error","message":{"text":")";
    const std::string region = R"("region":{"startLine":12,"startColumn":4,"endColumn":7})";
    const std::string at =
        R"("physicalLocation":{"artifactLocation":{"uri":"s.tsn"},)" + region + "}";
    // The second character has two bytes.
    const Place place{"s.tsn", 12, 4, "a\xC3\xA4 bcd", 3, 3};
    Place included{"i.tsn", 1, 0, "", 0, 0};
    included.includedFrom = {{"s.tsn", 3}};
    const auto withFix = [&place](const std::string& wrong) {
        Diagnostic diagnostic{Kind::Conflict, "x", place};
        diagnostic.correction = {wrong, {"f\xC3\xB6"}};
        return diagnostic;
    };
    const std::vector<Row> rows{
        {{Kind::Conflict, "x", std::nullopt, "y", {{"n", std::nullopt}}},
         head + R"(x; y\nnote: n"},"locations":[{"physicalLocation":)"
                R"({"artifactLocation":{"uri":"app.tsn"}}}]})"},
        {{Kind::Conflict, "x", place}, head + R"(x"},"locations":[{)" + at + "}]}"},
        {{Kind::Conflict, "x", Place{"a.hex", 3, 0, ":00", 0, 0}},
         head + R"(x"},"locations":[{"physicalLocation":{"artifactLocation":{"uri":"a.hex"},)"
                R"("region":{"startLine":3}}}]})"},
        {{Kind::Conflict, "x", std::nullopt, "", {{"n", place}, {"m", included}}},
         head +
             R"(x"},"locations":[{"physicalLocation":{"artifactLocation":{"uri":"app.tsn"}}}],)"
             R"("relatedLocations":[{)" +
             at +
             R"(,"message":{"text":"n"}},{"physicalLocation":{"artifactLocation":{"uri":"i.tsn"},)"
             R"("region":{"startLine":1}},"message":{"text":"m"}},)"
             R"({"physicalLocation":{"artifactLocation":{"uri":"s.tsn"},)"
             R"("region":{"startLine":3}},"message":{"text":"included from s.tsn:3"}}]})"},
        {withFix("bc"),
         head + R"(x"},"locations":[{)" + at +
             R"(}],"fixes":[{"description":{"text":"write f\u00f6"},"artifactChanges":[)"
             R"({"artifactLocation":{"uri":"s.tsn"},"replacements":[{"deletedRegion":)"
             R"({"startLine":12,"startColumn":4,"endColumn":6},)"
             R"("insertedContent":{"text":"f\u00f6"}}]}]}]})"},
        {withFix("cd"), head + R"(x"},"locations":[{)" + at + "}]}"},
    };
    for (const Row& row : rows) {
        const auto log =
            nlohmann::ordered_json::parse(printedAs(DiagnosticFormat::Sarif, row.diagnostic));
        EXPECT_EQ(log["runs"][0]["results"][0].dump(-1, ' ', true), row.result);
    }
    const auto log = nlohmann::json::parse(
        printedAs(DiagnosticFormat::Sarif, {std::nullopt, "x", Place{"a", 1, 0, "", 0, 0}, "y"}));
    EXPECT_EQ(log["runs"][0]["results"].dump(), "[]");
    EXPECT_EQ(
        log["runs"][0]["invocations"][0]["toolExecutionNotifications"].dump(),
        R"([{"level":"note","locations":[{"physicalLocation":{"artifactLocation":{"uri":"a"},)"
        R"("region":{"startLine":1}}}],"message":{"text":"x; y"}}])");
}

TEST(PrinterTest, APathIsAUriInSarif) {
    struct Row {
        std::string path;
        std::string uri;
    };
    const bool hasDrives = Platform::pathSeparator == '\\';
    const std::vector<Row> rows{
        {"out/app-1_2.~x.hex", "out/app-1_2.~x.hex"},
        {"a b%20#?[].hex", "a%20b%2520%23%3F%5B%5D.hex"},
        {"c:d.hex", "c%3Ad.hex"},
        {"\xC3\xA4\xFF\x01", "%C3%A4%FF%01"},
        {"/a b/c", "file:///a%20b/c"},
        {"a\\b", hasDrives ? "a/b" : "a%5Cb"},
        {"C:\\a b", hasDrives ? "file:///C:/a%20b" : "C%3A%5Ca%20b"},
    };
    for (const Row& row : rows) {
        const auto log = nlohmann::json::parse(printedAs(
            DiagnosticFormat::Sarif, {Kind::Conflict, "x", Place{row.path, 0, 0, "", 0, 0}}));
        const auto& location = log["runs"][0]["results"][0]["locations"][0]["physicalLocation"];
        EXPECT_EQ(location["artifactLocation"]["uri"], row.uri);
    }
}

TEST(PrinterTest, SarifIsOneDocumentWithTheNumbers) {
    const auto [text, errors] =
        printed({{Kind::Conflict, most + 3}, {Kind::Overlap, 1}}, DiagnosticFormat::Sarif);
    EXPECT_EQ(errors, most + 3);
    const auto log = nlohmann::json::parse(text)["runs"][0];
    EXPECT_EQ(log["results"].size(), most + 1);
    EXPECT_EQ(log["results"][most]["ruleIndex"], 1);
    const auto& rules = log["tool"]["driver"]["rules"];
    ASSERT_EQ(rules.size(), 2U);
    EXPECT_EQ(rules[1].dump(),
              R"({"defaultConfiguration":{"level":"warning"},"id":"overlap",)"
              R"("shortDescription":{"text":"the same byte twice for one address"}})");
    EXPECT_EQ(log["invocations"].dump(),
              R"([{"executionSuccessful":true,"exitCode":0,"toolExecutionNotifications":[)"
              R"({"level":"note","message":{"text":"a note"}},)"
              R"({"level":"note","message":{"text":"not shown: 3 more of conflict"}}]}])");
}

TEST(RemarkListTest, ARemarkHasAllThatAReportShows) {
    Policy policy;
    policy.set(Kind::Tolerated, Severity::Ignored);
    RemarkList list(policy);
    list.take({Kind::Tolerated, "not wanted"});
    list.countMore(Kind::Tolerated, 5);
    list.take({Kind::Overlap, "x", Place{"a.hex", 3, 4, "", 0, 0}, "y"});
    list.take({std::nullopt, "n"});
    EXPECT_FALSE(list.hasErrors());
    list.countMore(Kind::Conflict, 1);
    EXPECT_TRUE(list.hasErrors());
    list.finish();
    ASSERT_EQ(list.remarks.size(), 3U);
    const Inspect::Remark& remark = list.remarks[0];
    EXPECT_EQ(remark.severity + " " + remark.name + " " + remark.text + " " + remark.hint,
              "warning overlap x y");
    EXPECT_EQ(remark.file, "a.hex");
    EXPECT_EQ(remark.line, 3U);
    EXPECT_EQ(remark.column, 4U);
    EXPECT_EQ(list.remarks[1].severity + list.remarks[1].name, "note");
    EXPECT_EQ(list.remarks[1].line + list.remarks[1].column, 0U);
    EXPECT_EQ(list.remarks[2].text, "not shown: 1 more of conflict");
}

TEST(RemarkListTest, TwentyOfAKindAreKept) {
    const Policy policy;
    RemarkList list(policy);
    for (std::size_t i = 0; i < most + 2; ++i) list.take({Kind::Conflict, "x"});
    list.countMore(Kind::Overlap, 5);
    list.finish();
    ASSERT_EQ(list.remarks.size(), most + 1);
    EXPECT_EQ(list.remarks.back().severity, "note");
    EXPECT_EQ(list.remarks.back().text, "not shown: 2 more of conflict, 5 more of overlap");
    EXPECT_TRUE(list.hasErrors());
}

TEST(PendingListTest, WhatIsNotKeptStillCounts) {
    std::ostringstream out;
    const Policy policy;
    Printer printer(out, policy, DiagnosticFormat::Text, false, false);
    PendingList list;
    for (int round = 0; round < 2; ++round) {
        for (std::size_t i = 0; i < most + 2; ++i)
            if (list.wants(Kind::Conflict)) list.add({Kind::Conflict, "x"});
        if (round == 0) list.clear();  // what was dropped is not counted
    }
    list.moveTo(printer);
    list.moveTo(printer);
    printer.finish();
    EXPECT_EQ(printer.errors(), most + 2);
    EXPECT_EQ(linesOf(out.str()), most + 1);
    EXPECT_TRUE(out.str().ends_with("not shown: 2 more of conflict\n")) << out.str();
}

}  // namespace
}  // namespace Strict
