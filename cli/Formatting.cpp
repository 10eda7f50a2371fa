#include "cli/Formatting.hpp"

#include <optional>
#include <ostream>
#include <string_view>
#include <system_error>
#include <utility>

#include "editor/Format.hpp"
#include "editor/Text.hpp"
#include "platform/Files.hpp"
#include "platform/Replace.hpp"
#include "strict/files/RunFiles.hpp"
#include "strict/files/WholeFile.hpp"

namespace CommandLine {

namespace {

using Strict::ExitCode;
using Strict::Kind;

constexpr const char* standardInput = "<stdin>";

/// Formats one script after the other.
class Formatter {
public:
    Formatter(const FormatRequest& request, Strict::Printer& printer, std::ostream& output)
        : isCheck_(request.isCheck), printer_(&printer), output_(&output) {
        settings_.variables = request.variables;
    }

    void formatFile(const std::string& path) {
        if (auto contents = read(path, Platform::readFile(path))) {
            const std::string before = *contents;
            const auto after = formatted(path, std::move(*contents));
            if (after && *after != before) isCheck_ ? list(path) : write(path, *after);
        }
    }

    void formatInput() {
        if (auto contents = read(standardInput, Platform::readStandardInput())) {
            const std::string before = *contents;
            const auto after = formatted(standardInput, std::move(*contents));
            if (!isCheck_)
                *output_ << after.value_or(before);
            else if (after && *after != before)
                list(standardInput);
        }
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
    /// The bytes of a file, or nothing after a diagnostic.
    std::optional<std::string> read(const std::string& path,
                                    std::optional<Platform::FileContents> contents) {
        if (!contents) {
            std::error_code error = Platform::lastError();
            if (!error && path != standardInput) error = Platform::outputTarget(path).error;
            printer_->take(
                {Kind::CannotOpen, "cannot open the script " + path + ": " +
                                       (error ? error.message() : "it has no end to wait for")});
            return std::nullopt;
        }
        if (contents->reading != Platform::Reading::Complete) {
            printer_->take(
                {Kind::ShortRead, "the script " + path + " could not be read completely"});
            return std::nullopt;
        }
        return std::string(contents->text());
    }

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

    void write(const std::string& path, std::string_view text) {
        const auto file = files_.createOutput(path, Platform::FileMode::Binary);
        const bool isWritten = file != nullptr && file->write(text);
        if (!isWritten || !file->close())
            printer_->take(
                {Kind::CannotWrite, "cannot write " + path + ": " + files_.reasonFor(path)});
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
    for (const std::string& path : request.files) {
        if (path == "-")
            formatter.formatInput();
        else
            formatter.formatFile(path);
    }
    if (request.files.empty()) formatter.formatInput();
    return formatter.finish();
}

}  // namespace CommandLine
