#include "strict/files/RunFiles.hpp"

#include <algorithm>
#include <cstring>
#include <set>
#include <utility>

#include "platform/Paths.hpp"
#include "platform/SecretFile.hpp"

namespace Strict {

namespace {

/// Whether a file may have two roles.
bool canBeBoth(FileRole one, FileRole other) {
    const auto isRead = [](FileRole role) {
        return role == FileRole::Script || role == FileRole::IncludedFile ||
               role == FileRole::Input || role == FileRole::Key || role == FileRole::PassphraseFile;
    };
    if (isRead(one) && isRead(other)) return true;
    // What is replaced in place was read before.
    return (one == FileRole::Input && other == FileRole::Output) ||
           (one == FileRole::Output && other == FileRole::Input);
}

}  // namespace

const char* nameOf(FileRole role) {
    switch (role) {
        case FileRole::Script:
            return "script";
        case FileRole::IncludedFile:
            return "included file";
        case FileRole::Input:
            return "input";
        case FileRole::Key:
            return "key file";
        case FileRole::Output:
            return "output";
        case FileRole::DependencyFile:
            return "dependency file";
        case FileRole::Manifest:
            return "manifest";
        case FileRole::Provenance:
            return "provenance";
        case FileRole::BillOfMaterials:
            return "bill of materials";
        case FileRole::Checksums:
            return "list of checksums";
        case FileRole::Signature:
            return "signature";
        case FileRole::Report:
            return "report";
        case FileRole::PassphraseFile:
            return "passphrase file";
        case FileRole::Map:
            break;
    }
    return "map";
}

std::string reasonNotOpened(const std::string& path) {
    std::error_code error = Platform::lastError();
    if (!error) error = Platform::outputTarget(path).error;
    return error ? error.message() : "it has no end to wait for";
}

/// Writes to the temporary file of an output, or to memory.
class RunFiles::Stream final : public Io::OutputStream {
public:
    Stream(RunFiles& files, Output& output, std::optional<Platform::OutputFile> file)
        : files_(&files), output_(&output), file_(std::move(file)) {}

    bool write(std::string_view bytes) override {
        if (output_->digest != nullptr) files_->digests_->take(*output_->digest, bytes);
        if (!file_) {
            output_->keep(bytes);
            return true;
        }
        Platform::clearLastError();
        return note(file_->write(bytes));
    }

    bool close() override {
        Platform::clearLastError();
        const bool isClosed = !file_ || note(file_->close());
        output_->endComparison();
        output_->isComplete = isClosed && isWritten_;
        return isClosed;
    }

private:
    bool note(bool isGood) {
        if (!isGood) files_->noteFailure(output_->path, Platform::lastError());
        isWritten_ = isWritten_ && isGood;
        return isGood;
    }

    RunFiles* files_;
    bool isWritten_ = true;
    Output* output_;
    std::optional<Platform::OutputFile> file_;
};

RunFiles::~RunFiles() {
    for (const Output& output : all_)
        if (output.temporary && !output.isInPlace) Platform::removeFile(output.temporary->path);
}

void RunFiles::noteReason(const std::string& path, std::string reason) {
    reasons_.insert_or_assign(Platform::terminatedPath(path), std::move(reason));
}

void RunFiles::noteFailure(const std::string& path, std::error_code error) {
    if (error) noteReason(path, error.message());
}

std::string RunFiles::reasonFor(std::string_view path) const {
    const auto found = reasons_.find(Platform::terminatedPath(path));
    return found == reasons_.end() ? "" : found->second;
}

RunFiles::File& RunFiles::fileAt(const std::string& path) {
    if (const auto known = spellings_.find(path); known != spellings_.end()) return *known->second;
    return fileAt(path, Platform::outputTarget(path));
}

RunFiles::File& RunFiles::fileAt(const std::string& path, const Platform::OutputTarget& target) {
    File*& file = places_[Platform::placeOf(target)];
    // A file system that takes upper case for lower case, or one that is mounted twice, has one
    // file at places that look different.
    const auto identity = Platform::soleFileAt(path);
    if (file == nullptr && identity)
        if (const auto known = identities_.find(*identity); known != identities_.end())
            file = known->second;
    if (file == nullptr) file = &files_.emplace_back();
    if (identity) identities_.emplace(*identity, file);
    spellings_.emplace(path, file);
    return *file;
}

std::optional<RunFiles::Collision> RunFiles::name(const std::string& path, FileRole role) {
    const Platform::OutputTarget target = Platform::outputTarget(path);
    File& file = fileAt(path, target);
    const bool isDevice = target.kind == Platform::TargetKind::Device;
    const auto other = std::ranges::find_if(file.uses, [role, isDevice](const Use& use) {
        return !canBeBoth(use.role, role) && !(use.isDevice && isDevice);
    });
    if (other != file.uses.end()) return Collision{other->role, other->path};
    file.uses.push_back({role, path, isDevice});
    return std::nullopt;
}

std::string RunFiles::inputNamed(const std::string& path) {
    const auto& uses = fileAt(path).uses;
    const auto use = std::ranges::find_if(
        uses, [](const Use& known) { return known.role == FileRole::Input && !known.isDevice; });
    return use == uses.end() ? std::string() : use->path;
}

std::string RunFiles::inputName(const std::string& path) {
    return fileAt(path).inputPath.value_or(path);
}

std::string RunFiles::outputName(const std::string& path) {
    return fileAt(path).outputPath.value_or(path);
}

bool RunFiles::isUsed(const std::string& path) {
    const File& file = fileAt(path);
    return file.inputPath || file.outputPath;
}

bool RunFiles::isWritten(const std::string& path) {
    return fileAt(path).outputPath.has_value();
}

void RunFiles::noteContent(File& file, const Platform::InputFile& opened) {
    if (!keepsStates_) return;
    const auto state = opened.state();
    const bool isKnown = std::ranges::any_of(file.contents, [&](const Content& content) {
        return state && content.state == state && content.programs == programs_;
    });
    if (isKnown) return;
    Content content{state, programs_, nullptr};
    if (digests_ != nullptr) {
        content.digest = DigestPool::begin();
        digests_->takeFile(*content.digest, opened);
    }
    file.contents.push_back(std::move(content));
}

/// What this run has written and not put in place.
std::optional<Platform::InputFile> RunFiles::openWritten(const Output& output) {
    if (!output.temporary) {
        Platform::PageBlock contents(output.memory.size());
        if (contents.size() != 0)
            std::memcpy(contents.data(), output.memory.data(), contents.size());
        return Platform::InputFile::ofMemory(std::move(contents), output.memory.size());
    }
    auto file = Platform::InputFile::open(output.temporary->path);
    if (!file) noteFailure(output.path, Platform::lastError());
    // In a folder of others the name may lead to another file by now.
    if (!file || !file->state() || file->state()->identity == output.temporary->identity)
        return file;
    noteFailure(output.path, std::make_error_code(std::errc::operation_not_permitted));
    return std::nullopt;
}

std::optional<Platform::InputFile> RunFiles::openInput(const std::string& path) {
    File& file = fileAt(path);
    Platform::clearLastError();
    if (file.newest != nullptr && !file.newest->isInPlace) return openWritten(*file.newest);
    const bool isOwn = file.newest != nullptr;
    if (!isOwn && !file.inputPath) {
        file.inputPath = path;
        inputs_.push_back(path);
    }
    Platform::clearLastError();
    auto opened = Platform::InputFile::open(path);
    if (opened) {
        opened->refuseEarlyEnd();
        if (!isOwn) noteContent(file, *opened);
        return opened;
    }
    noteReason(path, reasonNotOpened(path));
    return opened;
}

std::optional<Platform::InputFile> RunFiles::openKey(const std::string& path) {
    Platform::clearLastError();
    auto opened = Platform::InputFile::open(path);
    if (!opened) noteReason(path, reasonNotOpened(path));
    Platform::keepFromPrograms(Platform::outputTarget(path).descriptor);
    return opened;
}

std::optional<Platform::InputFile> RunFiles::openAsRead(const std::string& path) {
    const File& file = fileAt(path);
    auto opened = Platform::InputFile::open(path);
    const bool isAsRead = opened && std::ranges::any_of(file.contents, [&](const Content& content) {
                              return content.state && content.state == opened->state();
                          });
    if (isAsRead) return opened;
    return file.newest == nullptr ? std::nullopt : openInput(path);
}

bool RunFiles::File::isInput() const {
    return std::ranges::any_of(uses, [](const Use& use) { return use.role == FileRole::Input; });
}

/// Takes the bytes that follow, as far as anybody will want them.
void RunFiles::Output::keep(std::string_view bytes) {
    if (comparison && !comparison->take(bytes)) keepDifferent();
    if (isKept) memory += bytes;
}

/// From now on, whoever explains the difference needs the whole output.
void RunFiles::Output::keepDifferent() {
    if (isKept || comparison->match() == FileMatch::Missing) return;
    isKept = true;
    memory = comparison->equalBytes();
}

void RunFiles::Output::endComparison() {
    if (!comparison) return;
    match = comparison->match();
    if (match == FileMatch::Different) keepDifferent();
    comparison.reset();
}

/// Adds an output that no file is created for.
std::unique_ptr<Io::OutputStream> RunFiles::addUncreated(Output output) {
    const bool isDevice = output.target.kind == Platform::TargetKind::Device;
    output.isKept = isDevice || output.file->isInput();
    if (mode_ == Mode::Comparison && !isDevice) output.comparison.emplace(output.path);
    return addOutput(std::move(output), std::nullopt);
}

std::unique_ptr<Io::OutputStream> RunFiles::addOutput(Output output,
                                                      std::optional<Platform::OutputFile> file) {
    if (hasOutputDigests_) output.digest = DigestPool::begin();
    all_.push_back(std::move(output));
    all_.back().file->newest = &all_.back();
    return std::make_unique<Stream>(*this, all_.back(), std::move(file));
}

std::unique_ptr<Io::OutputStream> RunFiles::createOutput(const std::string& path,
                                                         Platform::FileMode /*mode*/) {
    File& known = fileAt(path);
    if (!known.outputPath) {
        known.outputPath = path;
        outputs_.push_back(path);
    }
    Output output{&known, path, Platform::outputTarget(path)};
    if (output.target.kind == Platform::TargetKind::Impossible) {
        noteFailure(path, output.target.error);
        return nullptr;
    }
    if (mode_ != Mode::Disk || output.target.kind == Platform::TargetKind::Device)
        return addUncreated(std::move(output));
    std::error_code error;
    Platform::TemporaryFile temporary;
    auto file = Platform::createTemporary(output.target, guard_, number_, temporary, error);
    if (!file) {
        noteFailure(path, error);
        return nullptr;
    }
    output.temporary = std::move(temporary);
    return addOutput(std::move(output), std::move(file));
}

std::optional<RunFiles::Failure> RunFiles::putInPlace(const std::vector<Output*>& files,
                                                      const std::vector<Output*>& devices) {
    Platform::Replacement replacement(guard_);
    for (const Output* const output : files) replacement.add(*output->temporary, output->target);
    const auto failure = [](const Output& output, std::error_code error) {
        return Failure{output.path, error.message(), {}};
    };
    std::vector<Platform::OutputFile> open;
    if (!devices.empty())
        if (const auto failed = replacement.tryAll())
            return failure(*files[failed->file], failed->error);
    for (const Output* const output : devices) {
        Platform::clearLastError();
        auto device = Platform::openDevice(output->target);
        if (!device || !device->write(output->memory))
            return failure(*output, Platform::lastError());
        open.push_back(std::move(*device));
    }
    std::optional<Failure> failed;
    if (const auto first = replacement.putInPlace(!devices.empty()))
        failed = failure(*files[first->file], first->error);
    for (std::size_t i = 0; i < open.size() && !failed; ++i) {
        Platform::clearLastError();
        if (!open[i].close()) failed = failure(*devices[i], Platform::lastError());
    }
    if (failed) {
        for (const std::size_t left : replacement.takeBack()) {
            files[left]->isInPlace = true;
            failed->stillNew.push_back(files[left]->path);
        }
        return failed;
    }
    // Whatever needs memory comes before, so that nothing fails after it.
    for (std::string& folder : replacement.busyFolders()) busyFolders_.push_back(std::move(folder));
    replacement.keep();
    return std::nullopt;
}

std::optional<RunFiles::Failure> RunFiles::commit() {
    if (mode_ != Mode::Disk || hasStopped_) return std::nullopt;
    std::vector<Output*> files;
    std::vector<Output*> devices;
    for (Output& output : all_)
        if (output.isComplete && !output.isInPlace)
            (output.temporary ? files : devices).push_back(&output);
    if (files.empty() && devices.empty()) return std::nullopt;
    if (auto failed = putInPlace(files, devices)) return failed;
    for (const auto* const list : {&files, &devices})
        for (Output* const output : *list) output->isInPlace = true;
    return std::nullopt;
}

std::vector<std::string> RunFiles::inPlace() const {
    std::vector<std::string> paths;
    std::set<const File*> listed;
    for (const Output& output : all_)
        if (output.isInPlace && listed.insert(output.file).second) paths.push_back(output.path);
    return paths;
}

int RunFiles::runProgram(const std::string& location, const std::string& arguments) {
    if (mode_ != Mode::Disk) return 0;
    if (hasStopped_) {
        hasLeftOutProgram_ = true;
        return 0;
    }
    // It may change what has been read, whose bytes must be in the digests before.
    if (digests_ != nullptr) digests_->wait();
    if (const auto failure = commit()) {
        noteReason(location, "cannot write " + failure->path + ": " + failure->reason);
        return -1;
    }
    ++programs_;
    spellings_.clear();
    return Io::Host::runProgram(location, arguments);
}

std::vector<FileDigest> RunFiles::inputDigests(const std::string& path) {
    std::vector<FileDigest> digests;
    if (digests_ == nullptr) return digests;
    for (const Content& content : fileAt(path).contents) {
        const FileDigest digest = digests_->finish(*content.digest);
        const bool isKnown = std::ranges::any_of(
            digests, [&](const FileDigest& known) { return known.sha256 == digest.sha256; });
        if (!isKnown) digests.push_back(digest);
    }
    return digests;
}

/// Without a digest, a file has the state that it had, unless a program has been started since,
/// which may change it. What is not a regular file has none.
bool RunFiles::hasChanged(const File& file, const Content& content) {
    if (content.digest != nullptr) return digests_->finish(*content.digest).hasChanged;
    if (!content.state || content.programs != programs_) return false;
    const auto opened = Platform::InputFile::open(*file.inputPath);
    return !opened || opened->state() != content.state;
}

std::vector<std::string> RunFiles::changedInputs() {
    std::vector<std::string> changed;
    for (const File& file : files_)
        if (std::ranges::any_of(file.contents, [&](const auto& c) { return hasChanged(file, c); }))
            changed.push_back(*file.inputPath);
    return changed;
}

FileDigest RunFiles::outputDigest(const std::string& path) {
    const Output* const output = fileAt(path).newest;
    if (output == nullptr || output->digest == nullptr) return {};
    // Only for a program was it put in place yet, and the program may have changed it.
    if (output->isInPlace && output->temporary) return digestOfFile(path);
    return digests_->finish(*output->digest);
}

bool RunFiles::isStream(const std::string& path) {
    const Output* const output = fileAt(path).newest;
    return output != nullptr && output->target.kind == Platform::TargetKind::Device;
}

std::string_view RunFiles::contentsOf(const std::string& path) {
    const Output* const output = fileAt(path).newest;
    return output == nullptr ? std::string_view() : output->memory;
}

FileMatch RunFiles::matchOnDisk(const std::string& path) {
    const Output* const output = fileAt(path).newest;
    if (output == nullptr) return FileMatch::Missing;
    if (output->target.kind != Platform::TargetKind::Device) return output->match;
    FileComparison comparison(path);
    comparison.take(output->memory);
    return comparison.match();
}

}  // namespace Strict
