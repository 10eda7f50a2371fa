#include "strict/script/TypeAdvice.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>

#include "inspect/CrcWords.hpp"
#include "inspect/Words.hpp"
#include "io/NamedNumber.hpp"
#include "parser/commands/CmdNewCrc.hpp"
#include "parser/commands/CmdNewHash.hpp"
#include "parser/commands/CmdWriteFile.hpp"
#include "parser/commands/SignatureKey.hpp"
#include "strict/diagnostics/NameMatch.hpp"
#include "util/crc/CrcParameters.hpp"

namespace Strict {

namespace {

using Parser::WrapperLib::CmdNewCrc;
using Parser::WrapperLib::CmdNewHash;
using Parser::WrapperLib::CmdWriteFile;
using Parser::WrapperLib::ExportFormat;
using Parser::WrapperLib::FormatNumber;
using Parser::WrapperLib::SignatureKind;
using Parser::WrapperLib::ValueType;
using Util::Crc::CatalogueEntry;
using Util::Crc::CrcParameters;

/// Something that can be typed.
struct Choice {
    std::string text;
    std::string description;
    std::optional<CrcParameters> parameters = {};
    std::string warning = {};  ///< what nobody expects of that name
};

struct Choices {
    std::vector<Choice> all;
    std::vector<KnownName> names;  ///< of them, by index

    void add(Choice choice) { all.push_back(std::move(choice)); }
    /// A name of the last choice.
    void name(std::string_view text) { names.push_back({std::string(text), all.size() - 1}); }
    /// Another name of the choice that has the name `other`.
    void name(std::string_view text, std::string_view other) {
        const auto known = std::ranges::find(names, other, &KnownName::name);
        if (known != names.end()) names.push_back({std::string(text), known->thing});
    }
};

/// A name that people use for something that the language calls otherwise, by `entry`. One that
/// is used for several comes several times.
struct CommonName {
    std::string_view name;
    std::string_view entry;
};

constexpr auto commonNames = std::to_array<CommonName>({
    {"CRC-32/ZLIB", "CRC-32/ISO-HDLC"},
    {"CRC-32/GZIP", "CRC-32/ISO-HDLC"},
    {"CRC-32/ZIP", "CRC-32/ISO-HDLC"},
    {"CRC-32/PNG", "CRC-32/ISO-HDLC"},
    {"CRC-32/ETHERNET", "CRC-32/ISO-HDLC"},
    {"CRC-32/IEEE", "CRC-32/ISO-HDLC"},
    {"CRC-32/IEEE-802-3", "CRC-32/ISO-HDLC"},
    {"CRC-32B", "CRC-32/ISO-HDLC"},
    {"CRC-16/CCITT", "CRC-16/KERMIT"},
    {"CRC-16/CCITT", "CRC-16/IBM-3740"},
    {"CRC-16/CCITT", "CRC-16/XMODEM"},
    {"CRC-CCITT", "CRC-16/KERMIT"},
    {"CRC-CCITT", "CRC-16/IBM-3740"},
    {"CRC-CCITT", "CRC-16/XMODEM"},
    {"CRC-16/IBM", "CRC-16/ARC"},
    {"CRC-16/IBM", "CRC-16/IBM-3740"},
    {"CRC-16/IBM", "CRC-16/IBM-SDLC"},
    {"CRC-16/ANSI", "CRC-16/ARC"},
    {"CRC-16/HDLC", "CRC-16/IBM-SDLC"},
    {"CRC16", "CRC-16/ARC"},
    {"CRC16", "CRC-16/IBM-3740"},
    {"CRC16", "CRC-16/IBM-SDLC"},
    {"CRC16", "CRC-16/KERMIT"},
    {"CRC16", "CRC-16/MODBUS"},
    {"CRC16", "CRC-16/XMODEM"},
    {"CRC8", "CRC-8/SMBUS"},
    {"CRC8", "CRC-8/AUTOSAR"},
    {"CRC8", "CRC-8/MAXIM-DOW"},
    {"CRC8", "CRC-8/SAE-J1850"},
    {"CRC-8/DALLAS", "CRC-8/MAXIM-DOW"},
    {"CRC-8/1-WIRE", "CRC-8/MAXIM-DOW"},
    {"CRC-8/J1850", "CRC-8/SAE-J1850"},
    {"CRC24", "CRC-24/OPENPGP"},
    {"CRC24", "CRC-24/BLE"},
    {"CRC24", "CRC-24/LTE-A"},
    {"CRC64", "CRC-64/XZ"},
    {"CRC64", "CRC-64/ECMA-182"},
    {"CRC64", "CRC-64/GO-ISO"},
});

/// What tells a CRC from others.
std::string describe(const CrcParameters& crc) {
    constexpr std::array<std::uint8_t, 9> digits{'1', '2', '3', '4', '5', '6', '7', '8', '9'};
    return Inspect::crcText(crc) + ", check value " +
           Inspect::crcNumberText(Inspect::numberOf(Util::Crc::computeCrc(crc, digits)), crc.width);
}

/// The CRCs of the catalogue.
///
/// @param before, after  what belongs around a name to make it a type
void addCatalogue(Choices& choices, const char* before, const char* after) {
    for (const CatalogueEntry& entry : Util::Crc::catalogue()) {
        choices.add({before + std::string(entry.name) + after, describe(entry.parameters),
                     entry.parameters});
        choices.name(entry.name);
        for (const std::string_view alias : Util::Crc::aliasesOf(entry)) choices.name(alias);
    }
    // After the published names, which come first where a name has several meanings.
    for (const CommonName& common : commonNames) choices.name(common.name, common.entry);
}

/// The types of this system that compute something.
void addTypes(Choices& choices, std::span<const ValueType> types) {
    for (const ValueType& type : types) {
        if (type.compute == nullptr) continue;
        choices.add({type.keyword,
                     type.parameters ? describe(*type.parameters) : std::string(type.meaning),
                     type.parameters, type.parameters ? "" : std::string(", ") + type.meaning});
        choices.name(type.keyword);
    }
}

Choices crcTypes() {
    Choices choices;
    addCatalogue(choices, "Catalogue{", "}");
    addTypes(choices, CmdNewCrc::types());
    return choices;
}

/// The functions go by the names of their standards, and by the language's without its prefix.
Choices hashTypes() {
    Choices choices;
    for (const ValueType& type : CmdNewHash::types()) {
        if (type.compute == nullptr) continue;
        const std::string_view keyword = type.keyword;
        const std::string_view meaning = type.meaning;
        choices.add({type.keyword, type.meaning});
        choices.name(keyword);
        const std::size_t prefix = keyword.find('_') + 1;
        const std::string_view standard = meaning.substr(0, meaning.find(','));
        choices.name(keyword.substr(prefix));
        choices.name(standard);
        choices.name(std::string(keyword.substr(0, prefix)) + std::string(standard));
    }
    return choices;
}

/// Names of signatures in other places, as those of JSON Web Algorithms (RFC 7518) and of curves.
constexpr auto signatureNames = std::to_array<CommonName>({
    {"EdDSA", "Ed25519"},
    {"ES256", "EcdsaP256_Sha256"},
    {"EcdsaP256", "EcdsaP256_Sha256"},
    {"Ecdsa", "EcdsaP256_Sha256"},
    {"P-256", "EcdsaP256_Sha256"},
    {"secp256r1", "EcdsaP256_Sha256"},
    {"prime256v1", "EcdsaP256_Sha256"},
    {"Ecdsa", "EcdsaP384_Sha384"},
    {"ES384", "EcdsaP384_Sha384"},
    {"EcdsaP384", "EcdsaP384_Sha384"},
    {"P-384", "EcdsaP384_Sha384"},
    {"secp384r1", "EcdsaP384_Sha384"},
    {"PS256", "RsaPss_Sha256"},
    {"RsaPss", "RsaPss_Sha256"},
    {"Rsa", "RsaPss_Sha256"},
    {"RS256", "RsaPkcs1_Sha256"},
    {"RsaPkcs1", "RsaPkcs1_Sha256"},
    {"Rsa", "RsaPkcs1_Sha256"},
});

Choices signatureTypes() {
    Choices choices;
    for (const SignatureKind& kind : Parser::WrapperLib::signatureKinds()) {
        choices.add({kind.keyword, kind.meaning});
        choices.name(kind.keyword);
    }
    for (const CommonName& common : signatureNames) choices.name(common.name, common.entry);
    return choices;
}

/// The names that a format takes after its underscore, such as the families of devices.
///
/// @param before  what belongs in front of a name
Choices namesOf(const ExportFormat& format, const std::string& before) {
    Choices choices;
    for (const Io::NamedNumber& known : format.names()) {
        choices.add({before + std::string(known.name), Inspect::addressText(known.number)});
        choices.name(known.name);
    }
    return choices;
}

std::string listed(std::span<const std::string> words) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i != 0) text += i + 1 == words.size() ? " or " : ", ";
        text += words[i];
    }
    return text;
}

/// The choices at these places, without those that compute the same as one before.
std::vector<const Choice*> chosen(const Choices& choices, std::span<const std::size_t> places) {
    std::vector<const Choice*> list;
    for (const std::size_t place : places) {
        const Choice& choice = choices.all[place];
        const bool isKnown = choice.parameters && std::ranges::any_of(list, [&](const Choice* one) {
                                 return one->parameters == choice.parameters;
                             });
        if (!isKnown) list.push_back(&choice);
    }
    return list;
}

TypeAdvice adviceFrom(const Choices& choices, std::string_view word,
                      Likeness likeness = Likeness::Misspelt) {
    constexpr std::size_t mostChoices = 6;
    const auto list = chosen(choices, thingsMeant(word, choices.names, likeness));
    TypeAdvice advice;
    if (list.empty() || list.size() > mostChoices) return advice;
    std::vector<std::string> texts;
    for (const Choice* const choice : list) {
        texts.push_back(choice->text + choice->warning);
        advice.choices.push_back(choice->text);
        if (list.size() > 1 && !choice->description.empty())
            advice.notes.push_back(choice->text + ": " + choice->description);
    }
    advice.hint = "did you mean " + listed(texts) + "?";
    return advice;
}

/// For a word that another statement takes as a type.
TypeAdvice adviceToUse(const char* statement, const Choices& choices, std::string_view word) {
    const auto list = chosen(choices, thingsMeant(word, choices.names, Likeness::Whole));
    if (list.size() != 1) return {};
    return {std::string(statement) + " computes this, with -setType=" + list.front()->text, {}};
}

}  // namespace

TypeAdvice adviceOnCrcType(std::string_view word) {
    TypeAdvice advice = adviceToUse("NEW_HASH", hashTypes(), word);
    return advice.hint.empty() ? adviceFrom(crcTypes(), word) : advice;
}

TypeAdvice adviceOnCatalogueName(std::string_view word) {
    Choices names;
    addCatalogue(names, "", "");
    return adviceFrom(names, word);
}

TypeAdvice adviceOnHashType(std::string_view word) {
    TypeAdvice advice = adviceToUse("NEW_CRC", crcTypes(), word);
    return advice.hint.empty() ? adviceFrom(hashTypes(), word) : advice;
}

TypeAdvice adviceOnSignatureType(std::string_view word) {
    return adviceFrom(signatureTypes(), word);
}

TypeAdvice adviceOnFormat(std::string_view word) {
    const std::size_t underscore = std::min(word.find('_'), word.size());
    const ExportFormat* const begun = CmdWriteFile::formatNamed(word);
    if (begun != nullptr && begun->numberForm == FormatNumber::Named && underscore < word.size())
        return adviceFrom(namesOf(*begun, std::string(begun->keyword) + "_"),
                          word.substr(underscore + 1), Likeness::Begun);
    Choices choices;
    for (const ExportFormat& format : CmdWriteFile::formats()) {
        const bool isChosen = format.usualForm == nullptr && format.choice != nullptr;
        choices.add({format.usualForm != nullptr ? format.usualForm : format.keyword,
                     format.meaning,
                     {},
                     isChosen ? std::string(" with ") + format.choice : ""});
        choices.name(format.keyword);
        choices.name(format.meaning);
        for (const std::string_view ending : format.endings) choices.name(ending);
    }
    return adviceFrom(choices, word);
}

TypeAdvice adviceOnFormatName(const ExportFormat& format, std::string_view word) {
    // The letters of a chip's name tell it from others as well as its numbers do.
    return adviceFrom(namesOf(format, ""), word, Likeness::Begun);
}

}  // namespace Strict
