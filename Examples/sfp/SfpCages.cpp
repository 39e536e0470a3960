// SPDX-License-Identifier: MIT
#include "SfpCages.hpp"

namespace dorn::examples {

bool SfpCages::plug(std::uint32_t cage)
{
    SfpCage& plugged = m_cages[cage];
    if (plugged.module != ESfpModule_Empty) {
        return false;
    }
    plugged.module = ESfpModule_Starting;
    plugged.stepsToGo = stepsToStart;
    return true;
}

bool SfpCages::pull(std::uint32_t cage)
{
    SfpCage& pulled = m_cages[cage];
    if (pulled.module == ESfpModule_Empty) {
        return false;
    }
    pulled.module = ESfpModule_Empty;
    return true;
}

bool SfpCages::step()
{
    bool isAnyStarting = false;
    for (SfpCage& cage : m_cages) {
        if (cage.module == ESfpModule_Starting && --cage.stepsToGo == 0) {
            cage.module = ESfpModule_Ready;
        }
        isAnyStarting = isAnyStarting || cage.module == ESfpModule_Starting;
    }
    return isAnyStarting;
}

} // namespace dorn::examples
