// SPDX-License-Identifier: MIT
#include "raml/RamlTree.hpp"

#include "raml/RamlFields.hpp"
#include "raml/dataclasses/RAML_ListParameterType.hpp"
#include "raml/dataclasses/RAML_ListType.hpp"
#include "raml/dataclasses/RAML_ParameterType.hpp"
#include "text/Utf8.hpp"
#include "text/Values.hpp"

namespace dorn::tool {
namespace {

using namespace RAML;

/// A value on one line.
std::string shownValue(const std::string& value)
{
    constexpr std::size_t greatest = 200;
    if (value.size() <= greatest) {
        return printable(value);
    }
    std::size_t end = greatest;
    while (isInsideCharacter(value[end]) && end > greatest - 3) {
        --end; // not in the middle of a character
    }
    return printable(value.substr(0, end)) + "... (" + std::to_string(value.size()) + " bytes)";
}

class TreePrinter {
public:
    explicit TreePrinter(Console& console) : m_console(console) {}

    void printRoot(const std::string& text) { m_console.print(text + "\n"); }
    void print(const RAML_CMDataType& block, bool isLast)
    {
        const std::size_t logs = block.header.logs.size();
        std::size_t left = logs + block.managedObjects.size();
        branch("cmData" + fieldsText(fieldsOf(block)), isLast);
        for (const RAML_LogType& log : block.header.logs) {
            const std::string text = log.text.empty() ? "" : ": " + shownValue(log.text);
            leaf("log" + fieldsText(fieldsOf(log)) + text, --left == 0);
        }
        for (const RAML_ManagedObjectType::pointer& object : block.managedObjects) {
            branch(titleOf(*object), --left == 0);
            printParameters(*object);
            end();
        }
        end();
    }
    void printParameters(const RAML_ManagedObjectType& object)
    {
        std::size_t left = object.mParameters.size();
        for (const RAML_MOParameterType::pointer& parameter : object.mParameters) {
            --left;
            if (const auto* const list = dynamic_cast<const RAML_ListType*>(parameter.get())) {
                branch(printable(list->name) + " (" + std::to_string(list->listElements.size()) + ")", left == 0);
                printElements(*list);
                end();
            } else if (const auto* const simple = dynamic_cast<const RAML_ParameterType*>(parameter.get())) {
                leaf(printable(simple->name) + " = " + shownValue(simple->value), left == 0);
            }
        }
    }
    std::string titleOf(const RAML_ManagedObjectType& object) const
    {
        return printable(object.mClassname) + " " + m_console.paint(Colour::Green, printable(object.mDistName)) +
               fieldsText(fieldsOf(object));
    }
    std::string fieldsText(const RamlFields& fields) const
    {
        std::string text;
        for (const RamlField& field : fields) {
            text += " " + std::string(field.name) + "=" + printable(field.text);
        }
        return text.empty() ? text : " " + m_console.paint(Colour::Faint, text);
    }

private:
    void printElements(const RAML_ListType& list)
    {
        std::size_t left = list.listElements.size();
        for (const RAML_ListElementType::pointer& element : list.listElements) {
            --left;
            if (const auto* const value = dynamic_cast<const RAML_ListParameterType*>(element.get())) {
                leaf("= " + shownValue(value->value), left == 0);
            } else if (const auto* const item = dynamic_cast<const RAML_ItemType*>(element.get())) {
                branch("item" + fieldsText(fieldsOf(*item)), left == 0);
                printItem(*item);
                end();
            }
        }
    }
    void printItem(const RAML_ItemType& item)
    {
        std::size_t left = item.params.size();
        for (const RAML_ItemParameterType& parameter : item.params) {
            leaf(printable(parameter.name) + " = " + shownValue(parameter.value), --left == 0);
        }
    }

    void leaf(const std::string& text, bool isLast)
    {
        m_console.print(m_console.paint(Colour::Faint, m_prefix + (isLast ? "└─ " : "├─ ")) + text + "\n");
    }
    /// Begins what stands below @p text; end() ends it.
    void branch(const std::string& text, bool isLast)
    {
        leaf(text, isLast);
        m_lengths.push_back(m_prefix.size());
        m_prefix += isLast ? "   " : "│  ";
    }
    void end()
    {
        m_prefix.resize(m_lengths.back());
        m_lengths.pop_back();
    }

    Console& m_console;
    std::string m_prefix;
    std::vector<std::size_t> m_lengths;
};

void addFields(Json& json, const RamlFields& fields)
{
    for (const RamlField& field : fields) {
        json[std::string(field.name)] = field.text;
    }
}

Json nameAndValue(const std::string& name, const std::string& value)
{
    return {{"name", name}, {"value", value}};
}

Json elementJson(const RAML_ListElementType& element)
{
    if (const auto* const value = dynamic_cast<const RAML_ListParameterType*>(&element)) {
        return value->value;
    }
    Json json = Json::object();
    if (const auto* const item = dynamic_cast<const RAML_ItemType*>(&element)) {
        addFields(json, fieldsOf(*item));
        json["parameters"] = Json::array();
        for (const RAML_ItemParameterType& parameter : item->params) {
            json["parameters"].push_back(nameAndValue(parameter.name, parameter.value));
        }
    }
    return json;
}

Json blockJson(const RAML_CMDataType& block)
{
    Json json = Json::object();
    addFields(json, fieldsOf(block));
    json["logs"] = Json::array();
    for (const RAML_LogType& log : block.header.logs) {
        Json entry = Json::object();
        addFields(entry, fieldsOf(log));
        entry["text"] = log.text;
        json["logs"].push_back(std::move(entry));
    }
    json["managedObjects"] = Json::array();
    for (const RAML_ManagedObjectType::pointer& object : block.managedObjects) {
        json["managedObjects"].push_back(ramlJson(*object));
    }
    return json;
}

} // namespace

void printRamlTree(const std::string& title, const RAML_Type& document, Console& console)
{
    TreePrinter printer(console);
    printer.printRoot(title + printer.fieldsText(fieldsOf(document)));
    std::size_t left = document.cmDataList.size();
    for (const RAML_CMDataType::pointer& block : document.cmDataList) {
        printer.print(*block, --left == 0);
    }
}

void printRamlTree(const RAML_ManagedObjectType& object, Console& console)
{
    TreePrinter printer(console);
    printer.printRoot(printer.titleOf(object));
    printer.printParameters(object);
}

Json ramlJson(const RAML_Type& document)
{
    Json json = Json::object();
    addFields(json, fieldsOf(document));
    json["blocks"] = Json::array();
    for (const RAML_CMDataType::pointer& block : document.cmDataList) {
        json["blocks"].push_back(blockJson(*block));
    }
    return json;
}

Json ramlJson(const RAML_ManagedObjectType& object)
{
    Json json{{"class", object.mClassname}, {"distName", object.mDistName}};
    addFields(json, fieldsOf(object));
    json["parameters"] = Json::array();
    for (const RAML_MOParameterType::pointer& parameter : object.mParameters) {
        json["parameters"].push_back(ramlJson(*parameter));
    }
    return json;
}

Json ramlJson(const RAML_MOParameterType& parameter)
{
    if (const auto* const simple = dynamic_cast<const RAML_ParameterType*>(&parameter)) {
        return nameAndValue(simple->name, simple->value);
    }
    Json json{{"name", parameter.name}, {"list", Json::array()}};
    if (const auto* const list = dynamic_cast<const RAML_ListType*>(&parameter)) {
        for (const RAML_ListElementType::pointer& element : list->listElements) {
            json["list"].push_back(elementJson(*element));
        }
    }
    return json;
}

} // namespace dorn::tool
