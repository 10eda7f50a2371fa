#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "buffer/MemoryBuffer.hpp"
#include "tests/ExpectedFacts.hpp"

namespace Tests {

/// A path for a file of the running test.
inline std::string temporaryPath(const std::string& name = "file") {
    const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
    std::string path = std::string("io-test-") + test->test_suite_name() + test->name() + name;
    for (char& c : path)
        if (c == '/') c = '-';
    return testing::TempDir() + path;
}

inline std::string temporaryFile(const std::string& contents) {
    const std::string path = temporaryPath("input");
    std::ofstream(path, std::ios::binary) << contents;
    return path;
}

inline std::string contentsOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The contents of a text file, with LF for the line ends that this system has in texts.
inline std::string textOf(const std::string& path) {
    std::string text = contentsOf(path);
    if constexpr (TESSARON_TEXT_MODE)
        for (std::size_t at = 0; (at = text.find("\r\n", at)) != std::string::npos; ++at)
            text.erase(at, 1);
    return text;
}

/// An image of written bytes.
inline Buffer::MemoryBuffer imageOf(std::uint64_t start, const std::vector<std::uint8_t>& bytes) {
    Buffer::MemoryBuffer image(start, bytes.size());
    image.overlayBytes(bytes, start);
    return image;
}

inline std::vector<std::uint8_t> bytesOf(const Buffer::MemoryBuffer& image) {
    std::vector<std::uint8_t> bytes;
    image.appendBytes(bytes, image.getStartAddress(), image.getDataLength());
    return bytes;
}

/// `count` bytes that do not repeat with any power of two.
inline std::vector<std::uint8_t> someBytes(std::size_t count) {
    std::vector<std::uint8_t> bytes(count);
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<std::uint8_t>(i * 7 + i / 251);
    return bytes;
}

}  // namespace Tests
