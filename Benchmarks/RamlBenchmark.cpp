// SPDX-License-Identifier: MIT
/// @file RamlBenchmark.cpp
/// RAML documents, next to XML libraries that read them and plain code that walks and writes them.
#include "AaConfigRad.h"
#include "RunOnNode.hpp"
#include "rad/ERadHwapi.h"

int main(int argc, char** argv)
{
    return dorn::benchmarks::runOnNode(argc, argv, {}, [](const auto&) {
        AaConfigRadRegisterDomain(RAD_HWAPI_DOMAIN, "HWA", [] { // as in a service; all prints are off
            AaConfigRadSetMaxTagCount(RAD_HWAPI_DOMAIN, ERadHwapi_RAML + 1);
            AaConfigRadSetDefault(ERadHwapi_RAML, "RAML", 0);
        });
    });
}
