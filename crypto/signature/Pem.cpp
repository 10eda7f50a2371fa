#include "crypto/signature/Pem.hpp"

#include <algorithm>
#include <string>

namespace Crypto {

namespace {

constexpr std::string_view dashes = "-----";

constexpr std::string_view keyLabels[] = {"PRIVATE KEY", "ENCRYPTED PRIVATE KEY", "EC PRIVATE KEY",
                                          "RSA PRIVATE KEY", "PUBLIC KEY"};

/// Takes what is before `mark` off the front of the text, and the mark.
std::optional<std::string_view> takeUpTo(std::string_view& text, std::string_view mark) {
    const std::size_t end = text.find(mark);
    if (end == std::string_view::npos) return std::nullopt;
    const std::string_view before = text.substr(0, end);
    text.remove_prefix(end + mark.size());
    return before;
}

}  // namespace

bool PemBlock::hasEncryptionHeader() const {
    return body.find("Proc-Type:") != std::string_view::npos &&
           body.find("ENCRYPTED") != std::string_view::npos;
}

std::optional<PemBlock> findKey(std::span<const std::uint8_t> pem) {
    std::string_view text{reinterpret_cast<const char*>(pem.data()), pem.size()};
    while (takeUpTo(text, "-----BEGIN ")) {
        const std::optional<std::string_view> label = takeUpTo(text, dashes);
        if (!label) return std::nullopt;
        const std::optional<std::string_view> body =
            takeUpTo(text, "-----END " + std::string{*label} + "-----");
        if (!body) return std::nullopt;
        if (std::ranges::find(keyLabels, *label) != std::end(keyLabels))
            return PemBlock{*label, *body};
    }
    return std::nullopt;
}

}  // namespace Crypto
