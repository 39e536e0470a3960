// SPDX-License-Identifier: MIT
/// @file RealSeam.hpp
/// The platform functions past their wrappers: what the TestKit itself calls is neither counted nor made to fail.
#pragma once

#include "AaConfigTag.h"
#include "AaFile.h"
#include "AaMem.h"
#include "AaPro.h"
#include "AaSysCom.h"
#include "ddal_rio.h"

extern "C" {
decltype(AaConfigTagGet) __real_AaConfigTagGet;
decltype(AaConfigTagRegister) __real_AaConfigTagRegister;
decltype(AaConfigTagUnregister) __real_AaConfigTagUnregister;
decltype(AaFileClose) __real_AaFileClose;
decltype(AaMemUnRef) __real_AaMemUnRef;
decltype(AaProEuCurrent) __real_AaProEuCurrent;
decltype(AaSysComEuWakeUp) __real_AaSysComEuWakeUp;
decltype(AaSysComGetOwnNid) __real_AaSysComGetOwnNid;
decltype(AaSysComMsgCreate) __real_AaSysComMsgCreate;
decltype(AaSysComMsgDestroy) __real_AaSysComMsgDestroy;
decltype(AaSysComMsgGetId) __real_AaSysComMsgGetId;
decltype(AaSysComMsgGetPayload) __real_AaSysComMsgGetPayload;
decltype(AaSysComMsgGetPayloadSize) __real_AaSysComMsgGetPayloadSize;
decltype(AaSysComMsgGetReceiver) __real_AaSysComMsgGetReceiver;
decltype(AaSysComMsgGetSender) __real_AaSysComMsgGetSender;
decltype(AaSysComMsgReceive) __real_AaSysComMsgReceive;
decltype(AaSysComMsgSendS) __real_AaSysComMsgSendS;
decltype(AaSysComSicadGet) __real_AaSysComSicadGet;
decltype(AaSysComUserDeregister) __real_AaSysComUserDeregister;
decltype(AaSysComUserRegister) __real_AaSysComUserRegister;
decltype(ddal_rio_copy_close_fd) __real_ddal_rio_copy_close_fd;
}
