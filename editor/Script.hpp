#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "editor/Text.hpp"
#include "strict/ScriptAnalysis.hpp"
#include "strict/diagnostics/Allowance.hpp"
#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/diagnostics/Policy.hpp"

namespace Editor {

/// What the user has set for all scripts.
struct Settings {
    std::map<std::string, std::string> variables;  ///< they count in scripts that have their names
    Strict::Policy policy;
};

using EditedText = Strict::ScriptReading::EditedText;

/// What is known of a script as a whole, for questions about it.
///
/// A parameter without a value gets one with which its statement parses, and a file that cannot be
/// read counts as empty, so that both keep nobody from an answer.
struct KnownScript {
    /// @param name  of the script's file
    KnownScript(const std::string& name, std::string text, const Settings& settings,
                const EditedText& edited);

    /// Why the script does not parse; empty if it does.
    std::vector<Strict::Diagnostic> faults() const;

    std::unique_ptr<const Strict::ScriptAnalysis> analysis;  ///< may have no text
    std::vector<Strict::Diagnostic> reported;                ///< when it was analysed
};

/// The variables of the settings that a script has the names of.
std::map<std::string, std::string> variablesFor(std::string_view text, const Settings& settings);

/// The diagnostics of `tessaron check` before the run, as many as it shows.
class Findings final : public Strict::DiagnosticSink {
public:
    explicit Findings(const Strict::Policy& policy) : policy_(&policy) {}

    void take(const Strict::Diagnostic& diagnostic) override;
    void countMore(Strict::Kind kind, std::uint64_t count) override;

    const std::vector<Strict::Judged>& shown() const { return shown_; }

    /// How many more there are, in words, or nothing.
    std::string rest() const { return allowance_.restText(); }

private:
    const Strict::Policy* policy_;
    Strict::Allowance allowance_;
    std::vector<Strict::Judged> shown_;
};

/// A place in the text that a file of a script has as it is read.
struct FilePlace {
    std::size_t file = 0;  ///< its number among the files of the script, which is itself number 0
    TextSpan where;
    auto operator<=>(const FilePlace& other) const {
        if (const auto order = file <=> other.file; order != 0) return order;
        if (const auto order = where.at <=> other.where.at; order != 0) return order;
        return where.length <=> other.where.length;
    }
    bool operator==(const FilePlace& other) const { return (*this <=> other) == 0; }
};

/// What a part of the prepared text was written as.
FilePlace filePlaceOf(const Strict::ScriptText& script, std::string_view part);

/// A script that somebody is writing: what is wrong with it, and what is known of it.
class Script {
public:
    /// @param name    of the file, as `tessaron check` would get it
    /// @param text    as it is read
    /// @param edited  gives the texts of other files that are open
    Script(std::string name, std::string text, const Settings& settings, EditedText edited);

    const std::string& name() const { return name_; }
    std::string_view text() const { return text_; }
    const Findings& findings() const { return findings_; }

    /// Null for a text that is not a script.
    const Strict::ScriptText* prepared() const { return analysis().text(); }
    const Strict::ScriptAnalysis& analysis() const;

    /// The paths of the files that the script needs, or would need.
    const std::set<std::string>& asked() const { return asked_; }

    /// The files of the script, by their numbers; itself alone if nothing is known.
    std::size_t fileCount() const;
    const std::string& fileName(std::size_t file) const;
    std::string_view fileText(std::size_t file) const;

    /// The text of another file, as an editor has it or as it is on disk; nothing if there is none.
    std::optional<std::string> textOf(const std::string& path) const;

    /// The span of a diagnostic's place in a file of the script; nothing if that is none of them.
    std::optional<FilePlace> placeOf(const Strict::Place& place) const;

    /// What the script was analysed with.
    const Settings& settings() const { return settings_; }
    const EditedText& edited() const { return edited_; }

    /// What a completion asks about: the same script with another text.
    KnownScript known(std::string text) const {
        return {name_, std::move(text), settings_, edited_};
    }

private:
    std::string name_;
    std::string text_;
    Settings settings_;
    mutable std::set<std::string> asked_;
    EditedText edited_;
    Findings findings_;
    std::unique_ptr<const Strict::ScriptAnalysis> checked_;
    mutable std::unique_ptr<const Strict::ScriptAnalysis> known_;  ///< when it is asked for first
};

}  // namespace Editor
