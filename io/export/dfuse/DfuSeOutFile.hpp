#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <utility>

#include "buffer/MemoryBuffer.hpp"
#include "io/OutFile.hpp"
#include "io/export/OutputStyles.hpp"
#include "io/export/TessaronExportApi.hpp"

namespace Io::Export {

/// Writes a file for the device firmware upgrade over USB, with addresses (STMicroelectronics,
/// UM0391, "DfuSe File Format Specification"): one target, an element for each stretch of an image,
/// and the suffix of the class specification (USB-IF, "Device Class Specification for Device
/// Firmware Upgrade", version 1.1, appendix B) with its CRC. Addresses above 0xFFFFFFFF, or a file
/// of 4 GiB and more, cancel the file.
class DfuSeOutFile final : public BinaryOutFile, public TessaronExportApi {
public:
    DfuSeOutFile(std::string path, DfuSeOutputStyle style)
        : BinaryOutFile(std::move(path)), style_(style) {}

    void insert(const ImageView& image) override { images_.push_back(image); }
    void saveToFile() override;
    void setExecutionAddress(std::uint64_t /*address*/) override {}

    /// The address of the byte at an offset of a file that this class has written; nothing for one
    /// that does not belong to an image.
    static std::optional<std::uint64_t> addressAt(const Buffer::MemoryBuffer& file,
                                                  std::uint64_t offset);

private:
    struct Contents {
        std::uint64_t elements = 0;
        std::uint64_t bytes = 0;  ///< of all elements, their heads included
        std::uint64_t end = 0;    ///< one past the highest address
    };

    Contents contents() const;

    DfuSeOutputStyle style_;
    std::deque<ImageView> images_;
};

}  // namespace Io::Export
