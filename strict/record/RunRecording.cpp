#include "strict/record/RunRecording.hpp"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "inspect/LineRuns.hpp"
#include "io/File.hpp"
#include "parser/commands/CmdFillBuffer.hpp"
#include "parser/commands/CmdNewBuffer.hpp"
#include "parser/commands/CmdNewValue.hpp"
#include "parser/commands/CmdWriteFile.hpp"
#include "platform/Paths.hpp"
#include "util/Hex.hpp"

namespace Strict {

namespace {

using namespace Parser::WrapperLib;
using Inspect::MapKind;
using Inspect::OriginRange;

class Recorder {
public:
    Recorder(const Ran& ran, bool withLines) : ran_(&ran), withLines_(withLines) {}

    Inspect::RunRecord record() {
        record_.scriptPath = Platform::portablePath(ran_->script->file());
        record_.scriptText = ran_->script->written();
        const bool isFile = !ran_->scriptPath.empty();
        record_.scriptSha256 = isFile ? digestOfFile(ran_->scriptPath).sha256
                                      : Inspect::sha256Of(ran_->script->written());
        addInputs();
        for (std::size_t i = 0; i < ran_->statements->size(); ++i) addStatement(i);
        addVariables();
        return std::move(record_);
    }

private:
    std::size_t lineOf(std::size_t statement) const {
        const ScriptCheck::Range& range = (*ran_->ranges)[statement];
        return ran_->script->placeOf(range.first, range.last).line;
    }

    /// A value that names a file of the run is a path.
    void addVariables() {
        std::set<std::string> paths(ran_->files->inputs().begin(), ran_->files->inputs().end());
        paths.insert(ran_->files->outputs().begin(), ran_->files->outputs().end());
        for (const auto& [name, value] : *ran_->variables)
            record_.variables[name] = paths.contains(value) ? Platform::portablePath(value) : value;
    }

    void addInputs() {
        for (const std::string& path : ran_->files->inputs()) {
            const FileDigest digest = ran_->files->inputDigest(path);
            Inspect::FileRecord file;
            file.path = Platform::portablePath(path);
            file.size = digest.size;
            file.sha256 = digest.sha256;
            for (const Provenance::Input& input : ran_->provenance->inputs()) {
                if (input.file != path) continue;
                file.line = file.line == 0 ? input.line : file.line;
                file.areas = Inspect::joined(input.areas, 0);
                file.format = Inspect::formatText(input.format);
            }
            record_.inputs.push_back(std::move(file));
        }
    }

    void addStatement(std::size_t number) {
        const CmdApi* const statement = (*ran_->statements)[number].get();
        if (const auto* const image = dynamic_cast<const CmdNewBuffer*>(statement))
            addImage(image->bufferName());
        else if (const auto* const value = dynamic_cast<const CmdNewValue*>(statement))
            addValue(*value, lineOf(number));
        else if (const auto* const fill = dynamic_cast<const CmdFillBuffer*>(statement))
            addPlaces(*fill, lineOf(number));
        else if (const auto* const file = dynamic_cast<const CmdWriteFile*>(statement))
            addOutput(*file, lineOf(number));
    }

    void addImage(const std::string& name) {
        const auto image = ran_->context->buffers.find(name);
        const auto origins = ran_->provenance->images().find(name);
        if (image == ran_->context->buffers.end() || origins == ran_->provenance->images().end())
            return;
        Inspect::ImageRecord entry{name, &image->second, {}};
        const OriginMap& written = origins->second.written;
        for (const auto& [start, range] : written.ranges())
            entry.ranges.push_back(writtenRange(range));
        for (const auto& [start, range] : origins->second.fillers.ranges())
            for (const Area& area : uncovered(range.area, written, {}))
                entry.ranges.push_back(
                    {area, MapKind::Filler, lineOfSource(range.source), "", 0, 0, {}});
        std::ranges::sort(entry.ranges, {}, [](const OriginRange& r) { return r.area.start; });
        record_.images.push_back(std::move(entry));
    }

    std::size_t lineOfSource(std::size_t number) const {
        const Provenance& provenance = *ran_->provenance;
        return provenance.originOf(provenance.sources()[number]).statement.line;
    }

    OriginRange writtenRange(const OriginMap::Range& range) {
        const Provenance::Source& source = ran_->provenance->sources()[range.source];
        const Provenance::Origin& origin = ran_->provenance->originOf(source);
        const Provenance::Lines lines = ran_->provenance->linesOf(range);
        OriginRange entry{range.area,
                          origin.file.empty() ? MapKind::Value : MapKind::Data,
                          origin.statement.line,
                          Platform::portablePath(origin.file),
                          lines.first,
                          lines.last,
                          {}};
        if (withLines_ && source.firstLine != 0) addLines(entry, source, range.moved);
        return entry;
    }

    /// Adds the lines that gave the addresses, which were moved by `moved`.
    void addLines(OriginRange& entry, const Provenance::Source& source, std::uint64_t moved) {
        const auto& runs = ran_->provenance->lineRunsOf(source);
        // Runs are in the order of the file.
        auto run =
            std::ranges::lower_bound(runs, source.firstLine, {}, &Inspect::LineRun::firstLine);
        for (; run != runs.end() && run->firstLine <= source.lastLine; ++run)
            addRun(entry, *run, moved);
    }

    /// Adds the lines of a run as far as the range has their addresses.
    static void addRun(OriginRange& entry, const Inspect::LineRun& run, std::uint64_t moved) {
        Area area{run.area.start + moved, run.area.length};
        const std::uint64_t first = std::max(area.start, entry.area.start);
        const std::uint64_t end = std::min(area.end(), entry.area.end());
        if (first >= end) return;
        // A run begins with a line as a whole.
        const std::uint64_t skipped = (first - area.start) / run.bytesPerLine;
        area = {area.start + skipped * run.bytesPerLine,
                end - area.start - skipped * run.bytesPerLine};
        entry.lines.push_back({area, run.firstLine + skipped, run.bytesPerLine});
    }

    void addValue(const CmdNewValue& statement, std::size_t line) {
        const bool isCrc = statement.getCmdType() == static_cast<std::uint32_t>(CmdType::NewCrc);
        const auto& values = isCrc ? ran_->context->crcs : ran_->context->hashes;
        const auto value = values.find(statement.name());
        if (value == values.end()) return;
        ByteList bytes = value->second;
        if (isCrc) std::ranges::reverse(bytes);
        Inspect::ValueRecord entry{statement.name(), isCrc ? "crc" : "hash", "", line, {}};
        Util::appendHex(entry.bytes, bytes);
        record_.values.push_back(std::move(entry));
    }

    void addPlaces(const CmdFillBuffer& statement, std::size_t line) {
        const auto value =
            std::ranges::find(record_.values, statement.valueName(), &Inspect::ValueRecord::name);
        const auto image = ran_->context->buffers.find(statement.bufferName());
        if (value == record_.values.end() || image == ran_->context->buffers.end()) return;
        AreaList areas = statement.areas();
        if (areas.empty()) areas.push_back(image->second.getArea());
        for (const Area& area : areas)
            value->places.push_back({statement.bufferName(), area, line});
    }

    void addOutput(const CmdWriteFile& statement, std::size_t line) {
        const std::string path = Platform::portablePath(statement.fileName());
        // A later statement replaces what an earlier one wrote.
        std::erase_if(record_.outputs, [&](const auto& other) { return other.path == path; });
        Inspect::FileRecord file;
        file.path = path;
        file.format = statement.formatKeyword();
        file.images = statement.bufferNames();
        file.line = line;
        if (!digests_.contains(statement.fileName()))
            digests_[statement.fileName()] = ran_->files->outputDigest(statement.fileName());
        file.size = digests_[statement.fileName()].size;
        file.sha256 = digests_[statement.fileName()].sha256;
        record_.outputs.push_back(std::move(file));
    }

    const Ran* ran_;
    bool withLines_;
    Inspect::RunRecord record_;
    std::map<std::string, FileDigest> digests_;  ///< of outputs
};

}  // namespace

Inspect::RunRecord recordOf(const Ran& ran, bool withLines) {
    return Recorder(ran, withLines).record();
}

}  // namespace Strict
