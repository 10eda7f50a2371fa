#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <tuple>
#include <vector>

#include "editor/Completion.hpp"
#include "editor/Hover.hpp"
#include "editor/Structure.hpp"
#include "tests/editor/Marked.hpp"

namespace {

/// The texts of the completions, with a blank between them.
std::string completed(const Marked& place) {
    const auto found = Editor::completionsAt(*place.script, *place.mentions, place.offset);
    std::string list;
    for (const Editor::Completion& one : found.list) list += (list.empty() ? "" : " ") + one.text;
    return list;
}

TEST(CompletionTest, OffersWhatTheLanguageTakes) {
    const std::string head =
        "NEW_BUFFER @A EMPTY\nNEW_CRC @C FROM_BUFFER @A\nNEW_HASH @H FROM_BUFFER "
        "@A -setType=Hash_Sha1\n";
    // A text and all that is offered at its mark.
    const std::tuple<const char*, const char*> whole[] = {
        {"PRINT_CRC |", "@C"},
        {"PRINT_CRC @|", "@C"},
        {"PRINT_HASH |", "@H"},
        {"NEW_CRC @B FROM_BUFFERS { @A, | }", "@A"},
        {"PRINT_BUFFER @A -useAreas={{startOf(|", "@A"},
        {"PRINT_TEXT a -resolveSymbolsAsHexValue={|", "@C @H"},
        {"PRINT_TEXT a |", "-resolveSymbolsAsHexValue="},
        {"NEW_BUFFER |", ""},
        {"PRINT_TEXT {|", ""},
        {"NEW_CRC @B FROM_BUFFER @A -u|", "-useAreas= -setType= -useWordSize= -setAlignment="},
        {"NEW_BUFFER @B EMPTY -setByteOrder=|", "LittleEndian BigEndian"},
        {"// PRINT_CRC |", ""},
        {"SUBSTITUTE X WITH |", ""},
        {"SUBSTITUTE X WITH PRINT_CRC\nX |", "@C X"},
        {"INCLUDE part.tsn WITH { |", "size= name="},
        {"INCLUDE part.tsn |", "WITH { "},
        {"PARAMETER p |", "DEFAULT"},
        {"PARAMETER p\nPRINT_CRC |", "@C p"},
        {"BROKEN\nPRINT_CRC |", "@C"},
    };
    for (const auto& [text, expected] : whole)
        EXPECT_EQ(completed(Marked(head + text, {{"part.tsn", "PARAMETER size\nPARAMETER name"}})),
                  expected)
            << text;
    // A text and something that is among what is offered.
    const std::tuple<const char*, const char*> parts[] = {
        {"|", "NEW_BUFFER "},
        {"|", "INCLUDE "},
        {"NEW_|", "NEW_CRC "},
        {"NEW_BUFFER @B |", "FROM_VALUES"},
        {"NEW_CRC @B FROM_BUFFER @A -setType=|", "Catalogue{CRC-16/MODBUS}"},
        {"NEW_CRC @B FROM_BUFFER @A -setType=Catalogue{C|", "CRC-16/MODBUS"},
        {"NEW_HASH @B FROM_BUFFER @A -setType=H|", "Hash_Sha2_256"},
        {"WRITE_FILE a WITH_BUFFERS {@A} -setFormat=|", "MotorolaS"},
        {"WRITE_FILE a WITH_BUFFERS {@A} -setFormat=Uf2_R|", "Uf2_RP2040"},
        {"FILL_BUFFER @A WITH_VALUES { 1, |", "lengthOf("},
        {"NEW_BUFFER @B FROM_FILE |", "Marked.hpp"},
        {"NEW_BUFFER @B FROM_FILE {../ed|", "../editor/"},
        {"NEW_BUFFER @B FROM_FILE \"../editor/|", "../editor/Marked.hpp"},
    };
    for (const auto& [text, expected] : parts) {
        const std::string list = " " + completed(Marked(head + text)) + " ";
        EXPECT_NE(list.find(" " + std::string(expected) + " "), std::string::npos)
            << text << " offers" << list;
    }
}

TEST(HoverTest, SaysWhatIsKnown) {
    const std::tuple<const char*, const char*> table[] = {
        // Check values are those of the public catalogue of CRCs.
        {"NEW_CRC @C FROM_BUFFER @A -setType=Catalogue{CRC-16/MOD|BUS}", "check value 0x4B37"},
        {"NEW_CRC @C FROM_BUFFER @A -setType=Catalogue{CRC-16/MODBUS}\nPRINT_CRC @|C",
         "poly 0x8005, init 0xFFFF, refin true, refout true, xorout 0x0000, check value 0x4B37"},
        {"NEW_HASH @H FROM_BUFFER @A -setType=Hash_Sh|a1", "SHA-1"},
        {"NEW_BUFFER @A EMPTY -useBufferRange={0x10|00, 16}", "0x1000, decimal 4,096"},
        {"NEW_BUFFER @A EMPTY -useBufferRange={0x10|00, 16}", "0x00001000 to 0x0000100F, 16 bytes"},
        {"NEW_BUFFER @A EMPTY -useBufferRange={0x1000, 8 |+ 8}", "0x10, decimal 16"},
        {"NEW_BUFFER @|A EMPTY -useBufferRange={0x1000, 16}", "0x00001000 to 0x0000100F, 16 bytes"},
        {"NEW_BUFFER @|A FROM_FILE a.hex", "known when the script runs"},
        {"NEW_BUFFER @A EMPTY\nFILL_BUFFER @A WITH_VALUES {1, startOf|(@A)}",
         "when the statement runs"},
        {"SUBSTITUTE SIZE WITH 0x40\nNEW_BUFFER @A EMPTY -useBufferRange={0, SI|ZE}", "`0x40`"},
        {"PARAMETER size DEFAULT 7 + 1\nNEW_BUFFER @A EMPTY -useBufferRange={0, si|ze}", "`7 + 1`"},
        {"PARAMETER size\nNEW_BUFFER @A EMPTY -useBufferRange={0, si|ze}", "needs a value"},
        {"NEW_BU|FFER @A EMPTY", "makes an image"},
        {"NEW_BUFFER @A FROM_FILE ../data/srecord/no|ne.hex", "no such file"},
        {"PRINT_BUFFER @|B", "No statement makes it"},
    };
    for (const auto& [text, expected] : table) {
        const Marked place(text);
        const auto hover = Editor::hoverAt(*place.script, *place.mentions, place.offset);
        EXPECT_TRUE(hover && hover->text.find(expected) != std::string::npos)
            << text << ": " << (hover ? hover->text : "nothing");
    }
    const Marked remark("// NEW_BU|FFER\nNEW_BUFFER @A EMPTY");
    EXPECT_FALSE(Editor::hoverAt(*remark.script, *remark.mentions, remark.offset));
}

/// "file:offset" of mentions, with a star where the thing is made.
std::string placesOf(const std::vector<Editor::Mention>& mentions) {
    std::string text;
    for (const Editor::Mention& one : mentions)
        text += (text.empty() ? "" : " ") + std::to_string(one.where.file) + ":" +
                std::to_string(one.where.where.at) + (one.isMaking ? "*" : "");
    return text;
}

TEST(MentionsTest, FindsAThingEverywhere) {
    const std::map<std::string, std::string> files{
        {"crc.tsn", "PARAMETER image\nNEW_CRC @C FROM_BUFFER image\n"},
        {"both.tsn", "PARAMETER n\nNEW_BUFFER n EMPTY\nNEW_CRC n FROM_BUFFER n\n"}};
    const std::tuple<const char*, const char*> table[] = {
        {"NEW_BUFFER @A EMPTY\nPRINT_BUFFER @|A", "0:11* 0:33"},
        {"NEW_BUFFER @A EMPTY\nNEW_CRC @A FROM_BUFFER @A\nPRINT_CRC |@A", "0:28* 0:56"},
        {"NEW_CRC @C FROM_BUFFER @A\nPRINT_TEXT {C @C} -resolveSymbolsAsHexValue={@|C}",
         "0:8* 0:40 0:71"},
        {"NEW_BUFFER @A EMPTY\nPRINT_TEXT {[startOf(@A|)]}", "0:11* 0:41"},
        {"INCLUDE crc.tsn WITH { image=@A }\nPRINT_CRC @|C", "0:44 1:24*"},
        {"NEW_BUFFER @|A EMPTY\nINCLUDE crc.tsn WITH { image=@A }\n", "0:11* 0:49 1:39"},
        {"INCLUDE crc.tsn WITH { im|age=@A }", "0:23 1:10* 1:39"},
        {"PARAMETER p DEFAULT @A\nPRINT_BUFFER |p", "0:10* 0:36"},
        {"NEW_BUFFER @A EMPTY\nPRINT_BUFFER @|B\nBROKEN", "0:33"},
    };
    for (const auto& [text, expected] : table) {
        const Marked place(text, files);
        const Editor::Mention* const here = place.mentions->at(0, place.offset);
        ASSERT_NE(here, nullptr) << text;
        EXPECT_EQ(placesOf(place.mentions->ofSame(*here)), expected) << text;
    }
}

TEST(MentionsTest, RenamesWhatAScriptWrites) {
    const std::map<std::string, std::string> files{
        {"crc.tsn", "PARAMETER image\nNEW_CRC @C FROM_BUFFER image\n"},
        {"both.tsn", "PARAMETER n\nNEW_BUFFER n EMPTY\nNEW_CRC n FROM_BUFFER n\n"}};
    // What is to be renamed, its new name, and the places or the obstacle.
    const std::tuple<const char*, const char*, const char*> table[] = {
        {"NEW_BUFFER @|A EMPTY\nINCLUDE crc.tsn WITH { image=@A }\n", "@B", "0:11* 0:49"},
        {"INCLUDE both.tsn WITH { n=@|A }\nPRINT_CRC @A\nPRINT_BUFFER @A", "@B", "0:26 0:41 0:57"},
        {"NEW_BUFFER @|A EMPTY\nNEW_BUFFER @B EMPTY", "@B", "there is already an image called @B"},
        {"NEW_BUFFER @|A EMPTY\nNEW_CRC @B FROM_BUFFER @A", "@B", "0:11* 0:43"},
        {"NEW_BUFFER @|A EMPTY", "a b", "a name consists of letters, digits and # @ _ - ! < > &"},
        {"NEW_BUFFER @|A EMPTY", "EMPTY", "EMPTY is a word of the language"},
        {"SUBSTITUTE IMG WITH @A\nNEW_BUFFER IMG EMPTY\nPRINT_BUFFER @|A", "@B",
         "a variable or a parameter gives this name in script.tsn"},
        {"PARAMETER p\nPRINT_BUFFER |p", "9p",
         "a name consists of letters, digits and # @ _ - ! < > &"},
    };
    for (const auto& [text, name, expected] : table) {
        const Marked place(text, files);
        const Editor::Mention* const here = place.mentions->at(0, place.offset);
        ASSERT_NE(here, nullptr) << text;
        const std::string obstacle =
            Editor::obstacleToRename(*place.script, *place.mentions, *here, name);
        EXPECT_EQ(obstacle.empty() ? placesOf(place.mentions->toRename(*here)) : obstacle, expected)
            << text;
    }
}

TEST(StructureTest, ShowsAScriptAsAWhole) {
    const Marked script(
        "// one\n// two\nPARAMETER at DEFAULT 4\nSUBSTITUTE LEN WITH 8\nINCLUDE crc.tsn\n"
        "NEW_BUFFER @A EMPTY\n    -useBufferRange={at, LEN} // end\n"
        "WRITE_FILE {a b} WITH_BUFFERS { @A } -setFormat=TiTxt\nFILL_BUFFER @A WITH_STRING \"x\"\n",
        {{"crc.tsn", "NEW_CRC @C FROM_BUFFER @A"}});
    const std::string_view text = script.script->text();
    std::string outline;
    for (const auto& entry : Editor::outlineOf(*script.script)) outline += entry.name + ";";
    EXPECT_EQ(outline, "at;crc.tsn;@A;{a b};");
    std::string folds;
    for (const auto& fold : Editor::foldsOf(*script.script))
        folds += std::string(fold.where.in(text).substr(0, 10)) + (fold.isRemark ? "!" : "") + ";";
    EXPECT_EQ(folds, "// one\n// !;NEW_BUFFER;");
    std::string tokens;
    constexpr std::array kinds{"remark",    "keyword",  "option", "function", "image", "value",
                               "parameter", "variable", "word",   "number",   "string"};
    for (const auto& token : Editor::tokensOf(*script.script, *script.mentions))
        tokens += std::string(token.where.in(text)) + "=" +
                  kinds.at(static_cast<std::size_t>(token.kind)) + (token.isMaking ? "*" : "") +
                  " ";
    EXPECT_EQ(
        tokens,
        "// one=remark // two=remark PARAMETER=keyword at=parameter* DEFAULT=keyword 4=string "
        "SUBSTITUTE=keyword LEN=variable* WITH=keyword 8=string INCLUDE=keyword crc.tsn=string "
        "NEW_BUFFER=keyword @A=image* EMPTY=keyword -useBufferRange=option at=parameter "
        "LEN=variable // end=remark WRITE_FILE=keyword {a b}=string WITH_BUFFERS=keyword "
        "@A=image -setFormat=option TiTxt=word FILL_BUFFER=keyword @A=image "
        "WITH_STRING=keyword x=string ");
}

}  // namespace
