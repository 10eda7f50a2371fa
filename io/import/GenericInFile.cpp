#include "io/import/GenericInFile.hpp"

#include <utility>

#include "io/TextLines.hpp"
#include "io/import/IntelHexInFile.hpp"
#include "io/import/MotorolaS_InFile.hpp"
#include "io/import/RawBinaryInFile.hpp"

namespace Io::Import {

namespace {

/// Takes the perfect data records that follow the current line, if they mean nothing to the parser
/// of the other format. S-records never do: Intel HEX passes them over.
void takeAhead(TextLines& lines, InFileType type, IntelHexParser& intelHex,
               MotorolaS_Parser& motorolaS) {
    if (type == InFileType::IntelHex && motorolaS.isOver())
        intelHex.takeAhead(lines);
    else if (type == InFileType::MotorolaS)
        motorolaS.takeAhead(lines);
}

}  // namespace

GenericInFile::GenericInFile(std::string path, std::uint32_t addressUnit)
    : fileName_(std::move(path)) {
    TextLines lines(fileName_);
    FormatScan scan;
    IntelHexParser intelHex(lines.fileSize());
    MotorolaS_Parser motorolaS(lines.fileSize());
    intelHex.setAddressUnit(addressUnit);
    motorolaS.setAddressUnit(addressUnit);
    while (!scan.isFinal() && lines.next()) {
        scan.look(lines.line());
        intelHex.take(lines);
        motorolaS.take(lines);
        takeAhead(lines, scan.type(), intelHex, motorolaS);
    }
    fileType_ = scan.type();
    // The reader goes on with the open file: opened by its name once more, it could be another one.
    switch (fileType_) {
        case InFileType::IntelHex:
            reader_ =
                std::make_unique<IntelHexInFile>(fileName_, std::move(lines), std::move(intelHex));
            break;
        case InFileType::MotorolaS:
            reader_ = std::make_unique<MotorolaS_InFile>(fileName_, std::move(lines),
                                                         std::move(motorolaS));
            break;
        case InFileType::RawBinary:
            reader_ = std::make_unique<RawBinaryInFile>(fileName_, lines.takeFile());
            break;
    }
}

GenericInFile::GenericInFile(std::string path, RawBinaryTag /*tag*/)
    : fileName_(std::move(path)),
      fileType_(InFileType::RawBinary),
      reader_(std::make_unique<RawBinaryInFile>(fileName_)) {}

}  // namespace Io::Import
