#include "platform/Bytes.hpp"

#include <cstring>

namespace Platform {

const char* findByte(std::string_view text, char wanted) {
    // The pointer of an empty text may be null, which memchr does not take.
    return text.empty() ? nullptr
                        : static_cast<const char*>(std::memchr(text.data(), wanted, text.size()));
}

}  // namespace Platform
