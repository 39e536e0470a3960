// SPDX-License-Identifier: MIT
#include "Service.hpp"

#include <cstdio>

namespace vel::hwapi::common {

int RunService(Service& service, int argc, char** argv)
{
    try {
        return static_cast<int>(service.Startup(argc, argv));
    } catch (const CHwapiException& reason) {
        std::fprintf(stderr, "Dorn%sExe: %s: %s\n", service.GetName().c_str(), reason.what(),
                     reason.getDescription().c_str());
        return 0;
    }
}

} // namespace vel::hwapi::common
