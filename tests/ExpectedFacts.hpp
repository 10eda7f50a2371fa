#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "facts/Listener.hpp"

namespace Tests {

/// Expects the facts `wanted`, in this order and no others, while it lives.
///
/// They are compared as they come up, since their texts are valid no longer.
class ExpectedFacts : public Facts::Listener {
public:
    explicit ExpectedFacts(std::vector<Facts::Fact> wanted)
        : wanted_(std::move(wanted)), scope_(*this) {}
    ~ExpectedFacts() override { EXPECT_EQ(heard_, wanted_.size()) << "facts"; }
    ExpectedFacts(const ExpectedFacts&) = delete;
    ExpectedFacts& operator=(const ExpectedFacts&) = delete;

    void hear(const Facts::Fact& fact) override {
        const std::size_t number = heard_++;
        const bool isExpected = number < wanted_.size() && isSame(fact, wanted_[number]);
        EXPECT_TRUE(isExpected) << "fact number " << number << ", alternative " << fact.index();
    }

private:
    static bool isSame(const Facts::Fact& left, const Facts::Fact& right) {
        // A visitor of both would have a function for each pair of alternatives.
        const auto isRight = [&right](const auto& a) {
            const auto* const b = std::get_if<std::remove_cvref_t<decltype(a)>>(&right);
            if constexpr (requires { a == *b; })
                return b != nullptr && a == *b;
            else
                return false;
        };
        return std::visit(isRight, left);
    }

    std::vector<Facts::Fact> wanted_;
    std::size_t heard_ = 0;
    Facts::ListenerScope scope_;
};

}  // namespace Tests
