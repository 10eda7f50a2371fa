#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Inspect {

/// What a text file consists of.
struct Records {
    struct Kind {
        std::string name;  ///< "data", "extended linear address", "S3 data"
        std::uint64_t count;
    };
    std::vector<Kind> kinds;  ///< those that occur, by their number in the format
    /// How many data records have how many data bytes.
    std::map<unsigned, std::uint64_t> dataLengths;

    std::uint64_t total() const;
};

/// Counts the records of a file in Intel HEX or S-records by the digits that name their kind and
/// length; whether a record is sound is for the readers to say. None for another format.
///
/// @throws Io::bad_open
Records countRecords(const std::string& path, const std::string& format);

}  // namespace Inspect
