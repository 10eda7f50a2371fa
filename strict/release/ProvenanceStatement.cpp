#include "strict/release/ProvenanceStatement.hpp"

#include <set>
#include <utility>

#include "inspect/Json.hpp"
#include "strict/release/ReleasedFiles.hpp"

namespace Strict {

namespace {

using Inspect::Json;

constexpr const char* buildType = "urn:tessaron:build:script:v1";
constexpr const char* builderId = "urn:tessaron:builder:v1";

/// A ResourceDescriptor.
Json resourceJson(const std::string& path, const std::string& sha256) {
    return {{"name", path}, {"digest", {{"sha256", sha256}}}};
}

Json subjectsJson(const Inspect::RunRecord& record) {
    Json subjects = Json::array();
    for (const Inspect::FileRecord* const output : releasedFiles(record))
        subjects.push_back(resourceJson(output->path, output->sha256));
    return subjects;
}

/// All by which the caller of the run can change what it writes. The files that it names are
/// dependencies.
Json parametersJson(const Inspect::RunRecord& record, const RunConditions& conditions) {
    Json json{{"script", record.scriptPath}};
    json["variables"] = Inspect::toJson(record.variables);
    for (const auto& [kind, severity] : conditions.relaxed) json["diagnostics"][kind] = severity;
    if (conditions.sourceDate) json["sourceDateEpoch"] = std::to_string(*conditions.sourceDate);
    return json;
}

/// The script and all inputs, each once.
Json dependenciesJson(const Inspect::RunRecord& record) {
    Json dependencies = Json::array();
    std::set<std::pair<std::string, std::string>> listed;
    const auto add = [&](const std::string& path, const std::string& sha256) {
        if (listed.emplace(path, sha256).second) dependencies.push_back(resourceJson(path, sha256));
    };
    add(record.scriptPath, record.scriptSha256);
    for (const Inspect::FileRecord& input : record.inputs) add(input.path, input.sha256);
    return dependencies;
}

}  // namespace

std::optional<std::string> provenanceStatementOf(const Inspect::RunRecord& record,
                                                 const RunConditions& conditions) {
    Json subjects = subjectsJson(record);
    if (subjects.empty()) return std::nullopt;
    const Json definition{{"buildType", buildType},
                          {"externalParameters", parametersJson(record, conditions)},
                          {"resolvedDependencies", dependenciesJson(record)}};
    const Json builder{{"id", builderId}, {"version", {{"tessaron", conditions.version}}}};
    return Inspect::dump(
        {{"_type", "https://in-toto.io/Statement/v1"},
         {"subject", std::move(subjects)},
         {"predicateType", "https://slsa.dev/provenance/v1"},
         {"predicate", {{"buildDefinition", definition}, {"runDetails", {{"builder", builder}}}}}});
}

}  // namespace Strict
