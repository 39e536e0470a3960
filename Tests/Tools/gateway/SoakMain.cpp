// SPDX-License-Identifier: MIT
// Sixteen nodes under random link cuts for as many rounds as wanted: dorn_gateway_soak [ROUNDS [NODES]]. Each round has
// another seed; exit status 1 after the first bad one. DORN_LOG=stderr shows what the gateways say.
#include "Soak.hpp"

#include <cstdio>
#include <cstdlib>

int main(int count, char** arguments)
{
    setenv("DORN_LOG", "none", 0);
    const unsigned long rounds = count > 1 ? std::strtoul(arguments[1], nullptr, 10) : 10;
    dorn::gateway::test::SoakPlan plan;
    plan.nodes = count > 2 ? std::strtoul(arguments[2], nullptr, 10) : plan.nodes;
    for (unsigned long round = 1; round <= rounds; ++round) {
        plan.seed = static_cast<std::uint32_t>(round);
        const dorn::gateway::test::SoakResult result = dorn::gateway::test::soak(plan);
        std::printf("round %lu of %lu: %s\n", round, rounds, result.text().c_str());
        std::fflush(stdout);
        if (!result.isGood()) {
            return EXIT_FAILURE;
        }
    }
    return EXIT_SUCCESS;
}
