#pragma once

#include <cstddef>
#include <cstdint>

namespace Facts {

/// The formats of input files. Each has a row in io/formats.
enum class InputFormat : std::uint8_t {
    IntelHex,
    MotorolaS,
    RawBinary,
    Elf,
    Uf2,
    TiTxt,
    Vmem,
    DfuSe
};
inline constexpr std::size_t inputFormatCount = 8;

/// The name of the reader of a format in reports.
constexpr const char* readerName(InputFormat format) {
    switch (format) {
        case InputFormat::IntelHex:
            return "IntelHexInFile";
        case InputFormat::MotorolaS:
            return "MotorolaS_InFile";
        case InputFormat::RawBinary:
            break;
        case InputFormat::Elf:
            return "ElfInFile";
        case InputFormat::Uf2:
            return "Uf2InFile";
        case InputFormat::TiTxt:
            return "TiTxtInFile";
        case InputFormat::Vmem:
            return "VmemInFile";
        case InputFormat::DfuSe:
            return "DfuSeInFile";
    }
    return "RawBinaryInFile";
}

}  // namespace Facts
