#include <fstream>

#include "io/export/EmbeddedC_AssemblerOutFile.hpp"
#include "io/export/IntelHexOutFile.hpp"
#include "io/export/MotorolaS_OutFile.hpp"
#include "io/export/RawBinaryOutFile.hpp"
#include "tests/io/IoFixtures.hpp"

namespace {

using namespace Io::Export;
using Buffer::MemoryBuffer;
using Tests::ExpectedFacts;
using Tests::imageOf;
using Tests::temporaryPath;
using Tests::textOf;

/// What a writer leaves on the disk.
std::string written(TessaronExportApi&& writer, const std::vector<MemoryBuffer>& images,
                    std::optional<std::uint64_t> execution = {}) {
    for (const MemoryBuffer& image : images) writer.insertMemoryBuffer(image);
    if (execution) writer.setExecutionAddress(*execution);
    writer.saveToFile();
    return textOf(temporaryPath());
}

IntelHexOutFile intelHex(bool useSegments = false, std::uint32_t length = 16) {
    return {temporaryPath(), IntelHexOutputStyle{useSegments, length}};
}

MotorolaS_OutFile motorola(std::uint32_t size = 32) {
    MotorolaSOutputStyle style;
    style.maximumRecordSize = size;
    return {temporaryPath(), style};
}

TEST(IntelHexOutFileTest, TheWorkedExamples) {
    const std::string end = ":00000001FF\n";
    EXPECT_EQ(written(intelHex(), {}), end);
    EXPECT_EQ(written(intelHex(), {imageOf(0x1000, {1, 2, 3, 4}), MemoryBuffer(5, 0)}),
              ":020000040000FA\n:0410000001020304E2\n" + end);
    EXPECT_EQ(written(intelHex(true), {imageOf(0x12345, {0xAA, 0xBB})}),
              ":020000021234B6\n:02000500AABB94\n" + end);
    EXPECT_EQ(written(intelHex(), {imageOf(0xFFFF, {0x11, 0x22})}),
              ":020000040000FA\n:01FFFF0011F0\n:020000040001F9\n:0100000022DD\n" + end);
    EXPECT_EQ(written(intelHex(), {}, 0x12345), ":04000005000123458E\n" + end);
    EXPECT_EQ(written(intelHex(true), {}, 0x12345), ":0400000312340005AE\n" + end);
}

TEST(IntelHexOutFileTest, RecordsAreCutAtTheirLengthAndAtBlocks) {
    const auto lines = [](const std::string& text) {
        return std::count(text.begin(), text.end(), '\n') - 1;
    };
    EXPECT_EQ(lines(written(intelHex(false, 16), {imageOf(0, Tests::someBytes(16))})), 2);
    EXPECT_EQ(lines(written(intelHex(false, 16), {imageOf(0, Tests::someBytes(17))})), 3);
    EXPECT_EQ(lines(written(intelHex(false, 255), {imageOf(0, Tests::someBytes(510))})), 3);
    EXPECT_EQ(lines(written(intelHex(false, 255), {imageOf(0xFF01, Tests::someBytes(256))})), 4);
    const std::string segments =
        written(intelHex(true, 255), {imageOf(0x12345, Tests::someBytes(0x10000))});
    EXPECT_NE(segments.find(":020000022234A6\n:05000000"), std::string::npos);
}

TEST(IntelHexOutFileTest, RefusesWhatItCannotReachAndTouchesNothing) {
    const std::string path = temporaryPath();
    std::ofstream(path) << "kept";
    const ExpectedFacts expected({Facts::AddressNotExpressible{0x100000000, path},
                                  Facts::AddressNotExpressible{0x100000, path}});
    EXPECT_EQ(written(intelHex(), {imageOf(0, {1}), imageOf(0x100000000, {2})}), "kept");
    EXPECT_EQ(written(intelHex(true), {imageOf(0x100000, {2})}), "kept");
    EXPECT_NE(written(intelHex(true), {imageOf(0xFFFF0, Tests::someBytes(0x20))}), "kept");
}

TEST(IntelHexOutFileTest, CorrectsItsRecordLength) {
    using enum Facts::OutputFormat;
    const ExpectedFacts expected(
        {Facts::RecordLengthCorrected{IntelHex, 0, Facts::Bound::Minimum, 1},
         Facts::RecordLengthCorrected{IntelHex, 256, Facts::Bound::Maximum, 255}});
    EXPECT_EQ(written(intelHex(false, 0), {imageOf(0, {1, 2})}),
              written(intelHex(false, 1), {imageOf(0, {1, 2})}));
    intelHex(false, 255);
    intelHex(false, 256);
}

TEST(IntelHexOutFileTest, RefusesRecordTypesThatTheFormatDoesNotHave) {
    const ExpectedFacts expected({Facts::RecordTypeUnknown{0}, Facts::RecordTypeUnknown{7}});
    for (const std::uint32_t type : {0U, 7U})
        EXPECT_THROW(
            intelHex().getStringRepresentationFor(0, static_cast<Io::IntelRecordType>(type), {}),
            std::exception);
}

TEST(IntelHexOutFileTest, OneRecordAsText) {
    const MemoryBuffer image = imageOf(0x1000, {1, 2, 3, 4});
    EXPECT_EQ(intelHex().getStringRepresentationFor(0xABCD1000, Io::IntelRecordType::Data,
                                                    image.getElements()),
              ":0410000001020304E2\n");
}

const std::string motorolaHeader =
    "S027000020202020202020202020000043726561746564204279205465737361726F6E2032303038AC\n";

TEST(MotorolaS_OutFileTest, TheWorkedExamples) {
    EXPECT_EQ(written(motorola(), {}), motorolaHeader + "S9030000FC\n");
    EXPECT_EQ(written(motorola(), {imageOf(0x1000, {1, 2, 3, 4})}),
              motorolaHeader + "S107100001020304DE\nS9030000FC\n");
    EXPECT_EQ(written(motorola(), {imageOf(0xFFFF, {0x11})}),
              motorolaHeader + "S20500FFFF11EB\nS804000000FB\n");
    EXPECT_EQ(written(motorola(), {}, 0x12345), motorolaHeader + "S80401234592\n");
    EXPECT_EQ(written(motorola(), {imageOf(0x80000000, {0xAA})}, 0x80000000),
              motorolaHeader + "S30680000000AACF\nS705800000007A\n");
    // An image without elements is a record without data; one that ends with the address space
    // still takes four bytes.
    EXPECT_EQ(written(motorola(), {MemoryBuffer(0x1000, 0), imageOf(0xFFFFFFFF, {0x5A})}),
              motorolaHeader + "S30500001000EA\nS306FFFFFFFF5AA3\nS70500000000FA\n");
    EXPECT_EQ(
        written(motorola(21), {imageOf(0x1000, std::vector<std::uint8_t>(22, 0))}),
        motorolaHeader + "S1181000" + std::string(42, '0') + "D7\nS104101500D6\n" + "S9030000FC\n");
}

TEST(MotorolaS_OutFileTest, OneRecordAsText) {
    SRecord record{Io::SRecordType::Unknown, {}, {1, 2, 3, 4}};
    motorola().makeRecord(SRecordKind::Data, 0x1000, record);
    EXPECT_EQ(MotorolaS_OutFile::getStringRepresentation(record), "S107100001020304DE\n");
    record.recordType = Io::SRecordType::Unknown;
    EXPECT_EQ(MotorolaS_OutFile::getStringRepresentation(record), "");
}

TEST(MotorolaS_OutFileTest, CountsItsRecordsInThreeWidths) {
    for (const auto& [address, count] :
         {std::pair{0x10ULL, "\nS503FFFFFE\n"}, std::pair{0x20000ULL, "\nS50400FFFFFD\n"},
          std::pair{0x80000000ULL, "\nS5050000FFFFFC\n"}}) {
        const MemoryBuffer empty(address, 0);
        const MemoryBuffer last = imageOf(address, Tests::someBytes(33));
        MotorolaS_OutFile writer = motorola();
        for (int i = 0; i < 65534; ++i) writer.insertMemoryBuffer(empty);
        writer.insertMemoryBuffer(last);
        writer.saveToFile();
        const std::string text = textOf(temporaryPath());
        // Due after record 65535, which is the first of the last image.
        const std::size_t at = text.find(count);
        ASSERT_NE(at, std::string::npos);
        EXPECT_EQ(std::count(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(), '\n'), 4);
        EXPECT_EQ(text.find("\nS5", at + 1), std::string::npos);
    }
}

TEST(MotorolaS_OutFileTest, ReportsAndCorrects) {
    using enum Facts::OutputFormat;
    const ExpectedFacts expected(
        {Facts::RecordLengthCorrected{MotorolaS, 20, Facts::Bound::Minimum, 21},
         Facts::RecordLengthCorrected{MotorolaS, 36, Facts::Bound::Maximum, 32},
         Facts::ImageBeyondSRecords{0xFFFFFFFF}});
    for (const std::uint32_t size : {20U, 21U, 32U, 36U}) motorola(size);
    EXPECT_EQ(written(motorola(), {imageOf(0xFFFFFFFF, {1, 2})}), motorolaHeader + "S9030000FC\n");
    MotorolaSOutputStyle style{"abc", "short", 1, 2, 32};
    MotorolaS_OutFile named(temporaryPath(), style);
    named.saveToFile();
    EXPECT_EQ(textOf(temporaryPath()).substr(0, 72),
              "S021000020202020202020616263010273686F727420202020202020202020202020"
              "05\nS");
}

TEST(RawBinaryOutFileTest, WritesImagesOneAfterTheOther) {
    EXPECT_EQ(written(RawBinaryOutFile(temporaryPath()), {}), "");
    MemoryBuffer filled(0x10, 2);
    filled.fillMemory(std::vector<Buffer::MemoryElement>{{0, 'x', 0}}, 0x10, 2);
    EXPECT_EQ(written(RawBinaryOutFile(temporaryPath()),
                      {imageOf(0x2000, {'b', '\n'}), filled, imageOf(0x2000, {'a'})}, 5),
              "b\nxxa");
    // Long pieces are not copied, but keep their place.
    const std::vector<std::uint8_t> longBytes = Tests::someBytes(70000);
    EXPECT_EQ(written(RawBinaryOutFile(temporaryPath()),
                      {imageOf(0, {'a'}), imageOf(0, longBytes), imageOf(0, {'b'})}),
              "a" + std::string(longBytes.begin(), longBytes.end()) + "b");
}

void expectRefusalBeyond32Bits(TessaronExportApi&& writer, Facts::OutputFormat format) {
    const ExpectedFacts expected({Facts::TooManyBytes{format, 0xFFFFFFFF}});
    // Costs no memory as long as nothing is written into it.
    const MemoryBuffer sixteenth(0, 0x10000000);
    for (int i = 0; i < 15; ++i) writer.insertMemoryBuffer(sixteenth);
    writer.insertMemoryBuffer(MemoryBuffer(0, 0xFFFFFFF));
    writer.insertMemoryBuffer(MemoryBuffer(0, 1));
}

TEST(OutFileTest, FormatsWithoutAddressesTakeWhat32BitsCount) {
    expectRefusalBeyond32Bits(RawBinaryOutFile(temporaryPath()), Facts::OutputFormat::RawBinary);
    expectRefusalBeyond32Bits(EmbeddedC_AssemblerOutFile(temporaryPath(), {}),
                              Facts::OutputFormat::EmbeddedC_Assembler);
}

std::string embedded(const std::string& section, std::uint32_t perLine,
                     const std::vector<MemoryBuffer>& images) {
    EmbeddedOutputStyle style{
        section, "<@size @elementsPerLine>\n", "\t.byte ", "0x", ", ", "@size\n", perLine};
    return written(EmbeddedC_AssemblerOutFile(temporaryPath(), style), images);
}

TEST(EmbeddedC_AssemblerOutFileTest, TheThreeShapesAndTheLines) {
    const std::string three = "\t.byte 0x01, 0x02, 0xAF\n0x3\n";
    const std::vector<MemoryBuffer> images{imageOf(0x1000, {1, 2}), imageOf(0x10, {0xAF})};
    EXPECT_EQ(embedded("", 16, images), "<0x3 16>\n" + three);
    EXPECT_EQ(embedded("", 2, images), "<0x3 2>\n\t.byte 0x01, 0x02\n\t.byte 0xAF\n0x3\n");
    EXPECT_EQ(embedded("", 0, images), "<0x3 0>\n" + three);
    EXPECT_EQ(embedded("", 16, {}), "<0x0 16>\n0x0\n");
    // Longer than any piece in which lines are made.
    for (const std::size_t perLine : {std::size_t{0}, std::size_t{1000}}) {
        std::string lines;
        for (std::size_t i = 0; i < 70000; ++i) {
            const bool isFirst = perLine == 0 ? i == 0 : i % perLine == 0;
            const bool isLast = i + 1 == 70000 || (perLine != 0 && (i + 1) % perLine == 0);
            lines += std::string(isFirst ? "\t.byte 0x" : "0x") + (i < 40000 ? "5A" : "C3");
            lines += isLast ? "\n" : ", ";
        }
        EXPECT_EQ(embedded("", static_cast<std::uint32_t>(perLine),
                           {imageOf(0, std::vector<std::uint8_t>(40000, 0x5A)),
                            imageOf(0, std::vector<std::uint8_t>(30000, 0xC3))}),
                  "<0x11170 " + std::to_string(perLine) + ">\n" + lines + "0x11170\n");
    }
    EXPECT_EQ(embedded(".text", 3, images),
              "<0x3 3>\n\n\n#pragma asm\n\n.section \".text\"\n" + three);
    for (const std::string section : {"text", ".a.b", ".", "a-b"})
        EXPECT_EQ(embedded(section, 3, images),
                  "<0x3 3>\n\n\n#pragma section CODE=" + section + "\n\n#pragma asm\n\n" + three);
    const std::string time = Io::Host().timeText().value();
    EXPECT_EQ(time.size(), sizeof "2021-08-18 14:05:09" - 1);
    EXPECT_EQ(time[10], ' ');
    EXPECT_EQ(time[13], ':');
}

TEST(OutFileTest, ReportsWhatCouldNotBeWritten) {
    EXPECT_THROW(written(RawBinaryOutFile("/no/such/folder/file"), {}), Io::bad_open);
    EXPECT_THROW(written(RawBinaryOutFile("/tmp"), {}), Io::bad_open);
    const ExpectedFacts expected(
        {Facts::FileWriteIncomplete{"/dev/full"}, Facts::FileWriteIncomplete{"/dev/full"}});
    written(RawBinaryOutFile("/dev/full"), {imageOf(0, {1})});
    written(IntelHexOutFile("/dev/full", {}), {imageOf(0, Tests::someBytes(1 << 20))});
}

}  // namespace
