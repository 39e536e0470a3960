// SPDX-License-Identifier: MIT
/// @file XmlMarkup.hpp
/// The markup of an XML document that is no part of its tree. The functions step over it as those of XmlCharacters.hpp
/// do.
#pragma once

namespace dorn::host {

/// Steps over the XML declaration, from "<?xml" on.
const char* skipXmlDeclaration(const char* at);

/// Steps over a comment, from "<!--" on.
const char* skipXmlComment(const char* at);

/// Steps over a processing instruction, from "<?" on.
const char* skipXmlInstruction(const char* at);

/// Steps over white space, comments and processing instructions, as many as there are.
const char* skipXmlMisc(const char* at);

/// Steps over any characters in quotes.
const char* skipXmlLiteral(const char* at, const char* reason);

} // namespace dorn::host
