#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "parser/grammar/ScriptGrammar.hpp"

namespace {

using namespace Parser;

/// The result of a parse.
struct Parsed {
    std::size_t length;
    std::size_t statements;
    std::string lastCommand;
    std::string lastTokens;
};

Parsed parse(const std::string& text) {
    ParserState state(nullptr);
    const ScriptRules rules(state);
    state.beginText(text.size());
    const auto info = Spirit::parse(text.data(), text.data() + text.size(), rules.script);
    return {static_cast<std::size_t>(info.length), state.statement.commands().size(),
            state.statement.lastCommand(), state.statement.lastTokens()};
}

struct Parse {
    const char* text;
    std::size_t matched;  ///< of the text's characters
    std::size_t statements;
    const char* tokens;
};

constexpr std::size_t all = std::string::npos;

void expectRows(const std::vector<Parse>& rows) {
    for (const Parse& row : rows) {
        const Parsed parsed = parse(row.text);
        const std::size_t length = row.matched == all ? std::string(row.text).size() : row.matched;
        EXPECT_EQ(parsed.length, length) << row.text;
        EXPECT_EQ(parsed.statements, row.statements) << row.text;
        EXPECT_EQ(parsed.lastTokens, row.tokens) << row.text;
    }
}

TEST(GrammarTest, TheLongerKeywordComesFirstAndTheFirstMatchWins) {
    expectRows({
        {"NEW_BUFFER A FROM_BUFFERS {B C}", all, 1,
         "CmdNewBuffer: Begin -> SetName -> AddBufferAsSource -> AddBufferAsSource -> End"},
        {"NEW_BUFFER A FROM_BUFFERSx", all, 1,
         "CmdNewBuffer: Begin -> SetName -> AddBufferAsSource -> End"},
        {"NEW_BUFFER A FROM_FILE_BINARY f", all, 1,
         "CmdNewBuffer: Begin -> SetName -> SetRawFileAsSource -> End"},
        {"NEW_BUFFER A FROM_FILE f", all, 1,
         "CmdNewBuffer: Begin -> SetName -> SetFileAsSource -> End"},
        {"NEW_BUFFERabc EMPTY", all, 1, "CmdNewBuffer: Begin -> SetName -> End"},
        {"NEW_CRC C FROM_BUFFER A -setType=Crc16_Ccitt", all, 1,
         "CmdNewCrc: Begin -> SetCrcName -> AddFromBuffer -> SetCrc_Crc16_Ccitt -> End"},
        {"NEW_HASH H FROM_BUFFER A -setType=Hash_Ripemd_128", all, 1,
         "CmdNewHash: Begin -> SetHashName -> AddFromBuffer -> SetHash_Hash_Ripemd128 -> End"},
        {"NEW_HASH H FROM_KEY k.pem -setType=Hash_Sha1", all, 1,
         "CmdNewHash: Begin -> SetHashName -> SetKeyFile -> SetHash_Hash_Sha1 -> End"},
        {"NEW_SIGNATURE S FROM_FILE f", all, 1,
         "CmdNewSignature: Begin -> SetSignatureName -> SetSignatureFile -> End"},
        {"NEW_SIGNATURE S FROM_STORED A -useAreas={{0, 64}}", all, 1,
         "CmdNewSignature: Begin -> SetSignatureName -> SetStored -> AddFromBuffer -> AddArea -> "
         "End"},
        {"NEW_SIGNATURE S FROM_BUFFERS {A} -setKeyFile='k 1.pem' -setType=EcdsaP256_Sha256 "
         "-setSignatureForm=Der",
         all, 1,
         "CmdNewSignature: Begin -> SetSignatureName -> AddFromBuffer -> SetKeyFile -> "
         "SetSignature_EcdsaP256_Sha256 -> SetSignatureForm_Der -> End"},
        // What is taken as it is has neither a type nor a key.
        {"NEW_SIGNATURE S FROM_FILE f -setKeyFile=k", 28, 1,
         "CmdNewSignature: Begin -> SetSignatureName -> SetSignatureFile -> End"},
        {"NEW_SIGNATURE S FROM_STORED A -setType=Ed25519", 30, 1,
         "CmdNewSignature: Begin -> SetSignatureName -> SetStored -> AddFromBuffer -> End"},
        {"VERIFY_SIGNATURE S FROM_FILE f", 0, 0, "CmdVerifySignature: Begin -> SetName -> "},
        {"WRITE_FILE f WITH_BUFFERS {A} -setFormat=IntelHexExtended_32", all, 1,
         "CmdWriteFile: Begin -> SetFileName -> AddBufferToExportList -> "
         "SetExportFormatOptionIntelHexExtended -> End"},
        {"WRITE_FILE f WITH_BUFFERS {A} -setFormat=MotorolaS19", all, 1,
         "CmdWriteFile: Begin -> SetFileName -> AddBufferToExportList -> "
         "SetExportFormatOptionMotorolaS -> SetExecutionStartAddress -> End"},
        {"WRITE_FILE f WITH_BUFFERS {A} -setElfTemplate=a.elf -setFormat=Elf", all, 1,
         "CmdWriteFile: Begin -> SetFileName -> AddBufferToExportList -> SetElfTemplate -> "
         "SetExportFormatOptionElf -> End"},
        {"WRITE_FILE f WITH_BUFFERS {A} -setFormat=Elf", 0, 0,
         "CmdWriteFile: Begin -> SetFileName -> AddBufferToExportList -> "
         "SetExportFormatOptionElf -> "},
        // The form with a number fails, the bare one wins and leaves the underscore.
        {"WRITE_FILE f WITH_BUFFERS {A} -setFormat=MotorolaS_x", 50, 1,
         "CmdWriteFile: Begin -> SetFileName -> AddBufferToExportList -> "
         "SetExportFormatOptionMotorolaS -> End"},
        {"WRITE_FILE f WITH_BUFFERS {A} -setFormat=RawBinary_1", 50, 1,
         "CmdWriteFile: Begin -> SetFileName -> AddBufferToExportList -> "
         "SetExportFormatOptionRawBinary -> End"},
    });
}

TEST(GrammarTest, AFailedStatementLeavesItsTrace) {
    expectRows({
        {"", all, 0, ""},
        {"PRINT_HASH @A\nPRINT_HASH", 14, 1, "CmdPrintHash_Begin: Begin -> "},
        {"PRINT_HASH @A\nprint_hash @B", 14, 1, "CmdPrintHash_Begin: Begin -> SetName -> End"},
        {"NEW_BUFFER @A FROM_VALUES {1, ,2}", 0, 0, "CmdNewBuffer: Begin -> SetName -> "},
        {"NEW_BUFFER @A EMPTY -useAreas={{0x100 0x10}}", 20, 1,
         "CmdNewBuffer: Begin -> SetName -> End"},
        {"NEW_BUFFER @A EMPTY -useAreas={{0x100; 0x10},{1\n2}}", all, 1,
         "CmdNewBuffer: Begin -> SetName -> AddArea -> AddArea -> End"},
        {"FILL_BUFFER @A WITH_STRING \"ab", 0, 0,
         "CmdFillBuffer: Begin -> SetName -> SetFillString -> "},
        {"PRINT_TEXT {a} -resolveSymbolsAsHexValue={B C}", all, 1,
         "CmdPrintText_Begin: Begin -> AddResolveSymbolName -> AddResolveSymbolName -> "
         "SetFileAsSource -> End"},
        {"CALCULATE x [1] ] PRINT_HASH @A", 16, 0, ""},
    });
    EXPECT_EQ(parse("PRINT_HASH @A\nPRINT_HASH").lastCommand, "");
    EXPECT_EQ(parse("PRINT_HASH  @A\nx").lastCommand, "PRINT_HASH  @A\n");
}

}  // namespace
