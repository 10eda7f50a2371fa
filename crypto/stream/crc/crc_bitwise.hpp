#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "crypto/stream/crc/crc_base.hpp"
#include "util/crc/CrcRegister.hpp"

namespace kv::crypto::stream::crc {

/// A CRC computed bit by bit. The parameters are those of the public CRC catalogue.
///
/// The constructor sets no value, so `reset` must be called first. `finish` converts the register
/// to the final value in place, so a second call undoes the first.
template <unsigned Width, unsigned short Polynomial, unsigned short Initial,
          unsigned short FinalXor, int ReflectIn, int ReflectOut>
class crc_bitwise : public crc_base<unsigned short> {
    static_assert(Width == 16, "the register has sixteen bits");

public:
    void reset() override { crc_register_ = Initial; }

    void update(const void* data, std::size_t length) override {
        const std::span bytes(static_cast<const std::uint8_t*>(data), length);
        crc_register_ = Util::Crc::updateBitwise<ReflectIn != 0>(crc_register_, bytes, Polynomial);
    }

    unsigned short finish() override {
        if constexpr (ReflectOut != 0) crc_register_ = Util::Crc::reflect(crc_register_);
        crc_register_ = static_cast<unsigned short>(crc_register_ ^ FinalXor);
        return crc_register_;
    }

    /// The register; before `finish` it is not yet reflected.
    unsigned short result() const override { return crc_register_; }

private:
    unsigned short crc_register_;
};

}  // namespace kv::crypto::stream::crc
