#include "crypto/signature/WorkerThreads.hpp"

#include <condition_variable>
#include <cstddef>
#include <mutex>
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
    // A latch may miss its end where the system has no futex (libstdc++ bug 104928).
    std::mutex mutex;
    std::condition_variable ended;
    bool hasEnded = false;
    try {
        while (threads.size() < count)
            threads.emplace_back([&] {
                std::unique_lock lock(mutex);
                ended.wait(lock, [&] { return hasEnded; });
            });
    } catch (const std::system_error&) {
        // Those that run are joined below.
    }
    {
        const std::lock_guard lock(mutex);
        hasEnded = true;
    }
    ended.notify_all();
    for (std::thread& thread : threads) thread.join();
    if (threads.size() < count) throw std::bad_alloc();
}

}  // namespace Crypto
