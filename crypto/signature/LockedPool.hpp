#pragma once

namespace Crypto {

/// Lets the library lock 64 KiB of memory for secret numbers, which all numbers of one key fit
/// into, instead of 512: to lock and guard each page of these takes longer than to sign. Before the
/// first use of the library; a size that the user's environment gives stays.
void limitLockedPool();

}  // namespace Crypto
