#include "io/import/GenericInFile.hpp"

#include <utility>

#include "io/import/IntelHexInFile.hpp"
#include "io/import/MotorolaS_InFile.hpp"
#include "io/import/RawBinaryInFile.hpp"

namespace Io::Import {

GenericInFile::GenericInFile(std::string path) : fileName(std::move(path)) {
    TextLines lines(fileName);
    fileType = detectFileType(lines);
    reader = createReader(std::move(lines));
}

GenericInFile::GenericInFile(std::string path, RawBinaryTag /*tag*/)
    : fileName(std::move(path)),
      fileType(InFileType::RawBinary),
      reader(std::make_unique<RawBinaryInFile>(fileName)) {}

InFileType GenericInFile::detectFileType(TextLines& lines) {
    InFileType type = InFileType::RawBinary;
    while (lines.next()) {
        const char first = lines.line().empty() ? '\0' : lines.line().front();
        if (first == ':')
            type = InFileType::IntelHex;
        else if (first == 'S')
            type = InFileType::MotorolaS;
        else if (first != '/' && first != '\0')
            return InFileType::RawBinary;
    }
    return type;
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
