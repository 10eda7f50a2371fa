#include "io/import/GenericInFile.hpp"

#include <utility>

#include "io/import/IntelHexInFile.hpp"
#include "io/import/MotorolaS_InFile.hpp"
#include "io/import/RawBinaryInFile.hpp"

namespace Io::Import {

GenericInFile::GenericInFile(std::string path) : fileName(std::move(path)) {
    TextLines lines(fileName);
    FormatScan scan;
    while (scan.isUndecided() && lines.next()) scan.look(lines.line());
    fileType = scan.type();
    if (fileType == InFileType::IntelHex)
        readAtOnce<IntelHexInFile>(std::move(lines), scan);
    else if (fileType == InFileType::MotorolaS)
        readAtOnce<MotorolaS_InFile>(std::move(lines), scan);
    else
        reader = createReader(std::move(lines));
}

GenericInFile::GenericInFile(std::string path, RawBinaryTag /*tag*/)
    : fileName(std::move(path)),
      fileType(InFileType::RawBinary),
      reader(std::make_unique<RawBinaryInFile>(fileName)) {}

InFileType GenericInFile::detectFileType(TextLines& lines, FormatScan& scan) {
    while (!scan.isDecided() && lines.next()) scan.look(lines.line());
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
