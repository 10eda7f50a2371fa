#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "buffer/Area.hpp"
#include "parser/commands/CmdNewValue.hpp"
#include "parser/grammar/Statement.hpp"
#include "strict/meaning/Findings.hpp"
#include "strict/meaning/Images.hpp"
#include "strict/meaning/LatestChange.hpp"

namespace Strict {

/// The CRCs, hashes and signatures of a script: what each covers, where it was put, and what was
/// changed since.
///
/// A value covers bytes of images, and with them the bytes that its images took over from others
/// and that others took over from them. It is unsound to put it into bytes that it covers, since
/// nothing can confirm it then (`digest-self`), and to write it into a file with bytes that were
/// changed after it was computed (`digest-stale`). Sound are a value between two pieces that it
/// covers, one over an area that holds another value, one of an image in another image, and one
/// over a copy in which its place was given bytes on purpose.
class StoredValues {
public:
    /// @param images  takes note of what is covered, and of values that are written apart from it
    StoredValues(Images& images, Findings& findings) : images_(&images), findings_(&findings) {}

    /// Takes a statement that computes a value into account.
    ///
    /// @param covered  the images that it covers
    void compute(const Parser::Statement& statement, std::span<const std::size_t> covered,
                 const Parser::WrapperLib::CmdNewValue& command);

    /// The number of the value that a statement puts into an image or compares one with, or
    /// nothing.
    std::optional<std::size_t> putBy(const Parser::Statement& statement) const;

    bool empty() const { return values_.empty(); }

    /// The size of a value in bytes, or nothing if it has none or nobody knows it yet.
    ///
    /// @param context  has the value once it was computed; null before the run
    std::optional<std::size_t> sizeOf(std::size_t value,
                                      const Parser::WrapperLib::CmdContext* context) const;

    /// The part of the script that names a value.
    std::string_view nameOf(std::size_t value) const { return values_[value].name; }

    /// Reports `digest-self` if the statement is about to put `value` into bytes of `image` that it
    /// covers.
    void checkPut(const Parser::Statement& statement, std::size_t value, std::size_t image) const;

    /// Reports `digest-stale` for what the statement is about to write into a file, or to take to
    /// other places, at which it is not followed.
    ///
    /// @param taken  the images of which it takes the bytes
    void checkTaken(const Parser::Statement& statement, std::span<const std::size_t> taken) const;

private:
    /// Areas of an image that hold bytes which a value covers.
    struct Cover {
        std::size_t image;
        Buffer::AreaList areas;
    };
    /// One image that a value was computed over, first, and those that it took the bytes from.
    using Piece = std::vector<Cover>;
    struct Value {
        std::string_view name;
        std::size_t computedAt;  ///< the number of changes before it
        const Parser::WrapperLib::CmdNewValue* command;
        std::vector<Piece> pieces;
    };
    /// What an image holds of what a value covers.
    struct Held {
        std::size_t image;
        Buffer::AreaList areas;
        bool isLost = false;  ///< other bytes took the place of some
    };

    /// What takes the bytes of images, and the text of a note there.
    struct Taker {
        std::string_view part;
        const char* note;
    };

    void addSources(Piece& piece, std::size_t image, Buffer::AreaList areas) const;
    std::optional<Held> heldBy(std::size_t image, const Piece& piece, std::size_t& budget) const;
    std::optional<Held> heldBy(std::size_t image, const Piece& piece) const;
    void checkStored(std::size_t value, std::size_t image, std::span<const std::size_t> taken,
                     const Taker& taker) const;
    void checkHeld(std::size_t value, const Held& held, const Taker& taker) const;
    const LatestChange& latestIn(std::size_t image) const;

    Images* images_;
    Findings* findings_;
    std::vector<Value> values_;
    /// The numbers of the values by their names, for each role that uses one.
    std::map<Parser::Role, std::unordered_map<std::string_view, std::size_t>> numbers_;
    mutable std::unordered_map<std::size_t, LatestChange> latest_;  ///< by image
    mutable std::size_t latestAt_ = 0;  ///< the number of changes that `latest_` knows
};

}  // namespace Strict
