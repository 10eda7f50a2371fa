#include "strict/record/Proof.hpp"

#include <array>
#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "inspect/Json.hpp"
#include "strict/files/DigestPool.hpp"

namespace Strict {

namespace {

using Json = nlohmann::json;
/// The entries of a list, by their names.
using Entries = std::map<std::string, const Json*>;

/// "its size is 4, not 8": the first property that differs. A digest says more than any other.
std::string firstDifference(const Json& listed, const Json& found) {
    if (!listed.is_object())
        return "it is " + Inspect::shortText(found) + ", not " + Inspect::shortText(listed);
    const auto text = [](const Json& object, const std::string& key) -> std::string {
        const auto value = object.find(key);
        if (value == object.end()) return "nothing";
        return value->is_string() ? value->get<std::string>() : Inspect::shortText(*value);
    };
    const auto isSame = [&](const std::string& key) {
        return listed.contains(key) && found.contains(key) && listed[key] == found[key];
    };
    if (listed.contains("sha256") && found.contains("sha256") && !isSame("sha256"))
        return "its SHA-256 is " + text(found, "sha256") + ", not " + text(listed, "sha256");
    for (const Json* const object : {&found, &listed}) {
        for (const auto& [key, value] : object->items()) {
            if (isSame(key)) continue;
            if (value.is_structured()) return "its " + key + " are others";
            return "its " + key + " is " + text(found, key) + ", not " + text(listed, key);
        }
    }
    return {};
}

/// Reports what differs from one manifest.
class Proof {
public:
    Proof(std::string manifest, DiagnosticSink& sink)
        : manifest_(std::move(manifest)), sink_(&sink) {}

    void differ(const std::string& what, const std::string& hint = {}) {
        isGood_ = false;
        sink_->take({Kind::Differs, what, std::nullopt, hint, {}});
    }

    /// Compares the entries of a list with those that the manifest has; `what` names their kind.
    void compare(const char* what, const Entries& listed, const Entries& found) {
        for (const auto& [name, entry] : found) {
            const auto other = listed.find(name);
            if (other == listed.end())
                differ(manifest_ + " lists no " + what + " " + name);
            else if (*entry != *other->second)
                differ("the " + std::string(what) + " " + name + " is not the one of " + manifest_,
                       firstDifference(*other->second, *entry));
        }
        for (const auto& [name, entry] : listed)
            if (!found.contains(name))
                differ("the script has no " + std::string(what) + " " + name + ", which " +
                       manifest_ + " lists");
    }

    const std::string& manifest() const { return manifest_; }
    bool isGood() const { return isGood_; }

private:
    std::string manifest_;
    DiagnosticSink* sink_;
    bool isGood_ = true;
};

/// The entries of a list of the manifest. A second one of a name, such as a CRC and a hash may
/// have, gets another name.
Entries entriesIn(const Json& manifest, const char* list, const char* key) {
    Entries entries;
    std::map<std::string, std::size_t> times;
    for (const Json& entry : manifest.at(list)) {
        std::string name = entry.at(key).get<std::string>();
        const std::size_t before = times[name]++;
        if (before != 0) name += " (" + std::to_string(before + 1) + ")";
        while (entries.contains(name)) name += " (again)";
        entries.emplace(std::move(name), &entry);
    }
    return entries;
}

/// The outputs on disk are those that the manifest lists.
void compareFiles(const Json& manifest, Proof& proof) {
    for (const auto& [path, output] : entriesIn(manifest, "outputs", "path")) {
        const std::string listed = output->at("sha256").get<std::string>();
        const std::string found = digestOfFile(path).sha256;
        if (found.empty())
            proof.differ("the output " + path + " is missing");
        else if (found != listed)
            proof.differ(
                std::string("the file ")
                    .append(path)
                    .append(" is not the one of ")
                    .append(proof.manifest()),
                std::string("its SHA-256 is ").append(found).append(", not ").append(listed));
    }
}

void compare(const Json& manifest, const Json& run, Proof& proof) {
    if (manifest.at("version") != run.at("version"))
        proof.differ(proof.manifest() + " is of another version",
                     firstDifference(manifest.at("version"), run.at("version")));
    const std::string script = run.at("script").at("path").get<std::string>();
    if (manifest.at("script") != run.at("script"))
        proof.differ("the script " + script + " is not the one of " + proof.manifest(),
                     firstDifference(manifest.at("script"), run.at("script")));
    if (manifest.at("variables") != run.at("variables"))
        proof.differ("the variables are not those of " + proof.manifest());
    struct List {
        const char* name;
        const char* what;
        const char* key;
    };
    constexpr std::array lists{List{"inputs", "input", "path"}, List{"images", "image", "name"},
                               List{"values", "value", "name"}, List{"outputs", "output", "path"}};
    for (const List& list : lists)
        proof.compare(list.what, entriesIn(manifest, list.name, list.key),
                      entriesIn(run, list.name, list.key));
    compareFiles(manifest, proof);
}

}  // namespace

bool compareWithManifest(const std::string& path, std::string_view listed, std::string_view made,
                         DiagnosticSink& sink) {
    Proof proof(path, sink);
    try {
        compare(Json::parse(listed), Json::parse(made), proof);
    } catch (const Json::exception&) {
        proof.differ(path + " is not a manifest");
    }
    return proof.isGood();
}

}  // namespace Strict
