// SPDX-License-Identifier: MIT
// The conformance suite over a platform with the defect that DORN_DEFECT names.
#include "Conformance.hpp"

int main(int argc, char** argv)
{
    return dorn::conformance::runConformance(argc, argv);
}
