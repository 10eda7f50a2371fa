#include "strict/release/ChecksumList.hpp"

#include "strict/release/ReleasedFiles.hpp"

namespace Strict {

namespace {

/// The name with the escapes of sha256sum, which a backslash before the digest announces.
std::string escaped(const std::string& name) {
    std::string text;
    for (const char c : name) {
        if (c == '\\')
            text += "\\\\";
        else if (c == '\n')
            text += "\\n";
        else if (c == '\r')
            text += "\\r";
        else
            text += c;
    }
    return text;
}

}  // namespace

std::string checksumListOf(const Inspect::RunRecord& record) {
    std::string list;
    for (const Inspect::FileRecord* const output : releasedFiles(record)) {
        if (output->isStream) continue;
        // sha256sum takes "-" for standard input.
        const std::string name = output->path == "-" ? "./-" : output->path;
        const std::string text = escaped(name);
        if (text != name) list += '\\';
        list += output->sha256 + " *" + text + '\n';
    }
    return list;
}

}  // namespace Strict
