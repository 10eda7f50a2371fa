#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// The language server: the Language Server Protocol 3.17 over two streams.
namespace Lsp {

/// Cuts a stream into the messages of the base protocol of LSP: a header with Content-Length, an
/// empty line, and so many bytes. Takes the bytes as they arrive, in pieces of any size.
///
/// What is not a header is skipped up to the next line that begins one. Memory is bounded by the
/// longest message, whatever arrives.
class MessageReader {
public:
    /// Bytes of a message that is taken.
    static constexpr std::size_t longest = std::size_t{32} << 20U;

    /// What there is in the bytes that have arrived.
    enum class Outcome : unsigned char {
        Message,
        TooLong,  ///< a message that was skipped
        Garbage,  ///< bytes that were skipped
        Nothing   ///< until more arrives
    };

    /// More bytes have arrived.
    void add(std::string_view bytes) { buffer_.append(bytes); }

    /// Takes the next thing off the bytes.
    Outcome next(std::string& message);

    /// Bytes have arrived that `next` has not reported: a message that is not whole, or garbage.
    bool isWithin() const {
        return length_ != none || toSkip_ != 0 || hasSkipped_ || !buffer_.empty();
    }

private:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    bool readHeader();
    void drop(std::size_t count);
    static std::size_t lengthIn(std::string_view header);

    std::string buffer_;
    std::size_t length_ = none;  ///< of the message that has begun
    std::size_t toSkip_ = 0;     ///< bytes of one that is too long
    bool isSkipping_ = false;    ///< garbage, up to the next header
    bool hasSkipped_ = false;    ///< garbage that was not reported
};

}  // namespace Lsp
