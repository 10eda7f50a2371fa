#pragma once

#include <map>
#include <stdexcept>
#include <string>

namespace Parser {

/// A variable that cannot be applied to a script.
class VariableError : public std::runtime_error {
public:
    VariableError(std::string name, const std::string& reason)
        : std::runtime_error(reason), name_(std::move(name)) {}

    const std::string& name() const { return name_; }
    const char* reason() const { return what(); }

private:
    std::string name_;
};

/// Replaces every variable in `text` by its value, the longest name first, among names of one
/// length the one that sorts last first.
///
/// A name is a regular expression of ECMAScript grammar and matches anywhere; its value is a
/// replacement format. What a value brings in is open to the variables that come later. Names
/// without a special character take time linear in the text together, not each.
///
/// @throws VariableError  if a name is no valid regular expression, if its evaluation would exhaust
///                        the machine, or if the text would grow beyond 64 MiB and four times the
///                        length of script and values, or take as long as such a text does
void expandVariables(std::string& text, const std::map<std::string, std::string>& variables);

}  // namespace Parser
