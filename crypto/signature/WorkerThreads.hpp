#pragma once

namespace Crypto {

/// With its first RSA signature, the library starts threads that it keeps, and a thread that cannot
/// be started ends the process. Throws std::bad_alloc if as many cannot be started, as in a run
/// whose address space or number of threads is limited.
void demandWorkerThreads();

}  // namespace Crypto
