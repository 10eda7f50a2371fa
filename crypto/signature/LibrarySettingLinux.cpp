#include <cstdlib>

#include "crypto/signature/LibrarySetting.hpp"

namespace Crypto {

LibrarySetting::LibrarySetting(const char* name, const char* value) : name_(name) {
    if (const char* const known = std::getenv(name)) before_ = known;
    ::setenv(name, value, 1);
}

LibrarySetting::~LibrarySetting() {
    if (before_)
        ::setenv(name_, before_->c_str(), 1);
    else
        ::unsetenv(name_);
}

}  // namespace Crypto
