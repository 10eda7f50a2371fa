#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/Files.hpp"
#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/script/FileParts.hpp"
#include "strict/script/ScriptText.hpp"

namespace Strict {

/// What came of the attempt to read a file of a script.
struct ScriptFile {
    std::optional<std::string> text;  ///< with line feeds alone and without a byte order mark
    std::optional<Platform::FileIdentity> identity = {};  ///< of a regular file
    bool isMissing = false;  ///< nothing is at its path, so it may be elsewhere
    /// Without a text: why. Its place is not known here.
    Diagnostic fault = {};
};

/// Puts a script together with the files that it includes.
///
/// PARAMETER and INCLUDE are carried out before anything else is prepared, each file by itself:
///
/// - A parameter is replaced as a whole word in the file that declares it, and only there. A value
///   of the command line and a default are literal: nothing is replaced in them. What a file gives
///   by WITH is text of that file, in which its own parameters are replaced.
/// - The text of a file replaces its INCLUDE. A file is read once, however often it is included.
class ScriptAssembly {
public:
    using Reader = std::function<ScriptFile(const std::string& path)>;
    using Variables = std::map<std::string, std::string>;

    /// Bytes of all that is included, counted each time, and of the values given to it.
    static constexpr std::size_t longestText = std::size_t{1} << 26U;
    static constexpr std::size_t mostInclusions = 65'536;
    static constexpr std::size_t deepest = 64;  ///< levels of files below the script

    /// @param folders  where a file may be that is not beside the one that includes it, in this
    ///                 order; each ends with a separator
    ScriptAssembly(Reader read, std::vector<std::string> folders, DiagnosticSink& sink)
        : read_(std::move(read)), folders_(std::move(folders)), sink_(&sink) {}

    /// Puts the script together and prepares it. Null after a diagnostic.
    ///
    /// @param script     its file, with a text
    /// @param variables  of the command line: the values of the script's parameters, or, if it has
    ///                   none, variables
    /// @throws Parser::VariableError
    /// @throws BrokenValue
    std::unique_ptr<ScriptText> assemble(const std::string& name, ScriptFile script,
                                         const Variables& variables);

    /// All that was wrong is that files could not be read.
    bool hasOnlyReadFaults() const { return hasOnlyReadFaults_; }

private:
    /// What a parameter is replaced by where its file is included.
    struct Value {
        std::size_t number;  ///< of AssembledText::parameters
        std::string text;    ///< a mark, or text of the file that gives it
    };
    using Values = std::vector<Value>;  ///< by the numbers of the parameters in their file

    std::size_t addFile(const std::string& name, ScriptFile file);
    void inspect(std::size_t inclusion);
    void put(std::size_t inclusion, const Values& values);
    void keep(std::size_t inclusion, std::size_t from, std::size_t to);
    void insert(std::size_t inclusion, TextSpan word, const Value& value);
    void include(std::size_t outer, const IncludeDirective& directive, const Values& values);
    std::optional<std::size_t> find(std::size_t outer, const IncludeDirective& directive,
                                    const std::string& path);
    std::optional<std::size_t> read(const std::string& path, ScriptFile& failed);
    bool isAllowed(std::size_t outer, const IncludeDirective& directive, std::size_t file);
    bool charge(std::size_t size, std::size_t inclusion, TextSpan where);
    Values valuesOfScript(const Variables& variables);
    Values valuesOf(std::size_t inclusion, std::size_t outer, const IncludeDirective& directive,
                    const Values& outerValues);
    Value defaultOf(std::size_t inclusion, std::size_t parameter);
    Value literal(std::string_view name, std::string value);
    void reportUnused(std::size_t inclusion, std::string_view name, std::optional<Place> place);
    static std::string expanded(const FileParts& file, TextSpan part, const Values& values);
    std::string resolved(std::string_view text, std::size_t most) const;
    void report(const Diagnostic& diagnostic);
    void reportReading(const Diagnostic& diagnostic);
    Place placeIn(std::size_t inclusion, TextSpan part) const {
        return result_.sources.placeIn(inclusion, part);
    }
    const FileParts& partsOf(std::size_t inclusion) const {
        return files_[result_.sources.inclusion(inclusion).file].value();
    }

    Reader read_;
    std::vector<std::string> folders_;
    DiagnosticSink* sink_;
    AssembledText result_;
    std::deque<std::optional<FileParts>> files_;  ///< by the numbers of the sources
    std::unordered_map<std::string, std::size_t> paths_;
    std::map<Platform::FileIdentity, std::size_t> identities_;
    std::unordered_map<std::string, ScriptFile> unreadable_;  ///< by their paths
    std::size_t size_ = 0;
    std::size_t inclusions_ = 0;
    std::size_t suggestions_ = 0;  ///< that were looked for
    bool isFull_ = false;          ///< the text became too long
    bool isGood_ = true;
    bool hasOnlyReadFaults_ = true;
};

}  // namespace Strict
