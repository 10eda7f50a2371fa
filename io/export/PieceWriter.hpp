#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "io/File.hpp"

namespace Io::Export {

/// Collects the output of a writer and hands it to a sink in large pieces.
class PieceWriter {
public:
    explicit PieceWriter(const Sink& sink) : sink_(sink), piece_(pieceSize) {}

    /// A place for `size` characters. What the caller wrote there counts from `commit` on.
    char* reserve(std::size_t size);

    /// The characters in front of `end`, behind those of the last `reserve`, are output.
    void commit(const char* end) { used_ = static_cast<std::size_t>(end - piece_.data()); }

    void append(std::string_view text);

    /// Hands on what is left.
    void flush();

private:
    static constexpr std::size_t pieceSize = std::size_t{1} << 17U;

    const Sink& sink_;
    std::vector<char> piece_;
    std::size_t used_ = 0;
};

}  // namespace Io::Export
