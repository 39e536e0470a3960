// SPDX-License-Identifier: MIT
/// @file MountS.hpp
/// The mount service of the board: part of the platform, which owns the flash file systems.
#pragma once

#include "MountMessages.hpp"
#include "Service.hpp"

namespace dorn::examples {

/// Mounts a flash file system as it is asked to, see mount.h. On the simulated board a mount is a mode that the driver
/// tells from then on, until the next reset; nothing is mounted on the machine.
///
/// The success code of the answer is 0, or a driver's code: there is no such file system, access or board.
class MountS : public vel::hwapi::common::Service {
public:
    MountS();

private:
    void Init() override;
    void HandleMount(ApiMountReqMsg request);
};

} // namespace dorn::examples
