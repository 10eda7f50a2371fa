#include "cli/Formatting.hpp"

#include <optional>
#include <ostream>
#include <string_view>
#include <utility>

#include "editor/Format.hpp"
#include "editor/Text.hpp"
#include "platform/Files.hpp"
#include "strict/files/RunFiles.hpp"
#include "strict/files/WholeFile.hpp"

namespace CommandLine {

namespace {

using Strict::ExitCode;
using Strict::Kind;

/// Formats one script after the other.
class Formatter {
public:
    Formatter(const FormatRequest& request, Strict::Printer& printer, std::ostream& output)
        : isCheck_(request.isCheck), printer_(&printer), output_(&output) {
        settings_.variables = request.variables;
    }

    /// Formats a script, or for "-" standard input.
    void format(const std::string& path) {
        const auto contents = Strict::readScript(path, *printer_);
        if (!contents) return;
        const bool isInput = path == "-";
        const std::string name = isInput ? "<stdin>" : path;
        const std::string_view before = contents->text();
        const auto after = formatted(name, std::string(before));
        const bool hasChanged = after && *after != before;
        if (isInput && !isCheck_)
            *output_ << (hasChanged ? *after : before);
        else if (hasChanged && isCheck_)
            list(name);
        else if (hasChanged)
            Strict::addFile(files_, path, *after, *printer_, Platform::FileMode::Binary);
    }

    ExitCode finish() {
        Strict::commit(files_, *printer_);
        *output_ << std::flush;
        if (!*output_)
            printer_->take({Kind::ShortWrite, "standard output could not be written completely"});
        if (hasFaults_) return ExitCode::Unusable;
        return printer_->errors() == 0 && !hasListed_ ? ExitCode::Good : ExitCode::Failed;
    }

private:
    /// The text in its format, or nothing after a diagnostic.
    std::optional<std::string> formatted(const std::string& path, std::string contents) {
        const Editor::Text text(std::move(contents));
        const Editor::Formatting formatting = Editor::format(path, text.read(), settings_, {});
        for (const Strict::Diagnostic& fault : formatting.faults) printer_->take(fault);
        if (formatting.outcome == Editor::FormatOutcome::SyntaxError) {
            hasFaults_ = true;
            return std::nullopt;
        }
        if (formatting.outcome == Editor::FormatOutcome::Uncertain)
            printer_->take({std::nullopt, path + " is left as it is: its blanks may count where "
                                                 "the format has others"});
        std::vector<Editor::Edit> edits;
        for (const Editor::Edit& edit : formatting.edits) edits.push_back(text.rawOf(edit));
        return Editor::edited(text.raw(), edits);
    }

    void list(const std::string& path) {
        hasListed_ = true;
        *output_ << path << "\n";
    }

    bool isCheck_;
    Strict::Printer* printer_;
    std::ostream* output_;
    Editor::Settings settings_;
    Strict::RunFiles files_{Strict::RunFiles::Mode::Disk};
    bool hasFaults_ = false;  ///< a script does not parse
    bool hasListed_ = false;
};

}  // namespace

ExitCode format(const FormatRequest& request, Strict::Printer& printer, std::ostream& output) {
    Formatter formatter(request, printer, output);
    for (const std::string& path : request.files) formatter.format(path);
    if (request.files.empty()) formatter.format("-");
    return formatter.finish();
}

}  // namespace CommandLine
