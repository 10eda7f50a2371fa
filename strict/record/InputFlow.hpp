#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "parser/grammar/Statement.hpp"
#include "strict/files/RunFiles.hpp"
#include "strict/script/Program.hpp"

namespace Strict {

/// Follows the inputs of a run through its images and values into its outputs.
///
/// It goes by what statements name. What one of them makes or changes depends on all that it reads,
/// be it for its bytes or for a number, even if a later statement replaces every byte. So an output
/// may have an input too many, and never one too few, but for what called programs do.
class InputFlow {
public:
    /// Places in the list of the inputs of the run.
    using Places = std::set<std::size_t>;

    InputFlow(const Program& program, RunFiles& files);

    /// Goes on with the next statement of the script.
    void follow(const Parser::Statement& statement);

    /// The inputs on which the statement that was followed last depends.
    const Places& followed() const { return *last_; }

    /// A statement that was followed names the input.
    bool isNamed(std::size_t input) const { return named_.contains(input); }

private:
    using Shared = std::shared_ptr<const Places>;
    /// A name of the script, with the role by which statements use it; of an output its path.
    using Thing = std::pair<Parser::Role, std::string>;

    Shared read(const Parser::Statement& statement);
    Shared readFile(const std::string& path);
    Shared known(Parser::Role use, std::string_view name) const;

    const Program* program_;
    RunFiles* files_;
    std::map<std::string, std::size_t> inputs_;  ///< by their names
    std::map<Thing, Shared> things_;
    Places named_;
    Shared last_;
};

}  // namespace Strict
