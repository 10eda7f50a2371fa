#pragma once

#include <cstddef>
#include <cstdint>

namespace Io::Import {

/// Records of a text file, or lines of one whose format has no records, that follow each other in
/// the file and in the address space, one a line, and are alike.
struct RecordLines {
    std::uint64_t firstLine;  ///< counted from 1
    std::uint64_t count;
    std::uint8_t kind;      ///< as the format numbers it: a type byte, the digit of an S-record
    bool isData;            ///< of the kinds that have data of the image
    std::uint64_t address;  ///< of the first data byte of the first record; 0 without data
    std::size_t size;       ///< data bytes of each record

    bool operator==(const RecordLines&) const = default;
};

/// Learns which records a file has, in the order of the file.
class RecordVisitor {
public:
    RecordVisitor() = default;
    virtual ~RecordVisitor() = default;
    RecordVisitor(const RecordVisitor&) = delete;
    RecordVisitor& operator=(const RecordVisitor&) = delete;

    virtual void visit(const RecordLines& records) = 0;
};

}  // namespace Io::Import
