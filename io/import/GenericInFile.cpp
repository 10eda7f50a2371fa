#include "io/import/GenericInFile.hpp"

#include <utility>

#include "io/TextLines.hpp"
#include "io/import/IntelHexInFile.hpp"
#include "io/import/MotorolaS_InFile.hpp"
#include "io/import/RawBinaryInFile.hpp"

namespace Io::Import {

GenericInFile::GenericInFile(std::string path) : fileName(std::move(path)) {
    TextLines lines(fileName);
    FormatScan scan;
    IntelHexParser intelHex(lines.fileSize());
    MotorolaS_Parser motorolaS(lines.fileSize());
    while (!scan.isFinal() && lines.next()) {
        scan.look(lines.line());
        intelHex.take(lines);
        motorolaS.take(lines);
    }
    fileType = scan.type();
    // The reader goes on with the open file: opened by its name once more, it could be another one.
    switch (fileType) {
        case InFileType::IntelHex:
            reader =
                std::make_unique<IntelHexInFile>(fileName, std::move(lines), std::move(intelHex));
            break;
        case InFileType::MotorolaS:
            reader = std::make_unique<MotorolaS_InFile>(fileName, std::move(lines),
                                                        std::move(motorolaS));
            break;
        case InFileType::RawBinary:
            reader = std::make_unique<RawBinaryInFile>(fileName, lines.takeFile());
            break;
    }
}

GenericInFile::GenericInFile(std::string path, RawBinaryTag /*tag*/)
    : fileName(std::move(path)),
      fileType(InFileType::RawBinary),
      reader(std::make_unique<RawBinaryInFile>(fileName)) {}

}  // namespace Io::Import
