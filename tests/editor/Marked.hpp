#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "editor/Mentions.hpp"
#include "editor/Script.hpp"

/// A script with a place in it, which its text marks by '|', and the files that it may include.
struct Marked {
    explicit Marked(std::string text, std::map<std::string, std::string> files = {})
        : offset(text.find('|')) {
        if (offset != std::string::npos) text.erase(offset, 1);
        const auto edited = [files = std::move(files)](const std::string& path) {
            const auto file = files.find(path);
            return file == files.end() ? std::nullopt : std::optional(file->second);
        };
        script = std::make_unique<Editor::Script>("script.tsn", std::move(text), Editor::Settings(),
                                                  edited);
        mentions = std::make_unique<Editor::Mentions>(*script);
    }

    std::size_t offset;
    std::unique_ptr<Editor::Script> script;
    std::unique_ptr<Editor::Mentions> mentions;
};
