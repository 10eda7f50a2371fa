#pragma once

#include <span>
#include <string>
#include <vector>

namespace Platform {

/// The command line of the process, in UTF-8 where the system has Unicode.
class Arguments {
public:
    /// @param count   what `main` got
    /// @param values  what `main` got; they must outlive this object
    Arguments(int count, const char* const* values);

    /// The name by which the program was started, if there is one, and the arguments.
    std::span<const char* const> values() const { return values_; }

private:
    std::vector<std::string> texts_;  ///< what `values_` points to, unless that is what `main` got
    std::vector<const char*> values_;
};

}  // namespace Platform
