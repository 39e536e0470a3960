// SPDX-License-Identifier: MIT
// `dorn board show` and `fault`.
#include "DornCommand.hpp"

#include "NodeTest.hpp"
#include "TestBoard.hpp"
#include "ddal_fpga.h"
#include "ddal_unit.h"
#include "description/DescribedBoard.hpp"
#include "device/FileSystem.hpp"
#include "device/Resets.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <libfdt.h>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace dorn::tool {
namespace {

using JsonValue = nlohmann::json; // the order of members does not matter

class DornBoardShowTest : public testkit::NodeTest {
protected:
    static void nameBoard(const std::string& path) { setenv("DORN_BOARD", path.c_str(), 1); }
};

TEST_F(DornBoardShowTest, ShowTellsAllOfABoard)
{
    nameBoard(DORN_TARN_SINGLE);

    EXPECT_EQ(dorn({"board", "show"}),
              (CommandResult{0,
                             "Tarn single board, board code 1\n"
                             "described by " DORN_TARN_SINGLE "\n"
                             "die 5f1c8a3e907b42d6b1e0c4479a2d3385, quality A1\n"
                             "transceivers 0x00000003 0x00000000 0x00000000\n"
                             "watchdog, 0 resets\n"
                             "\n"
                             "UNIT  ID    HW/SW ID    PRODUCTION CODE  SERIAL NUMBER\n"
                             "0     NAXE  0x00A00100  DRN-0815-01      DN264700001\n"
                             "\n"
                             "MODULE  ID    PRODUCTION CODE  SERIAL NUMBER\n"
                             "0       TARN  DRN-0900-01      DN264600017\n"
                             "1       VESP  DRN-4400-02      DN264500230\n"
                             "\n"
                             "BOOT LOADER  VERSION  ROOM     FLASHED\n"
                             "primary      20480    2097152  -\n"
                             "\n"
                             "FPGA     NAME           VERSION     SLOT  ROOM      FLASHED\n"
                             "0x1      BMU            0x00000107  1     524288    -\n"
                             "0x10002  baseband FPGA  0x00020010  1     16777216  -\n"
                             "0x10002  baseband FPGA  0x00020010  2     16777216  -\n"
                             "\n"
                             "RAPIDIO  ID      DEVICE      MEMORY        ADDRESS       SIZE       ON DISK\n"
                             "0        0x0001  this board  -             -             -          -\n"
                             "0        0x0010  DSP 1       shared RAM    0x000C000000  4194304    0\n"
                             "0        0x0010  DSP 1       external RAM  0x0800000000  536870912  0\n"
                             "0        0x0011  DSP 2       shared RAM    0x000C000000  4194304    0\n"
                             "0        0x0011  DSP 2       external RAM  0x0800000000  536870912  0\n"
                             "\n"
                             "FILE SYSTEM  NAME               MOUNT POINT  MODE\n"
                             "1            MCU file system 1  /ffs/run     read-only\n"
                             "2            MCU file system 2  /ffs/backup  read-only\n"
                             "\n"
                             "SFP  NAME       VENDOR          PART        SERIAL NUMBER  WAVELENGTH  BIT RATE\n"
                             "1    optical 1  LANTERN OPTICS  LO-1310-10  LO24A00731     1310 nm     9830 Mbd\n"
                             "2    optical 2  LANTERN OPTICS  LO-1310-10  LO24A00732     1310 nm     9830 Mbd\n",
                             ""}));
}

TEST_F(DornBoardShowTest, ShowTellsWhatHasChanged)
{
    const testkit::TestBoard board;
    m_node.writeBoardFile("/tmp/image", std::string("\0\3\0\0 content", 12));
    ASSERT_EQ(ddal_fpga_update_mod(0x10002, 1, "/tmp/image"), DDAL_OK);
    board::FileSystem(board::DescribedBoard::get().part("file-systems", 1)).mount(2);

    const JsonValue pending = JsonValue::parse(dorn({"board", "show", "--json"}).answer);
    EXPECT_EQ(pending["fpgas"][1]["version"], 0x20010);
    EXPECT_EQ(pending["fpgas"][1]["slots"][0]["flashed"],
              (JsonValue{{"size", 12}, {"whole", true}, {"version", 0x30000}, {"pending", true}}));
    EXPECT_EQ(pending["fileSystems"][0]["mode"], 2);
    EXPECT_EQ(pending["lastReset"], nullptr);
    EXPECT_NE(dorn({"board", "show"}).answer.find("12 bytes, version 0x00030000, from the next reset on\n"),
              std::string::npos);

    board::countReset();

    const JsonValue active = JsonValue::parse(dorn({"board", "show", "--json"}).answer);
    EXPECT_EQ(active["fpgas"][1]["version"], 0x30000);
    EXPECT_EQ(active["fpgas"][1]["slots"][0]["flashed"]["pending"], false);
    EXPECT_EQ(active["fileSystems"][0]["mode"], 1);
    EXPECT_EQ(active["resets"], 1);
    EXPECT_TRUE(active["lastReset"].is_string());
    EXPECT_NE(withoutTimes(dorn({"board", "show"}).answer).find("watchdog, 1 reset, the last TIME\n"),
              std::string::npos);
}

TEST_F(DornBoardShowTest, BoardThatHasNothingIsShown)
{
    testkit::TestBoard board;
    for (const char* const part : {"processor", "transceivers", "units", "modules", "boot-loader", "fpgas", "rapidio",
                                   "file-systems", "watchdog"}) {
        board.remove(part);
    }

    EXPECT_EQ(dorn({"board", "show"}),
              (CommandResult{0, "-, board code 1\ndescribed by " + board.path() + "\nno watchdog, 0 resets\n", ""}));
    EXPECT_EQ(JsonValue::parse(dorn({"board", "show", "--json"}).answer),
              (JsonValue{{"description", board.path()},
                         {"model", ""},
                         {"boardCode", 1},
                         {"watchdog", false},
                         {"resets", 0},
                         {"lastReset", nullptr},
                         {"processor", nullptr},
                         {"transceivers", nullptr},
                         {"units", JsonValue::array()},
                         {"modules", JsonValue::array()},
                         {"bootLoader", nullptr},
                         {"fpgas", JsonValue::array()},
                         {"rapidio", JsonValue::array()},
                         {"fileSystems", JsonValue::array()},
                         {"sfpCages", JsonValue::array()}}));
}

TEST_F(DornBoardShowTest, NumbersWithoutANameAreShownAsNumbers)
{
    testkit::TestBoard board;
    board.cells("boot-loader", "dorn,start-location", {9}).cells("file-systems/file-system@1", "dorn,mode", {7});

    const std::string answer = dorn({"board", "show"}).answer;

    EXPECT_NE(answer.find("\n9            20480"), std::string::npos) << answer;
    EXPECT_NE(answer.find("/ffs/run     7\n"), std::string::npos) << answer;
}

TEST_F(DornBoardShowTest, TextsSayNothingToTheTerminal)
{
    testkit::TestBoard board;
    board.text("units/unit@0", "dorn,unit-id", "\x1b[2J");

    const std::string answer = dorn({"board", "show"}).answer;

    EXPECT_EQ(answer.find('\x1b'), std::string::npos);
    EXPECT_NE(answer.find("\\x1b[2J"), std::string::npos) << answer;
}

TEST_F(DornBoardShowTest, BrokenDescriptionIsExplained)
{
    testkit::TestBoard board;
    board.bytes("units/unit@0", "dorn,hw-sw-id", "abc");

    EXPECT_EQ(dorn({"board", "show"}),
              (CommandResult{1, "",
                             "dorn: board description '" + board.path() +
                                 "': property 'dorn,hw-sw-id' of node '/board/units/unit@0' has 3 bytes, not 4\n"}));
}

TEST_F(DornBoardShowTest, MissingDescriptionIsExplained)
{
    EXPECT_EQ(dorn({"board", "show"}),
              (CommandResult{1, "",
                             "dorn: board description '/proc/device-tree' cannot be read: No such file or directory "
                             "(DORN_BOARD can name another one)\n"}));
}

/// How a node of the source stands in the answer.
struct Kind {
    std::map<std::string, std::string> properties;                    ///< property to member
    std::map<std::string, std::pair<std::string, std::string>> parts; ///< child to member and kind
    std::map<std::string, std::pair<std::string, std::string>> lists; ///< child with numbered ones to member and kind
    std::pair<std::string, std::string> numbered;                     ///< member and kind of its own numbered children
};

const std::map<std::string, std::string> identity{{"dorn,unit-id", "unitId"},
                                                  {"dorn,hw-sw-id", "hwSwId"},
                                                  {"dorn,production-code", "productionCode"},
                                                  {"dorn,serial-number", "serialNumber"}};

std::map<std::string, std::string> with(std::map<std::string, std::string> map, const std::string& key,
                                        const std::string& value)
{
    map[key] = value;
    return map;
}

const std::map<std::string, Kind> kinds{
    {"board",
     {{{"dorn,board-code", "boardCode"}},
      {{"processor", {"processor", "processor"}},
       {"transceivers", {"transceivers", "transceivers"}},
       {"boot-loader", {"bootLoader", "bootLoader"}},
       {"watchdog", {"", "watchdog"}}},
      {{"units", {"units", "unit"}},
       {"modules", {"modules", "module"}},
       {"fpgas", {"fpgas", "fpga"}},
       {"rapidio", {"rapidio", "port"}},
       {"file-systems", {"fileSystems", "fileSystem"}},
       {"sfp-cages", {"sfpCages", "cage"}}},
      {}}},
    {"processor", {{{"dorn,die-id", "dieId"}, {"dorn,die-id-quality", "dieIdQuality"}}, {}, {}, {}}},
    {"transceivers", {{{"dorn,hw-capability", "hwCapability"}}, {}, {}, {}}},
    {"watchdog", {}},
    {"bootLoader",
     {{{"dorn,start-location", "startLocation"}, {"dorn,version", "version"}, {"dorn,size", "size"}}, {}, {}, {}}},
    {"unit", {with(identity, "reg", "unit"), {}, {}, {}}},
    {"module", {with(identity, "reg", "port"), {}, {}, {}}},
    {"fpga", {{{"reg", "id"}, {"label", "label"}, {"dorn,version", "version"}}, {}, {}, {"slots", "slot"}}},
    {"slot", {{{"reg", "slot"}, {"dorn,size", "size"}}, {}, {}, {}}},
    {"port", {{{"reg", "port"}, {"dorn,own-id", "ownId"}}, {}, {}, {"devices", "device"}}},
    {"device", {{{"reg", "id"}, {"label", "label"}}, {}, {}, {"memories", "memory"}}},
    {"memory", {{{"label", "label"}, {"reg", "address"}}, {}, {}, {}}},
    {"fileSystem",
     {{{"reg", "id"}, {"label", "label"}, {"dorn,mount-point", "mountPoint"}, {"dorn,mode", "mode"}}, {}, {}, {}}},
    {"cage", {{{"reg", "port"}, {"label", "label"}}, {{"module", {"module", "sfpModule"}}}, {}, {}}},
    {"sfpModule",
     {{{"dorn,vendor-name", "vendorName"},
       {"dorn,part-number", "partNumber"},
       {"dorn,serial-number", "serialNumber"},
       {"dorn,wavelength-nanometers", "wavelengthNanometers"},
       {"dorn,bit-rate-mbd", "bitRateMbd"}},
      {},
      {},
      {}}},
};

/// Properties that no answer tells.
const std::set<std::string> silent{"compatible", "#address-cells", "#size-cells", "dorn,version-offset", "phandle"};

/// Holds every property of a compiled description against the answer.
class Comparison {
public:
    explicit Comparison(const std::string& path)
    {
        std::ifstream file(path, std::ios::binary);
        m_blob.assign(std::istreambuf_iterator<char>(file), {});
        EXPECT_EQ(fdt_check_full(m_blob.data(), m_blob.size()), 0);
    }

    void compareBoard(const JsonValue& answer)
    {
        const int board = fdt_path_offset(m_blob.data(), "/board");
        ASSERT_GE(board, 0);
        EXPECT_EQ(answer["model"],
                  std::string(static_cast<const char*>(fdt_getprop(m_blob.data(), 0, "model", nullptr))));
        compare(board, answer, "board");
    }
    int compared() const { return m_compared; }

private:
    void compare(int node, const JsonValue& answer, const std::string& kindName)
    {
        const Kind& kind = kinds.at(kindName);
        int property = 0;
        fdt_for_each_property_offset(property, m_blob.data(), node)
        {
            compareProperty(property, answer, kind);
        }
        int child = 0;
        fdt_for_each_subnode(child, m_blob.data(), node)
        {
            const std::string name = fdt_get_name(m_blob.data(), child, nullptr);
            if (kind.parts.contains(name)) {
                const auto& [member, childKind] = kind.parts.at(name);
                compare(child, member.empty() ? answer : answer.at(member), childKind);
            } else if (kind.lists.contains(name)) {
                const auto& [member, childKind] = kind.lists.at(name);
                compareList(child, answer.at(member), childKind);
            } else {
                ASSERT_NE(kind.numbered.first, "") << "the answer knows no node " << name;
            }
        }
        if (const auto& [member, childKind] = kind.numbered; !member.empty()) {
            compareList(node, answer.at(member), childKind);
        }
    }

    void compareList(int node, const JsonValue& answer, const std::string& kind)
    {
        const std::vector<int> children = numberedChildren(node);
        ASSERT_EQ(answer.size(), children.size());
        for (std::size_t index = 0; index < children.size(); ++index) {
            compare(children[index], answer.at(index), kind);
        }
    }

    /// In the order of their numbers, which is not that of the source: boards add to what they include.
    std::vector<int> numberedChildren(int node) const
    {
        std::vector<int> children;
        int child = 0;
        fdt_for_each_subnode(child, m_blob.data(), node)
        {
            children.push_back(child);
        }
        std::sort(children.begin(), children.end(),
                  [this](int left, int right) { return numberOf(left) < numberOf(right); });
        return children;
    }

    std::string numberOf(int node) const
    {
        int size = 0;
        const auto* const bytes = static_cast<const char*>(fdt_getprop(m_blob.data(), node, "reg", &size));
        return bytes ? std::string(bytes, static_cast<std::size_t>(size)) : std::string();
    }

    void compareProperty(int property, const JsonValue& answer, const Kind& kind)
    {
        const char* name = nullptr;
        int size = 0;
        const void* const value = fdt_getprop_by_offset(m_blob.data(), property, &name, &size);
        if (silent.contains(name)) {
            return;
        }
        ASSERT_TRUE(kind.properties.contains(name)) << "the answer knows no property " << name;
        const JsonValue& told = answer.at(kind.properties.at(name));
        ++m_compared;
        const auto* const cells = static_cast<const fdt32_t*>(value);
        if (told.is_string()) {
            EXPECT_EQ(told, std::string(static_cast<const char*>(value), static_cast<std::size_t>(size) - 1)) << name;
        } else if (told.is_array()) {
            EXPECT_EQ(told, (JsonValue{fdt32_ld(cells), fdt32_ld(cells + 1), fdt32_ld(cells + 2)})) << name;
        } else if (size == 16) {
            EXPECT_EQ(told, fdt64_ld(static_cast<const fdt64_t*>(value))) << name;
            EXPECT_EQ(answer.at("size"), fdt64_ld(static_cast<const fdt64_t*>(value) + 1)) << name;
        } else {
            ASSERT_EQ(size, 4) << name;
            EXPECT_EQ(told, fdt32_ld(cells)) << name;
        }
    }

    std::string m_blob;
    int m_compared = 0;
};

TEST_F(DornBoardShowTest, JsonSaysWhatTheSourceSays)
{
    for (const char* const blob : {DORN_TARN_SINGLE, DORN_TARN_PAIR_MASTER}) {
        nameBoard(blob);
        const CommandResult result = dorn({"board", "show", "--json"});
        ASSERT_EQ(result.status, 0) << result.remarks;
        Comparison comparison(blob);

        comparison.compareBoard(JsonValue::parse(result.answer));

        EXPECT_GE(comparison.compared(), 50) << blob;
    }
}

class DornBoardFaultTest : public testkit::NodeTest {
protected:
    static std::int32_t call()
    {
        std::uint32_t version = 0;
        return ddal_fpga_get_active_version(1, &version);
    }

    const testkit::TestBoard m_board;
};

TEST_F(DornBoardFaultTest, FunctionOfAnotherProcessFailsAsOftenAsTold)
{
    EXPECT_EQ(call(), DDAL_OK);

    EXPECT_EQ(dorn({"board", "fault", "ddal_fpga_get_active_version", "--code", "12", "--times", "2"}),
              (CommandResult{
                  0, "ddal_fpga_get_active_version: the next 2 calls fail with 12 (device does not answer)\n", ""}));

    EXPECT_EQ(call(), 12);
    EXPECT_EQ(call(), 12);
    EXPECT_EQ(call(), DDAL_OK);
}

TEST_F(DornBoardFaultTest, OneCallFailsWithoutANumber)
{
    EXPECT_EQ(dorn({"board", "fault", "fpga_get_active_version", "--code", "-5"}).answer,
              "ddal_fpga_get_active_version: the next call fails with -5 (unknown error -5)\n");

    EXPECT_EQ(call(), -5);
    EXPECT_EQ(call(), DDAL_OK);
}

TEST_F(DornBoardFaultTest, EveryCallFailsUntilItIsCleared)
{
    EXPECT_EQ(dorn({"board", "fault", "fpga_get_active_version", "--code", "0xFFFFFFFB", "--always"}).answer,
              "ddal_fpga_get_active_version: every call fails with -5 (unknown error -5)\n");
    EXPECT_EQ(call(), -5);
    EXPECT_EQ(call(), -5);

    EXPECT_EQ(dorn({"board", "fault", "fpga_get_active_version", "--clear"}), (CommandResult{0, "", ""}));

    EXPECT_EQ(call(), DDAL_OK);
}

TEST_F(DornBoardFaultTest, ListTellsAllThatWereTold)
{
    dorn({"board", "fault", "fpga_get_active_version", "--code", "12", "--times", "3"});
    dorn({"board", "fault", "watchdog_reboot", "--code", "-1", "--always"});
    dorn({"board", "fault", "ddal_boot_get_uboot_id", "--code", "9"});
    call();

    EXPECT_EQ(dorn({"board", "fault"}),
              (CommandResult{0,
                             "FUNCTION                      CODE  MEANING                 LEFT    GIVEN\n"
                             "ddal_boot_get_uboot_id        9     input/output error      1       0\n"
                             "ddal_fpga_get_active_version  12    device does not answer  2       1\n"
                             "ddal_watchdog_reboot          -1    unknown error -1        always  0\n",
                             ""}));
    EXPECT_EQ(JsonValue::parse(dorn({"board", "fault", "--json"}).answer)[1],
              (JsonValue{{"function", "ddal_fpga_get_active_version"},
                         {"code", 12},
                         {"meaning", "device does not answer"},
                         {"after", 0},
                         {"left", 2},
                         {"given", 1}}));
    EXPECT_EQ(JsonValue::parse(dorn({"board", "fault", "--json"}).answer)[2]["left"], nullptr);
}

TEST_F(DornBoardFaultTest, ClearWithoutAFunctionClearsAll)
{
    dorn({"board", "fault", "fpga_get_active_version", "--code", "12"});
    dorn({"board", "fault", "unit_get_board", "--code", "1", "--always"});

    EXPECT_EQ(dorn({"board", "fault", "--clear"}), (CommandResult{0, "", ""}));

    EXPECT_EQ(call(), DDAL_OK);
    EXPECT_EQ(ddal_unit_get_board(), 1U);
    EXPECT_EQ(dorn({"board", "fault"}),
              (CommandResult{0, "", "dorn: no driver function has been told to fail on node 0x0F01\n"}));
}

TEST_F(DornBoardFaultTest, NoFaultsAreNoFailureAndLookingMakesNothing)
{
    EXPECT_EQ(dorn({"board", "fault"}),
              (CommandResult{0, "", "dorn: no driver function has been told to fail on node 0x0F01\n"}));
    EXPECT_EQ(dorn({"board", "fault", "--json"}), (CommandResult{0, "[]\n", ""}));
    EXPECT_EQ(dorn({"board", "fault", "--clear"}), (CommandResult{0, "", ""}));
    EXPECT_TRUE(std::filesystem::is_empty(m_node.runDirectory()));
}

TEST_F(DornBoardFaultTest, OrderCanBeToldAsJson)
{
    EXPECT_EQ(JsonValue::parse(dorn({"board", "fault", "strerror", "--code", "3", "--json"}).answer),
              (JsonValue{{"function", "ddal_strerror"},
                         {"code", 3},
                         {"meaning", "board description cannot be read"},
                         {"after", 0},
                         {"left", 1},
                         {"given", 0}}));
}

TEST_F(DornBoardFaultTest, NamesAreListed)
{
    const CommandResult result = dorn({"board", "fault", "--names"});

    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(std::count(result.answer.begin(), result.answer.end(), '\n'), 27);
    EXPECT_EQ(result.answer.find("ddal_boot_get_uboot_id\n"), 0U);
}

TEST_F(DornBoardFaultTest, CodesAreListedWithTheirMeanings)
{
    const CommandResult result = dorn({"board", "fault", "--codes"});

    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(std::count(result.answer.begin(), result.answer.end(), '\n'), 14);
    EXPECT_EQ(result.answer.find("CODE  MEANING\n1     failed\n2     invalid argument\n"), 0U);
    EXPECT_NE(result.answer.find("\n13    not supported\n"), std::string::npos);
}

TEST_F(DornBoardFaultTest, WrongUseIsExplained)
{
    const std::string help = "\nTry 'dorn board fault --help'\n";
    const std::string codes = "; 'dorn board fault --codes' lists those that have a meaning";
    const std::string lists = "--names and --codes list what there is, and take nothing else";
    const std::map<std::vector<std::string>, std::string> cases{
        {{"--names", "strerror"}, lists},
        {{"--codes", "--code", "1"}, lists},
        {{"--codes", "--clear"}, lists},
        {{"--names", "--codes"}, "'--names' and '--codes' do not go together"},
        {{"fly", "--code", "1"}, "there is no driver function 'fly'; 'dorn board fault --names' lists them"},
        {{"strerror"}, "give --code, the result with which 'strerror' is to fail, --power-loss or --clear"},
        {{"--code", "1"}, "give the FUNCTION that is to fail"},
        {{"--always"}, "give the FUNCTION that is to fail"},
        {{"strerror", "--code", "0"},
         "--code: '0' is no result of a function that fails: a number of 32 bits, not 0" + codes},
        {{"strerror", "--code", "x"},
         "--code: 'x' is no result of a function that fails: a number of 32 bits, not 0" + codes},
        {{"strerror", "--code", "-2147483649"},
         "--code: '-2147483649' is no result of a function that fails: a number of 32 bits, not 0" + codes},
        {{"strerror", "--code", "4294967296"},
         "--code: '4294967296' is no result of a function that fails: a number of 32 bits, not 0" + codes},
        {{"strerror", "--code", "1", "--times", "0"}, "--times: 0 calls cannot fail; --clear takes a fault away"},
        {{"strerror", "--clear", "--code", "1"}, "--clear takes a fault away, and the other options make one"},
        {{"strerror", "--code", "-2147483648"},
         "--code: '-2147483648' is no result of a function that fails: a number of 32 bits, not 0" + codes},
    };
    for (const auto& [arguments, reason] : cases) {
        std::vector<std::string> all{"board", "fault"};
        all.insert(all.end(), arguments.begin(), arguments.end());

        EXPECT_EQ(dorn(all), (CommandResult{2, "", "dorn: " + reason + help}));
    }
}

} // namespace
} // namespace dorn::tool
