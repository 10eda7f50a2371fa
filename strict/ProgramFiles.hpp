#pragma once

#include "strict/files/RunFiles.hpp"
#include "strict/script/Program.hpp"
#include "strict/script/StatementReports.hpp"

namespace Strict {

/// Names the files of all statements of a program. False, after a diagnostic, if two that exclude
/// each other have one place.
///
/// @param isScript  somebody wrote the program as a script
bool nameFilesOf(const Program& program, bool isScript, RunFiles& files, StatementReports& reports);

}  // namespace Strict
