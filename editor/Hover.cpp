#include "editor/Hover.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "buffer/ImageSpace.hpp"
#include "editor/ImageRanges.hpp"
#include "editor/Lexis.hpp"
#include "inspect/CrcWords.hpp"
#include "inspect/Image.hpp"
#include "inspect/Words.hpp"
#include "parser/commands/CmdNewCrc.hpp"
#include "parser/commands/CmdNewHash.hpp"
#include "parser/commands/CmdWriteFile.hpp"
#include "parser/commands/Conventions.hpp"
#include "parser/commands/SignatureKey.hpp"
#include "parser/grammar/Keywords.hpp"
#include "parser/grammar/Statement.hpp"
#include "platform/Files.hpp"
#include "platform/Paths.hpp"
#include "strict/AddressSpace.hpp"
#include "strict/ImageReading.hpp"
#include "strict/diagnostics/KeptDiagnostics.hpp"
#include "strict/script/FileParts.hpp"
#include "util/crc/CrcParameters.hpp"

namespace Editor {

namespace {

using Parser::Part;
using Parser::Role;
using Parser::Statement;
using Parser::WrapperLib::CmdNewCrc;
using Parser::WrapperLib::CmdNewHash;
using Parser::WrapperLib::CmdNewValue;
using Parser::WrapperLib::CmdWriteFile;

/// Over which CRCs are published.
constexpr std::array<std::uint8_t, 9> digits{'1', '2', '3', '4', '5', '6', '7', '8', '9'};

std::string code(std::string_view text) {
    constexpr std::size_t most = 200;
    std::string shown(text.substr(0, characterStart(text, std::min(most, text.size()))));
    std::ranges::replace(shown, '`', '\'');
    if (shown.size() < text.size()) shown += "...";
    return "`" + shown + "`";
}

std::string describe(const Util::Crc::CrcParameters& crc) {
    return Inspect::crcText(crc) + ", check value " +
           Inspect::crcNumberText(Inspect::numberOf(Util::Crc::computeCrc(crc, digits)), crc.width);
}

/// A number in both notations.
std::string numberText(std::uint32_t number) {
    return Inspect::hexText(number) + ", decimal " + Inspect::grouped(number);
}

std::string areaText(const Buffer::Area& area) {
    if (area.length == 0) return "no addresses";
    return Inspect::rangeText(area) + ", " + Inspect::countText(area.length, "byte");
}

/// What a type of the language or a Custom CRC is.
std::string descriptionOf(const Parser::WrapperLib::Algorithm& algorithm) {
    std::string text(algorithm.name);
    if (algorithm.parameters) return text + ": " + describe(*algorithm.parameters);
    if (!algorithm.meaning.empty()) text.append(": ").append(algorithm.meaning);
    return text;
}

/// What a file that is small enough holds.
std::string fileText(const std::string& path) {
    constexpr std::uint64_t most = std::uint64_t{16} << 20U;
    if (!Platform::isRegularFile(path)) return "there is no such file";
    const auto file = Platform::InputFile::open(path);
    if (!file) return "the file cannot be opened";
    if (file->size() > most) return Inspect::sizeText(file->size());
    Strict::KeptDiagnostics ignored;
    const Buffer::ImageSpaceScope space(Strict::imageSpace);
    const auto image = Strict::readImage(path, std::nullopt, ignored);
    if (!image) return Inspect::sizeText(file->size()) + ", no image";
    std::string text = Inspect::formatText(image->format);
    const Buffer::AreaList areas = image->areas();
    constexpr std::size_t shown = 4;
    for (std::size_t i = 0; i < std::min(areas.size(), shown); ++i)
        text += "\n- " + areaText(areas[i]);
    if (areas.size() > shown)
        text += "\n- " + Inspect::grouped(areas.size() - shown) + " more areas";
    return text;
}

/// Answers one question.
class Question {
public:
    Question(const Script& script, const Mentions& mentions, std::size_t offset)
        : script_(&script), mentions_(&mentions), offset_(offset) {}

    std::optional<Hover> answer() const {
        const std::string_view text = script_->text();
        const std::vector<TextSpan> remarks = remarksIn(text);
        if (std::ranges::any_of(remarks, [this](TextSpan one) { return isHere(one); }))
            return std::nullopt;
        const Mention* const mention = mentions_->at(0, offset_);
        if (mention != nullptr && mention->thing == Thing::Parameter)
            return Hover{mention->where.where, parameterText(*mention)};
        if (auto variable = variableHere(remarks)) return variable;
        if (mention != nullptr) return Hover{mention->where.where, nameText(*mention)};
        if (script_->prepared() == nullptr) return std::nullopt;
        return partHere();
    }

private:
    bool isHere(TextSpan span) const { return span.at <= offset_ && offset_ < span.end(); }

    std::string parameterText(const Mention& mention) const {
        std::string text = "**parameter** " + code(mention.name);
        const std::string_view file = script_->fileText(mention.owner);
        const Strict::FileParts parts(file, [](const Strict::PartFault& /*fault*/) {});
        const auto index = parts.indexOf(mention.name);
        if (!index) return text + "\n\nThe file has no such parameter.";
        const auto& value = parts.parameters()[*index].value;
        if (mention.owner != 0) text += " of " + code(script_->fileName(mention.owner));
        return text + "\n\n" +
               (value ? "The default is " + code(value->in(file)) : "It needs a value") + ".";
    }

    /// A SUBSTITUTE, where it is or where its name is.
    std::optional<Hover> variableHere(const std::vector<TextSpan>& remarks) const {
        const std::string_view text = script_->text();
        std::optional<Hover> found;
        for (const Substitution& one : substitutionsIn(text, remarks)) {
            const std::string_view name = one.name.in(text);
            if (name.empty() || (found && found->where.length >= name.size())) continue;
            const std::size_t reach = std::min(offset_, name.size() - 1);
            const std::size_t at = text.find(name, offset_ - reach);
            if (at == std::string_view::npos || at > offset_) continue;
            found = Hover{
                {at, name.size()},
                "**variable** " + code(name) + "\n\nIt is replaced by " + code(one.value) + "."};
        }
        return found;
    }

    std::string nameText(const Mention& mention) const {
        std::string text = std::string("**") + wordFor(mention.thing) + "** " + code(mention.name);
        const Mention* const making = mentions_->makingOf(mention);
        if (making == nullptr) return text + "\n\nNo statement makes it.";
        const auto number = numberMaking(mention);
        if (mention.thing == Thing::Image) {
            const auto range = ImageRanges(script_->analysis()).rangeOf(mention.name);
            text +=
                "\n\n" + (range ? areaText(*range) : "The range is known when the script runs.");
        } else if (number && mention.thing != Thing::Signature) {
            const auto& command = *script_->analysis().commands()[*number];
            text += "\n\n" + descriptionOf(static_cast<const CmdNewValue&>(command).algorithm());
        } else if (number) {
            text += "\n\n" +
                    descriptionOfType(script_->analysis().statements()[*number].textOf(Role::Type));
        }
        const std::string_view file = script_->fileText(making->where.file);
        const auto line = std::count(
            file.begin(), file.begin() + static_cast<std::ptrdiff_t>(making->where.where.at), '\n');
        return text + "\n\nMade in line " + std::to_string(line + 1) +
               (making->where.file == 0 ? ""
                                        : " of " + code(script_->fileName(making->where.file))) +
               ".";
    }

    /// The number of the statement that makes a thing.
    std::optional<std::size_t> numberMaking(const Mention& mention) const {
        constexpr std::array roles{Role::MakesImage, Role::MakesCrc, Role::MakesHash,
                                   Role::MakesSignature};
        const Role role = roles.at(static_cast<std::size_t>(mention.thing));
        const auto& statements = script_->analysis().statements();
        for (std::size_t i = 0; i < statements.size(); ++i)
            if (statements[i].textOf(role) == mention.name) return i;
        return std::nullopt;
    }

    /// The place of a part if it is in the script's own file, around the offset.
    std::optional<TextSpan> placeOf(std::string_view part) const {
        if (part.empty()) return std::nullopt;
        const FilePlace place = filePlaceOf(*script_->prepared(), part);
        if (place.file != 0 || !isHere(place.where)) return std::nullopt;
        return place.where;
    }

    std::optional<Hover> partHere() const {
        for (const Statement& statement : script_->analysis().statements()) {
            // The numbers of a list are smaller than the list.
            for (const Part& part : statement.parts)
                if (auto hover = numberHere(statement, part)) return hover;
            for (const Part& part : statement.parts) {
                const auto place = placeOf(part.text);
                std::string text = place ? partText(statement, part) : "";
                if (!text.empty()) return Hover{*place, std::move(text)};
            }
        }
        return std::nullopt;
    }

    std::optional<Hover> numberHere(const Statement& statement, const Part& part) const {
        const bool isArea = part.role == Role::Area || part.role == Role::Range;
        for (const Parser::Number& number : statement.numbersOf(part)) {
            const std::string_view digitsOfIt = trimmed(number.text);
            const auto place = placeOf(digitsOfIt);
            if (!place) continue;
            std::string text = code(digitsOfIt) + "\n\n" +
                               (number.late == nullptr ? numberText(number.fixed)
                                                       : "It is known when the statement runs.");
            if (isArea && !statement.asks())
                text += "\n\nThe area: " + areaText(statement.areaOf(part));
            return Hover{*place, std::move(text)};
        }
        return std::nullopt;
    }

    static std::string partText(const Statement& statement, const Part& part) {
        if (part.role == Role::Keyword) {
            for (const Parser::StatementWord& word : Parser::statementWords())
                if (word.keyword == part.text) return code(word.keyword) + " " + word.meaning;
        }
        if ((part.role == Role::Area || part.role == Role::Range) && !statement.asks())
            return "**area** " + areaText(statement.areaOf(part));
        if (part.role == Role::Type) return descriptionOfType(part.text);
        if (part.role == Role::Format)
            if (const auto* const format = CmdWriteFile::formatNamed(part.text))
                return code(part.text) + " " + format->meaning;
        if (part.role == Role::InputFile) {
            const std::string path = Parser::WrapperLib::cleanedPath(std::string(part.text));
            return code(path) + "\n\n" + fileText(path);
        }
        return "";
    }

    const Script* script_;
    const Mentions* mentions_;
    std::size_t offset_;
};

}  // namespace

std::string descriptionOfType(std::string_view word) {
    if (const auto* const entry = Util::Crc::findInCatalogue(word)) {
        std::string text = std::string(entry->name) + ": " + describe(entry->parameters);
        if (!entry->aliases.empty()) text.append("; also ").append(entry->aliases);
        return text;
    }
    for (const auto types : {CmdNewCrc::types(), CmdNewHash::types()})
        for (const auto& type : types)
            if (word == type.keyword)
                return std::string(word) + ": " +
                       (type.parameters ? describe(*type.parameters) + "; " : "") + type.meaning;
    for (const auto& kind : Parser::WrapperLib::signatureKinds())
        if (word == kind.keyword) return std::string(word) + ": " + kind.meaning;
    return "";
}

std::optional<Hover> hoverAt(const Script& script, const Mentions& mentions, std::size_t offset) {
    return Question(script, mentions, offset).answer();
}

}  // namespace Editor
