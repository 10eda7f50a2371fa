#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "facts/FieldFacts.hpp"
#include "strict/diagnostics/Circumstances.hpp"
#include "strict/diagnostics/Kinds.hpp"

namespace Strict {

/// A diagnostic about a file that was read. Its views are valid as long as those of the fact.
struct FieldWords {
    Kind kind;
    std::string text;
    std::string hint;
    std::string_view file;
    std::uint64_t line = 0;  ///< of the file; 0 for the file as a whole
    std::size_t column = 0;  ///< in bytes, counted from 1; 0 for the whole line
    std::string_view excerpt = {};
    std::uint64_t count = 1;  ///< findings that it sums up
};

FieldWords wordsFor(const Facts::FieldFact& fact, OptionsOf options);

}  // namespace Strict
