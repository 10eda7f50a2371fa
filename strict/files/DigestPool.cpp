#include "strict/files/DigestPool.hpp"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "inspect/Digest.hpp"
#include "platform/Interrupts.hpp"

namespace Strict {

namespace {

constexpr std::size_t pieceSize = std::size_t{1} << 18U;

}  // namespace

/// A piece of a file, a file as a whole or other work.
struct DigestPool::Task {
    std::string piece;
    std::optional<Platform::InputFile> file;
    std::function<void()> work;

    bool isPiece() const { return !file && !work; }
    void doFor(Digest& digest) const;
};

class DigestPool::Digest {
public:
    std::deque<Task> tasks;
    bool isTaken = false;  ///< a thread works on them

    void take(std::string_view bytes) {
        hash_.take(bytes);
        result_.size += bytes.size();
    }

    void takeFile(const Platform::InputFile& file) {
        std::vector<char> piece(pieceSize);
        std::uint64_t at = 0;
        for (std::size_t got = piece.size(); got == piece.size(); at += got) {
            got = file.readAt(at, piece);
            take({piece.data(), got});
        }
        result_.hasChanged = file.reading() != Platform::Reading::Complete;
    }

    const FileDigest& finish() {
        if (result_.sha256.empty()) result_.sha256 = hash_.finish();
        return result_;
    }

private:
    Inspect::Sha256 hash_;
    FileDigest result_;
};

void DigestPool::Task::doFor(Digest& digest) const {
    if (work)
        work();
    else if (file)
        digest.takeFile(*file);
    else
        digest.take(piece);
}

/// The threads, and the digests that wait for one of them.
class DigestPool::Workers {
public:
    Workers() = default;
    ~Workers() {
        {
            const std::scoped_lock lock(mutex_);
            isOver_ = true;
            changed_.notify_all();
        }
        for (std::thread& thread : threads_) thread.join();
    }
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    void take(Digest& digest, std::string_view bytes) {
        while (!bytes.empty()) {
            std::string piece = emptyPiece();
            piece.assign(bytes.substr(0, pieceSize));
            bytes.remove_prefix(piece.size());
            push(digest, {std::move(piece), std::nullopt, {}});
        }
    }

    void takeFile(Digest& digest, const Platform::InputFile& file) {
        if (auto own = file.again())
            push(digest, {{}, std::move(own), {}});
        else
            digest.takeFile(file);
    }

    void takeWork(std::function<void()> work) {
        push(others_[nextOther_++ % others_.size()], {{}, std::nullopt, std::move(work)});
    }

    void wait(const Digest& digest) {
        waitUntil([&digest] { return digest.tasks.empty() && !digest.isTaken; });
    }

    void settle() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return ready_.empty() && busy_ == 0; });
    }

    void wait() {
        settle();
        waitUntil([] { return true; });
    }

private:
    static constexpr std::size_t mostPieces = 16;

    template <class Condition>
    void waitUntil(Condition isTrue) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return isTrue() || failure_; });
        if (failure_) std::rethrow_exception(failure_);
    }

    /// Starts a thread if none is free and the machine has a core for it. False if there is none.
    bool start() {
        if (threads_.size() > busy_ + ready_.size() || threads_.size() == most_) return most_ != 0;
        try {
            // The thread that names files to the guard of interrupts is the one to take them.
            const Platform::InterruptsHeld held;
            threads_.emplace_back([this] { work(); });
        } catch (const std::system_error&) {
            most_ = threads_.size();
        }
        return most_ != 0;
    }

    /// Waits until a piece may be added. Its memory is that of a piece that has been taken: the
    /// pages of a new one would have to be cleared.
    std::string emptyPiece() {
        waitUntil([this] { return pieces_ < mostPieces; });
        const std::scoped_lock lock(mutex_);
        if (taken_.empty()) return {};
        std::string piece = std::move(taken_.back());
        taken_.pop_back();
        return piece;
    }

    /// Adds work on a digest, which is done in the order in which it comes.
    void push(Digest& digest, Task task) {
        std::unique_lock lock(mutex_);
        const bool isNew = !digest.isTaken && digest.tasks.empty();
        if (isNew && !start()) {
            lock.unlock();
            task.doFor(digest);
            return;
        }
        if (task.isPiece()) ++pieces_;
        digest.tasks.push_back(std::move(task));
        if (isNew) ready_.push_back(&digest);
        changed_.notify_all();
    }

    void work() {
        std::unique_lock lock(mutex_);
        for (;;) {
            changed_.wait(lock, [this] { return isOver_ || !ready_.empty(); });
            if (ready_.empty()) return;
            Digest& digest = *ready_.front();
            ready_.pop_front();
            digest.isTaken = true;
            ++busy_;
            try {
                while (!digest.tasks.empty()) workOnFirst(digest, lock);
            } catch (...) {
                // Whoever asks for a digest gets to know it.
                if (!lock.owns_lock()) lock.lock();
                failure_ = std::current_exception();
                digest.tasks.clear();
            }
            --busy_;
            digest.isTaken = false;
            changed_.notify_all();
        }
    }

    void workOnFirst(Digest& digest, std::unique_lock<std::mutex>& lock) {
        Task task = std::move(digest.tasks.front());
        digest.tasks.pop_front();
        if (task.isPiece()) --pieces_;
        changed_.notify_all();
        lock.unlock();
        task.doFor(digest);
        lock.lock();
        if (task.isPiece()) taken_.push_back(std::move(task.piece));
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Digest*> ready_;       ///< that have work and no thread
    std::vector<std::string> taken_;  ///< whose bytes are in a digest
    std::exception_ptr failure_;      ///< of a thread
    std::size_t pieces_ = 0;          ///< that wait
    std::size_t busy_ = 0;            ///< threads
    std::size_t most_ = std::max(1U, std::thread::hardware_concurrency());
    bool isOver_ = false;
    std::vector<Digest> others_ = std::vector<Digest>(most_);  ///< have work that is on no digest
    std::size_t nextOther_ = 0;
    std::vector<std::thread> threads_;
};

DigestPool::DigestPool() : workers_(std::make_unique<Workers>()) {}
DigestPool::~DigestPool() = default;

std::shared_ptr<DigestPool::Digest> DigestPool::begin() {
    return std::make_shared<Digest>();
}

void DigestPool::take(Digest& digest, std::string_view bytes) {
    workers_->take(digest, bytes);
}

void DigestPool::takeFile(Digest& digest, const Platform::InputFile& file) {
    workers_->takeFile(digest, file);
}

void DigestPool::takeWork(std::function<void()> work) {
    workers_->takeWork(std::move(work));
}

FileDigest DigestPool::finish(Digest& digest) {
    workers_->wait(digest);
    return digest.finish();
}

void DigestPool::wait() {
    workers_->wait();
}

void DigestPool::settle() noexcept {
    workers_->settle();
}

FileDigest digestOf(const Platform::InputFile& file) {
    DigestPool::Digest digest;
    digest.takeFile(file);
    return digest.finish();
}

FileDigest digestOfFile(const std::string& path) {
    const auto file = Platform::InputFile::open(path);
    return file ? digestOf(*file) : FileDigest{};
}

}  // namespace Strict
