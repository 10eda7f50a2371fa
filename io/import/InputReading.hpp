#pragma once

#include <memory>
#include <string>

#include "io/import/ReadOptions.hpp"
#include "io/import/TessaronImportApi.hpp"

namespace Io::Import {

/// A way to read input files whose format their contents decide. A front end chooses one for a run.
class InputReading {
public:
    InputReading() = default;
    virtual ~InputReading() = default;
    InputReading(const InputReading&) = delete;
    InputReading& operator=(const InputReading&) = delete;

    /// Reads a file, or returns null after a report if no image can be made of it.
    ///
    /// @throws Io::bad_open
    virtual std::unique_ptr<TessaronImportApi> open(const std::string& path,
                                                    const ReadOptions& options) const = 0;
};

/// Reads every file by GenericInFile, and returns null for none.
class ClassicReading final : public InputReading {
public:
    std::unique_ptr<TessaronImportApi> open(const std::string& path,
                                            const ReadOptions& options) const override;
};

/// The classic way of reading, which has no state.
const InputReading& classicReading();

}  // namespace Io::Import
