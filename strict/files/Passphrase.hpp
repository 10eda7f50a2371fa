#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/SecretFile.hpp"
#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/files/RunFiles.hpp"

namespace Strict {

/// The passphrase of encrypted keys, wiped from memory with this object.
class Passphrase {
public:
    explicit Passphrase(Platform::SecretFile file) : file_(std::move(file)) {}

    /// The first line of the file, without its end.
    std::string_view text() const;

private:
    Platform::SecretFile file_;
};

/// Reads the passphrase in a file, a pipe or a descriptor (/dev/fd/3). Nothing after a diagnostic.
std::optional<Passphrase> readPassphrase(const std::string& path, RunFiles& files,
                                         DiagnosticSink& sink);

}  // namespace Strict
