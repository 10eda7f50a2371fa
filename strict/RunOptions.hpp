#pragma once

#include <map>
#include <string>
#include <vector>

namespace Strict {

/// What a run is to do.
struct RunOptions {
    std::string script;  ///< a path; "-" is standard input
    std::map<std::string, std::string> variables;
    std::string nameFile;              ///< with the names at addresses; empty for none
    std::vector<std::string> symbols;  ///< variables of ELF symbols, "NAME=file:symbol"
    bool isCheck = false;              ///< runs in memory, writes nothing and starts no program
    bool comparesDisk = false;   ///< with `isCheck`: compares the outputs with the files on disk
    bool printsScript = false;   ///< prints the prepared script instead of running it
    bool keepsGoing = false;     ///< goes on after a statement that failed
    std::string dependencyFile;  ///< empty for none
    std::string manifest;        ///< a file to write, or with `isCheck` to compare with
    std::string provenance;      ///< the same, as are the next two
    std::string billOfMaterials;
    std::string checksums;
    std::string signingKey;  ///< for the four; with `isCheck`, what their signatures are held to
    std::string passphraseFile;  ///< with the passphrase of encrypted keys; empty for none
    std::string map;             ///< of the images, to write: a picture if it ends in .svg, or text
    std::string report;          ///< a page to write; empty for none
};

}  // namespace Strict
