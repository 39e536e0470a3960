// SPDX-License-Identifier: MIT
#include "raml/RAML_ostream.hpp"

#include "AaSysLog.h"
#include "rad/ERadHwapi.h"
#include "raml/dataclasses/RAML_ItemType.hpp"
#include "raml/dataclasses/RAML_ListParameterType.hpp"
#include "raml/dataclasses/RAML_ListType.hpp"
#include "raml/dataclasses/RAML_ParameterType.hpp"

#include <array>
#include <ostream>
#include <string_view>

namespace RAML {
namespace {

struct Escape {
    char character;
    std::string_view text;
};
/// The one that comes first is replaced, and nothing else.
constexpr auto escapes =
    std::to_array<Escape>({{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"}});
static_assert(escapes.size() == 5);

void write(std::ostream& stream, const RAML_ListParameterType& element)
{
    if (!element.value.empty()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "value = %s", element.value.c_str());
    }
    stream << "        <p>" << element.value << "</p>" << std::endl;
}

void write(std::ostream& stream, const RAML_ItemType& item)
{
    stream << "        <item>" << std::endl;
    for (const RAML_ItemParameterType& parameter : item.params) {
        if (!parameter.name.empty() && !parameter.value.empty()) {
            AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "name=%s; value=%s", parameter.name.c_str(),
                           parameter.value.c_str());
        }
        stream << "          <p name=\"" << parameter.name << "\">" << parameter.value << "</p>" << std::endl;
    }
    stream << "        </item>" << std::endl;
}

void write(std::ostream& stream, const RAML_ListElementType& element)
{
    if (element.type == RAML_LIST_P) {
        if (const auto* const bare = dynamic_cast<const RAML_ListParameterType*>(&element)) {
            write(stream, *bare);
        }
    } else if (element.type == RAML_ITEM) {
        if (const auto* const item = dynamic_cast<const RAML_ItemType*>(&element)) {
            write(stream, *item);
        }
    }
}

void write(std::ostream& stream, const RAML_ListType& list)
{
    if (!list.name.empty()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "ListName = %s", list.name.c_str());
    }
    stream << "      <list name=\"" << list.name << "\">" << std::endl;
    for (const RAML_ListElementType::pointer& element : list.listElements) {
        if (element) {
            write(stream, *element);
        }
    }
    stream << "      </list>";
}

void write(std::ostream& stream, const RAML_ParameterType& parameter)
{
    stream << "      <p name=\"" << parameter.name << "\">" << handleXmlCharacters(parameter.value) << "</p>";
}

} // namespace

std::ostream& operator<<(std::ostream& stream, const RAML_Type& document)
{
    stream << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>" << std::endl;
    stream << "<raml version=\"" << document.version << "\" xmlns=\"" << document.xmlns << "\">" << std::endl;
    for (const RAML_CMDataType::pointer& cmData : document.cmDataList) {
        if (cmData) {
            stream << *cmData << std::endl;
        }
    }
    return stream << "</raml>" << std::endl;
}

std::ostream& operator<<(std::ostream& stream, const RAML_CMDataType& cmData)
{
    stream << "  <cmData id=\"" << cmData.id << "\" type=\"" << cmData.toString(cmData.type) << "\" scope=\""
           << cmData.toString(cmData.scope) << "\" domain=\"" << cmData.domain << "\" adaptationVersionMajor=\""
           << cmData.adaptationVersionMajor << "\" >" << std::endl;
    stream << cmData.header << std::endl;
    for (const RAML_ManagedObjectType::pointer& mo : cmData.managedObjects) {
        if (mo) {
            stream << mo << std::endl;
        }
    }
    return stream << "  </cmData>" << std::endl;
}

std::ostream& operator<<(std::ostream& stream, const RAML_HeaderType& header)
{
    stream << "    <header>" << std::endl;
    for (const RAML_LogType& log : header.logs) {
        stream << log << std::endl;
    }
    return stream << "    </header>" << std::endl;
}

std::ostream& operator<<(std::ostream& stream, const RAML_LogType& log)
{
    return stream << "      <log dateTime=\"" << log.dateTime << "\" action=\"" << log.action << "\" user=\""
                  << log.user << "\" >" << log.text << "</log>";
}

std::ostream& operator<<(std::ostream& stream, const RAML_ManagedObjectType::pointer& mo)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "Serializing RAML::RAML_ManagedObjectType %s %s %s",
                   mo->mClassname.c_str(), mo->toString(mo->mOperation).c_str(), mo->mDistName.c_str());
    stream << "    <managedObject class=\"" << mo->mClassname << "\" ";
    if (mo->mOperation != RAML_OP_NONE) {
        stream << "operation=\"" << mo->mOperation << "\"";
    }
    stream << " distName=\"" << mo->mDistName << "\" version=\"" << mo->mVersion << "\">" << std::endl;
    for (const RAML_MOParameterType::pointer& parameter : mo->mParameters) {
        stream << *parameter << std::endl;
    }
    return stream << "    </managedObject>" << std::endl;
}

std::ostream& operator<<(std::ostream& stream, const RAML_MOParameterType& parameter)
{
    if (parameter.type == RAML_P) {
        if (const auto* const simple = dynamic_cast<const RAML_ParameterType*>(&parameter)) {
            write(stream, *simple);
        }
    } else if (parameter.type == RAML_LIST) {
        if (const auto* const list = dynamic_cast<const RAML_ListType*>(&parameter)) {
            write(stream, *list);
        }
    }
    return stream;
}

std::string handleXmlCharacters(const std::string& text)
{
    std::string result = text;
    for (const Escape& escape : escapes) {
        const std::size_t at = result.find(escape.character);
        if (at != std::string::npos) {
            return result.replace(at, 1, escape.text);
        }
    }
    return result;
}

} // namespace RAML
