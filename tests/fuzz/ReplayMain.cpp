// Hands the files of the given folders to a fuzz target, without the fuzzer: any compiler, any
// preset.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argumentCount, char** arguments) {
    for (int i = 1; i < argumentCount; ++i) {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(arguments[i])) {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string input{std::istreambuf_iterator<char>(file), {}};
            // Named before it runs: what ends the process here names its input.
            std::printf("%s\n", entry.path().string().c_str());
            std::fflush(stdout);
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()),
                                   input.size());
            ++count;
        }
        if (count == 0) {
            std::fprintf(stderr, "no inputs in %s\n", arguments[i]);
            return 1;
        }
    }
    return argumentCount > 1 ? 0 : 1;
}
