#include <array>
#include <string_view>

#include "facts/Listener.hpp"
#include "io/export/IntelHexOutFile.hpp"
#include "io/export/MotorolaS_OutFile.hpp"
#include "io/export/RawBinaryOutFile.hpp"
#include "io/formats/AnyFile.hpp"
#include "io/import/GenericInFile.hpp"
#include "tests/io/IoFixtures.hpp"

namespace {

using namespace Io::Export;
using Buffer::Area;
using Buffer::MemoryBuffer;
using Io::Import::GenericInFile;
using Tests::bytesOf;
using Tests::imageOf;
using Tests::temporaryPath;

template <class Writer, class... Style>
GenericInFile through(const std::vector<MemoryBuffer>& images, Style... style) {
    Writer writer(temporaryPath(), style...);
    for (const MemoryBuffer& image : images) writer.insertMemoryBuffer(image);
    writer.saveToFile();
    return GenericInFile(temporaryPath());
}

MotorolaSOutputStyle motorolaStyle(std::uint32_t size) {
    MotorolaSOutputStyle style;
    style.maximumRecordSize = size;
    return style;
}

/// Where images lie: one or two of them, with a gap between.
struct Layout {
    const char* name;
    std::vector<Area> areas;
};

class RoundTrips : public testing::TestWithParam<Layout> {};

TEST_P(RoundTrips, KeepEveryByteThroughEveryFormat) {
    std::vector<MemoryBuffer> images;
    Buffer::AreaList areas;
    for (const Area& area : GetParam().areas) {
        images.push_back(imageOf(area.start, Tests::someBytes(area.length)));
        areas.push_back(area);
    }
    const auto expectSame = [&](const GenericInFile& file) {
        EXPECT_EQ(file.getDataAreas(), areas);
        for (const MemoryBuffer& image : images)
            EXPECT_EQ(bytesOf(file.getMemory(image.getStartAddress(), image.getDataLength())),
                      bytesOf(image));
    };
    for (const std::uint32_t length : {1U, 16U, 255U})
        expectSame(through<IntelHexOutFile>(images, IntelHexOutputStyle{false, length}));
    if (areas.back().start < 0xF0000)
        expectSame(through<IntelHexOutFile>(images, IntelHexOutputStyle{true, 32}));
    for (const std::uint32_t size : {21U, 32U})
        expectSame(through<MotorolaS_OutFile>(images, motorolaStyle(size)));
    // Raw bytes lose the place alone: HEX to S-records to raw and to HEX again.
    const GenericInFile hex = through<IntelHexOutFile>(images, IntelHexOutputStyle{});
    const MemoryBuffer whole = hex.getMemory();
    const GenericInFile srec = through<MotorolaS_OutFile>({whole}, motorolaStyle(32));
    RawBinaryOutFile raw(temporaryPath("raw"));
    const MemoryBuffer fromSrec = srec.getMemory();
    raw.insertMemoryBuffer(fromSrec);
    raw.saveToFile();
    MemoryBuffer back = GenericInFile(temporaryPath("raw"), Io::Import::rawBinary).getMemory();
    back.setStartingAddress(whole.getStartAddress());
    EXPECT_EQ(bytesOf(through<IntelHexOutFile>({back}, IntelHexOutputStyle{}).getMemory()),
              bytesOf(whole));
}

INSTANTIATE_TEST_SUITE_P(Layouts, RoundTrips,
                         testing::Values(Layout{"OneByte", {{0x1234, 1}}},
                                         Layout{"WithGap", {{0x100, 100}, {0x200, 33}}},
                                         Layout{"AcrossABlock", {{0xFFF5, 40}}},
                                         Layout{"WholeBlocks", {{0x10000, 0x20000}}},
                                         Layout{"GapAcrossABlock", {{0xFFF0, 3}, {0x20001, 65537}}},
                                         Layout{"TopOfTheAddressSpace",
                                                {{0xFFFEFFF0, 16}, {0xFFFF0001, 0xFFFF}}}),
                         [](const auto& layout) { return layout.param.name; });

TEST(ForeignFiles, HoldTheSameBytes) {
    const std::string folder = TESSARON_TEST_DATA "/foreign/";
    std::vector<std::uint8_t> wanted(300);
    for (std::size_t i = 0; i < wanted.size(); ++i)
        wanted[i] = static_cast<std::uint8_t>(7 * i + 3);
    const std::vector<std::uint8_t> first(wanted.begin(), wanted.begin() + 200);
    const std::vector<std::uint8_t> second(wanted.begin() + 200, wanted.end());
    for (const char* const name :
         {"srec_cat.hex", "srec_cat-segment.hex", "srec_cat.srec", "objcopy.hex", "objcopy.srec"}) {
        const GenericInFile file(folder + name);
        // What the reader leaves out of an S-record file is its last line, data or not.
        EXPECT_EQ(file.getDataAreas(), (Buffer::AreaList{{0xFFA0, 200}, {0x10123, 100}})) << name;
        EXPECT_EQ(bytesOf(file.getMemory(0xFFA0, 200)), first) << name;
        EXPECT_EQ(bytesOf(file.getMemory(0x10123, 100)), second) << name;
    }
    Facts::Unheard unheard;
    const Facts::ListenerScope silence(unheard);
    for (const char* const name : {"srec_cat.vmem", "srec_cat-32.vmem", "dfu-suffix.dfu"}) {
        const auto file = Io::Formats::openAny(folder + name).reader;
        EXPECT_EQ(bytesOf(file->getMemory(0xFFA0, 200)), first) << name;
        const bool hasBoth = file->getDataAreas().size() == 2;
        EXPECT_EQ(hasBoth, std::string_view(name) != "srec_cat-32.vmem");
        if (hasBoth) {
            EXPECT_EQ(bytesOf(file->getMemory(0x10123, 100)), second) << name;
        }
    }
    EXPECT_EQ(Io::Formats::openAny(folder + "dfu-suffix.dfu").reader->getDevices(),
              (std::vector<std::string>{"USB vendor 0x0483, product 0xDF11",
                                        "alternate setting 0, Internal Flash"}));
    EXPECT_EQ(bytesOf(GenericInFile(folder + "objcopy.bin", Io::Import::rawBinary).getMemory()),
              bytesOf(GenericInFile(folder + "srec_cat.hex").getMemory()));
    EXPECT_EQ(GenericInFile(folder + "srec_cat.hex").getStartAddress(), 0x10000U);
    // srec_cat puts the low half of a linear address in the field of the instruction pointer.
    EXPECT_EQ(GenericInFile(folder + "srec_cat-segment.hex").getStartAddress(), 0x0001U * 16);
}

}  // namespace
