// SPDX-License-Identifier: MIT
/// @file DoorbellMessages.hpp
/// What one says to the doorbell service.
#pragma once

#include "Msg.hpp"

#include <cstdint>

namespace dorn::examples {

constexpr std::uint16_t doorbellServiceCpid = 0x0214;

/// The door's contact, a named pipe: a byte for each time that somebody rings.
constexpr const char* doorContactPath = "/var/run/doorbell";

/// The visitors' book: a line for each visit.
constexpr const char* visitorsBookPath = "/ffs/run/visitors";

/// "How many have been here?"
struct SVisitsReq {
    std::uint32_t transactionId;
};

struct SVisitsResp {
    std::uint32_t transactionId; ///< the request's
    std::uint32_t visits;        ///< written to the visitors' book so far
};

using VisitsReqMsg = vel::hwapi::common::Msg<SVisitsReq, 0x2151>;
using VisitsRespMsg = vel::hwapi::common::Msg<SVisitsResp, 0x2152>;

} // namespace dorn::examples
