// SPDX-License-Identifier: MIT
#include "Faults.hpp"

namespace dorn::soak {

Fault Chance::fault()
{
    return static_cast<Fault>(oneOf(faultKinds));
}

} // namespace dorn::soak
