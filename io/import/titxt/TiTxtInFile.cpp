#include "io/import/titxt/TiTxtInFile.hpp"

#include <array>
#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

#include "io/InFile.hpp"
#include "io/TextLines.hpp"
#include "io/import/Malformed.hpp"

namespace Io::Import {

namespace {

using Facts::FormatFault;

constexpr std::uint8_t noDigit = 0xFF;

constexpr std::array<std::uint8_t, 256> digitValues = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(noDigit);
    for (std::uint8_t i = 0; i < 10; ++i) values['0' + i] = i;
    for (std::uint8_t i = 10; i < 16; ++i) values['A' + i - 10] = values['a' + i - 10] = i;
    return values;
}();

constexpr bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

/// Takes the lines of a file one after the other.
class Parser final : public TextInFile {
public:
    explicit Parser(const std::string& path)
        : TextInFile(path),
          lines_(path),
          data_(Facts::InputFormat::TiTxt, static_cast<std::size_t>(lines_.fileSize() / 2 + 1)) {}

    ParsedData parse() {
        while (lines_.next()) take(lines_.line());
        close(lines_);
        if (!isEnded_) refuseLine(FormatFault::EndMissing);
        if (data_.empty())
            refuse(Facts::InputFormat::TiTxt, fileName_, FormatFault::NothingToLoad, 0);
        data_.finish();
        return std::move(data_);
    }

private:
    [[noreturn]] void refuseLine(FormatFault fault, std::uint64_t number = 0) const {
        refuse(Facts::InputFormat::TiTxt, fileName_, fault, lines_.number(), number);
    }

    void take(std::string_view line) {
        while (!line.empty() && isBlank(line.back())) line.remove_suffix(1);
        while (!line.empty() && isBlank(line.front())) line.remove_prefix(1);
        if (line.empty()) return;
        if (isEnded_) refuseLine(FormatFault::AfterEnd);
        if (line == "q" || line == "Q")
            isEnded_ = true;
        else if (line.front() == '@')
            takeAddress(line.substr(1));
        else
            takeBytes(line);
    }

    void takeAddress(std::string_view digits) {
        std::uint32_t address = 0;
        const char* const end = digits.data() + digits.size();
        constexpr int base = 16;
        const auto [stop, error] = std::from_chars(digits.data(), end, address, base);
        if (error != std::errc() || stop != end) refuseLine(FormatFault::LineUnknown);
        address_ = address;
    }

    void takeBytes(std::string_view line) {
        if (!address_) refuseLine(FormatFault::AddressMissing);
        bytes_.resize(line.size() / 2 + 1);
        std::size_t count = 0;
        for (std::size_t at = 0; at < line.size();) {
            if (isBlank(line[at])) {
                ++at;
                continue;
            }
            if (line.size() - at < 2) refuseLine(FormatFault::LineUnknown);
            const std::uint8_t high = digitValues[static_cast<unsigned char>(line[at])];
            const std::uint8_t low = digitValues[static_cast<unsigned char>(line[at + 1])];
            const bool isWhole = line.size() - at == 2 || isBlank(line[at + 2]);
            if ((high | low) > 0xF || !isWhole) refuseLine(FormatFault::LineUnknown);
            bytes_[count++] = static_cast<std::uint8_t>(high << 4U | low);
            at += 3;
        }
        constexpr std::uint64_t addressSpaceEnd = std::uint64_t{1} << 32U;
        if (count > addressSpaceEnd - *address_) refuseLine(FormatFault::AddressTooHigh, *address_);
        data_.append(*address_, std::span(bytes_).first(count));
        *address_ += count;
    }

    TextLines lines_;
    ParsedData data_;
    std::optional<std::uint64_t> address_;  ///< of the next byte
    bool isEnded_ = false;
    std::vector<std::uint8_t> bytes_;
};

}  // namespace

TiTxtInFile::TiTxtInFile(const std::string& path)
    : AddressedData(Parser(path).parse(), std::nullopt) {}

}  // namespace Io::Import
