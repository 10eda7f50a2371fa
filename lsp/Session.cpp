#include "lsp/Session.hpp"

#include <algorithm>
#include <array>
#include <exception>
#include <map>
#include <new>
#include <utility>

#include "editor/Draft.hpp"
#include "lsp/Legend.hpp"
#include "lsp/Uri.hpp"
#include "platform/Streams.hpp"
#include "platform/Version.hpp"
#include "strict/diagnostics/Kinds.hpp"

namespace Lsp {

namespace {

/// Levels of arrays and objects in a message. What is deeper is left out.
constexpr int deepest = 64;

Json errorFor(const Json& id, ErrorCode code, std::string_view text) {
    return {{"jsonrpc", "2.0"},
            {"id", id},
            {"error", {{"code", static_cast<int>(code)}, {"message", text}}}};
}

bool isId(const Json& id) {
    return id.is_string() || id.is_number_integer();
}

bool contains(const Json& list, std::string_view word) {
    return list.is_array() && std::ranges::any_of(list, [word](const Json& one) {
               return one.is_string() && one.get_ref<const std::string&>() == word;
           });
}

/// The folder that the client works in.
std::optional<std::string> rootIn(const Json& params) {
    const Json& folders = memberOf(params, "/workspaceFolders");
    if (folders.is_array() && !folders.empty())
        if (auto path = pathOf(textAt(folders.front(), "/uri"))) return path;
    if (auto path = pathOf(textAt(params, "/rootUri"))) return path;
    std::string path = textAt(params, "/rootPath");
    return path.empty() ? std::nullopt : std::optional(std::move(path));
}

Json capabilities(Editor::Encoding encoding) {
    return {
        {"positionEncoding", encoding == Editor::Encoding::Utf8 ? "utf-8" : "utf-16"},
        {"textDocumentSync", {{"openClose", true}, {"change", 2}}},
        {"completionProvider", {{"triggerCharacters", {"@", "-", "=", "{", "(", "/", "_"}}}},
        {"hoverProvider", true},
        {"definitionProvider", true},
        {"referencesProvider", true},
        {"documentHighlightProvider", true},
        {"renameProvider", {{"prepareProvider", true}}},
        {"documentSymbolProvider", true},
        {"foldingRangeProvider", true},
        {"semanticTokensProvider", {{"legend", legend()}, {"full", true}}},
        {"documentFormattingProvider", true},
        {"codeActionProvider", {{"codeActionKinds", {"quickfix"}}}},
    };
}

}  // namespace

std::optional<std::string> Session::take(std::string_view message) {
    const auto keep = [](int depth, Json::parse_event_t, Json&) { return depth <= deepest; };
    Json json;
    try {
        json = Json::parse(message, keep);
    } catch (const Json::parse_error& error) {
        return textOf(errorFor(nullptr, ErrorCode::ParseError, error.what()));
    }
    try {
        return dispatch(json);
    } catch (const std::bad_alloc&) {
        const Json& id = memberOf(json, "/id");
        if (id.is_null()) return std::nullopt;
        return textOf(errorFor(id, ErrorCode::InternalError, "there is not enough memory"));
    }
}

std::string Session::complain(std::string_view what) {
    return textOf(errorFor(nullptr, ErrorCode::ParseError, what));
}

std::optional<std::string> Session::dispatch(const Json& message) {
    const Json& id = memberOf(message, "/id");
    const Json& method = memberOf(message, "/method");
    if (!message.is_object() || (!id.is_null() && !isId(id)))
        return textOf(errorFor(nullptr, ErrorCode::InvalidRequest, "this is not a message"));
    if (!method.is_string()) {
        // The client answers requests of the server, which has none.
        if (message.contains("result") || message.contains("error")) return std::nullopt;
        return textOf(errorFor(id, ErrorCode::InvalidRequest, "the message has no method"));
    }
    const std::string name = method.get<std::string>();
    const Json& params = memberOf(message, "/params");
    const bool isRequest = !id.is_null();
    try {
        if (isRequest)
            return textOf({{"jsonrpc", "2.0"}, {"id", id}, {"result", answer(name, params)}});
        notice(name, params);
        return std::nullopt;
    } catch (const Refusal& refusal) {
        if (!isRequest) return std::nullopt;
        return textOf(errorFor(id, refusal.code, refusal.text));
    } catch (const Json::exception& error) {
        if (!isRequest) return std::nullopt;
        return textOf(errorFor(id, ErrorCode::InvalidParams, error.what()));
    }
}

Json Session::answer(const std::string& method, const Json& params) {
    constexpr std::array requests{
        Request{"textDocument/completion", &Session::complete},
        Request{"textDocument/hover", &Session::hover},
        Request{"textDocument/definition", &Session::definition},
        Request{"textDocument/references", &Session::references},
        Request{"textDocument/documentHighlight", &Session::highlights},
        Request{"textDocument/prepareRename", &Session::prepareRename},
        Request{"textDocument/rename", &Session::rename},
        Request{"textDocument/documentSymbol", &Session::outline},
        Request{"textDocument/foldingRange", &Session::folds},
        Request{"textDocument/semanticTokens/full", &Session::tokens},
        Request{"textDocument/formatting", &Session::format},
        Request{"textDocument/codeAction", &Session::codeActions},
        Request{"shutdown", &Session::shutDown},
    };
    if (isShutDown_) throw Refusal{ErrorCode::InvalidRequest, "the server is shut down"};
    if (method == "initialize") {
        if (isInitialized_)
            throw Refusal{ErrorCode::InvalidRequest, "the server is initialized already"};
        return initialize(params);
    }
    if (!isInitialized_)
        throw Refusal{ErrorCode::NotInitialized, "the first request is initialize"};
    const auto* const request = std::ranges::find(requests, method, &Request::method);
    if (request == requests.end())
        throw Refusal{ErrorCode::MethodNotFound, "there is no method " + method};
    return (this->*request->answer)(params);
}

/// A notification that means nothing is ignored, since none has an answer.
void Session::notice(const std::string& method, const Json& params) {
    if (method == "exit") isOver_ = true;
    if (!isInitialized_ || isShutDown_) return;
    if (method == "textDocument/didOpen") open(params);
    if (method == "textDocument/didChange") change(params);
    if (method == "textDocument/didClose") close(params);
    if (method == "workspace/didChangeConfiguration") {
        const Json& settings = memberOf(params, "/settings");
        const Json& own = memberOf(settings, "/tessaron");
        configure(own.is_null() ? settings : own);
    }
    const bool isOfFiles =
        method == "workspace/didChangeWatchedFiles" || method == "textDocument/didSave";
    if (isOfFiles) documents_.forgetAll();
}

Json Session::initialize(const Json& params) {
    const Json& client = memberOf(params, "/capabilities");
    if (contains(memberOf(client, "/general/positionEncodings"), "utf-8"))
        encoding_ = Editor::Encoding::Utf8;
    const Json& formats = memberOf(client, "/textDocument/hover/contentFormat");
    takesMarkdown_ = !formats.is_array() || contains(formats, "markdown");
    takesTree_ =
        memberOf(client, "/textDocument/documentSymbol/hierarchicalDocumentSymbolSupport") == true;
    // The paths of scripts begin where their editor works.
    if (const auto root = rootIn(params)) Platform::changeFolder(*root);
    configure(memberOf(params, "/initializationOptions"));
    isInitialized_ = true;
    return {{"capabilities", capabilities(encoding_)},
            {"serverInfo", {{"name", "tessaron"}, {"version", Platform::versionText()}}}};
}

Json Session::shutDown(const Json& /*params*/) {
    isShutDown_ = true;
    documents_.all().clear();
    return nullptr;
}

/// Takes {"variables": {NAME: VALUE}, "ignore": [NAME], "warn": [NAME], "error": [NAME], "werror":
/// true}, as the options of `tessaron check` of these names.
void Session::configure(const Json& settings) {
    if (!settings.is_object()) return;
    Editor::Settings chosen;
    const Json& variables = memberOf(settings, "/variables");
    if (variables.is_object())
        for (const auto& [name, value] : variables.items())
            if (value.is_string()) chosen.variables.emplace(name, value.get<std::string>());
    if (memberOf(settings, "/werror") == true) chosen.policy.makeWarningsErrors();
    using Strict::Severity;
    for (const auto& [key, severity] : {std::pair{"/error", Severity::Error},
                                        {"/warn", Severity::Warning},
                                        {"/ignore", Severity::Ignored}}) {
        const Json& names = memberOf(settings, key);
        if (!names.is_array()) continue;
        for (const Json& name : names)
            if (name.is_string()) chosen.policy.set(name.get<std::string>(), severity);
    }
    documents_.settings = std::move(chosen);
    documents_.forgetAll();
}

void Session::open(const Json& params) {
    const std::string uri = textAt(params, "/textDocument/uri");
    const Json& text = memberOf(params, "/textDocument/text");
    if (uri.empty() || !text.is_string()) return;
    Document& document = documents_.open(uri, text.get<std::string>());
    const Json& version = memberOf(params, "/textDocument/version");
    if (version.is_number_integer()) document.version = version.get<std::int64_t>();
}

void Session::change(const Json& params) {
    Document* const document = documents_.find(textAt(params, "/textDocument/uri"));
    const Json& changes = memberOf(params, "/contentChanges");
    if (document == nullptr || !changes.is_array()) return;
    const Json& version = memberOf(params, "/textDocument/version");
    if (version.is_number_integer()) document->version = version.get<std::int64_t>();
    Editor::Draft draft(document->text().raw(), encoding_);
    bool isKnown = !document->isTooLong;
    for (const Json& change : changes) {
        const Json& with = memberOf(change, "/text");
        if (!with.is_string()) continue;
        const std::string& inserted = with.get_ref<const std::string&>();
        if (!change.contains("range")) {
            draft = Editor::Draft(inserted, encoding_);
            isKnown = true;
            continue;
        }
        // A part of a text that is not kept cannot be changed.
        if (!isKnown) continue;
        draft.replace(positionIn(change, "/range/start"), positionIn(change, "/range/end"),
                      inserted);
    }
    if (isKnown) documents_.change(*document, draft.text());
}

void Session::close(const Json& params) {
    documents_.close(textAt(params, "/textDocument/uri"));
}

Document& Session::documentOf(const Json& params) {
    const std::string uri = textAt(params, "/textDocument/uri");
    Document* const document = documents_.find(uri);
    if (document == nullptr)
        throw Refusal{ErrorCode::InvalidParams, "the document \"" + uri + "\" is not open"};
    return *document;
}

std::shared_ptr<const Editor::Script> Session::scriptOf(const Json& params) {
    auto script = documents_.script(documentOf(params));
    if (script == nullptr) throw Refusal{ErrorCode::RequestFailed, "the script is too long"};
    return script;
}

Session::Place Session::placeOf(const Json& params) {
    const auto script = scriptOf(params);
    Document& document = documentOf(params);
    const Editor::Text& text = document.text();
    const std::size_t raw = text.offsetOf(positionIn(params, "/position"), encoding_);
    return {&document, script, documents_.mentions(document), text.readOf(raw)};
}

std::vector<std::string> Session::update() {
    std::vector<std::string> messages;
    for (auto& [uri, document] : documents_.all()) {
        if (!document.isDue) continue;
        document.isDue = false;
        Json params{{"uri", uri}, {"diagnostics", diagnosticsOf(document)}};
        if (document.version) params["version"] = *document.version;
        messages.push_back(textOf({{"jsonrpc", "2.0"},
                                   {"method", "textDocument/publishDiagnostics"},
                                   {"params", std::move(params)}}));
    }
    return messages;
}

}  // namespace Lsp
