#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "util/Hex.hpp"

/// The checksum vectors of tests/data/checksums.tsv; the README there gives their source.
namespace Tests {

struct Vector {
    std::string keyword;
    std::string inputName;
    std::vector<std::uint8_t> input;
    std::string value;
    int line;
};

/// The bytes that an input "seq:N", "ascii:TEXT" or "rep:HH*N" denotes.
inline std::vector<std::uint8_t> inputBytes(const std::string& name) {
    const std::string argument = name.substr(name.find(':') + 1);
    if (name.starts_with("ascii:")) return {argument.begin(), argument.end()};
    if (name.starts_with("rep:"))
        return std::vector<std::uint8_t>(
            std::stoul(argument.substr(3)),
            static_cast<std::uint8_t>(std::stoul(argument, nullptr, 16)));
    std::vector<std::uint8_t> bytes(std::stoul(argument));
    std::uint32_t x = 1;
    for (std::uint8_t& byte : bytes) {
        x = x * 1664525U + 1013904223U;
        byte = static_cast<std::uint8_t>(x >> 24U);
    }
    return bytes;
}

/// The rows whose keyword begins with `prefix`.
inline std::vector<Vector> loadVectors(const std::string& prefix) {
    std::ifstream file(TESSARON_TEST_DATA "/checksums.tsv");
    std::vector<Vector> vectors;
    int line = 0;
    for (std::string row; std::getline(file, row);) {
        ++line;
        std::istringstream fields(row);
        Vector vector;
        std::getline(fields, vector.keyword, '\t');
        std::getline(fields, vector.inputName, '\t');
        std::getline(fields, vector.value, '\t');
        vector.line = line;
        if (vector.keyword.starts_with('#') || !vector.keyword.starts_with(prefix)) continue;
        vector.input = inputBytes(vector.inputName);
        vectors.push_back(std::move(vector));
    }
    return vectors;
}

inline std::string keywordAndLine(const testing::TestParamInfo<Vector>& info) {
    return info.param.keyword + "_line_" + std::to_string(info.param.line);
}

inline void PrintTo(const Vector& vector, std::ostream* out) {
    *out << vector.keyword << " of " << vector.inputName;
}

template <class Bytes>
std::string hexOf(const Bytes& bytes) {
    std::string text;
    Util::appendHex(text, bytes);
    return text;
}

}  // namespace Tests
