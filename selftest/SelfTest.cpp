#include "selftest/SelfTest.hpp"

#include <CUnit/Basic.h>

#include <algorithm>
#include <deque>
#include <map>
#include <string>

#include "io/File.hpp"
#include "io/TextLines.hpp"
#include "parser/ScriptParser.hpp"
#include "platform/Files.hpp"
#include "platform/Paths.hpp"
#include "selftest/LineTables.hpp"

namespace SelfTest {

namespace {

using Lines = std::deque<std::string>;

/// Global, since CUnit calls its tests without an argument.
Classic::ClassicWords* words = nullptr;

std::string samplePath(const char* fileName) {
    const std::string separator(1, Platform::pathSeparator);
    return ".." + separator + "KvTessaron" + separator + "__sample_files" + separator + fileName;
}

/// Ignores a file that cannot be written: the script then fails, or its output differs.
void writeLines(const std::string& path, const Lines& lines) {
    auto file = Platform::OutputFile::create(path, Platform::FileMode::Text);
    if (!file) return;
    std::string text;
    for (const std::string& line : lines) text.append(line).push_back('\n');
    file->write(text);
}

/// The lines of a text file; none if it cannot be opened.
Lines readLines(const std::string& path) {
    Lines lines;
    try {
        Io::TextLines text(path);
        while (text.next()) lines.emplace_back(text.line());
    } catch (const Io::bad_open&) {
        // The comparison with the reference fails then.
    }
    return lines;
}

/// Prints the numbers of the lines that differ, up to the end of the shorter text.
void reportDifferences(const Lines& got, const Lines& wanted) {
    const std::size_t count = std::min(got.size(), wanted.size());
    for (std::size_t i = 0; i < count; ++i)
        if (got[i] != wanted[i]) words->printDifference(i + 1);
}

void testTessaronAll() {
    words->printEmptyLine();
    const std::string inFile = samplePath("__input_ref_app.hex");
    const std::string outFile = samplePath("__output_ref_app_all.hex");
    const std::string script = samplePath("__input_tessaron_script.tsn");
    writeLines(inFile, sampleInput());
    writeLines(script, sampleScript());
    Parser::ScriptParser parser(script, {{"inFile", inFile}, {"outFile", outFile}});
    const bool isRun = parser.run();
    const Lines output = readLines(outFile);
    const bool isEqual = output == referenceOutput();
    if (!isEqual) reportDifferences(output, referenceOutput());
    // CU_ASSERT would print this source's name and line. Users search the report for the text and
    // the place below, so these stay the same.
    constexpr unsigned int line = 104;
    CU_assertImplementation(isRun && isEqual ? CU_TRUE : CU_FALSE, line,
                            "(result_is_ok == true) ? 1 : 0", "testkvtessaron", "", CU_FALSE);
}

void runSuite() {
    const auto nothing = [] { return 0; };
    if (CU_initialize_registry() != CUE_SUCCESS) return;
    CU_Suite* const suite = CU_add_suite("kv_tessaron_test", nothing, nothing);
    if (suite == nullptr) return;
    if (CU_add_test(suite, "test_tessaron_all", testTessaronAll) == nullptr) return;
    CU_basic_set_mode(CU_BRM_VERBOSE);
    CU_basic_run_tests();
}

}  // namespace

void runAll(Classic::ClassicWords& classicWords) {
    words = &classicWords;
    runSuite();
    words->printTestFrame(CU_get_error());
    CU_cleanup_registry();
}

}  // namespace SelfTest
