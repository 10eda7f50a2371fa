#include "util/crc/Crc32Instructions.hpp"

#include "util/crc/Processor.hpp"

#ifdef TESSARON_ON_ARM

#include <arm_acle.h>
#include <sys/auxv.h>

#include <cstring>

namespace Util::Crc {

bool hasCrc32Instructions() {
    return (getauxval(AT_HWCAP) & HWCAP_CRC32) != 0;
}

[[gnu::target("+crc")]] std::uint32_t updateByInstructions(std::uint32_t crc,
                                                           std::span<const std::uint8_t> data) {
    std::uint64_t word = 0;
    for (; data.size() >= sizeof word; data = data.subspan(sizeof word)) {
        std::memcpy(&word, data.data(), sizeof word);
        crc = __crc32d(crc, word);
    }
    for (const std::uint8_t byte : data) crc = __crc32b(crc, byte);
    return crc;
}

}  // namespace Util::Crc

#else

#include "util/crc/CrcRegister.hpp"

namespace Util::Crc {

bool hasCrc32Instructions() {
    return false;
}

std::uint32_t updateByInstructions(std::uint32_t crc, std::span<const std::uint8_t> data) {
    return updateReflected(crc, data, crc32ReflectedTable);
}

}  // namespace Util::Crc

#endif
