#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>

#include "io/NamedNumber.hpp"
#include "parser/grammar/ScriptGrammar.hpp"

namespace Parser {

/// One of the names of a list of numbers, as a whole word.
class NumberName : public Spirit::parser<NumberName> {
public:
    using Names = std::span<const Io::NamedNumber> (*)();

    /// @param number  set to the number of the last match
    NumberName(ParserState& state, Names names, std::uint32_t& number)
        : state_(&state), names_(names), number_(&number) {}

    template <class ScannerT>
    typename Spirit::parser_result<NumberName, ScannerT>::type parse(const ScannerT& scan) const {
        constexpr std::string_view letters =
            "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-";
        const Position first = scan.first;
        std::string_view word(first, static_cast<std::size_t>(scan.last - first));
        word = word.substr(0, word.find_first_not_of(letters));
        const auto names = names_();
        const auto found = std::ranges::find(names, word, &Io::NamedNumber::name);
        if (found == names.end()) {
            if (state_->expectations != nullptr)
                for (const auto& known : names) state_->expectations->miss(first, known.name);
            return scan.no_match();
        }
        *number_ = found->number;
        scan.first = first + word.size();
        return scan.create_match(word.size(), Spirit::nil_t(), first, scan.first);
    }

private:
    ParserState* state_;
    Names names_;
    std::uint32_t* number_;
};

}  // namespace Parser
