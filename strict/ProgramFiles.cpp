#include "strict/ProgramFiles.hpp"

#include <string>

#include "strict/files/WholeFile.hpp"

namespace Strict {

namespace {

/// Names the files of one program.
class Naming {
public:
    Naming(const Program& program, bool isScript, RunFiles& files, StatementReports& reports)
        : program_(&program), isScript_(isScript), files_(&files), reports_(&reports) {}

    /// Names those of a statement.
    bool name(const Parser::Statement& statement) {
        using Parser::Role;
        bool isGood = true;
        reports_->enter(statement);
        for (const Role role : {Role::InputFile, Role::Template})
            if (const auto* const input = statement.last(role))
                isGood = name(*input, FileRole::Input) && isGood;
        if (const auto* const key = statement.last(Role::KeyFile))
            isGood = name(*key, FileRole::Key) && isGood;
        for (const Parser::Part& input : statement.all(Role::SymbolFile))
            isGood = name(input, FileRole::Input) && isGood;
        if (const auto* const output = statement.last(Role::OutputFile))
            isGood = name(*output, FileRole::Output) && isGood;
        return isGood;
    }

private:
    /// Names the file that the part names. An output may replace an input that a statement before
    /// it reads.
    bool name(const Parser::Part& part, FileRole role) {
        const std::string path = program_->pathOf(part);
        if (const auto collision = files_->name(path, role)) {
            reports_->reportPart(Kind::SameFile, wordsFor(*collision, path, role), part,
                                 "one would overwrite the other");
            return false;
        }
        const std::string input = role == FileRole::Output ? files_->inputNamed(path) : "";
        if (isScript_ && !input.empty())
            reports_->reportPart(Kind::InPlace, "the output replaces the input " + input, part,
                                 "give the output a name of its own");
        return true;
    }

    const Program* program_;
    bool isScript_;
    RunFiles* files_;
    StatementReports* reports_;
};

}  // namespace

bool nameFilesOf(const Program& program, bool isScript, RunFiles& files,
                 StatementReports& reports) {
    Naming naming(program, isScript, files, reports);
    bool isGood = true;
    for (const Parser::Statement& statement : program.statements())
        isGood = naming.name(statement) && isGood;
    return isGood;
}

}  // namespace Strict
