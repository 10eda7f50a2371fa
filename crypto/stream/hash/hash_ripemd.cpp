#include "crypto/stream/hash/hash_ripemd.hpp"

#include <bit>

#include "crypto/stream/hash/roots.hpp"

namespace kv::crypto::stream::hash {

namespace {

constexpr std::size_t wordsInBlock = 16;
constexpr std::size_t rounds = 5;
using Words = std::array<std::uint32_t, wordsInBlock>;
using Order = std::array<std::size_t, wordsInBlock>;

/// The permutation rho of the message words. The orders of the rounds are its powers.
constexpr Order rho{7, 4, 13, 1, 10, 6, 15, 3, 12, 0, 9, 5, 2, 14, 11, 8};

/// The orders of the rounds of a line: `order` first, and rho applied once more for each round.
constexpr std::array<Order, rounds> orders_from(Order order) {
    std::array<Order, rounds> orders{};
    for (Order& next : orders) {
        next = order;
        for (std::size_t& word : order) word = rho[word];
    }
    return orders;
}

constexpr std::array<Order, rounds> leftOrders = [] {
    Order identity{};
    for (std::size_t i = 0; i < identity.size(); ++i) identity[i] = i;
    return orders_from(identity);
}();

/// The right line begins with the permutation pi(i) = 9 i + 5.
constexpr std::array<Order, rounds> rightOrders = [] {
    Order pi{};
    for (std::size_t i = 0; i < pi.size(); ++i) pi[i] = (9 * i + 5) % wordsInBlock;
    return orders_from(pi);
}();

static_assert(leftOrders[4][0] == 4 && rightOrders[4][0] == 12);

/// The rotation for each message word in each round. Both lines use the same ones.
constexpr std::array<std::array<int, wordsInBlock>, rounds> rotations{
    {{11, 14, 15, 12, 5, 8, 7, 9, 11, 13, 14, 15, 6, 7, 9, 8},
     {12, 13, 11, 15, 6, 9, 9, 7, 12, 15, 11, 13, 7, 8, 7, 7},
     {13, 15, 14, 11, 7, 7, 6, 8, 13, 14, 13, 12, 5, 5, 6, 9},
     {14, 11, 12, 14, 8, 6, 5, 5, 15, 12, 15, 14, 9, 9, 8, 6},
     {15, 12, 13, 13, 9, 5, 8, 6, 14, 11, 12, 11, 8, 6, 5, 5}}};

/// 2^30 times the square roots (left) and the cube roots (right) of the first primes. A round with
/// the constant 0 has none.
constexpr std::array<std::uint32_t, rounds> leftConstants{
    0, root_times_2_to_30(2, 2), root_times_2_to_30(3, 2), root_times_2_to_30(5, 2),
    root_times_2_to_30(7, 2)};
constexpr std::array<std::uint32_t, rounds> rightConstants{
    root_times_2_to_30(2, 3), root_times_2_to_30(3, 3), root_times_2_to_30(5, 3),
    root_times_2_to_30(7, 3), 0};

template <std::size_t Function>
[[gnu::always_inline]] inline std::uint32_t nonlinear(std::uint32_t x, std::uint32_t y,
                                                      std::uint32_t z) {
    if constexpr (Function == 0)
        return x ^ y ^ z;
    else if constexpr (Function == 1)
        return z ^ (x & (y ^ z));
    else if constexpr (Function == 2)
        return (x | ~y) ^ z;
    else if constexpr (Function == 3)
        // The two parts have no bit in common, and the second need not wait for the newest
        // register, x.
        return (x & z) + (y & ~z);
    else
        return x ^ (y | ~z);
}

/// The registers of a line. They stay in place and their names rotate: each step writes the
/// register before the one that the previous step wrote.
template <std::size_t Size>
using Line = std::array<std::uint32_t, Size>;

template <std::size_t Step, std::size_t Name, std::size_t Size>
[[gnu::always_inline]] inline std::uint32_t& name(Line<Size>& line) {
    return line[(Name + Size * rounds * wordsInBlock - Step) % Size];
}

template <std::size_t Step, bool IsLeft, std::size_t Size>
[[gnu::always_inline]] inline void step_line(Line<Size>& line, const Words& x) {
    constexpr std::size_t round = Step / wordsInBlock;
    constexpr std::size_t lineRounds = Size;
    // The right line uses the functions in reverse order.
    constexpr std::size_t function = IsLeft ? round : lineRounds - 1 - round;
    constexpr std::size_t word = (IsLeft ? leftOrders : rightOrders)[round][Step % wordsInBlock];
    // The last round of the right line has no constant, whatever the number of rounds.
    constexpr std::uint32_t constant =
        IsLeft ? leftConstants[round] : (round == lineRounds - 1 ? 0 : rightConstants[round]);
    std::uint32_t& a = name<Step, 0>(line);
    const std::uint32_t b = name<Step, 1>(line);
    std::uint32_t& c = name<Step, 2>(line);
    const std::uint32_t d = name<Step, 3>(line);
    a += x[word] + constant;
    a += nonlinear<function>(b, c, d);
    a = std::rotl(a, rotations[round][word]);
    if constexpr (Size == 5) {
        a += name<Step, 4>(line);
        c = std::rotl(c, 10);
    }
}

/// A step of both lines. After round r the hook gets the r-th registers of both.
template <auto SwapWords, std::size_t Step, std::size_t Size>
[[gnu::always_inline]] inline void step_both(Line<Size>& left, Line<Size>& right, const Words& x) {
    step_line<Step, true>(left, x);
    step_line<Step, false>(right, x);
    constexpr std::size_t round = Step / wordsInBlock;
    if constexpr (Step % wordsInBlock == wordsInBlock - 1) SwapWords(left[round], right[round]);
}

template <auto SwapWords, std::size_t Size, std::size_t... steps>
[[gnu::always_inline]] inline void run_lines(Line<Size>& left, Line<Size>& right, const Words& x,
                                             std::index_sequence<steps...> /*numbers*/) {
    (step_both<SwapWords, steps>(left, right, x), ...);
}

/// The compression function over `count` blocks, with `Size` registers in each line.
template <std::size_t Size, bool HasTwoHalves, auto SwapWords, class State>
void compress_lines(State& state, const unsigned char* blocks, std::size_t count) {
    constexpr std::size_t rightStart = HasTwoHalves ? Size : 0;
    constexpr std::size_t blockBytes = 64;
    for (; count != 0; --count, blocks += blockBytes) {
        Words x;
        for (std::size_t i = 0; i < x.size(); ++i)
            x[i] = load_little<std::uint32_t>(blocks + sizeof(std::uint32_t) * i);
        Line<Size> left;
        Line<Size> right;
        std::copy_n(state.begin(), Size, left.begin());
        std::copy_n(state.begin() + rightStart, Size, right.begin());
        run_lines<SwapWords>(left, right, x, std::make_index_sequence<Size * wordsInBlock>());
        const State old = state;
        for (std::size_t i = 0; i < Size; ++i) {
            if constexpr (HasTwoHalves) {
                state[i] = old[i] + left[i];
                state[Size + i] = old[Size + i] + right[i];
            } else {
                // The old state and the two lines are added at offsets of 1, 2 and 3 words.
                state[i] = old[(i + 1) % Size] + left[(i + 2) % Size] + right[(i + 3) % Size];
            }
        }
    }
}

}  // namespace

template <std::size_t Bits>
void hash_ripemd_128_256_base<Bits>::transform_blocks(const unsigned char* blocks,
                                                      std::size_t count) {
    using variant = hash_ripemd_base<Bits>;
    compress_lines<4, variant::has_two_halves, &variant::swap_words>(this->state_, blocks, count);
}

template <std::size_t Bits>
void hash_ripemd_160_320_base<Bits>::transform_blocks(const unsigned char* blocks,
                                                      std::size_t count) {
    using variant = hash_ripemd_base<Bits>;
    compress_lines<5, variant::has_two_halves, &variant::swap_words>(this->state_, blocks, count);
}

template class hash_ripemd_128_256_base<128>;
template class hash_ripemd_128_256_base<256>;
template class hash_ripemd_160_320_base<160>;
template class hash_ripemd_160_320_base<320>;

void hash_ripemd256::reset() {
    hash_ripemd_128_256_base::reset();
    set_second_half();
}

void hash_ripemd256::set_second_half() {
    constexpr std::array<std::uint32_t, 4> words{0x76543210, 0xFEDCBA98, 0x89ABCDEF, 0x01234567};
    std::ranges::copy(words, state_.begin() + 4);
}

void hash_ripemd320::reset() {
    hash_ripemd_160_320_base::reset();
    set_second_half();
}

void hash_ripemd320::set_second_half() {
    constexpr std::array<std::uint32_t, 5> words{0x76543210, 0xFEDCBA98, 0x89ABCDEF, 0x01234567,
                                                 0x3C2D1E0F};
    std::ranges::copy(words, state_.begin() + 5);
}

}  // namespace kv::crypto::stream::hash
