// SPDX-License-Identifier: MIT
#include "raml/RamlStats.hpp"

#include "raml/RamlFields.hpp"
#include "raml/dataclasses/RAML_ListParameterType.hpp"
#include "raml/dataclasses/RAML_ListType.hpp"
#include "raml/dataclasses/RAML_ParameterType.hpp"
#include "text/Table.hpp"
#include "text/Values.hpp"

#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace dorn::tool {
namespace {

using namespace RAML;

/// A number of RamlClassStats, under its heading and its name in JSON.
struct Column {
    const char* heading;
    const char* name;
    std::uint64_t RamlClassStats::*number;
};
constexpr std::array<Column, 6> columns{{
    {"OBJECTS", "objects", &RamlClassStats::objects},
    {"PARAMETERS", "parameters", &RamlClassStats::parameters},
    {"LISTS", "lists", &RamlClassStats::lists},
    {"ELEMENTS", "elements", &RamlClassStats::elements},
    {"VALUE BYTES", "valueBytes", &RamlClassStats::valueBytes},
    {"LONGEST", "greatestValue", &RamlClassStats::greatestValue},
}};

void addValue(RamlClassStats& stats, const std::string& value)
{
    stats.valueBytes += value.size();
    stats.greatestValue = std::max<std::uint64_t>(stats.greatestValue, value.size());
}

void addElement(RamlClassStats& stats, const RAML_ListElementType& element)
{
    ++stats.elements;
    if (const auto* const value = dynamic_cast<const RAML_ListParameterType*>(&element)) {
        addValue(stats, value->value);
    } else if (const auto* const item = dynamic_cast<const RAML_ItemType*>(&element)) {
        for (const RAML_ItemParameterType& parameter : item->params) {
            addValue(stats, parameter.value);
        }
    }
}

void addObject(RamlClassStats& stats, const RAML_ManagedObjectType& object)
{
    ++stats.objects;
    for (const RAML_MOParameterType::pointer& parameter : object.mParameters) {
        if (const auto* const simple = dynamic_cast<const RAML_ParameterType*>(parameter.get())) {
            ++stats.parameters;
            addValue(stats, simple->value);
        } else if (const auto* const list = dynamic_cast<const RAML_ListType*>(parameter.get())) {
            ++stats.lists;
            for (const RAML_ListElementType::pointer& element : list->listElements) {
                addElement(stats, *element);
            }
        }
    }
}

void addClass(RamlClassStats& all, const RamlClassStats& one)
{
    for (const Column& column : columns) {
        if (column.number != &RamlClassStats::greatestValue) {
            all.*column.number += one.*column.number;
        }
    }
    all.greatestValue = std::max(all.greatestValue, one.greatestValue);
}

/// "3 create, 1 delete"
std::string operationsText(const RamlStats& stats)
{
    std::string text;
    for (std::size_t operation = 0; operation < stats.operations.size(); ++operation) {
        if (const std::uint64_t count = stats.operations[operation]) {
            text += (text.empty() ? "" : ", ") + std::to_string(count) + " " +
                    std::string(nameOf(static_cast<RAML_MOOperationType>(operation)));
        }
    }
    return text;
}

std::vector<Cell> rowOf(const std::string& name, const RamlClassStats& stats)
{
    std::vector<Cell> row{name};
    for (const Column& column : columns) {
        row.emplace_back(std::to_string(stats.*column.number));
    }
    return row;
}

Json classJson(const RamlClassStats& stats)
{
    Json json = Json::object();
    for (const Column& column : columns) {
        json[column.name] = stats.*column.number;
    }
    return json;
}

} // namespace

RamlStats ramlStats(const RAML_Type& document, std::uint64_t bytes)
{
    RamlStats stats;
    stats.bytes = bytes;
    std::unordered_set<std::string_view> names;
    for (const RAML_CMDataType::pointer& block : document.cmDataList) {
        ++stats.blocks;
        stats.logs += block->header.logs.size();
        for (const RAML_ManagedObjectType::pointer& object : block->managedObjects) {
            addObject(stats.classes[object->mClassname], *object);
            stats.repeatedNames += names.insert(object->mDistName).second ? 0 : 1;
            ++stats.operations.at(static_cast<std::size_t>(object->mOperation));
        }
    }
    for (const auto& [name, one] : stats.classes) {
        addClass(stats.all, one);
    }
    return stats;
}

std::string ramlStatsText(const RamlStats& stats, const Console& console)
{
    std::vector<std::string> headings{"CLASS"};
    for (const Column& column : columns) {
        headings.emplace_back(column.heading);
    }
    Table table(headings);
    for (const auto& [name, one] : stats.classes) {
        table.add(rowOf(printable(name), one));
    }
    table.add(rowOf("all", stats.all));
    std::string text = sizeText(stats.bytes) + ", " + counted(stats.blocks, "block") + ", " +
                       counted(stats.logs, "log entry") + "; objects: " + operationsText(stats) + "\n";
    if (stats.repeatedNames != 0) {
        text += counted(stats.repeatedNames, "object") + " with the distinguished name of an earlier one\n";
    }
    return text + table.text(console);
}

Json ramlStatsJson(const RamlStats& stats)
{
    Json json{{"bytes", stats.bytes},         {"blocks", stats.blocks},
              {"logs", stats.logs},           {"repeatedNames", stats.repeatedNames},
              {"operations", Json::object()}, {"all", classJson(stats.all)},
              {"classes", Json::array()}};
    for (std::size_t operation = 0; operation < stats.operations.size(); ++operation) {
        json["operations"][std::string(nameOf(static_cast<RAML_MOOperationType>(operation)))] =
            stats.operations[operation];
    }
    for (const auto& [name, one] : stats.classes) {
        Json row{{"class", name}};
        row.update(classJson(one));
        json["classes"].push_back(std::move(row));
    }
    return json;
}

std::string counted(std::uint64_t count, const std::string& what)
{
    const bool endsWithY = what.ends_with('y');
    const std::string plural = endsWithY ? what.substr(0, what.size() - 1) + "ies" : what + "s";
    return std::to_string(count) + " " + (count == 1 ? what : plural);
}

} // namespace dorn::tool
