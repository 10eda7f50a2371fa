#include "strict/script/RunListener.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <system_error>
#include <utility>
#include <variant>

#include "classic/FormatFaultWords.hpp"
#include "inspect/Words.hpp"
#include "parser/grammar/ScriptSyntax.hpp"
#include "platform/Paths.hpp"
#include "strict/diagnostics/FieldWords.hpp"
#include "util/Hex.hpp"

namespace Strict {

namespace {

using namespace Facts;

/// Text without the white space at its end.
std::string_view trimmed(std::string_view text) {
    const std::size_t last = text.find_last_not_of(" \t\n\v\f\r");
    return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

/// Finds the arguments of one statement, which is parsed once more: only a statement that has
/// something to report costs that.
class Arguments final : public Parser::ParseObserver {
public:
    explicit Arguments(std::string_view statement) {
        Parser::ScriptSyntax syntax(nullptr);
        syntax.state().statement.setObserver(this);
        syntax.parse(statement);
    }

    void onStep(const char* trace, Parser::Position first, Parser::Position last) override {
        steps_.push_back({trace, {first, static_cast<std::size_t>(last - first)}, values_});
        values_.clear();
    }
    void onValue(std::uint32_t value, Parser::Position /*first*/,
                 Parser::Position /*last*/) override {
        values_.push_back(value);
    }
    void onStatement(Parser::Position /*first*/, Parser::Position /*last*/) override {}

    /// The text of the last argument with one of the traces, or of the statement's keyword.
    std::string_view textOf(const std::vector<std::string_view>& traces) const {
        const auto found = std::find_if(steps_.rbegin(), steps_.rend(), [&](const Step& step) {
            return std::ranges::find(traces, step.trace) != traces.end();
        });
        if (found != steps_.rend()) return found->text;
        return steps_.empty() ? std::string_view() : steps_.front().text;
    }

    /// The place where an image is named as a source, or the keyword.
    std::string_view image(std::string_view name) const {
        for (const Step& step : steps_) {
            const bool isSource =
                step.trace == "AddBufferAsSource -> " || step.trace == "AddFromBuffer -> ";
            if (isSource && trimmed(step.text) == name) return step.text;
        }
        return textOf({});
    }

    /// The area of the given numbers, or the keyword.
    std::string_view area(std::uint64_t start, std::uint64_t length) const {
        for (const Step& step : steps_) {
            const bool isArea = step.trace == "AddArea -> " || step.trace == "SetBufferRange -> ";
            if (isArea && step.values.size() == 2 && step.values[0] == start &&
                step.values[1] == length)
                return step.text;
        }
        return textOf({"AddArea -> ", "SetBufferRange -> "});
    }

private:
    struct Step {
        std::string_view trace;
        std::string_view text;
        std::vector<std::uint32_t> values;  ///< those read since the step before
    };
    std::vector<Step> steps_;
    std::vector<std::uint32_t> values_;
};

std::string areaText(std::uint64_t start, std::uint64_t length) {
    std::string text(1, '{');
    text += Inspect::addressText(start);
    text += ", ";
    text += Inspect::hexText(length);
    text += '}';
    return text;
}

const std::vector<std::string_view> inputFile{"SetFileAsSource -> ", "SetRawFileAsSource -> ",
                                              "SetElfFileAsSource -> ", "SetUf2FileAsSource -> ",
                                              "SetTiTxtFileAsSource -> "};
const std::vector<std::string_view> outputFile{"SetFileName -> "};
const std::vector<std::string_view> anyArea{"AddArea -> ", "SetBufferRange -> ",
                                            "SetStartAddress -> "};

/// How a program ended that did not end well.
std::string outcome(int status) {
    constexpr int notRunnable = 126;
    constexpr int notFound = 127;
    if (status < 0) return " could not be started";
    if (status == notFound) return " was not found";
    if (status == notRunnable) return " cannot be run";
    return " ended with code " + std::to_string(status);
}

std::string wordsFor(CrcParameter parameter) {
    constexpr std::array names{"", "polynomial", "initial value", "final xor"};
    if (parameter == CrcParameter::Width) return "the width is not 1 to 32 bits";
    return std::string("the ") + names.at(static_cast<std::size_t>(parameter)) +
           " has more bits than the width";
}

/// The system's words for a path that leads nowhere.
std::string noSuchFile() {
    return std::make_error_code(std::errc::no_such_file_or_directory).message();
}

/// What may be wrong with the name of a file that cannot be opened.
std::string adviceOn(std::string_view file) {
    if (!file.empty() && file.find_first_of("./\\") == std::string_view::npos)
        return "was the variable " + std::string(file) + " given?";
    if (file.ends_with(';')) return "a statement has no semicolon at its end";
    const bool isForeign =
        file.find('\\') != std::string_view::npos && Platform::pathSeparator != '\\';
    return isForeign ? "write / between folders" : "";
}

template <class... Functions>
struct Overloaded : Functions... {
    using Functions::operator()...;
};
template <class... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

}  // namespace

void RunListener::report(Kind kind, std::string text, const std::vector<std::string_view>& traces,
                         std::string hint, std::uint64_t count) {
    if (script_ == nullptr) {
        sink_->take({kind, std::move(text), std::nullopt, std::move(hint), {}, count});
        return;
    }
    const std::string_view statement = script_->prepared().substr(first_, last_ - first_);
    const Arguments arguments(statement);
    std::string_view part = trimmed(arguments.textOf(traces));
    if (part.empty()) part = statement.substr(0, 1);
    sink_->take({kind, std::move(text), script_->placeOf(part), std::move(hint),
                 script_->variableNotes(part), count});
}

void RunListener::reportOutside(std::uint64_t start, std::uint64_t length,
                                const std::string& images) {
    const std::string_view statement = script_->prepared().substr(first_, last_ - first_);
    const Arguments arguments(statement);
    const std::string_view part = trimmed(arguments.area(start, length));
    sink_->take({Kind::Outside,
                 "the area " + areaText(start, length) + " does not lie in " + images,
                 script_->placeOf(part),
                 "",
                 {}});
}

void RunListener::reportName(Kind kind, std::string_view name, std::string text, std::string hint,
                             std::vector<Note> notes) {
    const std::string_view statement = script_->prepared().substr(first_, last_ - first_);
    const std::string_view part = trimmed(Arguments(statement).image(name));
    Diagnostic diagnostic{kind, std::move(text), script_->placeOf(part), std::move(hint),
                          script_->variableNotes(part)};
    diagnostic.notes.insert(diagnostic.notes.end(), notes.begin(), notes.end());
    sink_->take(diagnostic);
}

void RunListener::reportOpen(std::string_view file) {
    const std::string reason = reason_(file);
    if (reason.empty())
        report(Kind::OutOfMemory, "there is not enough memory for " + std::string(file), inputFile);
    else
        report(Kind::CannotOpen, "cannot open " + std::string(file) + ": " + reason, inputFile,
               adviceOn(file));
}

void RunListener::reportField(const FieldFact& fact) {
    constexpr std::size_t longestShown = 160;
    FieldWords words = wordsFor(fact);
    if (words.line == 0) {
        report(words.kind, std::move(words.text), inputFile, std::move(words.hint), words.count);
        return;
    }
    Place place{std::string(words.file),
                static_cast<std::size_t>(words.line),
                0,
                std::string(words.excerpt.substr(0, longestShown)),
                0,
                0};
    if (words.column != 0 && words.column <= place.excerpt.size()) {
        place.column = words.column;
        place.caret = words.column - 1;
        place.caretLength = 1;
    }
    if (script_ == nullptr) {
        sink_->take({words.kind, std::move(words.text), place, std::move(words.hint), {}});
        return;
    }
    const std::string_view statement = script_->prepared().substr(first_, last_ - first_);
    const Arguments arguments(statement);
    Diagnostic diagnostic{words.kind, std::move(words.text), place, std::move(words.hint), {}};
    diagnostic.notes.push_back(
        {"while this file is read", script_->placeOf(trimmed(arguments.textOf(inputFile)))});
    sink_->take(diagnostic);
}

void RunListener::reportOverlap(const OverlapRefused& fact) {
    const std::string range = Inspect::addressesText({fact.start, fact.end - fact.start});
    if (fact.isDifferent)
        report(Kind::Conflict,
               std::string(fact.source) + " has " + Util::hexByte(fact.later) + " at " +
                   Inspect::addressText(fact.address) + ", written before as " +
                   Util::hexByte(fact.earlier) + ", within " + range,
               {"SetOnOverlap_Same -> ", "SetOnOverlap_Error -> "});
    else
        report(Kind::Conflict,
               std::string(fact.source) + " writes " + range + " a second time, with equal bytes",
               {"SetOnOverlap_Error -> "}, "-onOverlap=Same lets equal bytes pass");
}

void RunListener::hear(const Fact& fact) {
    const auto print = [&](const auto& printed) { printed_->hear(printed); };
    std::visit(
        Overloaded{
            [&](const ImageNotAddressable& f) {
                report(Kind::Outside,
                       "an image of " + Inspect::hexText(f.length) + " bytes at " +
                           Inspect::addressText(f.start) + " passes the end of the address space",
                       anyArea);
            },
            [&](const ImageTooLong& f) {
                report(Kind::Outside,
                       "an image has less than " + Inspect::hexText(f.limit) + " bytes, not " +
                           Inspect::hexText(f.length),
                       anyArea, "an area is {start, length}");
            },
            [&](const MoveTooFar& f) {
                report(Kind::Outside,
                       "the image does not fit at " + Inspect::addressText(f.start) +
                           ": its highest start is " + Inspect::addressText(f.highestStart),
                       anyArea);
            },
            [&](const FillPatternEmpty&) {
                report(Kind::NoEffect, "there are no bytes, so nothing is done",
                       {"SetHexList -> ", "SetFillPattern -> ", "SetFillValues -> ",
                        "SetFillString -> ", "SetFillHash -> ", "AddArea -> "});
            },
            [&](const FillStartOutside& f) {
                report(Kind::Outside,
                       "an area that begins at " + Inspect::addressText(f.start) +
                           " does not lie in the image, which has " +
                           Inspect::addressesText({f.imageStart, f.imageEnd - f.imageStart}),
                       anyArea);
            },
            [&](const FillTooLong& f) {
                report(Kind::Outside,
                       Inspect::hexText(f.length) + " bytes from " + Inspect::addressText(f.start) +
                           " on do not fit into the image, which ends before " +
                           Inspect::addressText(f.imageEnd),
                       anyArea);
            },
            [&](const ExtractStartOutside& f) {
                report(Kind::Outside,
                       "an area that begins at " + Inspect::addressText(f.start) +
                           " does not lie in the image, which has " +
                           Inspect::addressesText({f.imageStart, f.imageEnd - f.imageStart}),
                       anyArea);
            },
            [&](const ExtractTooLong& f) {
                report(Kind::Outside,
                       Inspect::hexText(f.length) + " bytes from " + Inspect::addressText(f.start) +
                           " on leave the image, which ends before " +
                           Inspect::addressText(f.imageEnd),
                       anyArea);
            },
            // What the classic readers report.
            [&](const ReadRangeOutside&) {}, [&](const TextFileEmpty&) {},
            [&](const LastLineMismatched&) {}, [&](const RecordContradictory&) {},
            [&](const LineNotARecord&) {}, [&](const RecordCountTooLow&) {},
            [&](const DataSpanTooLong&) {}, [&](const FieldFact& f) { reportField(f); },
            [&](const RawFileTooLong& f) {
                report(Kind::Outside,
                       "the file has more than " + Inspect::hexText(f.mostBytes) + " bytes",
                       inputFile);
            },
            [&](const FileMalformed& f) {
                const bool isCut = f.fault == FormatFault::EndMissing;
                const bool isEmpty = f.fault == FormatFault::NothingToLoad;
                report(isCut     ? Kind::NoEnd
                       : isEmpty ? Kind::EmptyImage
                                 : Kind::WrongFormat,
                       std::string(f.file) + " is no " + Classic::nameOfFormat(f.format) +
                           " file that can be read: " + Classic::wordsFor(f),
                       inputFile);
            },
            [&](const FileReadIncomplete& f) {
                report(Kind::ShortRead, std::string(f.file) + " could not be read completely",
                       inputFile);
            },
            [&](const RecordLengthCorrected& f) {
                const bool isMinimum = f.bound == Bound::Minimum;
                report(Kind::LengthCorrected,
                       "a record has at " + std::string(isMinimum ? "least " : "most ") +
                           std::to_string(f.allowed) + " data byte" + (f.allowed == 1 ? "" : "s") +
                           ", which is used instead of " + std::to_string(f.length),
                       {"SetExportFormatOptionIntelHexExtended -> ",
                        "SetExportFormatOptionIntelHexSegment -> ",
                        "SetExportFormatOptionMotorolaS -> "});
            },
            [&](const AddressNotExpressible& f) {
                report(Kind::Outside,
                       "Intel HEX cannot express the address " + Inspect::addressText(f.address) +
                           " in this mode",
                       outputFile);
            },
            [&](const RecordTypeUnknown&) {
                report(Kind::Outside, "Intel HEX has no such record", outputFile);
            },
            [&](const ImageBeyondSRecords& f) {
                report(Kind::Outside,
                       "S-records cannot express addresses above " +
                           Inspect::addressText(f.highestAddress),
                       outputFile);
            },
            [&](const TooManyBytes& f) {
                report(Kind::Outside,
                       "the images have more than " + Inspect::hexText(f.mostBytes) +
                           " bytes together",
                       outputFile);
            },
            [&](const GapsNotExpressible& f) {
                report(
                    Kind::Outside,
                    std::string(f.format) + " has no addresses, so it cannot skip unwritten ones",
                    {"SetSkipUnwritten -> "},
                    "choose a format with addresses, or leave the option out");
            },
            [&](const AddressBeyondFormat& f) {
                report(Kind::Outside,
                       std::string(f.format) + " has no addresses above " +
                           Inspect::addressText(f.highest),
                       outputFile);
            },
            [&](const FormatNumberWrong& f) {
                report(
                    Kind::Outside,
                    std::string(f.format) + " does not take the number " + std::to_string(f.number),
                    {"SetExportFormatOptionVmem -> "}, "a word has 1, 2, 4 or 8 bytes");
            },
            [&](const FileWriteIncomplete& f) {
                const std::string reason = reason_(f.file);
                report(Kind::ShortWrite,
                       std::string(f.file) + " could not be written completely" +
                           (reason.empty() ? "" : ": " + reason),
                       outputFile);
            },
            [&](const NameNotFound& f) {
                // A name that no statement makes was reported before the run.
                if (!isMade_(f.name)) return;
                report(
                    Kind::UnknownName,
                    "there is no " + std::string(f.name) + ": the statement that makes it failed",
                    {"SetName -> ", "AddFromBuffer -> ", "AddBufferAsSource -> ",
                     "AddBufferToExportList -> ", "SetFillCrc -> ", "SetFillHash -> ",
                     "AddResolveSymbolName -> "});
            },
            [&](const OverlapRefused& f) { reportOverlap(f); },
            [&](const StatementExhausted&) {
                report(Kind::OutOfMemory, "there is not enough memory for this statement", {});
            },
            [&](const CrcParameterRefused& f) {
                report(Kind::CrcParameter, wordsFor(f.parameter), {"SetCrc_Custom -> "});
            },
            [&](const WordIncomplete& f) {
                report(Kind::WordSize,
                       "the data has " + std::to_string(f.length) +
                           " bytes, which is no multiple of " + std::to_string(f.wordSize),
                       {"SetWordSize -> "});
            },
            [&](const FileNotOpened& f) { reportOpen(f.file); },
            [&](const FileNotWritten& f) {
                const std::string reason = reason_(f.file);
                report(
                    Kind::CannotWrite,
                    "cannot write " + std::string(f.file) + (reason.empty() ? "" : ": " + reason),
                    outputFile, reason == noSuchFile() ? "its folder does not exist" : "");
            },
            [&](const FileSpanTooLong& f) {
                report(Kind::Outside,
                       "the data of the file spans " + Inspect::hexText(f.length) +
                           " bytes, more than 0xFFFFFFF",
                       inputFile, "name a part of it with -useBufferRange={start, length}");
            },
            [&](const BufferPrinted& f) { print(f); }, [&](const ContentPrinted& f) { print(f); },
            [&](const CrcPrinted& f) { print(f); }, [&](const HashPrinted& f) { print(f); },
            [&](const TextPrinted& f) { print(f); }, [&](const ProgramCalled&) {},
            [&](const ProgramEnded& f) {
                if (f.status == 0) return;
                const std::string reason = reason_(f.location);
                report(Kind::CallFailed,
                       std::string(f.location) + outcome(f.status) +
                           (f.status >= 0 || reason.empty() ? "" : ": " + reason),
                       {"SetAppLocation -> "});
            },
            // The front end reads and parses the script itself.
            [&](const ScriptNotOpened&) {}, [&](const VariableRejected&) {},
            [&](const ScriptNotPrepared&) {}, [&](const SyntaxError&) {}, [&](const RunEnded&) {}},
        fact);
}

}  // namespace Strict
