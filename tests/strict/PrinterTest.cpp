#include "strict/diagnostics/Printer.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

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
