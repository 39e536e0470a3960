// SPDX-License-Identifier: MIT
#include "dsp.h"

#include "FailNth.hpp"
#include "LogCapture.hpp"
#include "OutOfMemory.hpp"
#include "TestNode.hpp"

#include "../../TestKit/OpenDescriptors.hpp"

#include "AaFile.h"
#include "AaGpuXml.hpp"
#include "AaMem.h"
#include "dsp/Signed32.hpp"
#include "log/LogObserver.hpp"

#include <cstdio>
#include <cstring>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <vector>

extern "C" TBoolean readDspInC(const char* name, std::uint32_t* resetType, std::uint64_t* runtimeSwAddr);

namespace dorn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::CountCalls;
using testkit::FailNth;
using vel::hwapi::common::dsp::signed32Of;

constexpr const char* path = "/ffs/run/dsp.xml";
constexpr const char* opened = "Debug 0x20046 File '/ffs/run/dsp.xml' open successful";
constexpr const char* versionUsed = "Debug 0x20046 Using version '1.0' of dsp.xml file";

const std::string bootInfo = "<BootInfo><resetType>2</resetType><postFlag>0x3F</postFlag>"
                             "<ExtractorSw>1</ExtractorSw></BootInfo>";
const std::string memAddress = "<MemAddress><InitSwAddr>0x0C000000</InitSwAddr>"
                               "<CfgParamsAddr>0x0C0F0000</CfgParamsAddr><DoorbellAddr>0x02901E00</DoorbellAddr>"
                               "<RuntimeAddr>0x10000000</RuntimeAddr></MemAddress>";

std::string document(const std::string& sections)
{
    return "<service version=\"1.0\"><DSPParams>" + sections + "</DSPParams></service>";
}

/// @p text without the element @p tag.
std::string without(std::string text, const std::string& tag)
{
    const std::size_t begin = text.find("<" + tag + ">");
    const std::string end = "</" + tag + ">";
    return text.erase(begin, text.find(end) + end.size() - begin);
}

/// @p text with another text in the element @p tag.
std::string with(std::string text, const std::string& tag, const std::string& value)
{
    const std::size_t begin = text.find("<" + tag + ">") + tag.size() + 2;
    return text.replace(begin, text.find("</" + tag + ">") - begin, value);
}

class DspXmlTest : public testing::Test {
protected:
    DspXmlTest()
    {
        std::memset(&m_config, 0xAA, sizeof m_config);
        std::memset(&m_addresses, 0xAA, sizeof m_addresses);
    }
    void TearDown() override { EXPECT_EQ(testkit::openDescriptors(), m_descriptors); }

    TBoolean read(const std::string& text)
    {
        m_node.writeBoardFile(path, text);
        m_log.clear();
        return ApiReadDspXml(path, &m_config, &m_addresses);
    }
    /// Whether nothing has been written to the structures.
    bool isUntouched() const
    {
        SStartUpGlobalParameters config;
        SDspAddressParams addresses;
        std::memset(&config, 0xAA, sizeof config);
        std::memset(&addresses, 0xAA, sizeof addresses);
        return std::memcmp(&config, &m_config, sizeof config) == 0 &&
               std::memcmp(&addresses, &m_addresses, sizeof addresses) == 0;
    }

    testkit::TestNode m_node{{.logLevel = "debug"}};
    testkit::LogCapture m_log;
    std::ptrdiff_t m_descriptors = testkit::openDescriptors();
    SStartUpGlobalParameters m_config{};
    SDspAddressParams m_addresses{};
};

TEST_F(DspXmlTest, WholeFileIsRead)
{
    EXPECT_EQ(read(document(bootInfo + memAddress)), 1U);

    EXPECT_EQ(m_config.bootInfo.resetType, 2U);
    EXPECT_EQ(m_config.bootInfo.postFlags, 0x3FU);
    EXPECT_EQ(m_config.bootInfo.runExtractorSw, 1U);
    EXPECT_EQ(m_addresses.initSwAddr, 0x0C000000U);
    EXPECT_EQ(m_addresses.cfgParamAddr, 0x0C0F0000U);
    EXPECT_EQ(m_addresses.doorbellAddr, 0x02901E00U);
    EXPECT_EQ(m_addresses.runtimeSwAddr, 0x10000000U);
    EXPECT_THAT(m_log.texts(), ElementsAre(opened, versionUsed));
}

TEST_F(DspXmlTest, AllButTheBootInfoIsZero)
{
    EXPECT_EQ(read(document(bootInfo + memAddress)), 1U);

    EXPECT_EQ(m_config.unit, 0U);
    EXPECT_EQ(m_config.receiverInfo, 0U);
    EXPECT_EQ(m_config.unitType, 0U);
    EXPECT_EQ(m_config.hwSwId, 0U);
    EXPECT_EQ(m_config.cpuClkSet, 0U);
    EXPECT_EQ(m_config.cpuClk, 0U);
    EXPECT_EQ(m_config.bbTrace, 0U);
}

TEST_F(DspXmlTest, LinesForThoseWhoLookOnAreLoggedOnlyThen)
{
    testkit::TestNode quiet;
    testkit::LogCapture log;
    quiet.writeBoardFile(path, document(bootInfo + memAddress));

    EXPECT_EQ(ApiReadDspXml(path, &m_config, &m_addresses), 1U);

    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(DspXmlTest, SectionsAndEntriesMayStandInAnyOrderAmongOthers)
{
    EXPECT_EQ(
        read("<?xml version=\"1.0\"?>\n<!-- DSP -->\n<other unit='1' version=\"1.0\"><Before/><DSPParams x='1'>\n" +
             memAddress +
             "<BootInfo><Extra>9</Extra><ExtractorSw>3</ExtractorSw><postFlag> 2 </postFlag>"
             "<resetType>1</resetType><resetType>8</resetType></BootInfo></DSPParams></other>"),
        1U);

    EXPECT_EQ(m_config.bootInfo.resetType, 1U); // the first
    EXPECT_EQ(m_config.bootInfo.postFlags, 2U);
    EXPECT_EQ(m_config.bootInfo.runExtractorSw, 3U);
    EXPECT_EQ(m_addresses.runtimeSwAddr, 0x10000000U);
}

TEST_F(DspXmlTest, NumbersAreThoseOfALongOf32Bits)
{
    struct Row {
        const char* text;
        std::uint32_t byPrefix;
        std::uint32_t decimal;
    };
    const std::vector<Row> rows{
        {"0", 0, 0},
        {"1", 1, 1},
        {"0x1", 1, 0},
        {"0X1f", 0x1F, 0},
        {"017", 15, 17},
        {"09", 0, 9},
        {"  12", 12, 12},
        {"\n\t+12", 12, 12},
        {"12 and more", 12, 12},
        {"", 0, 0},
        {"x", 0, 0},
        {"-1", 0xFFFFFFFF, 0xFFFFFFFF},
        {"0x7FFFFFFF", 0x7FFFFFFF, 0},
        {"0x80000000", 0x7FFFFFFF, 0},
        {"0x90000000", 0x7FFFFFFF, 0},
        {"0xFFFFFFFF", 0x7FFFFFFF, 0},
        {"0x100000000", 0x7FFFFFFF, 0},
        {"2147483647", 0x7FFFFFFF, 0x7FFFFFFF},
        {"2147483648", 0x7FFFFFFF, 0x7FFFFFFF},
        {"99999999999999999999", 0x7FFFFFFF, 0x7FFFFFFF},
        {"-2147483648", 0x80000000, 0x80000000},
        {"-2147483649", 0x80000000, 0x80000000},
        {"-99999999999999999999", 0x80000000, 0x80000000},
        {" \v\f\r-0x10", 0xFFFFFFF0, 0},
        {"\t+010", 8, 10},
        {"- 1", 0, 0},
        {"0x", 0, 0},
        {"0xg", 0, 0},
        {"0b101", 0, 0}, // there is no base 2
        {"0B101", 0, 0},
        {"-0b1", 0, 0},
    };

    for (const Row& row : rows) {
        EXPECT_EQ(signed32Of(row.text, 0), row.byPrefix) << row.text;
        EXPECT_EQ(signed32Of(row.text, 10), row.decimal) << row.text;
    }
}

TEST_F(DspXmlTest, EachAddressAbove0x7FFFFFFFIs0x7FFFFFFFWithoutUpperHalf)
{
    std::string addresses = memAddress;
    for (const char* const tag : {"InitSwAddr", "CfgParamsAddr", "DoorbellAddr", "RuntimeAddr"}) {
        addresses = with(addresses, tag, "0x90000000");
    }

    EXPECT_EQ(read(document(bootInfo + addresses)), 1U);

    EXPECT_EQ(m_addresses.initSwAddr, 0x7FFFFFFFU);
    EXPECT_EQ(m_addresses.cfgParamAddr, 0x7FFFFFFFU);
    EXPECT_EQ(m_addresses.doorbellAddr, 0x7FFFFFFFU);
    EXPECT_EQ(m_addresses.runtimeSwAddr, 0x7FFFFFFFU);
}

TEST_F(DspXmlTest, NegativeAddressHasNoUpperHalf)
{
    EXPECT_EQ(read(document(bootInfo + with(memAddress, "InitSwAddr", "-1"))), 1U);

    EXPECT_EQ(m_addresses.initSwAddr, 0xFFFFFFFFU);
}

TEST_F(DspXmlTest, ResetTypeAndPostFlagsAreReadByTheirPrefixAndExtractorSwIsDecimal)
{
    std::string info = with(bootInfo, "resetType", "0xFFFFFFFF");
    info = with(info, "postFlag", "010");

    EXPECT_EQ(read(document(with(info, "ExtractorSw", "0x1") + memAddress)), 1U);
    EXPECT_EQ(m_config.bootInfo.resetType, 0x7FFFFFFFU);
    EXPECT_EQ(m_config.bootInfo.postFlags, 8U);
    EXPECT_EQ(m_config.bootInfo.runExtractorSw, 0U);

    EXPECT_EQ(read(document(with(info, "ExtractorSw", "010") + memAddress)), 1U);
    EXPECT_EQ(m_config.bootInfo.runExtractorSw, 10U);
}

TEST_F(DspXmlTest, NullNameFailsSilently)
{
    EXPECT_EQ(ApiReadDspXml(nullptr, &m_config, &m_addresses), 0U);

    EXPECT_THAT(m_log.texts(), IsEmpty());
    EXPECT_TRUE(isUntouched());
}

TEST_F(DspXmlTest, FileThatIsNotThereIsAFailure)
{
    EXPECT_EQ(ApiReadDspXml(path, &m_config, &m_addresses), 0U);

    EXPECT_THAT(m_log.texts(), ElementsAre("Warning 0x20046 File '/ffs/run/dsp.xml' open failed"));
    EXPECT_TRUE(isUntouched());
}

TEST_F(DspXmlTest, FileThatCannotBeReadIsAFailure)
{
    const std::string text = document(bootInfo + memAddress);
    const auto expectReadFailed = [&] {
        EXPECT_EQ(read(text), 0U);
        EXPECT_THAT(m_log.texts(), ElementsAre(opened, "Warning 0x20046 File '/ffs/run/dsp.xml' read failed"));
        EXPECT_TRUE(isUntouched());
    };

    {
        const FailNth<AaFileRead> read(1);
        expectReadFailed();
    }
    {
        const FailNth<AaFileRead> shortRead(1, static_cast<std::int32_t>(text.size()) - 1);
        expectReadFailed();
    }
    const FailNth<AaFileGetSize> size(1);
    expectReadFailed();
}

TEST_F(DspXmlTest, FailingCloseChangesNothing)
{
    const FailNth<AaFileClose> close(1);

    EXPECT_EQ(read(document(bootInfo + memAddress)), 1U);

    EXPECT_TRUE(close.hasFailed());
    EXPECT_EQ(m_config.bootInfo.resetType, 2U);
}

TEST_F(DspXmlTest, FileForWhichThereIsNoBufferFailsSilently)
{
    const FailNth<AaMemMallocDbg> memory(1);

    EXPECT_EQ(read(document(bootInfo + memAddress)), 0U);

    EXPECT_TRUE(memory.hasFailed());
    EXPECT_THAT(m_log.texts(), ElementsAre(opened));
    EXPECT_TRUE(isUntouched());
}

TEST_F(DspXmlTest, BufferAndFileAreGivenBackBeforeTheTreeIsLookedAt)
{
    const CountCalls<AaMemUnRefDbg> released;
    const CountCalls<AaFileClose> closed;
    std::vector<std::string> linesAfterClose;
    const int observer = host::addLogObserver([&](const host::LogLine& line) {
        if (released.count() == 1 && closed.count() == 1) {
            linesAfterClose.push_back(testkit::textOf(line));
        }
    });

    EXPECT_EQ(read("<service"), 0U);
    host::removeLogObserver(observer);

    EXPECT_THAT(linesAfterClose, ElementsAre("Warning 0x20046 XML parsing failed 1"));
}

TEST_F(DspXmlTest, TextThatIsNoXmlIsAFailure)
{
    for (const std::string& text : {std::string(), std::string("\0\0", 2), std::string("<service version='1'>"),
                                    std::string(100'000, 'x'), document(bootInfo + memAddress) + "<more/>"}) {
        EXPECT_EQ(read(text), 0U);
        EXPECT_THAT(m_log.texts(), ElementsAre(opened, "Warning 0x20046 XML parsing failed 1"));
    }

    EXPECT_EQ(read("<?xml version='1.0' encoding='utf-16'?><a/>"), 0U);
    EXPECT_THAT(m_log.texts(), ElementsAre(opened, "Warning 0x20046 XML parsing failed 2"));
    EXPECT_TRUE(isUntouched());
}

TEST_F(DspXmlTest, DocumentWithoutDspParamsIsRefused)
{
    for (const char* const text :
         {"<service version='1.0'/>", "<service/>", "<service version='1.0'><DSPparams/></service>",
          "<service version='1.0' DSPParams='1'/>", "<service version='1.0'><a><DSPParams/></a></service>",
          "<DSPParams version='1.0'><BootInfo/></DSPParams>"}) {
        EXPECT_EQ(read(text), 0U);
        EXPECT_THAT(m_log.texts(), ElementsAre(opened, "Warning 0x20046 'DSPParams' tag is not found")) << text;
    }
    EXPECT_TRUE(isUntouched());
}

TEST_F(DspXmlTest, RootWithoutVersionIsRefused)
{
    EXPECT_EQ(read("<service Version='1.0'><version>1.0</version><DSPParams version='1.0'>" + bootInfo + memAddress +
                   "</DSPParams></service>"),
              0U);

    EXPECT_THAT(m_log.texts(), ElementsAre(opened, "Warning 0x20046 Attribute 'version' is missing from <service>"));
    EXPECT_TRUE(isUntouched());
}

TEST_F(DspXmlTest, EmptyVersionIsOne)
{
    EXPECT_EQ(read("<service version=''><DSPParams>" + bootInfo + memAddress + "</DSPParams></service>"), 1U);

    EXPECT_THAT(m_log.texts(), ElementsAre(opened, "Debug 0x20046 Using version '' of dsp.xml file"));
}

TEST_F(DspXmlTest, MissingBootInfoStopsTheReading)
{
    for (const std::string& sections :
         {memAddress, "<bootInfo/>" + memAddress, "<x>" + bootInfo + "</x>" + memAddress}) {
        EXPECT_EQ(read(document(sections)), 0U);
        EXPECT_THAT(m_log.texts(),
                    ElementsAre(opened, versionUsed, "Warning 0x20046 Illegal format 'BootInfo' tag is not found"));
    }
    EXPECT_TRUE(isUntouched());
}

TEST_F(DspXmlTest, FirstMissingEntryOfBootInfoStopsTheReading)
{
    struct Row {
        const char* missing;
        const char* line;
        std::uint32_t resetType;
        std::uint32_t postFlags;
    };
    const std::vector<Row> rows{
        {"resetType", "Error 0x20046 Failed to read last reset type from dsp.xml, tag missing!", 0, 0},
        {"postFlag", "Error 0x20046 Failed to read postFlags from dsp.xml, tag missing!", 2, 0},
        {"ExtractorSw", "Error 0x20046 Failed to read ExtractorSw value from dsp.xml, tag missing!", 2, 0x3F}};

    for (const Row& row : rows) {
        EXPECT_EQ(read(document(without(bootInfo, row.missing) + memAddress)), 0U);
        EXPECT_THAT(m_log.texts(), ElementsAre(opened, versionUsed, row.line,
                                               "Warning 0x20046 Failed to read BootInfo parameters from DSP.xml"));
        EXPECT_EQ(m_config.bootInfo.resetType, row.resetType);
        EXPECT_EQ(m_config.bootInfo.postFlags, row.postFlags);
        EXPECT_EQ(m_config.bootInfo.runExtractorSw, 0U);
        EXPECT_EQ(m_addresses.initSwAddr, 0xAAAAAAAAAAAAAAAAU);
    }
}

TEST_F(DspXmlTest, MissingMemAddressLeavesBootInfoRead)
{
    EXPECT_EQ(read(document(bootInfo)), 0U);

    EXPECT_THAT(m_log.texts(),
                ElementsAre(opened, versionUsed, "Warning 0x20046 Illegal format - 'MemAddress' tag is not found"));
    EXPECT_EQ(m_config.bootInfo.resetType, 2U);
    EXPECT_EQ(m_addresses.initSwAddr, 0xAAAAAAAAAAAAAAAAU);
}

TEST_F(DspXmlTest, FirstMissingEntryOfMemAddressStopsTheReading)
{
    struct Row {
        const char* missing;
        const char* line;
        std::uint64_t init;
        std::uint64_t config;
    };
    const std::vector<Row> rows{
        {"InitSwAddr", "Error 0x20046 Failed to read InitSwAddr from dsp.xml, tag missing!", 0, 0},
        {"CfgParamsAddr", "Error 0x20046 Failed to read CfgParamsAddr from dsp.xml, tag missing!", 0x0C000000, 0},
        {"DoorbellAddr", "Error 0x20046 Failed to read doorbellAddr from dsp.xml, tag missing!", 0x0C000000,
         0x0C0F0000}};

    for (const Row& row : rows) {
        EXPECT_EQ(read(document(bootInfo + without(memAddress, row.missing))), 0U);
        EXPECT_THAT(m_log.texts(), ElementsAre(opened, versionUsed, row.line,
                                               "Warning 0x20046 Failed to read memAddress parameters from DSP.xml"));
        EXPECT_EQ(m_addresses.initSwAddr, row.init);
        EXPECT_EQ(m_addresses.cfgParamAddr, row.config);
        EXPECT_EQ(m_addresses.doorbellAddr, 0U);
        EXPECT_EQ(m_addresses.runtimeSwAddr, 0U);
    }
}

TEST_F(DspXmlTest, MissingRuntimeAddrHasNoLineOfItsOwn)
{
    EXPECT_EQ(read(document(bootInfo + without(memAddress, "RuntimeAddr"))), 0U);

    EXPECT_THAT(m_log.texts(),
                ElementsAre(opened, versionUsed, "Warning 0x20046 Failed to read memAddress parameters from DSP.xml"));
    EXPECT_EQ(m_addresses.doorbellAddr, 0x02901E00U);
    EXPECT_EQ(m_addresses.runtimeSwAddr, 0U);
}

TEST_F(DspXmlTest, EntriesOneLevelDeeperAreNotFound)
{
    EXPECT_EQ(read(document("<BootInfo><deeper>" + bootInfo + "</deeper></BootInfo>" + memAddress)), 0U);

    EXPECT_THAT(m_log.texts(), ElementsAre(opened, versionUsed,
                                           "Error 0x20046 Failed to read last reset type from dsp.xml, tag missing!",
                                           "Warning 0x20046 Failed to read BootInfo parameters from DSP.xml"));
}

std::unique_ptr<AaGpuXmlNode> tree(const std::string& text)
{
    AaGpuXmlParser parser(0);
    return std::unique_ptr<AaGpuXmlNode>(parser.AaGpuXmlParse(text, ""));
}

TEST_F(DspXmlTest, TagsAreElementsAndAttributesAreAttributes)
{
    const auto root = tree("<a b='1' c='2'><d>3</d><b>4</b><b>5</b><e><f/></e></a>");
    AaGpuXmlNode* const a = ApiXmlGetTag(root.get(), "a");

    EXPECT_STREQ(ApiXmlGetTag(a, "b")->AaGpuXmlGetValue(), "4");
    EXPECT_STREQ(ApiXmlGetAttribute(a, "b")->AaGpuXmlGetValue(), "1");
    EXPECT_EQ(ApiXmlGetTag(a, "c"), nullptr);
    EXPECT_EQ(ApiXmlGetAttribute(a, "d"), nullptr);
    EXPECT_EQ(ApiXmlGetTag(a, "f"), nullptr);
    EXPECT_EQ(ApiXmlGetTag(a, "B"), nullptr);
    EXPECT_EQ(ApiXmlGetTag(ApiXmlGetTag(a, "d"), "b"), nullptr); // no children
    EXPECT_EQ(ApiXmlGetTag(nullptr, "b"), nullptr);
    EXPECT_EQ(ApiXmlGetAttribute(nullptr, "b"), nullptr);
}

TEST_F(DspXmlTest, DocumentElementIsWhatIsParsed)
{
    const auto root = tree(document(bootInfo + memAddress));

    EXPECT_EQ(ApiParseDspXml(ApiXmlGetTag(root.get(), "service"), &m_config, &m_addresses), 1U);
    EXPECT_EQ(ApiParseDspXml(root.get(), &m_config, &m_addresses), 0U);
    EXPECT_EQ(ApiParseDspXml(nullptr, &m_config, &m_addresses), 0U);
}

/// Lines of the process that dies are shown on its standard error, where the death test looks.
template <class Call>
void showAndCall(const Call& call)
{
    host::addLogObserver([](const host::LogLine& line) { std::fprintf(stderr, "<%s>\n", line.text.c_str()); });
    call();
}

using DspXmlDeathTest = DspXmlTest;

TEST_F(DspXmlDeathTest, NullPointersOfTheSectionsEndTheProcess)
{
    const auto root = tree("<a/>");

    EXPECT_DEATH(showAndCall([&] { ApiXmlHandleBootInfo(nullptr, &m_config); }),
                 "<Assertion failed: bootInfo != NULL \\(file: Common");
    EXPECT_DEATH(showAndCall([&] { ApiXmlHandleBootInfo(root.get(), nullptr); }),
                 "<Assertion failed: config != NULL \\(file: Common");
    EXPECT_DEATH(showAndCall([&] { ApiXmlHandleMemAddr(nullptr, &m_addresses); }),
                 "<Assertion failed: memAddr != NULL \\(file: Common");
    EXPECT_DEATH(showAndCall([&] { ApiXmlHandleMemAddr(root.get(), nullptr); }),
                 "<Assertion failed: addrParams != NULL \\(file: Common");
}

TEST_F(DspXmlDeathTest, NullStructuresEndTheProcessOnceTheirSectionIsFound)
{
    const std::string text = document(bootInfo + memAddress);
    m_node.writeBoardFile(path, text);
    const auto root = tree(text);
    AaGpuXmlNode* const service = ApiXmlGetTag(root.get(), "service");

    EXPECT_DEATH(showAndCall([&] { ApiReadDspXml(path, nullptr, &m_addresses); }),
                 "<Assertion failed: config != NULL \\(file: Common");
    EXPECT_DEATH(showAndCall([&] { ApiReadDspXml(path, &m_config, nullptr); }),
                 "<Assertion failed: addrParams != NULL \\(file: Common");
    EXPECT_DEATH(showAndCall([&] { ApiParseDspXml(service, nullptr, &m_addresses); }),
                 "<Assertion failed: config != NULL \\(file: Common");
    EXPECT_DEATH(showAndCall([&] { ApiParseDspXml(service, &m_config, nullptr); }),
                 "<Assertion failed: addrParams != NULL \\(file: Common");
}

TEST_F(DspXmlTest, FunctionsAreCalledFromC)
{
    m_node.writeBoardFile(path, document(bootInfo + memAddress));
    std::uint32_t resetType = 0;
    std::uint64_t runtime = 0;

    EXPECT_EQ(readDspInC(path, &resetType, &runtime), 1U);

    EXPECT_EQ(resetType, 2U);
    EXPECT_EQ(runtime, 0x10000000U);
}

TEST(DspXmlMemoryTest, FileForWhichThereIsNoMemoryIsNotReadAndNothingIsThrown)
{
    const testkit::TestNode node;
    node.writeBoardFile(path, document(bootInfo + memAddress));
    SStartUpGlobalParameters config{};
    SDspAddressParams addresses{};
    ASSERT_EQ(ApiReadDspXml(path, &config, &addresses), 1U);

    int readFailedLines = 0;
    const int observer = host::addLogObserver([&readFailedLines](const host::LogLine& line) {
        readFailedLines += line.text.ends_with("read failed") ? 1 : 0; // takes no memory
    });
    TBoolean isRead = 0;
    long blocks = 0;
    for (; isRead == 0 && blocks < 100; ++blocks) {
        blocksBeforeFailure = blocks;
        isRead = ApiReadDspXml(path, &config, &addresses);
    }
    blocksBeforeFailure = -1;
    host::removeLogObserver(observer);

    EXPECT_EQ(isRead, 1U);
    EXPECT_GT(blocks, 1);
    EXPECT_EQ(readFailedLines, 0);
}

} // namespace
} // namespace dorn::test
