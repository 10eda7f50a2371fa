#include "strict/RunDocuments.hpp"

#include <algorithm>
#include <array>
#include <iterator>

#include "parser/commands/SignatureKey.hpp"
#include "platform/Replace.hpp"
#include "platform/Version.hpp"
#include "strict/OutsideReading.hpp"
#include "strict/files/SourceDate.hpp"
#include "strict/files/WholeFile.hpp"
#include "strict/record/Proof.hpp"
#include "strict/release/BillOfMaterials.hpp"
#include "strict/release/ChecksumList.hpp"
#include "strict/release/DetachedSignature.hpp"
#include "strict/release/FirstDifference.hpp"
#include "strict/release/ProvenanceStatement.hpp"

namespace Strict {

namespace {

std::string signatureFileOf(const std::string& document) {
    return document + ".sig";
}

RunConditions conditionsOf(const Policy& policy) {
    RunConditions conditions;
    conditions.version = Platform::versionText();
    conditions.sourceDate = sourceDateSeconds();
    conditions.timestamp = sourceTimestamp();
    for (const KindRow& row : kinds()) {
        const Severity severity = policy.severityOf(row.kind);
        if (severity > row.severity)
            conditions.relaxed[row.name] =
                severity == Severity::Ignored ? "ignored" : wordFor(severity);
    }
    return conditions;
}

}  // namespace

RunDocuments::RunDocuments(const RunOptions& options, const Policy& policy)
    : keyFile_(options.signingKey), isCheck_(options.isCheck) {
    const std::array all{Document{options.manifest, FileRole::Manifest},
                         Document{options.provenance, FileRole::Provenance},
                         Document{options.billOfMaterials, FileRole::BillOfMaterials},
                         Document{options.checksums, FileRole::Checksums}};
    std::ranges::copy_if(all, std::back_inserter(documents_),
                         [](const Document& document) { return !document.path.empty(); });
    if (areWanted()) conditions_ = conditionsOf(policy);
}

bool RunDocuments::nameFiles(RunFiles& files, DiagnosticSink& sink) const {
    bool isGood = true;
    const auto name = [&](const std::string& path, FileRole role) {
        if (!path.empty()) isGood = nameFile(files, path, role, sink) && isGood;
    };
    name(keyFile_, FileRole::Key);
    if (isCheck_) return isGood;
    for (const Document& document : documents_) {
        name(document.path, document.role);
        if (keyFile_.empty()) continue;
        name(signatureFileOf(document.path), FileRole::Signature);
        if (Platform::outputTarget(document.path).kind != Platform::TargetKind::Device) continue;
        sink.take({Kind::CannotWrite, "cannot sign the " + std::string(nameOf(document.role)) +
                                          " " + document.path + ": it is not a file"});
        isGood = false;
    }
    return isGood;
}

bool RunDocuments::readKey(std::optional<std::string_view> passphrase, RunFiles& files,
                           DiagnosticSink& sink) {
    if (keyFile_.empty()) return true;
    const OutsideReading reading(files, sink, OptionsOf::Inspection);
    if (isCheck_)
        verifyingKey_ = Parser::WrapperLib::verifyingKeyIn(keyFile_, passphrase);
    else
        signingKey_ = Parser::WrapperLib::signingKeyIn(keyFile_, passphrase);
    return signingKey_ || verifyingKey_;
}

std::optional<std::string> RunDocuments::textOf(const Document& document,
                                                const Inspect::RunRecord& record,
                                                DiagnosticSink& sink) const {
    if (document.role == FileRole::Manifest) return Inspect::manifestOf(record);
    if (document.role == FileRole::BillOfMaterials) return billOfMaterialsOf(record, conditions_);
    if (document.role == FileRole::Checksums) return checksumListOf(record);
    auto statement = provenanceStatementOf(record, conditions_);
    if (!statement)
        sink.take({Kind::CannotWrite, "cannot make the provenance " + document.path +
                                          ": the run has no output that it could be about"});
    return statement;
}

void RunDocuments::write(const Inspect::RunRecord& record, RunFiles& files, DiagnosticSink& sink) {
    for (const Document& document : documents_) {
        if (document.role == FileRole::Manifest && !signingKey_) {
            // It may be many times as long as all that the run has read, and nobody else needs it.
            const auto make = [&record](const Inspect::TakeText& take) {
                Inspect::writeManifest(record, take);
            };
            addFile(files, document.path, make, sink);
            continue;
        }
        const auto text = textOf(document, record, sink);
        if (!text) continue;
        addFile(files, document.path, *text, sink);
        if (!signingKey_) continue;
        if (const auto signature = signatureOf(*text, *signingKey_, keyFile_, sink))
            addFile(files, signatureFileOf(document.path), *signature, sink);
    }
    signingKey_.reset();
}

bool RunDocuments::compare(const Inspect::RunRecord& record, DiagnosticSink& sink) const {
    bool isEqual = true;
    for (const Document& document : documents_) {
        const auto wanted = textOf(document, record, sink);
        const auto found = wanted ? readWhole(document.path, sink) : std::nullopt;
        isEqual = found && compare(document, found->text(), *wanted, sink) && isEqual;
        if (verifyingKey_ && found) isEqual = verify(document, found->text(), sink) && isEqual;
    }
    return isEqual;
}

bool RunDocuments::compare(const Document& document, std::string_view found,
                           std::string_view wanted, DiagnosticSink& sink) {
    if (document.role == FileRole::Manifest)
        return compareWithManifest(document.path, found, wanted, sink);
    if (found == wanted) return true;
    sink.take({Kind::Differs,
               "the " + std::string(nameOf(document.role)) + " " + document.path +
                   " is not what the run writes today",
               std::nullopt, firstDifference(found, wanted)});
    return false;
}

bool RunDocuments::verify(const Document& document, std::string_view text,
                          DiagnosticSink& sink) const {
    const std::string path = signatureFileOf(document.path);
    const auto signature = readWhole(path, sink);
    if (!signature) return false;
    if (isSignatureOf(signature->text(), text, *verifyingKey_)) return true;
    sink.take({Kind::Differs,
               path + " is not the signature of " + document.path + " by the key " + keyFile_});
    return false;
}

}  // namespace Strict
