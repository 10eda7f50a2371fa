#pragma once

#include <span>
#include <string>

/// What the language has, from the tables that the program itself uses.
namespace CommandLine {

/// Something that `tessaron help` lists.
struct Topic {
    const char* name;
    const char* meaning;  ///< one line
    std::string (*text)();
};

std::span<const Topic> topics();

}  // namespace CommandLine
