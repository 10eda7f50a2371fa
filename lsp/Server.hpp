#pragma once

#include <iosfwd>

#include "strict/Run.hpp"

namespace Lsp {

/// Serves one client over the standard streams until it ends the session or goes away.
///
/// @param output  to the client
/// @param errors  takes a line if the client goes away without a word
Strict::ExitCode serve(std::ostream& output, std::ostream& errors);

}  // namespace Lsp
