#include "crypto/signature/WorkerThreads.hpp"

#include <algorithm>
#include <latch>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

namespace Crypto {

void demandWorkerThreads() {
    // One for each processor, from 2 to 16.
    const std::size_t count = std::clamp(std::thread::hardware_concurrency(), 2U, 16U);
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
