// Whole scripts, executed on a machine that holds their files and nothing else.

#include <cstddef>
#include <cstdint>
#include <utility>

#include "fuzz/PlatformInMemory.hpp"
#include "fuzz/ScriptInput.hpp"
#include "parser/ScriptParser.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > Fuzz::Machine::mostInput) return 0;
    Fuzz::Machine machine;
    Fuzz::ScriptInput input(data, size, machine);
    Parser::ScriptParser(Fuzz::ScriptInput::scriptPath, std::move(input.variables)).run();
    return 0;
}
