#include "strict/record/InputFlow.hpp"

#include <algorithm>

namespace Strict {

namespace {

using Parser::Part;
using Parser::Role;
using Shared = std::shared_ptr<const InputFlow::Places>;

/// All of both. A set is copied only where it grows: most statements of a long script add nothing.
Shared united(const Shared& one, const Shared& other) {
    if (one == other || std::ranges::includes(*one, *other)) return one;
    if (std::ranges::includes(*other, *one)) return other;
    auto all = std::make_shared<InputFlow::Places>(*one);
    all->insert(other->begin(), other->end());
    return all;
}

const Shared& nothing() {
    static const Shared none = std::make_shared<const InputFlow::Places>();
    return none;
}

}  // namespace

InputFlow::InputFlow(const Program& program, RunFiles& files)
    : program_(&program), files_(&files), last_(nothing()) {
    for (std::size_t place = 0; place < files.inputs().size(); ++place)
        inputs_.emplace(files.inputs()[place], place);
}

void InputFlow::follow(const Parser::Statement& statement) {
    last_ = read(statement);
    for (const Part& part : statement.parts) {
        const std::string name(part.text);
        if (part.role == Role::MakesImage) things_[{Role::UsesImage, name}] = last_;
        if (part.role == Role::ChangesImage)
            things_[{Role::UsesImage, name}] = united(known(Role::UsesImage, name), last_);
        if (part.role == Role::OutputFile)
            things_[{Role::OutputFile, files_->outputName(program_->pathOf(part))}] = last_;
        if (Parser::makesValue.has(part.role))
            things_[{Parser::valueKindOf(part.role)->uses, name}] = last_;
    }
}

/// All that a statement reads.
InputFlow::Shared InputFlow::read(const Parser::Statement& statement) {
    constexpr Parser::Roles files{Role::InputFile, Role::Template, Role::SymbolFile};
    Shared all = nothing();
    for (const Part& part : statement.parts) {
        if (files.has(part.role)) all = united(all, readFile(program_->pathOf(part)));
        if (part.role == Role::UsesImage || Parser::usesValue.has(part.role))
            all = united(all, known(part.role, part.text));
        // A number may ask for the length of a signature.
        if (part.role == Role::MeasuresImage)
            for (const Role use : {Role::UsesImage, Role::UsesSignature})
                all = united(all, known(use, part.text));
        if (part.role == Role::UsesValue)
            for (const Parser::ValueKind& kind : Parser::valueKinds)
                all = united(all, known(kind.uses, part.text));
    }
    return all;
}

/// A file may be an input, what this run has written, or one after the other.
InputFlow::Shared InputFlow::readFile(const std::string& path) {
    Shared all = known(Role::OutputFile, files_->outputName(path));
    const auto input = inputs_.find(files_->inputName(path));
    if (input == inputs_.end()) return all;
    named_.insert(input->second);
    return united(all, std::make_shared<const Places>(Places{input->second}));
}

InputFlow::Shared InputFlow::known(Role use, std::string_view name) const {
    const auto thing = things_.find({use, std::string(name)});
    return thing == things_.end() ? nothing() : thing->second;
}

}  // namespace Strict
