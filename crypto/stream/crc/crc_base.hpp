#pragma once

#include "crypto/stream/stream.hpp"

namespace kv::crypto::stream::crc {

/// The base of all CRCs.
template <class Result>
class crc_base : public stream<Result, void> {};

}  // namespace kv::crypto::stream::crc
