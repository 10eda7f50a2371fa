#include "io/Host.hpp"

#include <utility>

#include "platform/Process.hpp"

namespace Io {

namespace {

class PlainOutput final : public OutputStream {
public:
    explicit PlainOutput(Platform::OutputFile file) : file_(std::move(file)) {}

    bool write(std::string_view bytes) override { return file_.write(bytes); }
    bool close() override { return file_.close(); }

private:
    Platform::OutputFile file_;
};

thread_local Host* current = nullptr;

}  // namespace

std::optional<Platform::InputFile> Host::openInput(const std::string& path) {
    return Platform::InputFile::open(path);
}

std::unique_ptr<OutputStream> Host::createOutput(const std::string& path, Platform::FileMode mode) {
    auto file = Platform::OutputFile::create(path, mode);
    if (!file) return nullptr;
    return std::make_unique<PlainOutput>(std::move(*file));
}

int Host::runProgram(const std::string& location, const std::string& arguments) {
    return Platform::runProgram(location, arguments);
}

Host& host() {
    static Host machine;
    return current == nullptr ? machine : *current;
}

HostScope::HostScope(Host& host) : outer_(std::exchange(current, &host)) {}

HostScope::~HostScope() {
    current = outer_;
}

}  // namespace Io
