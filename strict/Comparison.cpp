#include "strict/Comparison.hpp"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "buffer/Difference.hpp"
#include "facts/Listener.hpp"
#include "io/File.hpp"
#include "io/import/GenericInFile.hpp"
#include "platform/Files.hpp"
#include "strict/Arithmetic.hpp"

namespace Strict {

namespace {

/// A file read as an image.
struct Contents {
    Io::Import::InFileType type;
    Buffer::MemoryBuffer image;
};

class Unheard final : public Facts::Listener {
public:
    void hear(const Facts::Fact& /*fact*/) override {}
};

/// The file as the host in force has it.
std::optional<Contents> contentsOf(const std::string& path) {
    Unheard unheard;
    const Facts::ListenerScope silence(unheard);
    try {
        Io::Import::GenericInFile file(path);
        return Contents{file.type(), file.takeMemory()};
    } catch (const Io::bad_open&) {
        return std::nullopt;
    }
}

std::string plural(std::uint64_t count, const char* noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string textOf(const Buffer::AreaList& areas) {
    constexpr std::size_t mostShown = 8;
    std::string text;
    for (std::size_t i = 0; i < areas.size() && i < mostShown; ++i)
        text += (i == 0 ? "" : ", ") + hexadecimal(areas[i].start) + " (" +
                plural(areas[i].length, "byte") + ")";
    if (areas.size() > mostShown)
        text += " and in " + plural(areas.size() - mostShown, "more area");
    return text;
}

/// Where an output that the script makes differs from the file on disk.
std::string difference(OutputSet& files, const std::string& path) {
    const std::optional<Contents> disk = contentsOf(path);
    const Io::HostScope hosting(files);
    const std::optional<Contents> made = contentsOf(path);
    if (!disk || !made) return "";
    if (disk->type != made->type) return "the formats differ";
    const Buffer::AreaList areas = Buffer::differences(disk->image, made->image);
    if (areas.empty()) return "the bytes of the images are the same, the text differs";
    const bool isRaw = made->type == Io::Import::InFileType::RawBinary;
    return (isRaw ? "they differ at the offsets " : "they differ at the addresses ") +
           textOf(areas);
}

}  // namespace

bool compareWithDisk(OutputSet& files, DiagnosticSink& sink) {
    bool isEqual = true;
    for (const std::string& path : files.outputs()) {
        const auto disk = Platform::readFile(path);
        if (disk && disk->text() == files.contentsOf(path)) continue;
        isEqual = false;
        sink.take({Severity::Error,
                   "differs",
                   path + (disk ? " is not what the script makes today" : " is missing"),
                   std::nullopt,
                   disk ? difference(files, path) : "",
                   {}});
    }
    return isEqual;
}

}  // namespace Strict
