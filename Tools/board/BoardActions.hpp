// SPDX-License-Identifier: MIT
/// @file BoardActions.hpp
/// What an operator does to a board that runs.
#pragma once

#include "AaSysCom.h"
#include "LinkMessages.hpp"
#include "driver/DriverFunction.hpp"
#include "text/Values.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace dorn::tool {

/// A message to a service whose answer begins with the transaction id and a status, 0 for done; or a driver function
/// that is to fail.
struct BoardAction {
    std::string label; ///< what it does: "plug cage 1"
    TAaSysComCpid cpid = 0;
    TAaSysComMsgId request = 0;
    TAaSysComMsgId answer = 0;
    Bytes payload = {};             ///< begins with the transaction id
    bool isSilenceExpected = false; ///< who does it does not live to answer
    std::optional<board::DriverFunction> fault = std::nullopt;

    std::uint32_t transaction() const;
};

BoardAction plugAction(std::uint32_t cage, bool isPlugged);
/// @param parts ELinkPart that are broken afterwards
BoardAction breakAction(const examples::SLink& link, std::uint32_t parts);
BoardAction referenceAction(bool isThere);
BoardAction switchAction(bool isActive);
BoardAction resetAction();
/// Has the next call of a driver function fail as if the device did not answer.
BoardAction faultAction(board::DriverFunction function);

} // namespace dorn::tool
