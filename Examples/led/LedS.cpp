// SPDX-License-Identifier: MIT
#include "LedS.hpp"

#include "AaSysLog.h"
#include "Answer.hpp"
#include "OwnUnit.hpp"

namespace dorn::examples {
namespace {

constexpr std::array<const char*, EFrontLed_Count> ledNames{"status", "climate"};
constexpr std::array<const char*, ELedColour_Count> colourNames{"off", "green", "amber", "red"};

} // namespace

LedS::LedS() : Service("LedS", ledServiceCpid, ERadHwapi_LED, ERadHwapiState_LedState) {}

void LedS::Init()
{
    logOwnUnit(GetRadId());
    AddMsgHandler(&LedS::HandleSet);
    show(EFrontLed_Status, ELedColour_Green);
}

void LedS::HandleSet(LedSetReqMsg request)
{
    answerTo<LedSetRespMsg>(request, *this, [&](LedSetRespMsg answer) {
        const bool isKnown = request->led < EFrontLed_Count && request->colour < ELedColour_Count;
        answer->led = request->led;
        answer->status = isKnown ? 0 : 1;
        if (isKnown) {
            answer->previousColour = m_colours[request->led];
            show(request->led, request->colour);
            answer->colour = m_colours[request->led];
        }
    });
}

void LedS::show(std::uint32_t led, std::uint32_t colour)
{
    if (m_colours[led] != colour) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Info, GetRadId(), "LED %s: %s -> %s", ledNames[led],
                       colourNames[m_colours[led]], colourNames[colour]);
        m_colours[led] = colour;
    }
}

} // namespace dorn::examples
