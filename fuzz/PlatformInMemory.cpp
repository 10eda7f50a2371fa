#include "fuzz/PlatformInMemory.hpp"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <new>

#include "platform/Files.hpp"
#include "platform/Limits.hpp"
#include "platform/Memory.hpp"
#include "platform/Paths.hpp"
#include "platform/Process.hpp"
#include "platform/Streams.hpp"
#include "platform/Version.hpp"

namespace Fuzz {

namespace {

/// Global, since the functions of the platform have no argument for the machine.
Machine* machine = nullptr;

}  // namespace

Machine::Machine()
    : standardOutput_(std::cout.rdbuf(&nowhere_)), standardError_(std::cerr.rdbuf(&nowhere_)) {
    // The number base intentionally outlives a run, but no run may depend on the previous one.
    std::cout << std::dec;
    machine = this;
}

Machine::~Machine() {
    machine = nullptr;
    std::cout.rdbuf(standardOutput_);
    std::cerr.rdbuf(standardError_);
}

void Machine::addFile(const std::string& path, std::string_view contents) {
    files_.insert_or_assign(path, std::string(contents));
}

int Machine::open(const std::string& path) {
    const auto file = files_.find(path);
    if (file == files_.end()) return -1;
    opened_.push_back(&file->second);
    return static_cast<int>(opened_.size() - 1);
}

std::string_view Machine::contents(int descriptor) const {
    return *opened_.at(static_cast<std::size_t>(descriptor));
}

int Machine::create(const std::string& path) {
    if (path.empty() || path.ends_with(Platform::pathSeparator)) return -1;
    std::string& file = files_[path];
    file.clear();
    opened_.push_back(&file);
    return static_cast<int>(opened_.size() - 1);
}

bool Machine::write(int descriptor, std::string_view bytes) {
    const std::size_t taken = std::min(outputLeft_, bytes.size());
    opened_.at(static_cast<std::size_t>(descriptor))->append(bytes.substr(0, taken));
    outputLeft_ -= taken;
    return taken == bytes.size();
}

}  // namespace Fuzz

namespace Platform {

const char pathSeparator = '/';

std::size_t fileNameStart(const std::string& path) {
    return path.rfind('/') + 1;
}

bool isRegularFile(const std::string& /*path*/) {
    return true;
}

std::vector<FolderEntry> entriesOf(const std::string& /*folder*/, std::size_t /*most*/) {
    return {{"part.tsn", false}, {"folder", true}};
}

std::string absolutePath(const std::string& path) {
    return path;
}

std::string portablePath(const std::string& path) {
    return path;
}

std::string besideProgram(const std::string& /*path*/) {
    return "";
}

std::optional<VersionInfo> versionInfo(const char* /*programPath*/) {
    return std::nullopt;
}

PageBlock::PageBlock(std::size_t size) {
    if (size == 0) return;
    if (size > Fuzz::Machine::mostPages) throw std::bad_alloc();
    data_ = static_cast<std::byte*>(std::calloc(size, 1));
    if (data_ == nullptr) throw std::bad_alloc();
    size_ = size;
}

PageBlock PageBlock::reserve(std::size_t size) {
    return PageBlock(size);
}

void PageBlock::take(std::size_t /*offset*/, std::size_t /*size*/) {}

PageBlock::~PageBlock() {
    std::free(data_);
}

std::optional<InputFile> InputFile::open(const std::string& path) {
    const int descriptor = Fuzz::machine->open(path);
    if (descriptor < 0) return std::nullopt;
    InputFile file(descriptor);
    file.state_.size = Fuzz::machine->contents(descriptor).size();
    file.state_.identity.number = static_cast<std::uint64_t>(descriptor);
    return file;
}

std::optional<InputFile> InputFile::openStandardInput() {
    return std::nullopt;
}

InputFile::~InputFile() = default;

std::optional<InputFile> InputFile::again() const {
    InputFile file(descriptor_);
    file.state_ = state_;
    return file;
}

std::size_t InputFile::readAt(std::uint64_t offset, std::span<char> out) const {
    const std::string_view contents = Fuzz::machine->contents(descriptor_);
    const std::string_view rest = contents.substr(std::min<std::size_t>(offset, contents.size()));
    const std::size_t size = std::min(rest.size(), out.size());
    std::ranges::copy(rest.substr(0, size), out.begin());
    return size;
}

bool InputFile::isReadableByOthers() const {
    return false;
}

Reading InputFile::reading() const {
    // The file may have been overwritten since; its size shows that.
    return Fuzz::machine->contents(descriptor_).size() == state_.size ? Reading::Complete
                                                                      : Reading::Changed;
}

std::optional<OutputFile> OutputFile::create(const std::string& path, FileMode mode) {
    const int descriptor = Fuzz::machine->create(path);
    if (descriptor < 0) return std::nullopt;
    return OutputFile(descriptor, mode);
}

std::optional<OutputFile> OutputFile::createNew(const std::string& path, bool /*isPrivate*/) {
    return create(path, FileMode::Binary);
}

std::optional<OutputFile> OutputFile::ofStream(int descriptor) {
    return OutputFile(descriptor, FileMode::Binary);
}

std::error_code OutputFile::takeAttributesOf(const std::string& /*path*/) const {
    return {};
}

FileIdentity OutputFile::identity() const {
    return {0, static_cast<std::uint64_t>(descriptor_)};
}

OutputFile::~OutputFile() = default;

bool OutputFile::write(std::string_view bytes) const {
    return Fuzz::machine->write(descriptor_, bytes);
}

bool OutputFile::close() {
    return true;
}

StreamGuard::StreamGuard() = default;

StreamGuard::~StreamGuard() = default;

bool showsColor(StandardStream /*stream*/) {
    return false;
}

std::size_t terminalWidth() {
    return 0;
}

bool showsUnicode() {
    return false;
}

std::error_code changeFolder(const std::string& /*path*/) {
    return {};
}

std::size_t readInput(std::span<char> /*bytes*/) {
    return 0;
}

int runProgram(const std::string& /*location*/, const std::string& /*arguments*/) {
    return 0;
}

std::uint64_t usableSteps() {
    // Steps are slow under the sanitizers and with comparisons traced.
    return 200'000;
}

}  // namespace Platform

// The machine limits every allocation of a container. All forms are replaced, since a block must be
// freed by the allocator that it came from.

namespace {

void* allocated(std::size_t size) noexcept {
    if (Fuzz::machine != nullptr && size > Fuzz::Machine::mostHeap) return nullptr;
    return std::malloc(std::max<std::size_t>(size, 1));
}

void* allocatedOrThrow(std::size_t size) {
    void* const block = allocated(size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

}  // namespace

void* operator new(std::size_t size) {
    return allocatedOrThrow(size);
}
void* operator new[](std::size_t size) {
    return allocatedOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return allocated(size);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return allocated(size);
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete[](void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}
void operator delete[](void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}
void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept {
    std::free(block);
}
void operator delete[](void* block, const std::nothrow_t& /*tag*/) noexcept {
    std::free(block);
}
