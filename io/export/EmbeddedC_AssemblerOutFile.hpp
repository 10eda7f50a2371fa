#pragma once

#include <cstdint>
#include <string>

#include "io/OutFile.hpp"
#include "io/export/ConcatenatedImages.hpp"
#include "io/export/OutputStyles.hpp"
#include "io/export/TessaronExportApi.hpp"

namespace Io::Export {

/// Writes the bytes of the images, one after the other, as byte directives for the inline
/// assembler of a C compiler, between a header and a footer.
///
/// In both, "@size" is replaced by the number of bytes in hexadecimal, "@time" by the local time
/// and
/// "@elementsPerLine" by that setting.
class EmbeddedC_AssemblerOutFile final : public TextOutFile, public TessaronExportApi {
public:
    EmbeddedC_AssemblerOutFile(std::string path, EmbeddedOutputStyle style);

    void insert(const ImageView& image) override;
    void saveToFile() override;
    void setExecutionAddress(std::uint64_t /*address*/) override {}

    /// The current local time, as in 2021-08-18 14:05:09.
    static std::string getTimeString();

private:
    class ElementRow;

    std::string filledIn(std::string text, const std::string& time) const;
    std::string sectionLines() const;
    void writeDataLines(PieceWriter& out, const ElementRow& row) const;

    EmbeddedOutputStyle outputStyle_;
    ConcatenatedImages outputBytes_{Facts::OutputFormat::EmbeddedC_Assembler};
};

}  // namespace Io::Export
