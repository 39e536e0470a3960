// SPDX-License-Identifier: MIT
/// @file DoorbellS.hpp
/// Who has been at the cabinet's door.
#pragma once

#include "EventDispatcher.hpp"
#include "EventHandler.hpp"
#include "Service.hpp"
#include "Worker.hpp"

#include <atomic>
#include <cstdint>

namespace dorn::examples {

struct SVisitsReq {
    std::uint32_t transactionId;
};
struct SVisitsResp {
    std::uint32_t transactionId;
    std::uint32_t visits; ///< written to the visitors' book so far
};
using VisitsReqMsg = vel::hwapi::common::Msg<SVisitsReq, 0x2121>;
using VisitsRespMsg = vel::hwapi::common::Msg<SVisitsResp, 0x2122>;

/// Watches the door's contact and keeps the visitors' book, a file on slow flash.
class DoorbellS : public vel::hwapi::common::Service, private vel::hwapi::common::EventHandler {
public:
    /// @param contact a descriptor that becomes readable when somebody rings: one byte each. Stays the caller's.
    explicit DoorbellS(int contact);
    ~DoorbellS() override;

    /// The path of the book, on the target.
    static constexpr const char* book = "/ffs/run/visitors";

private:
    void Init() override;
    void HandleEvent(int fd) override;
    void HandleVisits(VisitsReqMsg request);

    const int m_contact;
    vel::hwapi::common::EventDispatcher& m_dispatcher;
    vel::hwapi::common::Worker& m_writer;
    std::atomic<std::uint32_t> m_visits{0};
};

} // namespace dorn::examples
