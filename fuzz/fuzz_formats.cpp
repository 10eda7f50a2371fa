// The readers of all formats that have a mark: what one of them accepts is the same in every
// question of its interface, and is read again from what the writers of UF2, TI-TXT, VMEM and DfuSe
// make of it.
// A copy of an ELF file with its own bytes is the file itself.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Check.hpp"
#include "fuzz/PlatformInMemory.hpp"
#include "inspect/Names.hpp"
#include "io/InFile.hpp"
#include "io/export/dfuse/DfuSeOutFile.hpp"
#include "io/export/elf/ElfOutFile.hpp"
#include "io/export/titxt/TiTxtOutFile.hpp"
#include "io/export/uf2/Uf2OutFile.hpp"
#include "io/export/vmem/VmemOutFile.hpp"
#include "io/formats/InputFormats.hpp"
#include "io/import/Malformed.hpp"
#include "io/import/RawBinaryInFile.hpp"
#include "io/import/dfuse/DfuSeInFile.hpp"
#include "io/import/elf/ElfFile.hpp"
#include "io/import/elf/ElfInFile.hpp"
#include "io/import/titxt/TiTxtInFile.hpp"
#include "io/import/uf2/Uf2InFile.hpp"
#include "io/import/vmem/VmemInFile.hpp"

namespace {

using Buffer::MemoryBuffer;
using Fuzz::check;
using Io::Import::TessaronImportApi;

constexpr const char* inputPath = "input";
constexpr const char* outputPath = "output";

/// Longest range that is looked at as a whole.
constexpr std::uint64_t longestSpan = 0x10000;
constexpr std::uint64_t addressSpaceEnd = 0x100000000;

/// The images of the runs of a file.
std::vector<MemoryBuffer> imagesOf(const TessaronImportApi& file) {
    std::vector<MemoryBuffer> images;
    for (const Buffer::Area& area : file.getDataAreas()) {
        check(area.length > 0, "a run has addresses");
        images.push_back(file.getMemory(area.start, area.length));
        check(images.back().getArea() == area, "an image has the range that was asked for");
        check(images.back().viewElements().findUnwritten(0) == area.length,
              "a run has data everywhere");
    }
    return images;
}

template <class Reader, class Writer>
void checkWritten(const std::vector<MemoryBuffer>& images, Writer writer) {
    for (const MemoryBuffer& image : images) writer.insertMemoryBuffer(image);
    writer.saveToFile();
    const Reader again(outputPath);
    for (const MemoryBuffer& image : images)
        check(again.getMemory(image.getStartAddress(), image.getDataLength()).getElements() ==
                  image.getElements(),
              "what is written is read again");
}

void checkAnswers(TessaronImportApi& file) {
    const std::vector<MemoryBuffer> images = imagesOf(file);
    check(!images.empty(), "a file without data is refused");
    check(images.front().getStartAddress() == file.getMinAddress(),
          "the data begins where its first run does");
    const Buffer::Area last = images.back().getArea();
    check(last.end() == file.getMinAddress() + file.getDataLength(),
          "the data ends where its last run does");
    if (last.end() != 0 && last.end() <= addressSpaceEnd) {
        using namespace Io::Export;
        checkWritten<Io::Import::TiTxtInFile>(images, TiTxtOutFile(outputPath));
        checkWritten<Io::Import::Uf2InFile>(images, Uf2OutFile(outputPath, {.families = {1}}));
        checkWritten<Io::Import::VmemInFile>(images, VmemOutFile(outputPath, {}));
        checkWritten<Io::Import::DfuSeInFile>(images, DfuSeOutFile(outputPath, {}));
    }
    if (file.getDataLength() > longestSpan) return;
    const MemoryBuffer whole = file.getMemory();
    check(file.takeMemory().getElements() == whole.getElements(),
          "an image that is taken is the one that is given");
}

void checkReader(const Io::Formats::InputFormatRow& format,
                 const Io::Import::ReadOptions& options = {}) {
    try {
        const auto file = format.open(inputPath, Io::openInput(inputPath), options, nullptr);
        if (file) checkAnswers(*file);
    } catch (const Io::Import::Malformed&) {
    }
}

/// A copy with the bytes of the file, some of which are left to the template.
void checkCopy(std::string_view contents) {
    try {
        const Io::Import::ElfInFile file(inputPath);
        const std::vector<MemoryBuffer> images = imagesOf(file);
        for (const std::size_t left : {0U, 1U}) {
            Io::Export::ElfOutFile copy(outputPath, {inputPath});
            for (const MemoryBuffer& image : std::span(images).subspan(left))
                copy.insert(
                    {image.getStartAddress(), image.viewElements(),
                     left == 0 ? Io::Export::Unwritten::Filled : Io::Export::Unwritten::Skipped});
            copy.saveToFile();
            const Io::Import::RawBinaryInFile written(outputPath);
            std::vector<std::uint8_t> bytes;
            written.getMemory().appendBytes(bytes, 0, written.getDataLength());
            check(std::ranges::equal(bytes, contents,
                                     [](std::uint8_t one, char other) {
                                         return one == static_cast<std::uint8_t>(other);
                                     }),
                  "a copy with the same bytes is the same file");
        }
    } catch (const Io::Import::Malformed&) {
    } catch (const Io::Export::GivenUp&) {
    }
}

/// What is left without a section, and what the section alone has, is a part of the file.
void checkSections() {
    for (const bool isUsed : {false, true}) try {
            const Io::Import::ElfFile file(inputPath);
            std::uint64_t all = 0;
            for (const auto& segment : file.segments()) all += segment.length;
            Io::Import::SectionChoice choice;
            (isUsed ? choice.used : choice.skipped).emplace_back(".text");
            std::uint64_t some = 0;
            for (const auto& segment : file.chosen(choice)) some += segment.length;
            check(some != 0 && some <= all, "sections are parts of the segments");
        } catch (const Io::Import::Malformed&) {
        }
}

/// Names that do not overlap, of an ELF file or of the map of a linker.
void checkNames() {
    try {
        std::uint64_t end = 0;
        const Inspect::Names names = Inspect::namesIn(inputPath);
        for (const Inspect::Name& name : names.all()) {
            check(name.area.length != 0 && name.area.start >= end, "names are ascending");
            end = name.area.end();
        }
    } catch (const Io::Import::Malformed&) {
    }
}

void checkSymbols(std::size_t size) {
    try {
        for (const auto& symbol : Io::Import::ElfFile(inputPath).symbols())
            check(symbol.name.size() < size, "a name lies in the file");
    } catch (const Io::Import::Malformed&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > Fuzz::Machine::mostInput) return 0;
    Fuzz::Machine machine;
    machine.addFile(inputPath, {reinterpret_cast<const char*>(data), size});
    for (const Io::Formats::InputFormatRow& format : Io::Formats::inputFormats())
        if (format.looksLike != nullptr) {
            checkReader(format);
            if (format.hasFamilies) checkReader(format, {.family = 1});
        }
    checkCopy({reinterpret_cast<const char*>(data), size});
    checkSections();
    checkNames();
    checkSymbols(size);
    return 0;
}
