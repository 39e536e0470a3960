// SPDX-License-Identifier: MIT
/// @file RamlReading.hpp
/// RAML documents as a service reads them, and what is wrong with them, with the places that the log does not tell.
#pragma once

#include "Console.hpp"
#include "raml/RamlParser.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace dorn::tool {

/// Something that is wrong with a document.
struct RamlFinding {
    std::string text;         ///< the line that the log gets
    std::uint32_t line = 0;   ///< from 1; 0 when there is no place
    std::uint32_t column = 0; ///< from 1, in bytes
    std::string element = {}; ///< name of the offending element; empty when it is not one
    std::string reason = {};  ///< why the text is not XML; empty when it is
};

/// What came of reading a document.
struct RamlReading {
    RAML::RAML_ParsingResult result = RAML::RAML_OK;
    RAML::RAML_Type::pointer document; ///< empty when there is none
    std::vector<RamlFinding> findings; ///< the first ones, in the order of the log
    std::size_t findingCount = 0;      ///< of all
};

/// Reads the text of a file as a service does.
/// @param most how many findings are kept
RamlReading readRaml(const std::string& text, std::size_t most);

/// The same, and says at a terminal that a great text takes its time. @param file how it is called
RamlReading readRaml(const std::string& text, std::size_t most, const std::string& file, Console& console);

/// What verbs that read documents have in common.
struct RamlInput {
    std::string limit = "256M";
};

/// Adds the options of a verb that reads documents.
void addRamlInput(CLI::App& verb, RamlInput& input);

/// The text of a document. @throws Failure when it cannot be read, UsageError
std::string readRamlText(const std::string& file, const RamlInput& input, Console& console);

/// The document that a text is. @param file where it is from, for messages. @throws Failure when it has an error.
RAML::RAML_Type::pointer goodRaml(const std::string& text, const std::string& file, Console& console);

/// Both at once. @throws Failure, UsageError
RAML::RAML_Type::pointer readGoodRaml(const std::string& file, const RamlInput& input, Console& console);

/// "12:7: <p>: ...", as far as it is known.
std::string findingText(const RamlFinding& finding);

} // namespace dorn::tool
