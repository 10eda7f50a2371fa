#pragma once

#include "classic/ClassicWords.hpp"

namespace SelfTest {

/// Runs the built-in end-to-end test of the whole tool, under CUnit's basic interface.
///
/// Writes a sample image and a script into ../KvTessaron/__sample_files/, relative to the working
/// directory, runs the script and compares its Intel HEX output with a reference, line by line. The
/// test fails if the folder does not exist. The outcome goes to standard output, and the four files
/// are not removed.
///
/// @param words  prints the differences; the run reports to the current listener
void runAll(Classic::ClassicWords& words);

}  // namespace SelfTest
