#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "buffer/Area.hpp"
#include "parser/commands/CmdContext.hpp"
#include "parser/grammar/Statement.hpp"
#include "strict/record/OriginMap.hpp"

namespace Strict {

/// All addresses: what an image covers of which no range is known.
inline constexpr Buffer::Area everywhere{0, std::numeric_limits<std::uint64_t>::max()};

/// A change of bytes of an image after it was made, by a statement. Changes are numbered in the
/// order of the script.
struct Change {
    std::string_view place;            ///< the part of the script that says where
    std::optional<std::size_t> value;  ///< the number of the stored value that was put there
};

/// What an image took over from another one.
struct Link {
    std::size_t image;        ///< the number of the other one
    Buffer::AreaList areas;   ///< what was taken, by the other one's addresses
    std::uint64_t moved = 0;  ///< from the other one's addresses to this one's, modulo 2^64
    Buffer::AreaList lost;    ///< where this one has other bytes since, by this one's addresses
};

/// What is known of an image at a point of the script.
struct Image {
    std::string_view name;              ///< the part of the script that makes it
    std::optional<Buffer::Area> range;  ///< nothing if it hangs on a file that was not read yet
    std::size_t madeAt = 0;             ///< the number of changes before it was made
    bool isExact = true;                ///< `links` and `changes` are as they will be in the run
    bool isFollowed = false;            ///< its changes may matter to a value
    bool isRead = false;                ///< a statement takes bytes from it
    std::vector<Link> links;
    OriginMap changes;                ///< by numbers of changes
    std::vector<std::size_t> spread;  ///< values over it that were written without it, ascending
};

/// The images of a script as its statements make and change them, as far as that is known: before
/// the run from the script alone, during the run from the images themselves.
class Images {
public:
    /// How many images back the bytes of an image are followed.
    static constexpr std::size_t furthest = 64;

    /// The number of the image, or nothing if no statement has made one of that name.
    std::optional<std::size_t> find(std::string_view name) const;

    /// Appends the numbers of the images that a statement reads or changes to `used`; unknown ones
    /// are left out.
    ///
    /// @return the number of the one that it changes
    std::optional<std::size_t> findUsed(const Parser::Statement& statement,
                                        std::vector<std::size_t>& used) const;

    const Image& operator[](std::size_t image) const { return images_[image]; }
    std::size_t size() const { return images_.size(); }

    const std::vector<Change>& changes() const { return changes_; }

    /// Takes a statement that makes an image into account.
    ///
    /// @param sources  the images that it is made of, as `findUsed` finds them
    /// @param context  with the new image if there is one; null before the run
    /// @return its number; nothing if there is none, or if an earlier one has the name
    std::optional<std::size_t> make(const Parser::Statement& statement,
                                    std::span<const std::size_t> sources,
                                    const Parser::WrapperLib::CmdContext* context);

    /// Takes a statement into account that makes an image of which nothing is known before the run.
    void makeOpen(const Parser::Statement& statement);

    /// A statement changes the image, and where is not known before the run.
    void open(std::size_t image) { images_[image].isExact = false; }

    /// From now on, changes of the image matter: a value covers it, or lies in it.
    void follow(std::size_t image) { images_[image].isFollowed = true; }

    /// Notes that a statement takes bytes from the image.
    void noteRead(std::size_t image) { images_[image].isRead = true; }

    /// Notes that a statement changes areas of an image that is followed.
    void change(std::size_t image, const Change& change, const Buffer::AreaList& areas);

    /// A value over `image` is written without it.
    void noteSpread(std::size_t image, std::size_t value);

private:
    void link(Image& image, const Parser::Statement& statement,
              std::span<const std::size_t> sources, const Parser::WrapperLib::CmdContext* context);
    void takeOver(Image& image, const Parser::Statement& statement,
                  const Parser::WrapperLib::CmdContext* merged);

    std::vector<Image> images_;
    std::vector<Change> changes_;
    std::unordered_map<std::string_view, std::size_t> numbers_;
};

/// The parts of `areas` that lie in `other`.
Buffer::AreaList clipped(Buffer::AreaList areas, const Buffer::Area& other);

/// The parts of `areas` that lie in one of `others`.
Buffer::AreaList clipped(const Buffer::AreaList& areas, const Buffer::AreaList& others);

/// The same addresses in ascending areas that do not touch.
Buffer::AreaList united(Buffer::AreaList areas);

/// The areas, moved modulo 2^64.
Buffer::AreaList moved(Buffer::AreaList areas, std::uint64_t distance);

/// One of the areas has an address in common with `other`.
bool haveCommon(const Buffer::AreaList& areas, const Buffer::Area& other);

/// Two of the areas, one of each list, have an address in common.
bool haveCommon(const Buffer::AreaList& areas, const Buffer::AreaList& others);

}  // namespace Strict
