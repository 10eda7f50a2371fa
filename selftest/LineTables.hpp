#pragma once

#include <deque>
#include <string>

/// The files of selftest/data/, compiled into the program: one string per line, without line end.
/// Each deque is built at its first use and lives until the process ends.
namespace SelfTest {

/// A firmware image in Intel HEX.
const std::deque<std::string>& sampleInput();

/// A script that fills, hashes, checks and writes that image.
const std::deque<std::string>& sampleScript();

/// The Intel HEX file that the script must write.
const std::deque<std::string>& referenceOutput();

}  // namespace SelfTest
