#include "parser/ScriptGrammar.hpp"
#include "parser/commands/CmdWriteFile.hpp"

namespace Parser {

using Spirit::ch_p;
using Spirit::eps_p;
using Spirit::str_p;
using WrapperLib::CmdWriteFile;
using WrapperLib::ExportFormat;

/// WRITE_FILE path WITH_BUFFERS { name ... } [option ...]
void defineWriteFile(ScriptRules& rules, ScriptParser& parser) {
    const StatementActions<CmdWriteFile> on(parser);
    rules.writeFileCmd = (str_p("WRITE_FILE")[on.begin("CmdWriteFile: Begin -> ")] >> rules.ws >>
                          rules.textArg[on.text("SetFileName -> ", &CmdWriteFile::setFileName)] >>
                          rules.writeBuffers >> rules.writeOptions)[on.end()] >>
                         rules.ws;
    rules.writeBuffers =
        rules.ws >> str_p("WITH_BUFFERS") >> rules.ws >> rules.openBrace >>
        *(rules.name[on.text("AddBufferToExportList -> ", &CmdWriteFile::addBuffer)] >>
          rules.separator) >>
        rules.closeBrace >> rules.ws;
    rules.writeOptions = *(rules.formatOption | rules.executionAddressOption);

    // One action serves the bare keyword and its underscore form. What it matched tells the two
    // apart: the keyword itself, or the number behind it.
    const auto format = [&](const char* traceText, const char* keyword, ExportFormat chosen) {
        const auto set = [&parser, keyword, chosen](CmdWriteFile& command,
                                                    const std::string& matched) {
            const bool hasNumber = matched != keyword;
            command.setFormat(chosen, hasNumber ? std::optional(parser.number()) : std::nullopt);
        };
        return on.with(traceText, set);
    };
    const auto extended = format("SetExportFormatOptionIntelHexExtended -> ", "IntelHexExtended",
                                 ExportFormat::IntelHexExtended);
    const auto segment = format("SetExportFormatOptionIntelHexSegment -> ", "IntelHexSegment",
                                ExportFormat::IntelHexSegment);
    const auto embedded = format("SetExportFormatOptionEmbeddedC_Assembler -> ",
                                 "EmbeddedC_Assembler", ExportFormat::EmbeddedC_Assembler);
    const auto motorola =
        format("SetExportFormatOptionMotorolaS -> ", "MotorolaS", ExportFormat::MotorolaS);
    rules.formatOption =
        str_p("-setFormat") >> rules.equals >>
        (str_p("RawBinary")[format("SetExportFormatOptionRawBinary -> ", "RawBinary",
                                   ExportFormat::RawBinary)] |
         (str_p("IntelHexExtended_") >> rules.value[extended]) |
         str_p("IntelHexExtended")[extended] | (str_p("IntelHexSegment_") >> rules.value[segment]) |
         str_p("IntelHexSegment")[segment] |
         (str_p("EmbeddedC_Assembler_") >> rules.value[embedded]) |
         str_p("EmbeddedC_Assembler")[embedded] | (str_p("MotorolaS_") >> rules.value[motorola]) |
         str_p("MotorolaS")[motorola]) >>
        rules.ws;

    // A bare number is the execution address; the keyword takes a name, digits or not.
    rules.executionAddressOption =
        ((str_p("-setExecutionAddress") >> rules.equals >>
          ((ch_p('.') | eps_p) >>
           rules.name)[on.text("SetExecutionStartAddress -> ", &CmdWriteFile::setSection)]) |
         rules.value[on.number("SetExecutionStartAddress -> ",
                               &CmdWriteFile::setExecutionStartAddress)]) >>
        rules.ws;
}

}  // namespace Parser
