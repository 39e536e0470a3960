// SPDX-License-Identifier: MIT
/// @file DornReading.cpp
/// Registers our reading: into the whole object model, and of texts of other shapes.
#include "raml/Reading.hpp"

#include "raml/RamlParser.hpp"

#include <cstdlib>

namespace {

using namespace dorn::benchmarks;

void readDocument(const std::string& text)
{
    RAML::RamlParser parser;
    RAML::RAML_ParsingResult result{};
    const RAML::RAML_Type::pointer document = parser.parseRaml(text, result, false);
    if (result != RAML::RAML_OK) {
        std::abort();
    }
}

void readTree(const std::string& text)
{
    AaGpuXmlParser parser(0);
    const std::unique_ptr<AaGpuXmlNode> tree(parser.AaGpuXmlParse(text, ""));
    if (!tree) {
        std::abort();
    }
}

void registerShape(const std::string& name, std::string (*document)(std::size_t count), std::size_t count)
{
    benchmark::RegisterBenchmark(("raml/shape/" + name).c_str(), [=](benchmark::State& state) {
        const std::string text = document(count);
        measureInFreshProcesses(state, text.size(), [&] { readDocument(text); });
    })->UseManualTime();
}

bool registerShapes()
{
    constexpr std::size_t million = 1'000'000;
    registerShape("parameters/1000", documentOfParameters, million / 1000);
    registerShape("parameters/1000000", documentOfParameters, million);
    registerShape("objects/1000", documentOfObjects, million / 1000);
    registerShape("objects/1000000", documentOfObjects, million);
    registerShape("lists/1000", documentOfLists, million / 1000);
    registerShape("lists/100000", documentOfLists, million / 10);
    registerShape(
        "site/1", [](std::size_t size) { return siteDocument(size); }, megabyte);
    registerShape(
        "site/200", [](std::size_t size) { return siteDocument(size); }, 200 * megabyte);
    return true;
}

[[maybe_unused]] const bool isRegistered =
    registerReading("dorn", readDocument) && registerReading("dornXml", readTree) && registerShapes();

} // namespace
