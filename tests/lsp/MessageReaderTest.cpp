#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "lsp/MessageReader.hpp"

namespace {

using Lsp::MessageReader;
using Outcome = MessageReader::Outcome;

/// What a reader finds in a stream that arrives in pieces of `size` bytes.
std::string read(const std::string& stream, std::size_t size) {
    MessageReader reader;
    std::string found;
    std::string message;
    for (std::size_t at = 0; at < stream.size(); at += size) {
        reader.add(std::string_view(stream).substr(at, size));
        for (;;) {
            const Outcome outcome = reader.next(message);
            if (outcome == Outcome::Nothing) break;
            found += outcome == Outcome::Message   ? "[" + message + "]"
                     : outcome == Outcome::TooLong ? "long"
                                                   : "?";
        }
    }
    return found + (reader.isWithin() ? "..." : "");
}

TEST(MessageReaderTest, CutsAStreamIntoMessages) {
    const std::string tooLong = std::to_string(MessageReader::longest + 1);
    const std::tuple<std::string, std::string> table[] = {
        {"Content-Length: 2\r\n\r\n{}", "[{}]"},
        {"Content-Length: 0\r\n\r\nContent-Length: 1\r\n\r\n1", "[][1]"},
        {"content-length:2\r\nContent-Type: x; charset=utf-8\r\n\r\n{}", "[{}]"},
        {"Content-Type: x\r\nContent-Length: 2\r\n\r\n{}", "[{}]"},
        {"Content-Length: 5\r\n\r\n{}", "..."},
        {"Content-Length: 5\r\n", "..."},
        {"garbage\nContent-Length: 2\r\n\r\n{}", "?[{}]"},
        {"GET / HTTP/1.1\r\nHost: x\r\n\r\nContent-Length: 2\r\n\r\n{}", "?[{}]"},
        {"Content-Length: two\r\n\r\nContent-Length: 2\r\n\r\n{}", "?[{}]"},
        {"Content-Length: -1\r\n\r\nContent-Length: 2\r\n\r\n{}", "?[{}]"},
        {"Content-Length: 99999999999999999999\r\n\r\nContent-Length: 2\r\n\r\n{}", "?[{}]"},
        {std::string(20'000, 'x') + "Content-Length: 2\r\n\r\n{}", "?[{}]"},
        {std::string(20'000, '\0'), "..."},
    };
    for (const auto& [stream, expected] : table)
        for (const std::size_t size : {1U, 7U, 100'000U})
            EXPECT_EQ(read(stream, size), expected) << stream.substr(0, 60) << " by " << size;
    EXPECT_EQ(read("Content-Length: " + tooLong + "\r\n\r\n" +
                       std::string(MessageReader::longest + 1, ' ') + "Content-Length: 2\r\n\r\n{}",
                   65'536),
              "long[{}]");
}

}  // namespace
