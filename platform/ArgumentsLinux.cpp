#include "platform/Arguments.hpp"

namespace Platform {

Arguments::Arguments(int count, const char* const* values) : values_(values, values + count) {}

}  // namespace Platform
