// SPDX-License-Identifier: MIT
#include "ModelText.hpp"

#include "raml/dataclasses/RAML_ItemType.hpp"
#include "raml/dataclasses/RAML_ListParameterType.hpp"
#include "raml/dataclasses/RAML_ListType.hpp"
#include "raml/dataclasses/RAML_ParameterType.hpp"

#include <array>
#include <initializer_list>

namespace dorn::test {
namespace {

using namespace RAML;

std::string joined(std::initializer_list<std::string> texts)
{
    std::string all;
    for (const std::string& text : texts) {
        all += (&text == texts.begin() ? "" : ",") + text;
    }
    return all;
}

/// Puts a blank in front of all but the first part.
void append(std::string& to, const std::string& part)
{
    to += (to.empty() ? "" : " ") + part;
}

std::string elementText(const RAML_ListElementType& element)
{
    if (const auto* const bare = dynamic_cast<const RAML_ListParameterType*>(&element)) {
        return bare->value;
    }
    constexpr std::array operations{"", "create", "delete", "?"};
    const auto& item = dynamic_cast<const RAML_ItemType&>(element);
    std::string parameters;
    for (const RAML_ItemParameterType& parameter : item.params) {
        append(parameters, parameter.name + "=" + parameter.value);
    }
    return operations.at(static_cast<std::size_t>(item.mListItemOperation)) + ("{" + parameters + "}");
}

std::string parameterText(const RAML_MOParameterType& parameter)
{
    if (const auto* const simple = dynamic_cast<const RAML_ParameterType*>(&parameter)) {
        return simple->name + "=" + simple->value;
    }
    std::string elements;
    for (const RAML_ListElementType::pointer& element : dynamic_cast<const RAML_ListType&>(parameter).listElements) {
        append(elements, elementText(*element));
    }
    return parameter.name + "[" + elements + "]";
}

std::string parametersText(const RAML_ManagedObjectType& mo)
{
    std::string parameters;
    for (const RAML_MOParameterType::pointer& parameter : mo.mParameters) {
        append(parameters, parameterText(*parameter));
    }
    return "(" + parameters + ")";
}

std::string otherTextsOf(const RAML_ManagedObjectType& mo)
{
    return "<" +
           joined({std::to_string(mo.mOperation), mo.mVersion, mo.mOperationName, mo.mId, mo.mName, mo.mVendor,
                   mo.mTimeStamp, std::to_string(mo.mLevelScope), std::to_string(mo.mFuncScope),
                   std::to_string(mo.mFilter), mo.mSequenceNumber}) +
           ">";
}

std::string blockText(const RAML_CMDataType& cmData, bool isWhole)
{
    std::string text = "cmData(" + cmData.toString(cmData.type) + "," + cmData.toString(cmData.scope) + ")";
    if (isWhole) {
        text += "<" + joined({cmData.name, cmData.id, cmData.domain, cmData.adaptationVersionMajor}) + ">";
    }
    for (const RAML_LogType& log : cmData.header.logs) {
        append(text, "log(" + joined({log.dateTime, log.action, log.user, log.appInfo, log.text}) + ")");
    }
    for (const RAML_ManagedObjectType::pointer& mo : cmData.managedObjects) {
        append(text, mo->mClassname + ":" + mo->mDistName + (isWhole ? otherTextsOf(*mo) : "") + parametersText(*mo));
    }
    return text;
}

std::string documentText(const RAML_Type::pointer& document, bool isWhole)
{
    if (!document) {
        return "none";
    }
    std::string text = "raml(" + document->version + "," + document->xmlns + ")";
    for (const RAML_CMDataType::pointer& cmData : document->cmDataList) {
        append(text, blockText(*cmData, isWhole));
    }
    return text;
}

} // namespace

std::string structureOf(const RAML_Type::pointer& document)
{
    return documentText(document, false);
}

std::string textOf(const RAML_Type::pointer& document)
{
    return documentText(document, true);
}

} // namespace dorn::test
