#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "io/OutFile.hpp"
#include "io/export/ConcatenatedImages.hpp"
#include "io/export/OutputStyles.hpp"
#include "io/export/TessaronExportApi.hpp"

namespace Io::Export {

/// Writes the bytes of the images, one after the other, as byte directives for the inline
/// assembler of a C compiler, between a header and a footer.
///
/// In both, "@size" is replaced by the number of bytes in hexadecimal, "@elementsPerLine" by that
/// setting and "@time" by the time of the host. Lines with "@time" are left out if it has none.
class EmbeddedC_AssemblerOutFile final : public TextOutFile, public TessaronExportApi {
public:
    EmbeddedC_AssemblerOutFile(std::string path, EmbeddedOutputStyle style);

    void insert(const ImageView& image) override;
    void saveToFile() override;
    void setExecutionAddress(std::uint64_t /*address*/) override {}

private:
    class ElementRow;

    std::string filledIn(std::string text, const std::optional<std::string>& time) const;
    std::string sectionLines() const;
    void writeDataLines(PieceWriter& out, const ElementRow& row) const;

    EmbeddedOutputStyle outputStyle_;
    ConcatenatedImages outputBytes_{Facts::OutputFormat::EmbeddedC_Assembler};
};

}  // namespace Io::Export
