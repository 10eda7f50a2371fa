#include "platform/Bytes.hpp"

#include <algorithm>

#include "platform/ByteWords.hpp"

namespace Platform {

const char* findByte(std::string_view text, char wanted) {
    constexpr std::size_t step = 4 * sizeof(std::uint64_t);
    const char* at = text.data();
    const char* const end = at + text.size();
    for (; end - at >= std::ptrdiff_t{step}; at += step) {
        const auto inWord = [&](std::size_t number) {
            return bytesEqual(wordAt(at + number * sizeof(std::uint64_t)), wanted);
        };
        if ((inWord(0) | inWord(1) | inWord(2) | inWord(3)) != 0) break;
    }
    at = std::find(at, end, wanted);
    return at == end ? nullptr : at;
}

}  // namespace Platform
