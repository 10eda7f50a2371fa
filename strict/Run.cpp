#include "strict/Run.hpp"

#include <algorithm>
#include <exception>
#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "classic/ClassicWords.hpp"
#include "io/field/FieldReading.hpp"
#include "parser/ScriptParser.hpp"
#include "parser/grammar/ScriptSyntax.hpp"
#include "parser/text/VariableExpansion.hpp"
#include "platform/Files.hpp"
#include "platform/Replace.hpp"
#include "platform/Streams.hpp"
#include "strict/Audit.hpp"
#include "strict/ElfSymbols.hpp"
#include "strict/diagnostics/RemarkList.hpp"
#include "strict/diagnostics/Suggestion.hpp"
#include "strict/files/DependencyFile.hpp"
#include "strict/files/OutputSet.hpp"
#include "strict/files/WholeFile.hpp"
#include "strict/record/Comparison.hpp"
#include "strict/record/Proof.hpp"
#include "strict/record/Provenance.hpp"
#include "strict/record/RunRecording.hpp"
#include "strict/script/RunListener.hpp"
#include "strict/script/ScriptCheck.hpp"
#include "strict/script/ScriptText.hpp"
#include "strict/script/SyntaxErrors.hpp"

namespace Strict {

namespace {

/// Syntax errors that are reported in one run.
constexpr std::size_t mostSyntaxErrors = 20;

/// The script's own text, or nothing after a diagnostic.
std::optional<std::string> read(const RunOptions& options, DiagnosticSink& sink) {
    if (options.text) return options.text;
    const bool isStandardInput = options.script == "-";
    Platform::clearLastError();
    auto contents =
        isStandardInput ? Platform::readStandardInput() : Platform::readFile(options.script);
    if (!contents) {
        std::error_code error = Platform::lastError();
        if (!error && !isStandardInput) error = Platform::outputTarget(options.script).error;
        sink.take({Kind::CannotOpen, "cannot open the script " + options.script + ": " +
                                         (error ? error.message() : "it has no end to wait for")});
        return std::nullopt;
    }
    if (contents->reading != Platform::Reading::Complete) {
        sink.take(
            {Kind::ShortRead, "the script " + options.script + " could not be read completely"});
        return std::nullopt;
    }
    Platform::translateText(*contents);
    return std::string(contents->text());
}

std::string wordsFor(Facts::VariableFault fault) {
    switch (fault) {
        case Facts::VariableFault::NotARegularExpression:
            return "is no valid regular expression";
        case Facts::VariableFault::TooComplex:
            return "is too complex a regular expression";
        case Facts::VariableFault::ScriptTooLong:
            break;
    }
    return "makes the script too long";
}

/// The text made ready, or null after a diagnostic.
std::unique_ptr<ScriptText> prepare(const RunOptions& options, std::string text,
                                    DiagnosticSink& sink) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (text.starts_with(mark)) text.erase(0, mark.size());
    const std::string name = options.script == "-" ? "<stdin>" : options.script;
    try {
        return std::make_unique<ScriptText>(name, std::move(text), options.variables);
    } catch (const Parser::VariableError& error) {
        sink.take(
            {Kind::Syntax, "the variable name " + error.name() + " " + wordsFor(error.fault())});
    }
    return nullptr;
}

/// Parses as many statements as there are and reports what is none. True if everything parsed.
bool parse(const ScriptText& script, Parser::ScriptSyntax& syntax, ScriptCheck& check,
           DiagnosticSink& sink) {
    const std::string_view text = script.prepared();
    std::size_t errors = 0;
    std::size_t resumed = 0;  ///< where the parse went on after the last error
    for (std::size_t at = 0;;) {
        at += syntax.parse(text.substr(at));
        if (at == text.size()) return errors == 0;
        if (++errors > mostSyntaxErrors) {
            sink.take({Kind::Syntax, "there are more syntax errors than are shown"});
            return false;
        }
        // Once more, now with a note of what is missing. The last statement that is finished may
        // be the broken one, without the option that broke it.
        const auto& finished = check.statements();
        const bool isFirst = finished.empty() || finished.back().last < resumed;
        const std::size_t from = isFirst ? at : finished.back().first;
        Parser::ScriptSyntax explainer(nullptr);
        Parser::Expectations missed;
        explainer.state().expectations = &missed;
        explainer.parse(text.substr(from));
        check.abandon(at);
        sink.take(syntaxError(script, text.substr(from), missed, syntax.statementKeywords()));
        at = resumed = nextStatement(text, at, syntax.statementKeywords());
        if (at == text.size()) return false;
    }
}

/// "did you mean X?" for a word of the script that is like `name`.
std::string likeWord(const ScriptText& script, const std::string& name) {
    constexpr std::size_t mostWords = 10'000;
    constexpr std::string_view letters =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";
    const std::string_view text = script.prepared();
    std::set<std::string> words;
    for (std::size_t at = text.find_first_of(letters);
         at != std::string_view::npos && words.size() < mostWords;) {
        const std::size_t end = std::min(text.find_first_not_of(letters, at), text.size());
        words.emplace(text.substr(at, end - at));
        at = text.find_first_of(letters, end);
    }
    const std::vector<std::string> list(words.begin(), words.end());
    const auto word = nearest(name, list);
    return word ? "did you mean " + *word + "?" : "";
}

/// A dollar sign that is not one of the two that mean one.
bool hasLoneDollar(std::string_view value) {
    for (std::size_t at = value.find('$'); at != std::string_view::npos;
         at = value.find('$', at + 2))
        if (value.substr(at, 2) != "$$") return true;
    return false;
}

void checkVariables(const RunOptions& options, const ScriptText& script, DiagnosticSink& sink) {
    for (const auto& variable : script.map().variables()) {
        if (!variable.isUsed && options.variables.contains(variable.name))
            sink.take({Kind::UnusedVariable,
                       "the variable " + variable.name + " does not occur in the script",
                       std::nullopt,
                       likeWord(script, variable.name),
                       {}});
        if (variable.inWord)
            sink.take({Kind::VariableInWord,
                       "the variable " + variable.name + " is replaced within a longer word",
                       script.placeInFile(*variable.inWord, variable.name.size()),
                       "",
                       {}});
        if (hasLoneDollar(variable.value))
            sink.take({Kind::VariableDollar,
                       "the value of the variable " + variable.name +
                           " holds a $, which has a meaning of its own in a replacement",
                       std::nullopt,
                       "write $$ for a dollar sign",
                       {}});
    }
}

/// Runs the statements. False if one of them failed, or was reported as an error.
class Execution {
public:
    Execution(const RunOptions& options, const ScriptText& script, const ScriptCheck& check,
              Printer& printer, std::ostream& output, OutputSet& files)
        : options_(&options),
          printer_(&printer),
          files_(&files),
          printed_(output, output),
          listener_(
              script, printer, printed_,
              [&files](std::string_view path) { return files.reasonFor(path); },
              [&check](std::string_view name) { return check.isMade(name); }),
          provenance_(listener_, reading_) {
        context_.reading = &reading_;
        context_.observer = &provenance_;
    }

    bool run(Parser::ScriptSyntax& syntax, const std::vector<ScriptCheck::Range>& ranges) {
        const Facts::ListenerScope listening(listener_);
        const Io::HostScope hosting(*files_);
        const auto& commands = syntax.state().statement.commands();
        for (std::size_t i = 0; i < commands.size(); ++i) {
            const std::size_t before = printer_->errors();
            listener_.enter(ranges[i].first, ranges[i].last);
            provenance_.enter(*commands[i]);
            auditBefore(*commands[i], context_, provenance_, listener_);
            const bool isDone =
                printer_->errors() == before ? commands[i]->execute(context_) : false;
            const bool isGood = isDone && printer_->errors() == before;
            if (!isGood && !options_->keepsGoing) return false;
        }
        return true;
    }

    /// Whether all that the statements printed has arrived.
    bool isPrinted() const { return !printed_.hasLostOutput(); }

    const Parser::WrapperLib::CmdContext& context() const { return context_; }
    const Provenance& provenance() const { return provenance_; }

private:
    const RunOptions* options_;
    Printer* printer_;
    OutputSet* files_;
    Classic::ClassicWords printed_;
    RunListener listener_;
    Io::Field::FieldReading reading_;
    Provenance provenance_;
    Parser::WrapperLib::CmdContext context_;
};

/// A program that was called needed the outputs before the run failed.
void noteOutputsInPlace(const OutputSet& files, DiagnosticSink& sink) {
    if (files.inPlace().empty()) return;
    std::string names;
    for (const std::string& path : files.inPlace()) names += (names.empty() ? "" : ", ") + path;
    sink.take(
        {std::nullopt, "these outputs are in place already, since a program was called: " + names});
}

/// The final images: a picture if the path is that of one, or text.
std::string mapOf(const Inspect::RunRecord& record, const std::string& path) {
    constexpr std::size_t width = 80;
    std::vector<Inspect::MapRow> rows;
    for (const Inspect::ImageRecord& image : record.images) rows.push_back(Inspect::rowOf(image));
    const Inspect::Map map(std::move(rows));
    return path.ends_with(".svg") ? map.svg() : map.text(width, Platform::showsUnicode());
}

bool needsRecord(const RunOptions& options) {
    return options.comparesDisk || !options.manifest.empty() || !options.report.empty() ||
           !options.map.empty();
}

/// Compares the record with what is on disk, or adds it to the outputs. False if anything differs.
bool useRecord(const RunOptions& options, const Inspect::RunRecord& record, OutputSet& files,
               DiagnosticSink& sink) {
    if (options.isCheck) {
        const bool isAsListed =
            options.manifest.empty() || compareWithManifest(options.manifest, record, sink);
        return (!options.comparesDisk || compareWithDisk(files, record, sink)) && isAsListed;
    }
    if (!options.manifest.empty())
        addFile(files, options.manifest, Inspect::manifestOf(record), sink);
    if (!options.map.empty()) addFile(files, options.map, mapOf(record, options.map), sink);
    if (!options.report.empty()) addFile(files, options.report, Inspect::reportOf(record), sink);
    return true;
}

}  // namespace

ExitCode run(const RunOptions& requested, Printer& printer, std::ostream& output) {
    RunOptions options = requested;
    OutputSet files(options.isCheck ? OutputSet::Mode::Memory : OutputSet::Mode::Disk);
    RemarkList remarks(printer.policy());
    if (needsRecord(options)) {
        files.keepDigests();
        printer.copyTo(remarks);
    }
    if (!resolveSymbols(options.symbols, files, options.variables, printer))
        return ExitCode::Failed;
    auto written = read(options, printer);
    if (!written) return ExitCode::Failed;
    const auto script = prepare(options, std::move(*written), printer);
    if (!script) return ExitCode::Unusable;
    Parser::ScriptSyntax syntax(&Parser::ScriptParser::calculated);
    ScriptCheck check(*script, syntax.state(), printer);
    syntax.state().statement.setObserver(&check);
    const bool isParsed = parse(*script, syntax, check, printer);
    check.finish();
    if (!isParsed) return ExitCode::Unusable;
    checkVariables(options, *script, printer);
    if (printer.errors() != 0 && !options.keepsGoing) return ExitCode::Failed;

    Execution execution(options, *script, check, printer, output, files);
    execution.run(syntax, check.statements());
    if (!execution.isPrinted())
        printer.take({Kind::ShortWrite, "standard output could not be written completely"});
    if (printer.errors() != 0) {
        noteOutputsInPlace(files, printer);
        return ExitCode::Failed;
    }
    if (needsRecord(options)) {
        const bool isFile = options.script != "-" && !options.text;
        const Ran ran{isFile ? options.script : "",
                      &options.variables,
                      script.get(),
                      &syntax.state().statement.commands(),
                      &check.statements(),
                      &execution.context(),
                      &execution.provenance(),
                      &files};
        Inspect::RunRecord record = recordOf(ran, !options.report.empty() || options.comparesDisk);
        remarks.finish();
        record.remarks = std::move(remarks.remarks);
        if (!useRecord(options, record, files, printer)) return ExitCode::Failed;
    }
    if (!options.dependencyFile.empty() && !options.isCheck)
        writeDependencyFile(options.dependencyFile, options.script, files, printer);
    commit(files, printer);
    return printer.errors() == 0 ? ExitCode::Good : ExitCode::Failed;
}

}  // namespace Strict
