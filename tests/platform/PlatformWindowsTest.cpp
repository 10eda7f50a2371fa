#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/Files.hpp"
#include "platform/Paths.hpp"
#include "platform/Process.hpp"
#include "platform/Replace.hpp"
#include "platform/WideText.hpp"

namespace {

namespace fs = std::filesystem;
using Platform::TargetKind;

std::string at(const std::string& name) {
    return testing::TempDir() + name;
}

/// Writes a file through the layer; false if it cannot be created.
bool put(const std::string& path, std::string_view text,
         Platform::FileMode mode = Platform::FileMode::Binary) {
    auto file = Platform::OutputFile::create(path, mode);
    return file && file->write(text) && file->close();
}

std::string contentsOf(const std::string& path) {
    const auto contents = Platform::readFile(path);
    return contents ? std::string(contents->text()) : "not opened";
}

/// Puts a new file with `text` in the place of `path`; the reason if that fails.
std::error_code replaced(const std::string& path, std::string_view text) {
    const auto target = Platform::outputTarget(path);
    Platform::InterruptGuard guard;
    unsigned number = 0;
    Platform::TemporaryFile temporary;
    std::error_code error;
    auto file = Platform::createTemporary(target, guard, number, temporary, error);
    if (!file) return error;
    EXPECT_TRUE(file->write(text) && file->close());
    Platform::Replacement replacement(guard);
    replacement.add(temporary, target);
    auto failure = replacement.tryAll();
    if (!failure) failure = replacement.putInPlace(false);
    if (!failure) {
        replacement.keep();
        return {};
    }
    replacement.takeBack();
    Platform::removeFile(temporary.path);
    return failure->error;
}

TEST(PlatformWindowsTest, TextThatIsNoUtf8IsInTheCodePageOfTheMachine) {
    EXPECT_EQ(Platform::wideText("\xC3\xA4\xE6\x97\xA5"), L"\u00E4\u65E5");
    EXPECT_EQ(Platform::wideText(""), L"");
    if (::GetACP() != 1252) GTEST_SKIP() << "another code page";
    // Windows-1252, which is Latin-1 here.
    EXPECT_EQ(Platform::wideText("gr\xFC\xDF"), L"gr\u00FC\u00DF");
    EXPECT_TRUE(put(at("gr\xFC\xDF.txt"), "by the code page"));
    EXPECT_EQ(contentsOf(at("gr\xC3\xBC\xC3\x9F.txt")), "by the code page");
}

TEST(PlatformWindowsTest, NamesOfEveryScriptNameFiles) {
    // "Japanese", a character beyond the first plane, umlauts.
    for (const std::string name : {"\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E.hex",
                                   "\xF0\x9F\x9A\x80.hex", "\xC3\x84\xC3\x96\xC3\x9C.hex"}) {
        EXPECT_TRUE(put(at(name), name)) << name;
        EXPECT_EQ(contentsOf(at(name)), name);
        EXPECT_EQ(Platform::narrowText(Platform::wideText(name)), name);
        EXPECT_TRUE(Platform::isRegularFile(at(name)));
        EXPECT_TRUE(fs::exists(fs::path(Platform::wideText(at(name)))));
    }
}

TEST(PlatformWindowsTest, TextModeWritesCrLf) {
    EXPECT_TRUE(put(at("text"), "a\n\nb\r\n", Platform::FileMode::Text));
    EXPECT_EQ(contentsOf(at("text")), "a\r\n\r\nb\r\r\n");
    EXPECT_TRUE(put(at("bytes"), "a\n"));
    EXPECT_EQ(contentsOf(at("bytes")), "a\n");
}

TEST(PlatformWindowsTest, LongPathsAreOpened) {
    std::string folder = at("long");
    for (int i = 0; i < 6; ++i) {
        ::CreateDirectoryW(Platform::systemPath(folder).c_str(), nullptr);
        folder += "/" + std::string(50, static_cast<char>('a' + i));
    }
    ::CreateDirectoryW(Platform::systemPath(folder).c_str(), nullptr);
    const std::string path = folder + "/../" + std::string(50, 'f') + "/out.hex";
    ASSERT_GT(path.size(), 300U);
    EXPECT_TRUE(put(path, "far"));
    EXPECT_EQ(contentsOf(path), "far");
    auto target = Platform::outputTarget(path);
    EXPECT_EQ(target.kind, TargetKind::Regular);
    EXPECT_FALSE(replaced(path, "farther"));
    EXPECT_EQ(contentsOf(path), "farther");
    Platform::removeFile(path);
    for (; folder.size() >= at("long").size(); folder.erase(folder.rfind('/')))
        ::RemoveDirectoryW(Platform::systemPath(folder).c_str());
}

TEST(PlatformWindowsTest, WhatIsNoFileIsRefusedWithAReason) {
    fs::create_directory(at("folder"));
    struct Row {
        std::string path;
        std::errc reason;
    };
    for (const Row& row : {Row{at("folder"), std::errc::is_a_directory},
                           Row{at("no/such/file"), std::errc::no_such_file_or_directory},
                           Row{"Q:\\no drive", std::errc::no_such_file_or_directory},
                           Row{"", std::errc::no_such_file_or_directory},
                           Row{at("a?b"), std::errc::invalid_argument}}) {
        const auto target = Platform::outputTarget(row.path);
        EXPECT_EQ(target.kind, TargetKind::Impossible) << row.path;
        EXPECT_EQ(target.error, row.reason) << row.path << ": " << target.error.message();
        EXPECT_FALSE(put(row.path, "x")) << row.path;
        EXPECT_EQ(contentsOf(row.path), "not opened") << row.path;
    }
}

TEST(PlatformWindowsTest, AReadOnlyFileIsNoTarget) {
    EXPECT_TRUE(put(at("readonly"), "kept"));
    const std::wstring path = Platform::wideText(at("readonly"));
    ::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(Platform::outputTarget(at("readonly")).error, std::errc::permission_denied);
    ::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST(PlatformWindowsTest, ReservedNamesAreDevices) {
    for (const std::string name : {"NUL", "nul", "CON", "COM1", "\\\\.\\NUL"})
        EXPECT_EQ(Platform::outputTarget(name).kind, TargetKind::Device) << name;
    EXPECT_EQ(Platform::outputTarget(at("NULL.hex")).kind, TargetKind::Missing);
    EXPECT_TRUE(put("NUL", "into nothing"));
    EXPECT_EQ(contentsOf("NUL"), "");
}

TEST(PlatformWindowsTest, OneFileHasOnePlace) {
    const auto place = [](const std::string& path) {
        return Platform::placeOf(Platform::outputTarget(path));
    };
    fs::create_directory(at("Folder"));
    const std::string wanted = place(at("Folder/Out.hex"));
    for (const std::string& other :
         {at("folder/out.HEX"), at("Folder\\.\\Out.hex"), at("Folder/../FOLDER/Out.hex")})
        EXPECT_EQ(place(other), wanted) << other;
    EXPECT_NE(place(at("Out.hex")), wanted);
    // Letters of other alphabets have cases as well.
    EXPECT_EQ(place(at("\xC3\xA4.hex")), place(at("\xC3\x84.hex")));
}

TEST(PlatformWindowsTest, APathIsShownAsSeenFromTheCurrentFolder) {
    const fs::path before = fs::current_path();
    fs::create_directories(at("Work/Here"));
    fs::current_path(at("Work/Here"));
    const std::string here = Platform::narrowText(fs::current_path().native());
    const std::string ofDrive = here.substr(2);  // behind the drive
    const std::string smallDrive(1, static_cast<char>(here[0] | 0x20));
    const std::string otherDrive = here[0] == 'Q' ? "R" : "Q";
    struct Row {
        std::string path;
        std::string seen;
    };
    for (const Row& row :
         {Row{"o.hex", "o.hex"}, Row{"sub\\o.hex", "sub\\o.hex"}, Row{here + "\\o.hex", "o.hex"},
          Row{here + "\\sub\\o.hex", "sub/o.hex"}, Row{here + "\\..\\o.hex", "../o.hex"},
          Row{here + "\\..\\..\\o.hex", "../../o.hex"}, Row{here, "."},
          Row{smallDrive + ":" + ofDrive + "\\o.hex", "o.hex"}, Row{ofDrive + "\\o.hex", "o.hex"},
          Row{"\\\\?\\" + here + "\\o.hex", "o.hex"},
          Row{otherDrive + ":\\a\\o.hex", otherDrive + ":/a/o.hex"},
          Row{"\\\\server\\share\\o.hex", "//server/share/o.hex"},
          Row{"\\\\?\\UNC\\server\\share\\o.hex", "//server/share/o.hex"},
          Row{"\\\\server\\share", "//server/share"}})
        EXPECT_EQ(Platform::portablePath(row.path), row.seen) << row.path;
    fs::current_path(before);
}

/// Lets a scanner hold the file for a moment, without letting others remove it.
class Scanner {
public:
    explicit Scanner(const std::string& path)
        : handle_(::CreateFileW(Platform::wideText(path).c_str(), GENERIC_READ, FILE_SHARE_READ,
                                nullptr, OPEN_EXISTING, 0, nullptr)),
          thread_(::CreateThread(nullptr, 0, &letGo, handle_, 0, nullptr)) {}
    ~Scanner() {
        ::WaitForSingleObject(thread_, INFINITE);
        ::CloseHandle(thread_);
    }
    Scanner(const Scanner&) = delete;
    Scanner& operator=(const Scanner&) = delete;

    bool isHolding() const { return handle_ != INVALID_HANDLE_VALUE; }

private:
    static DWORD WINAPI letGo(void* handle) {
        ::Sleep(200);
        ::CloseHandle(handle);
        return 0;
    }

    HANDLE handle_;
    HANDLE thread_;
};

TEST(PlatformWindowsTest, AFileThatAScannerHoldsIsReplacedAMomentLater) {
    EXPECT_TRUE(put(at("held"), "before"));
    {
        const Scanner scanner(at("held"));
        ASSERT_TRUE(scanner.isHolding());
        EXPECT_FALSE(replaced(at("held"), "after"));
    }
    EXPECT_EQ(contentsOf(at("held")), "after");
}

TEST(PlatformWindowsTest, AFileThatStaysHeldIsAsItWas) {
    EXPECT_TRUE(put(at("held"), "before"));
    const HANDLE held = ::CreateFileW(Platform::wideText(at("held")).c_str(), GENERIC_READ,
                                      FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_TRUE(replaced(at("held"), "after"));
    ::CloseHandle(held);
    EXPECT_EQ(contentsOf(at("held")), "before");
}

TEST(PlatformWindowsTest, TheInterpreterGetsTheLine) {
    const std::string folder = at("a b");
    fs::create_directory(folder);
    EXPECT_TRUE(put(folder + "/show.bat", "@echo %~1:%~2>%3\r\n@exit /b 7\r\n"));
    EXPECT_TRUE(put(at("show.bat"), "@echo %~1:%~2>%3\r\n@exit /b 8\r\n"));
    const std::string out = at("shown");
    std::string windowsFolder = testing::TempDir();
    for (char& c : windowsFolder)
        if (c == '/') c = '\\';
    const std::string arguments = "one \"two  words\" " + windowsFolder + "shown";
    EXPECT_EQ(Platform::runProgram(windowsFolder + "a b\\show.bat", arguments), 7);
    EXPECT_EQ(contentsOf(out), "one:two  words\r\n");
    EXPECT_EQ(Platform::runProgram(windowsFolder + "show.bat", arguments), 8);
}

}  // namespace
