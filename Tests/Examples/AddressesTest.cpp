// SPDX-License-Identifier: MIT
// Services that run on one board are told apart by their cpids, and their messages by their ids.
#include "AlarmMessages.hpp"
#include "ClimateMessages.hpp"
#include "ClockMessages.hpp"
#include "ComfortMessages.hpp"
#include "DoorbellMessages.hpp"
#include "DownloadMessages.hpp"
#include "FirmwareMessages.hpp"
#include "LedMessages.hpp"
#include "LinkMessages.hpp"
#include "MountMessages.hpp"
#include "PostMessages.hpp"
#include "RedundancyMessages.hpp"
#include "ResetMessages.hpp"
#include "SfpMessages.hpp"
#include "SupervisorS.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <vector>

namespace dorn::examples {
namespace {

template <class Number>
void expectNoneTwice(const std::vector<Number>& numbers)
{
    std::set<Number> seen;
    for (const Number number : numbers) {
        EXPECT_TRUE(seen.insert(number).second) << std::hex << "0x" << number << " is given twice";
    }
}

TEST(AddressesTest, EveryServiceHasACpidOfItsOwn)
{
    expectNoneTwice<std::uint16_t>({faultManagerCpid, climateServiceCpid, clockServiceCpid, comfortServiceCpid,
                                    doorbellServiceCpid, downloadServiceCpid, firmwareServiceCpid, ledServiceCpid,
                                    linkServiceCpid, API_MOUNT_SERVICE_CPID, postServiceCpid, redundancyManagerCpid,
                                    resetServiceCpid, sfpServiceCpid, supervisorServiceCpid});
}

TEST(AddressesTest, EveryRequestHasAnIdOfItsOwn)
{
    expectNoneTwice<unsigned int>(
        {AlarmListReqMsg::ID,      AlarmClearReqMsg::ID,       AlarmSubscribeReqMsg::ID, ClimateStatusReqMsg::ID,
         ClockShowReqMsg::ID,      ClockActReqMsg::ID,         ComfortReqMsg::ID,        VisitsReqMsg::ID,
         DownloadReqMsg::ID,       FirmwareUpdateReqMsg::ID,   BoardResetReqMsg::ID,     LedSetReqMsg::ID,
         LinkShowReqMsg::ID,       LinkBreakReqMsg::ID,        ApiMountReqMsg::ID,       PostRunReqMsg::ID,
         RedundancyShowReqMsg::ID, RedundancySwitchReqMsg::ID, ResetReqMsg::ID,          ResetShowReqMsg::ID,
         SfpShowReqMsg::ID,        SfpPlugReqMsg::ID});
}

} // namespace
} // namespace dorn::examples
