#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <tuple>
#include <vector>

#include "lsp/Session.hpp"
#include "lsp/Uri.hpp"
#include "strict/diagnostics/Uri.hpp"

namespace {

using Json = nlohmann::json;
using Lsp::Session;

constexpr const char* uri = "untitled:script.tsn";

/// A client that sends what it likes.
class Client {
public:
    /// The result or the error of a request.
    Json ask(const std::string& method, Json params = nullptr) {
        const auto answer = session.take(
            Json{{"jsonrpc", "2.0"}, {"id", ++id_}, {"method", method}, {"params", params}}.dump());
        const Json json = Json::parse(answer.value());
        EXPECT_EQ(json["id"], id_);
        return json.contains("error") ? json["error"] : json["result"];
    }

    void tell(const std::string& method, Json params = nullptr) {
        const auto answer =
            session.take(Json{{"jsonrpc", "2.0"}, {"method", method}, {"params", params}}.dump());
        EXPECT_FALSE(answer) << *answer;
    }

    void open(const std::string& text) {
        ask("initialize", {{"capabilities", Json::object()}});
        tell("textDocument/didOpen",
             {{"textDocument", {{"uri", uri}, {"version", 1}, {"text", text}}}});
    }

    void change(Json range, const std::string& text) {
        Json change{{"text", text}};
        if (!range.is_null()) change["range"] = range;
        tell("textDocument/didChange",
             {{"textDocument", {{"uri", uri}, {"version", 2}}}, {"contentChanges", {change}}});
    }

    /// The diagnostics that are sent now.
    Json diagnostics() {
        const std::vector<std::string> messages = session.update();
        return messages.empty() ? Json() : Json::parse(messages.back())["params"]["diagnostics"];
    }

    Session session;

private:
    int id_ = 0;
};

Json range(int line, int from, int last, int to) {
    return {{"start", {{"line", line}, {"character", from}}},
            {"end", {{"line", last}, {"character", to}}}};
}

Json at(int line, int character) {
    return {{"textDocument", {{"uri", uri}}},
            {"position", {{"line", line}, {"character", character}}}};
}

TEST(SessionTest, RefusesWhatIsOutOfOrder) {
    Client client;
    EXPECT_EQ(client.ask("textDocument/hover", at(0, 0))["code"], -32002);
    client.tell("textDocument/didOpen", {{"textDocument", {{"uri", uri}, {"text", ""}}}});
    EXPECT_TRUE(client.ask("initialize").contains("capabilities"));
    EXPECT_EQ(client.ask("initialize")["code"], -32600);
    EXPECT_EQ(client.ask("textDocument/hover", at(0, 0))["code"], -32602) << "nothing is open";
    EXPECT_EQ(client.ask("textDocument/hover")["code"], -32602);
    EXPECT_EQ(client.ask("textDocument/unknown")["code"], -32601);
    client.tell("textDocument/didChange", {{"textDocument", 7}, {"contentChanges", "x"}});
    client.tell("textDocument/didClose", {{"textDocument", {{"uri", "file:///none"}}}});
    EXPECT_EQ(client.ask("shutdown"), nullptr);
    EXPECT_EQ(client.ask("textDocument/hover", at(0, 0))["code"], -32600);
    EXPECT_FALSE(client.session.isOver());
    client.tell("exit");
    EXPECT_TRUE(client.session.isOver());
}

TEST(SessionTest, AnswersWhatIsNoRequest) {
    const std::tuple<std::string, int> table[] = {
        {"", -32700},
        {"{", -32700},
        {"\xFF", -32700},
        {R"({"id": "\ud800"})", -32700},
        {"[]", -32600},
        {"null", -32600},
        {R"({"id": {}, "method": "shutdown"})", -32600},
        {R"({"id": 1})", -32600},
        {R"({"id": 1, "method": 7})", -32600},
        {std::string(100'000, '['), -32700},
        {R"({"id": 1, "method": "shutdown", "params": )" + std::string(100'000, '[') +
             std::string(100'000, ']') + "}",
         -32002},
    };
    for (const auto& [message, code] : table) {
        const auto answer = Session().take(message);
        ASSERT_TRUE(answer) << message.substr(0, 60);
        EXPECT_EQ(Json::parse(*answer)["error"]["code"], code) << message.substr(0, 60);
    }
    EXPECT_FALSE(Session().take(R"({"id": 1, "result": null})")) << "an answer needs no answer";
}

TEST(SessionTest, ShowsDiagnosticsOfTheTextAtThatMoment) {
    Client client;
    client.open("NEW_BUFFER @App EMPTY\nPRINT_BUFFER @Ap\n");
    Json found = client.diagnostics();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0]["code"], "unknown-name");
    EXPECT_EQ(found[0]["range"], range(1, 13, 1, 16));
    EXPECT_EQ(found[0]["severity"], 1);
    EXPECT_EQ(found[0]["message"], "no image is called @Ap\ndid you mean @App (line 1)?");
    const Json actions =
        client.ask("textDocument/codeAction", {{"textDocument", {{"uri", uri}}},
                                               {"range", range(1, 14, 1, 14)},
                                               {"context", {{"diagnostics", Json::array()}}}});
    ASSERT_EQ(actions.size(), 1U);
    const Json edit = actions[0]["edit"]["changes"][uri][0];
    client.change(edit["range"], edit["newText"]);
    EXPECT_EQ(client.diagnostics(), Json::array());
    EXPECT_EQ(client.diagnostics(), nullptr) << "nothing is due";
    // In UTF-16, the symbol before the name has two units.
    client.change(nullptr, "PRINT_TEXT {\xF0\x9D\x84\x9E} PRINT_CRC @C");
    found = client.diagnostics();
    EXPECT_EQ(found[0]["range"], range(0, 26, 0, 28));
    client.change(range(0, 26, 0, 99), "@D\nx");
    EXPECT_EQ(client.diagnostics().back()["message"].get<std::string>().substr(0, 9), "expected ");
    client.tell("textDocument/didClose", {{"textDocument", {{"uri", uri}}}});
    EXPECT_EQ(client.ask("textDocument/hover", at(0, 0))["code"], -32602);
}

TEST(SessionTest, KnowsTheScriptsThatIncludeAFile) {
    constexpr const char* part = "untitled:part.tsn";
    Client client;
    client.open("NEW_BUFFER @App FROM_VALUES { 1 }\nINCLUDE part.tsn\nPRINT_CRC @Crc\n");
    EXPECT_EQ(client.diagnostics()[0]["code"], "cannot-open");
    client.tell("textDocument/didOpen",
                {{"textDocument", {{"uri", part}, {"text", "NEW_CRC @Crc FROM_BUFFER @App\n"}}}});
    // Both are due: the part alone has no image, and the script is whole now.
    std::map<std::string, std::size_t> found;
    for (const std::string& message : client.session.update()) {
        const Json params = Json::parse(message)["params"];
        found[params["uri"]] = params["diagnostics"].size();
    }
    EXPECT_EQ(found, (std::map<std::string, std::size_t>{{uri, 0}, {part, 1}}));
    Json place = at(0, 27);
    place["textDocument"]["uri"] = part;
    EXPECT_EQ(client.ask("textDocument/definition", place),
              (Json{{"uri", uri}, {"range", range(0, 11, 0, 15)}}));
    place["position"]["character"] = 9;
    place["newName"] = "@Sum";
    const Json changes = client.ask("textDocument/rename", place)["changes"];
    EXPECT_EQ(changes[part][0]["range"], range(0, 8, 0, 12));
    EXPECT_EQ(changes[uri][0]["range"], range(2, 10, 2, 14));
    client.tell("textDocument/didClose", {{"textDocument", {{"uri", part}}}});
    EXPECT_EQ(client.diagnostics()[0]["code"], "cannot-open");
}

TEST(SessionTest, CountsInBytesIfTheClientDoes) {
    Client client;
    client.ask("initialize", {{"capabilities", {{"general", {{"positionEncodings", {"utf-8"}}}}}}});
    client.tell(
        "textDocument/didOpen",
        {{"textDocument", {{"uri", uri}, {"text", "PRINT_TEXT {\xF0\x9D\x84\x9E} PRINT_CRC @C"}}}});
    EXPECT_EQ(client.diagnostics()[0]["range"], range(0, 28, 0, 30));
}

TEST(SessionTest, TakesSettings) {
    Client client;
    client.ask(
        "initialize",
        {{"initializationOptions",
          {{"variables", {{"size", "4"}, {"other", "1"}}}, {"error", {"unused-image", 7}}}}});
    client.tell("textDocument/didOpen",
                {{"textDocument",
                  {{"uri", uri},
                   {"text",
                    "PARAMETER size\nNEW_BUFFER @A EMPTY -useBufferRange={0, size}\n"
                    "NEW_BUFFER @B EMPTY -useBufferRange={0, 4}\n"
                    "WRITE_FILE a.hex WITH_BUFFERS { @A }"}}}});
    Json found = client.diagnostics();
    ASSERT_EQ(found.size(), 1U) << found;
    EXPECT_EQ(found[0]["code"], "unused-image");
    EXPECT_EQ(found[0]["severity"], 1);
    client.tell("workspace/didChangeConfiguration",
                {{"settings", {{"tessaron", {{"ignore", {"unused-image"}}}}}}});
    found = client.diagnostics();
    ASSERT_EQ(found.size(), 1U) << found;
    EXPECT_EQ(found[0]["code"], "missing-parameter");
}

TEST(SessionTest, DoesNotLookAtAGiganticScript) {
    Client client;
    client.open(std::string(Lsp::Documents::longestText + 1, '\n'));
    const Json found = client.diagnostics();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_NE(found[0]["message"].get<std::string>().find("too long"), std::string::npos);
    EXPECT_EQ(client.ask("textDocument/hover", at(0, 0))["code"], -32803);
    client.change(range(0, 0, 0, 0), "x");
    client.change(nullptr, "PRINT_CRC @C");
    EXPECT_EQ(client.diagnostics()[0]["code"], "unknown-name");
}

TEST(UriTest, LeadsToAPathAndBack) {
    EXPECT_EQ(Lsp::pathOf("file:///a%20b/%C3%A4.tsn"), "/a b/\xC3\xA4.tsn");
    EXPECT_EQ(Lsp::pathOf("file://localhost/a"), "/a");
    EXPECT_EQ(Lsp::pathOf("file:///a%2"), "/a%2");
    EXPECT_EQ(Lsp::pathOf("file:///a%00b"), std::nullopt);
    EXPECT_EQ(Lsp::pathOf("untitled:x"), std::nullopt);
    EXPECT_EQ(Strict::uriOf("/a b/\xC3\xA4.tsn"), "file:///a%20b/%C3%A4.tsn");
    EXPECT_EQ(Strict::uriOf("a:b"), "a%3Ab") << "a relative path has no scheme";
}

}  // namespace
