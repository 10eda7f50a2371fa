#pragma once

#include <string>

namespace Classic {

/// Every message of CmdTessaron, a line each as the program prints it, with NAME, PATH, LINE, TEXT,
/// N and HEX in place of what a run puts in. Left out are the report of a syntax error and the
/// texts that are a script's own.
std::string messageList();

}  // namespace Classic
