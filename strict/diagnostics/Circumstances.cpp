#include "strict/diagnostics/Circumstances.hpp"

namespace Strict {

std::string adviceOnUnit(std::uint32_t unit, OptionsOf options) {
    const std::string number = std::to_string(unit);
    switch (options) {
        case OptionsOf::Statements:
            return "-setAddressUnit=" + number + " reads it";
        case OptionsOf::Convert:
            return "--unit-in " + number + " reads it";
        case OptionsOf::Inspection:
            break;
    }
    return "tessaron convert --unit-in " + number + " reads it";
}

}  // namespace Strict
