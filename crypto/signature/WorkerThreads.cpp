#include "crypto/signature/WorkerThreads.hpp"

#include <cstddef>
#include <latch>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

namespace Crypto {

void demandWorkerThreads(std::size_t count) {
    // What they compute with, with much to spare: a thread of the library that finds no memory ends
    // the program.
    constexpr std::size_t neededBytes = std::size_t{1} << 20U;
    const std::vector<std::byte> spare(neededBytes);
    std::vector<std::thread> threads;
    threads.reserve(count);
    std::latch end(1);
    try {
        while (threads.size() < count) threads.emplace_back([&] { end.wait(); });
    } catch (const std::system_error&) {
        // Those that run are joined below.
    }
    end.count_down();
    for (std::thread& thread : threads) thread.join();
    if (threads.size() < count) throw std::bad_alloc();
}

}  // namespace Crypto
