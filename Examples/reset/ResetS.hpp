// SPDX-License-Identifier: MIT
/// @file ResetS.hpp
/// Resets the board and remembers why.
#pragma once

#include "ResetMessages.hpp"
#include "Service.hpp"

namespace dorn::examples {

/// Stores the reason of a reset in a reset-persistent field before the watchdog resets the board, and tells it to
/// whoever asks after the next start.
class ResetS : public vel::hwapi::common::Service {
public:
    ResetS();

private:
    void Init() override;
    void HandleReset(ResetReqMsg request);
    void HandleShow(ResetShowReqMsg request);
    void answerReset(ResetReqMsg request, EResetStatus status);

    SResetShowResp m_lastReset{}; ///< as it was when the service started
};

} // namespace dorn::examples
