#include "strict/script/StatementReports.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "parser/grammar/Statement.hpp"
#include "tests/strict/TakenDiagnostics.hpp"

namespace Strict {
namespace {

using Lines = std::vector<std::string>;
using Parser::Role;

/// A statement that no grammar has, whose parts are words of its text.
class StatementReportsTest : public testing::Test {
protected:
    StatementReportsTest() {
        const std::string_view text = script_.prepared();
        statements_.beginStatement();
        struct Word {
            Role role;
            std::size_t column;
            std::size_t size;
        };
        for (const Word& word :
             {Word{Role::Keyword, 1, 4}, Word{Role::InputFile, 6, 4}, Word{Role::UsesImage, 11, 2},
              Word{Role::Area, 15, 6}, Word{Role::Area, 23, 6}, Word{Role::ChangesImage, 31, 2},
              Word{Role::Text, 35, 0}})
            statements_.add(word.role, 0, text.substr(line_ + word.column - 1, word.size));
        statements_.endStatement({}, text.substr(line_));
        reports_.enter(statements_[0]);
    }

    ScriptText script_{"s.tsn", "remark\nSIGN file @a {{1, 2}, {1, 2}} @b {}  \n\n"};
    std::size_t line_ = 7;
    Parser::StatementList statements_;
    Tests::TakenDiagnostics sink_;
    StatementReports reports_{&script_, sink_};
};

TEST_F(StatementReportsTest, TheLastPartOfTheRolesIsToBlame) {
    reports_.report(Kind::Outside, "x", {Role::Area});
    reports_.report(Kind::Outside, "x", {Role::Area, Role::InputFile});
    reports_.report(Kind::Outside, "x", {Role::Area, Role::ChangesImage}, "do y", {{"n", {}}});
    reports_.report(Kind::Outside, "no such part", {Role::Overlap});
    reports_.report(Kind::OutOfMemory, "no role", {});
    EXPECT_EQ(sink_.lines,
              (Lines{"2:23 outside: x", "2:23 outside: x", "2:31 outside: x (do y)", "+ n",
                     "2:1 outside: no such part", "2:1 out-of-memory: no role"}));
}

TEST_F(StatementReportsTest, EqualAreasAreTwoPlaces) {
    for (const Parser::Part& part : statements_[0].all(Role::Area))
        reports_.reportPart(Kind::Outside, "x", part);
    EXPECT_EQ(sink_.lines, (Lines{"2:15 outside: x", "2:23 outside: x"}));
}

TEST_F(StatementReportsTest, ANameIsWhereTheStatementUsesIt) {
    for (const char* const name : {"@a", "@b", "@c", "file"})
        reports_.reportName(Kind::UnknownName, name, name);
    EXPECT_EQ(sink_.lines, (Lines{"2:11 unknown-name: @a", "2:31 unknown-name: @b",
                                  "2:1 unknown-name: @c", "2:1 unknown-name: file"}));
}

TEST_F(StatementReportsTest, APartWithoutCharactersHasThePlaceOfTheStatement) {
    reports_.report(Kind::NoEffect, "x", {Role::Text});
    EXPECT_EQ(sink_.lines, Lines{"2:1 no-effect: x"});
}

TEST_F(StatementReportsTest, ANoteCoversTheStatementWithoutTheSpaceAfterIt) {
    EXPECT_EQ(reports_.statementPlace().caretLength,
              std::string_view("SIGN file @a {{1, 2}, {1, 2}} @b {}").size());
    reports_.note("failed");
    EXPECT_EQ(sink_.lines, Lines{"2:1 failed"});
}

TEST_F(StatementReportsTest, APlaceInAFileLeadsToTheStatementThatReadsIt) {
    reports_.reportInput({Kind::RecordChecksum, "x", Place{"file", 9, 3, "", 0, 0}});
    EXPECT_EQ(sink_.lines, (Lines{"9:3 record-checksum: x", "+ 2:6 while this file is read"}));
}

TEST_F(StatementReportsTest, OutsideAScriptNothingHasAPlace) {
    StatementReports reports(nullptr, sink_);
    reports.report(Kind::Outside, "x", {Role::Area});
    reports.reportInput({Kind::RecordChecksum, "x", Place{"file", 9, 3, "", 0, 0}});
    EXPECT_EQ(sink_.lines, (Lines{"outside: x", "9:3 record-checksum: x"}));
    EXPECT_FALSE(reports.hasScript());
}

TEST(StatementReportsOfVariablesTest, AVariableIsNamed) {
    const ScriptText script("s.tsn", "PRINT_BUFFER name\n", {{"name", "@none"}});
    Parser::StatementList statements;
    const std::string_view text = script.prepared();
    statements.beginStatement();
    statements.add(Role::UsesImage, 0, text.substr(text.find("@none"), 5));
    statements.endStatement({}, text);
    Tests::TakenDiagnostics sink;
    StatementReports reports(&script, sink);
    reports.enter(statements[0]);
    reports.reportName(Kind::UnknownName, "@none", "x", "", {{"after it", {}}});
    ASSERT_EQ(sink.lines.size(), 3U);
    EXPECT_EQ(sink.lines[0], "1:14 unknown-name: x");
    EXPECT_NE(sink.lines[1].find("name"), std::string::npos) << sink.lines[1];
    EXPECT_EQ(sink.lines[2], "+ after it");
}

}  // namespace
}  // namespace Strict
