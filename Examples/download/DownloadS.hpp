// SPDX-License-Identifier: MIT
/// @file DownloadS.hpp
/// Loads software into the DSPs.
#pragma once

#include "DownloadMessages.hpp"
#include "Service.hpp"

namespace dorn::examples {

/// Writes a file into a DSP's memory and reads it back. Before that it has the flash file systems mounted read-write,
/// where they are not, for the software that comes next. When the memory does not hold what was written, the request is
/// dumped for diagnosis.
class DownloadS : public vel::hwapi::common::Service {
public:
    DownloadS();

private:
    void Init() override;
    void HandleDownload(DownloadReqMsg request);
    bool makeWritable();
};

} // namespace dorn::examples
