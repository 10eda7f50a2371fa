#include "io/import/elf/ElfFile.hpp"

#include <algorithm>
#include <array>
#include <functional>
#include <limits>
#include <set>
#include <utility>

#include "facts/Listener.hpp"
#include "io/import/Malformed.hpp"

namespace Io::Import {

using Facts::FormatFault;

namespace {

constexpr std::array<std::uint8_t, 4> magic{0x7F, 'E', 'L', 'F'};
constexpr std::size_t classAt = 4;
constexpr std::size_t byteOrderAt = 5;
constexpr std::size_t versionAt = 6;

/// "$a", "$d", "$t" or "$x", and anything after a dot. RISC-V puts the instruction set after "$x".
bool isMappingName(std::string_view name) {
    constexpr std::string_view letters = "adtx";
    if (name.size() < 2 || name[0] != '$' || letters.find(name[1]) == std::string_view::npos)
        return false;
    return name.size() == 2 || name[2] == '.' || name.starts_with("$xrv");
}

}  // namespace

void ElfFile::refuse(FormatFault fault, std::uint64_t where, std::uint64_t number) const {
    Import::refuse(Facts::InputFormat::Elf, fileName_, fault, where, number);
}

ElfFile::ElfFile(const std::string& path, Platform::InputFile file, std::uint32_t addressUnit)
    : BinaryInFile(path, std::move(file)), addressUnit_(addressUnit) {
    const std::vector<std::uint8_t> header = readHeader();
    const auto number = [&](Elf::Field field) { return numbers_.of(field, header); };
    entry_ = number(layout_->header.entry) * addressUnit_;
    sectionNames_ = number(layout_->header.sectionNames);
    machine_ = number(layout_->header.machine);
    isArm_ = machine_ == Elf::machineArm;
    hasMappingSymbols_ = isArm_ || machine_ == Elf::machineAArch64 || machine_ == Elf::machineRiscV;
    readTables(header);
    findSegments();
}

std::uint32_t ElfFile::addressUnitOfMachine() const {
    return machine_ == Elf::machineC2000 || machine_ == Elf::machineDsPic30F ? 2 : 1;
}

void ElfFile::readAll(std::uint64_t start, std::span<std::uint8_t> out) const {
    if (read(start, out) < out.size()) throw Malformed();
}

void ElfFile::requireInFile(std::uint64_t offset, std::uint64_t length) const {
    if (offset > fileSize() || length > fileSize() - offset)
        refuse(FormatFault::Truncated, offset, length);
}

std::vector<std::uint8_t> ElfFile::readHeader() {
    std::array<std::uint8_t, Elf::identificationSize> identification{};
    if (fileSize() < identification.size()) refuse(FormatFault::MagicMissing, 0);
    readAll(0, identification);
    if (!std::ranges::equal(magic, std::span(identification).first(magic.size())))
        refuse(FormatFault::MagicMissing, 0);
    for (const std::size_t at : {classAt, byteOrderAt})
        if (identification[at] != 1 && identification[at] != 2)
            refuse(FormatFault::VariantUnknown, at, identification[at]);
    if (identification[versionAt] != 1)
        refuse(FormatFault::VariantUnknown, versionAt, identification[versionAt]);
    layout_ = identification[classAt] == 1 ? &Elf::layout32 : &Elf::layout64;
    numbers_ = Elf::Numbers(identification[byteOrderAt] == 2);
    std::vector<std::uint8_t> header(layout_->header.size);
    requireInFile(0, header.size());
    readAll(0, header);
    return header;
}

ElfFile::Table ElfFile::readTable(std::uint64_t offset, std::uint64_t count,
                                  std::uint64_t entrySize, std::size_t smallestEntry) const {
    if (count == 0) return {};
    if (entrySize < smallestEntry) refuse(FormatFault::EntryTooShort, offset, entrySize);
    if (count > fileSize() / entrySize) refuse(FormatFault::Truncated, offset, count);
    requireInFile(offset, count * entrySize);
    Table table{offset, count, static_cast<std::size_t>(entrySize), {}};
    table.bytes.resize(static_cast<std::size_t>(count * entrySize));
    readAll(offset, table.bytes);
    return table;
}

void ElfFile::readTables(std::span<const std::uint8_t> header) {
    const auto number = [&](Elf::Field field) { return numbers_.of(field, header); };
    const Elf::HeaderFields& fields = layout_->header;
    const std::uint64_t sectionOffset = number(fields.sectionOffset);
    const std::uint64_t sectionSize = number(fields.sectionEntrySize);
    std::uint64_t sections = number(fields.sectionCount);
    std::uint64_t programs = number(fields.programCount);
    // Counts that do not fit into the header are in the first section.
    const bool hasLargeCount =
        (sections == 0 && sectionOffset != 0) || programs == Elf::countInSection;
    if (hasLargeCount) {
        const Table first = readTable(sectionOffset, 1, sectionSize, layout_->section.size);
        if (sections == 0) sections = numbers_.of(layout_->section.sectionSize, first.entry(0));
        if (programs == Elf::countInSection)
            programs = numbers_.of(layout_->section.info, first.entry(0));
    }
    sections_ = readTable(sectionOffset, sections, sectionSize, layout_->section.size);
    programs_ = readTable(number(fields.programOffset), programs, number(fields.programEntrySize),
                          layout_->segment.size);
}

void ElfFile::findSegments() {
    bool usesVirtual = true;
    for (std::uint64_t i = 0; i < programs_.count; ++i)
        usesVirtual =
            usesVirtual && numbers_.of(layout_->segment.physicalAddress, programs_.entry(i)) == 0;
    for (std::uint64_t i = 0; i < programs_.count; ++i) addSegment(i, usesVirtual);
    if (segments_.empty()) refuse(FormatFault::NothingToLoad, 0);
    // Bytes of the file that count several times would let a small file fill the memory.
    std::uint64_t total = 0;
    for (const ElfSegment& segment : segments_) {
        total += segment.length;
        if (total > fileSize()) refuse(FormatFault::DataRepeated, segment.fileOffset, total);
    }
}

void ElfFile::addSegment(std::uint64_t index, bool usesVirtual) {
    const auto header = programs_.entry(index);
    const auto number = [&](Elf::Field field) { return numbers_.of(field, header); };
    const Elf::SegmentFields& fields = layout_->segment;
    const std::uint64_t fileLength = number(fields.fileSize);
    if (number(fields.type) != Elf::loadSegment || fileLength == 0) return;
    const std::uint64_t offset = number(fields.offset);
    requireInFile(offset, fileLength);
    if (number(fields.memorySize) < fileLength)
        refuse(FormatFault::SegmentTooLong, index, fileLength);
    const std::uint64_t address =
        number(usesVirtual ? fields.virtualAddress : fields.physicalAddress);
    if (address > (std::numeric_limits<std::uint64_t>::max() - fileLength) / addressUnit_)
        refuse(FormatFault::AddressTooHigh, index, address);
    const std::uint64_t end = offset + fileLength;
    const std::uint64_t begin =
        offset < layout_->header.size ? firstSectionIn(offset, end) : offset;
    if (begin < end)
        segments_.push_back({address * addressUnit_ + (begin - offset), begin, end - begin,
                             number(fields.virtualAddress) * addressUnit_ + (begin - offset)});
}

ElfFile::Table ElfFile::sectionNames() const {
    std::uint64_t index = sectionNames_;
    if (index == Elf::nameInSection && sections_.count != 0)
        index = numbers_.of(layout_->section.link, sections_.entry(0));
    if (index == 0 || index >= sections_.count) return {};
    return tableOf(sections_.entry(index), 1, 1);
}

/// The sections that are loaded, in the order of the file.
std::vector<ElfFile::Section> ElfFile::loadedSections(const Table& names) const {
    const Elf::SectionFields& fields = layout_->section;
    std::vector<Section> found;
    for (std::uint64_t i = 0; i < sections_.count; ++i) {
        const auto header = sections_.entry(i);
        if (!isLoaded(header)) continue;
        const std::uint64_t begin = numbers_.of(fields.offset, header);
        const std::uint64_t size = numbers_.of(fields.sectionSize, header);
        requireInFile(begin, size);
        found.push_back(
            {nameAt(names.bytes, numbers_.of(fields.name, header)), begin, begin + size});
    }
    std::ranges::stable_sort(found, {}, &Section::begin);
    for (std::size_t i = 1; i < found.size(); ++i)
        if (found[i].begin < found[i - 1].end)
            refuse(FormatFault::DataRepeated, found[i].begin, found[i].end - found[i].begin);
    return found;
}

void ElfFile::refuseSection(Facts::SectionFault fault, std::string_view name,
                            std::span<const Section> known) const {
    std::string names;
    for (const Section& section : known) names += section.name + "\n";
    Facts::report(Facts::SectionUnfit{fileName_, name, fault, names});
    throw Malformed();
}

/// Refuses names that no section has.
void ElfFile::requireSections(const SectionChoice& choice, const Table& names,
                              std::span<const Section> known) const {
    std::set<std::string, std::less<>> all;
    for (std::uint64_t i = 0; i < sections_.count; ++i)
        all.insert(nameAt(names.bytes, numbers_.of(layout_->section.name, sections_.entry(i))));
    for (const auto* const list : {&choice.used, &choice.skipped})
        for (const std::string& name : *list)
            if (!all.contains(name)) refuseSection(Facts::SectionFault::Unknown, name, known);
}

std::vector<ElfSegment> ElfFile::chosen(const SectionChoice& choice) const {
    const Table names = sectionNames();
    const std::vector<Section> sections = loadedSections(names);
    requireSections(choice, names, sections);
    const bool isExact = !choice.used.empty();
    std::set<std::string_view> loaded;  // the names of what is taken
    std::vector<ElfSegment> pieces;
    for (const ElfSegment& segment : segments_) {
        const std::uint64_t end = segment.fileOffset + segment.length;
        const auto add = [&](std::uint64_t from, std::uint64_t to) {
            from = std::max(from, segment.fileOffset);
            to = std::min(to, end);
            if (from >= to) return;
            const std::uint64_t at = from - segment.fileOffset;
            pieces.push_back({segment.address + at, from, to - from, segment.virtualAddress + at});
        };
        auto section = std::ranges::partition_point(
            sections, [&segment](const Section& one) { return one.end <= segment.fileOffset; });
        // What is kept reaches up to here.
        std::uint64_t kept = segment.fileOffset;
        std::uint64_t before = segment.fileOffset;
        for (; section != sections.end() && section->begin < end; ++section) {
            const bool isTaken = choice.takes(section->name);
            if (isTaken) loaded.insert(section->name);
            if (isExact && isTaken) add(section->begin, section->end);
            if (!isExact && !isTaken) {
                add(kept, before);
                kept = section->end;
            }
            before = section->end;
        }
        // The end of the segment goes with its last section.
        if (!isExact) add(kept, kept == before && kept != segment.fileOffset ? kept : end);
    }
    for (const std::string& name : choice.used)
        if (choice.takes(name) && !loaded.contains(name))
            refuseSection(Facts::SectionFault::NotLoaded, name, sections);
    if (pieces.empty()) refuse(FormatFault::NothingToLoad, 0);
    return pieces;
}

/// The section has bytes in the file that the program has when it runs.
bool ElfFile::isLoaded(std::span<const std::uint8_t> section) const {
    const auto number = [&](Elf::Field field) { return numbers_.of(field, section); };
    const Elf::SectionFields& fields = layout_->section;
    return (number(fields.flags) & Elf::allocated) != 0 && number(fields.type) != Elf::noBits &&
           number(fields.sectionSize) != 0;
}

/// Where the data of a segment [`offset`, `end`) of the file begins that has the file's headers.
std::uint64_t ElfFile::firstSectionIn(std::uint64_t offset, std::uint64_t end) const {
    if (sections_.count == 0) {
        const bool hasTable = programs_.offset >= offset && programs_.offset < end;
        const std::uint64_t tableEnd = programs_.offset + programs_.bytes.size();
        return hasTable ? std::min(tableEnd, end) : std::uint64_t{layout_->header.size};
    }
    std::uint64_t first = end;
    const Elf::SectionFields& fields = layout_->section;
    for (std::uint64_t i = 0; i < sections_.count; ++i) {
        const auto header = sections_.entry(i);
        const std::uint64_t begin = numbers_.of(fields.offset, header);
        if (isLoaded(header) && begin >= offset) first = std::min(first, begin);
    }
    return first;
}

std::string ElfFile::nameAt(std::span<const std::uint8_t> names, std::uint64_t offset) const {
    if (offset >= names.size()) refuse(FormatFault::Truncated, offset, names.size());
    const auto begin = names.begin() + static_cast<std::ptrdiff_t>(offset);
    return {begin, std::find(begin, names.end(), 0)};
}

ElfFile::Table ElfFile::tableOf(std::span<const std::uint8_t> section, std::uint64_t entrySize,
                                std::size_t smallestEntry) const {
    const std::uint64_t offset = numbers_.of(layout_->section.offset, section);
    if (entrySize < smallestEntry) refuse(FormatFault::EntryTooShort, offset, entrySize);
    const std::uint64_t size = numbers_.of(layout_->section.sectionSize, section);
    return readTable(offset, size / entrySize, entrySize, smallestEntry);
}

/// The symbol of a table's entry, or nothing if it is none of the program.
std::optional<Symbol> ElfFile::symbolOf(std::span<const std::uint8_t> entry,
                                        std::span<const std::uint8_t> names) const {
    const auto number = [&](Elf::Field field) { return numbers_.of(field, entry); };
    const Elf::SymbolFields& fields = layout_->symbol;
    const std::uint64_t type = number(fields.info) & 0xFU;
    const bool isDefined = number(fields.section) != 0 && number(fields.name) != 0;
    if (!isDefined || type == Elf::sectionSymbol || type == Elf::fileSymbol) return std::nullopt;
    constexpr unsigned bindingShift = 4;
    const bool isGlobal = number(fields.info) >> bindingShift != Elf::localBinding;
    Symbol symbol{nameAt(names, number(fields.name)),
                  number(fields.value) * addressUnit_,
                  number(fields.symbolSize),
                  Symbol::Kind::Other,
                  isGlobal,
                  number(fields.section) == Elf::absoluteSection};
    const bool isMapping = hasMappingSymbols_ && !isGlobal && isMappingName(symbol.name);
    if (isMapping) return std::nullopt;
    if (type == Elf::dataSymbol) symbol.kind = Symbol::Kind::Data;
    if (type == Elf::functionSymbol) symbol.kind = Symbol::Kind::Function;
    if (type == Elf::functionSymbol && isArm_) symbol.address &= ~std::uint64_t{1};
    return symbol;
}

std::vector<Symbol> ElfFile::symbols() const {
    const Elf::SectionFields& fields = layout_->section;
    std::uint64_t index = 0;
    while (index < sections_.count &&
           numbers_.of(fields.type, sections_.entry(index)) != Elf::symbolTable)
        ++index;
    if (index == sections_.count) return {};
    const auto section = sections_.entry(index);
    const std::uint64_t link = numbers_.of(fields.link, section);
    if (link >= sections_.count) refuse(FormatFault::Truncated, link, sections_.count);
    const Table table =
        tableOf(section, numbers_.of(fields.entrySize, section), layout_->symbol.size);
    const Table names = tableOf(sections_.entry(link), 1, 1);
    // Names that share their characters would let a small file fill the memory.
    constexpr std::size_t mostCharacters = std::size_t{1} << 28U;
    std::size_t characters = 0;
    std::vector<Symbol> found;
    // The first entry means no symbol.
    for (std::uint64_t i = 1; i < table.count; ++i) {
        auto symbol = symbolOf(table.entry(i), names.bytes);
        if (!symbol) continue;
        characters += symbol->name.size();
        if (characters > mostCharacters)
            refuse(FormatFault::DataRepeated, names.offset, characters);
        found.push_back(std::move(*symbol));
    }
    return found;
}

}  // namespace Io::Import
