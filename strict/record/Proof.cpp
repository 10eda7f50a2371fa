#include "strict/record/Proof.hpp"

#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>
#include <vector>

#include "platform/Files.hpp"
#include "platform/Replace.hpp"
#include "strict/files/FileDigests.hpp"

namespace Strict {

namespace {

using Json = nlohmann::json;
/// Digests by the paths of files.
using Digests = std::map<std::string, std::string>;

/// Reports what differs from one manifest.
class Proof {
public:
    Proof(std::string manifest, DiagnosticSink& sink)
        : manifest_(std::move(manifest)), sink_(&sink) {}

    void differ(const std::string& what, const std::string& hint = {}) {
        isGood_ = false;
        sink_->take({Kind::Differs, what, std::nullopt, hint, {}});
    }

    /// A file has another digest than the manifest gives; `what` names its kind.
    void differ(const char* what, const std::string& path, const std::string& found,
                const std::string& listed) {
        differ("the " + std::string(what) + " " + path + " is not the one of " + manifest_,
               "its SHA-256 is " + found + ", not " + listed);
    }

    /// Compares files with those that the manifest lists; `what` names their kind.
    void compare(const char* what, const Digests& listed, const Digests& found) {
        for (const auto& [path, digest] : found) {
            const auto entry = listed.find(path);
            if (entry == listed.end())
                differ(manifest_ + " lists no " + what + " " + path);
            else if (entry->second != digest)
                differ(what, path, digest, entry->second);
        }
        for (const auto& [path, digest] : listed)
            if (!found.contains(path))
                differ("the script has no " + std::string(what) + " " + path + ", which " +
                       manifest_ + " lists");
    }

    const std::string& manifest() const { return manifest_; }
    bool isGood() const { return isGood_; }

private:
    std::string manifest_;
    DiagnosticSink* sink_;
    bool isGood_ = true;
};

Digests listedIn(const Json& manifest, const char* list) {
    Digests digests;
    for (const Json& file : manifest.at(list))
        digests[file.at("path").get<std::string>()] = file.at("sha256").get<std::string>();
    return digests;
}

Digests digestsOf(const std::vector<Inspect::FileRecord>& files) {
    Digests digests;
    for (const Inspect::FileRecord& file : files) digests[file.path] = file.sha256;
    return digests;
}

void compare(const Json& manifest, const Inspect::RunRecord& record, Proof& proof) {
    const std::string script = manifest.at("script").at("sha256").get<std::string>();
    if (script != record.scriptSha256)
        proof.differ("script", record.scriptPath, record.scriptSha256, script);
    if (manifest.at("variables").get<Digests>() != record.variables)
        proof.differ("the variables are not those of " + proof.manifest());
    proof.compare("input", listedIn(manifest, "inputs"), digestsOf(record.inputs));
    const Digests outputs = listedIn(manifest, "outputs");
    proof.compare("output", outputs, digestsOf(record.outputs));
    for (const auto& [path, digest] : outputs) {
        const std::string found = digestOfFile(path).sha256;
        if (found.empty())
            proof.differ("the output " + path + " is missing");
        else if (found != digest)
            proof.differ("file", path, found, digest);
    }
}

}  // namespace

bool compareWithManifest(const std::string& path, const Inspect::RunRecord& record,
                         DiagnosticSink& sink) {
    Platform::clearLastError();
    const auto text = Platform::readFile(path);
    if (!text) {
        const std::string reason = Platform::lastError().message();
        sink.take({Kind::CannotOpen, "cannot open " + path + ": " + reason});
        return false;
    }
    Proof proof(path, sink);
    try {
        compare(Json::parse(text->text()), record, proof);
    } catch (const Json::exception&) {
        proof.differ(path + " is no manifest");
    }
    return proof.isGood();
}

}  // namespace Strict
