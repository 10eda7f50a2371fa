#pragma once

#include <string>

namespace Strict {

/// A path as a URI reference (RFC 3986): of an absolute one a URI, of any other one a relative
/// path. A colon is escaped as well, so that no name is taken for a scheme, but that of a drive.
std::string uriOf(std::string path);

}  // namespace Strict
