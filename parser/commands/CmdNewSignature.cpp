#include "parser/commands/CmdNewSignature.hpp"

#include <stdexcept>
#include <utility>

#include "facts/Listener.hpp"
#include "io/InFile.hpp"
#include "parser/commands/Conventions.hpp"
#include "platform/Paths.hpp"

namespace Parser::WrapperLib {

namespace {

constexpr ValueType none{"", "", nullptr};

/// All bytes of a file.
class WholeFile final : public Io::BinaryInFile {
public:
    using BinaryInFile::BinaryInFile;

    ByteList bytes() const {
        ByteList bytes(fileSize());
        bytes.resize(read(0, bytes));
        return bytes;
    }
};

}  // namespace

CmdNewSignature::CmdNewSignature()
    : CmdNewValue(Facts::Subject::Signature, &CmdContext::signatures, none) {}

void CmdNewSignature::setFile(std::string argument) {
    file_ = cleanedPath(std::move(argument));
}

void CmdNewSignature::setKeyFile(std::string argument) {
    settings_.keyFile = cleanedPath(std::move(argument));
}

void CmdNewSignature::setKind(const SignatureKind& kind) {
    settings_.kind = &kind;
    setCompute({kind.keyword, kind.meaning, std::nullopt}, {});
}

std::optional<std::size_t> CmdNewSignature::valueSize() const {
    const SignatureKind* const kind = settings_.kind;
    const bool isFixed =
        kind != nullptr && (!kind->isEcdsa || settings_.form == Crypto::SignatureForm::Raw);
    return isFixed ? kind->size : std::nullopt;
}

bool CmdNewSignature::execute(CmdContext& context) {
    return guarded(Facts::Subject::Signature, name(), Facts::Work::Created, [&] {
        if (file_) return takeFile(context, *file_);
        return isStored_ ? takeStored(context) : sign(context);
    });
}

bool CmdNewSignature::sign(CmdContext& context) {
    const auto key = settings_.signingKey(context);
    if (!key) return false;
    const auto bytes = gatherBytes(context, fromBuffers(), areas());
    if (!bytes) return false;
    try {
        context.signatures.try_emplace(name(), key->sign(bytes->view(), settings_.form));
    } catch (const std::runtime_error&) {
        // The numbers of the key fit together, and what they compute is wrong.
        Facts::report(Facts::KeyRefused{*settings_.keyFile, settings_.kind->keyword,
                                        Facts::KeyFault::NotAKey});
        return false;
    }
    fingerprint_ = key->fingerprint();
    return true;
}

bool CmdNewSignature::takeStored(CmdContext& context) const {
    const auto bytes = gatherBytes(context, fromBuffers(), areas());
    if (!bytes) return false;
    const auto view = bytes->view();
    context.signatures.try_emplace(name(), view.begin(), view.end());
    return true;
}

bool CmdNewSignature::takeFile(CmdContext& context, const std::string& file) const {
    try {
        const WholeFile bytes(Platform::terminatedPath(file));
        context.signatures.try_emplace(name(), bytes.bytes());
        return true;
    } catch (const Io::bad_open&) {
        Facts::report(Facts::FileNotOpened{file});
        return false;
    }
}

}  // namespace Parser::WrapperLib
