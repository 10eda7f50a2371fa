#include "strict/release/BillOfMaterials.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "crypto/stream/hash/hash_sha.hpp"
#include "inspect/Json.hpp"
#include "strict/release/ReleasedFiles.hpp"
#include "util/Hex.hpp"

namespace Strict {

namespace {

using Inspect::Json;

/// The name-based UUID of a text (RFC 9562, section 5.5): the same for the same text alone.
std::string uuidOf(std::string_view text) {
    constexpr std::array<std::uint8_t, 16> space{0x4c, 0x1e, 0x8a, 0x57, 0x93, 0xd0, 0x4f, 0x26,
                                                 0xb5, 0x6b, 0x0e, 0x71, 0xc2, 0xaa, 0x38, 0xf4};
    kv::crypto::stream::hash::hash_sha1 hash;
    hash.update(space.data(), space.size());
    hash.update(text.data(), text.size());
    auto digest = hash.finish();
    digest[6] = static_cast<std::uint8_t>((digest[6] & 0x0FU) | 0x50U);
    digest[8] = static_cast<std::uint8_t>((digest[8] & 0x3FU) | 0x80U);
    std::string uuid;
    for (std::size_t i = 0; i < space.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) uuid += '-';
        for (const char digit : Util::hexByte(digest[i]))
            uuid += digit >= 'A' ? static_cast<char>(digit - 'A' + 'a') : digit;
    }
    return uuid;
}

Json componentJson(const char* type, const std::string& ref, const std::string& path,
                   const std::string& sha256, const std::string& format) {
    Json json{{"type", type},
              {"bom-ref", ref},
              {"name", path},
              {"hashes", Json::array({{{"alg", "SHA-256"}, {"content", sha256}}})}};
    if (!format.empty())
        json["properties"] = Json::array({{{"name", "tessaron:format"}, {"value", format}}});
    return json;
}

/// Makes the lists of components and dependencies. References are numbers, since two paths that are
/// not UTF-8 may read the same here.
class Bill {
public:
    explicit Bill(const Inspect::RunRecord& record) : record_(&record) {
        addInputs();
        for (const Inspect::FileRecord* const output : releasedFiles(record)) addOutput(*output);
    }

    Json components() const {
        Json all = outputs_;
        all.insert(all.end(), inputs_.begin(), inputs_.end());
        return all;
    }
    const Json& dependencies() const { return dependencies_; }

private:
    /// The reference to an input, which is added if it is not there yet: the script may be read as
    /// an image as well.
    std::string refTo(const std::string& path, const std::string& sha256,
                      const std::string& format) {
        const auto [known, isNew] =
            refs_.try_emplace({path, sha256}, "input-" + std::to_string(inputs_.size() + 1));
        if (isNew) inputs_.push_back(componentJson("file", known->second, path, sha256, format));
        return known->second;
    }

    void addInputs() {
        scriptRef_ = refTo(record_->scriptPath, record_->scriptSha256, {});
        for (const Inspect::FileRecord& input : record_->inputs)
            refsOfInputs_.push_back(refTo(input.path, input.sha256, input.format));
    }

    void addOutput(const Inspect::FileRecord& output) {
        const std::string ref = "output-" + std::to_string(outputs_.size() + 1);
        outputs_.push_back(
            componentJson("firmware", ref, output.path, output.sha256, output.format));
        Json needed = Json::array({scriptRef_});
        for (const std::size_t source : output.sources)
            if (refsOfInputs_[source] != scriptRef_) needed.push_back(refsOfInputs_[source]);
        dependencies_.push_back({{"ref", ref}, {"dependsOn", std::move(needed)}});
    }

    const Inspect::RunRecord* record_;
    std::map<std::pair<std::string, std::string>, std::string> refs_;  ///< by path and digest
    std::string scriptRef_;
    std::vector<std::string> refsOfInputs_;
    Json inputs_ = Json::array();
    Json outputs_ = Json::array();
    Json dependencies_ = Json::array();
};

Json metadataJson(const RunConditions& conditions) {
    Json json;
    if (conditions.timestamp) json["timestamp"] = *conditions.timestamp;
    json["tools"]["components"] = Json::array(
        {{{"type", "application"}, {"name", "tessaron"}, {"version", conditions.version}}});
    return json;
}

}  // namespace

std::string billOfMaterialsOf(const Inspect::RunRecord& record, const RunConditions& conditions) {
    const Bill bill(record);
    Json json{{"$schema", "http://cyclonedx.org/schema/bom-1.5.schema.json"},
              {"bomFormat", "CycloneDX"},
              {"specVersion", "1.5"},
              {"serialNumber", ""},
              {"version", 1},
              {"metadata", metadataJson(conditions)},
              {"components", bill.components()},
              {"dependencies", bill.dependencies()}};
    json["serialNumber"] = "urn:uuid:" + uuidOf(Inspect::dump(json));
    return Inspect::dump(json);
}

}  // namespace Strict
