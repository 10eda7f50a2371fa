#include "io/import/GenericInFile.hpp"

#include <cstdint>
#include <utility>

#include "io/import/IntelHexInFile.hpp"
#include "io/import/MotorolaS_InFile.hpp"
#include "io/import/RawBinaryInFile.hpp"

namespace Io::Import {

namespace {

/// A reader reserves memory for half its file. One that is longer than any text of use and turns
/// out to be raw must not fail for want of that.
constexpr std::uint64_t longestAtOnce = std::uint64_t{1} << 30U;

}  // namespace

GenericInFile::GenericInFile(std::string path) : fileName(std::move(path)) {
    TextLines lines(fileName);
    FormatScan scan;
    while (scan.isUnknown() && lines.next()) scan.look(lines.line());
    const bool isLong = lines.fileSize() > longestAtOnce;
    fileType = isLong ? detectFileType(lines, scan) : scan.type();
    if (!isLong && fileType == InFileType::IntelHex)
        readAtOnce<IntelHexInFile>(std::move(lines), scan);
    else if (!isLong && fileType == InFileType::MotorolaS)
        readAtOnce<MotorolaS_InFile>(std::move(lines), scan);
    else
        reader = createReader(std::move(lines));
}

GenericInFile::GenericInFile(std::string path, RawBinaryTag /*tag*/)
    : fileName(std::move(path)),
      fileType(InFileType::RawBinary),
      reader(std::make_unique<RawBinaryInFile>(fileName)) {}

InFileType GenericInFile::detectFileType(TextLines& lines, FormatScan& scan) {
    while (!scan.isFinal() && lines.next()) scan.look(lines.line());
    return scan.type();
}

template <class Reader>
void GenericInFile::readAtOnce(TextLines lines, FormatScan& scan) {
    auto first = std::make_unique<Reader>(fileName, std::move(lines), FormatWatch(scan, fileType));
    if (first->isFinished()) {
        reader = std::move(first);
        return;
    }
    TextLines rest = first->takeLines();
    first.reset();
    fileType = detectFileType(rest, scan);
    reader = createReader(std::move(rest));
}

std::unique_ptr<TessaronImportApi> GenericInFile::createReader(TextLines lines) const {
    switch (fileType) {
        case InFileType::IntelHex:
            return std::make_unique<IntelHexInFile>(fileName, std::move(lines));
        case InFileType::MotorolaS:
            return std::make_unique<MotorolaS_InFile>(fileName, std::move(lines));
        case InFileType::RawBinary:
            break;
    }
    return std::make_unique<RawBinaryInFile>(fileName, lines.takeFile());
}

}  // namespace Io::Import
