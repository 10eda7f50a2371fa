#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "strict/RunOptions.hpp"
#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/files/RunFiles.hpp"
#include "strict/script/ScriptAssembly.hpp"
#include "strict/script/ScriptText.hpp"

namespace Strict {

/// Reads the script of a run and the files that it includes, and prepares its text.
class ScriptReading {
public:
    /// The text of a file as an editor holds it; nothing of a file that is read as it is on disk.
    using EditedText = std::function<std::optional<std::string>(const std::string& path)>;

    /// @param files   gets the files that are included, as inputs
    /// @param edited  empty if there are no texts but those on disk
    ScriptReading(const RunOptions& options, RunFiles& files, DiagnosticSink& sink,
                  EditedText edited = {})
        : options_(&options), files_(&files), sink_(&sink), edited_(std::move(edited)) {}

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
    ScriptFile readFile(const std::string& path);

    const RunOptions* options_;
    RunFiles* files_;
    DiagnosticSink* sink_;
    EditedText edited_;
    std::string sha256_;
    bool isUnusable_ = false;
};

}  // namespace Strict
