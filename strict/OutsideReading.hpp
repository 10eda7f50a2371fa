#pragma once

#include <string_view>

#include "facts/Listener.hpp"
#include "io/Host.hpp"
#include "strict/RunListener.hpp"
#include "strict/files/RunFiles.hpp"
#include "strict/script/StatementReports.hpp"

namespace Strict {

/// While it lives, what is read outside of a script is opened as the inputs of a run are, and its
/// facts become diagnostics without a statement.
class OutsideReading {
public:
    OutsideReading(RunFiles& files, DiagnosticSink& sink, OptionsOf options)
        : reports_(nullptr, sink),
          listener_(reports_, nullptr, nullptr,
                    {[&files](std::string_view path) { return files.reasonFor(path); },
                     [](std::string_view /*name*/) { return true; }, options}),
          listening_(listener_),
          hosting_(files) {}

private:
    StatementReports reports_;
    RunListener listener_;
    Facts::ListenerScope listening_;
    Io::HostScope hosting_;
};

}  // namespace Strict
