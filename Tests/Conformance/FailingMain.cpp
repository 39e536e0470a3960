// SPDX-License-Identifier: MIT
// The conformance suite over a platform one of whose functions, the one that DORN_FAILING names, always fails.
#include "Conformance.hpp"
#include "FailingFunctions.hpp"

#include <cstdlib>

int main(int argc, char** argv)
{
    const char* const wanted = std::getenv("DORN_FAILING");
    for (const auto& [name, fail] : failingFunctions) {
        if (wanted && name == wanted) {
            fail();
        }
    }
    return dorn::conformance::runConformance(argc, argv);
}
