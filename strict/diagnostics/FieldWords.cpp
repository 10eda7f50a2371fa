#include "strict/diagnostics/FieldWords.hpp"

#include <cstdint>
#include <utility>
#include <variant>

#include "inspect/Words.hpp"
#include "io/formats/InputFormats.hpp"
#include "util/Hex.hpp"

namespace Strict {

namespace {

using namespace Facts;

Kind kindOf(RecordFault fault) {
    switch (fault) {
        case RecordFault::NotARecord:
        case RecordFault::ForeignText:
        case RecordFault::InRemark:
            return Kind::RecordLine;
        case RecordFault::OtherFormat:
            return Kind::WrongFormat;
        case RecordFault::Digit:
            return Kind::RecordDigit;
        case RecordFault::Digits:
        case RecordFault::CountTooLow:
        case RecordFault::DataSize:
        case RecordFault::WordCut:
            return Kind::RecordLength;
        case RecordFault::Checksum:
            return Kind::RecordChecksum;
        case RecordFault::Type:
            return Kind::RecordType;
        case RecordFault::Address:
        case RecordFault::AddressSpace:
            return Kind::RecordAddress;
        case RecordFault::AfterEnd:
            return Kind::AfterEnd;
        case RecordFault::RecordCount:
            break;
    }
    return Kind::RecordCount;
}

std::string counted(std::uint64_t count, const std::string& one, const std::string& many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string characterText(std::uint64_t byte) {
    const bool isShown = byte > ' ' && byte < 0x7F;
    return isShown ? std::string(1, static_cast<char>(byte))
                   : "the byte " + Util::hexByte(static_cast<std::uint8_t>(byte));
}

std::string wordsForType(const LineDamaged& fact) {
    if (fact.format == InputFormat::IntelHex)
        return "Intel HEX has no record of type " +
               Util::hexByte(static_cast<std::uint8_t>(fact.found));
    if (fact.found == 's') return "an S-record begins with S, not with s";
    return "there is no S-record of type " + characterText(fact.found);
}

std::string textOf(const LineDamaged& fact) {
    const bool isHex = fact.format == InputFormat::IntelHex;
    switch (fact.fault) {
        case RecordFault::NotARecord:
            return "the line is not a record";
        case RecordFault::ForeignText:
            return "text goes on after the byte " +
                   Util::hexByte(static_cast<std::uint8_t>(fact.found)) + " at the end of line " +
                   std::to_string(fact.expected);
        case RecordFault::OtherFormat:
            return isHex ? "an S-record in a file of Intel HEX"
                         : "a record of Intel HEX in a file of S-records";
        case RecordFault::Digit:
            return characterText(fact.found) + " is not a hexadecimal digit";
        case RecordFault::Digits:
            return "the record's count gives " + counted(fact.expected, "digit", "digits") +
                   ", the line has " + std::to_string(fact.found);
        case RecordFault::CountTooLow:
            return "count is " + std::to_string(fact.found) +
                   ", a record of this type has at least " + std::to_string(fact.expected);
        case RecordFault::DataSize:
            return "the record has " + counted(fact.found, "data byte", "data bytes") +
                   ", one of this type has " + std::to_string(fact.expected);
        case RecordFault::WordCut:
            return "the record has " + counted(fact.found, "data byte", "data bytes") +
                   ", not a whole number of words of " + std::to_string(fact.expected);
        case RecordFault::Checksum:
            return "checksum is " + Util::hexByte(static_cast<std::uint8_t>(fact.found)) +
                   ", the record's bytes give " +
                   Util::hexByte(static_cast<std::uint8_t>(fact.expected));
        case RecordFault::Type:
            return wordsForType(fact);
        case RecordFault::Address:
            return "the address field is " + Inspect::hexText(fact.found) +
                   ", in a record of this type it is 0";
        case RecordFault::AddressSpace:
            return "the data from " + Inspect::addressText(fact.found) +
                   " on goes beyond 0xFFFFFFFF";
        case RecordFault::InRemark:
            return "the remark is a whole record: take the line out, or its mark";
        case RecordFault::AfterEnd:
            return counted(fact.found, "data byte", "data bytes") + " after the end record";
        case RecordFault::RecordCount:
            break;
    }
    return "count is " + std::to_string(fact.found) + ", the file has " +
           counted(fact.expected, "data record", "data records") + " before it";
}

std::string textOf(const LinesTolerated& fact) {
    const auto lines = [&fact](const char* one, const char* many) {
        return counted(fact.count, one, many);
    };
    switch (fact.tolerance) {
        case Tolerance::BlankLine:
            return lines("blank line", "blank lines, this is the first");
        case Tolerance::TrailingBlank:
            return lines("line has", "lines have") + " blanks at the end";
        case Tolerance::LoneReturn:
            return lines("line ends", "lines end") + " with a carriage return alone";
        case Tolerance::TextEndMark:
            return "bytes 1A at the end of the text";
        case Tolerance::NulBytes:
            return "zero bytes at the end of the text";
        case Tolerance::LowerCase:
            return lines("record has", "records have") + " lower-case digits";
        case Tolerance::Utf8Mark:
            return "the file begins with a byte order mark";
        case Tolerance::Remark:
            return lines("line is a remark", "lines are remarks");
        case Tolerance::SymbolTable:
            return lines("line", "lines") + " of a symbol table";
        case Tolerance::SegmentBorder:
            return lines("record goes", "records go") +
                   " on upward after the highest address that its field can express";
        case Tolerance::RecordAfterEnd:
            return lines("record", "records") + " without data after the end record";
        case Tolerance::EndAddress:
            break;
    }
    return "the end record has an address, which is not used";
}

/// How a file is read whose contents say nothing, or something else.
std::string adviceOnBytes(OptionsOf options) {
    return std::string(options == OptionsOf::Statements ? "FROM_FILE_BINARY" : "--from RawBinary") +
           " takes a file byte for byte";
}

struct WordsFor {
    OptionsOf options;

    FieldWords operator()(const LineDamaged& fact) const {
        const bool hasColumn = fact.fault == RecordFault::Digit;
        return {kindOf(fact.fault),
                textOf(fact),
                "",
                fact.file,
                fact.lineNumber,
                hasColumn ? static_cast<std::size_t>(fact.expected) : 0,
                fact.line};
    }

    FieldWords operator()(const LinesDamaged& fact) const {
        return {kindOf(fact.fault),
                counted(fact.count, "more line", "more lines") + " of " + std::string(fact.file) +
                    (fact.count == 1 ? " is" : " are") + " damaged",
                "",
                fact.file,
                0,
                0,
                {},
                fact.count};
    }

    FieldWords operator()(const LinesTolerated& fact) const {
        return {Kind::Tolerated, textOf(fact), "", fact.file, fact.firstLine};
    }

    FieldWords operator()(const EndMissing& fact) const {
        const bool isHex = fact.format == InputFormat::IntelHex;
        return {Kind::NoEnd,
                std::string(fact.file) + " has no " +
                    (isHex ? "end-of-file record" : "S7, S8 or S9 record") +
                    "; it may have been cut off",
                "if it is complete, --warn no-end lets it pass", fact.file};
    }

    FieldWords operator()(const FormatForeign& fact) const {
        std::string text(fact.file);
        if (!fact.foreign.empty())
            return {Kind::WrongFormat, text.append(" is ").append(fact.foreign),
                    adviceOnBytes(options), fact.file};
        if (!fact.format)
            return {Kind::WrongFormat, text + " has no record of Intel HEX and no S-record",
                    adviceOnBytes(options), fact.file};
        const Io::Formats::InputFormatRow& row = Io::Formats::rowOf(*fact.format);
        text.append(" has the format ").append(row.name);
        std::string hint = "use ";
        if (options == OptionsOf::Statements)
            hint += row.keyword;
        else
            hint.append("--from ").append(row.word);
        return {Kind::WrongFormat, std::move(text), std::move(hint), fact.file};
    }

    FieldWords operator()(const StartAddressesDiffer& fact) const {
        return {Kind::StartAddress,
                "a second start address, " + Inspect::addressText(fact.later) + ": line " +
                    std::to_string(fact.earlierLine) + " names " +
                    Inspect::addressText(fact.earlier),
                "", fact.file, fact.laterLine};
    }

    FieldWords operator()(const RecordsOverlap& fact) const {
        return {Kind::Overlap,
                Inspect::addressesText({fact.start, fact.end - fact.start}) +
                    " again, with the same bytes as from line " + std::to_string(fact.earlierLine) +
                    " on",
                "", fact.file, fact.laterLine};
    }

    FieldWords operator()(const RecordsConflict& fact) const {
        return {Kind::Conflict,
                "other bytes for " + Inspect::addressesText({fact.start, fact.end - fact.start}) +
                    ": " + Inspect::addressText(fact.address) + " is " +
                    Util::hexByte(fact.earlierByte) + " in line " +
                    std::to_string(fact.earlierLine) + " and " + Util::hexByte(fact.laterByte) +
                    " in this one",
                "", fact.file, fact.laterLine};
    }

    FieldWords operator()(const AddressesCountWords& fact) const {
        const std::string unit = std::to_string(fact.unit);
        return {Kind::Conflict,
                "the addresses of " + std::string(fact.file) + " count words of " + unit +
                    " bytes, " +
                    (fact.isByMachine ? "as all of its machine do"
                                      : "so that as addresses of bytes they overlap"),
                adviceOnUnit(fact.unit, options), fact.file};
    }

    FieldWords operator()(const FurtherOverlaps& fact) const {
        return {fact.areConflicts ? Kind::Conflict : Kind::Overlap,
                counted(fact.count, "more range", "more ranges") + " of " + std::string(fact.file) +
                    " with " + (fact.areConflicts ? "other bytes" : "the same bytes again"),
                "",
                fact.file,
                0,
                0,
                {},
                fact.count};
    }
};

}  // namespace

FieldWords wordsFor(const Facts::FieldFact& fact, OptionsOf options) {
    return std::visit(WordsFor{options}, fact);
}

}  // namespace Strict
