#include "strict/meaning/TextRule.hpp"

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>

namespace Strict {

namespace {

using Parser::Part;
using Parser::Role;

bool isText(std::uint8_t byte) {
    constexpr std::uint8_t tab = 0x09;
    constexpr std::uint8_t carriageReturn = 0x0D;
    constexpr std::uint8_t endOfFile = 0x1A;
    constexpr std::uint8_t blank = 0x20;
    constexpr std::uint8_t lastPrintable = 0x7E;
    return (byte >= blank && byte <= lastPrintable) || (byte >= tab && byte <= carriageReturn) ||
           byte == endOfFile;
}

}  // namespace

void checkUnknownText(const Step& step) {
    if (step.context == nullptr || !step.has(Role::InputFile)) return;
    const Part* const file = step.statement.last(Role::InputFile);
    const bool isDetected =
        file->choice == static_cast<std::uint32_t>(Parser::FileReading::Detected);
    const auto& inputs = step.provenance->inputs();
    if (!isDetected || inputs.empty() || inputs.back().format != Facts::InputFormat::RawBinary)
        return;
    const auto image =
        step.context->buffers.find(std::string(step.statement.textOf(Role::MakesImage)));
    if (image == step.context->buffers.end()) return;
    const auto elements = image->second.viewElements();
    // A file without a byte is reported as such, and a gap is not text.
    if (elements.empty() || elements.findUnwritten(0) != elements.size()) return;
    const std::span<const std::uint8_t> bytes(elements.values(), elements.size());
    if (!std::ranges::all_of(bytes, isText)) return;
    step.findings.report(
        Kind::UnknownText,
        inputs.back().file + " is text without a record, and its characters become the bytes",
        file->text, "FROM_FILE_BINARY says that this is meant");
}

}  // namespace Strict
