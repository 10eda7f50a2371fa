#pragma once

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "io/Host.hpp"
#include "platform/Replace.hpp"
#include "strict/files/FileDigests.hpp"
#include "strict/files/SourceDate.hpp"

namespace Strict {

/// Paths, each once, in the order in which they came.
class PathList {
public:
    void add(const std::string& path) {
        if (known_.insert(path).second) paths_.push_back(path);
    }
    const std::vector<std::string>& paths() const { return paths_; }

private:
    std::vector<std::string> paths_;
    std::unordered_set<std::string> known_;
};

/// The files of a run: its outputs appear together or not at all.
///
/// Each output is written to a temporary file beside its target. `commit` lets them take the places
/// of their targets; without it the destructor removes them. A target that is no regular file is
/// kept in memory and written by `commit`, after the others. Before a program is started, what has
/// been written so far is put in place, since the program may need it. A path that this run has
/// written is read as it was written.
class OutputSet final : public Io::Host {
public:
    enum class Mode : unsigned char {
        Disk,
        Memory  ///< nothing is created, and no program is started
    };

    /// A file that could not be put in place.
    struct Failure {
        std::string path;
        std::string reason;
    };

    explicit OutputSet(Mode mode) : mode_(mode) {}
    ~OutputSet() override;

    std::optional<Platform::InputFile> openInput(const std::string& path) override;
    std::unique_ptr<Io::OutputStream> createOutput(const std::string& path,
                                                   Platform::FileMode mode) override;
    int runProgram(const std::string& location, const std::string& arguments) override;
    std::optional<std::string> timeText() override { return sourceDate(); }

    /// Lets the digests of all files be computed from now on, while they are read and written.
    void keepDigests() { digests_ = std::make_unique<FileDigests>(); }

    /// The digest of an input, or of an output as it is now. Called once for each path, when all
    /// have been read and written.
    FileDigest inputDigest(const std::string& path) { return digests_->input(path); }
    FileDigest outputDigest(const std::string& path);

    /// Puts the outputs that are complete in place, in the order of their statements. Stops at the
    /// first that fails.
    std::optional<Failure> commit();

    /// Why `path` could not be opened, created or written; empty if no reason is known.
    std::string reasonFor(std::string_view path) const;

    /// Outputs that are in place, by the paths of the script.
    const std::vector<std::string>& inPlace() const { return inPlace_.paths(); }

    /// The paths of all files that were opened, those that the run itself wrote left out, and of
    /// all outputs, each once, as the script names them.
    const std::vector<std::string>& inputs() const { return inputs_.paths(); }
    const std::vector<std::string>& outputs() const { return outputs_.paths(); }

    /// What this run has written to an output that is kept in memory.
    std::string_view contentsOf(const std::string& path) const;

private:
    class Stream;
    struct Output {
        std::string path;  ///< as the script names it
        Platform::OutputTarget target;
        std::string temporary;  ///< empty for what is kept in memory
        std::string memory;
        bool isComplete = false;  ///< all of it was written, and it was closed
        bool isInPlace = false;
    };

    /// The newest output at the place of `path`: it replaces what was written there before.
    const Output* find(const std::string& path) const;
    void add(Output output);
    bool keepsInMemory(const Output& output) const;
    std::error_code place(Output& output);
    void noteFailure(const std::string& path, std::error_code error);

    Mode mode_;
    Platform::InterruptGuard guard_;
    std::deque<Output> all_;  ///< a deque, since it never moves what streams write to
    std::unordered_map<std::string, const Output*> newest_;  ///< by real places
    unsigned number_ = 0;
    std::map<std::string, std::string, std::less<>> reasons_;
    PathList inPlace_;
    PathList inputs_;
    PathList outputs_;
    std::unique_ptr<FileDigests> digests_;  ///< null if nobody wants them
};

}  // namespace Strict
