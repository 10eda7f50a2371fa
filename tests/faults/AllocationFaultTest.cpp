#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <memory>
#include <new>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "classic/ClassicWords.hpp"
#include "parser/ScriptParser.hpp"
#include "parser/commands/CmdCallApp.hpp"
#include "parser/commands/CmdFillBuffer.hpp"
#include "parser/commands/CmdNewBuffer.hpp"
#include "parser/commands/CmdNewCrc.hpp"
#include "parser/commands/CmdNewHash.hpp"
#include "parser/commands/CmdPrintBuffer.hpp"
#include "parser/commands/CmdPrintHash.hpp"
#include "parser/commands/CmdPrintText.hpp"
#include "parser/commands/CmdWriteFile.hpp"
#include "tests/faults/FailingAllocator.hpp"

namespace {

namespace fs = std::filesystem;
using namespace Parser;
using namespace Parser::WrapperLib;
using Buffer::MemoryBuffer;
using Statement = std::unique_ptr<CmdApi>;

/// A folder of this process alone, since several may run at a time.
fs::path folder() {
    return fs::path(testing::TempDir()) / ("allocation-fault-test-" + std::to_string(::getpid()));
}

std::string inFolder(const std::string& name) {
    return (folder() / name).string();
}

void writeFile(const fs::path& path, const std::string& contents) {
    std::ofstream(path, std::ios::binary) << contents;
}

/// The contents of a file, the time of its making left out.
std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    static const std::regex time("Generated: .*");
    return std::regex_replace(std::string(std::istreambuf_iterator<char>(file), {}), time, "");
}

/// An ELF file of 32 bits, little endian, that loads `length` bytes to address 0.
std::string elfFile(std::uint32_t length) {
    std::string file("\x7F\x45LF\1\1\1", 7);
    file.resize(84 + length);
    const auto set = [&file](std::size_t at, std::uint32_t value) {
        for (int i = 0; i < 4; ++i) file[at++] = static_cast<char>(value >> 8 * i);
    };
    set(16, 2 | 40 << 16);    // e_type, e_machine
    set(20, 1);               // e_version
    set(28, 52);              // e_phoff
    set(40, 52 | 32U << 16);  // e_ehsize, e_phentsize
    set(44, 1);               // e_phnum
    set(52, 1);               // p_type
    set(56, 84);              // p_offset
    set(68, length);          // p_filesz
    set(72, length);          // p_memsz
    return file;
}

/// Makes a statement in the way the grammar does, but without one.
template <class Command, class Settings>
std::function<Statement()> making(Settings set) {
    return [set] {
        auto command = std::make_unique<Command>();
        set(*command);
        return command;
    };
}

struct Case {
    const char* name;
    std::function<Statement()> make;
};

std::vector<Case> newBufferCases() {
    const auto from = [](auto source) {
        return making<CmdNewBuffer>([source](CmdNewBuffer& command) {
            command.setBufferName("a name that is longer than a string itself");
            source(command);
            command.addArea({0x1000, 300});
            command.addArea({0x1002, 400});
        });
    };
    return {
        {"hex", from([](CmdNewBuffer& c) { c.setFile(inFolder("in.hex")); })},
        {"srec", from([](CmdNewBuffer& c) { c.setFile(inFolder("in.s19")); })},
        {"raw", from([](CmdNewBuffer& c) {
             c.setFileOf(inFolder("in.hex"), Io::Formats::rowOf(Facts::InputFormat::RawBinary));
         })},
        {"values", from([](CmdNewBuffer& c) {
             c.setValues({1, 2, 3});
         })},
        {"empty", from([](CmdNewBuffer&) {})},
        {"buffers", from([](CmdNewBuffer& c) {
             c.addSourceBuffer("A");
             c.addSourceBuffer("A");
         })},
    };
}

std::vector<Case> fillCases() {
    const auto with = [](auto source) {
        return making<CmdFillBuffer>([source](CmdFillBuffer& command) {
            command.setBufferName("A");
            source(command);
            command.addArea({0x1000, 3});
            command.addArea({0x1010, 200});
        });
    };
    return {
        {"filler", with([](CmdFillBuffer& c) {
             c.setFillPattern({1, 2, 3, 4, 5});
         })},
        {"values", with([](CmdFillBuffer& c) {
             c.setFillValues({1, 2, 3, 4, 5});
         })},
        {"string", with([](CmdFillBuffer& c) { c.setFillString("a text of more than one word"); })},
        // A hash is written from its registry and needs no memory at all.
        {"crc", with([](CmdFillBuffer& c) { c.setFillCrc("C"); })},
    };
}

std::vector<Case> writeCases() {
    std::vector<Case> cases;
    for (const ExportFormat& format : CmdWriteFile::formats()) {
        cases.push_back({format.keyword, making<CmdWriteFile>([&format](CmdWriteFile& command) {
                             command.setFileName(inFolder("out"));
                             // Enough for more than one write, so that the second image comes when
                             // the file is open.
                             command.addBuffer("A");
                             for (int i = 0; i < 9; ++i) command.addBuffer("B");
                             const bool hasNumber = format.setNumber != nullptr;
                             // A word has at most 8 bytes.
                             const bool isWord = format.numberForm == FormatNumber::Required;
                             command.setFormat(format);
                             if (hasNumber) command.setFormatNumber(format, isWord ? 8U : 32U);
                             command.setExecutionStartAddress(0x1234);
                             if (format.needsTemplate)
                                 command.setElfTemplate(inFolder("template.elf"));
                         })});
    }
    return cases;
}

std::vector<Case> otherCases() {
    const std::string resolved = "C and H are in a text that is longer than a string itself";
    return {
        {"crc", making<CmdNewCrc>([](CmdNewCrc& c) {
             c.setName("a name that is longer than a string itself");
             c.addFromBuffer("A");
             c.addFromBuffer("B");
         })},
        {"hash", making<CmdNewHash>([](CmdNewHash& c) {
             c.setName("a name that is longer than a string itself");
             c.addFromBuffer("A");
             c.setType(CmdNewHash::types()[17]);
         })},
        {"print buffer", making<CmdPrintBuffer>([](CmdPrintBuffer& c) {
             c.setBufferName("A");
             c.addArea({0x1000, 40});
         })},
        {"print hash", making<CmdPrintHash>([](CmdPrintHash& c) { c.setHashName("H"); })},
        {"print text",
         [resolved]() -> Statement {
             auto command = std::make_unique<CmdPrintText>(&Parser::calculateNumbers);
             command->setText(resolved + " [1 + (2 + 3)]");
             command->addSymbol("C");
             command->addSymbol("H");
             return command;
         }},
        {"call app", making<CmdCallApp>([resolved](CmdCallApp& c) {
             c.setAppLocation("true");
             c.setArguments(resolved);
             c.addSymbol("H");
             c.addSymbol("C");
         })},
    };
}

class AllocationFaultTest : public testing::Test {
protected:
    AllocationFaultTest() {
        fs::create_directories(folder());
        std::string hex = ":020000040000FA\n";
        for (int i = 0; i < 40; ++i) hex += ":0410000001020304E2\n";
        writeFile(inFolder("in.hex"), hex + ":00000001FF\n");
        writeFile(inFolder("template.elf"), elfFile(100'000));
        writeFile(inFolder("in.s19"), "S107100001020304DE\nS9030000FC\n");
    }
    ~AllocationFaultTest() override { fs::remove_all(folder()); }

    static CmdContext context() {
        CmdContext context;
        context.crcs["C"] = {1, 2, 3, 4};
        context.hashes["H"] = ByteList(64, 5);
        MemoryBuffer image(0x1000, 300);
        image.fillMemory(std::vector<Buffer::MemoryElement>{{1, 2, 1}, {3, 4, 0}}, 0x1000, 300);
        context.buffers.try_emplace("A", std::move(image));
        context.buffers.try_emplace("B", 0, 100'000);
        return context;
    }

    /// The elements of all images and the sizes of the registries.
    static std::string stateOf(const CmdContext& context) {
        std::string state;
        for (const auto& [name, image] : context.buffers) {
            const auto elements = image.getElements();
            state += name + "=" + std::to_string(image.getStartAddress()) + ":";
            state.append(reinterpret_cast<const char*>(elements.data()),
                         elements.size() * sizeof(Buffer::MemoryElement));
        }
        for (const auto* registry : {&context.crcs, &context.hashes})
            for (const auto& [name, value] : *registry)
                state += name + "=" + std::string(value.begin(), value.end());
        return state;
    }

    /// The result of a statement.
    struct Outcome {
        bool isDone;
        std::string state;
        std::string output;
        std::string printed;

        bool operator==(const Outcome&) const = default;
    };

    /// Runs the statement; the allocation after `succeeding` ones fails.
    static Outcome outcome(const Case& row, std::size_t succeeding, bool isLasting) {
        const Statement statement = row.make();
        CmdContext registries = context();
        writeFile(inFolder("out"), "kept");
        testing::internal::CaptureStdout();
        Classic::ClassicWords words(std::cout, std::cerr);
        const Facts::ListenerScope scope(words);
        Tests::failAfter(succeeding, isLasting);
        const bool isDone = statement->execute(registries);
        hasFailed = Tests::stopFailing();
        const std::string printed = testing::internal::GetCapturedStdout();
        // The time may move on between two runs.
        static const std::regex time("// Generated: [^\n]*");
        const std::string output =
            std::regex_replace(readFile(inFolder("out")), time, "// Generated: ");
        return {isDone, stateOf(registries), output, printed};
    }

    /// All is done or nothing, and that is said.
    static void check(const Outcome& found, const Outcome& whole) {
        if (found == whole) return;
        EXPECT_FALSE(found.isDone);
        EXPECT_EQ(found.state, stateOf(context()));
        EXPECT_EQ(found.output, "kept");
        static const std::regex report(
            "Error: \\w+ [^\n]* could not be \\w+ !\n"
            "Operation aborted\\.( Maybe stack overflow, buffer too big)?\n$");
        EXPECT_TRUE(std::regex_search(found.printed, report)) << found.printed;
    }

    static void runAll(const std::vector<Case>& cases) {
        for (const Case& row : cases) {
            const Outcome whole = outcome(row, 1'000'000'000, false);
            EXPECT_TRUE(whole.isDone);
            for (const bool isLasting : {false, true}) {
                std::size_t faults = 0;
                do {
                    SCOPED_TRACE(row.name + (", allocation " + std::to_string(faults)));
                    check(outcome(row, faults, isLasting), whole);
                    ++faults;
                } while (hasFailed);
                EXPECT_GT(faults, 1U) << row.name;
            }
        }
    }

    /// The script writes "out" between a begin and an end that it prints.
    static void runFailing(const std::string& script, std::size_t succeeding, bool isLasting) {
        ScriptParser parser(script, {{"variable", "value"}});
        writeFile(inFolder("out"), "kept");
        testing::internal::CaptureStdout();
        Classic::ClassicWords words(std::cout, std::cerr);
        const Facts::ListenerScope scope(words);
        Tests::failAfter(succeeding, isLasting);
        const bool isParsed = parser.run();
        hasFailed = Tests::stopFailing();
        const std::string printed = testing::internal::GetCapturedStdout();
        SCOPED_TRACE("allocation " + std::to_string(succeeding) + ": " + printed);
        EXPECT_EQ(isParsed, printed.find("begin\n") != std::string::npos);
        EXPECT_EQ(isParsed, printed.find("end\n") != std::string::npos);
        EXPECT_NE(isParsed, printed.find("Operation aborted. Maybe stack overflow, script too big"
                                         "\n") != std::string::npos);
        const bool isReported = printed.find("Error: ") != std::string::npos;
        // Not each failure is one: the library may ask for room to sort with and do without.
        EXPECT_TRUE(hasFailed || !isReported);
        EXPECT_EQ(readFile(inFolder("out")), isReported ? "kept" : "\1\x14");
    }

    static inline bool hasFailed = false;
};

TEST_F(AllocationFaultTest, NewBuffer) {
    runAll(newBufferCases());
}

TEST_F(AllocationFaultTest, FillBuffer) {
    runAll(fillCases());
}

TEST_F(AllocationFaultTest, WriteFile) {
    runAll(writeCases());
}

TEST_F(AllocationFaultTest, Others) {
    runAll(otherCases());
}

TEST_F(AllocationFaultTest, AParserWhoseRulesCouldNotBeBuiltBuildsThemTheNextTime) {
    hasFailed = true;
    for (std::size_t succeeding = 0; hasFailed; ++succeeding) {
        ScriptParser parser;
        Tests::failAfter(succeeding, false);
        bool isRefused = false;
        try {
            parser.parseScript("PRINT_HASH @A");
        } catch (const std::bad_alloc&) {
            isRefused = true;
        }
        hasFailed = Tests::stopFailing();
        EXPECT_EQ(isRefused, hasFailed) << "allocation " << succeeding;
        EXPECT_TRUE(parser.parseScript("PRINT_HASH @B").full);
        EXPECT_GE(parser.statementCount(), 1U);
    }
}

TEST_F(AllocationFaultTest, AScriptIsExecutedAsAWholeOrNotAtAll) {
    const std::string script = inFolder("script.tsn");
    writeFile(script,
              "PRINT_TEXT {begin} // a remark\nSUBSTITUTE NAME WITH out\n"
              "SUBSTITUTE (a|b)+c WITH $1\nNEW_BUFFER @A FROM_VALUES {1, 4 * (2 + 3)}\n"
              "WRITE_FILE \"" +
                  inFolder("NAME") +
                  "\" WITH_BUFFERS {@A} -setFormat=RawBinary\nPRINT_TEXT {end}\n");
    for (const bool isLasting : {false, true}) {
        hasFailed = true;
        for (std::size_t succeeding = 0; hasFailed; ++succeeding)
            runFailing(script, succeeding, isLasting);
    }
}

}  // namespace
