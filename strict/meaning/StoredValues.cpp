#include "strict/meaning/StoredValues.hpp"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <utility>

#include "facts/Listener.hpp"
#include "inspect/Words.hpp"

namespace Strict {

namespace {

using Buffer::Area;
using Buffer::AreaList;
using Parser::Part;
using Parser::Role;
using Parser::Statement;

/// The addresses of `areas` of which `changes` has no change since the one numbered `since`. None
/// if there are so many changes that to look at them for each value would take minutes: only what a
/// value covers itself is followed then.
AreaList unchanged(const AreaList& areas, const OriginMap& changes, std::size_t since) {
    constexpr std::size_t mostChanges = 4096;
    if (changes.ranges().size() > mostChanges) return {};
    OriginMap left;
    for (const Area& area : areas) left.set(area, 0);
    for (const OriginMap::Range& range : changes.ranges())
        if (range.source >= since) left.erase(range.area);
    AreaList result;
    for (const OriginMap::Range& range : left.ranges()) result.push_back(range.area);
    return result;
}

/// "{{0x00000000, 0xFC}, {0x00000100, 0x100}}"
std::string listText(const AreaList& areas) {
    std::string text(1, '{');
    for (const Area& area : areas) {
        if (text.size() > 1) text += ", ";
        text += '{' + Inspect::addressText(area.start) + ", " + Inspect::hexText(area.length) + '}';
    }
    return text + '}';
}

/// How a value can leave out where it is put.
std::string adviceFor(std::string_view value, const AreaList& covered, const AreaList& slots) {
    constexpr std::size_t mostShown = 4;
    OriginMap left;
    for (const Area& area : covered) left.set(area, 0);
    for (const Area& slot : slots) left.erase(slot);
    AreaList rest;
    for (const OriginMap::Range& range : left.ranges()) rest.push_back(range.area);
    const bool isKnown = std::ranges::none_of(
        covered, [](const Area& area) { return area.end() == everywhere.end(); });
    if (isKnown && !rest.empty() && rest.size() <= mostShown)
        return "compute " + std::string(value) + " with -useAreas=" + listText(rest);
    return "let -useAreas of " + std::string(value) + " leave these bytes out";
}

}  // namespace

void StoredValues::compute(const Statement& statement, std::span<const std::size_t> covered,
                           const Parser::WrapperLib::CmdNewValue& command) {
    const Part& made = *statement.last(Parser::makesValue);
    const std::string_view name = made.text;
    const Role use = Parser::valueKindOf(made.role)->uses;
    if (!numbers_[use].try_emplace(name, values_.size()).second) return;
    Value value{name, images_->changes().size(), &command, {}};
    value.pieces.reserve(covered.size());
    for (const std::size_t image : covered) {
        images_->follow(image);
        const Area range = (*images_)[image].range.value_or(everywhere);
        AreaList areas{range};
        if (statement.has(Role::Area)) areas = clipped(statement.areas(), range);
        addSources(value.pieces.emplace_back(), image, std::move(areas));
    }
    values_.push_back(std::move(value));
}

/// Adds what an image holds of a piece, and what it took that from.
void StoredValues::addSources(Piece& piece, std::size_t image, AreaList areas) const {
    piece.push_back({image, areas});
    const Image& holder = (*images_)[image];
    if (holder.links.empty()) return;
    areas = unchanged(areas, holder.changes, holder.madeAt);
    for (const Link& link : holder.links) {
        if (piece.size() == Images::furthest) return;
        AreaList taken = clipped(moved(areas, std::uint64_t{0} - link.moved), link.areas);
        taken = unchanged(taken, (*images_)[link.image].changes, holder.madeAt);
        if (!taken.empty()) addSources(piece, link.image, std::move(taken));
    }
}

std::optional<std::size_t> StoredValues::putBy(const Statement& statement) const {
    if (!statement.has(Role::ChangesImage) && !statement.isComparison()) return std::nullopt;
    const Part* const used = statement.last(Parser::usesValue);
    if (used == nullptr) return std::nullopt;
    const auto numbers = numbers_.find(used->role);
    if (numbers == numbers_.end()) return std::nullopt;
    const auto value = numbers->second.find(used->text);
    return value == numbers->second.end() ? std::nullopt : std::optional(value->second);
}

std::optional<std::size_t> StoredValues::sizeOf(
    std::size_t value, const Parser::WrapperLib::CmdContext* context) const {
    Facts::Unheard unheard;
    const Facts::ListenerScope listening(unheard);
    if (const auto size = values_[value].command->valueSize()) return size;
    const auto* const bytes =
        context == nullptr ? nullptr : values_[value].command->valueIn(*context);
    return bytes == nullptr ? std::nullopt : std::optional(bytes->size());
}

std::optional<StoredValues::Held> StoredValues::heldBy(std::size_t image,
                                                       const Piece& piece) const {
    std::size_t budget = Images::furthest;
    return heldBy(image, piece, budget);
}

/// @param budget  the number of images that may yet be looked at
std::optional<StoredValues::Held> StoredValues::heldBy(std::size_t image, const Piece& piece,
                                                       std::size_t& budget) const {
    const auto cover = std::ranges::find(piece, image, &Cover::image);
    if (cover != piece.end()) return Held{image, cover->areas};
    for (const Link& link : (*images_)[image].links) {
        if (budget == 0) return std::nullopt;
        --budget;
        auto held = heldBy(link.image, piece, budget);
        if (!held) continue;
        AreaList areas = moved(clipped(held->areas, link.areas), link.moved);
        if (areas.empty()) continue;
        const bool isLost = held->isLost || haveCommon(areas, link.lost);
        return Held{image, std::move(areas), isLost};
    }
    return std::nullopt;
}

void StoredValues::checkPut(const Statement& statement, std::size_t value,
                            std::size_t image) const {
    const std::string name(nameOf(value));
    for (const Piece& piece : values_[value].pieces) {
        const auto held = heldBy(image, piece);
        if (!held) continue;
        for (const Part& part : statement.all(Role::Area)) {
            if (!haveCommon(held->areas, statement.areaOf(part))) continue;
            findings_->report(Kind::DigestSelf,
                              name +
                                  " covers bytes of the area that it is put into, so nothing "
                                  "can confirm it",
                              part.text, adviceFor(name, held->areas, statement.areas()),
                              {findings_->note(name + " is computed here", nameOf(value))});
            return;
        }
    }
}

void StoredValues::checkTaken(const Statement& statement,
                              std::span<const std::size_t> taken) const {
    if (values_.empty()) return;
    const Images& images = *images_;
    const bool isWritten = statement.has(Role::OutputFile);
    const Taker taker{statement.textOf(isWritten ? Role::OutputFile : Role::MakesImage),
                      isWritten ? "and written here" : "and taken to other places here"};
    for (const std::size_t image : taken) {
        for (const std::size_t value : images[image].spread)
            for (const Piece& piece : values_[value].pieces)
                if (piece.front().image == image)
                    checkHeld(value, {image, piece.front().areas}, taker);
        if (!images[image].isExact) continue;
        // A value may be in a hundred thousand places of an image.
        std::unordered_set<std::size_t> checked;
        for (const OriginMap::Range& range : images[image].changes.ranges())
            if (const auto value = images.changes()[range.source].value;
                value && checked.insert(*value).second)
                checkStored(*value, image, taken, taker);
    }
}

/// Checks a value that `image` holds, which is taken with others.
void StoredValues::checkStored(std::size_t value, std::size_t image,
                               std::span<const std::size_t> taken, const Taker& taker) const {
    for (const Piece& piece : values_[value].pieces) {
        auto held = heldBy(image, piece);
        for (std::size_t i = 0; !held && i < taken.size(); ++i) held = heldBy(taken[i], piece);
        if (!held) {
            held = Held{piece.front().image, piece.front().areas};
            images_->noteSpread(piece.front().image, value);
        }
        checkHeld(value, *held, taker);
    }
}

/// Checks that what a value covers is still what it was computed over.
void StoredValues::checkHeld(std::size_t value, const Held& held, const Taker& taker) const {
    const Image& image = (*images_)[held.image];
    if (!image.isExact) return;
    const std::string name(nameOf(value));
    // Places cost more than the check, and most values are sound.
    const auto notes = [&] {
        return std::vector<Note>{findings_->note(name + " is computed here", nameOf(value)),
                                 findings_->note(taker.note, taker.part)};
    };
    if (held.isLost) {
        findings_->report(Kind::DigestStale,
                          std::string(image.name) + " has other bytes than those that " + name +
                              " covers, since images overlap",
                          image.name, "compute " + name + " over " + std::string(image.name),
                          notes(), value);
        return;
    }
    const auto counts = [&](std::size_t number) {
        return images_->changes()[number].value != value;
    };
    for (const Area& area : held.areas) {
        const auto found = latestIn(held.image).find(area, values_[value].computedAt, counts);
        if (!found) continue;
        std::string text = "this changes bytes that ";
        text.append(name).append(" covers, and ").append(name).append(" was computed before");
        findings_->report(Kind::DigestStale, std::move(text),
                          images_->changes()[found->source].place,
                          "compute " + name + " after the last change", notes(), value);
        return;
    }
}

/// The changes of an image, sorted once for as long as it does not change.
const LatestChange& StoredValues::latestIn(std::size_t image) const {
    const std::size_t now = images_->changes().size();
    if (latestAt_ != now) latest_.clear();
    latestAt_ = now;
    const auto entry = latest_.find(image);
    if (entry != latest_.end()) return entry->second;
    return latest_.emplace(image, LatestChange((*images_)[image].changes)).first->second;
}

}  // namespace Strict
