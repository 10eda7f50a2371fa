#include "io/import/InputReading.hpp"

#include "io/import/GenericInFile.hpp"

namespace Io::Import {

std::unique_ptr<TessaronImportApi> ClassicReading::open(const std::string& path,
                                                        Buffer::OverlapRule /*rule*/) const {
    return std::make_unique<GenericInFile>(path);
}

const InputReading& classicReading() {
    static const ClassicReading reading;
    return reading;
}

}  // namespace Io::Import
