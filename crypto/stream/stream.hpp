#pragma once

#include <cstddef>
#include <type_traits>

namespace kv::crypto::stream {

/// The base of the hashes and of the bit-wise CRC: takes bytes in pieces and delivers one result at
/// the end. `Context` is void in all instances.
template <class Result, class Context>
class stream {
    static_assert(std::is_void_v<Context>);

public:
    stream() = default;
    virtual ~stream() = default;

    /// Starts a new message; allowed in any state.
    virtual void reset() = 0;

    /// Takes the next `length` bytes. Any number of calls and any length, also 0, is allowed. The
    /// pointer is not kept.
    virtual void update(const void* data, std::size_t length) = 0;

    /// Ends the message and returns its result. Must be called once per message.
    virtual Result finish() = 0;

    /// Ends the message and puts the result into `out`.
    virtual void finish_into(Result& out) {
        finish();
        out = result();
    }

    /// The result of a finished message. The default returns zero.
    virtual Result result() const { return Result{}; }

protected:
    stream(const stream&) = default;
    stream& operator=(const stream&) = default;
};

}  // namespace kv::crypto::stream
