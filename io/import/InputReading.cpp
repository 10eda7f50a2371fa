#include "io/import/InputReading.hpp"

#include "io/import/GenericInFile.hpp"

namespace Io::Import {

std::unique_ptr<TessaronImportApi> ClassicReading::open(const std::string& path,
                                                        const ReadOptions& options) const {
    return std::make_unique<GenericInFile>(path, options.addressUnit);
}

const InputReading& classicReading() {
    static const ClassicReading reading;
    return reading;
}

}  // namespace Io::Import
