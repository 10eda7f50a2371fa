#include "strict/files/FileDigests.hpp"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "inspect/Digest.hpp"
#include "platform/Paths.hpp"

namespace Strict {

namespace {

constexpr std::size_t pieceSize = std::size_t{1} << 18U;

FileDigest digestOf(const Platform::InputFile& file) {
    Inspect::Sha256 hash;
    std::vector<char> piece(pieceSize);
    std::uint64_t at = 0;
    for (std::size_t got = piece.size(); got == piece.size(); at += got) {
        got = file.readAt(at, piece);
        hash.take({piece.data(), got});
    }
    return {hash.finish(), at};
}

}  // namespace

/// A queue of pieces and the thread that takes them from it.
class BackgroundDigest::Worker {
public:
    Worker() {
        try {
            thread_ = std::thread([this] { work(); });
        } catch (const std::system_error&) {
            // Without a thread the caller's own does the work.
        }
    }

    ~Worker() { end(); }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    void take(std::string_view bytes) {
        size_ += bytes.size();
        if (!thread_.joinable()) {
            hash_.take(bytes);
            return;
        }
        std::string piece = emptyPiece();
        piece.assign(bytes);
        const std::scoped_lock lock(mutex_);
        pieces_.push_back(std::move(piece));
        changed_.notify_all();
    }

    FileDigest finish() {
        end();
        return {hash_.finish(), size_};
    }

private:
    static constexpr std::size_t mostWaiting = 16;

    /// Waits until a piece may be added. Its memory is that of a piece that has been taken: the
    /// pages of a new one would have to be cleared.
    std::string emptyPiece() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return pieces_.size() < mostWaiting; });
        if (taken_.empty()) return {};
        std::string piece = std::move(taken_.back());
        taken_.pop_back();
        return piece;
    }

    void end() {
        if (!thread_.joinable()) return;
        {
            const std::scoped_lock lock(mutex_);
            isOver_ = true;
            changed_.notify_all();
        }
        thread_.join();
    }

    void work() {
        std::unique_lock lock(mutex_);
        for (;;) {
            changed_.wait(lock, [this] { return isOver_ || !pieces_.empty(); });
            if (pieces_.empty()) return;
            std::string piece = std::move(pieces_.front());
            pieces_.pop_front();
            changed_.notify_all();
            lock.unlock();
            hash_.take(piece);
            lock.lock();
            taken_.push_back(std::move(piece));
        }
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::string> pieces_;
    std::vector<std::string> taken_;  ///< whose bytes are in the digest
    bool isOver_ = false;
    std::uint64_t size_ = 0;
    Inspect::Sha256 hash_;
    std::thread thread_;
};

BackgroundDigest::BackgroundDigest() : worker_(std::make_unique<Worker>()) {}
BackgroundDigest::~BackgroundDigest() = default;

void BackgroundDigest::take(std::string_view bytes) {
    worker_->take(bytes);
}

FileDigest BackgroundDigest::finish() {
    return worker_->finish();
}

FileDigest digestOfFile(const std::string& path) {
    const auto file = Platform::InputFile::open(path);
    return file ? digestOf(*file) : FileDigest{};
}

void FileDigests::addInput(const std::string& path, const Platform::InputFile& file) {
    if (inputs_.contains(path)) return;
    if (Platform::isRegularFile(path)) {
        // The policy lets the machine put the work off if it has no thread for it.
        inputs_.emplace(path, std::async(std::launch::async | std::launch::deferred,
                                         [path] { return digestOfFile(path); }));
        return;
    }
    // What is no regular file can be read only once, and is in memory already.
    std::promise<FileDigest> known;
    known.set_value(digestOf(file));
    inputs_.emplace(path, known.get_future());
}

BackgroundDigest& FileDigests::addOutput(const std::string& path) {
    auto& digest = outputs_[path];
    digest = std::make_unique<BackgroundDigest>();
    return *digest;
}

FileDigest FileDigests::input(const std::string& path) {
    const auto found = inputs_.find(path);
    return found == inputs_.end() ? FileDigest{} : found->second.get();
}

FileDigest FileDigests::output(const std::string& path) {
    const auto found = outputs_.find(path);
    return found == outputs_.end() ? FileDigest{} : found->second->finish();
}

}  // namespace Strict
