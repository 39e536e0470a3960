// SPDX-License-Identifier: MIT
/// @file ExpatReading.cpp
/// Registers expat, which reports elements and texts to handlers that do nothing.
#include "raml/Reading.hpp"

#include <cstdlib>
#include <expat.h>

namespace {

using namespace dorn::benchmarks;

void readEvents(const std::string& text)
{
    const XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetElementHandler(
        parser, [](void*, const XML_Char*, const XML_Char**) {}, [](void*, const XML_Char*) {});
    XML_SetCharacterDataHandler(parser, [](void*, const XML_Char*, int) {});
    if (XML_Parse(parser, text.data(), static_cast<int>(text.size()), XML_TRUE) != XML_STATUS_OK) {
        std::abort();
    }
    XML_ParserFree(parser);
}

[[maybe_unused]] const bool isRegistered = registerReading("expat", readEvents);

} // namespace
