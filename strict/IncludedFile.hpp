#pragma once

#include <string>
#include <vector>

#include "strict/files/RunFiles.hpp"
#include "strict/script/ScriptAssembly.hpp"

namespace Strict {

/// Reads a file that a script includes, as an input of the run.
ScriptFile readIncluded(const std::string& path, RunFiles& files);

/// The folders of the recipes that are installed, each with a separator at its end: that beside the
/// running program, so that a package may be moved, and that of the build's configuration.
std::vector<std::string> recipeFolders();

/// Drops the byte order mark of UTF-8 that a text may begin with.
void dropByteOrderMark(std::string& text);

}  // namespace Strict
