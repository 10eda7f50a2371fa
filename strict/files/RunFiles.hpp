#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "io/Host.hpp"
#include "platform/Replace.hpp"
#include "strict/files/DigestPool.hpp"
#include "strict/files/FileComparison.hpp"
#include "strict/files/SourceDate.hpp"

namespace Strict {

/// What a file is to a run.
enum class FileRole : std::uint8_t {
    Script,
    IncludedFile,  ///< a part of the script
    Input,
    Key,             ///< neither listed nor are its bytes looked at
    PassphraseFile,  ///< the same
    Output,
    DependencyFile,
    Manifest,  ///< to be written
    Provenance,
    BillOfMaterials,
    Checksums,
    Signature,  ///< of one of the four
    Report,
    Map
};

/// "script", "input", "dependency file" and so on.
const char* nameOf(FileRole role);

/// Why the last call of the system did not open the file at the path for reading.
std::string reasonNotOpened(const std::string& path);

/// The files of a run. Each is one object, known by its place and not by the spelling of its path:
/// its spellings and roles, what was read of it, and what is written to it.
///
/// Outputs appear together or not at all. Each is written to a temporary file beside its target;
/// `commit` lets them take the places of their targets, and without it the destructor removes them.
/// What cannot be replaced, such as a device, is kept in memory and written by `commit`. Before a
/// program is started, what has been written so far is put in place, since the program may need it.
/// A file that this run has written is read as it was written. Where nothing is created, an output
/// is kept if it is named as an input too, and if it differs from the file that it is compared
/// with.
///
/// Digests are those of the bytes that were read or written: of an input, from the file that was
/// open; of an output, from what went into it, unless a program that was called may have changed
/// it since.
class RunFiles final : public Io::Host {
public:
    enum class Mode : unsigned char {
        Disk,
        Memory,     ///< nothing is created, and no program is started
        Comparison  ///< the same, and each output is compared with the file that is there
    };

    /// A file that cannot have a role beside one that it has already.
    struct Collision {
        FileRole role;     ///< that it has
        std::string path;  ///< as that role names it
    };

    /// A file that could not be put in place.
    struct Failure {
        std::string path;
        std::string reason;
        /// Outputs that are in place all the same, since what they replaced could not be restored.
        std::vector<std::string> stillNew;
    };

    explicit RunFiles(Mode mode) : mode_(mode) {}
    ~RunFiles() override;

    /// Names a file of the run before it is read or written. What a run writes has one role, and
    /// an output may be an input besides: it is read before it is replaced. Streams and devices may
    /// be written by several.
    ///
    /// @return the role that excludes this one, if the file has one
    std::optional<Collision> name(const std::string& path, FileRole role);

    /// The spelling by which the file of a path was named as an input; empty if it was not.
    std::string inputNamed(const std::string& path);

    std::optional<Platform::InputFile> openInput(const std::string& path) override;
    std::optional<Platform::InputFile> openKey(const std::string& path) override;
    std::unique_ptr<Io::OutputStream> createOutput(const std::string& path,
                                                   Platform::FileMode mode) override;
    int runProgram(const std::string& location, const std::string& arguments) override;
    std::optional<std::string> timeText() override { return sourceDate(); }

    /// Notes the states of inputs from now on, by which it is found out whether they have changed.
    void keepStates() { keepsStates_ = true; }

    /// The same, and lets digests be computed while files are read and written.
    void keepDigests() {
        keepStates();
        digests_ = std::make_unique<DigestPool>();
        hasOutputDigests_ = true;
    }

    /// What is written from now on has no digest: a document of the run lists none of another.
    void keepNoMoreDigests() { hasOutputDigests_ = false; }

    /// The digests of what was read of an input: one, or several if a program that was called has
    /// changed the file between two statements that read it; none if digests are not wanted.
    ///
    /// @throws std::bad_alloc  if the memory did not suffice for them
    std::vector<FileDigest> inputDigests(const std::string& path);

    /// Inputs that have changed since they were opened, or that could not be read a second time:
    /// their digests may not be those of what was read.
    ///
    /// @throws std::bad_alloc  as above
    std::vector<std::string> changedInputs();

    /// The digest of an output as it is now; an empty one if those of outputs are not wanted.
    ///
    /// @throws std::bad_alloc  if the memory did not suffice for it
    FileDigest outputDigest(const std::string& path);

    /// The threads that compute the digests, for other work at the end of a run.
    DigestPool& threads() { return *digests_; }

    /// Opens what a statement has read once more: an input in the state in which it was read, or
    /// what this run has written. Nothing if the input has changed since.
    std::optional<Platform::InputFile> openAsRead(const std::string& path);

    /// No statement may start a program or put anything in place any more: one has failed, and
    /// those after it run to find more errors only.
    void stopEffects() { hasStopped_ = true; }

    /// A program was not started for that reason.
    bool hasLeftOutProgram() const { return hasLeftOutProgram_; }

    /// Puts the outputs that are complete in place: all of them or none. What cannot be replaced is
    /// written before the others are renamed, and closed after that: who reads a pipe to its end
    /// finds the files.
    std::optional<Failure> commit();

    /// Folders that another program kept locked for so long that they were written nevertheless.
    const std::vector<std::string>& busyFolders() const { return busyFolders_; }

    /// Why `path` could not be opened, created or written; empty if no reason is known.
    std::string reasonFor(std::string_view path) const;

    /// Outputs that are in place, as the script names them.
    std::vector<std::string> inPlace() const;

    /// All files that were opened, those that the run itself wrote left out, and all outputs, each
    /// once, by the spelling that came first.
    const std::vector<std::string>& inputs() const { return inputs_; }
    const std::vector<std::string>& outputs() const { return outputs_; }

    /// The spelling by which `inputs` or `outputs` has the file of a path, or the path itself.
    std::string inputName(const std::string& path);
    std::string outputName(const std::string& path);

    /// The file of the path is an input or an output of the run.
    bool isUsed(const std::string& path);

    /// The file of the path is an output of the run.
    bool isWritten(const std::string& path);

    /// The output of the path leaves no file: it is a device, a pipe or a stream.
    bool isStream(const std::string& path);

    /// What this run has written to an output that is kept in memory.
    std::string_view contentsOf(const std::string& path);

    /// How the file that an output would replace compares with it. Outputs are compared while they
    /// are written; devices, which give what they have once, now.
    FileMatch matchOnDisk(const std::string& path);

private:
    class Stream;
    struct File;
    /// What was written to a file by one statement.
    struct Output {
        File* file;
        std::string path;  ///< as the statement names it
        Platform::OutputTarget target;
        std::optional<Platform::TemporaryFile> temporary = {};  ///< none where nothing is created
        std::string memory = {};
        bool isKept = false;                            ///< in memory
        std::optional<FileComparison> comparison = {};  ///< while it is written
        FileMatch match = FileMatch::Missing;
        std::shared_ptr<DigestPool::Digest> digest = {};  ///< null if nobody wants it
        bool isComplete = false;                          ///< all was written, and it was closed
        bool isInPlace = false;

        void keep(std::string_view bytes);
        void keepDifferent();
        void endComparison();
    };
    /// A state of a file that was read.
    struct Content {
        std::optional<Platform::FileState> state;    ///< none for a file that is not regular
        unsigned programs;                           ///< that had been started before
        std::shared_ptr<DigestPool::Digest> digest;  ///< null if nobody wants it
    };
    struct Use {
        FileRole role;
        std::string path;
        bool isDevice;
    };
    struct File {
        std::vector<Use> uses;
        std::vector<Content> contents;
        std::optional<std::string> inputPath;   ///< by which it was first opened
        std::optional<std::string> outputPath;  ///< by which it was first created
        Output* newest = nullptr;

        bool isInput() const;
    };

    File& fileAt(const std::string& path);
    File& fileAt(const std::string& path, const Platform::OutputTarget& target);
    void noteContent(File& file, const Platform::InputFile& opened);
    bool hasChanged(const File& file, const Content& content);
    std::optional<Platform::InputFile> openWritten(const Output& output);
    std::unique_ptr<Io::OutputStream> addOutput(Output output,
                                                std::optional<Platform::OutputFile> file);
    std::unique_ptr<Io::OutputStream> addUncreated(Output output);
    void noteReason(const std::string& path, std::string reason);
    void noteFailure(const std::string& path, std::error_code error);
    std::optional<Failure> putInPlace(const std::vector<Output*>& files,
                                      const std::vector<Output*>& devices);

    Mode mode_;
    Platform::InterruptGuard guard_;
    std::deque<File> files_;  ///< deques, since they never move what others point to
    std::unordered_map<std::string, File*> places_;
    std::map<Platform::FileIdentity, File*> identities_;  ///< of files with one name
    /// By spellings, until a program that is called may have changed what they mean.
    std::unordered_map<std::string, File*> spellings_;
    std::deque<Output> all_;
    unsigned number_ = 0;    ///< of the next temporary file
    unsigned programs_ = 0;  ///< that were started
    bool hasStopped_ = false;
    bool hasLeftOutProgram_ = false;
    std::map<std::string, std::string> reasons_;  ///< by the paths of the system
    std::vector<std::string> inputs_;
    std::vector<std::string> outputs_;
    std::vector<std::string> busyFolders_;
    std::unique_ptr<DigestPool> digests_;  ///< null if nobody wants them
    bool keepsStates_ = false;
    bool hasOutputDigests_ = false;
};

}  // namespace Strict
