// SPDX-License-Identifier: MIT
#include "raml/RamlFields.hpp"

#include "text/Values.hpp"

#include <array>

namespace dorn::tool {
namespace {

using namespace RAML;

/// A value's name is its place in a table; what is beyond it has none.
template <std::size_t count>
std::string_view nameIn(const std::array<std::string_view, count>& names, int value)
{
    return value >= 0 && static_cast<std::size_t>(value) < count ? names[static_cast<std::size_t>(value)]
                                                                 : std::string_view("(invalid)");
}

constexpr std::array<std::string_view, 5> resultNames{"RAML_OK", "RAML_MALFORMED_XML", "RAML_INVALID_FILE_FORMAT",
                                                      "RAML_SYNTAX_ERROR", "RAML_RESOURCE_LIMITATION"};
static_assert(resultNames.size() == RAML_RESOURCE_LIMITATION + 1);

constexpr std::array<std::string_view, 9> operationNames{"query",     "create",      "delete", "update", "action",
                                                         "subscribe", "unsubscribe", "auto",   ""};
static_assert(operationNames.size() == RAML_OP_NONE + 1);

constexpr std::array<std::string_view, 3> levelScopeNames{"", "wholeSubtree", "firstLevelOnly"};
static_assert(levelScopeNames.size() == RAML_LSCOPE_INVALID);

constexpr std::array<std::string_view, 3> filterNames{"", "CM", "PM"};
static_assert(filterNames.size() == RAML_FILTER_INVALID);

constexpr std::array<std::string_view, 3> itemOperationNames{"", "create", "delete"};
static_assert(itemOperationNames.size() == RAML_LIST_ITEM_OP_INVALID);

/// A scope's value does not lead back to one name.
std::string funcScopeText(RAML_MOFuncScopeType scope)
{
    constexpr int digits = 8;
    return scope == RAML_FSCOPE_NONE ? std::string() : hexNumber(static_cast<std::uint32_t>(scope), digits);
}

void add(RamlFields& fields, std::string_view name, std::string_view text, bool isWritten)
{
    if (!text.empty()) {
        fields.push_back({name, std::string(text), isWritten});
    }
}

} // namespace

RamlFields fieldsOf(const RAML_Type& document)
{
    RamlFields fields;
    add(fields, "version", document.version, true);
    add(fields, "xmlns", document.xmlns, true);
    return fields;
}

RamlFields fieldsOf(const RAML_CMDataType& block)
{
    RamlFields fields;
    add(fields, "id", block.id, true);
    add(fields, "type", block.toString(block.type), true);
    add(fields, "scope", block.toString(block.scope), true);
    add(fields, "domain", block.domain, true);
    add(fields, "adaptationVersionMajor", block.adaptationVersionMajor, true);
    add(fields, "name", block.name, false);
    return fields;
}

RamlFields fieldsOf(const RAML_LogType& log)
{
    RamlFields fields;
    add(fields, "dateTime", log.dateTime, true);
    add(fields, "action", log.action, true);
    add(fields, "user", log.user, true);
    add(fields, "appInfo", log.appInfo, false);
    return fields;
}

RamlFields fieldsOf(const RAML_ManagedObjectType& object)
{
    RamlFields fields;
    add(fields, "operation", nameOf(object.mOperation), true);
    add(fields, "version", object.mVersion, true);
    add(fields, "id", object.mId, false);
    add(fields, "name", object.mName, false);
    add(fields, "vendor", object.mVendor, false);
    add(fields, "timeStamp", object.mTimeStamp, false);
    add(fields, "actionName", object.mOperationName, false);
    add(fields, "levelScope", nameIn(levelScopeNames, object.mLevelScope), false);
    add(fields, "funcScope", funcScopeText(object.mFuncScope), false);
    add(fields, "filter", nameIn(filterNames, object.mFilter), false);
    add(fields, "sequenceNo", object.mSequenceNumber, false);
    return fields;
}

RamlFields fieldsOf(const RAML_ItemType& item)
{
    RamlFields fields;
    add(fields, "operation", nameIn(itemOperationNames, item.mListItemOperation), false);
    return fields;
}

std::string_view nameOf(RAML_ParsingResult result)
{
    return nameIn(resultNames, result);
}

std::string_view nameOf(RAML_MOOperationType operation)
{
    return nameIn(operationNames, operation);
}

} // namespace dorn::tool
