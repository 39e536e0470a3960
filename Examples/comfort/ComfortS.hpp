// SPDX-License-Identifier: MIT
/// @file ComfortS.hpp
/// Tells whether the board is comfortable: forwards the question to the climate service, compares its answer with a
/// limit that is a configuration tag, or the board's plan has while the tag is not set.
#pragma once

#include "ComfortReq.hpp"
#include "Service.hpp"

namespace dorn::examples {

/// The managed object of the board's plan whose parameter "limit" says up to how many degrees Celsius the board is
/// comfortable.
constexpr const char* comfortPlanObject = "Board=1,Comfort=1";

class ComfortS : public vel::hwapi::common::Service {
public:
    ComfortS();
    ComfortS(const ComfortS&) = delete;
    ComfortS& operator=(const ComfortS&) = delete;
    ~ComfortS() override;

private:
    void Init() override;
    void takePlannedLimit();
    void HandleConfigTagChange(std::string tag, unsigned int value) override;

    ComfortReqs m_reqs;
};

} // namespace dorn::examples
