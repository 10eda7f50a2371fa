#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <utility>

#include "io/OutFile.hpp"
#include "io/export/OutputStyles.hpp"
#include "io/export/TessaronExportApi.hpp"

namespace Io::Export {

/// Writes a coefficient file for memories of FPGAs (Xilinx, PG058, "Block Memory Generator",
/// section "COE File"): the words of the memory from its first one on, in hexadecimal digits, one a
/// line.
///
/// The memory has the bytes of the images, one after the other, without their addresses. An
/// incomplete last word is filled up with bytes of 0. The most significant byte of a word is its
/// first one, or its last one in little-endian order.
class CoeOutFile final : public TextOutFile, public TessaronExportApi {
public:
    CoeOutFile(std::string path, WordStyle style) : TextOutFile(std::move(path)), style_(style) {}

    void insert(const ImageView& image) override { images_.push_back(image); }
    void saveToFile() override;
    void setExecutionAddress(std::uint64_t /*address*/) override {}

private:
    WordStyle style_;
    std::deque<ImageView> images_;
};

}  // namespace Io::Export
