#pragma once

#include <string>

namespace Strict {

/// A path as an argument of a statement.
struct PathArgument {
    std::string text;      ///< where no script can say the path, only something to show
    std::string obstacle;  ///< why no script can say it; empty if one can
};

/// How a script says `path`, so that it reads every character of it.
PathArgument argumentOf(const std::string& path);

}  // namespace Strict
