#include "cli/Inspection.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "inspect/Diff.hpp"
#include "inspect/Info.hpp"
#include "inspect/Map.hpp"
#include "platform/Streams.hpp"
#include "strict/ImageReading.hpp"
#include "strict/ScriptInfo.hpp"
#include "strict/diagnostics/KeptDiagnostics.hpp"
#include "strict/diagnostics/RemarkList.hpp"
#include "strict/files/WholeFile.hpp"

namespace CommandLine {

namespace {

using Strict::ExitCode;
using Strict::Printer;

/// Columns where standard output is not a terminal.
constexpr std::size_t usualWidth = 80;

std::size_t widthOf(const Inspection& inspection) {
    return inspection.width != 0 ? inspection.width : Platform::terminalWidth();
}

/// Ends a command whose results are complete: what it printed must have arrived.
ExitCode ended(std::ostream& output, Printer& printer, ExitCode good) {
    output.flush();
    if (output) return good;
    printer.take({Strict::Kind::ShortWrite, "standard output could not be written completely"});
    return good == ExitCode::Good ? ExitCode::Failed : ExitCode::Unusable;
}

/// The format that was given for a file, by its number.
std::optional<Facts::InputFormat> formatOf(const Inspection& inspection, std::size_t file) {
    const auto& formats = inspection.formats;
    if (formats.empty()) return std::nullopt;
    return formats.size() == 1 ? formats.front() : formats[file];
}

/// The image of a file, by its number; nothing after a diagnostic.
std::optional<Inspect::Image> imageOf(const Inspection& inspection, std::size_t file,
                                      Printer& printer) {
    return Strict::readImage(inspection.files[file], formatOf(inspection, file), printer,
                             {.family = inspection.family});
}

/// The names for each file: of the ELF or map file that is given for it or for all, or of an ELF
/// file itself.
class NameFiles {
public:
    /// Reports files without names to `printer`.
    NameFiles(const Inspection& inspection, Printer& printer) : given_(inspection.nameFiles) {
        for (const std::string& path : given_) {
            auto names = Strict::readNames(path, printer);
            isGood_ = isGood_ && names;
            names_.push_back(names ? std::move(*names) : Inspect::Names());
        }
    }

    bool isGood() const { return isGood_; }

    /// @param number  of the file
    Inspect::Names of(std::size_t number, const std::string& path,
                      std::optional<Facts::InputFormat> format) const {
        if (!names_.empty()) return names_[std::min(number, names_.size() - 1)];
        if (format != Facts::InputFormat::Elf) return {};
        // A stripped file is sound.
        Strict::KeptDiagnostics unheard;
        return Strict::readNames(path, unheard).value_or(Inspect::Names());
    }

private:
    const std::vector<std::string>& given_;
    std::vector<Inspect::Names> names_;
    bool isGood_ = true;
};

}  // namespace

ExitCode info(const Inspection& inspection, Printer& printer, const Strict::Policy& policy,
              std::ostream& output) {
    const NameFiles names(inspection, printer);
    std::vector<Inspect::Info> files;
    bool isGood = names.isGood();
    for (std::size_t i = 0; i < inspection.files.size(); ++i) {
        const std::string& file = inspection.files[i];
        Strict::KeptDiagnostics kept;
        const auto format = formatOf(inspection, i);
        auto info = !format && file.ends_with(".tsn")
                        ? Strict::readScriptInfo(file, kept)
                        : Strict::readInfo(file, format, inspection.withSymbols, kept,
                                           {.family = inspection.family});
        Strict::RemarkList remarks(policy);
        kept.pass(remarks);
        if (info && info->isRead && info->areas.empty())
            remarks.take({Strict::Kind::EmptyImage, file + " has no data"});
        isGood = isGood && info && !remarks.hasErrors();
        if (!info) {
            kept.pass(printer);
            continue;
        }
        std::ranges::stable_sort(remarks.remarks, {}, &Inspect::Remark::line);
        remarks.finish();
        info->remarks = std::move(remarks.remarks);
        info->names = names.of(i, file, info->format);
        files.push_back(std::move(*info));
    }
    if (inspection.isJson) output << Inspect::jsonOf(files);
    if (!inspection.isJson)
        for (std::size_t i = 0; i < files.size(); ++i)
            output << (i == 0 ? "" : "\n") << Inspect::textOf(files[i], widthOf(inspection));
    return ended(output, printer, isGood ? ExitCode::Good : ExitCode::Failed);
}

ExitCode diff(const Inspection& inspection, Printer& printer, std::ostream& output) {
    std::vector<Inspect::Image> images;
    for (std::size_t i = 0; i < inspection.files.size(); ++i)
        if (auto image = imageOf(inspection, i, printer)) images.push_back(std::move(*image));
    const NameFiles files(inspection, printer);
    if (images.size() != 2 || !files.isGood() || printer.errors() != 0) return ExitCode::Unusable;
    Inspect::Diff found = Inspect::compare(images[0], images[1], inspection.ignored);
    std::array<Inspect::Names, 2> names;
    if (!found.isEqual())
        for (std::size_t i = 0; i < names.size(); ++i)
            names[i] = files.of(i, images[i].path, images[i].format);
    found.leftNames = &names.front();
    found.rightNames = &names.back();
    const std::size_t width = widthOf(inspection);
    const Inspect::DiffStyle style{inspection.context, inspection.mostLines,
                                   width == 0 ? usualWidth : width, inspection.hasColor};
    output << (inspection.isJson ? Inspect::jsonOf(found) : Inspect::textOf(found, style));
    return ended(output, printer, found.isEqual() ? ExitCode::Good : ExitCode::Failed);
}

namespace {

/// Writes the picture of a map beside the files that it shows.
void writePicture(const Inspection& inspection, const std::string& picture, Printer& printer) {
    using Strict::FileRole;
    Strict::RunFiles files(Strict::RunFiles::Mode::Disk);
    for (const auto* const inputs : {&inspection.files, &inspection.nameFiles})
        for (const std::string& file : *inputs) files.name(file, FileRole::Input);
    if (Strict::nameFile(files, inspection.svgFile, FileRole::Map, printer))
        Strict::writeWhole(files, inspection.svgFile, picture, printer);
}

}  // namespace

ExitCode map(const Inspection& inspection, Printer& printer, std::ostream& output) {
    const NameFiles names(inspection, printer);
    std::vector<Inspect::MapRow> rows;
    for (std::size_t i = 0; i < inspection.files.size(); ++i) {
        const auto image = imageOf(inspection, i, printer);
        if (!image) continue;
        rows.push_back(Inspect::rowOf(*image));
        rows.back().names = names.of(i, image->path, image->format);
    }
    const Inspect::Map drawn(std::move(rows));
    const std::size_t width = widthOf(inspection);
    if (inspection.svgFile.empty())
        output << drawn.text(width == 0 ? usualWidth : width,
                             !inspection.isAscii && Platform::showsUnicode());
    else
        writePicture(inspection, drawn.svg(), printer);
    return ended(output, printer, printer.errors() == 0 ? ExitCode::Good : ExitCode::Failed);
}

}  // namespace CommandLine
