#pragma once

#include <map>
#include <string>
#include <vector>

#include "inspect/RunRecord.hpp"
#include "parser/commands/CmdContext.hpp"
#include "strict/files/RunFiles.hpp"
#include "strict/record/Provenance.hpp"
#include "strict/script/Program.hpp"

namespace Strict {

/// A run that has ended well, borrowed.
struct FinishedRun {
    std::string scriptSha256;                             ///< of its file, or of its text
    const std::map<std::string, std::string>* variables;  ///< of the command line
    const Program* program;
    const Parser::WrapperLib::CmdContext* context;
    const Provenance* provenance;
    RunFiles* files;                              ///< which keeps digests
    std::vector<std::string> recipeFolders = {};  ///< each with a separator at its end
};

/// The path of a file as a record has it: with slashes, and of a recipe that is installed with
/// `<recipes>` for its folder, so that the record is the same wherever the program is installed.
std::string recordedPath(const std::string& path, const std::vector<std::string>& recipeFolders);

/// What is found out only if somebody wants it.
struct RecordDetails {
    /// Which line of an input file gave which address, which reads the file once more, and what
    /// has names.
    bool hasLines = false;
    bool hasSources = false;       ///< on which inputs each output depends
    bool hasImageDigests = false;  ///< which takes as long as to read the images
};

/// What went into the run and what came out of it. The remarks are left to the caller, and the
/// images are those of the run.
Inspect::RunRecord recordOf(const FinishedRun& run, const RecordDetails& details);

}  // namespace Strict
