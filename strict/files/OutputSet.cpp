#include "strict/files/OutputSet.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Strict {

/// Writes to the temporary file of an output, or to memory.
class OutputSet::Stream final : public Io::OutputStream {
public:
    Stream(OutputSet& set, Output& output, std::optional<Platform::OutputFile> file)
        : set_(&set),
          output_(&output),
          file_(std::move(file)),
          digest_(set.digests_ == nullptr ? nullptr : &set.digests_->addOutput(output.path)) {}

    bool write(std::string_view bytes) override {
        if (digest_ != nullptr) digest_->take(bytes);
        if (!file_) {
            output_->memory += bytes;
            return true;
        }
        Platform::clearLastError();
        return note(file_->write(bytes));
    }

    bool close() override {
        Platform::clearLastError();
        const bool isClosed = !file_ || note(file_->close());
        output_->isComplete = isClosed && isWritten_;
        return isClosed;
    }

private:
    bool note(bool isGood) {
        if (!isGood) set_->noteFailure(output_->path, Platform::lastError());
        isWritten_ = isWritten_ && isGood;
        return isGood;
    }

    OutputSet* set_;
    bool isWritten_ = true;
    Output* output_;
    std::optional<Platform::OutputFile> file_;
    BackgroundDigest* digest_;  ///< null if nobody wants it
};

OutputSet::~OutputSet() {
    for (const Output& output : all_) {
        if (output.temporary.empty() || output.isInPlace) continue;
        Platform::removeFile(output.temporary);
        guard_.remove(output.temporary);
    }
}

void OutputSet::noteFailure(const std::string& path, std::error_code error) {
    if (error) reasons_.insert_or_assign(path, error.message());
}

std::string OutputSet::reasonFor(std::string_view path) const {
    const auto found = reasons_.find(path);
    return found == reasons_.end() ? "" : found->second;
}

const OutputSet::Output* OutputSet::find(const std::string& path) const {
    if (newest_.empty()) return nullptr;
    const auto found = newest_.find(Platform::placeOf(Platform::outputTarget(path)));
    return found == newest_.end() ? nullptr : found->second;
}

void OutputSet::add(Output output) {
    const std::string place = Platform::placeOf(output.target);
    all_.push_back(std::move(output));
    newest_.insert_or_assign(place, &all_.back());
}

bool OutputSet::keepsInMemory(const Output& output) const {
    return mode_ == Mode::Memory || output.target.kind == Platform::TargetKind::Device;
}

std::optional<Platform::InputFile> OutputSet::openInput(const std::string& path) {
    const Output* const written = find(path);
    Platform::clearLastError();
    if (written != nullptr && written->temporary.empty() && !written->isInPlace) {
        Platform::PageBlock contents(written->memory.size());
        if (contents.size() != 0)
            std::memcpy(contents.data(), written->memory.data(), contents.size());
        return Platform::InputFile::ofMemory(std::move(contents), written->memory.size());
    }
    if (written != nullptr && !written->isInPlace)
        return Platform::InputFile::open(written->temporary);
    if (written == nullptr) inputs_.add(path);
    auto file = Platform::InputFile::open(path);
    if (file && written == nullptr && digests_ != nullptr) digests_->addInput(path, *file);
    if (file) return file;
    const std::error_code error = Platform::lastError();
    reasons_.insert_or_assign(path, error ? error.message() : "It has no end to wait for");
    const Platform::OutputTarget target = Platform::outputTarget(path);
    if (!error && target.error) noteFailure(path, target.error);
    return file;
}

std::unique_ptr<Io::OutputStream> OutputSet::createOutput(const std::string& path,
                                                          Platform::FileMode /*mode*/) {
    outputs_.add(path);
    Output output{path, Platform::outputTarget(path), {}, {}, false, false};
    if (output.target.kind == Platform::TargetKind::Impossible) {
        noteFailure(path, output.target.error);
        return nullptr;
    }
    if (keepsInMemory(output)) {
        add(std::move(output));
        return std::make_unique<Stream>(*this, all_.back(), std::nullopt);
    }
    std::error_code error;
    auto file = Platform::createTemporary(output.target, number_, output.temporary, error);
    if (!file) {
        noteFailure(path, error);
        return nullptr;
    }
    guard_.add(output.temporary);
    add(std::move(output));
    return std::make_unique<Stream>(*this, all_.back(), std::move(file));
}

std::error_code OutputSet::place(Output& output) {
    if (output.temporary.empty()) {
        auto device = Platform::OutputFile::create(output.target.path, Platform::FileMode::Binary);
        if (!device) return Platform::lastError();
        if (!device->write(output.memory) || !device->close()) return Platform::lastError();
        return {};
    }
    // The file may have come or changed its mode since the target was looked at.
    const Platform::OutputTarget target = Platform::outputTarget(output.path);
    if (target.kind == Platform::TargetKind::Impossible) return target.error;
    const std::error_code error = Platform::replaceTarget(output.temporary, target);
    if (!error) guard_.remove(output.temporary);
    return error;
}

std::optional<OutputSet::Failure> OutputSet::commit() {
    if (mode_ == Mode::Memory) return std::nullopt;
    for (const bool isDevice : {false, true}) {
        for (Output& output : all_) {
            if (!output.isComplete || output.isInPlace) continue;
            if (output.temporary.empty() != isDevice) continue;
            if (const std::error_code error = place(output))
                return Failure{output.path, error.message()};
            output.isInPlace = true;
            inPlace_.add(output.path);
        }
    }
    return std::nullopt;
}

int OutputSet::runProgram(const std::string& location, const std::string& arguments) {
    if (mode_ == Mode::Memory) return 0;
    if (const auto failure = commit()) {
        reasons_.insert_or_assign(location,
                                  "cannot write " + failure->path + ": " + failure->reason);
        return -1;
    }
    return Io::Host::runProgram(location, arguments);
}

FileDigest OutputSet::outputDigest(const std::string& path) {
    const Output* const output = find(path);
    // A program that was called may have changed what is in place.
    const bool isOnDisk = output != nullptr && output->isInPlace && !output->temporary.empty();
    return isOnDisk ? digestOfFile(path) : digests_->output(path);
}

std::string_view OutputSet::contentsOf(const std::string& path) const {
    const Output* const output = find(path);
    return output == nullptr ? std::string_view() : output->memory;
}

}  // namespace Strict
