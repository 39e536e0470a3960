// SPDX-License-Identifier: MIT
/// @file RAML_ostream.hpp
/// Writes RAML documents.
///
/// The writer writes less than the parser reads: of a managed object class, operation, distinguished name and version,
/// of a log entry time, action, user and text, of an item not its operation, of a block not its name. Of all texts only
/// the values of simple parameters are escaped, see handleXmlCharacters(); a text that needs more than that gives a
/// document that is not well-formed. Line ends flush the stream. Its state is left to the caller.
#pragma once

#include "raml/dataclasses/RAML_CMDataType.hpp"
#include "raml/dataclasses/RAML_HeaderType.hpp"
#include "raml/dataclasses/RAML_LogType.hpp"
#include "raml/dataclasses/RAML_MOParameterType.hpp"
#include "raml/dataclasses/RAML_ManagedObjectType.hpp"
#include "raml/dataclasses/RAML_Type.hpp"

#include <iosfwd>
#include <string>

namespace RAML {

/// Writes a document. Empty pointers among its blocks are passed over.
std::ostream& operator<<(std::ostream& stream, const RAML_Type& document);
/// Writes a block. Empty pointers among its managed objects are passed over.
std::ostream& operator<<(std::ostream& stream, const RAML_CMDataType& cmData);
/// Writes a header with its log entries.
std::ostream& operator<<(std::ostream& stream, const RAML_HeaderType& header);
/// Writes a log entry, without a line end.
std::ostream& operator<<(std::ostream& stream, const RAML_LogType& log);
/// Writes a managed object.
/// @param mo not empty, and no empty pointer among its parameters
std::ostream& operator<<(std::ostream& stream, const RAML_ManagedObjectType::pointer& mo);
/// Writes a parameter, without a line end. An object whose type is not that of its class gives nothing.
std::ostream& operator<<(std::ostream& stream, const RAML_MOParameterType& parameter);

/// Escapes at most one character of a text: its first ampersand; if it has none its first less-than sign; and so on
/// through greater-than sign, double quote and apostrophe.
std::string handleXmlCharacters(const std::string& text);

} // namespace RAML
