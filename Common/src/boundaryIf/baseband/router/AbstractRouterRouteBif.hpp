// SPDX-License-Identifier: MIT
/// @file AbstractRouterRouteBif.hpp
/// Routes of the message router: each takes the messages of an address and a type from its input links to its output
/// link. Links that are passed stay the caller's, and have to live as long as the route uses them.
#pragma once

#include "boundaryIf/AbstractBif.hpp"
#include "boundaryIf/baseband/AbstractBasebandLink.hpp"
#include "boundaryIf/baseband/router/AxcMapBif.hpp"
#include "boundaryIf/baseband/router/RouteStatsCallbackParam.hpp"
#include "boundaryIf/baseband/router/RouterTypes.hpp"
#include "boundaryIf/baseband/router/SchedulingBif.hpp"

#include <vector>

namespace vel::hwapi::common::bif::baseband::router {

/// What a driver of the message router offers for routes.
class AbstractRouterRouteBif : public AbstractBif<RouteStatsCallbackParam> {
public:
    /// Takes the results of measurements; derived from by clients.
    class AbstractRouteStatsCallback : public CallbackFunctor {};

    /// A measurement that was triggered has ended.
    [[gnu::init_priority(101)]] inline static const std::string ROUTE_MEAS_READY_EVENT_NAME =
        "RouteMeasurementReadyEvent";

    /// @return the id of the new route
    virtual std::uint32_t createRoute(const std::string& address, const EMessageType& msgType,
                                      const ERouteMode& mode) = 0;
    /// @return the id of a new route whose address, message type and mode are still to be set
    virtual std::uint32_t createRoute() = 0;
    /// Ends the route; its id is not valid any more.
    virtual void deleteRoute(std::uint32_t id) = 0;
    /// @{
    /// An enabled route carries messages from its input links to its output link.
    virtual void enableRoute(std::uint32_t id) = 0;
    virtual void disableRoute(std::uint32_t id) = 0;
    virtual bool isRouteEnabled(std::uint32_t id) = 0;
    /// @}

    /// @{
    /// The message addresses that the route takes.
    virtual void setRouteAddress(std::uint32_t id, const std::string& address) = 0;
    virtual void getRouteAddress(std::uint32_t id, std::string& address) = 0;
    /// @}

    /// @{
    /// The type of messages that the route takes.
    virtual void setRouteMsgType(std::uint32_t id, const EMessageType& msgType) = 0;
    virtual EMessageType getRouteMsgType(std::uint32_t id) = 0;
    /// @}

    /// @{
    /// How messages of several inputs become those of the output: first come first served, or by time stamp.
    virtual void setRouteMode(std::uint32_t id, const ERouteMode& mode) = 0;
    virtual ERouteMode getRouteMode(std::uint32_t id) = 0;
    /// @}

    /// @param axcMap null for messages that need none
    virtual void addRouteInputLink(std::uint32_t id, const AbstractBasebandLink* link, AxcMapBif* axcMap) = 0;
    /// Takes the link, and its map, away from the route's inputs.
    virtual void remRouteInputLink(std::uint32_t id, const AbstractBasebandLink* link) = 0;
    /// Fills @p links with the route's input links.
    virtual void getRouteInputLinks(std::uint32_t id, std::vector<const AbstractBasebandLink*>& links) = 0;
    /// @param axcMap null for messages that need none
    virtual void setRouteOutputLink(std::uint32_t id, const AbstractBasebandLink* link, AxcMapBif* axcMap) = 0;
    /// @return null when none has been set
    virtual const AbstractBasebandLink* getRouteOutputLink(std::uint32_t id) = 0;

    /// @{
    /// Where in the frames of an input or output link the antenna carrier lies.
    virtual void setRouteInputAxcMap(std::uint32_t id, const AbstractBasebandLink* link, const AxcMapBif& axcMap) = 0;
    virtual void getRouteInputAxcMap(std::uint32_t id, const AbstractBasebandLink* link, AxcMapBif& axcMap) = 0;
    virtual void setRouteOutputAxcMap(std::uint32_t id, const AxcMapBif& axcMap) = 0;
    virtual void getRouteOutputAxcMap(std::uint32_t id, AxcMapBif& axcMap) = 0;
    /// @}

    /// @{
    /// When the route may send on its output link.
    virtual void setRouteOutputScheduling(std::uint32_t id, const SchedulingBif& scheduling) = 0;
    virtual void getRouteOutputScheduling(std::uint32_t id, SchedulingBif& scheduling) = 0;
    /// @}

    /// Starts a measurement. The event brings the fill levels.
    virtual void triggerBufferFillLevelMeasurement(std::uint32_t id) = 0;
    /// Starts a measurement. The event brings the latency of messages from this input link, and the link.
    virtual void triggerMsgLatencyMeasurement(std::uint32_t id, const AbstractBasebandLink* link) = 0;

    /// Registers who is told of measurements; the callback stays the caller's and must outlive the interface.
    void setRouteStatsCallback(AbstractRouteStatsCallback* callback)
    {
        addCallback(ROUTE_MEAS_READY_EVENT_NAME, callback);
    }

protected:
    AbstractRouterRouteBif() = default;
    /// From initialize() on events go through @p worker, which stays the caller's.
    explicit AbstractRouterRouteBif(AbstractWorker& worker) : AbstractBif(worker) {}

    /// Raises #ROUTE_MEAS_READY_EVENT_NAME.
    virtual void callRouteStatsCallback(RouteStatsCallbackParam& parameter)
    {
        callCallback(ROUTE_MEAS_READY_EVENT_NAME, parameter);
    }
};

} // namespace vel::hwapi::common::bif::baseband::router
