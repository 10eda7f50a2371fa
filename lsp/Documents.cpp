#include "lsp/Documents.hpp"

#include <utility>

#include "lsp/Uri.hpp"
#include "platform/Paths.hpp"

namespace Lsp {

namespace {

/// The path of a document that is in no file, from the end of its URI.
std::string pathWithoutFile(const std::string& uri) {
    return uri.substr(uri.find_last_of("/:") + 1);
}

}  // namespace

Document& Documents::open(const std::string& uri, std::string text) {
    const std::string path = Platform::absolutePath(pathOf(uri).value_or(pathWithoutFile(uri)));
    all_.erase(uri);
    const auto [entry, isNew] =
        all_.try_emplace(uri, uri, path, Platform::portablePath(path), std::string());
    change(entry->second, std::move(text));
    return entry->second;
}

void Documents::change(Document& document, std::string text) {
    document.text_ = Editor::Text({});
    document.isTooLong = text.size() > longestText || text.size() > longestTexts - lengthOfAll();
    document.text_ = Editor::Text(document.isTooLong ? std::string() : std::move(text));
    forget(document);
    forgetUsersOf(document.path_);
}

void Documents::close(const std::string& uri) {
    const auto entry = all_.find(uri);
    if (entry == all_.end()) return;
    const std::string path = entry->second.path_;
    all_.erase(entry);
    forgetUsersOf(path);
}

void Documents::forgetAll() {
    for (auto& [uri, document] : all_) forget(document);
}

Document* Documents::find(const std::string& uri) {
    const auto entry = all_.find(uri);
    return entry == all_.end() ? nullptr : &entry->second;
}

const Document* Documents::withPath(const std::string& path) const {
    for (const auto& [uri, document] : all_)
        if (document.path_ == path && !document.isTooLong) return &document;
    return nullptr;
}

std::shared_ptr<const Editor::Script> Documents::script(Document& document) {
    if (document.isTooLong || document.script_ != nullptr) return document.script_;
    const auto edited = [this](const std::string& path) {
        const Document* const open = withPath(Platform::absolutePath(path));
        return open == nullptr ? std::nullopt : std::optional<std::string>(open->text_.read());
    };
    document.script_ = std::make_shared<const Editor::Script>(
        document.name_, std::string(document.text_.read()), settings, edited);
    limit(document);
    return document.script_;
}

std::shared_ptr<const Editor::Mentions> Documents::mentions(Document& document) {
    const auto known = script(document);
    if (known != nullptr && document.mentions_ == nullptr)
        document.mentions_ = std::make_shared<const Editor::Mentions>(*known);
    return document.mentions_;
}

std::vector<Documents::Part> Documents::partsOf(Document& document) {
    std::vector<Part> parts;
    if (const auto known = script(document)) parts.push_back({known, mentions(document), 0});
    for (auto& [uri, other] : all_) {
        const auto known = &other == &document ? nullptr : script(other);
        if (known == nullptr) continue;
        for (std::size_t file = 1; file < known->fileCount(); ++file)
            if (Platform::absolutePath(known->fileName(file)) == document.path_)
                parts.push_back({known, mentions(other), file});
    }
    return parts;
}

void Documents::forget(Document& document) {
    document.mentions_.reset();
    document.script_.reset();
    document.isDue = true;
}

/// The scripts that include a file, or would if it were there.
void Documents::forgetUsersOf(const std::string& path) {
    for (auto& [uri, document] : all_) {
        if (document.script_ == nullptr) continue;
        for (const std::string& asked : document.script_->asked())
            if (Platform::absolutePath(asked) == path) {
                forget(document);
                break;
            }
    }
}

/// Forgets what is known of other scripts if it is too much. It can be found out again.
void Documents::limit(const Document& kept) {
    std::size_t length = 0;
    for (const auto& [uri, document] : all_)
        if (document.script_ != nullptr) length += document.text_.raw().size();
    for (auto& [uri, document] : all_) {
        if (length <= longestKnown) return;
        if (&document == &kept || document.script_ == nullptr) continue;
        length -= document.text_.raw().size();
        document.mentions_.reset();
        document.script_.reset();
    }
}

std::size_t Documents::lengthOfAll() const {
    std::size_t length = 0;
    for (const auto& [uri, document] : all_) length += document.text_.raw().size();
    return length;
}

}  // namespace Lsp
