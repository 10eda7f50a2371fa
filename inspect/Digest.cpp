#include "inspect/Digest.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "crypto/stream/hash/hash_sha.hpp"
#include "util/Hex.hpp"
#include "util/crc/GenericCrc.hpp"

namespace Inspect {

namespace {

using Bytes = std::span<const std::uint8_t>;

/// A CRC that goes on from its value: the register, before the final xor.
constexpr std::uint32_t allOnes = 0xFFFFFFFF;

/// Calls `take` with the effective bytes, in pieces.
template <class Take>
void forBytes(const Buffer::ElementView& elements, Take take) {
    if (const auto bytes = elements.bytes()) {
        take(*bytes);
        return;
    }
    std::array<std::uint8_t, 4096> piece{};
    for (std::size_t at = 0; at < elements.size(); at += piece.size()) {
        const std::size_t count = std::min(piece.size(), elements.size() - at);
        elements.part(at, count).copyBytes(piece.data());
        take(Bytes(piece.data(), count));
    }
}

}  // namespace

class Sha256::Hash : public kv::crypto::stream::hash::hash_sha256 {};

Sha256::Sha256() : hash_(std::make_unique<Hash>()) {}
Sha256::~Sha256() = default;

void Sha256::take(std::string_view bytes) {
    hash_->update(bytes.data(), bytes.size());
}

std::string Sha256::finish() {
    const auto digest = hash_->finish();
    return Util::lowerHex({digest.data(), digest.size()});
}

void Digester::take(Bytes bytes) {
    // In pieces that the cache still holds when the second digest reads them.
    constexpr std::size_t pieceSize = std::size_t{1} << 16U;
    while (!bytes.empty()) {
        const Bytes piece = bytes.first(std::min(pieceSize, bytes.size()));
        crc_ = Util::Crc::GenericCrc::crc32Reflected(piece, crc_ ^ allOnes);
        sha_.take({reinterpret_cast<const char*>(piece.data()), piece.size()});
        bytes = bytes.subspan(piece.size());
    }
}

Digest Digester::finish() {
    return {crc_, sha_.finish()};
}

Digest digestOf(const Buffer::MemoryBuffer& image) {
    Digester digester;
    forBytes(image.viewElements(), [&digester](Bytes bytes) { digester.take(bytes); });
    return digester.finish();
}

Digest digestOf(const Buffer::MemoryBuffer& image, const Buffer::AreaList& areas) {
    Digester digester;
    for (const Buffer::Area& area : areas)
        forBytes(image.viewRange(area.start, area.length),
                 [&digester](Bytes bytes) { digester.take(bytes); });
    return digester.finish();
}

std::string sha256Of(std::string_view text) {
    Sha256 hash;
    hash.take(text);
    return hash.finish();
}

}  // namespace Inspect
