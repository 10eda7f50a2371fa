#include "strict/Run.hpp"

#include <algorithm>
#include <memory>
#include <new>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "classic/ClassicWords.hpp"
#include "io/formats/FieldReading.hpp"
#include "platform/Paths.hpp"
#include "platform/Streams.hpp"
#include "strict/AddressSpace.hpp"
#include "strict/ElfSymbols.hpp"
#include "strict/ImageReading.hpp"
#include "strict/IncludedFile.hpp"
#include "strict/ProgramFiles.hpp"
#include "strict/RunDocuments.hpp"
#include "strict/RunListener.hpp"
#include "strict/ScriptReading.hpp"
#include "strict/diagnostics/RemarkList.hpp"
#include "strict/files/DependencyFile.hpp"
#include "strict/files/Passphrase.hpp"
#include "strict/files/RunFiles.hpp"
#include "strict/files/WholeFile.hpp"
#include "strict/meaning/MeaningCheck.hpp"
#include "strict/meaning/TextRule.hpp"
#include "strict/record/Comparison.hpp"
#include "strict/record/Provenance.hpp"
#include "strict/record/RunRecording.hpp"
#include "strict/record/WideGaps.hpp"
#include "strict/script/NumberCheck.hpp"
#include "strict/script/ParsedScript.hpp"
#include "strict/script/ScriptCheck.hpp"
#include "strict/script/ScriptText.hpp"

namespace Strict {

namespace {

/// Runs the statements of a program.
class Execution {
public:
    /// @param isScript  somebody wrote the program as a script
    Execution(const Program& program, bool isScript, Printer& printer, std::ostream& output,
              RunFiles& files)
        : program_(&program),
          printer_(&printer),
          files_(&files),
          printed_(output, output),
          reports_(&program.text(), printer),
          listener_(reports_, &provenance_, &printed_,
                    {[&files](std::string_view path) { return files.reasonFor(path); },
                     [&program](std::string_view name) { return program.makes(name); },
                     isScript ? OptionsOf::Statements : OptionsOf::Convert}),
          provenance_(reports_) {
        if (isScript) meaning_.emplace(program, provenance_, printer);
        context_.reading = &reading_;
        context_.observer = &provenance_;
        context_.longestFile = addressCount;
    }

    /// Names the files of all statements. False if two that exclude each other have one place.
    bool nameFiles() { return nameFilesOf(*program_, meaning_.has_value(), *files_, reports_); }

    /// Names what is at the addresses of images, in diagnostics. False after a diagnostic.
    bool readNames(const std::string& path) {
        if (path.empty()) return true;
        auto names = Strict::readNames(path, *printer_);
        if (names) provenance_.setNames(std::move(*names));
        return names.has_value();
    }

    /// The passphrase of encrypted keys, borrowed.
    void setPassphrase(std::optional<std::string_view> passphrase) {
        context_.passphrase = passphrase;
    }

    /// Reports slips of meaning, as far as they can be known before the run.
    void checkMeaning() {
        if (meaning_) meaning_->checkBefore();
    }

    /// False if a statement did not do its work, or reported an error. Unless `keepsGoing`, the
    /// first one that fails is the last one that runs.
    bool run(bool keepsGoing) {
        const Facts::ListenerScope listening(listener_);
        const Io::HostScope hosting(*files_);
        const Parser::StatementList& statements = program_->statements();
        std::size_t failed = statements.size();  // the first one
        for (std::size_t i = 0; i < statements.size(); ++i) {
            if (execute(i)) continue;
            failed = std::min(failed, i);
            if (!keepsGoing) break;
            files_->stopEffects();
        }
        if (failed == statements.size()) return true;
        // A policy may have silenced the diagnostic; it does not undo what happened.
        reports_.enter(statements[failed]);
        if (printer_->errors() == 0)
            reports_.note("this statement did not do its work, so the run fails");
        return false;
    }

    /// Whether all that the statements printed has arrived.
    bool isPrinted() const { return !printed_.hasLostOutput(); }

    const Parser::WrapperLib::CmdContext& context() const { return context_; }
    const Provenance& provenance() const { return provenance_; }

private:
    /// Executes the statement of that number.
    bool execute(std::size_t number) {
        const std::size_t before = printer_->errors();
        const Parser::Statement statement = program_->statements()[number];
        reports_.enter(statement);
        listener_.enter();
        if (!settle(number, statement)) return false;
        provenance_.enter(statement);
        if (meaning_) meaning_->enter(number, context_);
        if (statement.roles.hasAny(Parser::makesValue))
            provenance_.checkCovered(statement, context_);
        checkWideGaps(statement, context_, provenance_, reports_, meaning_.has_value());
        if (printer_->errors() != before) return false;
        const bool isDone =
            program_->commands()[number]->execute(context_) && !listener_.hasRefused();
        if (meaning_ && isDone) meaning_->leave(number, context_);
        if (!meaning_ && isDone)
            if (std::string text = unknownTextOf(statement, context_, provenance_); !text.empty())
                reports_.report(Kind::UnknownText, std::move(text), {Parser::Role::InputFile},
                                "--from RawBinary says that this is meant");
        return isDone && printer_->errors() == before;
    }

    /// Asks for the numbers of a statement that are not known yet, and checks them.
    bool settle(std::size_t number, const Parser::Statement& statement) {
        if (!program_->commands()[number]->settle(context_)) return false;
        PendingList found;
        NumberCheck(program_->text(), found).checkSettled(statement);
        found.moveTo(*printer_);
        return true;
    }

    const Program* program_;
    Printer* printer_;
    RunFiles* files_;
    Classic::ClassicWords printed_;
    StatementReports reports_;
    RunListener listener_;
    Io::Formats::FieldReading reading_;
    Provenance provenance_;
    std::optional<MeaningCheck> meaning_;  ///< of a script
    Parser::WrapperLib::CmdContext context_;
};

/// What a run that failed has done, or not done, to the machine: a program that was called needed
/// the outputs before.
void noteEffects(const RunFiles& files, DiagnosticSink& sink) {
    if (files.hasLeftOutProgram())
        sink.take({std::nullopt, "no program was started after the first error"});
    const std::vector<std::string> inPlace = files.inPlace();
    if (inPlace.empty()) return;
    std::string names;
    for (const std::string& path : inPlace) names += (names.empty() ? "" : ", ") + path;
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

/// Names the files that options give. False after a diagnostic.
bool nameFiles(const RunOptions& options, const RunDocuments& documents, RunFiles& files,
               DiagnosticSink& sink) {
    const auto name = [&](const std::string& path, FileRole role) {
        return path.empty() || nameFile(files, path, role, sink);
    };
    if (options.script != "-") name(options.script, FileRole::Script);
    name(options.nameFile, FileRole::Input);
    name(options.passphraseFile, FileRole::PassphraseFile);
    if (options.isCheck) return documents.nameFiles(files, sink);
    bool isGood = name(options.dependencyFile, FileRole::DependencyFile);
    isGood = documents.nameFiles(files, sink) && isGood;
    isGood = name(options.map, FileRole::Map) && isGood;
    return name(options.report, FileRole::Report) && isGood;
}

/// The digests of a record are those of the bytes that the statements have read. False after a
/// diagnostic if that is not certain.
bool checkInputs(RunFiles& files, DiagnosticSink& sink) {
    const std::vector<std::string> changed = files.changedInputs();
    for (const std::string& path : changed)
        sink.take({Kind::ShortRead, path + " changed during the run, or could not be read twice"});
    return changed.empty();
}

RunFiles::Mode modeOf(const RunOptions& options) {
    if (!options.isCheck) return RunFiles::Mode::Disk;
    return options.comparesDisk ? RunFiles::Mode::Comparison : RunFiles::Mode::Memory;
}

/// One run, from its options to its exit code.
class Session {
public:
    Session(const RunOptions& options, Printer& printer, std::ostream& output)
        : options_(options),
          printer_(&printer),
          output_(&output),
          files_(modeOf(options)),
          documents_(options, printer.policy()),
          remarks_(printer.policy()) {
        if (!needsRecord()) return;
        files_.keepStates();
        if (documents_.areWanted() || !options_.report.empty()) files_.keepDigests();
        printer.copyTo(remarks_);
    }

    ExitCode run() {
        return guarded([this] { return runScript(); });
    }

    ExitCode run(const Program& program) {
        return guarded([&] { return execute(program); });
    }

private:
    bool needsRecord() const {
        return options_.comparesDisk || documents_.areWanted() || !options_.report.empty() ||
               !options_.map.empty();
    }

    template <class Work>
    ExitCode guarded(Work work) {
        const Buffer::ImageSpaceScope space(imageSpace);
        try {
            return work();
        } catch (const std::bad_alloc&) {
            printer_->take({Kind::OutOfMemory, "there is not enough memory for this run"});
            noteEffects(files_, *printer_);
            return ExitCode::Failed;
        }
    }

    /// The exit code after a diagnostic that a policy may have silenced.
    ExitCode failed(const char* words) {
        if (printer_->errors() == 0) printer_->take({std::nullopt, words});
        return ExitCode::Failed;
    }

    /// Reads the script, checks it and runs it.
    ExitCode runScript() {
        if (!nameFiles(options_, documents_, files_, *printer_)) return ExitCode::Failed;
        if (!options_.printsScript && !readKeys()) return ExitCode::Failed;
        if (!resolveSymbols(options_.symbols, files_, options_.variables, *printer_))
            return failed("a variable has no value without its symbol, so the run fails");
        ScriptReading reading(options_, files_, *printer_);
        auto script = reading.read(needsRecord());
        if (!script) return reading.isUnusable() ? ExitCode::Unusable : ExitCode::Failed;
        scriptSha256_ = reading.sha256();
        if (options_.printsScript) return print(*script);
        ParsedScript parsed(*script);
        ScriptCheck(*script, *printer_).check(parsed);
        if (!parsed.isWhole()) return ExitCode::Unusable;
        reading.checkVariables(*script);
        return execute(parsed.takeProgram(std::move(script)));
    }

    /// Reads the passphrase, which may come from a pipe, and the key for the documents. False after
    /// a diagnostic.
    bool readKeys() {
        const std::string& file = options_.passphraseFile;
        if (!file.empty()) {
            auto read = readPassphrase(file, files_, *printer_);
            if (!read) return false;
            passphrase_.emplace(std::move(*read));
        }
        return documents_.readKey(passphrase(), files_, *printer_);
    }

    std::optional<std::string_view> passphrase() const {
        return passphrase_ ? std::optional(passphrase_->text()) : std::nullopt;
    }

    /// Prints the text that the grammar would read.
    ExitCode print(const ScriptText& script) {
        *output_ << script.prepared() << std::flush;
        if (!*output_)
            printer_->take({Kind::ShortWrite, "standard output could not be written completely"});
        return printer_->errors() == 0 ? ExitCode::Good : ExitCode::Failed;
    }

    ExitCode execute(const Program& program) {
        Execution execution(program, !options_.script.empty(), *printer_, *output_, files_);
        if (!execution.readNames(options_.nameFile))
            return failed("the names at addresses could not be read, so the run fails");
        execution.setPassphrase(passphrase());
        const bool hasPlaces = execution.nameFiles();
        execution.checkMeaning();
        if (!hasPlaces || (printer_->errors() != 0 && !options_.keepsGoing))
            return ExitCode::Failed;

        if (printer_->errors() != 0) files_.stopEffects();
        const bool isGood = execution.run(options_.keepsGoing);
        if (!execution.isPrinted())
            printer_->take({Kind::ShortWrite, "standard output could not be written completely"});
        if (!isGood || printer_->errors() != 0) {
            noteEffects(files_, *printer_);
            return ExitCode::Failed;
        }
        if (needsRecord() && !finish(program, execution)) return ExitCode::Failed;
        if (!options_.dependencyFile.empty() && !options_.isCheck)
            writeDependencyFile(options_.dependencyFile, {options_.script, options_.nameFile},
                                files_, *printer_);
        // What could not be written takes all the rest with it.
        if (printer_->errors() != 0) {
            noteEffects(files_, *printer_);
            return ExitCode::Failed;
        }
        commit(files_, *printer_);
        return printer_->errors() == 0 ? ExitCode::Good : ExitCode::Failed;
    }

    /// Compares what the run made with what is on disk, or adds what is made of its record to the
    /// outputs. False if anything differs.
    bool finish(const Program& program, const Execution& execution) {
        if (!checkInputs(files_, *printer_)) return false;
        return options_.isCheck ? compare(program, execution) : write(record(program, execution));
    }

    Inspect::RunRecord record(const Program& program, const Execution& execution) {
        const FinishedRun finished{scriptSha256_,        &options_.variables,     &program,
                                   &execution.context(), &execution.provenance(), &files_,
                                   recipeFolders()};
        const RecordDetails details{!options_.report.empty() || options_.comparesDisk,
                                    !options_.billOfMaterials.empty(), !options_.manifest.empty()};
        Inspect::RunRecord record = recordOf(finished, details);
        remarks_.finish();
        record.remarks = std::move(remarks_.remarks);
        // The links of the record lead from one file to the other by their paths.
        for (Inspect::Remark& remark : record.remarks)
            remark.file = recordedPath(remark.file, finished.recipeFolders);
        return record;
    }

    /// Makes the record only for documents, or to explain a difference: the lines of inputs take
    /// more time than the run.
    bool compare(const Program& program, const Execution& execution) {
        std::optional<Inspect::RunRecord> made;
        const auto recordMade = [&]() -> const Inspect::RunRecord& {
            if (!made) made = record(program, execution);
            return *made;
        };
        const bool isAsListed =
            !documents_.areWanted() || documents_.compare(recordMade(), *printer_);
        return (!options_.comparesDisk ||
                compareWithDisk(files_, recordMade, execution.provenance(), *printer_)) &&
               isAsListed;
    }

    bool write(const Inspect::RunRecord& record) {
        files_.keepNoMoreDigests();
        documents_.write(record, files_, *printer_);
        if (!options_.map.empty())
            addFile(files_, options_.map, mapOf(record, options_.map), *printer_);
        if (!options_.report.empty())
            addFile(files_, options_.report, Inspect::reportOf(record), *printer_);
        return true;
    }

    RunOptions options_;
    Printer* printer_;
    std::ostream* output_;
    RunFiles files_;
    RunDocuments documents_;
    std::optional<Passphrase> passphrase_;  ///< of encrypted keys
    RemarkList remarks_;
    std::string scriptSha256_;  ///< if it is wanted
};

}  // namespace

ExitCode run(const RunOptions& options, Printer& printer, std::ostream& output) {
    return Session(options, printer, output).run();
}

ExitCode run(const Program& program, Printer& printer, std::ostream& output) {
    return Session({}, printer, output).run(program);
}

}  // namespace Strict
