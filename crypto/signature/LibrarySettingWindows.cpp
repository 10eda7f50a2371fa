#include <cstdlib>

#include "crypto/signature/LibrarySetting.hpp"

namespace Crypto {

LibrarySetting::LibrarySetting(const char* name, const char* value) : name_(name) {
    if (const char* const known = std::getenv(name)) before_ = known;
    ::_putenv_s(name, value);
}

LibrarySetting::~LibrarySetting() {
    // An empty value removes the variable.
    ::_putenv_s(name_, before_ ? before_->c_str() : "");
}

}  // namespace Crypto
