// SPDX-License-Identifier: MIT
/// @file FirmwareS.hpp
/// Keeps the FPGA's firmware current.
#pragma once

#include "FirmwareMessages.hpp"
#include "Service.hpp"

namespace dorn::examples {

/// Looks for a newer image when it is asked to, flashes it and tells what came of it. Flashing takes a while; the
/// service answers nobody else meanwhile.
class FirmwareS : public vel::hwapi::common::Service {
public:
    FirmwareS();

private:
    unsigned int PreStartup() override;
    void Init() override;
    void HandleUpdate(FirmwareUpdateReqMsg request);
    void HandleReset(BoardResetReqMsg request);
};

} // namespace dorn::examples
