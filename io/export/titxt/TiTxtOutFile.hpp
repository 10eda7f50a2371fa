#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <utility>

#include "io/OutFile.hpp"
#include "io/export/OutputStyles.hpp"
#include "io/export/TessaronExportApi.hpp"

namespace Io::Export {

/// Writes TI-TXT (Texas Instruments, "MSP430 Assembly Language Tools User's Guide", SLAU131,
/// section "TI-TXT Hex Format"): a section for each stretch of an image, 16 bytes a line, an
/// address of four digits or more. Addresses above 0xFFFFFFFF cancel the file.
class TiTxtOutFile final : public TextOutFile, public TessaronExportApi {
public:
    explicit TiTxtOutFile(std::string path, TiTxtOutputStyle style = {})
        : TextOutFile(std::move(path)), style_(style) {}

    void insert(const ImageView& image) override;
    void saveToFile() override;
    void setExecutionAddress(std::uint64_t /*address*/) override {}

private:
    TiTxtOutputStyle style_;
    std::deque<ImageView> images_;
    bool isBeyond_ = false;
};

}  // namespace Io::Export
