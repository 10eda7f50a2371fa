#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "strict/diagnostics/Kinds.hpp"
#include "strict/script/Directives.hpp"

namespace Strict {

/// Something wrong in a file of a script.
struct PartFault {
    Kind kind;
    TextSpan where;
    std::string text;
    std::string hint = {};
    std::optional<TextSpan> first = {};  ///< the one of two that came first
};

/// What a file of a script consists of: its directives, and the words that its parameters replace.
class FileParts {
public:
    /// A piece of the text that something takes the place of.
    struct Item {
        enum class What : unsigned char { Nothing, Value, File };
        TextSpan where;
        What what;
        std::size_t index;  ///< of the parameter or of the INCLUDE
    };
    struct Parameter {
        TextSpan name;
        std::optional<TextSpan> value;  ///< the default
        bool isUsed = false;            ///< the name occurs in the file
    };

    /// @param text    outlives this
    /// @param report  takes what is wrong
    FileParts(std::string_view text, const std::function<void(PartFault)>& report);

    /// In the order of the text, without overlap.
    const std::vector<Item>& items() const { return items_; }
    const std::vector<Parameter>& parameters() const { return parameters_; }
    const std::vector<IncludeDirective>& includes() const { return directives_.includes; }

    /// The names of the parameters, each once, in their order.
    const std::vector<std::string_view>& names() const { return names_; }
    std::optional<std::size_t> indexOf(std::string_view name) const;

    /// The words in a part of the text that are parameters.
    std::vector<NamedWord> wordsIn(TextSpan part) const;

    std::string_view text() const { return text_; }

private:
    void findParameters(const std::function<void(PartFault)>& report);
    void findWords(const std::function<void(PartFault)>& report);
    void listItems();
    void use(TextSpan part);

    std::string_view text_;
    Directives directives_;
    std::vector<Parameter> parameters_;
    std::vector<std::string_view> names_;
    std::unordered_map<std::string_view, std::size_t> indices_;  ///< of the names
    std::vector<NamedWord> words_;
    std::vector<Item> items_;
};

}  // namespace Strict
