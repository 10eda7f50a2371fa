#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "editor/Script.hpp"
#include "lsp/Documents.hpp"
#include "lsp/Json.hpp"
#include "lsp/Locations.hpp"

namespace Lsp {

/// A session with one client: takes its messages and answers them. Knows nothing of streams.
class Session {
public:
    /// Answers a message, with one message at most.
    std::optional<std::string> take(std::string_view message);

    /// What is due once no message waits any more: diagnostics of the scripts that have changed.
    std::vector<std::string> update();

    /// The message that tells the client about bytes that are not one.
    static std::string complain(std::string_view what);

    /// The client has said that it ends.
    bool isOver() const { return isOver_; }

    /// It has said before that it would, so that all is in order.
    bool isShutDown() const { return isShutDown_; }

private:
    using Handler = Json (Session::*)(const Json& params);
    struct Request {
        std::string_view method;
        Handler answer;
    };

    std::optional<std::string> dispatch(const Json& message);
    Json answer(const std::string& method, const Json& params);
    void notice(const std::string& method, const Json& params);

    Json initialize(const Json& params);
    Json shutDown(const Json& params);
    Json complete(const Json& params);
    Json hover(const Json& params);
    Json definition(const Json& params);
    Json references(const Json& params);
    Json highlights(const Json& params);
    Json prepareRename(const Json& params);
    Json rename(const Json& params);
    Json outline(const Json& params);
    Json folds(const Json& params);
    Json tokens(const Json& params);
    Json format(const Json& params);
    Json codeActions(const Json& params);

    void open(const Json& params);
    void change(const Json& params);
    void close(const Json& params);
    void configure(const Json& settings);

    struct Place {
        Document* document;
        std::shared_ptr<const Editor::Script> script;
        std::shared_ptr<const Editor::Mentions> mentions;
        std::size_t offset;  ///< in the text as it is read
    };
    Document& documentOf(const Json& params);
    std::shared_ptr<const Editor::Script> scriptOf(const Json& params);
    Place placeOf(const Json& params);

    Json diagnosticsOf(Document& document);
    Json diagnosticOf(const Document& document, const Editor::Script& script,
                      const Strict::Judged& finding, Locations& locations) const;
    Json related(const Document& document, const Editor::Script& script,
                 const Strict::Diagnostic& diagnostic, Locations& locations) const;

    struct Found {
        Json location;
        bool isMaking;
    };

    /// The mentions of what is at a place, in all scripts that are open.
    ///
    /// @param isRename  those that have to change if it gets another name
    std::vector<Found> mentionsAt(const Place& place, bool isRename = false);

    Documents documents_;
    Editor::Encoding encoding_ = Editor::Encoding::Utf16;
    bool takesMarkdown_ = true;
    bool takesTree_ = false;  ///< outlines as trees
    bool isInitialized_ = false;
    bool isShutDown_ = false;
    bool isOver_ = false;
};

}  // namespace Lsp
