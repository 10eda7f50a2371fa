#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <utility>

#include "io/import/IntelHexInFile.hpp"
#include "io/import/MotorolaS_InFile.hpp"
#include "io/import/RawBinaryInFile.hpp"

/// A file that somebody writes to while it is read: its first line has been read, and with it less
/// than half of the file.
namespace {

namespace fs = std::filesystem;

struct Format {
    const char* name;
    std::string record;
    std::string end;
};

/// Longer than what is read at once.
std::string contentsOf(const Format& format) {
    std::string contents;
    while (contents.size() < 600'000) contents += format.record;
    return contents + format.end;
}

struct Change {
    const char* name;
    void (*make)(const fs::path& path, const std::string& contents);
};

void rewrite(const fs::path& path, const std::string& contents) {
    // Without O_TRUNC, as an editor of bytes does it.
    std::fstream(path, std::ios::in | std::ios::out | std::ios::binary) << contents;
}

const Change changes[] = {
    {"cut", [](const fs::path& path, const std::string&) { fs::resize_file(path, 300'000); }},
    {"grown",
     [](const fs::path& path, const std::string& contents) {
         std::ofstream(path, std::ios::app | std::ios::binary) << contents;
     }},
    {"emptied", [](const fs::path& path, const std::string&) { fs::resize_file(path, 0); }},
    {"written over", &rewrite},
};

const Format formats[] = {
    {"Intel HEX", ":0100000041BE\n", ":00000001FF\n"},
    {"S-records", "S104000041BA\n", "S9030000FC\n"},
    {"raw", "raw\n", ""},
};

class ChangingFileTest : public testing::Test {
protected:
    ~ChangingFileTest() override { fs::remove(path); }

    /// With an old date, so that a change shows however coarse the clock of the file system is.
    void writeFile(const std::string& contents) const {
        std::ofstream(path, std::ios::binary | std::ios::trunc) << contents;
        fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(1));
    }

    /// Of this process alone, since several may run at a time.
    const fs::path path =
        fs::path(testing::TempDir()) / ("changing-file-test-" + std::to_string(::getpid()));
};

/// The bytes of data of a file whose first line was read before `change`.
template <class Parser, class Reader>
std::uint64_t textLength(const fs::path& path, const std::function<void()>& change) {
    Io::TextLines lines(path.string());
    Parser parser(lines.fileSize());
    if (lines.next()) parser.take(lines);
    change();
    while (lines.next()) parser.take(lines);
    return Reader(path.string(), std::move(lines), std::move(parser)).getMemory().getDataLength();
}

std::uint64_t lengthRead(const Format& format, const fs::path& path,
                         const std::function<void()>& change) {
    using namespace Io::Import;
    if (&format == &formats[0]) return textLength<IntelHexParser, IntelHexInFile>(path, change);
    if (&format == &formats[1]) return textLength<MotorolaS_Parser, MotorolaS_InFile>(path, change);
    Io::TextLines lines(path.string());
    lines.next();
    change();
    return RawBinaryInFile(path.string(), lines.takeFile()).getMemory().getDataLength();
}

TEST_F(ChangingFileTest, AnInputThatChangesIsRefused) {
    for (const Format& format : formats) {
        const std::string contents = contentsOf(format);
        for (const Change& change : changes) {
            writeFile(contents);
            EXPECT_THROW(lengthRead(format, path, [&] { change.make(path, contents); }),
                         Io::bad_open)
                << format.name << ", " << change.name;
        }
    }
}

TEST_F(ChangingFileTest, AnInputThatIsReplacedIsReadAsItWas) {
    for (const Format& format : formats) {
        const std::string contents = contentsOf(format);
        writeFile(contents);
        const auto replace = [this] {
            const fs::path other = path.string() + "-new";
            std::ofstream(other) << "something else";
            fs::rename(other, path);
        };
        EXPECT_EQ(lengthRead(format, path, replace), format.end.empty() ? contents.size() : 1U)
            << format.name;
    }
}

}  // namespace
