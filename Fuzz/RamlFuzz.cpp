// SPDX-License-Identifier: MIT
/// @file RamlFuzz.cpp
/// Any bytes as a RAML document: a parser gives a result and a sound model, the same one again when it is used again,
/// and what is read without an error reads back when it has been written, unless the writer is known not to keep it.
#include "RamlModelText.hpp"
#include "Require.hpp"
#include "raml/RAML_ostream.hpp"
#include "raml/RamlParser.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

namespace {

using dorn::fuzz::ModelFields;
using dorn::fuzz::modelText;
using dorn::fuzz::require;
using namespace RAML;

/// Whatever the parser says is not printed.
void silence()
{
    setenv("DORN_LOG", "none", 1);
    setenv("DORN_LOG_LEVEL", "none", 1);
}

void checkReuse(RamlParser& parser, const std::string& text, RAML_ParsingResult before, const RAML_Type& document)
{
    RAML_ParsingResult result = RAML_OK;
    const RAML_Type::pointer again = parser.parseRaml(text, result, false);
    require(result == before && again && modelText(*again, ModelFields::All) == modelText(document, ModelFields::All));
}

void checkWriting(RamlParser& parser, const RAML_Type& document)
{
    std::ostringstream written;
    written << document;
    RAML_ParsingResult result = RAML_OK;
    const RAML_Type::pointer read = parser.parseRaml(written.str(), result, false);
    if (dorn::fuzz::isKeptByWriter(document)) {
        require(result == RAML_OK && read &&
                modelText(*read, ModelFields::Written) == modelText(document, ModelFields::Written));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    [[maybe_unused]] static const bool isSilent = (silence(), true);
    const std::string text(reinterpret_cast<const char*>(data), size);
    RamlParser parser;
    RAML_ParsingResult result = RAML_OK;
    const RAML_Type::pointer document = parser.parseRaml(text, result, false);
    require(result == RAML_OK || result == RAML_MALFORMED_XML || result == RAML_SYNTAX_ERROR);
    require(document || result != RAML_OK);
    if (document) {
        dorn::fuzz::requireSound(*document, result == RAML_OK);
        checkReuse(parser, text, result, *document);
        if (result == RAML_OK) {
            checkWriting(parser, *document);
        }
    }
    return 0;
}
