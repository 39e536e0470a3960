// SPDX-License-Identifier: MIT
#include "raml/RamlDiff.hpp"

#include "raml/RamlFields.hpp"
#include "raml/dataclasses/RAML_ListParameterType.hpp"
#include "raml/dataclasses/RAML_ListType.hpp"
#include "raml/dataclasses/RAML_ParameterType.hpp"
#include "text/Values.hpp"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace dorn::tool {
namespace {

using namespace RAML;

/// Something with a name that no other has.
struct Leaf {
    std::string name;
    std::string value;
};
using Leaves = std::vector<Leaf>;

/// Tells the second of the same name from the first; no name is given twice, whatever names there are.
class UniqueNames {
public:
    std::string unique(const std::string& name)
    {
        std::size_t& count = m_counts[name];
        std::string result;
        do {
            result = ++count == 1 ? name : name + "#" + std::to_string(count);
        } while (!m_given.insert(result).second);
        return result;
    }

private:
    std::unordered_map<std::string, std::size_t> m_counts;
    std::unordered_set<std::string> m_given;
};

void addFields(Leaves& leaves, const std::string& prefix, const RamlFields& fields, RamlDiffFields which)
{
    for (const RamlField& field : fields) {
        if (field.isWritten || which == RamlDiffFields::All) {
            leaves.push_back({prefix + std::string(field.name), field.text});
        }
    }
}

std::string kindText(const char* kind, std::size_t count)
{
    return std::string(kind) + " of " + std::to_string(count);
}

void addList(Leaves& leaves, const std::string& name, const RAML_ListType& list, RamlDiffFields which)
{
    leaves.push_back({name, kindText("list", list.listElements.size())});
    std::size_t index = 0;
    for (const RAML_ListElementType::pointer& element : list.listElements) {
        const std::string place = name + "[" + std::to_string(index++) + "]";
        if (const auto* const value = dynamic_cast<const RAML_ListParameterType*>(element.get())) {
            leaves.push_back({place, value->value});
        } else if (const auto* const item = dynamic_cast<const RAML_ItemType*>(element.get())) {
            leaves.push_back({place, kindText("item", item->params.size())});
            addFields(leaves, place + "@", fieldsOf(*item), which);
            for (const RAML_ItemParameterType& parameter : item->params) {
                leaves.push_back({place + "." + parameter.name, parameter.value});
            }
        }
    }
}

/// A managed object and where it stands.
struct Placed {
    std::string subject; ///< distinguished name, unique
    std::size_t block;   ///< number of its block, from 1
    const RAML_ManagedObjectType* object;
};

Leaves leavesOf(const Placed& placed, RamlDiffFields which)
{
    Leaves leaves{{"@class", placed.object->mClassname}, {"@cmData", std::to_string(placed.block)}};
    addFields(leaves, "@", fieldsOf(*placed.object), which);
    UniqueNames parameterNames;
    for (const RAML_MOParameterType::pointer& parameter : placed.object->mParameters) {
        const std::string name = parameterNames.unique(parameter->name);
        if (const auto* const list = dynamic_cast<const RAML_ListType*>(parameter.get())) {
            addList(leaves, name, *list, which);
        } else if (const auto* const simple = dynamic_cast<const RAML_ParameterType*>(parameter.get())) {
            leaves.push_back({name, simple->value});
        }
    }
    UniqueNames names;
    for (Leaf& leaf : leaves) {
        leaf.name = names.unique(leaf.name);
    }
    return leaves;
}

bool isSame(const Leaves& before, const Leaves& after)
{
    return std::equal(before.begin(), before.end(), after.begin(), after.end(), [](const Leaf& one, const Leaf& other) {
        return one.name == other.name && one.value == other.value;
    });
}

std::vector<RamlDifference> differencesOf(const Leaves& before, const Leaves& after)
{
    std::vector<RamlDifference> differences;
    if (isSame(before, after)) {
        return differences;
    }
    std::unordered_map<std::string_view, const Leaf*> left;
    for (const Leaf& leaf : after) {
        left.emplace(leaf.name, &leaf);
    }
    for (const Leaf& leaf : before) {
        const auto found = left.find(leaf.name);
        if (found == left.end()) {
            differences.push_back({leaf.name, leaf.value, std::nullopt});
            continue;
        }
        if (found->second->value != leaf.value) {
            differences.push_back({leaf.name, leaf.value, found->second->value});
        }
        left.erase(found);
    }
    for (const Leaf& leaf : after) {
        if (left.contains(leaf.name)) {
            differences.push_back({leaf.name, std::nullopt, leaf.value});
        }
    }
    return differences;
}

std::vector<Placed> objectsOf(const RAML_Type& document)
{
    std::vector<Placed> objects;
    UniqueNames names;
    std::size_t block = 0;
    for (const RAML_CMDataType::pointer& cmData : document.cmDataList) {
        ++block;
        for (const RAML_ManagedObjectType::pointer& object : cmData->managedObjects) {
            objects.push_back({names.unique(object->mDistName), block, object.get()});
        }
    }
    return objects;
}

/// Notes a change if there is one.
void compare(std::vector<RamlChange>& changes, const std::string& subject, const std::string& className,
             const Leaves& before, const Leaves& after)
{
    std::vector<RamlDifference> differences = differencesOf(before, after);
    if (!differences.empty()) {
        changes.push_back({RamlChangeKind::Changed, subject, className, std::move(differences)});
    }
}

template <class Part>
Leaves fieldLeavesOf(const Part& part, RamlDiffFields which)
{
    Leaves leaves;
    addFields(leaves, "@", fieldsOf(part), which);
    return leaves;
}

void compareBlocks(std::vector<RamlChange>& changes, const RAML_Type& before, const RAML_Type& after,
                   RamlDiffFields which)
{
    const std::size_t common = std::min(before.cmDataList.size(), after.cmDataList.size());
    for (std::size_t index = 0; index < std::max(before.cmDataList.size(), after.cmDataList.size()); ++index) {
        const std::string subject = "cmData " + std::to_string(index + 1);
        if (index < common) {
            compare(changes, subject, "", fieldLeavesOf(*before.cmDataList[index], which),
                    fieldLeavesOf(*after.cmDataList[index], which));
        } else {
            const bool isRemoved = index < before.cmDataList.size();
            changes.push_back({isRemoved ? RamlChangeKind::Removed : RamlChangeKind::Added, subject, ""});
        }
    }
}

void compareObjects(std::vector<RamlChange>& changes, const RAML_Type& before, const RAML_Type& after,
                    RamlDiffFields which)
{
    const std::vector<Placed> newObjects = objectsOf(after);
    std::unordered_map<std::string_view, const Placed*> left;
    for (const Placed& placed : newObjects) {
        left.emplace(placed.subject, &placed);
    }
    for (const Placed& placed : objectsOf(before)) {
        const auto found = left.find(placed.subject);
        if (found == left.end()) {
            changes.push_back({RamlChangeKind::Removed, placed.subject, placed.object->mClassname});
            continue;
        }
        compare(changes, placed.subject, placed.object->mClassname, leavesOf(placed, which),
                leavesOf(*found->second, which));
        left.erase(found);
    }
    for (const Placed& placed : newObjects) {
        if (left.contains(placed.subject)) {
            changes.push_back({RamlChangeKind::Added, placed.subject, placed.object->mClassname});
        }
    }
}

struct KindText {
    const char* sign;
    const char* word;
    Colour colour;
};
constexpr std::array<KindText, 3> kinds{
    {{"-", "removed", Colour::Red}, {"+", "added", Colour::Green}, {"~", "changed", Colour::Yellow}}};
static_assert(kinds.size() == static_cast<std::size_t>(RamlChangeKind::Changed) + 1);

const KindText& textOf(RamlChangeKind kind)
{
    return kinds[static_cast<std::size_t>(kind)];
}

std::string valueText(const std::optional<std::string>& value)
{
    return value ? "\"" + printable(*value) + "\"" : "none";
}

Json valueJson(const std::optional<std::string>& value)
{
    return value ? Json(*value) : Json(nullptr);
}

} // namespace

std::vector<RamlChange> diffRaml(const RAML_Type& before, const RAML_Type& after, RamlDiffFields fields)
{
    std::vector<RamlChange> changes;
    compare(changes, "raml", "", fieldLeavesOf(before, fields), fieldLeavesOf(after, fields));
    compareBlocks(changes, before, after, fields);
    compareObjects(changes, before, after, fields);
    return changes;
}

std::string ramlChangeText(const RamlChange& change, const Console& console)
{
    const KindText& kind = textOf(change.kind);
    const std::string className = change.className.empty() ? "" : printable(change.className) + " ";
    std::string text = console.paint(kind.colour, kind.sign + std::string(" ") + className + printable(change.subject));
    text += '\n';
    for (const RamlDifference& difference : change.differences) {
        text += "    " + printable(difference.name) + ": " + valueText(difference.before) + " -> " +
                valueText(difference.after) + "\n";
    }
    return text;
}

Json ramlChangeJson(const RamlChange& change)
{
    Json json{{"change", textOf(change.kind).word}, {"subject", change.subject}};
    if (!change.className.empty()) {
        json["class"] = change.className;
    }
    if (change.kind == RamlChangeKind::Changed) {
        json["differences"] = Json::array();
        for (const RamlDifference& difference : change.differences) {
            json["differences"].push_back({{"name", difference.name},
                                           {"old", valueJson(difference.before)},
                                           {"new", valueJson(difference.after)}});
        }
    }
    return json;
}

} // namespace dorn::tool
