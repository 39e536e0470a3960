// SPDX-License-Identifier: MIT
// Every function of the driver seam fails when it is told to, and does nothing then.
#include "BoardTest.hpp"
#include "ddal_boot.h"
#include "ddal_devicetree.h"
#include "ddal_ffs.h"
#include "ddal_fpga.h"
#include "ddal_rio.h"
#include "ddal_unit.h"
#include "ddal_watchdog.h"
#include "fault/FaultStore.hpp"

#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>
#include <string>

namespace dorn::board {
namespace {

constexpr std::int32_t code = -4711;

/// A valid call of a function, with everything that it could change.
class Call {
public:
    explicit Call(const std::string& function) : m_call(calls().at(function)) {}

    std::int32_t result() { return m_call(*this); }
    bool isUntouched() const
    {
        return m_text == untouchedText && m_number == 77 && m_signed == 77 && m_short == 77 && m_words.words[0] == 77;
    }

    static std::set<std::string> functions()
    {
        std::set<std::string> names;
        for (const auto& [name, call] : calls()) {
            names.insert(name);
        }
        return names;
    }

private:
    using Work = std::function<std::int32_t(Call&)>;
    static const std::map<std::string, Work>& calls();
    static std::int32_t openHandle()
    {
        std::int32_t handle = -1;
        ddal_rio_copy_open_fd(0, 0x10, DDAL_RIO_READ_WRITE, &handle);
        return handle; // none without a board
    }

    static inline const std::string untouchedText = std::string(200, '#');
    Work m_call;
    std::string m_text = untouchedText;
    std::uint32_t m_number = 77;
    std::int32_t m_signed = 77;
    std::uint16_t m_short = 77;
    ddal_xcvr_hw_capability m_words{{77, 77, 77}};
};

const std::map<std::string, Call::Work>& Call::calls()
{
    static const std::map<std::string, Work> all{
        {"ddal_boot_get_uboot_id", [](Call& c) { return ddal_boot_get_uboot_id(&c.m_signed); }},
        {"ddal_boot_get_uboot_version", [](Call& c) { return ddal_boot_get_uboot_version(c.m_text.data()); }},
        {"ddal_boot_update_uboot", [](Call&) { return ddal_boot_update_uboot("/tmp/image"); }},
        {"ddal_devicetree_get_die_id", [](Call& c) { return ddal_devicetree_get_die_id(129, c.m_text.data()); }},
        {"ddal_devicetree_get_die_id_quality",
         [](Call& c) { return ddal_devicetree_get_die_id_quality(9, c.m_text.data()); }},
        {"ddal_devicetree_get_ext_module_production_code",
         [](Call& c) { return ddal_devicetree_get_ext_module_production_code(1, 13, c.m_text.data()); }},
        {"ddal_devicetree_get_ext_module_serial_number",
         [](Call& c) { return ddal_devicetree_get_ext_module_serial_number(1, 17, c.m_text.data()); }},
        {"ddal_devicetree_get_ext_module_unit_id",
         [](Call& c) { return ddal_devicetree_get_ext_module_unit_id(1, 7, c.m_text.data()); }},
        {"ddal_devicetree_get_hw_sw_id", [](Call& c) { return ddal_devicetree_get_hw_sw_id(0, &c.m_number); }},
        {"ddal_devicetree_get_module_production_code",
         [](Call& c) { return ddal_devicetree_get_module_production_code(13, c.m_text.data()); }},
        {"ddal_devicetree_get_module_serial_number",
         [](Call& c) { return ddal_devicetree_get_module_serial_number(17, c.m_text.data()); }},
        {"ddal_devicetree_get_module_unit_id",
         [](Call& c) { return ddal_devicetree_get_module_unit_id(7, c.m_text.data()); }},
        {"ddal_devicetree_get_production_code",
         [](Call& c) { return ddal_devicetree_get_production_code(0, 13, c.m_text.data()); }},
        {"ddal_devicetree_get_serial_number",
         [](Call& c) { return ddal_devicetree_get_serial_number(0, 17, c.m_text.data()); }},
        {"ddal_devicetree_get_unit_id", [](Call& c) { return ddal_devicetree_get_unit_id(0, 7, c.m_text.data()); }},
        {"ddal_devicetree_get_xcvr_hw_capability",
         [](Call& c) { return ddal_devicetree_get_xcvr_hw_capability(&c.m_words); }},
        {"ddal_ffs_is_mounted", [](Call& c) { return ddal_ffs_is_mounted(1, &c.m_number); }},
        {"ddal_fpga_get_active_version", [](Call& c) { return ddal_fpga_get_active_version(1, &c.m_number); }},
        {"ddal_fpga_update_mod", [](Call&) { return ddal_fpga_update_mod(1, DDAL_FPGA_SLOT_PRIMARY, "/tmp/image"); }},
        {"ddal_rio_copy_close_fd", [](Call&) { return ddal_rio_copy_close_fd(openHandle()); }},
        {"ddal_rio_copy_from_fd",
         [](Call& c) { return ddal_rio_copy_from_fd(openHandle(), 0x80000000, c.m_text.data(), 4); }},
        {"ddal_rio_copy_open_fd",
         [](Call& c) { return ddal_rio_copy_open_fd(0, 0x10, DDAL_RIO_READ_WRITE, &c.m_signed); }},
        {"ddal_rio_copy_to_fd", [](Call&) { return ddal_rio_copy_to_fd(openHandle(), 0x80000000, "data", 4); }},
        {"ddal_rio_get_own_id", [](Call& c) { return ddal_rio_get_own_id(&c.m_short); }},
        {"ddal_strerror", [](Call& c) { return ddal_strerror(DDAL_OK, c.m_text.data(), 63); }},
        {"ddal_unit_get_board", [](Call&) { return ddal_unit_get_board() == 0 ? code : DDAL_OK; }},
        {"ddal_watchdog_reboot", [](Call&) { return ddal_watchdog_reboot(); }},
    };
    return all;
}

class DriverFaultTest : public BoardTest, public ::testing::WithParamInterface<std::string_view> {
protected:
    DriverFaultTest() { writeImage(m_node, "/tmp/image", 1); }

    std::size_t stateFiles() const
    {
        const std::string path = m_node.boardPath("/var/lib/dorn/board");
        return std::filesystem::exists(path)
                   ? static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path), {}))
                   : 0;
    }

    const std::string m_function{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Functions, DriverFaultTest, ::testing::ValuesIn(driverFunctionNames),
                         [](const auto& function) { return std::string(function.param); });

TEST_P(DriverFaultTest, FunctionFailsWithTheCodeAndChangesNothing)
{
    Call call(m_function);
    m_board.fail(m_function, code, 2);

    EXPECT_EQ(call.result(), code);
    EXPECT_EQ(call.result(), code);

    EXPECT_EQ(call.isUntouched(), m_function != "ddal_strerror") << "whose buffer is emptied";
    EXPECT_EQ(stateFiles(), 0U);
    EXPECT_TRUE(m_log.texts().empty()) << "an order that is carried out is no failure of the board";
}

TEST_P(DriverFaultTest, FunctionWorksWhenItsTimesAreOver)
{
    Call call(m_function);
    m_board.remove("watchdog").fail(m_function, code);

    EXPECT_EQ(call.result(), code);
    EXPECT_EQ(call.result(), m_function == "ddal_watchdog_reboot" ? DDAL_ERROR_NOT_FOUND : DDAL_OK);
}

TEST_P(DriverFaultTest, OtherFunctionsDoNotMind)
{
    Call call(m_function);
    m_board.remove("watchdog");
    for (const std::string_view other : driverFunctionNames) {
        if (other != m_function && other != "ddal_rio_copy_open_fd") { // which the calls with a handle need
            m_board.fail(std::string(other), code);
        }
    }

    EXPECT_NE(call.result(), code);
}

TEST_P(DriverFaultTest, FunctionFailsAlsoWithoutABoard)
{
    m_board.remove("");
    m_board.fail(m_function, code);

    EXPECT_EQ(Call(m_function).result(), code);
}

/// The functions that the headers of the seam declare.
std::set<std::string> declaredFunctions()
{
    static const std::regex declaration(R"(\n\w+ (ddal_\w+)\()");
    std::set<std::string> names;
    for (const auto& header : std::filesystem::directory_iterator(DORN_DRIVER_HEADERS)) {
        std::ifstream file(header.path());
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        for (std::sregex_iterator found(text.begin(), text.end(), declaration); found != std::sregex_iterator();
             ++found) {
            names.insert((*found)[1]);
        }
    }
    return names;
}

TEST(DriverFunctionsTest, TableHasWhatTheSeamDeclares)
{
    const std::set<std::string> table(driverFunctionNames.begin(), driverFunctionNames.end());

    EXPECT_EQ(table.size(), driverFunctionNames.size());
    EXPECT_EQ(table, declaredFunctions());
    EXPECT_EQ(table, Call::functions());
}

} // namespace
} // namespace dorn::board
