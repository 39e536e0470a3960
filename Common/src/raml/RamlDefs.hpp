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
    RAML_OK = 0,                  ///< nothing: the model is the whole document
    RAML_MALFORMED_XML = 1,       ///< the text is not well-formed XML
    RAML_INVALID_FILE_FORMAT = 2, ///< the file is empty
    RAML_SYNTAX_ERROR = 3,        ///< XML, but against the rules of RAML
    RAML_RESOURCE_LIMITATION = 4  ///< the file cannot be read
};

/// Which plan a block of configuration data belongs to: "actual", "plan" (the candidate), "defaults".
enum RAML_PlanType : std::int32_t {
    RAML_PLAN_ACTUAL = 0,    ///< "actual": as the unit is configured now
    RAML_PLAN_CANDIDATE = 1, ///< "plan": as it is to be configured
    RAML_PLAN_DEFAULTS = 2,  ///< "defaults": values where nothing else is said
    RAML_PLAN_NONE = 3       ///< the document does not say
};

/// How much of the configuration a block holds.
enum RAML_ScopeType : std::int32_t {
    RAML_SCOPE_ALL = 0,       ///< "all": everything
    RAML_SCOPE_HIERARCHY = 1, ///< "hierarchy": some subtrees, whole
    RAML_SCOPE_CHANGES = 2,   ///< "changes": only what differs
    RAML_SCOPE_SELECTION = 3, ///< "selection": some objects
    RAML_SCOPE_NONE = 4,      ///< the document does not say
    RAML_SCOPE_INVALID = 5    ///< the document says something else
};

/// What is to be done with a managed object.
enum RAML_MOOperationType : std::int32_t {
    RAML_OP_QUERY = 0,       ///< "query": tell what is there
    RAML_OP_CREATE = 1,      ///< "create": make the object
    RAML_OP_DELETE = 2,      ///< "delete": remove the object
    RAML_OP_UPDATE = 3,      ///< "update": change its parameters
    RAML_OP_ACTION = 4,      ///< "action": do what `actionName` says
    RAML_OP_SUBSCRIBE = 5,   ///< "subscribe": tell of changes from now on, read only
    RAML_OP_UNSUBSCRIBE = 6, ///< "unsubscribe": no longer, read only
    RAML_OP_AUTO = 7,        ///< "auto": make it or change it
    RAML_OP_NONE = 8,        ///< the document does not say
    RAML_OP_INVALID = 9      ///< the document says something else
};

/// How far below a managed object an operation reaches.
enum RAML_MOLevelScopeType : std::int32_t {
    RAML_LSCOPE_NONE = 0,             ///< the document does not say
    RAML_LSCOPE_WHOLE_SUBTREE = 1,    ///< "wholeSubtree": all levels
    RAML_LSCOPE_FIRST_LEVEL_ONLY = 2, ///< "firstLevelOnly": one level
    RAML_LSCOPE_INVALID = 3           ///< the document says something else
};

/// The function that an operation is limited to. The values are bits, so that callers may combine them; a document
/// names one. Some members share a value, and RAML_FSCOPE_SDH_TP has none of its own: a value does not always lead back
/// to one name.
enum RAML_MOFuncScopeType : std::int32_t {
    RAML_FSCOPE_NONE = 0,                                          ///< the document does not say
    RAML_FSCOPE_TWAMP = 1,                                         ///< "TWAMP"
    RAML_FSCOPE_FM = 2,                                            ///< "FM"
    RAML_FSCOPE_PM = 4,                                            ///< "PM"
    RAML_FSCOPE_LICM = 8,                                          ///< "LICM"
    RAML_FSCOPE_SW = 16,                                           ///< "SW"
    RAML_FSCOPE_HW = 32,                                           ///< "HW"
    RAML_FSCOPE_ATM_CC = 64,                                       ///< "ATM_CC"
    RAML_FSCOPE_ATM_TP = 128,                                      ///< "ATM_TP"
    RAML_FSCOPE_ATM_IMA = 256,                                     ///< "ATM_IMA"
    RAML_FSCOPE_TOP = 256,                                         ///< "TOP"
    RAML_FSCOPE_RSTP = 512,                                        ///< "RSTP"
    RAML_FSCOPE_PDH_TP = 512,                                      ///< "PDH_TP"
    RAML_FSCOPE_SDH_TP = 0,                                        ///< "SDH_TP"
    RAML_FSCOPE_OSPF = 1024,                                       ///< "OSPF"
    RAML_FSCOPE_AAM = 2048,                                        ///< "AAM"
    RAML_FSCOPE_IP = 4096,                                         ///< "IP"
    RAML_FSCOPE_SYNC = 8192,                                       ///< "SYNC"
    RAML_FSCOPE_SRCK = 16384,                                      ///< "SRCK"
    RAML_FSCOPE_SEC = 32768,                                       ///< "SEC"
    RAML_FSCOPE_LOCAL_SEC = 65536,                                 ///< "LOCAL_SEC"
    RAML_FSCOPE_FRACTIONAL = 131072,                               ///< "FRACTIONAL"
    RAML_FSCOPE_CES = 262144,                                      ///< "CES"
    RAML_FSCOPE_ETHERNET = 524288,                                 ///< "ETHERNET"
    RAML_FSCOPE_ATM_OVER_ETHERNET = 1048576,                       ///< "ATM_OVER_ETHERNET"
    RAML_FSCOPE_CERT = 2097152,                                    ///< "CERT"
    RAML_FSCOPE_IP_SEC = 4194304,                                  ///< "IP_SEC"
    RAML_FSCOPE_PPP = 8388608,                                     ///< "PPP"
    RAML_FSCOPE_QOS = 16777216,                                    ///< "QOS"
    RAML_FSCOPE_PMTNL = 33554432,                                  ///< "PMTNL"
    RAML_FSCOPE_ETHIF = 67108864,                                  ///< "ETHIF"
    RAML_FSCOPE_ETH_SWITCH = 134217728,                            ///< "ETH_SWITCH"
    RAML_FSCOPE_ETH_SERVICE_OAM = 268435456,                       ///< "ETH_SERVICE_OAM"
    RAML_FSCOPE_ETH_LINK_OAM = 536870912,                          ///< "ETH_LINK_OAM"
    RAML_FSCOPE_PDH_IF = 1073741824,                               ///< "PDH_IF"
    RAML_FSCOPE_INVALID = std::numeric_limits<std::int32_t>::min() ///< the document says something else
};

/// Which kind of data an operation is limited to: "CM" configuration, "PM" performance management.
enum RAML_MOFilterType : std::int32_t {
    RAML_FILTER_NONE = 0,   ///< the document does not say
    RAML_FILTER_CM = 1,     ///< "CM": configuration
    RAML_FILTER_PM = 2,     ///< "PM": performance management
    RAML_FILTER_INVALID = 3 ///< the document says something else
};

/// What is to be done with an item of a list.
enum RAML_ListItemOperationType : std::int32_t {
    RAML_LIST_ITEM_OP_NONE = 0,   ///< the document does not say
    RAML_LIST_ITEM_OP_CREATE = 1, ///< "create": add the item
    RAML_LIST_ITEM_OP_DELETE = 2, ///< "delete": remove the item
    RAML_LIST_ITEM_OP_INVALID = 3 ///< the document says something else
};

/// Kind of a parameter of a managed object (list, simple value) or of an element of a list (bare value, item).
enum RAML_ParamType : std::int32_t {
    RAML_LIST = 0,   ///< a list
    RAML_LIST_P = 1, ///< a bare value inside a list
    RAML_P = 2,      ///< a simple value
    RAML_ITEM = 3    ///< an item inside a list
};

/// Rank of each class of managed objects that is valid; objects of a lesser rank come first. Supplied by the caller.
using TmlMoHierarchyMap = std::map<std::string, int>;

/// @{
/// What attribute `operation` or `levelScope` says: the NONE member for an empty text, the INVALID member for an
/// unknown one.
RAML_MOOperationType getOperationType(const std::string& text);
RAML_MOLevelScopeType getLevelScopeType(const std::string& text);
/// @}

/// Logs text and result. A list of scopes such as `FM PM` is one text that is not known.
RAML_MOFuncScopeType getFuncScopeType(const std::string& text);
/// @{
/// What attribute `filter` of an object or `operation` of a list item says: the NONE member for an empty text, the
/// INVALID member for an unknown one.
RAML_MOFilterType getFilterType(const std::string& text);
RAML_ListItemOperationType getListItemOperationType(const std::string& text);
/// @}

/// Writes the text of "query", "create", "delete", "update", "action" and "auto", and nothing for all other values:
/// "subscribe" and "unsubscribe" are read but not written.
std::ostream& operator<<(std::ostream& stream, RAML_MOOperationType operation);

} // namespace RAML
