#include "crypto/signature/LockedPool.hpp"

namespace Crypto {

/// The pool is quickly made here.
void limitLockedPool() {}

}  // namespace Crypto
