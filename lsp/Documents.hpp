#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "editor/Mentions.hpp"
#include "editor/Script.hpp"
#include "editor/Text.hpp"

namespace Lsp {

/// A script that the client has open.
class Document {
public:
    Document(std::string uri, std::string path, std::string name, std::string text)
        : uri_(std::move(uri)),
          path_(std::move(path)),
          name_(std::move(name)),
          text_(std::move(text)) {}

    const std::string& uri() const { return uri_; }
    const std::string& path() const { return path_; }  ///< absolute
    const Editor::Text& text() const { return text_; }

    std::optional<std::int64_t> version;
    bool isDue = true;       ///< its diagnostics have not been sent since it changed
    bool isTooLong = false;  ///< its text is not kept

private:
    friend class Documents;
    std::string uri_;
    std::string path_;
    std::string name_;  ///< as `tessaron check` would get it
    Editor::Text text_;
    std::shared_ptr<const Editor::Script> script_;
    std::shared_ptr<const Editor::Mentions> mentions_;
};

/// The scripts that the client has open, and what is known of them. What is known is found out when
/// it is asked for, and forgotten when a text changes that it came from.
class Documents {
public:
    /// Bytes of a script that is looked at, and of all that are open. What is known of a script
    /// takes some twenty times its bytes.
    static constexpr std::size_t longestText = std::size_t{4} << 20U;
    static constexpr std::size_t longestTexts = std::size_t{64} << 20U;
    static constexpr std::size_t longestKnown = std::size_t{8} << 20U;

    Editor::Settings settings;

    Document& open(const std::string& uri, std::string text);
    void change(Document& document, std::string text);
    void close(const std::string& uri);

    /// Something that may be a part of any script has changed: files on disk or settings.
    void forgetAll();

    /// Null if the client has not opened it.
    Document* find(const std::string& uri);
    const Document* withPath(const std::string& path) const;

    /// What is known of a script; null of one that is too long.
    std::shared_ptr<const Editor::Script> script(Document& document);
    std::shared_ptr<const Editor::Mentions> mentions(Document& document);

    /// The file of a document as a part of a script that is open.
    struct Part {
        std::shared_ptr<const Editor::Script> script;
        std::shared_ptr<const Editor::Mentions> mentions;
        std::size_t file;  ///< its number in the script
    };

    /// The document as a script, and as a file of the other scripts that include it.
    std::vector<Part> partsOf(Document& document);

    std::map<std::string, Document>& all() { return all_; }

private:
    static void forget(Document& document);
    void forgetUsersOf(const std::string& path);
    void limit(const Document& kept);
    std::size_t lengthOfAll() const;

    std::map<std::string, Document> all_;  ///< by their URIs
};

}  // namespace Lsp
