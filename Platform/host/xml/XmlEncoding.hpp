// SPDX-License-Identifier: MIT
/// @file XmlEncoding.hpp
/// The encodings of XML documents.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace dorn::host {

enum class XmlEncoding { Utf8, Ascii, Latin1 };

/// The encoding that a name means, in capital or small letters; nothing when it is not one that we read.
std::optional<XmlEncoding> xmlEncodingOf(std::string_view name);

/// Whether @p name has the form and a likely length of an encoding's name.
bool isXmlEncodingName(std::string_view name);

/// The name of the encoding that a document's declaration gives; empty when there is none.
std::string_view declaredXmlEncoding(std::string_view text);

/// @p text, each of whose bytes is a character of ISO-8859-1, in UTF-8.
std::string latin1ToUtf8(std::string_view text);

} // namespace dorn::host
