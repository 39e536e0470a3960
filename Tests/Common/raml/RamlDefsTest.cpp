// SPDX-License-Identifier: MIT
#include "RamlTest.hpp"

#include "raml/RamlDefs.hpp"

#include <cstdint>
#include <gmock/gmock.h>
#include <limits>
#include <sstream>
#include <utility>

namespace RAML {
namespace {

using dorn::test::debugLine;
using testing::ElementsAre;

class RamlDefsTest : public dorn::test::RamlTest {};

template <class Value>
using Texts = std::vector<std::pair<std::string, Value>>;

std::string written(RAML_MOOperationType operation)
{
    std::ostringstream stream;
    stream << operation;
    return stream.str();
}

TEST_F(RamlDefsTest, OperationsAreKnownByTheirTexts)
{
    const Texts<int> texts{{"query", 0},     {"create", 1},      {"delete", 2}, {"update", 3}, {"action", 4},
                           {"subscribe", 5}, {"unsubscribe", 6}, {"auto", 7},   {"", 8},       {"Create", 9},
                           {"create ", 9},   {" create", 9},     {"creat", 9},  {"modify", 9}, {"none", 9}};
    for (const auto& [text, value] : texts) {
        EXPECT_EQ(getOperationType(text), value) << text;
    }
    EXPECT_EQ(getOperationType(std::string("create\0", 7)), RAML_OP_INVALID);
}

TEST_F(RamlDefsTest, LevelScopesAreKnownByTheirTexts)
{
    const Texts<int> texts{
        {"", 0}, {"wholeSubtree", 1}, {"firstLevelOnly", 2}, {"WholeSubtree", 3}, {"firstlevelonly", 3}, {"none", 3}};
    for (const auto& [text, value] : texts) {
        EXPECT_EQ(getLevelScopeType(text), value) << text;
    }
}

TEST_F(RamlDefsTest, FiltersAreKnownByTheirTexts)
{
    const Texts<int> texts{{"", 0}, {"CM", 1}, {"PM", 2}, {"cm", 3}, {"CM PM", 3}, {"FM", 3}};
    for (const auto& [text, value] : texts) {
        EXPECT_EQ(getFilterType(text), value) << text;
    }
}

TEST_F(RamlDefsTest, OperationsOfListItemsAreKnownByTheirTexts)
{
    const Texts<int> texts{{"", 0}, {"create", 1}, {"delete", 2}, {"update", 3}, {"Create", 3}};
    for (const auto& [text, value] : texts) {
        EXPECT_EQ(getListItemOperationType(text), value) << text;
    }
}

constexpr std::int64_t invalidScope = std::numeric_limits<std::int32_t>::min();

const Texts<std::int64_t>& funcScopes()
{
    static const Texts<std::int64_t> texts{{"FM", 2},
                                           {"PM", 4},
                                           {"LICM", 8},
                                           {"SW", 16},
                                           {"HW", 32},
                                           {"ATM_CC", 64},
                                           {"ATM_TP", 128},
                                           {"ATM_IMA", 256},
                                           {"PDH_TP", 512},
                                           {"SDH_TP", 0},
                                           {"AAM", 2048},
                                           {"IP", 4096},
                                           {"OSPF", 1024},
                                           {"RSTP", 512},
                                           {"SYNC", 8192},
                                           {"SRCK", 16384},
                                           {"ETH_IF", 67108864},
                                           {"TOP", 256},
                                           {"SEC", 32768},
                                           {"LOCAL_SEC", 65536},
                                           {"FRACTIONAL", 131072},
                                           {"CES", 262144},
                                           {"ETHERNET", 524288},
                                           {"ATM_OVER_ETHERNET", 1048576},
                                           {"CERT", 2097152},
                                           {"IP_SEC", 4194304},
                                           {"PPP", 8388608},
                                           {"QOS", 16777216},
                                           {"PMTNL", 33554432},
                                           {"TWAMP", 1},
                                           {"ETH_SWITCH", 134217728},
                                           {"ETH_SERVICE_OAM", 268435456},
                                           {"ETH_LINK_OAM", 536870912},
                                           {"PDH_IF", 1073741824},
                                           {"", 0},
                                           {"FM PM", invalidScope},
                                           {"fm", invalidScope},
                                           {"ETHIF", invalidScope},
                                           {"NONE", invalidScope},
                                           {"F", invalidScope}};
    return texts;
}

TEST_F(RamlDefsTest, FunctionScopesAreKnownByTheirTexts)
{
    for (const auto& [text, value] : funcScopes()) {
        EXPECT_EQ(static_cast<std::int64_t>(getFuncScopeType(text)), value) << text;
    }
}

TEST_F(RamlDefsTest, FunctionScopeIsLoggedWithItsText)
{
    for (const auto& [text, value] : funcScopes()) {
        m_log.clear();
        getFuncScopeType(text);
        EXPECT_THAT(m_log.texts(), ElementsAre(debugLine("funcScope = " + text + " value = " + std::to_string(value))));
    }
}

TEST_F(RamlDefsTest, OtherTextsAreNotLogged)
{
    getOperationType("modify");
    getLevelScopeType("modify");
    getFilterType("modify");
    getListItemOperationType("modify");
    EXPECT_THAT(m_log.texts(), ElementsAre());
}

TEST_F(RamlDefsTest, SixOperationsAreWritten)
{
    const std::vector<std::string> texts{"query", "create", "delete", "update", "action", "", "", "auto", "", ""};
    for (std::size_t value = 0; value < texts.size(); ++value) {
        EXPECT_EQ(written(static_cast<RAML_MOOperationType>(value)), texts[value]) << value;
    }
    EXPECT_EQ(written(static_cast<RAML_MOOperationType>(10)), "");
    EXPECT_EQ(written(static_cast<RAML_MOOperationType>(-1)), "");
}

TEST_F(RamlDefsTest, WritingAnOperationReturnsTheStream)
{
    std::ostringstream stream;
    stream << RAML_OP_CREATE << '|' << RAML_OP_SUBSCRIBE << '|';
    EXPECT_EQ(stream.str(), "create||");
    EXPECT_EQ(&(stream << RAML_OP_AUTO), &stream);
}

TEST_F(RamlDefsTest, EnumeratorsHaveTheirValues)
{
    EXPECT_THAT((std::vector<int>{RAML_OK, RAML_MALFORMED_XML, RAML_INVALID_FILE_FORMAT, RAML_SYNTAX_ERROR,
                                  RAML_RESOURCE_LIMITATION}),
                ElementsAre(0, 1, 2, 3, 4));
    EXPECT_THAT((std::vector<int>{RAML_PLAN_ACTUAL, RAML_PLAN_CANDIDATE, RAML_PLAN_DEFAULTS, RAML_PLAN_NONE}),
                ElementsAre(0, 1, 2, 3));
    EXPECT_THAT((std::vector<int>{RAML_SCOPE_ALL, RAML_SCOPE_HIERARCHY, RAML_SCOPE_CHANGES, RAML_SCOPE_SELECTION,
                                  RAML_SCOPE_NONE, RAML_SCOPE_INVALID}),
                ElementsAre(0, 1, 2, 3, 4, 5));
    EXPECT_THAT((std::vector<int>{RAML_OP_QUERY, RAML_OP_CREATE, RAML_OP_DELETE, RAML_OP_UPDATE, RAML_OP_ACTION,
                                  RAML_OP_SUBSCRIBE, RAML_OP_UNSUBSCRIBE, RAML_OP_AUTO, RAML_OP_NONE, RAML_OP_INVALID}),
                ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9));
    EXPECT_THAT((std::vector<int>{RAML_LSCOPE_NONE, RAML_LSCOPE_WHOLE_SUBTREE, RAML_LSCOPE_FIRST_LEVEL_ONLY,
                                  RAML_LSCOPE_INVALID}),
                ElementsAre(0, 1, 2, 3));
    EXPECT_THAT((std::vector<int>{RAML_FILTER_NONE, RAML_FILTER_CM, RAML_FILTER_PM, RAML_FILTER_INVALID}),
                ElementsAre(0, 1, 2, 3));
    EXPECT_THAT((std::vector<int>{RAML_LIST_ITEM_OP_NONE, RAML_LIST_ITEM_OP_CREATE, RAML_LIST_ITEM_OP_DELETE,
                                  RAML_LIST_ITEM_OP_INVALID}),
                ElementsAre(0, 1, 2, 3));
    EXPECT_THAT((std::vector<int>{RAML_LIST, RAML_LIST_P, RAML_P, RAML_ITEM}), ElementsAre(0, 1, 2, 3));
}

TEST_F(RamlDefsTest, FunctionScopesHaveTheirValues)
{
    const std::vector<std::pair<std::int64_t, std::int64_t>> values{{RAML_FSCOPE_NONE, 0},
                                                                    {RAML_FSCOPE_TWAMP, 1},
                                                                    {RAML_FSCOPE_FM, 2},
                                                                    {RAML_FSCOPE_PM, 4},
                                                                    {RAML_FSCOPE_LICM, 8},
                                                                    {RAML_FSCOPE_SW, 16},
                                                                    {RAML_FSCOPE_HW, 32},
                                                                    {RAML_FSCOPE_ATM_CC, 64},
                                                                    {RAML_FSCOPE_ATM_TP, 128},
                                                                    {RAML_FSCOPE_ATM_IMA, 256},
                                                                    {RAML_FSCOPE_TOP, 256},
                                                                    {RAML_FSCOPE_RSTP, 512},
                                                                    {RAML_FSCOPE_PDH_TP, 512},
                                                                    {RAML_FSCOPE_SDH_TP, 0},
                                                                    {RAML_FSCOPE_OSPF, 1024},
                                                                    {RAML_FSCOPE_AAM, 2048},
                                                                    {RAML_FSCOPE_IP, 4096},
                                                                    {RAML_FSCOPE_SYNC, 8192},
                                                                    {RAML_FSCOPE_SRCK, 16384},
                                                                    {RAML_FSCOPE_SEC, 32768},
                                                                    {RAML_FSCOPE_LOCAL_SEC, 65536},
                                                                    {RAML_FSCOPE_FRACTIONAL, 131072},
                                                                    {RAML_FSCOPE_CES, 262144},
                                                                    {RAML_FSCOPE_ETHERNET, 524288},
                                                                    {RAML_FSCOPE_ATM_OVER_ETHERNET, 1048576},
                                                                    {RAML_FSCOPE_CERT, 2097152},
                                                                    {RAML_FSCOPE_IP_SEC, 4194304},
                                                                    {RAML_FSCOPE_PPP, 8388608},
                                                                    {RAML_FSCOPE_QOS, 16777216},
                                                                    {RAML_FSCOPE_PMTNL, 33554432},
                                                                    {RAML_FSCOPE_ETHIF, 67108864},
                                                                    {RAML_FSCOPE_ETH_SWITCH, 134217728},
                                                                    {RAML_FSCOPE_ETH_SERVICE_OAM, 268435456},
                                                                    {RAML_FSCOPE_ETH_LINK_OAM, 536870912},
                                                                    {RAML_FSCOPE_PDH_IF, 1073741824},
                                                                    {RAML_FSCOPE_INVALID, -2147483648LL}};
    for (const auto& [enumerator, value] : values) {
        EXPECT_EQ(enumerator, value);
    }
    EXPECT_EQ(sizeof(RAML_MOFuncScopeType), 4U);
}

} // namespace
} // namespace RAML
