// SPDX-License-Identifier: MIT
/// @file MountMessages.hpp
/// The records of mount.h as messages of a service.
#pragma once

#include "Msg.hpp"
#include "mount.h"

namespace dorn::examples {

using ApiMountReqMsg = vel::hwapi::common::Msg<SApiMountReq, API_MOUNT_REQ_MSG>;
using ApiMountRespMsg = vel::hwapi::common::Msg<SApiMountResp, API_MOUNT_RESP_MSG>;

} // namespace dorn::examples
