// SPDX-License-Identifier: MIT
/// @file PostS.hpp
/// Power-on self-tests, which can be run again.
#pragma once

#include "PostMessages.hpp"
#include "Service.hpp"
#include "Worker.hpp"

#include <cstdint>
#include <string>

namespace dorn::examples {

/// Plays the tests of the main controller and of a DSP, records their results, keeps its log lines in a ring buffer and
/// tells the supervisor what came of it.
class PostS : public vel::hwapi::common::Service {
public:
    PostS();

private:
    void Init() override;
    void HandleRun(PostRunReqMsg request);
    bool record(std::uint32_t failing) const;
    void tellSupervisor(const std::string& text);

    vel::hwapi::common::Worker& m_teller; ///< waits for the supervisor, which may take its time
    std::uint32_t m_resetType = 0;
};

} // namespace dorn::examples
