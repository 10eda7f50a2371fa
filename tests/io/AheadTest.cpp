#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "io/import/IntelHexParser.hpp"
#include "io/import/MotorolaS_Parser.hpp"
#include "tests/io/IoFixtures.hpp"

/// What the parsers take ahead of the grammar must be what the grammar makes of the same lines.
namespace {

using Io::TextLines;
using Io::Import::IntelHexParser;
using Io::Import::LineFault;
using Io::Import::MotorolaS_Parser;
using Io::Import::ParsedFile;

auto answersOf(ParsedFile parsed) {
    parsed.data.finish();
    std::vector<std::uint8_t> bytes;
    std::vector<std::uint64_t> areas;
    for (const auto& run : parsed.data.runs()) {
        areas.insert(areas.end(), {run.area.start, run.area.length});
        const auto data = parsed.data.bytesOf(run);
        bytes.insert(bytes.end(), data.begin(), data.end());
    }
    return std::tuple(bytes, areas, parsed.data.minAddress(), parsed.data.maxAddress(),
                      parsed.fault, parsed.fault == LineFault::None ? 0 : parsed.faultLine.number,
                      parsed.fault == LineFault::None ? 0 : parsed.faultLine.position,
                      parsed.startAddress);
}

template <class Parser>
void expectSame(const std::string& text) {
    const std::string path = Tests::temporaryFile(text);
    TextLines lines(path);
    Parser byLine(lines.fileSize());
    while (lines.next()) byLine.take(lines);
    TextLines ahead(path);
    EXPECT_EQ(answersOf(Io::Import::parseLines<Parser>(ahead).takeResult()),
              answersOf(byLine.takeResult()))
        << text.substr(0, 400);
}

/// Files of objcopy with 64 bytes at 0x08000000, the S0 record in the length that is asked for.
const std::string intelData =
    ":1000000000254A6F94B9DE03284D7297BCE1062B98\n"
    ":1000100050759ABFE4092E53789DC2E70C31567B88\n"
    ":10002000A0C5EA0F34597EA3C8ED12375C81A6CB78\n"
    ":10003000F0153A5F84A9CEF3183D6287ACD1F61B68\n";
const std::string intelStart = ":020000040800F2\n";
const std::string intelEnd = ":0400000508000000EF\n:00000001FF\n";
const std::string sData =
    "S31A0800000000254A6F94B9DE03284D7297BCE1062B50759ABFE483\n"
    "S31A08000015092E53789DC2E70C31567BA0C5EA0F34597EA3C8EDB1\n"
    "S31A0800002A12375C81A6CBF0153A5F84A9CEF3183D6287ACD1F6DF\n"
    "S3060800003F1B97\n";
const std::string sStart = "S00F000068656C6C6F202020202000003C\n";
const std::string sEnd = "S5030004F8\nS70508000000F2\n";

template <class Parser>
void expectSameWithChanges(const std::string& text) {
    constexpr std::string_view others{"0Ff:S/ \n\r\0\x1A", 11};
    for (std::size_t at = 0; at < text.size(); ++at) {
        std::string changed = text;
        for (const char other : others) {
            changed[at] = other;
            expectSame<Parser>(changed);
        }
        expectSame<Parser>(std::string(text).erase(at, 1));
        expectSame<Parser>(text.substr(0, at));
    }
}

std::string withReturns(const std::string& text) {
    std::string changed;
    for (const char c : text) changed += c == '\n' ? "\r\n" : std::string(1, c);
    return changed;
}

/// The end of a piece of the file comes at every place of a record.
template <class Parser>
void expectSameInPieces(const std::string& start, const std::string& data, const std::string& end) {
    std::string rest;
    while (rest.size() < 300'000) rest += data;
    const std::string first = withReturns(data.substr(0, data.find('\n') + 1));
    std::string front;
    // Its length and that of the other records have no divisor in common.
    for (std::size_t moved = 0; moved < first.size(); ++moved) {
        expectSame<Parser>(start + front + rest + end);
        front += first;
    }
}

TEST(AheadTest, DamagedIntelHexIsTakenAsByTheGrammar) {
    expectSameWithChanges<IntelHexParser>(intelStart + intelData + intelData + intelEnd);
    expectSame<IntelHexParser>(withReturns(intelStart + intelData + intelEnd));
}

TEST(AheadTest, DamagedSRecordsAreTakenAsByTheGrammar) {
    expectSameWithChanges<MotorolaS_Parser>(sStart + sData + sEnd);
    expectSame<MotorolaS_Parser>(withReturns(sStart + sData + sEnd));
}

TEST(AheadTest, PiecesOfIntelHexMayEndAnywhere) {
    expectSameInPieces<IntelHexParser>(intelStart, intelData, intelEnd);
}

TEST(AheadTest, PiecesOfSRecordsMayEndAnywhere) {
    expectSameInPieces<MotorolaS_Parser>(sStart, sData, "S70508000000F2\n");
}

}  // namespace
