#pragma once

#include <deque>
#include <string>

/// The files of selftest/data/, compiled into the program: one string a line, without line end.
/// Each is expanded at its first use and kept to the end of the process.
namespace SelfTest {

/// Intel HEX of one firmware image.
const std::deque<std::string>& sampleInput();

/// A script that fills, hashes, checks and writes that image.
const std::deque<std::string>& sampleScript();

/// Intel HEX that the script must write, line by line.
const std::deque<std::string>& referenceOutput();

}  // namespace SelfTest
