#include "lsp/Server.hpp"

#include <array>
#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

#include "lsp/MessageReader.hpp"
#include "lsp/Session.hpp"
#include "platform/Streams.hpp"

namespace Lsp {

namespace {

void send(std::ostream& output, std::string_view message) {
    output << "Content-Length: " << message.size() << "\r\n\r\n" << message;
}

}  // namespace

Strict::ExitCode serve(std::ostream& output, std::ostream& errors) {
    constexpr std::size_t piece = std::size_t{64} << 10U;
    MessageReader reader;
    Session session;
    std::string bytes(piece, '\0');
    std::string message;
    while (!session.isOver() && output) {
        const MessageReader::Outcome outcome = reader.next(message);
        if (outcome == MessageReader::Outcome::Message) {
            if (const auto answer = session.take(message)) send(output, *answer);
        } else if (outcome == MessageReader::Outcome::TooLong) {
            send(output, Session::complain("a message of more than 32 MiB was left out"));
        } else if (outcome == MessageReader::Outcome::Garbage) {
            send(output, Session::complain("what is not a message was left out"));
        } else {
            for (const std::string& due : session.update()) send(output, due);
            output.flush();
            const std::size_t count = Platform::readInput(bytes);
            if (count == 0) break;
            reader.add(std::string_view(bytes).substr(0, count));
        }
    }
    output.flush();
    if (session.isShutDown()) return Strict::ExitCode::Good;
    if (!session.isOver())
        errors << "tessaron: the client went away"
               << (reader.isWithin() ? " within a message" : " without a word") << std::endl;
    return Strict::ExitCode::Failed;
}

}  // namespace Lsp
