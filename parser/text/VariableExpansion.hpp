#pragma once

#include <exception>
#include <map>
#include <string>
#include <utility>

#include "facts/Facts.hpp"
#include "parser/text/TextMap.hpp"

namespace Parser {

/// A variable that cannot be applied to a script.
class VariableError : public std::exception {
public:
    VariableError(std::string name, Facts::VariableFault fault)
        : name_(std::move(name)), fault_(fault) {}

    const std::string& name() const { return name_; }
    Facts::VariableFault fault() const { return fault_; }

private:
    std::string name_;
    Facts::VariableFault fault_;
};

/// Replaces every variable in `text` by its value, the longest name first, among names of one
/// length the one that sorts last first.
///
/// A name is a regular expression of ECMAScript grammar and matches anywhere; its value is a
/// replacement format. What a value brings in is open to the variables that come later. Names
/// without a special character take time linear in the text together, not each.
///
/// @throws VariableError  if a name is not a valid regular expression, if its evaluation would
/// exhaust
///                        the machine, or if the text would grow beyond 64 MiB and four times the
///                        length of script and values, or take as long as such a text does
///
/// @param map  takes what became of the text, unless it is null
void expandVariables(std::string& text, const std::map<std::string, std::string>& variables,
                     TextMap* map = nullptr);

}  // namespace Parser
