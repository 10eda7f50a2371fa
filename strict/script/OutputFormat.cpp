#include "strict/script/OutputFormat.hpp"

namespace Strict {

const Parser::WrapperLib::ExportFormat& outputFormatOf(const Parser::Statement& statement) {
    using Parser::WrapperLib::CmdWriteFile;
    const Parser::Part* const format = statement.last(Parser::Role::Format);
    return format == nullptr ? *CmdWriteFile::formatNamed(CmdWriteFile::usualFormat)
                             : CmdWriteFile::formats()[format->choice];
}

}  // namespace Strict
