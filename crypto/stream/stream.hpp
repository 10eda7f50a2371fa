#pragma once

#include <cstddef>
#include <type_traits>

namespace kv::crypto::stream {

/// Takes bytes in pieces and delivers one result at the end: the root of the hashes and of the
/// bit-wise CRC. `Context` is void in all instances.
template <class Result, class Context>
class stream {
    static_assert(std::is_void_v<Context>);

public:
    stream() = default;
    virtual ~stream() = default;

    /// Back to the start, from anywhere.
    virtual void reset() = 0;

    /// Takes the next `length` bytes; any number of calls, any lengths, 0 too. Keeps no pointer.
    virtual void update(const void* data, std::size_t length) = 0;

    /// Ends the message and returns its result; called once.
    virtual Result finish() = 0;

    /// Ends the message and puts the result into `out`.
    virtual void finish_into(Result& out) {
        finish();
        out = result();
    }

    /// The result of a finished message; changes nothing. Here a zero one.
    virtual Result result() const { return Result{}; }

protected:
    stream(const stream&) = default;
    stream& operator=(const stream&) = default;
};

}  // namespace kv::crypto::stream
