// SPDX-License-Identifier: MIT
#include "ObsaiLinkModel.hpp"

#include "Fibre.hpp"

#include <utility>

namespace dorn::examples {

using namespace vel::hwapi::common::bif::baseband::obsai;

ObsaiLinkModel::ObsaiLinkModel(double metres) : m_metres(metres)
{
    m_far.setEnabled(true);
}

bool ObsaiLinkModel::step()
{
    const auto before = std::pair(m_near, m_far);
    const bool isHeard = (m_brokenParts & (ELinkPart_Receive | ELinkPart_Framing)) == 0;
    const bool isHeardThere = (m_brokenParts & ELinkPart_Transmit) == 0;
    m_near.step(isHeard ? before.second.txState() : ETxLinkState_Off);
    m_far.step(isHeardThere ? before.first.txState() : ETxLinkState_Off);
    return std::pair(m_near, m_far) != before;
}

std::uint32_t ObsaiLinkModel::pi() const
{
    return static_cast<std::uint32_t>(fibreDelay(m_metres));
}

} // namespace dorn::examples
