// SPDX-License-Identifier: MIT
#include "service/IdleState.hpp"

#include "ServiceState.hpp"
#include "port/Clock.hpp"

#include <algorithm>
#include <vector>

namespace dorn::benchmarks {

bool IdleState::waitUntilReady()
{
    const host::Deadline until = host::Clock::get().after(10'000'000);
    for (;;) {
        const std::vector<host::RadParameter> changes = m_watch.waitForChanges(until);
        if (changes.empty()) {
            return false;
        }
        if (std::any_of(changes.begin(), changes.end(), [](const host::RadParameter& parameter) {
                return parameter.id == ERadHwapiState_HwCtrlSState &&
                       parameter.value == vel::hwapi::common::EServiceState_Waiting;
            })) {
            return true;
        }
    }
}

} // namespace dorn::benchmarks
