#include "io/import/RecordInFile.hpp"

#include <new>
#include <utility>

#include "facts/Listener.hpp"

namespace Io::Import {

namespace {

/// Makes a line the current one again.
void moveTo(TextLines& lines, const LinePosition& line) {
    lines.moveTo(line.position, line.number);
    lines.next();
}

}  // namespace

RecordInFile::RecordInFile(const std::string& path, TextLines& lines, ParsedFile parsed,
                           std::uint64_t mostBytes)
    : TextInFile(path), parsedData_(std::move(parsed.data)), startAddress_(parsed.startAddress) {
    if (startAddress_) *startAddress_ *= parsedData_.addressUnit();
    if (parsed.isExhausted) throw std::bad_alloc();
    reportFault(lines, parsed);
    limitSpan(mostBytes);
    parsedData_.finish();
    close(lines);
}

void RecordInFile::reportFault(TextLines& lines, const ParsedFile& parsed) const {
    for (const Facts::RecordCountTooLow& lowCount : parsed.lowCounts) Facts::report(lowCount);
    if (!parsed.hasLines) Facts::report(Facts::TextFileEmpty{fileName_});
    if (parsed.fault == LineFault::LastLineMismatched) {
        Facts::report(Facts::LastLineMismatched{fileName_});
        return;
    }
    if (parsed.fault == LineFault::None) return;
    moveTo(lines, parsed.faultLine);
    if (parsed.fault == LineFault::NotARecord)
        Facts::report(Facts::LineNotARecord{fileName_, lines.number(), lines.line()});
    else
        Facts::report(Facts::RecordContradictory{fileName_, lines.number(), lines.line()});
}

void RecordInFile::limitSpan(std::uint64_t mostBytes) {
    const std::uint64_t first = parsedData_.minAddress();
    const std::uint64_t last = parsedData_.maxAddress();
    if (parsedData_.empty() || last - first < mostBytes) return;
    const std::uint64_t newLast = first + mostBytes - 1;
    Facts::report(Facts::DataSpanTooLong{mostBytes, last, newLast});
    parsedData_.limitTo(newLast);
}

}  // namespace Io::Import
