// SPDX-License-Identifier: MIT
#include "Conformance.hpp"

int main(int argc, char** argv)
{
    return dorn::conformance::runConformance(argc, argv);
}
