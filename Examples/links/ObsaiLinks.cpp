// SPDX-License-Identifier: MIT
#include "ObsaiLinks.hpp"

#include "InvalidParameterException.hpp"

namespace dorn::examples {

using vel::hwapi::common::InvalidParameterException;
using vel::hwapi::common::bif::baseband::obsai::AbstractObsaiLink;

namespace {

constexpr double metresToCabinet = 20;
constexpr double metresToMast = 100;

} // namespace

ObsaiLinks::ObsaiLinks()
    : m_links{{{AbstractObsaiLink(0, "obsai0"), ObsaiLinkModel(metresToCabinet)},
               {AbstractObsaiLink(1, "obsai1"), ObsaiLinkModel(metresToMast)}}}
{
}

ObsaiLinkModel& ObsaiLinks::model(const AbstractObsaiLink& link)
{
    for (SimulatedObsaiLink& simulated : m_links) {
        if (simulated.link == link) {
            return simulated.model;
        }
    }
    throw InvalidParameterException("no such OBSAI link", __FILE__, __LINE__);
}

bool ObsaiLinks::step()
{
    bool isAnyChanged = false;
    for (SimulatedObsaiLink& simulated : m_links) {
        isAnyChanged = simulated.model.step() || isAnyChanged;
    }
    return isAnyChanged;
}

} // namespace dorn::examples
