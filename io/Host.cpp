#include "io/Host.hpp"

#include <array>
#include <utility>

#include "platform/Process.hpp"

namespace Io {

namespace {

class PlainOutput final : public OutputStream {
public:
    bool create(const std::string& path, Platform::FileMode mode) {
        auto file = Platform::OutputFile::create(path, mode);
        if (file) file_.emplace(std::move(*file));
        return file_.has_value();
    }

    bool write(std::string_view bytes) override { return file_->write(bytes); }
    bool close() override { return file_->close(); }

private:
    std::optional<Platform::OutputFile> file_;
};

thread_local Host* current = nullptr;

}  // namespace

std::optional<Platform::InputFile> Host::openInput(const std::string& path) {
    return Platform::InputFile::open(path);
}

std::optional<Platform::InputFile> Host::openKey(const std::string& path) {
    return Platform::InputFile::open(path);
}

std::unique_ptr<OutputStream> Host::createOutput(const std::string& path, Platform::FileMode mode) {
    // Memory may run out, so all of it is taken before the file is touched.
    auto output = std::make_unique<PlainOutput>();
    return output->create(path, mode) ? std::move(output) : nullptr;
}

int Host::runProgram(const std::string& location, const std::string& arguments) {
    return Platform::runProgram(location, arguments);
}

std::optional<std::string> Host::timeText() {
    const std::time_t now = std::time(nullptr);
    return Io::timeText(*std::localtime(&now));
}

std::string timeText(const std::tm& time) {
    std::array<char, sizeof "-2147483648-12-31 23:59:59"> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &time)};
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
