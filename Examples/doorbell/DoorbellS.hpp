// SPDX-License-Identifier: MIT
/// @file DoorbellS.hpp
/// Who has been at the cabinet's door.
#pragma once

#include "DoorbellMessages.hpp"
#include "EventDispatcher.hpp"
#include "EventHandler.hpp"
#include "Service.hpp"
#include "Worker.hpp"

#include <atomic>
#include <cstdint>

namespace dorn::examples {

/// Watches the door's contact and keeps the visitors' book, a file on slow flash.
class DoorbellS : public vel::hwapi::common::Service, private vel::hwapi::common::EventHandler {
public:
    /// @param contact a descriptor that becomes readable when somebody rings: one byte each. Stays the caller's.
    explicit DoorbellS(int contact);
    ~DoorbellS() override;

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
