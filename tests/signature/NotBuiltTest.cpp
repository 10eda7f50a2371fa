#include <gtest/gtest.h>

#include <variant>

#include "crypto/signature/Signature.hpp"

namespace {

/// A build without signatures says so, whatever the file holds.
TEST(SignatureNotBuilt, noKeyIsRead) {
    const auto type = Crypto::SignatureType::Ed25519;
    const auto signing = Crypto::SigningKey::read({}, {}, type);
    const auto verifying = Crypto::VerifyingKey::read({}, {}, type);
    EXPECT_EQ(std::get<Crypto::KeyFault>(signing), Crypto::KeyFault::NotBuilt);
    EXPECT_EQ(std::get<Crypto::KeyFault>(verifying), Crypto::KeyFault::NotBuilt);
}

}  // namespace
