// SPDX-License-Identifier: MIT
/// @file Json.hpp
/// Answers for programs.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace dorn::tool {

/// Members keep the order in which they are added.
using Json = nlohmann::ordered_json;

/// An array of what @p toJson makes of each item.
template <class Items, class ToJson>
Json jsonArray(const Items& items, const ToJson& toJson)
{
    Json array = Json::array();
    for (const auto& item : items) {
        array.push_back(toJson(item));
    }
    return array;
}

/// A whole answer: indented, with a line feed at the end. Bytes that are no UTF-8 are replaced.
inline std::string jsonText(const Json& json)
{
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

/// One line of an answer that grows, without its line feed.
inline std::string jsonLine(const Json& json)
{
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace dorn::tool
