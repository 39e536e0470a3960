// SPDX-License-Identifier: MIT
#include "SimulatedObsaiSynchronizer.hpp"

#include <utility>

namespace dorn::examples {

using namespace vel::hwapi::common::bif::baseband::obsai;

void SimulatedObsaiSynchronizer::tell()
{
    for (std::size_t index = 0; index < ObsaiLinks::count; ++index) {
        auto& [link, model] = m_links.all()[index];
        const ERxLinkState rx = model.near().rxState();
        const ETxLinkState tx = model.near().txState();
        const Told told = std::exchange(m_told[index], {rx, tx});
        LinkSyncCallbackParam event(rx, tx, rx == ERxLinkState_Frame ? model.pi() : 0, link);
        if (rx != told.rx) {
            callRxLinkSynchronizationCallback(event);
        }
        if (tx != told.tx) {
            callTxLinkSynchronizationCallback(event);
        }
        if (rx != told.rx && rx == ERxLinkState_Frame) {
            callPiMeasurementResultCallback(event);
        }
    }
}

} // namespace dorn::examples
