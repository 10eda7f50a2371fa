#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <vector>

#include "buffer/Area.hpp"

namespace Strict {

/// Addresses from one source.
struct SourcedRange {
    Buffer::Area area;
    std::size_t source;   ///< its number, whose meaning the owner of the range knows
    std::uint64_t moved;  ///< addresses from the source's own to these, modulo 2^64
};

/// Ranges in the order of their addresses, without overlap. There may be a million of them, so they
/// are kept in blocks: a node of a tree for each would take two and a half times their memory. To
/// add or remove one takes a time that grows with the logarithm of their number.
class RangeList {
    /// By addresses from which on a block has the ranges, up to those of the next one; that of the
    /// first is 0. No block is empty.
    using Blocks = std::map<std::uint64_t, std::vector<SourcedRange>>;

public:
    class Iterator {
    public:
        using iterator_category = std::bidirectional_iterator_tag;
        using value_type = SourcedRange;
        using difference_type = std::ptrdiff_t;
        using pointer = const SourcedRange*;
        using reference = const SourcedRange&;

        Iterator() = default;
        reference operator*() const { return block_->second[index_]; }
        pointer operator->() const { return &**this; }
        Iterator& operator++() {
            if (++index_ == block_->second.size()) *this = {std::next(block_), 0};
            return *this;
        }
        Iterator operator++(int) {
            const Iterator before = *this;
            ++*this;
            return before;
        }
        Iterator& operator--() {
            if (index_ == 0) {
                --block_;
                index_ = block_->second.size();
            }
            --index_;
            return *this;
        }
        Iterator operator--(int) {
            const Iterator before = *this;
            --*this;
            return before;
        }
        bool operator==(const Iterator&) const = default;

    private:
        friend RangeList;
        Iterator(Blocks::const_iterator block, std::size_t index) : block_(block), index_(index) {}

        Blocks::const_iterator block_;
        std::size_t index_ = 0;
    };

    Iterator begin() const { return {blocks_.begin(), 0}; }
    Iterator end() const { return {blocks_.end(), 0}; }
    std::size_t size() const { return size_; }
    bool empty() const { return blocks_.empty(); }
    const SourcedRange& front() const { return *begin(); }
    const SourcedRange& back() const { return *std::prev(end()); }

    /// The first range that ends beyond an address.
    Iterator firstBeyond(std::uint64_t address) const;

    /// Adds a range in front of another one, between whose addresses and those of the one before
    /// it must be.
    ///
    /// @return the new one; others are not valid any more
    Iterator insert(Iterator next, const SourcedRange& range);

    /// @return the range after it; others are not valid any more, but those before it
    Iterator erase(Iterator range);

    /// Lets a range be longer by what is between it and the next one, or by that one, which was
    /// removed.
    void lengthen(Iterator range, std::uint64_t length);

    /// Moves all ranges by `distance`, modulo 2^64.
    void move(std::uint64_t distance);

private:
    Blocks::iterator changeable(Blocks::const_iterator block) {
        return blocks_.erase(block, block);
    }

    Blocks blocks_;
    std::size_t size_ = 0;
};

}  // namespace Strict
