// Compares the two implementations of whole records on any text and on any bytes.

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

#include "fuzz/Check.hpp"
#include "util/records/Records.hpp"

namespace {

using Fuzz::check;
using Util::Records::DataRun;
using Util::Records::DigitCase;
using Util::Records::Portable;
using Vectors = Util::Records::Codec;
using Bytes = std::vector<std::uint8_t>;

/// Room for data and nothing beyond, so that the sanitizers see a decoder reach further.
Bytes roomFor(std::string_view text) {
    return Bytes(text.size() / 2 + Util::Records::dataSlack);
}

template <class Decode>
std::size_t checkDecoded(std::string_view text, DigitCase digits, Decode portable, Decode vectors) {
    Bytes expected = roomFor(text);
    Bytes found = roomFor(text);
    const DataRun wanted = portable(text, expected.data(), digits);
    const DataRun run = vectors(text, found.data(), digits);
    check(run.textSize == wanted.textSize && run.address == wanted.address &&
              run.dataSize == wanted.dataSize && run.count == wanted.count,
          "both find the same records");
    const auto end = found.begin() + static_cast<std::ptrdiff_t>(run.dataSize);
    check(std::equal(found.begin(), end, expected.begin()), "both find the same data");
    return run.textSize;
}

/// The records at the front of each line, as readers take them.
void checkDecoded(std::string_view text, DigitCase digits) {
    while (!text.empty()) {
        std::size_t size =
            checkDecoded(text, digits, &Portable::decodeIntel, &Vectors::decodeIntel);
        if (size == 0) size = checkDecoded(text, digits, &Portable::decodeS, &Vectors::decodeS);
        if (size == 0) size = std::min(text.find('\n'), text.size() - 1) + 1;
        text.remove_prefix(size);
    }
}

template <class Encode>
void checkEncoded(std::size_t dataSize, Encode encode) {
    constexpr std::size_t mostOthers = 15;
    std::vector<char> expected(2 * dataSize + mostOthers + Util::Records::textSlack);
    std::vector<char> found(expected.size());
    const auto wantedEnd = encode(Portable(), expected.data()) - expected.data();
    const auto end = encode(Vectors(), found.data()) - found.data();
    check(end == wantedEnd, "both records are of the same length");
    check(std::equal(found.begin(), found.begin() + end, expected.begin()),
          "both records are the same");
}

void checkEncoded(std::span<const std::uint8_t> all) {
    constexpr std::size_t addressSize = 4;
    if (all.size() < addressSize + 1) return;
    const auto address = static_cast<std::uint32_t>(all[0] << 16U | all[1] << 8U | all[2]);
    const auto data = all.subspan(addressSize + 1);
    checkEncoded(data.size(), [&]<class Codec>(Codec, char* out) {
        return Codec::encodeIntel(out, static_cast<std::uint16_t>(address), all[3], data);
    });
    checkEncoded(data.size(), [&]<class Codec>(Codec, char* out) {
        return Codec::encodeS(out, '3', address, 3 + all[4] % 2U, data);
    });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<char> exact(data, data + size);
    for (const DigitCase digits : {DigitCase::Upper, DigitCase::Any})
        checkDecoded({exact.data(), exact.size()}, digits);
    checkEncoded(Bytes(data, data + size));
    return 0;
}
