// SPDX-License-Identifier: MIT
#include "answers/RadText.hpp"

#include "text/Table.hpp"
#include "text/Values.hpp"

namespace dorn::tool {

std::string radValueText(std::uint32_t value, RadBase base)
{
    return base == RadBase::Hexadecimal ? hexNumber(value, 1) : std::to_string(value);
}

std::string radTable(const std::vector<RadEntry>& entries, RadBase base, const Console& console)
{
    Table table({"ID", "DOMAIN", "NAME", "VALUE", "DEFAULT", ""});
    for (const RadEntry& entry : entries) {
        const host::RadParameter& parameter = entry.parameter;
        const Colour colour = entry.isChanged() ? Colour::Yellow : Colour::None;
        table.add({hexNumber(parameter.id, 5), printable(entry.domain), printable(parameter.name),
                   Cell(radValueText(parameter.value, base), colour), radValueText(parameter.defaultValue, base),
                   Cell(entry.isChanged() ? "changed" : "", colour)});
    }
    return table.text(console);
}

Json radJson(const RadEntry& entry)
{
    return {{"id", entry.parameter.id},
            {"domain", entry.domain},
            {"name", entry.parameter.name},
            {"value", entry.parameter.value},
            {"default", entry.parameter.defaultValue},
            {"changed", entry.isChanged()}};
}

Json radJson(const std::vector<RadEntry>& entries)
{
    return jsonArray(entries, [](const RadEntry& entry) { return radJson(entry); });
}

std::string radAddresses(const std::vector<RadEntry>& entries)
{
    std::map<std::string, unsigned> bearers;
    for (const RadEntry& entry : entries) {
        ++bearers[entry.address()];
    }
    std::string text;
    for (const RadEntry& entry : entries) {
        const bool isUnique = bearers[entry.address()] == 1;
        text += (isUnique ? printable(entry.address()) : hexNumber(entry.parameter.id, 5)) + "\n";
    }
    return text;
}

std::string radChangeText(const RadChange& change, RadBase base)
{
    const host::RadParameter& parameter = change.entry.parameter;
    const std::string name = parameter.name.empty() ? "" : printable(change.entry.address()) + " ";
    return name + hexNumber(parameter.id, 5) + ": " + radValueText(change.before, base) + " -> " +
           radValueText(parameter.value, base);
}

Json radChangeJson(const RadChange& change)
{
    return {{"id", change.entry.parameter.id},
            {"domain", change.entry.domain},
            {"name", change.entry.parameter.name},
            {"old", change.before},
            {"new", change.entry.parameter.value}};
}

RadMemory::RadMemory(const std::vector<RadEntry>& entries)
{
    for (const RadEntry& entry : entries) {
        m_values[entry.parameter.id] = entry.parameter.value;
    }
}

std::optional<RadChange> RadMemory::note(const RadEntry& entry)
{
    const auto known = m_values.try_emplace(entry.parameter.id, entry.parameter.defaultValue).first;
    const std::uint32_t before = std::exchange(known->second, entry.parameter.value);
    return before == entry.parameter.value ? std::nullopt : std::optional(RadChange{entry, before});
}

} // namespace dorn::tool
