// SPDX-License-Identifier: MIT
/// @file SfpClient.hpp
/// Who wants to know which SFP modules are there.
#pragma once

#include "boundaryIf/baseband/sfp/AbstractSfpBif.hpp"
#include "rad/ERadHwapi.h"

#include <cstdint>
#include <map>
#include <mutex>

namespace dorn::examples {

/// Logs SFP events and keeps what they have said. Events come on one thread, questions on another.
class SfpClient : public vel::hwapi::common::bif::baseband::sfp::AbstractSfpBif::AbstractSfpCallback {
public:
    /// What is known of a link's module.
    struct Module {
        bool isDetected = false;
        std::uint32_t eventCount = 0;
    };

    /// @param feature feature id of the log lines
    explicit SfpClient(ERadHwapi feature) : m_feature(feature) {}

    void operator()(vel::hwapi::common::bif::baseband::sfp::SfpCallbackParam& event) override;

    Module moduleOf(std::uint32_t physicalLinkId) const;

private:
    const ERadHwapi m_feature;
    mutable std::mutex m_mutex;
    std::map<std::uint32_t, Module> m_modules; ///< by physical link id
};

} // namespace dorn::examples
