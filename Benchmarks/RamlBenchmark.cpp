// SPDX-License-Identifier: MIT
/// @file RamlBenchmark.cpp
/// RAML documents, next to XML libraries that read them and plain code that walks and writes them.
#include "TestNode.hpp"

#include "AaConfigRad.h"
#include "rad/ERadHwapi.h"

#include <benchmark/benchmark.h>

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    const dorn::testkit::TestNode node;
    AaConfigRadRegisterDomain(RAD_HWAPI_DOMAIN, "HWA", [] { // as in a service; all prints are off
        AaConfigRadSetMaxTagCount(RAD_HWAPI_DOMAIN, ERadHwapi_RAML + 1);
        AaConfigRadSetDefault(ERadHwapi_RAML, "RAML", 0);
    });
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
