#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "parser/commands/CmdCallApp.hpp"
#include "parser/commands/CmdFillBuffer.hpp"
#include "parser/commands/CmdNewBuffer.hpp"
#include "parser/commands/CmdNewCrc.hpp"
#include "parser/commands/CmdNewHash.hpp"
#include "parser/commands/CmdNewSignature.hpp"
#include "parser/commands/CmdPrintBuffer.hpp"
#include "parser/commands/CmdPrintCrc.hpp"
#include "parser/commands/CmdPrintHash.hpp"
#include "parser/commands/CmdPrintSignature.hpp"
#include "parser/commands/CmdPrintText.hpp"
#include "parser/commands/CmdVerifySignature.hpp"
#include "parser/commands/CmdWriteFile.hpp"
#include "tests/ExpectedFacts.hpp"
#include "tests/Vectors.hpp"

namespace {

using namespace Parser::WrapperLib;
using Facts::NameKind;

template <class Command, class... Arguments>
std::unique_ptr<CmdApi> make(const std::function<void(Command&)>& set, Arguments... arguments) {
    auto command = std::make_unique<Command>(arguments...);
    set(*command);
    return command;
}

struct Refusal {
    NameKind kind;
    std::unique_ptr<CmdApi> statement;
};

TEST(StatementTest, AMissingNameFailsTheStatementAndChangesNothing) {
    const Refusal rows[] = {
        {NameKind::Buffer, make<CmdNewBuffer>([](auto& c) {
             c.addSourceBuffer("B");
             c.addSourceBuffer("X");
         })},
        {NameKind::Buffer, make<CmdFillBuffer>([](auto& c) { c.setBufferName("X"); })},
        {NameKind::Crc, make<CmdFillBuffer>([](auto& c) {
             c.setBufferName("B");
             c.setFillCrc("X");
         })},
        {NameKind::Hash, make<CmdFillBuffer>([](auto& c) {
             c.setBufferName("B");
             c.setFillHash("X");
         })},
        {NameKind::Signature, make<CmdFillBuffer>([](auto& c) {
             c.setBufferName("B");
             c.setFillSignature("X");
         })},
        {NameKind::Buffer, make<CmdNewCrc>([](auto& c) {
             c.addFromBuffer("B");
             c.addFromBuffer("X");
         })},
        {NameKind::Buffer, make<CmdWriteFile>([](auto& c) { c.addBuffer("X"); })},
        {NameKind::Buffer, make<CmdPrintBuffer>([](auto& c) { c.setBufferName("X"); })},
        {NameKind::Crc, make<CmdPrintCrc>([](auto& c) { c.setCrcName("X"); })},
        {NameKind::Hash, make<CmdPrintHash>([](auto& c) { c.setHashName("X"); })},
        {NameKind::Signature, make<CmdPrintSignature>([](auto& c) { c.setSignatureName("X"); })},
        {NameKind::Signature, make<CmdVerifySignature>([](auto& c) {
             c.setName("X");
             c.addFromBuffer("B");
         })},
        {NameKind::Buffer, make<CmdNewSignature>([](auto& c) {
             c.setStored(true);
             c.addFromBuffer("B");
             c.addFromBuffer("X");
         })},
        {NameKind::Symbol,
         make<CmdPrintText>([](auto& c) { c.addSymbol("X"); }, TextCalculator{nullptr})},
        {NameKind::Symbol, make<CmdCallApp>([](auto& c) { c.addSymbol("X"); })},
    };
    for (const Refusal& row : rows) {
        CmdContext context;
        context.buffers.try_emplace("B", 0, 4);
        const Tests::ExpectedFacts expected({Facts::NameNotFound{row.kind, "X"}});
        EXPECT_FALSE(row.statement->execute(context)) << row.statement->getCmdType();
        EXPECT_EQ(context.buffers.size() + context.crcs.size() + context.hashes.size() +
                      context.signatures.size(),
                  1U);
        EXPECT_EQ(context.buffers.at("B").viewElements().written(0, 4), 0U);
    }
}

TEST(StatementTest, EveryTypeComputesItsVectors) {
    std::map<std::string, std::vector<Tests::Vector>> vectors;
    for (const Tests::Vector& vector : Tests::loadVectors(""))
        vectors[vector.keyword].push_back(vector);
    for (const auto types : {CmdNewCrc::types(), CmdNewHash::types()}) {
        for (const ValueType& type : types) {
            if (type.compute == nullptr) continue;
            EXPECT_FALSE(vectors[type.keyword].empty())
                << type.keyword << " has no row in tests/data/checksums.tsv";
            for (const Tests::Vector& vector : vectors[type.keyword])
                EXPECT_EQ(Tests::hexOf(type.compute(vector.input)), vector.value)
                    << vector.keyword << " of " << vector.inputName;
        }
    }
}

}  // namespace
