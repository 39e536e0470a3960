// SPDX-License-Identifier: MIT
#include "raml/RamlDefs.hpp"

#include "AaSysLog.h"
#include "rad/ERadHwapi.h"
#include "raml/NamedValue.hpp"

#include <array>
#include <ostream>

namespace RAML {
namespace {

constexpr auto operations = std::to_array<NamedValue<RAML_MOOperationType>>({
    {"create", RAML_OP_CREATE},
    {"delete", RAML_OP_DELETE},
    {"update", RAML_OP_UPDATE},
    {"query", RAML_OP_QUERY},
    {"action", RAML_OP_ACTION},
    {"subscribe", RAML_OP_SUBSCRIBE},
    {"unsubscribe", RAML_OP_UNSUBSCRIBE},
    {"auto", RAML_OP_AUTO},
    {"", RAML_OP_NONE},
});
static_assert(operations.size() == 9);

/// What is written: not all that is read.
constexpr auto writtenOperations = std::to_array<NamedValue<RAML_MOOperationType>>({
    {"query", RAML_OP_QUERY},
    {"create", RAML_OP_CREATE},
    {"delete", RAML_OP_DELETE},
    {"update", RAML_OP_UPDATE},
    {"action", RAML_OP_ACTION},
    {"auto", RAML_OP_AUTO},
});
static_assert(writtenOperations.size() == 6);

constexpr auto levelScopes = std::to_array<NamedValue<RAML_MOLevelScopeType>>({
    {"firstLevelOnly", RAML_LSCOPE_FIRST_LEVEL_ONLY},
    {"wholeSubtree", RAML_LSCOPE_WHOLE_SUBTREE},
    {"", RAML_LSCOPE_NONE},
});
static_assert(levelScopes.size() == 3);

constexpr auto funcScopes = std::to_array<NamedValue<RAML_MOFuncScopeType>>({
    {"FM", RAML_FSCOPE_FM},
    {"PM", RAML_FSCOPE_PM},
    {"LICM", RAML_FSCOPE_LICM},
    {"SW", RAML_FSCOPE_SW},
    {"HW", RAML_FSCOPE_HW},
    {"ATM_CC", RAML_FSCOPE_ATM_CC},
    {"ATM_TP", RAML_FSCOPE_ATM_TP},
    {"ATM_IMA", RAML_FSCOPE_ATM_IMA},
    {"PDH_TP", RAML_FSCOPE_PDH_TP},
    {"SDH_TP", RAML_FSCOPE_SDH_TP},
    {"AAM", RAML_FSCOPE_AAM},
    {"IP", RAML_FSCOPE_IP},
    {"OSPF", RAML_FSCOPE_OSPF},
    {"RSTP", RAML_FSCOPE_RSTP},
    {"SYNC", RAML_FSCOPE_SYNC},
    {"SRCK", RAML_FSCOPE_SRCK},
    {"ETH_IF", RAML_FSCOPE_ETHIF},
    {"TOP", RAML_FSCOPE_TOP},
    {"SEC", RAML_FSCOPE_SEC},
    {"LOCAL_SEC", RAML_FSCOPE_LOCAL_SEC},
    {"FRACTIONAL", RAML_FSCOPE_FRACTIONAL},
    {"CES", RAML_FSCOPE_CES},
    {"ETHERNET", RAML_FSCOPE_ETHERNET},
    {"ATM_OVER_ETHERNET", RAML_FSCOPE_ATM_OVER_ETHERNET},
    {"CERT", RAML_FSCOPE_CERT},
    {"IP_SEC", RAML_FSCOPE_IP_SEC},
    {"PPP", RAML_FSCOPE_PPP},
    {"QOS", RAML_FSCOPE_QOS},
    {"PMTNL", RAML_FSCOPE_PMTNL},
    {"TWAMP", RAML_FSCOPE_TWAMP},
    {"ETH_SWITCH", RAML_FSCOPE_ETH_SWITCH},
    {"ETH_SERVICE_OAM", RAML_FSCOPE_ETH_SERVICE_OAM},
    {"ETH_LINK_OAM", RAML_FSCOPE_ETH_LINK_OAM},
    {"PDH_IF", RAML_FSCOPE_PDH_IF},
    {"", RAML_FSCOPE_NONE},
});
static_assert(funcScopes.size() == 35);

constexpr auto filters = std::to_array<NamedValue<RAML_MOFilterType>>({
    {"CM", RAML_FILTER_CM},
    {"PM", RAML_FILTER_PM},
    {"", RAML_FILTER_NONE},
});
static_assert(filters.size() == 3);

constexpr auto listItemOperations = std::to_array<NamedValue<RAML_ListItemOperationType>>({
    {"create", RAML_LIST_ITEM_OP_CREATE},
    {"delete", RAML_LIST_ITEM_OP_DELETE},
    {"", RAML_LIST_ITEM_OP_NONE},
});
static_assert(listItemOperations.size() == 3);

} // namespace

RAML_MOOperationType getOperationType(const std::string& text)
{
    return valueOf(text, operations, RAML_OP_INVALID);
}

RAML_MOLevelScopeType getLevelScopeType(const std::string& text)
{
    return valueOf(text, levelScopes, RAML_LSCOPE_INVALID);
}

RAML_MOFuncScopeType getFuncScopeType(const std::string& text)
{
    const RAML_MOFuncScopeType value = valueOf(text, funcScopes, RAML_FSCOPE_INVALID);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "funcScope = %s value = %d", text.c_str(), value);
    return value;
}

RAML_MOFilterType getFilterType(const std::string& text)
{
    return valueOf(text, filters, RAML_FILTER_INVALID);
}

RAML_ListItemOperationType getListItemOperationType(const std::string& text)
{
    return valueOf(text, listItemOperations, RAML_LIST_ITEM_OP_INVALID);
}

std::ostream& operator<<(std::ostream& stream, RAML_MOOperationType operation)
{
    for (const auto& row : writtenOperations) {
        if (row.value == operation) {
            return stream << row.text;
        }
    }
    return stream;
}

} // namespace RAML
