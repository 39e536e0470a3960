// SPDX-License-Identifier: MIT
/// @file RamlDefs.hpp
/// The enumerations of RAML documents and the texts that stand for them on the wire.
///
/// The functions that read a text compare it whole and case-sensitively. The empty text gives the enumeration's NONE
/// member and a text that is not known its INVALID member; nothing throws. A variable of an enumeration may hold any
/// number of its size; what is none of its members is passed over wherever it is written.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <limits>
#include <map>
#include <string>

namespace RAML {

/// What came of reading a document.
enum RAML_ParsingResult : std::int32_t {
    RAML_OK = 0,
    RAML_MALFORMED_XML = 1,       ///< the text is not well-formed XML
    RAML_INVALID_FILE_FORMAT = 2, ///< the file is empty
    RAML_SYNTAX_ERROR = 3,        ///< XML, but against the rules of RAML
    RAML_RESOURCE_LIMITATION = 4  ///< the file cannot be read
};

/// Which plan a block of configuration data belongs to: "actual", "plan" (the candidate), "defaults".
enum RAML_PlanType : std::int32_t {
    RAML_PLAN_ACTUAL = 0,
    RAML_PLAN_CANDIDATE = 1,
    RAML_PLAN_DEFAULTS = 2,
    RAML_PLAN_NONE = 3
};

/// How much of the configuration a block holds.
enum RAML_ScopeType : std::int32_t {
    RAML_SCOPE_ALL = 0,
    RAML_SCOPE_HIERARCHY = 1,
    RAML_SCOPE_CHANGES = 2,
    RAML_SCOPE_SELECTION = 3,
    RAML_SCOPE_NONE = 4,
    RAML_SCOPE_INVALID = 5
};

/// What is to be done with a managed object.
enum RAML_MOOperationType : std::int32_t {
    RAML_OP_QUERY = 0,
    RAML_OP_CREATE = 1,
    RAML_OP_DELETE = 2,
    RAML_OP_UPDATE = 3,
    RAML_OP_ACTION = 4,
    RAML_OP_SUBSCRIBE = 5,
    RAML_OP_UNSUBSCRIBE = 6,
    RAML_OP_AUTO = 7,
    RAML_OP_NONE = 8,
    RAML_OP_INVALID = 9
};

/// How far below a managed object an operation reaches.
enum RAML_MOLevelScopeType : std::int32_t {
    RAML_LSCOPE_NONE = 0,
    RAML_LSCOPE_WHOLE_SUBTREE = 1,
    RAML_LSCOPE_FIRST_LEVEL_ONLY = 2,
    RAML_LSCOPE_INVALID = 3
};

/// The function that an operation is limited to. The values are bits, so that callers may combine them; a document
/// names one. Some members share a value, and RAML_FSCOPE_SDH_TP has none of its own: a value does not always lead back
/// to one name.
enum RAML_MOFuncScopeType : std::int32_t {
    RAML_FSCOPE_NONE = 0,
    RAML_FSCOPE_TWAMP = 1,
    RAML_FSCOPE_FM = 2,
    RAML_FSCOPE_PM = 4,
    RAML_FSCOPE_LICM = 8,
    RAML_FSCOPE_SW = 16,
    RAML_FSCOPE_HW = 32,
    RAML_FSCOPE_ATM_CC = 64,
    RAML_FSCOPE_ATM_TP = 128,
    RAML_FSCOPE_ATM_IMA = 256,
    RAML_FSCOPE_TOP = 256,
    RAML_FSCOPE_RSTP = 512,
    RAML_FSCOPE_PDH_TP = 512,
    RAML_FSCOPE_SDH_TP = 0,
    RAML_FSCOPE_OSPF = 1024,
    RAML_FSCOPE_AAM = 2048,
    RAML_FSCOPE_IP = 4096,
    RAML_FSCOPE_SYNC = 8192,
    RAML_FSCOPE_SRCK = 16384,
    RAML_FSCOPE_SEC = 32768,
    RAML_FSCOPE_LOCAL_SEC = 65536,
    RAML_FSCOPE_FRACTIONAL = 131072,
    RAML_FSCOPE_CES = 262144,
    RAML_FSCOPE_ETHERNET = 524288,
    RAML_FSCOPE_ATM_OVER_ETHERNET = 1048576,
    RAML_FSCOPE_CERT = 2097152,
    RAML_FSCOPE_IP_SEC = 4194304,
    RAML_FSCOPE_PPP = 8388608,
    RAML_FSCOPE_QOS = 16777216,
    RAML_FSCOPE_PMTNL = 33554432,
    RAML_FSCOPE_ETHIF = 67108864,
    RAML_FSCOPE_ETH_SWITCH = 134217728,
    RAML_FSCOPE_ETH_SERVICE_OAM = 268435456,
    RAML_FSCOPE_ETH_LINK_OAM = 536870912,
    RAML_FSCOPE_PDH_IF = 1073741824,
    RAML_FSCOPE_INVALID = std::numeric_limits<std::int32_t>::min()
};

/// Which kind of data an operation is limited to: "CM" configuration, "PM" performance management.
enum RAML_MOFilterType : std::int32_t {
    RAML_FILTER_NONE = 0,
    RAML_FILTER_CM = 1,
    RAML_FILTER_PM = 2,
    RAML_FILTER_INVALID = 3
};

/// What is to be done with an item of a list.
enum RAML_ListItemOperationType : std::int32_t {
    RAML_LIST_ITEM_OP_NONE = 0,
    RAML_LIST_ITEM_OP_CREATE = 1,
    RAML_LIST_ITEM_OP_DELETE = 2,
    RAML_LIST_ITEM_OP_INVALID = 3
};

/// Kind of a parameter of a managed object (list, simple value) or of an element of a list (bare value, item).
enum RAML_ParamType : std::int32_t { RAML_LIST = 0, RAML_LIST_P = 1, RAML_P = 2, RAML_ITEM = 3 };

/// Rank of each class of managed objects that is valid; objects of a lesser rank come first. Supplied by the caller.
using TmlMoHierarchyMap = std::map<std::string, int>;

RAML_MOOperationType getOperationType(const std::string& text);
RAML_MOLevelScopeType getLevelScopeType(const std::string& text);
/// Logs text and result. A list of scopes such as `FM PM` is one text that is not known.
RAML_MOFuncScopeType getFuncScopeType(const std::string& text);
RAML_MOFilterType getFilterType(const std::string& text);
RAML_ListItemOperationType getListItemOperationType(const std::string& text);

/// Writes the text of "query", "create", "delete", "update", "action" and "auto", and nothing for all other values:
/// "subscribe" and "unsubscribe" are read but not written.
std::ostream& operator<<(std::ostream& stream, RAML_MOOperationType operation);

} // namespace RAML
