#include "cli/Listing.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "inspect/CrcWords.hpp"
#include "inspect/Words.hpp"
#include "io/NamedNumber.hpp"
#include "io/formats/InputFormats.hpp"
#include "parser/commands/CmdNewCrc.hpp"
#include "parser/commands/CmdNewHash.hpp"
#include "parser/commands/CmdWriteFile.hpp"
#include "parser/commands/LateNumber.hpp"
#include "parser/commands/SignatureKey.hpp"
#include "parser/grammar/Keywords.hpp"
#include "strict/diagnostics/Kinds.hpp"
#include "util/crc/CrcParameters.hpp"

namespace CommandLine {

namespace {

using Parser::WrapperLib::CmdNewCrc;
using Parser::WrapperLib::CmdNewHash;
using Parser::WrapperLib::CmdWriteFile;
using Parser::WrapperLib::ExportFormat;
using Parser::WrapperLib::FormatNumber;
using Parser::WrapperLib::SignatureKind;
using Parser::WrapperLib::ValueType;

/// Over which CRCs are published.
constexpr std::array<std::uint8_t, 9> digits{'1', '2', '3', '4', '5', '6', '7', '8', '9'};

using Row = std::vector<std::string>;

/// The rows in columns, the first of them indented.
std::string table(const std::vector<Row>& rows) {
    std::vector<std::size_t> widths;
    for (const Row& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
    }
    std::string text;
    for (const Row& row : rows) {
        std::string line(1, ' ');
        for (std::size_t i = 0; i < row.size(); ++i) {
            line.append(1, ' ').append(row[i]);
            line.append(widths[i] - row[i].size() + 1, ' ');
        }
        text.append(line, 0, line.find_last_not_of(' ') + 1).append(1, '\n');
    }
    return text;
}

std::string listed(std::span<const std::string_view> words,
                   std::span<const std::string_view> further = {}) {
    std::string text;
    for (const auto some : {words, further}) {
        for (const std::string_view word : some) {
            if (!text.empty()) text += " ";
            text += word;
        }
    }
    return text;
}

std::string statements() {
    std::vector<Row> rows;
    for (const auto& [keyword, meaning] : Parser::statementWords())
        rows.push_back({keyword, meaning});
    rows.push_back({"CALCULATE", "evaluates a number, and prints nothing"});
    rows.push_back({"SUBSTITUTE", "replaces a word in the rest of the script"});
    const std::vector<Row> directives{
        {"INCLUDE", "puts the text of another file in its place"},
        {"PARAMETER", "declares what the script expects from its caller"}};
    return "Statements:\n" + table(rows) + "\nLines that only tessaron has:\n" + table(directives) +
           "\nThe book has a page for each statement, with its options, such as "
           "statements/new-buffer.\n";
}

std::string crcs() {
    std::vector<Row> catalogue{{"name", "width", "check", "also known as"}};
    for (const auto& entry : Util::Crc::catalogue())
        catalogue.push_back({std::string(entry.name), std::to_string(entry.parameters.width),
                             Inspect::crcNumberText(
                                 Inspect::numberOf(Util::Crc::computeCrc(entry.parameters, digits)),
                                 entry.parameters.width),
                             std::string(entry.aliases)});
    std::vector<Row> types{{"name", "width", "check", "what it is"}};
    for (const ValueType& type : CmdNewCrc::types()) {
        const auto value =
            type.compute(std::span(digits).first(digits.size() - digits.size() % type.wordSize));
        types.push_back({type.keyword, std::to_string(value.size() * 8), Inspect::valueText(value),
                         type.meaning});
    }
    return "CRCs of the public catalogue, -setType=Catalogue{name}; check is the value over the "
           "nine characters 123456789:\n" +
           table(catalogue) + "\nTypes of the language, -setType=name; without one " +
           CmdNewCrc::usualType().keyword +
           "; check is the value over the same characters, of a sum of words (WordSum) over the "
           "first eight:\n" +
           table(types) +
           "\nAny other CRC of up to 64 bits:\n  -setType=Custom{width, poly, init, refin, refout, "
           "xorout}\n";
}

std::string hashes() {
    std::vector<Row> rows{{"name", "bytes", "what it is"}};
    for (const ValueType& type : CmdNewHash::types())
        rows.push_back(
            {type.keyword,
             type.compute == nullptr ? "" : std::to_string(type.compute(digits).size()),
             type.compute == nullptr ? "accepted, but nothing is computed" : type.meaning});
    return "Hashes, -setType=name:\n" + table(rows);
}

std::string signatures() {
    std::vector<Row> rows{{"name", "bytes", "what it is"}};
    for (const SignatureKind& kind : Parser::WrapperLib::signatureKinds())
        rows.push_back({kind.keyword, kind.size ? std::to_string(*kind.size) : "of the modulus",
                        kind.meaning});
    return "Signatures, -setType=name:\n" + table(rows) +
           "\n-setSignatureForm=Der writes those of ECDSA as a SEQUENCE in DER, which takes a few "
           "bytes more.\n";
}

/// The keyword of a format with what may follow it.
std::string formOf(const ExportFormat& format) {
    constexpr std::array suffixes{"", "[_N]", "_N", "_NAME"};  // by FormatNumber
    return std::string(format.keyword) + suffixes.at(static_cast<std::size_t>(format.numberForm));
}

std::string formats() {
    std::vector<Row> inputs{{"source", "name", "format", "endings"}};
    for (const auto& row : Io::Formats::inputFormats())
        inputs.push_back({std::string(Io::Formats::sourceOf(row)), std::string(row.word),
                          std::string(row.name), listed(row.endings, row.sharedEndings)});
    std::vector<Row> outputs{{"name", "format", "endings"}};
    std::string named;
    for (const ExportFormat& format : CmdWriteFile::formats()) {
        outputs.push_back({formOf(format), format.meaning, listed(format.endings)});
        if (format.numberForm != FormatNumber::Named) continue;
        std::vector<Row> names;
        for (const Io::NamedNumber& name : format.names())
            names.push_back({std::string(name.name), Inspect::addressText(name.number)});
        named.append("\n").append(format.keyword).append("_NAME, or the number itself:\n");
        named += table(names);
    }
    return "Inputs, sources of NEW_BUFFER, and --from=name of the commands without a script;\n"
           "FROM_FILE_BINARY reads any file as it is:\n" +
           table(inputs) + "\nOutputs, -setFormat=name of WRITE_FILE and --format of convert:\n" +
           table(outputs) + named;
}

std::string numbers() {
    using namespace Parser::WrapperLib;
    std::vector<Row> rows;
    for (const NumberFunction& function : imageFunctions())
        rows.push_back({std::string(function.keyword) + "(@Image)", function.meaning});
    for (const NumberFunction& function : symbolFunctions())
        rows.push_back({std::string(function.keyword) + "(FILE, SYMBOL)", function.meaning});
    return "Numbers that are known when their statement runs:\n" + table(rows) +
           "\nThey are allowed wherever a number is. An operator takes everything to its right.\n";
}

std::string kinds() {
    std::vector<Row> rows{{"name", "counts as", "when"}};
    for (const Strict::KindRow& kind : Strict::kinds())
        rows.push_back({kind.name,
                        std::string(kind.isFixed ? "always an " : "") + wordFor(kind.severity),
                        kind.meaning});
    return "Kinds of diagnostics, for --error, --warn and --ignore:\n" + table(rows) +
           "\ntessaron help NAME prints the page about one.\n";
}

constexpr std::array allTopics{
    Topic{"statements", "what a script can say", &statements},
    Topic{"numbers", "numbers of images and symbols", &numbers},
    Topic{"crcs", "CRCs with width, check value and other names, and sums", &crcs},
    Topic{"hashes", "hashes with the size of their digests", &hashes},
    Topic{"signatures", "types of signatures with their sizes", &signatures},
    Topic{"formats", "formats of inputs and outputs with their endings", &formats},
    Topic{"kinds", "kinds of diagnostics, and what they count as", &kinds},
};

}  // namespace

std::span<const Topic> topics() {
    return allTopics;
}

}  // namespace CommandLine
