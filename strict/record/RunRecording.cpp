#include "strict/record/RunRecording.hpp"

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "inspect/LineRuns.hpp"
#include "io/File.hpp"
#include "parser/commands/CmdNewSignature.hpp"
#include "parser/commands/Conventions.hpp"
#include "platform/Paths.hpp"
#include "strict/record/InputFlow.hpp"
#include "strict/script/OutputFormat.hpp"
#include "util/Hex.hpp"

namespace Strict {

namespace {

using namespace Parser::WrapperLib;
using Inspect::MapKind;
using Inspect::OriginRange;
using Parser::Part;
using Parser::Role;
using Parser::Statement;
using Parser::StatementList;

/// Gives the inputs of a run as its statements have read them.
class InputsAsRead final : public Io::Host {
public:
    explicit InputsAsRead(RunFiles& files) : files_(&files) {}

    std::optional<Platform::InputFile> openInput(const std::string& path) override {
        return files_->openAsRead(path);
    }

private:
    RunFiles* files_;
};

/// The kind of the value whose name has a role, as the record has it.
const char* kindOf(Role role) {
    if (role == Role::MakesCrc || role == Role::UsesCrc) return "crc";
    return role == Role::MakesHash || role == Role::UsesHash ? "hash" : "signature";
}

class Recorder {
public:
    Recorder(const FinishedRun& run, const RecordDetails& details) : run_(&run), details_(details) {
        if (details.hasSources) flow_.emplace(*run.program, *run.files);
    }

    Inspect::RunRecord record() {
        record_.scriptPath = Platform::portablePath(run_->program->text().file());
        record_.scriptText = run_->program->text().written();
        record_.scriptSha256 = run_->scriptSha256;
        addIncluded();
        InputsAsRead inputs(*run_->files);
        const Io::HostScope hosting(inputs);
        addInputs();
        addImages();
        const StatementList& statements = run_->program->statements();
        for (std::size_t i = 0; i < statements.size(); ++i)
            addStatement(statements[i], *run_->program->commands()[i]);
        if (flow_) addSourcesOfAll();
        addVariables();
        if (details_.hasImageDigests) run_->files->threads().wait();
        return std::move(record_);
    }

    /// The threads may be at the images still.
    ~Recorder() {
        if (details_.hasImageDigests) run_->files->threads().settle();
    }
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

private:
    Place placeOf(const Statement& statement) const {
        return run_->program->text().placeOf(statement.text);
    }

    /// The included file that has a place; empty for the script itself.
    std::string scriptOf(const Place& place) const {
        return place.includedFrom.empty() ? "" : pathOf(place.file);
    }

    std::string pathOf(const std::string& path) const {
        return recordedPath(path, run_->recipeFolders);
    }

    void addIncluded() {
        const auto& files = run_->program->text().sources().files();
        for (std::size_t i = 1; i < files.size(); ++i) {
            const std::string path = pathOf(files[i].name());
            included_.insert(path);
            record_.included.push_back({path, std::string(files[i].text()), files[i].name()});
        }
    }

    /// A value that names a file of the run is a path.
    void addVariables() {
        for (const auto& [name, value] : *run_->variables)
            record_.variables[name] =
                run_->files->isUsed(value) ? Platform::portablePath(value) : value;
    }

    /// What each input gave the run, by the names of the inputs.
    std::map<std::string, Inspect::FileRecord> usesOfInputs() const {
        std::map<std::string, Inspect::FileRecord> uses;
        for (const Provenance::Input& input : run_->provenance->inputs()) {
            Inspect::FileRecord& file = uses[run_->files->inputName(input.file)];
            if (file.line == 0) {
                file.line = input.statement.line;
                file.script = scriptOf(input.statement);
            }
            file.areas = run_->provenance->areasOf(input);
            file.format = Inspect::formatText(input.format);
        }
        return uses;
    }

    void addInputs() {
        auto uses = usesOfInputs();
        for (const std::string& path : run_->files->inputs()) {
            firstOfInput_.push_back(record_.inputs.size());
            Inspect::FileRecord file = std::move(uses[path]);
            file.path = pathOf(path);
            file.isIncluded = file.line == 0 && included_.contains(file.path);
            for (const FileDigest& digest : run_->files->inputDigests(path)) {
                file.size = digest.size;
                file.sha256 = digest.sha256;
                record_.inputs.push_back(file);
            }
        }
        firstOfInput_.push_back(record_.inputs.size());
    }

    /// Adds what the list of the inputs has of the file at a place among those of the run.
    void addSource(std::vector<std::size_t>& sources, std::size_t input) const {
        for (std::size_t i = firstOfInput_[input]; i < firstOfInput_[input + 1]; ++i)
            sources.push_back(i);
    }

    /// Every output depends on the files that the script includes, and on inputs that no statement
    /// names: their symbols are variables of the command line.
    void addSourcesOfAll() {
        std::vector<std::size_t> common;
        for (std::size_t input = 0; input + 1 < firstOfInput_.size(); ++input)
            if (!flow_->isNamed(input)) addSource(common, input);
        for (Inspect::FileRecord& output : record_.outputs) {
            output.sources.insert(output.sources.end(), common.begin(), common.end());
            std::ranges::sort(output.sources);
        }
    }

    void addStatement(const Statement& statement, const CmdApi& command) {
        if (flow_) flow_->follow(statement);
        if (statement.roles.hasAny(Parser::makesValue))
            addValue(statement, static_cast<const CmdNewValue&>(command));
        if (statement.has(Role::ChangesImage)) addPlaces(statement);
        if (statement.has(Role::OutputFile)) addOutput(statement);
    }

    /// Adds the images, and lets their digests be computed beside those of the outputs.
    void addImages() {
        for (const Statement& statement : run_->program->statements())
            if (const Part* const image = statement.last(Role::MakesImage))
                addImage(std::string(image->text));
        if (!details_.hasImageDigests) return;
        for (Inspect::ImageRecord& image : record_.images)
            run_->files->threads().takeWork([&image] { image.digest = Inspect::digestOf(image); });
    }

    void addImage(const std::string& name) {
        const auto image = run_->context->buffers.find(name);
        const auto origins = run_->provenance->images().find(name);
        if (image == run_->context->buffers.end() || origins == run_->provenance->images().end())
            return;
        Inspect::ImageRecord entry{name, &image->second, {}, {}, origins->second.startAddress, {}};
        const OriginMap& written = origins->second.written;
        const OriginMap& fillers = origins->second.fillers;
        OriginNumbers numbers;
        entry.ranges.reserve(written.ranges().size() + fillers.ranges().size());
        for (const OriginMap::Range& range : written.ranges())
            entry.ranges.push_back(writtenRange(entry, numbers, range));
        const auto end = static_cast<std::ptrdiff_t>(entry.ranges.size());
        for (const OriginMap::Range& range : fillers.ranges()) {
            const AreaList areas = uncovered(range.area, written);
            if (areas.empty()) continue;
            const std::size_t origin = originIn(entry, numbers, range.source, true);
            for (const Area& area : areas) entry.ranges.push_back({area, origin});
        }
        // Both are ascending.
        std::ranges::inplace_merge(entry.ranges, entry.ranges.begin() + end, {},
                                   [](const OriginRange& r) { return r.area.start; });
        record_.images.push_back(std::move(entry));
    }

    /// The places of origins among those of an image, by their numbers in the run and whether they
    /// are of fillers.
    using OriginNumbers = std::map<std::pair<std::size_t, bool>, std::size_t>;

    /// The place of the origin of a source among those of an image, to which it is added if it is
    /// new.
    std::size_t originIn(Inspect::ImageRecord& entry, OriginNumbers& numbers, std::size_t number,
                         bool isFiller) const {
        const Provenance::Source& source = run_->provenance->source(number);
        const auto [known, isNew] =
            numbers.try_emplace({source.origin, isFiller}, entry.origins.size());
        if (!isNew) return known->second;
        const Provenance::Origin& origin = run_->provenance->originOf(source);
        const Place& statement = origin.statement;
        const MapKind kind = origin.file.empty() ? MapKind::Value : MapKind::Data;
        entry.origins.push_back({isFiller ? MapKind::Filler : kind, statement.line,
                                 isFiller ? "" : Platform::portablePath(origin.file),
                                 scriptOf(statement)});
        return known->second;
    }

    OriginRange writtenRange(Inspect::ImageRecord& entry, OriginNumbers& numbers,
                             const OriginMap::Range& range) const {
        const Provenance::Lines lines = run_->provenance->linesOf(range);
        OriginRange found{range.area, originIn(entry, numbers, range.source, false), lines.first,
                          lines.last};
        if (details_.hasLines)
            found.details = std::make_unique<Inspect::RangeDetails>(Inspect::RangeDetails{
                linesOf(range), run_->provenance->namesAt(entry.name, range.area)});
        return found;
    }

    /// The lines that gave the addresses of a range.
    std::vector<Inspect::LineRun> linesOf(const OriginMap::Range& range) const {
        const Provenance::Source& source = run_->provenance->source(range.source);
        std::vector<Inspect::LineRun> lines;
        if (source.firstLine == 0) return lines;
        const auto& runs = run_->provenance->lineRunsOf(source);
        // Runs are in the order of the file.
        auto run =
            std::ranges::lower_bound(runs, source.firstLine, {}, &Inspect::LineRun::firstLine);
        for (; run != runs.end() && run->firstLine <= source.lastLine; ++run)
            addRun(lines, *run, range);
        return lines;
    }

    /// Adds the lines of a run as far as the range has their addresses.
    static void addRun(std::vector<Inspect::LineRun>& lines, const Inspect::LineRun& run,
                       const OriginMap::Range& range) {
        Area area{run.area.start + range.moved, run.area.length};
        const std::uint64_t first = std::max(area.start, range.area.start);
        const std::uint64_t end = std::min(area.end(), range.area.end());
        if (first >= end) return;
        // A run begins with a line as a whole.
        const std::uint64_t skipped = (first - area.start) / run.bytesPerLine;
        area = {area.start + skipped * run.bytesPerLine,
                end - area.start - skipped * run.bytesPerLine};
        lines.push_back({area, run.firstLine + skipped, run.bytesPerLine});
    }

    void addValue(const Statement& statement, const CmdNewValue& command) {
        const auto* const value = command.valueIn(*run_->context);
        if (value == nullptr) return;
        Inspect::ValueRecord entry;
        entry.name = command.name();
        entry.kind = kindOf(statement.last(Parser::makesValue)->role);
        Util::appendHex(entry.bytes, *value);
        const Place place = placeOf(statement);
        entry.line = place.line;
        entry.script = scriptOf(place);
        const auto& algorithm = command.algorithm();
        entry.algorithm = {std::string(algorithm.name), std::string(algorithm.meaning),
                           algorithm.parameters, command.alignment()};
        if (!statement.has(Role::Stored)) entry.sources = sourcesOf(statement);
        if (statement.has(Role::MakesSignature))
            if (const auto& key = static_cast<const CmdNewSignature&>(command).fingerprint())
                entry.publicKey = Util::lowerHex(*key);
        entry.wordSize = command.wordSize();
        values_.try_emplace({entry.kind, entry.name}, record_.values.size());
        record_.values.push_back(std::move(entry));
    }

    /// An image keeps its range, so this is the one that a statement without areas covered.
    std::vector<Inspect::ValueRecord::Source> sourcesOf(const Statement& statement) const {
        std::vector<Inspect::ValueRecord::Source> sources;
        for (const Part& part : statement.all(Role::UsesImage)) {
            const auto image = run_->context->buffers.find(std::string(part.text));
            if (image == run_->context->buffers.end()) continue;
            AreaList areas = statement.areas();
            const Area range = image->second.getArea();
            if (areas.empty()) areas.push_back(range);
            AreaList covered;
            // An area without addresses has no part that could be clipped.
            for (const Area& area : areas)
                if (const auto held = area.length == 0 ? std::nullopt : area.clippedTo(range);
                    held && range.length != 0)
                    covered.push_back(*held);
            sources.push_back({image->first, std::move(covered)});
        }
        return sources;
    }

    void addPlaces(const Statement& statement) {
        const Part* const stored = statement.last(Parser::usesValue);
        if (stored == nullptr) return;
        const std::string kind = kindOf(stored->role);
        const std::string name(statement.textOf(Role::ChangesImage));
        const auto value = values_.find({kind, std::string(stored->text)});
        const auto image = run_->context->buffers.find(name);
        if (value == values_.end() || image == run_->context->buffers.end()) return;
        AreaList areas = statement.areas();
        if (areas.empty()) areas.push_back(image->second.getArea());
        const Place place = placeOf(statement);
        const std::string order =
            stored->role == Role::UsesCrc ? orderOf(statement, image->second) : "";
        for (const Area& area : areas)
            record_.values[value->second].places.push_back(
                {name, area, place.line, order, scriptOf(place)});
    }

    /// The order in which FILL_BUFFER writes a CRC: its own, or the image's.
    static std::string orderOf(const Statement& statement, const Buffer::MemoryBuffer& image) {
        const std::string_view own = statement.textOf(Role::ByteOrder);
        if (!own.empty()) return std::string(own);
        return image.getByteOrder() == Buffer::ByteOrder::BigEndian ? "BigEndian" : "LittleEndian";
    }

    void addOutput(const Statement& statement) {
        const std::string name = cleanedPath(std::string(statement.textOf(Role::OutputFile)));
        Inspect::FileRecord file;
        file.path = Platform::portablePath(name);
        file.format = outputFormatOf(statement).keyword;
        for (const Part& image : statement.all(Role::UsesImage))
            file.images.emplace_back(image.text);
        const Place place = placeOf(statement);
        file.line = place.line;
        file.script = scriptOf(place);
        if (const Part* const start = statement.last(Role::Start))
            file.startAddress = statement.numbersOf(*start).back().value();
        file.addressUnit = statement.digitOf(Role::AddressUnit);
        file.swappedWord = statement.digitOf(Role::SwapBytes);
        const FileDigest digest = run_->files->outputDigest(name);
        file.size = digest.size;
        file.sha256 = digest.sha256;
        file.isStream = run_->files->isStream(name);
        if (flow_)
            for (const std::size_t input : flow_->followed()) addSource(file.sources, input);
        record_.outputs.push_back(std::move(file));
    }

    const FinishedRun* run_;
    RecordDetails details_;
    std::optional<InputFlow> flow_;  ///< if somebody wants it
    /// For each input of the run, its first place in the list, and where the list ends.
    std::vector<std::size_t> firstOfInput_;
    std::set<std::string> included_;  ///< paths of files that the script includes
    /// The places of the values in their list, by their kinds and names.
    std::map<std::pair<std::string, std::string>, std::size_t> values_;
    Inspect::RunRecord record_;
};

}  // namespace

std::string recordedPath(const std::string& path, const std::vector<std::string>& recipeFolders) {
    for (const std::string& folder : recipeFolders)
        if (path.starts_with(folder))
            return "<recipes>/" + Platform::portablePath(path.substr(folder.size()));
    return Platform::portablePath(path);
}

Inspect::RunRecord recordOf(const FinishedRun& run, const RecordDetails& details) {
    return Recorder(run, details).record();
}

}  // namespace Strict
