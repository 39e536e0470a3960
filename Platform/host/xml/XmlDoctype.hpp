// SPDX-License-Identifier: MIT
/// @file XmlDoctype.hpp
/// The document type declaration of an XML document.
#pragma once

namespace dorn::host {

/// Steps over a document type declaration, from "<!DOCTYPE" on, as the functions of XmlCharacters.hpp do. What it
/// refers to is not read. What it declares has to have the right form; that it has parameter entities, or defaults of
/// attributes, without which the document would be another one, is a fault of the kind NotSupported.
const char* skipXmlDoctype(const char* at);

} // namespace dorn::host
