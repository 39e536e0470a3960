// SPDX-License-Identifier: MIT
/// @file Libxml2Reading.cpp
/// Registers libxml2, which builds its tree and makes nothing of it.
#include "raml/Reading.hpp"

#include <cstdlib>
#include <libxml/parser.h>

namespace {

using namespace dorn::benchmarks;

void readTree(const std::string& text)
{
    xmlDoc* const tree =
        xmlReadMemory(text.data(), static_cast<int>(text.size()), "", nullptr, XML_PARSE_HUGE | XML_PARSE_NONET);
    if (!tree) {
        std::abort();
    }
    xmlFreeDoc(tree);
}

[[maybe_unused]] const bool isRegistered = registerReading("libxml2", readTree);

} // namespace
