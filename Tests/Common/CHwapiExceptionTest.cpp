// SPDX-License-Identifier: MIT
#include "CHwapiException.hpp"
#include "AbstractWorker.hpp"
#include "HwapiAlarm.hpp"
#include "InvalidParameterException.hpp"
#include "MsgHandlingException.hpp"
#include "Service.hpp"

#include <gtest/gtest.h>

#include <type_traits>

namespace vel::hwapi::common {
namespace {

TEST(CHwapiExceptionTest, WhatIsTheReasonAndNotTheDescription)
{
    const CHwapiException exception("Out of order", "port 3", "Port.cpp", 77);

    EXPECT_STREQ(exception.what(), "Out of order");
    EXPECT_EQ(exception.getDescription(), "port 3");
    EXPECT_EQ(exception.getFile(), "Port.cpp");
    EXPECT_EQ(exception.getLine(), 77);
}

TEST(CHwapiExceptionTest, FileMayBeNull)
{
    const CHwapiException exception("Out of order", "port 3", nullptr, 77);

    EXPECT_EQ(exception.getFile(), "");
}

TEST(CHwapiExceptionTest, TextsAreCopied)
{
    std::string description = "port 3";
    char file[] = "Port.cpp";
    const CHwapiException exception("Out of order", description, file, 77);
    description = "changed";
    file[0] = 'X';

    EXPECT_EQ(exception.getDescription(), "port 3");
    EXPECT_EQ(exception.getFile(), "Port.cpp");
}

TEST(CHwapiExceptionTest, ThrowerGivesItsOwnPlaceRelativeToTheTree)
{
    const ssize_t line = __LINE__ + 2;
    try {
        throw InvalidParameterException("no such port", __FILE__, __LINE__);
    } catch (const CHwapiException& exception) {
        EXPECT_EQ(exception.getFile(), "Tests/Common/CHwapiExceptionTest.cpp");
        EXPECT_EQ(exception.getLine(), line);
    }
}

/// Throws a copy of @p thrown and catches it as the root of all.
template <class Exception>
void expectCaughtAsRoot(const Exception& thrown, const char* reason)
{
    static_assert(std::is_base_of_v<CHwapiException, Exception>);
    static_assert(std::is_copy_constructible_v<Exception>);
    try {
        const Exception copy(thrown);
        throw copy;
    } catch (const std::exception& caught) {
        EXPECT_STREQ(caught.what(), reason);
        const auto& exception = dynamic_cast<const CHwapiException&>(caught);
        EXPECT_EQ(exception.getDescription(), "what failed");
        EXPECT_EQ(exception.getFile(), "Some.cpp");
        EXPECT_EQ(exception.getLine(), 12);
        EXPECT_NE(dynamic_cast<const Exception*>(&caught), nullptr);
    }
}

TEST(CHwapiExceptionTest, InvalidParameterHasItsReason)
{
    expectCaughtAsRoot(InvalidParameterException("what failed", "Some.cpp", 12), "Invalid parameter");
}

TEST(CHwapiExceptionTest, InitFailedHasItsReason)
{
    expectCaughtAsRoot(Service::InitFailedException("what failed", "Some.cpp", 12), "Initialization failed");
}

TEST(CHwapiExceptionTest, RuntimeHasItsReason)
{
    expectCaughtAsRoot(Service::RuntimeException("what failed", "Some.cpp", 12), "Runtime error");
}

TEST(CHwapiExceptionTest, MsgSendingHasItsReason)
{
    expectCaughtAsRoot(HwapiAlarm::MsgSendingException("what failed", "Some.cpp", 12), "Message sending failed");
}

TEST(CHwapiExceptionTest, MsgHandlingHasItsReason)
{
    expectCaughtAsRoot(MsgHandlingException("what failed", "Some.cpp", 12), "Message handling error");
}

TEST(CHwapiExceptionTest, SetupAlreadyDoneHasItsReason)
{
    expectCaughtAsRoot(AbstractWorker::SetupAlreadyDoneException("what failed", "Some.cpp", 12),
                       "Worker setup already done");
}

TEST(CHwapiExceptionTest, TaskTellsItsOwnReason)
{
    expectCaughtAsRoot(AbstractWorker::Task::TaskException("Flash is busy", "what failed", "Some.cpp", 12),
                       "Flash is busy");
}

} // namespace
} // namespace vel::hwapi::common
