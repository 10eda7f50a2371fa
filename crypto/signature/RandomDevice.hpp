#pragma once

#include <cstdint>
#include <memory>

namespace Botan {
class RandomNumberGenerator;
}

namespace Crypto {

/// The random numbers of the system or the processor, which need no /dev/urandom: a run may be
/// confined to a folder without one. They make salts, and blind private keys against measurements.
std::unique_ptr<Botan::RandomNumberGenerator> makeRandomDevice();

}  // namespace Crypto
