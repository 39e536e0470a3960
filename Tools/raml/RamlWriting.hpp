// SPDX-License-Identifier: MIT
/// @file RamlWriting.hpp
/// RAML documents as a service writes them, and what gets lost by it.
#pragma once

#include "Console.hpp"
#include "raml/dataclasses/RAML_Type.hpp"
#include "text/Json.hpp"

#include <cstddef>
#include <map>
#include <string>

namespace CLI {
class App;
}

namespace dorn::tool {

/// The text that a service writes.
std::string writtenRaml(const RAML::RAML_Type& document);

/// Why a written text does not read back as the document that was written, so far as its fields are written; empty when
/// it does.
std::string whyNotKept(const RAML::RAML_Type& document, const std::string& written);

/// How many attributes of a name are not written: {"log@appInfo", 2}.
using UnwrittenFields = std::map<std::string, std::size_t>;
UnwrittenFields unwrittenFields(const RAML::RAML_Type& document);

/// What came of writing a document.
struct WrittenRaml {
    std::string text;
    std::string trouble; ///< why it does not read back; empty when it does
    UnwrittenFields unwritten;
};

/// Writes as a service does.
/// @param isForced whether also what does not read back
/// @throws Failure when it does not.
WrittenRaml writeRaml(const RAML::RAML_Type& document, bool isForced);
/// Prints the text, and remarks what is not in it.
void printWrittenRaml(const WrittenRaml& written, Console& console);
Json writtenRamlJson(const WrittenRaml& written);

/// What verbs that write documents have in common.
struct RamlWritingOptions {
    bool isForced = false;
    bool asJson = false;
};
/// Adds the options of a verb that writes a document.
void addRamlWriting(CLI::App& verb, RamlWritingOptions& options);

} // namespace dorn::tool
