#pragma once

#include <cstddef>

namespace Crypto {

/// With its first RSA signature, the library starts `count` threads that it keeps, and a thread
/// that cannot be started, or finds no memory, ends the process. Throws std::bad_alloc if as many
/// cannot be started or a megabyte more is not there, as in a run whose address space or number of
/// threads is limited.
void demandWorkerThreads(std::size_t count);

}  // namespace Crypto
