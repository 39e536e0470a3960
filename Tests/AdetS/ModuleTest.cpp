// SPDX-License-Identifier: MIT
// Versions of modules.
#include "AutodetTest.hpp"

namespace dorn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using vel::hwapi::adet::ModuleList;

class ModuleTest : public AutodetTest {
protected:
    /// The traces of comparing an id with the first @p count rows of the catalogue.
    static std::vector<std::string> comparisons(const std::string& function, const std::string& id, std::size_t count)
    {
        std::vector<std::string> lines;
        for (std::size_t index = 0; index < count; ++index) {
            lines.push_back(formatted("Debug 0x20063 %s(%zu) '%s' = '%s'", function.c_str(), index, id.c_str(),
                                      ModuleList[index].id));
        }
        return lines;
    }
};

TEST_F(ModuleTest, EachRowIsFoundAfterTheRowsBeforeIt)
{
    for (std::size_t index = 0; index < std::size(ModuleList); ++index) {
        std::construct_at(&vel::hwapi::adet::identityCaches());
        m_platform.clearCalls();
        m_drivers.module.id = ModuleList[index].id;

        EXPECT_EQ(ApiGetModuleVersion(), ModuleList[index].version);
        EXPECT_EQ(log(), comparisons("ApiGetModuleVersion", m_drivers.module.id, index + 1));
    }
}

TEST_F(ModuleTest, EachRowIsFoundForExternalModules)
{
    for (std::size_t index = 0; index < std::size(ModuleList); ++index) {
        m_platform.clearCalls();
        m_drivers.extModules[3].id = ModuleList[index].id;

        EXPECT_EQ(ApiGetExtModuleVersion(3), ModuleList[index].version);
        EXPECT_EQ(log(), comparisons("ApiGetExtModuleVersion", m_drivers.extModules[3].id, index + 1));
    }
}

TEST_F(ModuleTest, IdAndVersionAreReadOnce)
{
    m_drivers.module.id = "VIGC";
    EXPECT_EQ(ApiGetModuleVersion(), EModuleVersion_Vigil_3);
    m_platform.clearCalls();
    m_drivers.module.id = "MATA";

    EXPECT_EQ(ApiGetModuleVersion(), EModuleVersion_Vigil_3);
    EXPECT_EQ(ask(ApiGetModuleId, 5), inBuffer("VIGC", 5));
    EXPECT_THAT(m_platform.calls(), IsEmpty());
}

class UnlistedModuleTest : public ModuleTest, public testing::WithParamInterface<const char*> {};

TEST_P(UnlistedModuleTest, IsUnknownWithoutMessage)
{
    m_drivers.module.id = GetParam();

    EXPECT_EQ(ApiGetModuleVersion(), EModuleVersion_Unknown);
    EXPECT_EQ(log(), comparisons("ApiGetModuleVersion", GetParam(), 30));
}

TEST_P(UnlistedModuleTest, IsTakenForVersion14WhereItIsExternal)
{
    m_drivers.extModules[12].id = GetParam();

    EXPECT_EQ(static_cast<int>(ApiGetExtModuleVersion(12)), 14);

    auto expected = comparisons("ApiGetExtModuleVersion", GetParam(), 30);
    expected.push_back(formatted("Warning 0x20063 ApiGetExtModuleVersion(12): module version not found "
                                 "(name from ddal = %s)",
                                 GetParam()));
    EXPECT_EQ(log(), expected);
}

INSTANTIATE_TEST_SUITE_P(Ids, UnlistedModuleTest, testing::Values("XYZZ", "VIG", "VIGAX", "viga", ""));

TEST_F(ModuleTest, UnlistedModuleIsComparedAgain)
{
    m_drivers.module.id = "XYZZ";
    EXPECT_EQ(ApiGetModuleVersion(), EModuleVersion_Unknown);
    m_platform.clearCalls();

    EXPECT_EQ(ApiGetModuleVersion(), EModuleVersion_Unknown);

    EXPECT_EQ(log().size(), 30U);
    EXPECT_THAT(driverCalls(), IsEmpty()) << "the id itself is known";
}

TEST_F(ModuleTest, ExternalModuleWhoseIdCannotBeReadIsTakenForVersion14)
{
    EXPECT_EQ(static_cast<int>(ApiGetExtModuleVersion(12)), 14);

    EXPECT_THAT(
        m_platform.calls(),
        ElementsAre("ddal_devicetree_get_ext_module_unit_id(12, 7)",
                    "Warning 0x20063 ApiGetExtModuleId(): ddal_devicetree_get_ext_module_unit_id(port_id=0xc) returned "
                    "'0x5' (not DDAL_OK)",
                    "Warning 0x20063 ApiGetExtModuleVersion(12): module version not found (name from ddal = )"));
}

TEST_F(ModuleTest, PortBeyondTheGreatestSignedNumberIsLoggedWithASign)
{
    m_drivers.extModules[0x80000001].id = "XYZZ";

    EXPECT_EQ(static_cast<int>(ApiGetExtModuleVersion(0x80000001)), 14);

    EXPECT_EQ(m_platform.calls().front(), "ddal_devicetree_get_ext_module_unit_id(2147483649, 7)");
    EXPECT_EQ(log().back(), "Warning 0x20063 ApiGetExtModuleVersion(-2147483647): module version not found "
                            "(name from ddal = XYZZ)");
}

TEST_F(ModuleTest, ExternalModuleIsReadEachTime)
{
    m_drivers.extModules[3].id = "VIGC";
    EXPECT_EQ(ApiGetExtModuleVersion(3), EModuleVersion_Vigil_3);
    m_drivers.extModules[3].id = "MATA";
    EXPECT_EQ(ApiGetExtModuleVersion(3), EModuleVersion_Matin_1);
    EXPECT_EQ(ask([](char* buffer, std::uint32_t length) { return ApiGetExtModuleId(3, buffer, length); }, 5),
              inBuffer("MATA", 5));
}

TEST_F(ModuleTest, ModuleWhoseIdCannotBeReadIsUnknown)
{
    m_platform.setResult("ddal_devicetree_get_module_unit_id", 9);

    EXPECT_EQ(ApiGetModuleVersion(), EModuleVersion_Unknown);
    EXPECT_THAT(log(), ElementsAre("Warning 0x20063 ApiGetModuleId(): ddal_devicetree_get_module_unit_id() returned "
                                   "'0x9' (not DDAL_OK)"));
}

} // namespace
} // namespace dorn::test
