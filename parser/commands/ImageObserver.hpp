#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "buffer/Area.hpp"
#include "buffer/MemoryBuffer.hpp"
#include "buffer/Regrouping.hpp"
#include "io/import/TessaronImportApi.hpp"

namespace Parser::WrapperLib {

class CmdNewBuffer;

/// Learns what the statements of a run put into images, in the order in which they do it. A front
/// end that wants to know where each byte came from gives one to the run; every function is called
/// in the statement that does the work, and does nothing unless overridden.
class ImageObserver {
public:
    ImageObserver() = default;
    virtual ~ImageObserver() = default;
    ImageObserver(const ImageObserver&) = delete;
    ImageObserver& operator=(const ImageObserver&) = delete;

    /// The data of a file is about to go into a new image that has the addresses of `range`.
    virtual void onRead(const CmdNewBuffer& /*statement*/,
                        const Io::Import::TessaronImportApi& /*reader*/,
                        const Buffer::Area& /*range*/) {}

    /// `part`, which is an image of that name or an area of one, is about to be laid over `image`.
    virtual void onOverlay(const CmdNewBuffer& /*statement*/, const Buffer::MemoryBuffer& /*image*/,
                           const std::string& /*name*/, const Buffer::MemoryBuffer& /*part*/) {}

    /// The bytes of `area` of the image `name` were written by the statement itself. The image that
    /// a NEW_BUFFER is making has no name yet.
    virtual void onWrite(const std::string& /*name*/, const Buffer::Area& /*area*/) {}

    /// The fillers of `area` were set by the statement itself.
    virtual void onFill(const std::string& /*name*/, const Buffer::Area& /*area*/) {}

    /// The bytes of the image that a NEW_BUFFER is making have gone to other places.
    virtual void onRegroup(const Buffer::Regrouping& /*regrouping*/) {}

    /// `image`, which a NEW_BUFFER is making, was made of `lanes`, which are images of those names
    /// or areas of them.
    virtual void onInterleave(const Buffer::Regrouping& /*regrouping*/,
                              std::span<const std::string> /*names*/,
                              std::span<const Buffer::MemoryBuffer* const> /*lanes*/,
                              const Buffer::MemoryBuffer& /*image*/) {}

    /// A new image has its name; it was moved by `distance` addresses, modulo 2^64, at the end.
    virtual void onMade(const std::string& /*name*/, const Buffer::MemoryBuffer& /*image*/,
                        std::uint64_t /*distance*/) {}
};

}  // namespace Parser::WrapperLib
