#include "parser/commands/LateNumber.hpp"

#include <algorithm>
#include <array>

#include "buffer/MemoryBuffer.hpp"
#include "parser/commands/CmdContext.hpp"
#include "parser/commands/Conventions.hpp"

namespace Parser::WrapperLib {

namespace {

constexpr std::array functions{
    NumberFunction{"startOf", Property::StartAddress, "the first address of an image"},
    NumberFunction{"endOf", Property::EndAddress, "the address after the last one of an image"},
    NumberFunction{"lengthOf", Property::Length,
                   "the number of addresses of an image, or of bytes of a signature"},
    NumberFunction{"firstWritten", Property::FirstWritten,
                   "the first address of an image that has a byte"},
    NumberFunction{"lastWritten", Property::LastWritten,
                   "the last address of an image that has a byte"},
    NumberFunction{"symbolOf", Property::SymbolAddress, "the address of a symbol of an ELF file"},
    NumberFunction{"sizeOf", Property::SymbolSize, "the bytes of a symbol of an ELF file"},
};
constexpr std::size_t countOfSymbols = 2;

std::optional<std::uint64_t> without(const std::string& image, Facts::ImageLack lack) {
    Facts::report(Facts::ImageWithout{image, lack});
    return std::nullopt;
}

std::optional<std::uint64_t> writtenAddress(const Buffer::MemoryBuffer& image,
                                            const std::string& name, bool isLast) {
    const Buffer::ElementView elements = image.viewElements();
    const std::size_t first = elements.findWritten(0);
    if (first == elements.size()) return without(name, Facts::ImageLack::Bytes);
    return image.getStartAddress() + (isLast ? elements.findLastWritten() : first);
}

std::optional<std::uint64_t> propertyOf(const Buffer::MemoryBuffer& image, const std::string& name,
                                        Property property) {
    const Area area = image.getArea();
    switch (property) {
        case Property::Length:
            return area.length;
        case Property::FirstWritten:
        case Property::LastWritten:
            return writtenAddress(image, name, property == Property::LastWritten);
        default:
            break;
    }
    if (area.length == 0) return without(name, Facts::ImageLack::Addresses);
    return property == Property::StartAddress ? area.start : area.end();
}

}  // namespace

std::uint32_t applied(Operator operation, std::uint64_t left, std::uint64_t right) {
    const auto result = [&] {
        switch (operation) {
            case Operator::Add:
                return left + right;
            case Operator::Subtract:
                return left - right;
            case Operator::Multiply:
                return left * right;
            case Operator::Divide:
                return right == 0 ? left : left / right;
            case Operator::Modulo:
                break;
        }
        return right == 0 ? left : left % right;
    }();
    return static_cast<std::uint32_t>(result);
}

std::span<const NumberFunction> numberFunctions() {
    return functions;
}

std::span<const NumberFunction> imageFunctions() {
    return numberFunctions().first(functions.size() - countOfSymbols);
}

std::span<const NumberFunction> symbolFunctions() {
    return numberFunctions().last(countOfSymbols);
}

std::optional<std::uint64_t> Query::answer(CmdContext& context) const {
    if (property == Property::SymbolAddress || property == Property::SymbolSize) {
        const auto* const found = context.symbols.find(subject, symbol);
        if (found == nullptr) return std::nullopt;
        return property == Property::SymbolAddress ? found->address : found->size;
    }
    if (property == Property::Length && !context.buffers.contains(subject))
        if (const auto value = context.signatures.find(subject); value != context.signatures.end())
            return value->second.size();
    const Buffer::MemoryBuffer* const image = findBuffer(context, subject);
    return image == nullptr ? std::nullopt : propertyOf(*image, subject, property);
}

LateNumber::LateNumber(std::vector<Term> terms, std::uint32_t result)
    : terms_(std::move(terms)),
      counts_(terms_.size()),
      values_(terms_.size()),
      result_(result - 1) {
    counts_[result_] = true;
    for (std::size_t i = result; i-- > 0;) {
        const auto* const operation = std::get_if<Operation>(&terms_[i]);
        if (operation == nullptr || !counts_[i]) continue;
        for (const Operand& operand : {operation->left, operation->right})
            if (operand.term != 0) counts_[operand.term - 1] = true;
    }
}

std::uint64_t LateNumber::valueOf(const Operand& operand) const {
    return operand.term == 0 ? operand.value : values_[operand.term - 1];
}

bool LateNumber::resolve(CmdContext& context) {
    for (std::size_t i = 0; i < terms_.size(); ++i) {
        if (!counts_[i]) continue;
        std::optional<std::uint64_t> value;
        if (const auto* const operation = std::get_if<Operation>(&terms_[i]))
            value = applied(operation->sign, valueOf(operation->left), valueOf(operation->right));
        else
            value = std::get<Query>(terms_[i]).answer(context);
        if (!value) return false;
        values_[i] = *value;
    }
    return true;
}

std::vector<LateNumber::Answer> LateNumber::answers() const {
    std::vector<Answer> answers;
    for (std::size_t i = 0; i < values_.size(); ++i)
        if (const auto* const query = std::get_if<Query>(&terms_[i]))
            answers.push_back({values_[i], query->length});
    return answers;
}

}  // namespace Parser::WrapperLib
