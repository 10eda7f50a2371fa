// The language server: messages in a stream of any bytes, and questions about a script of any text.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <new>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "editor/Format.hpp"
#include "fuzz/Check.hpp"
#include "fuzz/PlatformInMemory.hpp"
#include "lsp/MessageReader.hpp"
#include "lsp/Session.hpp"

namespace {

using Fuzz::check;
using Json = nlohmann::json;

constexpr const char* uri = "untitled:script.tsn";

/// Answers are messages, and no request makes the server fail.
void checkAnswer(const std::string& answer) {
    const Json json = Json::parse(answer);
    check(json.contains("result") != json.contains("error"), "an answer is a result or an error");
    if (!json.contains("error")) return;
    const std::string text = json["error"]["message"];
    check(json["error"]["code"] != -32603 || text == "there is not enough memory",
          "no request makes the server fail");
}

void takeStream(std::string_view bytes) {
    Lsp::MessageReader reader;
    Lsp::Session session;
    std::string message;
    while (!bytes.empty()) {
        const std::size_t size = 1 + static_cast<unsigned char>(bytes.front()) % 64;
        reader.add(bytes.substr(0, size));
        bytes.remove_prefix(std::min(size, bytes.size()));
        for (auto outcome = reader.next(message); outcome != Lsp::MessageReader::Outcome::Nothing;
             outcome = reader.next(message)) {
            if (outcome != Lsp::MessageReader::Outcome::Message) continue;
            if (const auto answer = session.take(message)) checkAnswer(*answer);
        }
        session.update();
    }
}

/// Asks each question at a place of a script.
class Client {
public:
    explicit Client(const std::string& text) {
        ask("initialize", Json::object());
        tell("textDocument/didOpen", {{"textDocument", {{"uri", uri}, {"text", text}}}});
        session_.update();
    }

    void askAll(std::size_t line, std::size_t column) {
        constexpr std::array methods{
            "completion",     "hover",        "definition",          "references",
            "rename",         "formatting",   "documentHighlight",   "prepareRename",
            "documentSymbol", "foldingRange", "semanticTokens/full", "codeAction"};
        const Json place{{"line", line}, {"character", column}};
        for (const char* const method : methods)
            ask(std::string("textDocument/") + method,
                {{"textDocument", {{"uri", uri}}},
                 {"position", place},
                 {"newName", "@New"},
                 {"range", {{"start", place}, {"end", place}}}});
    }

    void change(std::size_t line, std::size_t column, const std::string& text) {
        const Json from{{"line", line}, {"character", column}};
        const Json to{{"line", line}, {"character", column + 3}};
        tell("textDocument/didChange",
             {{"textDocument", {{"uri", uri}, {"version", 2}}},
              {"contentChanges", {{{"range", {{"start", from}, {"end", to}}}, {"text", text}}}}});
        session_.update();
    }

private:
    static std::string textOf(const Json& json) {
        return json.dump(-1, ' ', false, Json::error_handler_t::replace);
    }

    void ask(const std::string& method, const Json& params) {
        const auto answer = session_.take(
            textOf({{"jsonrpc", "2.0"}, {"id", 1}, {"method", method}, {"params", params}}));
        check(answer.has_value(), "a request is answered");
        checkAnswer(*answer);
    }

    void tell(const std::string& method, const Json& params) {
        check(!session_.take(textOf({{"jsonrpc", "2.0"}, {"method", method}, {"params", params}})),
              "a notification is not answered");
    }

    Lsp::Session session_;
};

void askAbout(std::string_view bytes) {
    const std::string text(bytes);
    Client client(text);
    const std::size_t line = bytes.size() % 7;
    client.askAll(line, bytes.empty() ? 0 : static_cast<unsigned char>(bytes.front()) % 40);
    client.change(line, bytes.size() % 11, text.substr(text.size() / 2, 20));
    client.askAll(0, bytes.size() % 13);
}

/// What is formatted has its format.
void format(std::string_view bytes) {
    const Editor::Text text{std::string(bytes)};
    const auto formatting = Editor::format("script.tsn", text.read(), {}, {});
    const std::string result = Editor::edited(text.read(), formatting.edits);
    const auto again = Editor::format("script.tsn", result, {}, {});
    check(again.outcome == formatting.outcome, "a format is a script as what it came from");
    check(again.edits.empty(), "what is formatted has its format");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t most = std::size_t{16} << 10U;
    if (size > most) return 0;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    Fuzz::Machine machine;
    try {
        takeStream(bytes);
        askAbout(bytes);
        format(bytes);
    } catch (const std::bad_alloc&) {
        // A text that grew too long.
    }
    return 0;
}
