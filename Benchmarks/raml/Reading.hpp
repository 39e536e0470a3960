// SPDX-License-Identifier: MIT
/// @file Reading.hpp
/// Reading documents in different ways.
#pragma once

#include "raml/Documents.hpp"
#include "raml/FreshProcess.hpp"

#include <benchmark/benchmark.h>
#include <string>

namespace dorn::benchmarks {

/// Measures the reading of site documents of 1, 10 and 100 MB as "raml/read/<name>/<MB>". An item is a byte.
/// @param read reads a document and lets go of what has become of it
inline bool registerReading(const std::string& name, void (*read)(const std::string& text))
{
    benchmark::RegisterBenchmark(("raml/read/" + name).c_str(),
                                 [read](benchmark::State& state) {
                                     const std::string& text =
                                         siteDocument(static_cast<std::size_t>(state.range(0)) * megabyte);
                                     measureInFreshProcesses(state, text.size(), [&] { read(text); });
                                 })
        ->Arg(1)
        ->Arg(10)
        ->Arg(100)
        ->UseManualTime();
    return true;
}

} // namespace dorn::benchmarks
