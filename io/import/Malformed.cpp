#include "io/import/Malformed.hpp"

#include "facts/Listener.hpp"

namespace Io::Import {

void refuse(Facts::InputFormat format, std::string_view file, Facts::FormatFault fault,
            std::uint64_t where, std::uint64_t number) {
    Facts::report(Facts::FileMalformed{format, file, fault, where, number});
    throw Malformed();
}

}  // namespace Io::Import
