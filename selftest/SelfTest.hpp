#pragma once

#include "classic/ClassicWords.hpp"

namespace SelfTest {

/// Runs the built-in end-to-end test of the whole tool, under CUnit's basic interface.
///
/// Writes a sample image and a script into ../KvTessaron/__sample_files/, seen from the working
/// directory, runs the script and compares its Intel HEX output with a reference, line by line. The
/// folder is not made; without it the test fails. Standard output shows the outcome; the four files
/// are not removed.
///
/// @param words  prints what differs; the run reports to the listener in force
void runAll(Classic::ClassicWords& words);

}  // namespace SelfTest
