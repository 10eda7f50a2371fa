#pragma once

#include <string>

#include "io/import/AddressedData.hpp"

namespace Io::Import {

/// Reads UF2 (io/Uf2.hpp): the blocks that belong into the main flash, all for one family of
/// devices. The file must have each of the blocks that it counts, in any order.
class Uf2InFile final : public AddressedData {
public:
    /// @throws Io::bad_open
    /// @throws Malformed  after a report
    explicit Uf2InFile(const std::string& path);
};

}  // namespace Io::Import
