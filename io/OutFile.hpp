#pragma once

#include <cstddef>

#include "io/File.hpp"
#include "io/PieceWriter.hpp"
#include "platform/Files.hpp"

namespace Io {

/// A file of text that is written in one go: its line feeds become what the platform has for them.
class TextOutFile : public File {
protected:
    using File::File;

    /// Starts the output. See PieceWriter for when the file is touched.
    PieceWriter startOutput(std::size_t longestReserve = 0) const {
        return {fileName_, Platform::FileMode::Text, longestReserve};
    }
};

/// A file of bytes that is written in one go.
class BinaryOutFile : public File {
protected:
    using File::File;

    /// Starts the output. See PieceWriter for when the file is touched.
    PieceWriter startOutput() const { return {fileName_, Platform::FileMode::Binary}; }
};

}  // namespace Io
