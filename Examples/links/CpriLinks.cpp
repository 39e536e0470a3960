// SPDX-License-Identifier: MIT
#include "CpriLinks.hpp"

#include "InvalidParameterException.hpp"

namespace dorn::examples {

using vel::hwapi::common::InvalidParameterException;
using vel::hwapi::common::bif::baseband::cpri::CpriLink;

namespace {

constexpr double metresToTower = 200;
constexpr double metresToNextSite = 15000;

} // namespace

CpriLinks::CpriLinks()
    : m_links{{{CpriLink(20, "cpri0"), CpriLinkModel(metresToTower)},
               {CpriLink(21, "cpri1"), CpriLinkModel(metresToNextSite)}}}
{
}

CpriLinkModel& CpriLinks::model(const CpriLink& link)
{
    for (SimulatedCpriLink& simulated : m_links) {
        if (simulated.link == link) {
            return simulated.model;
        }
    }
    throw InvalidParameterException("no such CPRI link", __FILE__, __LINE__);
}

bool CpriLinks::step()
{
    bool isAnyChanged = false;
    for (SimulatedCpriLink& simulated : m_links) {
        isAnyChanged = simulated.model.step() || isAnyChanged;
    }
    return isAnyChanged;
}

} // namespace dorn::examples
