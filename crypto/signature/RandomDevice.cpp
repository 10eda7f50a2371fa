#include "crypto/signature/RandomDevice.hpp"

#include <botan/rng.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>

namespace Crypto {

namespace {

class RandomDevice final : public Botan::RandomNumberGenerator {
public:
    void randomize(std::uint8_t output[], std::size_t length) override {
        for (std::size_t done = 0; done < length;) {
            const std::random_device::result_type word = device_();
            const std::size_t count = std::min(sizeof word, length - done);
            std::memcpy(output + done, &word, count);
            done += count;
        }
    }
    bool accepts_input() const override { return false; }
    void add_entropy(const std::uint8_t* /*input*/, std::size_t /*length*/) override {}
    std::string name() const override { return "std::random_device"; }
    void clear() override {}
    bool is_seeded() const override { return true; }

private:
    std::random_device device_;
};

}  // namespace

std::unique_ptr<Botan::RandomNumberGenerator> makeRandomDevice() {
    return std::make_unique<RandomDevice>();
}

}  // namespace Crypto
