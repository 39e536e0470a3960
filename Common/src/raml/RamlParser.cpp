// SPDX-License-Identifier: MIT
#include "raml/RamlParser.hpp"

#include "AaSysLog.h"
#include "rad/ERadHwapi.h"
#include "raml/NamedValue.hpp"
#include "raml/NodeAttributes.hpp"
#include "raml/RamlFile.hpp"
#include "raml/dataclasses/RAML_ItemType.hpp"
#include "raml/dataclasses/RAML_ListParameterType.hpp"
#include "raml/dataclasses/RAML_ParameterType.hpp"

#include <array>
#include <cstring>
#include <utility>

namespace RAML {
namespace {

constexpr auto planTypes = std::to_array<NamedValue<RAML_PlanType>>(
    {{"actual", RAML_PLAN_ACTUAL}, {"plan", RAML_PLAN_CANDIDATE}, {"defaults", RAML_PLAN_DEFAULTS}});
static_assert(planTypes.size() == 3);

constexpr auto scopeTypes = std::to_array<NamedValue<RAML_ScopeType>>({{"selection", RAML_SCOPE_SELECTION},
                                                                       {"hierarchy", RAML_SCOPE_HIERARCHY},
                                                                       {"changes", RAML_SCOPE_CHANGES},
                                                                       {"all", RAML_SCOPE_ALL}});
static_assert(scopeTypes.size() == 4);

bool isSame(const char* text, const char* other)
{
    return std::strcmp(text, other) == 0;
}

AaGpuXmlNode* firstChildOf(const AaGpuXmlNode& node)
{
    return node.AaGpuXmlHasChildren() ? *node.AaGpuXmlGetFirstChildren() : nullptr;
}

/// How many of a node's children may become elements of a vector in the model.
std::size_t elementsIn(const AaGpuXmlNode& node)
{
    std::size_t count = 0;
    for (const AaGpuXmlNode* child = firstChildOf(node); child; child = child->AaGpuXmlGetNext()) {
        count += child->AaGpuXmlGetType() == AA_GPU_XML_ELEMENT_NODE ? 1 : 0;
    }
    return count;
}

/// A required attribute of a node; null, which is reported, when it is missing.
const char* requireAttribute(const AaGpuXmlNode& node, NodeAttributes& attributes, const char* name,
                             RAML_ParsingResult& result)
{
    const char* const value = attributes.find(name);
    if (!value) {
        result = RAML_SYNTAX_ERROR;
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML,
                       "Validation constraint violation: missing required attribute '%s' in element [%s].", name,
                       node.AaGpuXmlGetName());
    }
    return value;
}

} // namespace

RamlParser::RamlParser()
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "RamlParser::RamlParser");
}

RamlParser::~RamlParser()
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "RamlParser::~RamlParser");
}

RAML_Type::pointer RamlParser::parseRaml(const std::string& input, RAML_ParsingResult& result, bool inputIsFile)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "RamlParser::parseRaml");
    result = RAML_OK;
    RAML_Type::pointer document;
    load(input, result, inputIsFile);
    if (result != RAML_OK) {
        return document;
    }
    if (!mDocumentNode) {
        result = RAML_MALFORMED_XML;
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML,
                       "Could not load XML file. XML possibly corrupt. Please check the raml document and try "
                       "loading again!");
        return document;
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML,
                   "RamlParser::parseRaml: Start Parsing of a RAML document");
    if (!mDocumentNode->AaGpuXmlHasChildren()) {
        result = RAML_SYNTAX_ERROR;
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML, "RAML Document does not contain an XML document!");
    } else if (AaGpuXmlNode* const raml =
                   getNextSiblingNode(firstChildOf(*mDocumentNode), AA_GPU_XML_ELEMENT_NODE, "raml")) {
        document = RAML_Type::create();
        in_raml(raml, *document, result);
    } else {
        mCurrentElement = firstChildOf(*mDocumentNode);
        result = RAML_SYNTAX_ERROR;
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML,
                       "Validation constraint violation: missing required element [raml]");
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "RamlParser::parseRaml: End Parsing Raml document");
    return document;
}

void RamlParser::load(const std::string& input, RAML_ParsingResult& result, bool inputIsFile)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "RamlParser::load");
    mCurrentElement = nullptr;
    result = RAML_OK;
    std::string content;
    if (inputIsFile && !readFile(input, content)) {
        result = RAML_RESOURCE_LIMITATION;
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML, "Opening of RAML file failed");
    } else if (inputIsFile && content.empty()) {
        result = RAML_INVALID_FILE_FORMAT;
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML, "Empty file");
    }
    if (result != RAML_OK) {
        return;
    }
    mDocumentNode.reset(); // first, so that the two trees need no memory at the same time
    AaGpuXmlParser parser(0);
    mDocumentNode.reset(parser.AaGpuXmlParse(inputIsFile ? content : input, ""));
}

void RamlParser::in_raml(AaGpuXmlNode* node, RAML_Type& document, RAML_ParsingResult& result)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "RamlParser::in_raml");
    mCurrentElement = node;
    NodeAttributes attributes(node);
    const char* const version = attributes.find("version");
    if (!version) {
        result = RAML_SYNTAX_ERROR;
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML,
                       "Validation constraint violation: missing required attribute 'version' in element [ %s ].",
                       node->AaGpuXmlGetName());
    } else if (!isSame(version, "2.1") && !isSame(version, "2.1E")) {
        result = RAML_SYNTAX_ERROR;
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML,
                       "Validation constraint violation: RAML version mismatch.");
    }
    const char* const xmlns = requireAttribute(*node, attributes, "xmlns", result);
    if (result != RAML_OK) {
        return;
    }
    document.version = version;
    document.xmlns = xmlns;
    for (AaGpuXmlNode* child = firstElementIn(node); child; child = nextElement(child)) {
        if (!isSame(child->AaGpuXmlGetName(), "cmData")) {
            continue;
        }
        AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "cm data");
        const RAML_CMDataType::pointer cmData = RAML_CMDataType::create();
        in_cmData(child, cmData, result);
        document.cmDataList.push_back(cmData);
        AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "Created %d RamlMo instances",
                       static_cast<int>(cmData->managedObjects.size()));
    }
    mCurrentElement = node;
    if (document.cmDataList.empty()) {
        result = RAML_SYNTAX_ERROR;
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML,
                       "Validation constraint violation: missing required element [cmData]");
    }
}

void RamlParser::in_cmData(AaGpuXmlNode* node, const RAML_CMDataType::pointer& cmData, RAML_ParsingResult& result)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "RamlParser::in_cmData");
    in_cmDataAttributesOnly(node, cmData, result);
    if (result != RAML_OK) {
        return;
    }
    cmData->managedObjects.reserve(countElements(node, "managedObject"));
    for (AaGpuXmlNode* child = firstElementIn(node); child; child = nextElement(child)) {
        const char* const tag = child->AaGpuXmlGetName();
        if (isSame(tag, "header")) {
            in_header(child, cmData->header, result);
            if (result != RAML_OK) {
                break;
            }
        } else if (isSame(tag, "managedObject")) {
            RAML_ManagedObjectType::pointer mo = RAML_ManagedObjectType::create();
            in_mo(child, mo, result);
            if (result == RAML_OK) {
                cmData->managedObjects.push_back(std::move(mo));
            }
        } else {
            reportUnexpectedTag(node, child, result);
        }
    }
    mCurrentElement = node;
    if (cmData->managedObjects.empty()) {
        result = RAML_SYNTAX_ERROR;
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML,
                       "Validation constraint violation: missing required element [managedObject]");
    }
}

void RamlParser::in_cmDataAttributesOnly(AaGpuXmlNode* node, const RAML_CMDataType::pointer& cmData,
                                         RAML_ParsingResult& result)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "RamlParser::in_cmDataAttributesOnly");
    NodeAttributes attributes(node);
    const char* const type = requireAttribute(*node, attributes, "type", result);
    if (!type) {
        return;
    }
    const RAML_PlanType plan = getPlanType(type);
    if (plan == RAML_PLAN_NONE) {
        result = RAML_SYNTAX_ERROR;
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML,
                       "Validation constraint violation: Missing or invalid value for attribute 'type' in element [%s]",
                       node->AaGpuXmlGetName());
        return;
    }
    cmData->type = plan;
    const char* const scope = attributes.textOf("scope");
    cmData->domain = attributes.textOf("domain");
    const char* adaptationVersionMajor = attributes.find("adaptationVersionMajor");
    if (!adaptationVersionMajor) {
        adaptationVersionMajor = "";
        AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML,
                       "Mandatory attribute 'adaptationVersionMajor' missing. Defaulting to [%s]",
                       adaptationVersionMajor);
    }
    cmData->adaptationVersionMajor = adaptationVersionMajor;
    cmData->name = attributes.textOf("name");
    cmData->id = attributes.textOf("id");
    const RAML_ScopeType scopeType = getScopeType(scope);
    cmData->scope = scopeType == RAML_SCOPE_INVALID ? RAML_SCOPE_CHANGES : scopeType;
}

void RamlParser::in_header(AaGpuXmlNode* node, RAML_HeaderType& header, RAML_ParsingResult& result)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "RamlParser::in_header");
    for (AaGpuXmlNode* child = firstElementIn(node); child; child = nextElement(child)) {
        if (!isSame(child->AaGpuXmlGetName(), "log")) {
            reportUnexpectedTag(node, child, result);
            continue;
        }
        NodeAttributes attributes(child);
        const char* const dateTime = attributes.find("dateTime");
        const char* const action = dateTime ? attributes.find("action") : nullptr;
        if (!action) {
            result = RAML_SYNTAX_ERROR;
            AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML,
                           "Validation constraint violation: missing required attribute 'dateTime' and/or 'action' in "
                           "element [%s].",
                           child->AaGpuXmlGetName());
            return;
        }
        RAML_LogType& log = header.logs.emplace_back();
        log.dateTime = dateTime;
        log.action = action;
        log.user = attributes.textOf("user");
        log.appInfo = attributes.textOf("appInfo");
        log.text = child->AaGpuXmlGetValue();
        AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "%s: %8s (%s)  %s\n", log.dateTime.c_str(),
                       log.action.c_str(), log.user.c_str(), log.text.c_str());
    }
}

RAML_PlanType RamlParser::getPlanType(const std::string& text)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "RamlParser::getPlanType");
    return valueOf(text, planTypes, RAML_PLAN_NONE);
}

RAML_ScopeType RamlParser::getScopeType(const std::string& text)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "RamlParser::getScopeType");
    return valueOf(text, scopeTypes, RAML_SCOPE_INVALID);
}

void RamlParser::in_mo(AaGpuXmlNode* node, const RAML_ManagedObjectType::pointer& mo, RAML_ParsingResult& result)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "RamlParser::in_mo");
    if (!readMoAttributes(node, *mo, result)) {
        return;
    }
    mo->mParameters.reserve(elementsIn(*node));
    for (AaGpuXmlNode* child = firstElementIn(node); child; child = nextElement(child)) {
        const char* const tag = child->AaGpuXmlGetName();
        if (isSame(tag, "p")) {
            if (!readMoParameter(child, *mo, result)) {
                return;
            }
        } else if (isSame(tag, "list")) {
            in_list(child, mo, result);
            if (result != RAML_OK) {
                return;
            }
        } else if (isSame(tag, "defaults") || isSame(tag, "extension")) {
            AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "Optional tag '%s' ignored!", tag);
        } else {
            result = RAML_SYNTAX_ERROR;
            AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML,
                           "Validation constraint violation: tag name mismatch in element [%s]. Detected unexpected "
                           "tag [%s]",
                           tag, tag);
        }
    }
}

/// Reads a managed object's attributes. @return whether its children are to be read.
bool RamlParser::readMoAttributes(AaGpuXmlNode* node, RAML_ManagedObjectType& mo, RAML_ParsingResult& result)
{
    NodeAttributes attributes(node);
    const char* const className = requireAttribute(*node, attributes, "class", result);
    const char* const distName = className ? requireAttribute(*node, attributes, "distName", result) : nullptr;
    if (!distName) {
        return false;
    }
    mo.setClassName(className);
    mo.setDistName(distName);
    const char* const operation = attributes.textOf("operation");
    mo.setVersion(attributes.textOf("version"));
    mo.setId(attributes.textOf("id"));
    mo.setVendor(attributes.textOf("vendor"));
    mo.setTimeStamp(attributes.textOf("timeStamp"));
    mo.setName(attributes.textOf("name"));
    mo.setOperationName(attributes.textOf("actionName"));
    const char* const levelScope = attributes.textOf("levelScope");
    const char* const funcScope = attributes.textOf("funcScope");
    const char* const filter = attributes.textOf("filter");
    mo.setSequenceNo(attributes.textOf("sequenceNo"));
    mo.setOperation(operation);
    mo.setLevelScope(levelScope);
    mo.setFuncScope(funcScope);
    mo.setFilter(filter);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML,
                   "Raml2.1 attributes in MO: class [%s], operation [%s], distName [%s]", className, operation,
                   distName);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML,
                   "Raml2.1E attributes in MO: levelScope [%s], funcScope [%s], filter [%s], sequenceNo [%s]",
                   levelScope, funcScope, filter, mo.mSequenceNumber.c_str());
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML,
                   "Raml2.1E attributes in MO: levelScope [%d], funcScope [%d], filter [%d], sequenceNo [%s]",
                   mo.mLevelScope, mo.mFuncScope, mo.mFilter, mo.mSequenceNumber.c_str());
    if (mo.mOperation != RAML_OP_INVALID && mo.mOperation != RAML_OP_NONE) {
        return true;
    }
    result = RAML_SYNTAX_ERROR;
    AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML,
                   "MO of class '%s' with distName '%s' has incorrect operation type = '%s'", className, distName,
                   operation);
    return false;
}

/// Reads a simple parameter. @return whether the managed object's other children are to be read.
bool RamlParser::readMoParameter(AaGpuXmlNode* node, RAML_ManagedObjectType& mo, RAML_ParsingResult& result)
{
    const char* const name = NodeAttributes(node).textOf("name");
    if (*name == '\0') {
        result = RAML_SYNTAX_ERROR;
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML,
                       "Validation constraint violation: missing required attribute 'name' in element [%s]. Detected "
                       "in class [%s]",
                       node->AaGpuXmlGetName(), mo.mClassname.c_str());
        return false;
    }
    const char* const value = node->AaGpuXmlGetValue();
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "--p: '%s'    '%s'", name, value);
    mo.addMOparams(RAML_ParameterType::create(name, value));
    return true;
}

void RamlParser::in_list(AaGpuXmlNode* node, const RAML_ManagedObjectType::pointer& mo, RAML_ParsingResult& result)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "RamlParser::in_list");
    const RAML_ListType::pointer list = RAML_ListType::create();
    const char* const name = NodeAttributes(node).find("name");
    if (!name) {
        result = RAML_SYNTAX_ERROR;
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML,
                       "Validation constraint violation: missing required attribute 'name' in element [%s]",
                       node->AaGpuXmlGetName());
        return;
    }
    list->name = name;
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "--list: %s\n", name);
    list->listElements.reserve(elementsIn(*node));
    for (AaGpuXmlNode* child = firstElementIn(node); child; child = nextElement(child)) {
        const char* const tag = child->AaGpuXmlGetName();
        if (isSame(tag, "item")) {
            in_item(child, list, result);
            if (result != RAML_OK) {
                return;
            }
        } else if (isSame(tag, "p")) {
            if (!readListParameter(child, *list, result)) {
                return;
            }
        } else {
            result = RAML_SYNTAX_ERROR;
            AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML,
                           "Validation constraint violation: tag name mismatch in element [list]. Detected unexpected "
                           "tag [%s]",
                           tag);
            return;
        }
    }
    if (result == RAML_OK) {
        mo->addMOparams(list);
    }
}

/// Reads a bare value. @return whether the list's other children are to be read.
bool RamlParser::readListParameter(AaGpuXmlNode* node, RAML_ListType& list, RAML_ParsingResult& result)
{
    const char* const name = NodeAttributes(node).textOf("name");
    if (*name != '\0') {
        result = RAML_SYNTAX_ERROR;
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML,
                       "Validation constraint violation: prohibited attribute [%s] present in element [%s]", name,
                       node->AaGpuXmlGetName());
        return false;
    }
    RAML_ListParameterType::pointer element = RAML_ListParameterType::create();
    element->value = node->AaGpuXmlGetValue();
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "----p '%s'    '%s'", name, element->value.c_str());
    list.add(std::move(element));
    return true;
}

void RamlParser::in_item(AaGpuXmlNode* node, const RAML_ListType::pointer& list, RAML_ParsingResult& result)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "RamlParser::in_item");
    RAML_ItemType::pointer item = RAML_ItemType::create();
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "----item\n");
    const char* const operation = NodeAttributes(node).textOf("operation");
    item->setListItemOperation(operation);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "ListItem with attribute operation [%s]", operation);
    for (AaGpuXmlNode* child = firstElementIn(node); child; child = nextElement(child)) {
        const char* const tag = child->AaGpuXmlGetName();
        if (!isSame(tag, "p")) {
            result = RAML_SYNTAX_ERROR;
            AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML,
                           "Validation constraint violation: tag name mismatch in element [item]. Detected unexpected "
                           "tag [%s]",
                           tag);
            return;
        }
        const char* const name = NodeAttributes(child).textOf("name");
        const char* const value = child->AaGpuXmlGetValue();
        item->params.push_back({name, value});
        AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "------p: '%s'    '%s'", name, value);
    }
    list->add(std::move(item));
}

AaGpuXmlNode* RamlParser::getNextSiblingNode(AaGpuXmlNode* start, EAaGpuXmlNodeType type, const char* name)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "RamlParser::getNextSiblingNode");
    AaGpuXmlNode* node = start;
    while (node && (node->AaGpuXmlGetType() != type || (name && !isSame(node->AaGpuXmlGetName(), name)))) {
        node = node->AaGpuXmlGetNext();
    }
    return node;
}

AaGpuXmlNode* RamlParser::firstElementIn(const AaGpuXmlNode* parent)
{
    AaGpuXmlNode* const element = getNextSiblingNode(firstChildOf(*parent), AA_GPU_XML_ELEMENT_NODE, nullptr);
    mCurrentElement = element;
    return element;
}

AaGpuXmlNode* RamlParser::nextElement(const AaGpuXmlNode* element)
{
    AaGpuXmlNode* const next = getNextSiblingNode(element->AaGpuXmlGetNext(), AA_GPU_XML_ELEMENT_NODE, nullptr);
    mCurrentElement = next;
    return next;
}

std::size_t RamlParser::countElements(const AaGpuXmlNode* parent, const char* name)
{
    std::size_t count = 0;
    for (const AaGpuXmlNode* element = firstElementIn(parent); element; element = nextElement(element)) {
        count += isSame(element->AaGpuXmlGetName(), name) ? 1 : 0;
    }
    return count;
}

TBoolean RamlParser::GetAttributeValue(AaGpuXmlNode* node, const std::string& attributeName, std::string& value)
{
    const char* const found = NodeAttributes(node).find(attributeName);
    if (!found) {
        return 0;
    }
    value = found;
    return 1;
}

void RamlParser::reportUnexpectedTag(const AaGpuXmlNode* parent, const AaGpuXmlNode* child, RAML_ParsingResult& result)
{
    result = RAML_SYNTAX_ERROR;
    AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML,
                   "Validation constraint violation: tag name mismatch in element [%s]. Detected unexpected tag '%s'.",
                   parent->AaGpuXmlGetName(), child->AaGpuXmlGetName());
}

} // namespace RAML
