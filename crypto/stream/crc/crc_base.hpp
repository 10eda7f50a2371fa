#pragma once

#include "crypto/stream/stream.hpp"

namespace kv::crypto::stream::crc {

/// Marks the CRC branch of the library.
template <class Result>
class crc_base : public stream<Result, void> {};

}  // namespace kv::crypto::stream::crc
