#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "io/import/AddressedData.hpp"
#include "platform/Files.hpp"

namespace Io::Import {

/// Reads DfuSe (io/DfuSe.hpp): the elements of all targets, each at its address. The file has to
/// have its suffix, with the right CRC, and every length has to be that of what follows.
class DfuSeInFile final : public AddressedData {
public:
    /// @throws Io::bad_open
    /// @throws Malformed  after a report
    explicit DfuSeInFile(const std::string& path);

    /// The file `path` has been opened already.
    DfuSeInFile(const std::string& path, Platform::InputFile file);

    /// A file that begins with `head` is a DfuSe file.
    static bool looksLike(std::string_view head) { return head.starts_with("DfuSe\x01"); }

    /// The elements, in the order of the file.
    Buffer::AreaList getSegments() const override { return elements_; }

    /// Vendor and product of USB, unless the file is for any, and the names of the targets.
    std::vector<std::string> getDevices() const override { return devices_; }

private:
    class Parser;
    struct Contents;
    explicit DfuSeInFile(Contents contents);

    Buffer::AreaList elements_;
    std::vector<std::string> devices_;
};

}  // namespace Io::Import
