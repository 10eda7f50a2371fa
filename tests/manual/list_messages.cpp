// Prints the messages that the pages on CmdTessaron must list.

#include <boost/algorithm/string/replace.hpp>
#include <iostream>

#include "classic/MessageList.hpp"
#include "io/import/ReaderReports.hpp"

int main() {
    using enum Facts::InputFormat;
    std::cout << Classic::messageList();
    // The readers have a text of their own.
    for (const Facts::InputFormat reader : {IntelHex, MotorolaS, RawBinary})
        std::cout << boost::algorithm::replace_all_copy(
            Io::Import::informationAbout(reader, 0, 0, 0), "(int)0", "(int)N");
}
