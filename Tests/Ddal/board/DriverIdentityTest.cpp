// SPDX-License-Identifier: MIT
// What the drivers say of units, modules and processor, whatever form the board's description has.
#include "BoardTest.hpp"
#include "UnpackedTree.hpp"
#include "ddal_boot.h"
#include "ddal_devicetree.h"
#include "ddal_ffs.h"
#include "ddal_fpga.h"
#include "ddal_rio.h"
#include "ddal_unit.h"
#include "description/TreeBlob.hpp"

#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <ostream>
#include <vector>

namespace dorn::board {
namespace {

std::string numberText(std::int32_t result, std::uint64_t value)
{
    return result == DDAL_OK ? std::to_string(value) : "error " + std::to_string(result);
}

std::string versionText()
{
    std::array<char, DDAL_BOOT_VERSION_SIZE> text{};
    const std::int32_t result = ddal_boot_get_uboot_version(text.data());
    return result == DDAL_OK ? text.data() : "error " + std::to_string(result);
}

std::string capabilityText()
{
    ddal_xcvr_hw_capability capability{};
    const std::int32_t result = ddal_devicetree_get_xcvr_hw_capability(&capability);
    return numberText(result, capability.words[0]) + " " + numberText(result, capability.words[1]) + " " +
           numberText(result, capability.words[2]);
}

std::string deviceText(std::uint32_t port, std::uint16_t device)
{
    std::int32_t handle = -1;
    const std::int32_t result = ddal_rio_copy_open_fd(port, device, DDAL_RIO_READ, &handle);
    ddal_rio_copy_close_fd(handle);
    return "open " + std::to_string(result);
}

/// What every function that asks says, for all numbers that the example boards have and some that they have not.
std::vector<std::string> answers()
{
    std::vector<std::string> all;
    for (const std::uint32_t number : {0U, 1U, 2U, 3U, 0xFFFFFFFFU}) {
        std::uint32_t value = 0;
        all.push_back(textFrom(ddal_devicetree_get_unit_id, number));
        all.push_back(numberText(ddal_devicetree_get_hw_sw_id(number, &value), value));
        all.push_back(textFrom(ddal_devicetree_get_production_code, number));
        all.push_back(textFrom(ddal_devicetree_get_serial_number, number));
        all.push_back(textFrom(ddal_devicetree_get_ext_module_unit_id, number));
        all.push_back(textFrom(ddal_devicetree_get_ext_module_production_code, number));
        all.push_back(textFrom(ddal_devicetree_get_ext_module_serial_number, number));
        all.push_back(numberText(ddal_fpga_get_active_version(number, &value), value));
        all.push_back(numberText(ddal_fpga_get_active_version(0x10000 + number, &value), value));
        all.push_back(numberText(ddal_ffs_is_mounted(number, &value), value));
        all.push_back(deviceText(number, 0x10));
        all.push_back(deviceText(0, static_cast<std::uint16_t>(number)));
    }
    all.push_back(textFrom(ddal_devicetree_get_module_unit_id));
    all.push_back(textFrom(ddal_devicetree_get_module_production_code));
    all.push_back(textFrom(ddal_devicetree_get_module_serial_number));
    all.push_back(textFrom(ddal_devicetree_get_die_id));
    all.push_back(textFrom(ddal_devicetree_get_die_id_quality));
    all.push_back(capabilityText());
    all.push_back(std::to_string(ddal_unit_get_board()));
    std::int32_t location = -1;
    all.push_back(numberText(ddal_boot_get_uboot_id(&location), static_cast<std::uint64_t>(location)));
    all.push_back(versionText());
    std::uint16_t ownId = 0;
    all.push_back(numberText(ddal_rio_get_own_id(&ownId), ownId));
    return all;
}

std::vector<std::string> answersOf(const std::string& board)
{
    const testkit::TestNode node;
    setenv("DORN_BOARD", board.c_str(), 1);
    return answers();
}

std::vector<std::string> answersOfUnpacked(const std::string& blob)
{
    const testkit::TestNode node;
    unpackTree(node, readTreeBlob(blob, "board"), "/proc/device-tree");
    return answers();
}

TEST(DriverAnswersTest, BlobAndUnpackedTreeGiveTheSame)
{
    for (const char* const blob : {DORN_TARN_SINGLE, DORN_TARN_PAIR_MASTER}) {
        const std::vector<std::string> packed = answersOf(blob);

        EXPECT_EQ(packed, answersOfUnpacked(blob)) << blob;
        EXPECT_NE(packed, answersOf("/no/such/board.dtb")) << blob;
    }
}

TEST(DriverAnswersTest, BoardsDiffer)
{
    EXPECT_NE(answersOf(DORN_TARN_SINGLE), answersOf(DORN_TARN_PAIR_MASTER));
}

/// A board, once as a blob and once unpacked.
class DriverIdentityTest : public testkit::NodeTest, public ::testing::WithParamInterface<bool> {
protected:
    DriverIdentityTest()
    {
        if (GetParam()) {
            unpackTree(m_node, readTreeBlob(DORN_TARN_PAIR_MASTER, "board"), "/proc/device-tree");
        } else {
            setenv("DORN_BOARD", DORN_TARN_PAIR_MASTER, 1);
        }
    }
};

INSTANTIATE_TEST_SUITE_P(Forms, DriverIdentityTest, ::testing::Bool(),
                         [](const auto& form) { return form.param ? "UnpackedTree" : "Blob"; });

TEST_P(DriverIdentityTest, UnitsAreToldApartByTheirNumbers)
{
    EXPECT_EQ(textFrom(ddal_devicetree_get_unit_id, 0U), "NAXM");
    EXPECT_EQ(textFrom(ddal_devicetree_get_production_code, 0U), "DRN-0815-02");
    EXPECT_EQ(textFrom(ddal_devicetree_get_serial_number, 0U), "DN264700002");
    EXPECT_EQ(textFrom(ddal_devicetree_get_serial_number, 1U), "DN264700003");
    EXPECT_EQ(textFrom(ddal_devicetree_get_unit_id, 2U), "error 5");
    std::uint32_t id = 0;
    EXPECT_EQ(ddal_devicetree_get_hw_sw_id(0, &id), DDAL_OK);
    EXPECT_EQ(id, 0x00A00200U);
    EXPECT_EQ(ddal_devicetree_get_hw_sw_id(1, &id), DDAL_OK);
    EXPECT_EQ(id, 0x00A00300U);
    EXPECT_EQ(ddal_devicetree_get_hw_sw_id(2, &id), DDAL_ERROR_NOT_FOUND);
    EXPECT_EQ(id, 0x00A00300U) << "untouched by a failure";
}

TEST_P(DriverIdentityTest, LocalModuleIsTheOneAtPort0)
{
    EXPECT_EQ(textFrom(ddal_devicetree_get_module_unit_id), "TARM");
    EXPECT_EQ(textFrom(ddal_devicetree_get_module_production_code), "DRN-0900-01");
    EXPECT_EQ(textFrom(ddal_devicetree_get_module_serial_number), "DN264600018");
    EXPECT_EQ(textFrom(ddal_devicetree_get_ext_module_unit_id, 0U), "TARM");
}

TEST_P(DriverIdentityTest, ExternalModulesAreToldApartByTheirPorts)
{
    EXPECT_EQ(textFrom(ddal_devicetree_get_ext_module_unit_id, 1U), "VESP");
    EXPECT_EQ(textFrom(ddal_devicetree_get_ext_module_production_code, 1U), "DRN-4400-02");
    EXPECT_EQ(textFrom(ddal_devicetree_get_ext_module_serial_number, 1U), "DN264500230");
    EXPECT_EQ(textFrom(ddal_devicetree_get_ext_module_unit_id, 2U), "error 5");
    EXPECT_EQ(textFrom(ddal_devicetree_get_ext_module_production_code, 2U), "error 5");
    EXPECT_EQ(textFrom(ddal_devicetree_get_ext_module_serial_number, 2U), "error 5");
}

TEST_P(DriverIdentityTest, ProcessorHasADieId)
{
    EXPECT_EQ(textFrom(ddal_devicetree_get_die_id), "5f1c8a3e907b42d6b1e0c4479a2d3385");
    EXPECT_EQ(textFrom(ddal_devicetree_get_die_id_quality), "A1");
}

TEST_P(DriverIdentityTest, TransceiverCapabilityIsThreeWords)
{
    ddal_xcvr_hw_capability capability{{7, 7, 7}};

    EXPECT_EQ(ddal_devicetree_get_xcvr_hw_capability(&capability), DDAL_OK);

    EXPECT_EQ(capability.words[0], 3U | DDAL_XCVR_TD_LTE);
    EXPECT_EQ(capability.words[1], 0U);
    EXPECT_EQ(capability.words[2], 0U);
}

TEST_P(DriverIdentityTest, BoardCodeIsTheVariantOfTheUnit)
{
    EXPECT_EQ(ddal_unit_get_board(), 2U);
}

TEST_P(DriverIdentityTest, RapidIoIdIsTheBoards)
{
    std::uint16_t id = 0;

    EXPECT_EQ(ddal_rio_get_own_id(&id), DDAL_OK);
    EXPECT_EQ(id, 2U);
}

class DriverIdentityFailureTest : public BoardTest {};

TEST_F(DriverIdentityFailureTest, BoardWithoutTheseThingsSaysSo)
{
    m_board.remove("processor").remove("transceivers").remove("rapidio").remove("modules");
    ddal_xcvr_hw_capability capability{{7, 7, 7}};
    std::uint16_t id = 7;

    EXPECT_EQ(textFrom(ddal_devicetree_get_die_id), "error 5");
    EXPECT_EQ(textFrom(ddal_devicetree_get_die_id_quality), "error 5");
    EXPECT_EQ(textFrom(ddal_devicetree_get_module_unit_id), "error 5");
    EXPECT_EQ(ddal_devicetree_get_xcvr_hw_capability(&capability), DDAL_ERROR_NOT_FOUND);
    EXPECT_EQ(ddal_rio_get_own_id(&id), DDAL_ERROR_NOT_FOUND);
    EXPECT_EQ(capability.words[0], 7U);
    EXPECT_EQ(id, 7U);
    EXPECT_EQ(m_log.count("Warning 0x0 ddal_rio_get_own_id(): " + m_origin + "node '/board' has no node 'rapidio'"),
              1U);
}

TEST_F(DriverIdentityFailureTest, BoardWithoutABoardCodeHasCode0)
{
    m_board.remove("dorn,board-code");

    EXPECT_EQ(ddal_unit_get_board(), 0U);
    EXPECT_EQ(m_log.texts(), std::vector<std::string>{"Error 0x0 ddal_unit_get_board(): " + m_origin +
                                                      "node '/board' has no property 'dorn,board-code'"});
}

TEST_F(DriverIdentityFailureTest, BrokenPropertyFailsItsQueryAlone)
{
    m_board.bytes("units/unit@0", "dorn,hw-sw-id", "abc").bytes("units/unit@0", "dorn,serial-number", "DN26");
    std::uint32_t id = 7;

    EXPECT_EQ(ddal_devicetree_get_hw_sw_id(0, &id), DDAL_ERROR_BAD_DESCRIPTION);
    EXPECT_EQ(id, 7U);
    EXPECT_EQ(textFrom(ddal_devicetree_get_serial_number, 0U), "error 4");
    EXPECT_EQ(textFrom(ddal_devicetree_get_unit_id, 0U), "NAXE");
    EXPECT_EQ(m_log.texts(),
              (std::vector<std::string>{
                  "Error 0x0 ddal_devicetree_get_hw_sw_id(): " + m_origin +
                      "property 'dorn,hw-sw-id' of node '/board/units/unit@0' has 3 bytes, not 4",
                  "Error 0x0 ddal_devicetree_get_serial_number(): " + m_origin +
                      "property 'dorn,serial-number' of node '/board/units/unit@0' is no text: it does not end with a "
                      "zero"}));
}

TEST_F(DriverIdentityFailureTest, CapabilityOfTwoWordsIsRefused)
{
    m_board.cells("transceivers", "dorn,hw-capability", {1, 2});
    ddal_xcvr_hw_capability capability{{7, 7, 7}};

    EXPECT_EQ(ddal_devicetree_get_xcvr_hw_capability(&capability), DDAL_ERROR_BAD_DESCRIPTION);
    EXPECT_EQ(capability.words[0], 7U);
}

TEST_F(DriverIdentityFailureTest, RapidIoIdOfMoreThan16BitsIsRefused)
{
    m_board.cells("rapidio/port@0", "dorn,own-id", {0x10000});
    std::uint16_t id = 7;

    EXPECT_EQ(ddal_rio_get_own_id(&id), DDAL_ERROR_BAD_DESCRIPTION);
    EXPECT_EQ(id, 7U);
}

TEST_F(DriverIdentityFailureTest, NullIsRefused)
{
    EXPECT_EQ(ddal_devicetree_get_hw_sw_id(0, nullptr), DDAL_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(ddal_devicetree_get_xcvr_hw_capability(nullptr), DDAL_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(ddal_rio_get_own_id(nullptr), DDAL_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(m_log.count("Error 0x0 ddal_devicetree_get_hw_sw_id(): an argument is null"), 1U);
}

/// A function that fills a buffer, with the unit or port bound.
struct TextFunction {
    std::string name;
    std::function<std::int32_t(std::uint32_t, char*)> call;
    bool isLengthWithoutZero;
    std::string text;
};
void PrintTo(const TextFunction& function, std::ostream* stream)
{
    *stream << function.name;
}

const std::vector<TextFunction> textFunctions{
    {"unit_id", [](auto n, auto* b) { return ddal_devicetree_get_unit_id(0, n, b); }, true, "NAXE"},
    {"module_unit_id", ddal_devicetree_get_module_unit_id, true, "TARN"},
    {"ext_module_unit_id", [](auto n, auto* b) { return ddal_devicetree_get_ext_module_unit_id(1, n, b); }, true,
     "VESP"},
    {"production_code", [](auto n, auto* b) { return ddal_devicetree_get_production_code(0, n, b); }, false,
     "DRN-0815-01"},
    {"serial_number", [](auto n, auto* b) { return ddal_devicetree_get_serial_number(0, n, b); }, false, "DN264700001"},
    {"module_production_code", ddal_devicetree_get_module_production_code, false, "DRN-0900-01"},
    {"module_serial_number", ddal_devicetree_get_module_serial_number, false, "DN264600017"},
    {"ext_module_production_code",
     [](auto n, auto* b) { return ddal_devicetree_get_ext_module_production_code(1, n, b); }, false, "DRN-4400-02"},
    {"ext_module_serial_number", [](auto n, auto* b) { return ddal_devicetree_get_ext_module_serial_number(1, n, b); },
     false, "DN264500230"},
    {"die_id", ddal_devicetree_get_die_id, false, "0123456789abcdef"},
    {"die_id_quality", ddal_devicetree_get_die_id_quality, false, "A1"},
    {"strerror", [](auto n, auto* b) { return ddal_strerror(DDAL_ERROR_BUSY, b, n); }, true, "device is busy"},
};

class DriverTextTest : public BoardTest, public ::testing::WithParamInterface<TextFunction> {
protected:
    /// Calls it with a buffer of @p size bytes, whichever way its length is counted. @return the whole buffer, with
    /// what stands behind it.
    std::string bufferAfter(std::uint32_t size) const
    {
        std::string memory(size + 4, '#');
        EXPECT_EQ(GetParam().call(GetParam().isLengthWithoutZero ? size - 1 : size, memory.data()), DDAL_OK);
        return memory;
    }

    std::string terminated(std::string text) const
    {
        text += '\0';
        return text;
    }
};

INSTANTIATE_TEST_SUITE_P(Functions, DriverTextTest, ::testing::ValuesIn(textFunctions),
                         [](const auto& function) { return function.param.name; });

TEST_P(DriverTextTest, BufferThatJustHoldsItGetsAll)
{
    const std::string& text = GetParam().text;

    EXPECT_EQ(bufferAfter(static_cast<std::uint32_t>(text.size()) + 1), terminated(text) + "####");
}

TEST_P(DriverTextTest, LargeBufferIsWrittenAsFarAsTheTextGoes)
{
    const std::string& text = GetParam().text;

    EXPECT_EQ(bufferAfter(static_cast<std::uint32_t>(text.size()) + 4), terminated(text) + "###" + "####");
}

TEST_P(DriverTextTest, ShortBufferGetsTheBegin)
{
    const std::string& text = GetParam().text;

    EXPECT_EQ(bufferAfter(static_cast<std::uint32_t>(text.size())),
              terminated(text.substr(0, text.size() - 1)) + "####");
}

TEST_P(DriverTextTest, BufferOfOneByteGetsTheTerminator)
{
    EXPECT_EQ(bufferAfter(1), terminated("") + "####");
}

TEST_P(DriverTextTest, LengthsThatCannotBeAreRefused)
{
    std::string memory(4, '#');
    const std::uint32_t none = GetParam().isLengthWithoutZero ? 0U - 1U : 0U;
    const char* const begin = GetParam().name == "strerror" ? "\0###" : "####"; // its buffer is emptied first

    for (const std::uint32_t length : {none, 0x80000000U, 0xFFFFFFFFU}) {
        EXPECT_EQ(GetParam().call(length, memory.data()), DDAL_ERROR_INVALID_ARGUMENT) << length;
        EXPECT_EQ(memory, std::string(begin, 4));
    }
}

TEST_P(DriverTextTest, NullIsRefused)
{
    EXPECT_EQ(GetParam().call(10, nullptr), DDAL_ERROR_INVALID_ARGUMENT);
}

TEST(DriverErrorTextTest, EveryResultHasATextOfItsOwn)
{
    const testkit::TestNode node;
    std::map<std::string, int> texts;
    for (int code = DDAL_OK; code <= DDAL_ERROR_NOT_SUPPORTED; ++code) {
        std::array<char, 64> text{};
        EXPECT_EQ(ddal_strerror(code, text.data(), 63), DDAL_OK);
        ++texts[text.data()];
    }

    EXPECT_EQ(texts.size(), 14U);
    EXPECT_TRUE(texts.contains("device does not answer"));
}

TEST(DriverErrorTextTest, OtherResultsAreGivenByTheirNumber)
{
    const testkit::TestNode node;
    for (const auto& [code, expected] : std::map<std::int32_t, std::string>{
             {14, "unknown error 14"}, {-1, "unknown error -1"}, {INT32_MIN, "unknown error -2147483648"}}) {
        std::array<char, 64> text{};
        EXPECT_EQ(ddal_strerror(code, text.data(), 63), DDAL_OK);
        EXPECT_EQ(text.data(), expected);
    }
}

} // namespace
} // namespace dorn::board
