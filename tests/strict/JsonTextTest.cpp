#include "inspect/JsonText.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <string_view>

#include "inspect/Json.hpp"

namespace Inspect {
namespace {

TEST(JsonTextTest, PiecesAreTheTextOfTheWhole) {
    constexpr auto most = std::numeric_limits<std::uint64_t>::max();
    std::string text;
    JsonText json([&text](std::string_view piece) { text += piece; });
    json.addText("plain", "@Flash ~");
    json.addText("say \"x\"", "C:\\a\n\xE2\x80\xAE\xFF\xC3\xA9");
    json.addNumber("most", most);
    json.openObject("nothing");
    json.close();
    json.openList("list");
    json.addNumber(0);
    json.addText("");
    json.openObject();
    json.addArea({0x10, 2});
    json.addAreas("none", {});
    json.addAreas("two", {{0, 1}, {0xFFFFFFFF, 3}});
    json.close();
    json.close();
    json.addFlag("yes", true);
    json.addFlag("no", false);
    json.finish();

    const Json wanted{{"plain", "@Flash ~"},
                      {"say \"x\"", "C:\\a\n\xE2\x80\xAE\xEF\xBF\xBD\xC3\xA9"},
                      {"most", most},
                      {"nothing", Json::object()},
                      {"list",
                       {0,
                        "",
                        {{"start", "0x00000010"},
                         {"length", 2},
                         {"none", Json::array()},
                         {"two",
                          {{{"start", "0x00000000"}, {"length", 1}},
                           {{"start", "0xFFFFFFFF"}, {"length", 3}}}}}}},
                      {"yes", true},
                      {"no", false}};
    EXPECT_EQ(Json::parse(text), wanted);
    EXPECT_EQ(text, dump(wanted));
    EXPECT_NE(text.find("\\u202E"), std::string::npos) << "it would turn the line on a terminal";
}

}  // namespace
}  // namespace Inspect
