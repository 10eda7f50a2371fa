// Whole scripts, executed on a machine that holds their files and nothing else.

#include <cstddef>
#include <cstdint>
#include <iostream>
#include <utility>

#include "classic/ClassicWords.hpp"
#include "facts/Listener.hpp"
#include "fuzz/PlatformInMemory.hpp"
#include "fuzz/ScriptInput.hpp"
#include "parser/ScriptParser.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > Fuzz::Machine::mostInput) return 0;
    Fuzz::Machine machine;
    Classic::ClassicWords words(std::cout, std::cerr);
    const Facts::ListenerScope scope(words);
    Fuzz::ScriptInput input(data, size, machine);
    Parser::ScriptParser(Fuzz::ScriptInput::scriptPath, std::move(input.variables)).run();
    return 0;
}
