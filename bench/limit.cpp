// The practical limit of a conversion: one pass over the input that decodes each record, verifies
// its checksum, encodes it again and writes it, with no image in between. It only accepts
// well-formed files as objcopy writes them and checks nothing else. It serves as a yardstick, not
// as a tool.
//
//   limit hex|srec|raw hex|srec|raw INPUT OUTPUT

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t pieceSize = std::size_t{1} << 18U;
constexpr std::size_t longestRecord = 1024;

[[noreturn]] void fail(const char* why) {
    std::fprintf(stderr, "limit: %s\n", why);
    std::exit(1);
}

struct CloseFile {
    void operator()(std::FILE* file) const {
        if (std::fclose(file) != 0) fail("closing failed");
    }
};
using FilePointer = std::unique_ptr<std::FILE, CloseFile>;

FilePointer open(const char* path, const char* mode) {
    FilePointer file(std::fopen(path, mode));
    if (!file) fail("cannot open a file");
    if (std::setvbuf(file.get(), nullptr, _IONBF, 0) != 0) fail("setvbuf");
    return file;
}

constexpr auto digitValues = [] {
    std::array<std::uint8_t, 256> values{};
    for (unsigned digit = 0; digit < 10; ++digit)
        values['0' + digit] = static_cast<std::uint8_t>(digit);
    for (unsigned digit = 10; digit < 16; ++digit)
        values['A' + digit - 10] = values['a' + digit - 10] = static_cast<std::uint8_t>(digit);
    return values;
}();

constexpr auto digitPairs = [] {
    constexpr const char* digits = "0123456789ABCDEF";
    std::array<std::array<char, 2>, 256> pairs{};
    for (std::size_t byte = 0; byte < pairs.size(); ++byte)
        pairs[byte] = {digits[byte >> 4U], digits[byte & 15U]};
    return pairs;
}();

/// A file that is written in large pieces.
class Output {
public:
    explicit Output(const char* path) : file_(open(path, "wb")) {}
    ~Output() { flush(); }
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    char* room() {
        if (piece_.size() - used_ < longestRecord) flush();
        return piece_.data() + used_;
    }
    void commit(const char* end) { used_ = static_cast<std::size_t>(end - piece_.data()); }

private:
    void flush() {
        if (std::fwrite(piece_.data(), 1, used_, file_.get()) != used_) fail("writing failed");
        used_ = 0;
    }

    FilePointer file_;
    std::string piece_ = std::string(pieceSize, '\0');
    std::size_t used_ = 0;
};

char* put(char* out, std::uint8_t byte, unsigned& sum) {
    sum += byte;
    std::memcpy(out, digitPairs[byte].data(), 2);
    return out + 2;
}

/// Encodes runs of bytes as records of one format.
class Encoder {
public:
    Encoder(std::string_view format, const char* path) : format_(format), output_(path) {}

    void take(std::uint32_t address, const std::uint8_t* data, std::size_t count) {
        if (format_ == "raw") {
            char* const out = output_.room();
            std::memcpy(out, data, count);
            output_.commit(out + count);
        } else if (format_ == "hex") {
            takeIntel(address, data, count);
        } else {
            char* out = begin("S3");
            unsigned sum = 0;
            out = put(out, static_cast<std::uint8_t>(count + 5), sum);
            for (unsigned shift = 32; shift != 0; shift -= 8)
                out = put(out, static_cast<std::uint8_t>(address >> (shift - 8)), sum);
            for (std::size_t i = 0; i < count; ++i) out = put(out, data[i], sum);
            finish(out, ~sum);
        }
    }

    void end() {
        if (format_ == "hex") finish(begin(":000000"), 0xFFFFFF01, 0xFF);
        if (format_ == "srec") finish(begin("S70500000000"), 0xFA);
    }

private:
    void takeIntel(std::uint32_t address, const std::uint8_t* data, std::size_t count) {
        if (address >> 16U != base_) {
            base_ = address >> 16U;
            char* out = begin(":02000004");
            unsigned sum = 6;
            out = put(out, static_cast<std::uint8_t>(base_ >> 8U), sum);
            out = put(out, static_cast<std::uint8_t>(base_), sum);
            finish(out, 0 - sum);
        }
        char* out = begin(":");
        unsigned sum = 0;
        out = put(out, static_cast<std::uint8_t>(count), sum);
        out = put(out, static_cast<std::uint8_t>(address >> 8U), sum);
        out = put(out, static_cast<std::uint8_t>(address), sum);
        out = put(out, 0, sum);
        for (std::size_t i = 0; i < count; ++i) out = put(out, data[i], sum);
        finish(out, 0 - sum);
    }

    char* begin(std::string_view text) {
        char* const out = output_.room();
        std::memcpy(out, text.data(), text.size());
        return out + text.size();
    }

    template <class... Bytes>
    void finish(char* out, Bytes... bytes) {
        unsigned sum = 0;
        ((out = put(out, static_cast<std::uint8_t>(bytes), sum)), ...);
        *out++ = '\n';
        output_.commit(out);
    }

    std::string_view format_;
    Output output_;
    std::uint32_t base_ = 0xFFFFFFFF;
};

/// Decodes the lines of a text format, a piece of the file at a time.
class Decoder {
public:
    Decoder(std::string_view format, Encoder& encoder)
        : isIntel_(format == "hex"), encoder_(encoder) {}

    void run(std::FILE* file) {
        std::string piece(pieceSize + longestRecord, '\0');
        std::size_t kept = 0;
        while (const std::size_t got = std::fread(piece.data() + kept, 1, pieceSize, file)) {
            const char* line = piece.data();
            const char* const end = piece.data() + kept + got;
            while (const auto* feed = static_cast<const char*>(
                       std::memchr(line, '\n', static_cast<std::size_t>(end - line)))) {
                take(line, feed);
                line = feed + 1;
            }
            kept = static_cast<std::size_t>(end - line);
            if (kept > longestRecord) fail("a line is too long");
            std::memmove(piece.data(), line, kept);
        }
    }

private:
    void take(const char* line, const char* feed) {
        if (feed != line && feed[-1] == '\r') --feed;
        const std::size_t head = isIntel_ ? 1 : 2;
        const std::size_t count = (static_cast<std::size_t>(feed - line) - head) / 2;
        std::array<std::uint8_t, longestRecord> bytes;
        unsigned sum = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const unsigned high = digitValues[static_cast<std::uint8_t>(line[head + 2 * i])];
            const unsigned low = digitValues[static_cast<std::uint8_t>(line[head + 2 * i + 1])];
            bytes[i] = static_cast<std::uint8_t>(high << 4U | low);
            sum += bytes[i];
        }
        if ((sum & 0xFFU) != (isIntel_ ? 0U : 0xFFU)) fail("a checksum is wrong");
        if (isIntel_)
            takeIntel(bytes.data(), count);
        else if (line[1] >= '1' && line[1] <= '3')
            takeData(bytes.data() + 1, static_cast<std::size_t>(line[1] - '0') + 1, count);
    }

    void takeIntel(const std::uint8_t* bytes, std::size_t count) {
        if (bytes[3] == 4) base_ = (bytes[4] * 256U + bytes[5]) << 16U;
        if (bytes[3] == 0) encoder_.take(base_ + bytes[1] * 256U + bytes[2], bytes + 4, count - 5);
    }

    void takeData(const std::uint8_t* bytes, std::size_t addressSize, std::size_t count) {
        std::uint32_t address = 0;
        for (std::size_t i = 0; i < addressSize; ++i) address = address << 8U | bytes[i];
        encoder_.take(address, bytes + addressSize, count - addressSize - 2);
    }

    bool isIntel_;
    Encoder& encoder_;
    std::uint32_t base_ = 0;
};

void takeRaw(std::FILE* file, Encoder& encoder) {
    constexpr std::size_t dataSize = 16;
    std::array<std::uint8_t, pieceSize> piece;
    std::uint32_t address = 0;
    while (const std::size_t got = std::fread(piece.data(), 1, piece.size(), file)) {
        for (std::size_t at = 0; at < got; at += dataSize)
            encoder.take(address + static_cast<std::uint32_t>(at), piece.data() + at,
                         got - at < dataSize ? got - at : dataSize);
        address += static_cast<std::uint32_t>(got);
    }
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 5) fail("limit hex|srec|raw hex|srec|raw INPUT OUTPUT");
    const std::string_view from = arguments[1];
    const FilePointer input = open(arguments[3], "rb");
    Encoder encoder(arguments[2], arguments[4]);
    if (from == "raw")
        takeRaw(input.get(), encoder);
    else
        Decoder(from, encoder).run(input.get());
    encoder.end();
    return 0;
}
