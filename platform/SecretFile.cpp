#include "platform/SecretFile.hpp"

namespace Platform {

SecretFile::SecretFile(InputFile file)
    : bytes_(longest + 1), isReadableByOthers_(file.isReadableByOthers()) {
    forbidCoreFile();
    const std::size_t size =
        file.readAt(0, {reinterpret_cast<char*>(bytes_.data()), bytes_.size()});
    file.wipe();
    isWhole_ = file.reading() == Reading::Complete && size <= longest;
    bytes_.resize(size);
}

SecretFile::~SecretFile() {
    // Memory that was taken once is still there.
    bytes_.resize(bytes_.capacity());
    wipe(std::as_writable_bytes(std::span(bytes_)));
}

}  // namespace Platform
