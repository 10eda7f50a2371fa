#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "crypto/signature/Signature.hpp"
#include "inspect/RunRecord.hpp"
#include "strict/RunOptions.hpp"
#include "strict/diagnostics/Diagnostic.hpp"
#include "strict/diagnostics/Policy.hpp"
#include "strict/files/RunFiles.hpp"
#include "strict/release/RunConditions.hpp"

namespace Strict {

/// The documents that a run writes of itself for others: manifest, provenance, bill of materials
/// and list of checksums, each with its signature if a key is given.
class RunDocuments {
public:
    RunDocuments(const RunOptions& options, const Policy& policy);

    bool areWanted() const { return !documents_.empty(); }

    /// Names the files. False if one has another role in the run, after a diagnostic.
    bool nameFiles(RunFiles& files, DiagnosticSink& sink) const;

    /// Reads the key, if one is given: a run should not fail for it at its end. False after a
    /// diagnostic.
    bool readKey(std::optional<std::string_view> passphrase, RunFiles& files, DiagnosticSink& sink);

    /// Adds them to the outputs of the run, and forgets the key.
    void write(const Inspect::RunRecord& record, RunFiles& files, DiagnosticSink& sink);

    /// Compares those on disk with what the run would write, and verifies their signatures. Reports
    /// each difference; true if there is none.
    bool compare(const Inspect::RunRecord& record, DiagnosticSink& sink) const;

private:
    struct Document {
        std::string path;
        FileRole role;
    };

    std::optional<std::string> textOf(const Document& document, const Inspect::RunRecord& record,
                                      DiagnosticSink& sink) const;
    static bool compare(const Document& document, std::string_view found, std::string_view wanted,
                        DiagnosticSink& sink);
    bool verify(const Document& document, std::string_view text, DiagnosticSink& sink) const;

    std::vector<Document> documents_;
    std::string keyFile_;  ///< empty for none
    bool isCheck_;
    RunConditions conditions_;
    std::optional<Crypto::SigningKey> signingKey_;
    std::optional<Crypto::VerifyingKey> verifyingKey_;
};

}  // namespace Strict
