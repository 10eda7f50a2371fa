#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "inspect/JsonText.hpp"
#include "platform/Files.hpp"
#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/files/RunFiles.hpp"

namespace Strict {

/// Names a file that an option gives, or reports the role that excludes its own. True if there is
/// none.
bool nameFile(RunFiles& files, const std::string& path, FileRole role, DiagnosticSink& sink);

/// "the manifest x is the script", for a file that cannot have the role.
std::string wordsFor(const RunFiles::Collision& collision, const std::string& path, FileRole role);

/// Reads a whole file that an option gives, or reports why that is not possible.
std::optional<Platform::FileContents> readWhole(const std::string& path, DiagnosticSink& sink);

/// Reads a whole script, or reports why that is not possible.
///
/// @param path  "-" for standard input
std::optional<Platform::FileContents> readScript(const std::string& path, DiagnosticSink& sink);

/// Adds a file to the outputs of a run, or reports why that is not possible.
void addFile(RunFiles& files, const std::string& path, std::string_view text, DiagnosticSink& sink,
             Platform::FileMode mode = Platform::FileMode::Text);

/// Makes a text, and lets the function take it piece by piece.
using MakeText = std::function<void(const Inspect::TakeText&)>;

/// The same for a text that is made while it is written.
void addFile(RunFiles& files, const std::string& path, const MakeText& make, DiagnosticSink& sink,
             Platform::FileMode mode = Platform::FileMode::Text);

/// Puts all outputs in place, or reports the one that could not be.
void commit(RunFiles& files, DiagnosticSink& sink);

/// Writes a file as a whole or not at all, or reports why that is not possible.
void writeWhole(RunFiles& files, const std::string& path, std::string_view text,
                DiagnosticSink& sink);

}  // namespace Strict
