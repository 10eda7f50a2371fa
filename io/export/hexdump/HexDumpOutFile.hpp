#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <utility>

#include "io/OutFile.hpp"
#include "io/export/OutputStyles.hpp"
#include "io/export/TessaronExportApi.hpp"

namespace Io::Export {

/// Writes a hex dump as `xxd` does, which also reads it back: the address in eight digits or more,
/// the bytes in groups of two, and their printable characters. A stretch of an image begins a line.
class HexDumpOutFile final : public TextOutFile, public TessaronExportApi {
public:
    HexDumpOutFile(std::string path, HexDumpOutputStyle style)
        : TextOutFile(std::move(path)), style_(style) {}

    /// Bytes of the longest line, the limit of `xxd`.
    static constexpr std::uint32_t longestLine = 256;

    void insert(const ImageView& image) override { images_.push_back(image); }
    void saveToFile() override;
    void setExecutionAddress(std::uint64_t /*address*/) override {}

private:
    HexDumpOutputStyle style_;
    std::deque<ImageView> images_;
};

}  // namespace Io::Export
