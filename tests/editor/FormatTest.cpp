#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "editor/Format.hpp"

namespace {

using Editor::FormatOutcome;

std::string formatted(const std::string& text) {
    const Editor::Formatting formatting = Editor::format("script.tsn", text, {}, {});
    return formatting.outcome == FormatOutcome::Formatted ? Editor::edited(text, formatting.edits)
                                                          : "not formatted";
}

TEST(FormatTest, ChangesBlanksAndLineBreaksOnly) {
    const std::tuple<const char*, const char*, const char*> table[] = {
        {"words", "NEW_BUFFER \t @A   EMPTY", "NEW_BUFFER @A EMPTY\n"},
        {"lists", "NEW_BUFFER @A FROM_VALUES {1,2 ;3} -useAreas = { { 0 ,1 } {2,1} }",
         "NEW_BUFFER @A FROM_VALUES { 1, 2; 3 } -useAreas={{0, 1} {2, 1}}\n"},
        {"no list", "WRITE_FILE a WITH_BUFFERS { }", "WRITE_FILE a WITH_BUFFERS {}\n"},
        {"numbers", "WRITE_FILE a WITH_BUFFERS {@A} 0x10  +  ( endOf ( @A ) )",
         "WRITE_FILE a WITH_BUFFERS { @A } 0x10 + (endOf(@A))\n"},
        {"types", "NEW_CRC @C FROM_BUFFER @A -setType = Custom{ 8,7,0,false,false,0 }",
         "NEW_CRC @C FROM_BUFFER @A -setType=Custom{8, 7, 0, false, false, 0}\n"},
        {"texts", "PRINT_TEXT {  two  , }\nFILL_BUFFER @A WITH_STRING \" a  b \" -useAreas={{0,4}}",
         "PRINT_TEXT {  two  , }\nFILL_BUFFER @A WITH_STRING \" a  b \" -useAreas={{0, 4}}\n"},
        {"bare texts", "PRINT_TEXT a,{b=( -resolveSymbolsAsHexValue={a}",
         "PRINT_TEXT a,{b=( -resolveSymbolsAsHexValue={a}\n"},
        {"lines", "\n\nPRINT_TEXT a PRINT_TEXT b\n\n\n\nPRINT_TEXT c\n\n",
         "PRINT_TEXT a\nPRINT_TEXT b\n\nPRINT_TEXT c\n"},
        {"broken lines", "  NEW_CRC @C FROM_BUFFER @A\n\n-useAreas={{0,\n1}}",
         "NEW_CRC @C FROM_BUFFER @A\n        -useAreas={{0,\n        1}}\n"},
        {"remarks", "  // one\nPRINT_TEXT a // two\n\n\n// three",
         "// one\nPRINT_TEXT a // two\n\n// three\n"},
        {"columns of remarks", "PRINT_TEXT  a   // kept\nPRINT_CRC\t@C//moved",
         "PRINT_TEXT a    // kept\nPRINT_CRC @C      //moved\n"},
        {"a remark in a statement", "NEW_BUFFER @A // why\n EMPTY\n // end\nPRINT_TEXT a",
         "NEW_BUFFER @A // why\n           EMPTY\n// end\nPRINT_TEXT a\n"},
        {"substitutions", "  SUBSTITUTE  A  WITH  b  c  \nPRINT_TEXT {A}",
         "SUBSTITUTE  A  WITH  b  c\nPRINT_TEXT {A}\n"},
        {"a substitution by nothing", "SUBSTITUTE A WITH \nPRINT_TEXT bA",
         "SUBSTITUTE A WITH \nPRINT_TEXT bA\n"},
        {"directives", " PARAMETER  n   DEFAULT  {1,  2}  // of n\nPRINT_TEXT n",
         "PARAMETER n DEFAULT {1,  2}       // of n\nPRINT_TEXT n\n"},
        {"parameters without values",
         "PARAMETER at\nPARAMETER kind\nNEW_CRC @C FROM_BUFFER @A -useAreas={ {at , 1} } "
         "-setType=kind",
         "PARAMETER at\nPARAMETER kind\nNEW_CRC @C FROM_BUFFER @A -useAreas={{at, 1}} "
         "-setType=kind\n"},
        {"files that are missing", "INCLUDE   {a  b.tsn} WITH {x=1,\ny = {2,3}}\nPRINT_TEXT  a",
         "INCLUDE {a  b.tsn} WITH { x=1,\n        y={2,3} }\nPRINT_TEXT a\n"},
        {"no statement", "PRINT_TEXT  a\nCALCULATE  [ 1+1 ]", "PRINT_TEXT a\nCALCULATE  [ 1+1 ]\n"},
        {"nothing", " \n\t", ""},
        {"a syntax error", "PRINT_TEXT  a\nNEW_BUFFER  @A  EMPTTY", "not formatted"},
    };
    for (const auto& [what, text, expected] : table) {
        EXPECT_EQ(formatted(text), expected) << what;
        EXPECT_EQ(formatted(expected), expected) << what << ", once more";
    }
}

TEST(FormatTest, KeepsTheLineEndsOfAFile) {
    const Editor::Text text("\xEF\xBB\xBFPRINT_TEXT  a\r\n\r\n\r\nPRINT_TEXT b");
    const auto formatting = Editor::format("script.tsn", text.read(), {}, {});
    std::vector<Editor::Edit> edits;
    for (const Editor::Edit& edit : formatting.edits) edits.push_back(text.rawOf(edit));
    EXPECT_EQ(Editor::edited(text.raw(), edits),
              "\xEF\xBB\xBFPRINT_TEXT a\r\n\r\nPRINT_TEXT b\r\n");
}

}  // namespace
