#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <set>
#include <span>
#include <string_view>
#include <utility>

#include "inspect/CrcWords.hpp"
#include "inspect/Json.hpp"
#include "inspect/PageParts.hpp"
#include "inspect/RunRecord.hpp"
#include "inspect/Words.hpp"
#include "util/Printable.hpp"

namespace Inspect {

namespace {

using Buffer::Area;
using Bytes = std::span<const std::uint8_t>;

/// What the page shows at most, so that it stays below 2 MB.
constexpr std::size_t mostBytes = 750'000;   ///< of all images, before their encoding
constexpr std::size_t mostRanges = 12'000;   ///< of all images
constexpr std::size_t mostRows = 200;        ///< of a table
constexpr std::size_t mostScript = 200'000;  ///< characters

std::string base64(Bytes bytes) {
    constexpr std::string_view digits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve(bytes.size() * 4 / 3 + 4);
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - at);
        std::uint32_t group = 0;
        for (std::size_t i = 0; i < 3; ++i) group = group << 8U | (i < count ? bytes[at + i] : 0U);
        for (std::size_t i = 0; i < 4; ++i)
            text += i <= count ? digits[group >> (18 - 6 * i) & 63U] : '=';
    }
    return text;
}

/// The bytes of ranges for the page: [start, length, base64], where the bytes repeat if they are
/// fewer than `length`.
class Chunks {
public:
    explicit Chunks(std::size_t most) : most_(most) {}

    /// Adds the bytes; false if they are too many, and some are missing.
    bool add(std::uint64_t start, Bytes bytes) {
        std::size_t literal = 0;  ///< first byte that no chunk has
        for (std::size_t at = 0; at < bytes.size();) {
            const auto [length, period] = repetition(bytes.subspan(at));
            if (length == 0) {
                if (at - literal >= most_ - used_) return false;
                at += step;
                continue;
            }
            append(start + literal, at - literal, bytes.subspan(literal, at - literal));
            append(start + at, length, bytes.subspan(at, period));
            at += length;
            literal = at;
        }
        literal = std::min(literal, bytes.size());
        if (bytes.size() - literal > most_ - used_) return false;
        append(start + literal, bytes.size() - literal, bytes.subspan(literal));
        return true;
    }

    Json take() { return std::move(list_); }

private:
    static constexpr std::size_t step = 16;
    struct Repetition {
        std::size_t length;
        std::size_t period;
    };

    /// How far the first bytes repeat; 0 if that is not worth a chunk.
    static Repetition repetition(Bytes bytes) {
        constexpr std::size_t shortest = 128;
        for (const std::size_t period : {std::size_t{1}, std::size_t{2}, std::size_t{4}}) {
            std::size_t length = period;
            while (length < bytes.size() && bytes[length] == bytes[length - period]) ++length;
            if (length >= shortest) return {length, period};
        }
        return {0, 0};
    }

    void append(std::uint64_t start, std::size_t length, Bytes bytes) {
        if (length == 0) return;
        used_ += std::min(most_ - used_, bytes.size() + step);
        list_.push_back({start, length, base64(bytes)});
    }

    std::size_t most_;
    std::size_t used_ = 0;
    Json list_ = Json::array();
};

std::vector<std::uint8_t> effectiveBytes(const ImageRecord& record, const Area& area) {
    std::vector<std::uint8_t> bytes;
    record.image->appendBytes(bytes, area.start, area.length);
    return bytes;
}

/// The bytes of all ranges, or, if they are too many, of the ends of each.
Json chunksOf(const ImageRecord& record, std::size_t most, bool& isComplete) {
    Chunks all(most);
    isComplete = std::ranges::all_of(record.ranges, [&](const OriginRange& range) {
        return all.add(range.area.start, effectiveBytes(record, range.area));
    });
    if (isComplete) return all.take();
    constexpr std::uint64_t shown = 64;
    Chunks ends(most);
    for (const OriginRange& range : record.ranges) {
        const Area& area = range.area;
        const std::uint64_t head = std::min(area.length, shown);
        const std::uint64_t tail = std::min(area.length - head, shown);
        if (!ends.add(area.start, effectiveBytes(record, {area.start, head}))) break;
        if (!ends.add(area.end() - tail, effectiveBytes(record, {area.end() - tail, tail}))) break;
    }
    return ends.take();
}

/// A line of the script, file 0, or of a file that it includes, which are counted from 1.
struct ScriptLine {
    std::size_t file;
    std::size_t line;
    auto operator<=>(const ScriptLine&) const = default;
};

/// Pieces of HTML, appended to one text.
class Page {
public:
    explicit Page(const RunRecord& record);
    std::string text();

private:
    void addHead();
    void addOutputs();
    void addInputs();
    void addImages();
    void addImage(std::size_t index);
    void addRange(std::size_t index, std::size_t number, bool hasNames);
    void addValues();
    void addRemarks();
    void addScript();
    void addLines(std::size_t file);
    void findMade();
    void addMade(const ScriptLine& line);
    void addData();
    Json imageJson(const ImageRecord& image, std::size_t most);

    void add(std::string_view html) { text_ += html; }
    void addText(std::string_view words) { text_ += Util::printableMarkup(words); }
    /// A cell, or a column's head if `tag` says so.
    void addCell(std::string_view words, const char* attributes = "") {
        text_.append("<td").append(attributes).append(">");
        addText(words);
        add("</td>");
    }
    void addTable(const char* heads) {
        add("<div class=\"wide\" tabindex=\"0\" role=\"group\" "
            "aria-label=\"table\"><table><thead><tr>");
        add(heads);
        add("</tr></thead><tbody>\n");
    }
    void endTable() { add("</tbody></table></div>\n"); }
    /// The beginning of a link that shows the range in the map of its image.
    static std::string rangeLink(std::size_t index, const Area& area) {
        const std::string number = std::to_string(index);
        return "<a href=\"#image-" + number + "\" data-go=\"" + number + "," +
               std::to_string(area.start) + "," + std::to_string(area.length) + "\">";
    }
    /// A line of the script or of a file that it includes.
    ///
    /// @param script  the path of the included file; empty for the script itself
    ScriptLine lineAt(std::size_t line, const std::string& script) const {
        const auto file = files_.find(script);
        return {file == files_.end() ? 0 : file->second, line};
    }
    /// What identifies the line in the page.
    static std::string keyOf(const ScriptLine& line) {
        return (line.file == 0 ? "" : std::to_string(line.file) + "-") + std::to_string(line.line);
    }
    std::string nameOf(const ScriptLine& line) const {
        return (line.file == 0 ? "" : record_->included[line.file - 1].path + ", ") + "line " +
               std::to_string(line.line);
    }
    /// The line, linked if the page shows it.
    std::string lineLink(std::size_t line, const std::string& script) const {
        if (line == 0) return "";
        const ScriptLine where = lineAt(line, script);
        std::string name = Util::printableMarkup(nameOf(where));
        if (!showsScript_) return name;
        return "<a href=\"#line-" + keyOf(where) + "\">" + name + "</a>";
    }

    const RunRecord* record_;
    std::string text_;
    std::vector<std::vector<std::string_view>> lines_;  ///< of each file, the script first
    std::map<std::string, std::size_t> files_;          ///< the numbers of included files
    bool showsScript_ = true;
    /// The ranges that a line of the script made, by the place of their image and their own.
    std::map<ScriptLine, std::vector<std::pair<std::size_t, std::size_t>>> made_;
    bool hasAllBytes_ = true;
    bool hasAllRanges_ = true;
};

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t feed = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, feed);
        if (line.ends_with('\r')) line.remove_suffix(1);
        lines.push_back(line);
        text.remove_prefix(std::min(feed + 1, text.size()));
    }
    return lines;
}

Page::Page(const RunRecord& record) : record_(&record) {
    std::size_t size = record.scriptText.size();
    lines_.push_back(linesOf(record.scriptText));
    for (const IncludedScript& file : record.included) {
        size += file.text.size();
        files_.emplace(file.path, lines_.size());
        lines_.push_back(linesOf(file.text));
    }
    showsScript_ = size <= mostScript;
}

std::string Page::text() {
    addHead();
    addRemarks();
    addOutputs();
    addImages();
    addValues();
    addInputs();
    addScript();
    addData();
    return std::move(text_);
}

void Page::addHead() {
    add("<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width,initial-scale=1\">\n<title>");
    addText(record_->scriptPath);
    add(" - images</title>\n<link rel=\"icon\" href=\"data:,\">\n<style>\n");
    add(reportStyle());
    add("</style></head>\n<body>\n<header><h1>");
    addText(record_->scriptPath);
    add("</h1>\n<p>");
    addText(countText(record_->inputs.size(), "input") + ", " +
            countText(record_->images.size(), "image") + ", " +
            countText(record_->values.size(), "checksum") + ", " +
            countText(record_->outputs.size(), "output") + ". The script's SHA-256 is ");
    add("<code class=\"dim\">" + record_->scriptSha256 + "</code>.</p>\n");
    add("<nav aria-label=\"Sections\"><a href=\"#outputs\">Outputs</a><a href=\"#images\">Images"
        "</a><a href=\"#values\">Checksums</a><a href=\"#inputs\">Inputs</a><a href=\"#script\">"
        "Script</a></nav></header>\n<main>\n");
}

void Page::addRemarks() {
    add("<h2 id=\"diagnostics\">Diagnostics</h2>\n");
    if (record_->remarks.empty()) add("<p>None.</p>\n");
    if (!record_->remarks.empty()) add("<ul>\n");
    for (const Remark& remark : record_->remarks) {
        add("<li><strong class=\"");
        add(remark.severity == "error" ? "bad" : "warn");
        add("\">");
        addText(remark.severity);
        add("</strong> ");
        const bool isIncluded = files_.contains(remark.file);
        const bool isInScript =
            remark.line != 0 && (isIncluded || remark.file == record_->scriptPath);
        if (!remark.file.empty() && !isInScript)
            addText(remark.file + (remark.line == 0 ? "" : ":" + std::to_string(remark.line)) +
                    ": ");
        if (isInScript)
            add(lineLink(static_cast<std::size_t>(remark.line), isIncluded ? remark.file : "") +
                ": ");
        addText(remark.text + (remark.name.empty() ? "" : " [" + remark.name + "]"));
        if (!remark.hint.empty()) addText(" - " + remark.hint);
        add("</li>\n");
    }
    if (!record_->remarks.empty()) add("</ul>\n");
}

void Page::addOutputs() {
    add("<h2 id=\"outputs\">Outputs</h2>\n");
    if (record_->outputs.empty()) {
        add("<p>None.</p>\n");
        return;
    }
    addTable(
        "<th>File</th><th>Format</th><th class=\"n\">Bytes</th><th>Images</th><th>Written in"
        "</th><th>SHA-256</th>");
    for (const FileRecord& file : record_->outputs) {
        std::string images;
        for (const std::string& name : file.images) images += (images.empty() ? "" : ", ") + name;
        add("<tr>");
        addCell(file.path);
        addCell(file.format + (file.startAddress ? ", starts at " + addressText(*file.startAddress)
                                                 : std::string()));
        addCell(grouped(file.size), " class=\"n\"");
        addCell(images);
        add("<td>" + lineLink(file.line, file.script) + "</td>");
        addCell(file.sha256, " class=\"m digest\"");
        add("</tr>\n");
    }
    endTable();
}

void Page::addInputs() {
    add("<h2 id=\"inputs\">Inputs</h2>\n");
    if (!record_->variables.empty()) {
        addTable("<th>Variable</th><th>Value</th>");
        for (const auto& [name, value] : record_->variables) {
            add("<tr>");
            addCell(name);
            addCell(value);
            add("</tr>\n");
        }
        endTable();
    }
    if (record_->inputs.empty()) {
        add("<p>The script reads no file.</p>\n");
        return;
    }
    addTable(
        "<th>File</th><th>Format</th><th class=\"n\">Bytes</th><th>Data</th><th>Read in</th>"
        "<th>SHA-256</th>");
    for (const FileRecord& file : record_->inputs) {
        add("<tr>");
        addCell(file.path);
        addCell(file.isIncluded ? "included script" : file.format);
        addCell(grouped(file.size), " class=\"n\"");
        std::string data = sizeText(byteCount(file.areas));
        if (!file.areas.empty())
            data += ", " + rangeText({file.areas.front().start,
                                      file.areas.back().end() - file.areas.front().start});
        addCell(data);
        add("<td>" + lineLink(file.line, file.script) + "</td>");
        addCell(file.sha256, " class=\"m digest\"");
        add("</tr>\n");
    }
    endTable();
}

void Page::addImages() {
    add("<h2 id=\"images\">Images</h2>\n"
        "<p class=\"key\"><i class=\"k2\"></i>data <i class=\"k1\"></i>filler <i class=\"k3\"></i>"
        "written by the script <i class=\"k0\"></i>nothing written</p>\n");
    for (std::size_t index = 0; index < record_->images.size(); ++index) addImage(index);
}

void Page::addImage(std::size_t index) {
    const ImageRecord& image = record_->images[index];
    const Area area = image.image->getArea();
    const std::string number = std::to_string(index);
    add("<section aria-labelledby=\"image-" + number + "\"><h3 id=\"image-" + number + "\">");
    addText(
        image.name + ", " +
        (area.length == 0 ? std::string("empty") : rangeText(area) + ", " + sizeText(area.length)) +
        (image.startAddress ? ", starts at " + addressText(*image.startAddress) : std::string()));
    add("</h3>\n");
    if (area.length == 0) {
        add("</section>\n");
        return;
    }
    add("<svg class=\"map\" id=\"map-" + number +
        "\" viewBox=\"0 0 1000 100\" preserveAspectRatio=\"none\" tabindex=\"0\" role=\"slider\" "
        "aria-label=\"");
    addText("Address in " + image.name);
    add("\" aria-valuemin=\"" + std::to_string(area.start) + "\" aria-valuemax=\"" +
        std::to_string(area.end() - 1) + "\" aria-valuenow=\"" + std::to_string(area.start) +
        "\"></svg>\n<div class=\"bar\">");
    for (const auto& [act, sign, label] :
         {std::array{"in", "+", "Zoom in"}, std::array{"out", "&minus;", "Zoom out"},
          std::array{"all", "All", "Show all"}})
        add(std::string("<button type=\"button\" data-map=\"") + number + "\" data-act=\"" + act +
            "\" aria-label=\"" + label + "\">" + sign + "</button>");
    add("<label>Address <input id=\"go-" + number + "\" value=\"" + addressText(area.start) +
        "\" spellcheck=\"false\"></label><span class=\"dim\" id=\"view-" + number +
        "\"></span></div>\n<output id=\"at-" + number + "\"></output>\n");
    const std::span shown = std::span(image.ranges).first(std::min(image.ranges.size(), mostRows));
    const bool hasNames =
        std::ranges::any_of(shown, [](const OriginRange& range) { return !range.names().empty(); });
    addTable(hasNames ? "<th>Addresses</th><th class=\"n\">Bytes</th><th>What</th><th>Names</th>"
                        "<th>Made in</th><th>From</th>"
                      : "<th>Addresses</th><th class=\"n\">Bytes</th><th>What</th><th>Made in</th>"
                        "<th>From</th>");
    for (std::size_t i = 0; i < shown.size(); ++i) addRange(index, i, hasNames);
    endTable();
    if (image.ranges.size() > mostRows)
        addText(countText(image.ranges.size() - mostRows, "more range"));
    add("</section>\n");
}

void Page::addRange(std::size_t index, std::size_t number, bool hasNames) {
    constexpr std::array words{"", "filler", "data", "value"};
    const ImageRecord& image = record_->images[index];
    const OriginRange& range = image.ranges[number];
    const RangeOrigin& origin = image.originOf(range);
    add("<tr><td class=\"m\">" + rangeLink(index, range.area) + rangeText(range.area) +
        "</a></td>");
    addCell(grouped(range.area.length), " class=\"n\"");
    addCell(words[static_cast<std::size_t>(origin.kind)]);
    if (hasNames) addCell(std::string(range.names()));
    add("<td>" + lineLink(origin.line, origin.script) + "</td>");
    std::string from = origin.file;
    if (range.firstLine != 0) from += ", " + linesText(range.firstLine, range.lastLine);
    addCell(from);
    add("</tr>\n");
}

/// Which algorithm it is, with its parameters.
std::string algorithmText(const ValueRecord& value) {
    std::string text = value.algorithm.name;
    if (!value.algorithm.meaning.empty()) text += ": " + value.algorithm.meaning;
    if (value.algorithm.crc) text += "; " + crcText(*value.algorithm.crc);
    if (value.algorithm.alignment != Util::Crc::CrcAlignment::Right)
        text += std::string(", alignment ") + alignmentWord(value.algorithm.alignment);
    if (!value.publicKey.empty()) text += "; SHA-256 of the public key " + value.publicKey;
    if (value.wordSize != 1)
        text += "; the bytes of each word of " + std::to_string(value.wordSize) + " reversed";
    return text;
}

/// What it covers.
std::string sourcesText(const ValueRecord& value) {
    std::string text;
    for (const ValueRecord::Source& source : value.sources) {
        text += (text.empty() ? "" : "; ") + source.image;
        for (const Area& area : source.areas)
            text += (&area == &source.areas.front() ? " " : ", ") +
                    (area.length == 0 ? std::string("nothing") : rangeText(area));
    }
    return text;
}

void Page::addValues() {
    add("<h2 id=\"values\">Checksums and signatures</h2>\n");
    if (record_->values.empty()) {
        add("<p>None.</p>\n");
        return;
    }
    addTable(
        "<th>Name</th><th>Algorithm</th><th>Over</th><th>Made in</th><th>Put at</th>"
        "<th>Bytes</th>");
    for (const ValueRecord& value : record_->values) {
        add("<tr>");
        addCell(value.name);
        addCell(algorithmText(value));
        addCell(sourcesText(value));
        add("<td>" + lineLink(value.line, value.script) + "</td><td>");
        for (const ValueRecord::Place& place : value.places) {
            addText((&place == &value.places.front() ? "" : "; ") + place.image + " " +
                    rangeText(place.area) +
                    (place.byteOrder.empty() ? "" : ", " + place.byteOrder) + ", ");
            add(lineLink(place.line, place.script));
        }
        if (value.places.empty()) add("nowhere");
        add("</td>");
        addCell(value.bytes, " class=\"m digest\"");
        add("</tr>\n");
    }
    endTable();
}

void Page::addScript() {
    add("<h2 id=\"script\">Script</h2>\n");
    if (!showsScript_) {
        add("<p>The script is too long for this page.</p>\n");
        return;
    }
    findMade();
    addLines(0);
    for (std::size_t i = 0; i < record_->included.size(); ++i) {
        add("<h3>");
        addText(record_->included[i].path);
        add("</h3>\n");
        addLines(i + 1);
    }
}

/// The text of a file of the script.
void Page::addLines(std::size_t file) {
    add("<ol class=\"script\">\n");
    for (std::size_t i = 0; i < lines_[file].size(); ++i) {
        const std::string number = std::to_string(i + 1);
        const std::string key = keyOf({file, i + 1});
        for (const std::string_view piece :
             {std::string_view("<li id=\"line-"), std::string_view(key),
              std::string_view("\"><span class=\"no\">"), std::string_view(number),
              std::string_view("</span><span class=\"text\">")})
            add(piece);
        addText(lines_[file][i]);
        add("</span>");
        addMade({file, i + 1});
        add("</li>\n");
    }
    add("</ol>\n");
}

void Page::findMade() {
    for (std::size_t index = 0; index < record_->images.size(); ++index) {
        const ImageRecord& image = record_->images[index];
        for (std::size_t i = 0; i < image.ranges.size(); ++i) {
            const RangeOrigin& origin = image.originOf(image.ranges[i]);
            made_[lineAt(origin.line, origin.script)].emplace_back(index, i);
        }
    }
}

/// Links to the ranges that a line made, a few at most.
void Page::addMade(const ScriptLine& line) {
    constexpr std::size_t mostLinks = 4;
    const auto made = made_.find(line);
    if (made == made_.end()) return;
    const auto& ranges = made->second;
    add("<span class=\"made\">");
    for (std::size_t i = 0; i < std::min(ranges.size(), mostLinks); ++i) {
        const auto [index, number] = ranges[i];
        const ImageRecord& image = record_->images[index];
        const Area& area = image.ranges[number].area;
        add(rangeLink(index, area));
        addText(image.name + " " + rangeText(area));
        add("</a>");
    }
    if (ranges.size() > mostLinks)
        addText(" and " + countText(ranges.size() - mostLinks, "more range"));
    add("</span>");
}

/// What the page's script needs of an image.
Json Page::imageJson(const ImageRecord& image, std::size_t most) {
    Json json{{"name", Util::printable(image.name)},
              {"start", image.image->getStartAddress()},
              {"length", image.image->getDataLength()}};
    json["ranges"] = Json::array();
    json["origins"] = Json::array();
    json["lines"] = Json::array();
    const std::size_t shown = std::min(
        image.ranges.size(), mostRanges / std::max<std::size_t>(1, record_->images.size()));
    hasAllRanges_ = hasAllRanges_ && shown == image.ranges.size();
    for (std::size_t i = 0; i < shown; ++i) {
        const OriginRange& range = image.ranges[i];
        const RangeOrigin& made = image.originOf(range);
        const ScriptLine line = lineAt(made.line, made.script);
        Json origin{Util::printable(made.file), line.line, range.firstLine, range.lastLine};
        if (line.file != 0) origin[1] = keyOf(line);
        Json lines = Json::array();
        for (const LineRun& run : range.lines())
            lines.push_back({run.area.start, run.area.length, run.firstLine, run.bytesPerLine});
        const bool isNew =
            json["origins"].empty() || json["origins"].back() != origin || !lines.empty();
        if (isNew) {
            json["origins"].push_back(origin);
            json["lines"].push_back(std::move(lines));
        }
        json["ranges"].push_back({range.area.start, range.area.length,
                                  static_cast<unsigned>(made.kind), json["origins"].size() - 1});
    }
    bool isComplete = true;
    json["chunks"] = chunksOf(image, most, isComplete);
    hasAllBytes_ = hasAllBytes_ && isComplete;
    return json;
}

void Page::addData() {
    Json json{{"images", Json::array()}};
    Json statements = Json::object();
    Json places = Json::object();
    std::set<ScriptLine> used;
    for (const ImageRecord& image : record_->images) {
        const std::size_t most = mostBytes / record_->images.size();
        json["images"].push_back(imageJson(image, most));
        for (const RangeOrigin& origin : image.origins)
            used.insert(lineAt(origin.line, origin.script));
    }
    for (const ScriptLine& line : used) {
        const auto& lines = lines_[line.file];
        if (line.line == 0 || line.line > lines.size()) continue;
        addNew(statements, keyOf(line), Util::printableColumns(lines[line.line - 1]));
        if (line.file != 0) addNew(places, keyOf(line), Util::printable(nameOf(line)));
    }
    json["statements"] = std::move(statements);
    if (!places.empty()) json["places"] = std::move(places);
    if (!hasAllRanges_) add("<p>The maps show the first ranges of each image only.</p>\n");
    if (!hasAllBytes_)
        add("<p>The images are too long for this page: it has the first and the last bytes of each "
            "range.</p>\n");
    add("</main>\n<script type=\"application/json\" id=\"data\">");
    // A "<" in a text must not end the element.
    for (const char c : json.dump(-1, ' ', true, Json::error_handler_t::replace)) {
        if (c == '<')
            add("\\u003c");
        else
            text_ += c;
    }
    add("</script>\n<script>\n");
    add(reportScript());
    add("</script>\n</body></html>\n");
}

}  // namespace

std::string reportOf(const RunRecord& record) {
    return Page(record).text();
}

}  // namespace Inspect
