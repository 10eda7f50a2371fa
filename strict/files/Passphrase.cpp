#include "strict/files/Passphrase.hpp"

namespace Strict {

std::string_view Passphrase::text() const {
    const auto bytes = file_.bytes();
    const std::string_view all(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return all.substr(0, all.find_first_of("\r\n"));
}

std::optional<Passphrase> readPassphrase(const std::string& path, RunFiles& files,
                                         DiagnosticSink& sink) {
    auto file = files.openKey(path);
    if (!file) {
        sink.take({Kind::CannotOpen, "cannot open " + path + ": " + files.reasonFor(path)});
        return std::nullopt;
    }
    Platform::SecretFile contents(std::move(*file));
    if (contents.bytes().size() > Platform::SecretFile::longest) {
        sink.take({Kind::Key, path + " is too long to be the file of a passphrase"});
        return std::nullopt;
    }
    if (!contents.isWhole()) {
        sink.take({Kind::ShortRead, path + " could not be read completely"});
        return std::nullopt;
    }
    if (contents.isReadableByOthers())
        sink.take({Kind::KeyReadable, "others than its owner may read the passphrase in " + path,
                   std::nullopt, "chmod go= " + path});
    return Passphrase(std::move(contents));
}

}  // namespace Strict
