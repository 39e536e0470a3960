// SPDX-License-Identifier: MIT
/// @file ComfortS.hpp
/// Tells whether the board is comfortable: forwards the question to the climate service, compares its answer with a
/// limit that is a configuration tag.
#pragma once

#include "ComfortReq.hpp"
#include "Service.hpp"

namespace dorn::examples {

class ComfortS : public vel::hwapi::common::Service {
public:
    ComfortS();
    ComfortS(const ComfortS&) = delete;
    ComfortS& operator=(const ComfortS&) = delete;
    ~ComfortS() override;

private:
    void Init() override;
    void HandleConfigTagChange(std::string tag, unsigned int value) override;

    ComfortReqs m_reqs;
};

} // namespace dorn::examples
