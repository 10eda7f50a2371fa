#include "parser/commands/LateNumber.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "buffer/ImageSpace.hpp"
#include "facts/Listener.hpp"
#include "parser/commands/CmdContext.hpp"
#include "parser/grammar/ScriptGrammar.hpp"
#include "parser/grammar/ScriptSyntax.hpp"

namespace {

using namespace Parser;
using namespace Parser::WrapperLib;

/// Keeps what was reported, in short.
class Reports final : public Facts::Listener {
public:
    void hear(const Facts::Fact& fact) override {
        if (const auto* const missing = std::get_if<Facts::NameNotFound>(&fact))
            text += "no " + std::string(missing->name) + ";";
        if (const auto* const without = std::get_if<Facts::ImageWithout>(&fact))
            text += std::string(without->image) +
                    (without->lack == Facts::ImageLack::Bytes ? " unwritten;" : " empty;");
    }
    std::string text;
};

/// A run with an image @A from 0x100 to 0x107, whose bytes at 0x102 to 0x105 are written, and
/// others.
class Images {
public:
    Images() {
        add("@A", {0x100, 8});
        context.buffers.at("@A").writePattern(std::vector<std::uint8_t>{1, 2, 3, 4}, 0x102, 4);
        add("@Unwritten", {0x10, 4});
        add("@None", {0, 0});
        add("@Top", {0xFFFFFF00, 0x100});
        context.signatures.try_emplace("@A", 64);
        context.signatures.try_emplace("@Signature", 71);
    }

    std::optional<std::uint32_t> valueOf(const std::string& text) {
        ParserState state(nullptr);
        const CommonRules rules(state);
        state.beginText(text.size());
        const auto info = Spirit::parse(text.data(), text.data() + text.size(), rules.value);
        EXPECT_TRUE(info.full) << text;
        const Amount amount = state.expression.current();
        const Facts::ListenerScope listening(reports);
        if (amount.late && !amount.late->resolve(context)) return std::nullopt;
        return static_cast<std::uint32_t>(amount.value());
    }

    CmdContext context;
    Reports reports;

private:
    void add(const std::string& name, const Area& area) {
        context.buffers.emplace(name, Buffer::MemoryBuffer(area.start, area.length));
    }
};

TEST(LateNumberTest, AnImageAnswersWhatItIsWhenItIsAsked) {
    Images images;
    EXPECT_EQ(images.valueOf("startOf(@A)"), 0x100U);
    EXPECT_EQ(images.valueOf("endOf(@A)"), 0x108U);
    EXPECT_EQ(images.valueOf("lengthOf( @A )"), 8U);
    EXPECT_EQ(images.valueOf("firstWritten(@A)"), 0x102U);
    EXPECT_EQ(images.valueOf("lastWritten(@A)"), 0x105U);
    EXPECT_EQ(images.valueOf("lengthOf(@None)"), 0U);
    EXPECT_EQ(images.valueOf("startOf(@Unwritten)"), 0x10U);
    EXPECT_EQ(images.valueOf("lengthOf(@Signature)"), 71U);
    images.context.buffers.at("@A").writePattern(std::vector<std::uint8_t>{1}, 0x107, 1);
    EXPECT_EQ(images.valueOf("lastWritten(@A)"), 0x107U);
    EXPECT_EQ(images.reports.text, "");
}

TEST(LateNumberTest, WhatAnImageLacksIsReported) {
    for (const auto& [text, report] : {
             std::pair("startOf(@B)", "no @B;"),
             std::pair("startOf(@Signature)", "no @Signature;"),
             std::pair("startOf(@None)", "@None empty;"),
             std::pair("endOf(@None)", "@None empty;"),
             std::pair("firstWritten(@None)", "@None unwritten;"),
             std::pair("firstWritten(@Unwritten)", "@Unwritten unwritten;"),
             std::pair("4 + lastWritten(@Unwritten)*2", "@Unwritten unwritten;"),
         }) {
        Images images;
        EXPECT_EQ(images.valueOf(text), std::nullopt) << text;
        EXPECT_EQ(images.reports.text, report) << text;
    }
}

/// What the value does not depend on is not asked: of two numbers side by side the last one counts.
TEST(LateNumberTest, OnlyWhatCountsIsAsked) {
    Images images;
    EXPECT_EQ(images.valueOf("startOf(@B) 7 + lengthOf(@A)"), 15U);
    EXPECT_EQ(images.valueOf("startOf(@B) 7"), 7U);
    EXPECT_EQ(images.reports.text, "");
}

/// Plain numbers in the places of the functions are the model.
TEST(LateNumberTest, OperatorsAreAppliedInTheOrderOfTheLanguage) {
    const std::vector<std::pair<std::string, std::string>> answers{
        {"endOf(@A)", "0x108"}, {"lengthOf(@A)", "8"}, {"startOf(@A)", "0x100"}};
    for (const char* const text :
         {"endOf(@A) - 4", "10 - lengthOf(@A)- 3", "endOf(@A)-startOf(@A)-4",
          "(endOf(@A)-startOf(@A))- 4", "lengthOf(@A) * 2 + 3", "2*lengthOf(@A)+3", "3 - endOf(@A)",
          "endOf(@A)/0", "endOf(@A)%0", "endOf(@A)/lengthOf(@A)%5", "(1 + (2*startOf(@A)))",
          "startOf(@A)*startOf(@A)*startOf(@A)*startOf(@A)", "0xFFFFFFFF+endOf(@A)"}) {
        std::string plain = text;
        for (const auto& [function, number] : answers)
            for (auto at = plain.find(function); at != std::string::npos; at = plain.find(function))
                plain.replace(at, function.size(), number);
        Images images;
        EXPECT_EQ(images.valueOf(text), images.valueOf(plain)) << text;
    }
}

TEST(LateNumberTest, AnEndOf33BitsIsExactUntilItIsTheResult) {
    Images images;
    EXPECT_EQ(images.valueOf("endOf(@Top)"), 0U);
    EXPECT_EQ(images.valueOf("endOf(@Top) - 4"), 0xFFFFFFFCU);
    EXPECT_EQ(images.valueOf("endOf(@Top)/ 2"), 0x80000000U);
}

TEST(LateNumberTest, ATextWithoutAllOfItsSignsIsNotANumber) {
    for (const char* const text :
         {"startOf", "startOf()", "startOf(@A", "startOf @A", "startOf(@A, 1)", "startof(@A)",
          "symbolOf(a.elf)", "symbolOf(a.elf,)", "symbolOf(,main)", "symbolOf(\"a b, main)"}) {
        ParserState state(nullptr);
        const CommonRules rules(state);
        const std::string value(text);
        state.beginText(value.size());
        const auto info = Spirit::parse(value.data(), value.data() + value.size(), rules.value);
        EXPECT_FALSE(info.full) << text;
    }
}

/// The parts of a statement, by their roles, and how many numbers each has.
TEST(LateNumberTest, WhatANumberAsksIsAPartOfItsStatement) {
    ScriptSyntax syntax(nullptr);
    const std::string text =
        "FILL_BUFFER @A WITH_VALUES {1, startOf(@B) + lengthOf(@C), 3} "
        "-useAreas={{symbolOf({a b.elf}, \"f(int, char)\"), 4}}";
    syntax.state().statement.keepStatements(text.size());
    ASSERT_EQ(syntax.parse(text), text.size());
    const Statement statement = syntax.state().statement.statements()[0];
    std::string parts;
    for (const Part& part : statement.parts)
        if (part.role != Role::Keyword)
            parts += std::string(part.text) + " " + std::to_string(part.numberCount) + "\n";
    EXPECT_EQ(parts,
              "@A 0\n"
              "@B 0\n"
              "@C 0\n"
              "{1, startOf(@B) + lengthOf(@C), 3} 3\n"
              "{a b.elf} 0\n"
              "\"f(int, char)\" 0\n"
              "{symbolOf({a b.elf}, \"f(int, char)\"), 4} 2\n");
    EXPECT_TRUE(statement.asks());
}

TEST(LateNumberTest, TheLastWrittenAddressOfASparseImageIsFound) {
    const Buffer::ImageSpace space{std::uint64_t{1} << 32U, 1U << 20U};
    const Buffer::ImageSpaceScope sparse(space);
    constexpr std::uint64_t block = 1U << 20U;
    for (const std::vector<std::uint64_t>& written :
         std::vector<std::vector<std::uint64_t>>{{0},
                                                 {5, 2 * block - 1},
                                                 {2 * block, 2 * block + 64},
                                                 {1, 300 * block + 63},
                                                 {299 * block + 127, 299 * block},
                                                 {1000 * block - 1}}) {
        Buffer::MemoryBuffer image(0x100, 1000 * block);
        const std::vector<std::uint8_t> byte{0};
        std::uint64_t last = 0;
        for (const std::uint64_t at : written) {
            image.writePattern(byte, 0x100 + at, 1);
            last = std::max(last, at);
        }
        EXPECT_EQ(image.viewElements().findLastWritten(), last);
    }
    const Buffer::MemoryBuffer image(0x100, 1000 * block);
    EXPECT_EQ(image.viewElements().findLastWritten(), 1000 * block);
}

}  // namespace
