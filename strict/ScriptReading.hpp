#pragma once

#include <memory>
#include <optional>
#include <string>

#include "strict/RunOptions.hpp"
#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/files/RunFiles.hpp"
#include "strict/script/ScriptText.hpp"

namespace Strict {

/// Reads the script of a run and the files that it includes, and prepares its text.
class ScriptReading {
public:
    /// @param files  gets the files that are included, as inputs
    ScriptReading(const RunOptions& options, RunFiles& files, DiagnosticSink& sink)
        : options_(&options), files_(&files), sink_(&sink) {}

    /// Null after a diagnostic.
    ///
    /// @param withDigest  whether the digest of the script is wanted
    std::unique_ptr<ScriptText> read(bool withDigest);

    /// The two steps of `read`: the script's own text, and the text made ready. Nothing after a
    /// diagnostic.
    std::optional<std::string> readScript(bool withDigest);
    std::unique_ptr<ScriptText> prepare(std::string text);

    /// Reports what is wrong with the variables of the command line and of the script.
    void checkVariables(const ScriptText& script);

    /// Of the script's own file, if it was wanted.
    const std::string& sha256() const { return sha256_; }

    /// After a null: the script was read, and is not one.
    bool isUnusable() const { return isUnusable_; }

private:
    std::unique_ptr<ScriptText> assemble(const std::string& name, std::string text);

    const RunOptions* options_;
    RunFiles* files_;
    DiagnosticSink* sink_;
    std::string sha256_;
    bool isUnusable_ = false;
};

}  // namespace Strict
