#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "parser/commands/CmdWriteFile.hpp"

/// What to write for an algorithm, a device or a format that was typed under a name that the
/// language does not have. Nothing leads to another algorithm, device or format than the name says.
namespace Strict {

struct TypeAdvice {
    std::string hint;                ///< with what can be typed in place of the word, or empty
    std::vector<std::string> notes;  ///< what tells several candidates apart, one each
    std::vector<std::string> choices = {};  ///< the candidates
};

/// For a word that is not a type of NEW_CRC.
TypeAdvice adviceOnCrcType(std::string_view word);

/// For a word in the braces of Catalogue{...} that is not a name of the catalogue.
TypeAdvice adviceOnCatalogueName(std::string_view word);

/// For a word that is not a type of NEW_HASH.
TypeAdvice adviceOnHashType(std::string_view word);

/// For a word that is not a type of NEW_SIGNATURE.
TypeAdvice adviceOnSignatureType(std::string_view word);

/// For a word that is not a format of WRITE_FILE.
TypeAdvice adviceOnFormat(std::string_view word);

/// For a word after the underscore of a format that takes a name there, such as Uf2.
TypeAdvice adviceOnFormatName(const Parser::WrapperLib::ExportFormat& format,
                              std::string_view word);

}  // namespace Strict
