#include "strict/files/DigestThread.hpp"

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

class DigestThread::Digest {
public:
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

/// A queue of pieces and files, and the thread that takes them from it.
class DigestThread::Worker {
public:
    Worker() = default;
    ~Worker() {
        if (!thread_.joinable()) return;
        {
            const std::scoped_lock lock(mutex_);
            isOver_ = true;
            changed_.notify_all();
        }
        thread_.join();
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    void take(Digest& digest, std::string_view bytes) {
        if (!start()) {
            digest.take(bytes);
            return;
        }
        while (!bytes.empty()) {
            std::string piece = emptyPiece();
            piece.assign(bytes.substr(0, pieceSize));
            bytes.remove_prefix(piece.size());
            push({&digest, std::move(piece), std::nullopt});
        }
    }

    void takeFile(Digest& digest, const Platform::InputFile& file) {
        auto own = file.again();
        if (!own || !start())
            digest.takeFile(file);
        else
            push({&digest, {}, std::move(own)});
    }

    void wait() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return tasks_.empty() && !isBusy_; });
        if (failure_) std::rethrow_exception(failure_);
    }

private:
    struct Task {
        Digest* digest;
        std::string piece;
        std::optional<Platform::InputFile> file;
    };

    static constexpr std::size_t mostWaiting = 16;

    /// Starts the thread, unless it runs already. False if none can be had.
    bool start() {
        if (thread_.joinable()) return true;
        try {
            // The thread that names files to the guard of interrupts is the one to take them.
            const Platform::InterruptsHeld held;
            thread_ = std::thread([this] { work(); });
            return true;
        } catch (const std::system_error&) {
            return false;
        }
    }

    /// Waits until a piece may be added. Its memory is that of a piece that has been taken: the
    /// pages of a new one would have to be cleared.
    std::string emptyPiece() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return tasks_.size() < mostWaiting || failure_; });
        if (failure_) std::rethrow_exception(failure_);
        if (taken_.empty()) return {};
        std::string piece = std::move(taken_.back());
        taken_.pop_back();
        return piece;
    }

    void push(Task task) {
        const std::scoped_lock lock(mutex_);
        tasks_.push_back(std::move(task));
        changed_.notify_all();
    }

    void work() {
        std::unique_lock lock(mutex_);
        for (;;) {
            changed_.wait(lock, [this] { return isOver_ || !tasks_.empty(); });
            if (tasks_.empty()) return;
            try {
                workOnFirst(lock);
            } catch (...) {
                // Whoever asks for a digest gets to know it.
                if (!lock.owns_lock()) lock.lock();
                failure_ = std::current_exception();
                tasks_.clear();
            }
            isBusy_ = false;
            changed_.notify_all();
        }
    }

    void workOnFirst(std::unique_lock<std::mutex>& lock) {
        Task task = std::move(tasks_.front());
        tasks_.pop_front();
        isBusy_ = true;
        changed_.notify_all();
        lock.unlock();
        if (task.file)
            task.digest->takeFile(*task.file);
        else
            task.digest->take(task.piece);
        lock.lock();
        if (!task.file) taken_.push_back(std::move(task.piece));
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Task> tasks_;
    std::vector<std::string> taken_;  ///< whose bytes are in a digest
    std::exception_ptr failure_;      ///< of the thread
    bool isBusy_ = false;
    bool isOver_ = false;
    std::thread thread_;
};

DigestThread::DigestThread() : worker_(std::make_unique<Worker>()) {}
DigestThread::~DigestThread() = default;

std::shared_ptr<DigestThread::Digest> DigestThread::begin() {
    return std::make_shared<Digest>();
}

void DigestThread::take(Digest& digest, std::string_view bytes) {
    worker_->take(digest, bytes);
}

void DigestThread::takeFile(Digest& digest, const Platform::InputFile& file) {
    worker_->takeFile(digest, file);
}

FileDigest DigestThread::finish(Digest& digest) {
    worker_->wait();
    return digest.finish();
}

void DigestThread::wait() {
    worker_->wait();
}

FileDigest digestOf(const Platform::InputFile& file) {
    DigestThread::Digest digest;
    digest.takeFile(file);
    return digest.finish();
}

FileDigest digestOfFile(const std::string& path) {
    const auto file = Platform::InputFile::open(path);
    return file ? digestOf(*file) : FileDigest{};
}

}  // namespace Strict
