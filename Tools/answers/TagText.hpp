// SPDX-License-Identifier: MIT
/// @file TagText.hpp
/// Tags as people and programs see them. A tag is bytes; what they mean is known to who uses them.
///
/// The rule by which a value is shown: bytes that are text, UTF-8 without control characters, are shown as text; 2
/// other bytes as a number (U16), 4 other bytes as a number (U32), and all else in hexadecimal.
#pragma once

#include "Console.hpp"
#include "config/TagDatabase.hpp"
#include "text/Json.hpp"
#include "text/Values.hpp"

#include <string>
#include <vector>

namespace dorn::tool {

/// How a value is shown.
enum class TagForm { Text, U16, U32, Hex };

/// "text", "u16", "u32", "hex"
const char* formName(TagForm form);
/// The form with this name. @throws UsageError
TagForm parseForm(const std::string& what, const std::string& name);

/// The form by the rule; the empty value is text.
TagForm formOf(BytesView value);

/// The value in a form; control characters escaped. @throws Failure when a number has not this size.
std::string tagValueText(BytesView value, TagForm form);

/// The bytes of a number in host byte order, as AaConfigTagSetU16() and AaConfigTagSetU32() set them.
Bytes numberBytes(std::uint32_t value, TagForm form);

/// "60 (u32)", "empty"
std::string describedValue(BytesView value);

/// A table; of values of more than 64 bytes only the first are shown.
std::string tagTable(const std::vector<host::Tag>& tags, const Console& console);
/// One name a line.
std::string tagNames(const std::vector<host::Tag>& tags);

/// Members of a value: "type", "value" as a number or a text, "hex".
Json tagValueJson(BytesView value);
Json tagJson(const host::Tag& tag);

} // namespace dorn::tool
