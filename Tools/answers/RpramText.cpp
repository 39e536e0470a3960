// SPDX-License-Identifier: MIT
#include "answers/RpramText.hpp"

#include "text/Table.hpp"
#include "text/Values.hpp"

namespace dorn::tool {

std::string rpramTable(const std::vector<RpramEntry>& entries, const Console& console)
{
    Table table({"NUMBER", "FIELD", "VALUE", "TEXT"});
    for (const auto& [field, value] : entries) {
        table.add({std::to_string(field.field), field.name, value ? hexNumber(value->value, 1) : "-",
                   value ? printable(value->text) : ""});
    }
    return table.text(console);
}

std::string rpramValueText(const RpramValue& value)
{
    return hexNumber(value.value, 1) + (value.text.empty() ? "" : " ") + printable(value.text);
}

Json rpramJson(const RpramEntry& entry)
{
    return {{"number", static_cast<std::int32_t>(entry.field.field)},
            {"field", entry.field.name},
            {"value", entry.value ? Json(entry.value->value) : Json(nullptr)},
            {"text", entry.value ? Json(entry.value->text) : Json(nullptr)}};
}

} // namespace dorn::tool
