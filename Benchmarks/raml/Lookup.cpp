// SPDX-License-Identifier: MIT
/// @file Lookup.cpp
/// Registers our lookups of the last of 10,000 names, next to plain loops.
#include "raml/Documents.hpp"

#include "raml/RamlParser.hpp"

#include <algorithm>
#include <benchmark/benchmark.h>

namespace {

using namespace dorn::benchmarks;
using namespace RAML;

constexpr std::size_t count = 10'000;

RAML_CMDataType::pointer blockOf(const std::string& text)
{
    RAML_ParsingResult result{};
    return RamlParser().parseRaml(text, result, false)->cmDataList.at(0);
}

void findObject(benchmark::State& state)
{
    const RAML_CMDataType::pointer block = blockOf(documentOfObjects(count));
    const std::string name = block->managedObjects.back()->mDistName;
    for (auto _ : state) {
        benchmark::DoNotOptimize(block->findManagedObject(name));
    }
}
BENCHMARK(findObject)->Name("raml/findManagedObject/dorn");

void findObjectPlainly(benchmark::State& state)
{
    const RAML_CMDataType::pointer block = blockOf(documentOfObjects(count));
    const std::string name = block->managedObjects.back()->mDistName;
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::find_if(block->managedObjects.begin(), block->managedObjects.end(),
                                              [&name](const auto& mo) { return mo->mDistName == name; }));
    }
}
BENCHMARK(findObjectPlainly)->Name("raml/findManagedObject/plain");

void findParameter(benchmark::State& state)
{
    const RAML_ManagedObjectType::pointer mo = blockOf(documentOfParameters(count))->managedObjects.at(0);
    const std::string name = mo->mParameters.back()->name;
    for (auto _ : state) {
        benchmark::DoNotOptimize(mo->findParameter(name));
    }
}
BENCHMARK(findParameter)->Name("raml/findParameter/dorn");

void findParameterPlainly(benchmark::State& state)
{
    const RAML_ManagedObjectType::pointer mo = blockOf(documentOfParameters(count))->managedObjects.at(0);
    const std::string name = mo->mParameters.back()->name;
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::find_if(mo->mParameters.begin(), mo->mParameters.end(),
                                              [&name](const auto& parameter) { return parameter->name == name; }));
    }
}
BENCHMARK(findParameterPlainly)->Name("raml/findParameter/plain");

} // namespace
