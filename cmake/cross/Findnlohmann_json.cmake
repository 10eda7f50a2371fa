tessaron_host_headers(nlohmann_json nlohmann_json::nlohmann_json nlohmann/detail/abi_macros.hpp
                      "NLOHMANN_JSON_VERSION_(MAJOR|MINOR|PATCH)")
