// SPDX-License-Identifier: MIT
/// @file RouteStatsCallbackParam.hpp
/// What a measurement of a route has given: what is set in the statistics says which.
#pragma once

#include "boundaryIf/CallbackParam.hpp"
#include "boundaryIf/baseband/router/BifRouteStats.hpp"

namespace vel::hwapi::common::bif::baseband::router {

/// The result of a measurement that was triggered on a route.
class RouteStatsCallbackParam : public CallbackParam {
public:
    RouteStatsCallbackParam() = default;
    /// Has every field set.
    RouteStatsCallbackParam(std::uint32_t routeId, const BifRouteStats& routeStats)
        : m_routeId(routeId), m_routeStats(routeStats)
    {
    }

    /// @{
    /// The route, by the id that createRoute() has returned.
    std::uint32_t getRouteId() const { return m_routeId; }
    void setRouteId(std::uint32_t routeId) { m_routeId = routeId; }
    /// @}

    /// @{
    /// What was measured; the fields that are set tell which measurement it was.
    BifRouteStats getRouteStats() const { return m_routeStats; }
    void setRouteStats(const BifRouteStats& routeStats) { m_routeStats = routeStats; }
    /// @}

    bool operator==(const RouteStatsCallbackParam&) const = default;

private:
    std::uint32_t m_routeId = 0;
    BifRouteStats m_routeStats;
};

} // namespace vel::hwapi::common::bif::baseband::router
