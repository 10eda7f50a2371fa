tessaron_host_headers(CLI11 CLI11::CLI11 CLI/Version.hpp "CLI11_VERSION_(MAJOR|MINOR|PATCH)")
