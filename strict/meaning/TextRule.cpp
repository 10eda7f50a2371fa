#include "strict/meaning/TextRule.hpp"

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <utility>

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

std::string unknownTextOf(const Parser::Statement& statement,
                          const Parser::WrapperLib::CmdContext& context,
                          const Provenance& provenance) {
    const Part* const file = statement.last(Role::InputFile);
    const bool isDetected = file != nullptr && file->choice == static_cast<std::uint32_t>(
                                                                   Parser::FileReading::Detected);
    const auto& inputs = provenance.inputs();
    if (!isDetected || inputs.empty() || inputs.back().format != Facts::InputFormat::RawBinary)
        return "";
    const auto image = context.buffers.find(std::string(statement.textOf(Role::MakesImage)));
    if (image == context.buffers.end()) return "";
    const auto elements = image->second.viewElements();
    // A file without a byte is reported as such, and a gap is not text.
    if (elements.empty() || elements.findUnwritten(0) != elements.size()) return "";
    const std::span<const std::uint8_t> bytes(elements.values(), elements.size());
    if (!std::ranges::all_of(bytes, isText)) return "";
    return inputs.back().file + " is text without a record, and its characters become the bytes";
}

void checkUnknownText(const Step& step) {
    if (step.context == nullptr) return;
    std::string text = unknownTextOf(step.statement, *step.context, *step.provenance);
    if (!text.empty())
        step.findings.report(Kind::UnknownText, std::move(text),
                             step.statement.textOf(Role::InputFile),
                             "FROM_FILE_BINARY says that this is meant");
}

}  // namespace Strict
