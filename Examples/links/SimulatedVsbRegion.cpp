// SPDX-License-Identifier: MIT
#include "SimulatedVsbRegion.hpp"

#include <utility>

namespace dorn::examples {

bool SimulatedVsbIngressRegion::readBytes(Bytes& dataBytes)
{
    dataBytes = m_bytes;
    return !m_bytes.empty();
}

bool SimulatedVsbIngressRegion::look()
{
    if (!isRegionEnabled() || !m_model.receiver().isSynchronised()) {
        return false;
    }
    Bytes received(size());
    for (std::size_t position = 0; position < received.size(); ++position) {
        received[position] = m_model.receivedBytes().at(place(position));
    }
    return std::exchange(m_bytes, received) != received;
}

void SimulatedVsbEgressRegion::writeBytes(const Bytes& dataBytes)
{
    if (!isRegionEnabled()) {
        refuse("region disabled");
    }
    if (dataBytes.size() != size()) {
        refuse("wrong number of bytes");
    }
    put(dataBytes);
    m_bytes = dataBytes;
    m_isNew = true;
}

bool SimulatedVsbEgressRegion::look()
{
    return m_model.isEnabled() && std::exchange(m_isNew, false);
}

void SimulatedVsbEgressRegion::reset()
{
    SimulatedVsbRegion::reset();
    m_isNew = false;
    put(Bytes(size()));
}

void SimulatedVsbEgressRegion::put(const Bytes& dataBytes)
{
    for (std::size_t position = 0; position < dataBytes.size(); ++position) {
        m_model.sentBytes().at(place(position)) = dataBytes[position];
    }
}

} // namespace dorn::examples
