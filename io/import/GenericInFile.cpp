#include "io/import/GenericInFile.hpp"

#include <utility>

#include "io/File.hpp"
#include "io/import/IntelHexInFile.hpp"
#include "io/import/MotorolaS_InFile.hpp"
#include "io/import/RawBinaryInFile.hpp"

namespace Io::Import {

GenericInFile::GenericInFile(std::string path) : fileName(std::move(path)) {
    Platform::FileContents contents = readWhole(fileName);
    fileType = detectFileType(contents.text());
    reader = createReader(std::move(contents));
}

GenericInFile::GenericInFile(std::string path, RawBinaryTag /*tag*/)
    : fileName(std::move(path)), fileType(InFileType::RawBinary) {
    reader = createReader(readWhole(fileName));
}

InFileType GenericInFile::detectFileType(std::string_view file) {
    constexpr char endOfText = '\x1A';
    InFileType type = InFileType::RawBinary;
    for (TextLines lines(file); !lines.empty();) {
        const std::string_view line = lines.takeFirst();
        const bool hasLineFeed = line.data() + line.size() != file.data() + file.size();
        // What is read here is not yet text mode, in which this would be an empty line.
        const bool isEmpty = line.empty() || (line == "\r" && hasLineFeed);
        const char first = isEmpty ? '\0' : line.front();
        if (first == endOfText) break;
        if (first == ':')
            type = InFileType::IntelHex;
        else if (first == 'S')
            type = InFileType::MotorolaS;
        else if (first != '/' && first != '\0')
            return InFileType::RawBinary;
        if (line.find(endOfText) != std::string_view::npos) break;
    }
    return type;
}

std::unique_ptr<TessaronImportApi> GenericInFile::createReader(
    Platform::FileContents contents) const {
    switch (fileType) {
        case InFileType::IntelHex:
            return std::make_unique<IntelHexInFile>(fileName, std::move(contents));
        case InFileType::MotorolaS:
            return std::make_unique<MotorolaS_InFile>(fileName, std::move(contents));
        case InFileType::RawBinary:
            break;
    }
    return std::make_unique<RawBinaryInFile>(fileName, std::move(contents));
}

}  // namespace Io::Import
