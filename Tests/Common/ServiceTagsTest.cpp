// SPDX-License-Identifier: MIT
// Observing configuration tags and waiting for them, call by call.
#include "RecordingPlatform.hpp"
#include "ScriptedService.hpp"

#include <gmock/gmock.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace vel::hwapi::common {
namespace {

using dorn::test::RecordingPlatform;
using dorn::test::ScriptedService;
using testing::AllOf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

/// Writes its tag changes between the platform's calls: `change x=5`.
class TagService : public ScriptedService {
public:
    void HandleConfigTagChange(std::string tag, unsigned int value) override
    {
        RecordingPlatform::get().note("change " + tag + "=" + std::to_string(value), "change");
        if (onChange) {
            onChange(tag, value);
        }
    }
    std::function<void(const std::string&, unsigned int)> onChange;

    using Service::m_observedTags;
    using Service::m_waitForConfigTagSem;
};

/// A number as the value of a tag.
std::string bytesOf(std::uint32_t value)
{
    return {reinterpret_cast<const char*>(&value), sizeof value};
}

class ServiceTagsTest : public testing::Test {
protected:
    ServiceTagsTest() { m_platform.clearCalls(); }

    /// Tells the service of a set, as the platform does.
    static void set(const char* name, unsigned int value, unsigned int length = 4)
    {
        Service::WaitForConfigTagObserver(name, &value, length);
    }
    static void change(const char* name, unsigned int value) { Service::ConfigTagObserver(name, &value, 4); }

    /// Has the @p nth wait run @p then when it has begun to wait.
    void whenWaiting(unsigned nth, std::function<void()> then)
    {
        m_whenWaiting[nth] = std::move(then);
        m_platform.onCall = [this](const std::string& call) {
            if (!call.starts_with("AaSemTake(")) {
                return;
            }
            if (const auto found = m_whenWaiting.find(++m_waits); found != m_whenWaiting.end()) {
                found->second();
            }
        };
    }

    RecordingPlatform m_platform;
    std::unique_ptr<TagService> m_owner = std::make_unique<TagService>();
    TagService& m_service = *m_owner;
    std::map<unsigned, std::function<void()>> m_whenWaiting;
    unsigned m_waits = 0;
};

TEST_F(ServiceTagsTest, MissingTagIsRegisteredAndThenReadAndDeliversNothing)
{
    m_service.SetObservedTag("x");

    EXPECT_THAT(m_platform.calls(), ElementsAre("AaConfigTagRegister(\"x\")", "AaConfigTagGetU32(\"x\")"));
    EXPECT_THAT(m_platform.observers, ElementsAre(Pair("x", &Service::ConfigTagObserver)));
}

TEST_F(ServiceTagsTest, ExistingTagIsDeliveredAtOnce)
{
    m_platform.tags["x"] = bytesOf(0xFFFFFFFF);

    m_service.SetObservedTag("x");

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaConfigTagRegister(\"x\")", "AaConfigTagGetU32(\"x\")", "change x=4294967295"));
}

TEST_F(ServiceTagsTest, TagIsInTheListWhenItIsRegistered)
{
    m_platform.onCall = [&](const std::string& call) {
        if (call == "AaConfigTagRegister(\"x\")") {
            change("x", 1); // the platform may tell of a set before the registration has returned
        }
    };

    m_service.SetObservedTag("x");

    EXPECT_THAT(m_platform.calls("change"), ElementsAre("change x=1"));
}

TEST_F(ServiceTagsTest, TagObservedTwiceIsRegisteredAndReadOnce)
{
    m_platform.tags["x"] = bytesOf(5);
    m_service.SetObservedTag("x");
    m_platform.clearCalls();

    m_service.SetObservedTag("x");
    EXPECT_THAT(m_platform.calls(), IsEmpty());

    change("x", 6);
    EXPECT_THAT(m_platform.calls(), ElementsAre("change x=6"));
}

TEST_F(ServiceTagsTest, TagsStandInTheListInTheOrderInWhichTheyWereAdded)
{
    for (const char* const tag : {"z", "a", "m", "a"}) {
        m_service.SetObservedTag(tag);
    }

    EXPECT_THAT(m_service.m_observedTags, ElementsAre("z", "a", "m"));
}

TEST_F(ServiceTagsTest, ChangeOfAnObservedTagIsDeliveredWithItsName)
{
    m_service.SetObservedTag("x");
    m_service.SetObservedTag("y");
    m_platform.clearCalls();

    change("y", 7);
    change("x", 8);

    EXPECT_THAT(m_platform.calls(), ElementsAre("change y=7", "change x=8"));
}

TEST_F(ServiceTagsTest, ChangeOfAnotherTagIsPassedOver)
{
    m_service.SetObservedTag("xx");
    m_platform.clearCalls();

    change("x", 7);
    change("xxx", 7);

    EXPECT_THAT(m_platform.calls(), IsEmpty());
}

TEST_F(ServiceTagsTest, ChangeWithoutValueIsPassedOver)
{
    m_service.SetObservedTag("x");
    m_platform.clearCalls();

    Service::ConfigTagObserver("x", nullptr, 4);

    EXPECT_THAT(m_platform.calls(), IsEmpty());
}

TEST_F(ServiceTagsTest, LengthOfAChangeIsNotLookedAt)
{
    m_service.SetObservedTag("x");
    m_platform.clearCalls();
    const std::array<unsigned int, 2> value{0x12345678, 9};

    for (const unsigned int length : {0U, 1U, 2U, 4U, 8U}) {
        Service::ConfigTagObserver("x", value.data(), length);
    }

    EXPECT_THAT(m_platform.calls(), AllOf(SizeIs(5), testing::Each("change x=305419896")));
}

TEST_F(ServiceTagsTest, ValueNeedNotBeAligned)
{
    m_service.SetObservedTag("x");
    m_platform.clearCalls();
    const std::array<unsigned int, 2> value{0x01010101, 0x01010101};

    Service::ConfigTagObserver("x", reinterpret_cast<const char*>(value.data()) + 1, 4);

    EXPECT_THAT(m_platform.calls(), ElementsAre("change x=16843009"));
}

TEST_F(ServiceTagsTest, TagThatIsUnsetIsUnregisteredAndNoLongerDelivered)
{
    m_service.SetObservedTag("x");
    m_service.SetObservedTag("y");
    m_platform.clearCalls();

    m_service.UnSetObservedTag("x");
    change("x", 1);
    change("y", 2);

    EXPECT_THAT(m_platform.calls(), ElementsAre("AaConfigTagUnregister(\"x\")", "change y=2"));
    EXPECT_THAT(m_platform.observers, ElementsAre(Pair("y", &Service::ConfigTagObserver)));
    EXPECT_THAT(m_service.m_observedTags, ElementsAre("y"));
}

TEST_F(ServiceTagsTest, TagStaysInTheListUntilItIsUnregistered)
{
    m_service.SetObservedTag("x");
    std::list<std::string> whenUnregistered;
    m_platform.onCall = [&](const std::string& call) {
        if (call == "AaConfigTagUnregister(\"x\")") {
            whenUnregistered = m_service.m_observedTags;
        }
    };

    m_service.UnSetObservedTag("x");

    EXPECT_THAT(whenUnregistered, ElementsAre("x"));
    EXPECT_THAT(m_service.m_observedTags, IsEmpty());
}

TEST_F(ServiceTagsTest, UnsettingATagThatIsNotObservedDoesNothing)
{
    m_service.UnSetObservedTag("x");

    EXPECT_THAT(m_platform.calls(), IsEmpty());
}

TEST_F(ServiceTagsTest, TagThatWasUnsetCanBeObservedAgain)
{
    m_platform.tags["x"] = bytesOf(5);
    m_service.SetObservedTag("x");
    m_service.UnSetObservedTag("x");
    m_platform.clearCalls();

    m_service.SetObservedTag("x");

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaConfigTagRegister(\"x\")", "AaConfigTagGetU32(\"x\")", "change x=5"));
}

TEST_F(ServiceTagsTest, TagThatCannotBeObservedIsLoggedAndReadAndDeliveredAllTheSame)
{
    m_platform.tags["x"] = bytesOf(5);
    m_platform.setResult("AaConfigTagRegister", 4);

    m_service.SetObservedTag("x");

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaConfigTagRegister(\"x\")", "Error 0x20075 Configuration tag 'x' cannot be observed: 4",
                            "AaConfigTagGetU32(\"x\")", "change x=5"));
}

TEST_F(ServiceTagsTest, TagThatCannotBeObservedStaysInTheListUntilItIsUnset)
{
    m_platform.setResult("AaConfigTagRegister", 4);
    m_service.SetObservedTag("x");
    m_platform.clearCalls();

    m_service.SetObservedTag("x");
    EXPECT_THAT(m_platform.calls(), IsEmpty());
    EXPECT_THAT(m_service.m_observedTags, ElementsAre("x"));

    m_service.UnSetObservedTag("x");
    EXPECT_THAT(m_platform.calls(), ElementsAre("AaConfigTagUnregister(\"x\")"));
    EXPECT_THAT(m_service.m_observedTags, IsEmpty());
}

TEST_F(ServiceTagsTest, HandlerMayObserveAndUnsetTags)
{
    m_service.SetObservedTag("x");
    m_service.onChange = [&](const std::string&, unsigned int) {
        m_service.UnSetObservedTag("x");
        m_service.SetObservedTag("y");
    };
    m_platform.clearCalls();

    change("x", 1);

    EXPECT_THAT(m_platform.calls(), ElementsAre("change x=1", "AaConfigTagUnregister(\"x\")",
                                                "AaConfigTagRegister(\"y\")", "AaConfigTagGetU32(\"y\")"));
}

TEST_F(ServiceTagsTest, ChangesGoToTheServiceThatWasConstructedLast)
{
    m_service.SetObservedTag("x");
    AaSemReMutex* earliersMutex = ScriptedService::m_wfctMapSem;
    TagService later;
    std::string heard;
    later.onChange = [&](const std::string& tag, unsigned int) { heard = tag; };

    change("x", 1);

    EXPECT_EQ(heard, "x");
    AaSemReMutexDestroy(&earliersMutex);
}

TEST_F(ServiceTagsTest, PresentValueGoesToTheServiceThatObservesAlsoWhenItIsNotTheLast)
{
    m_platform.tags["x"] = bytesOf(5);
    AaSemReMutex* earliersMutex = ScriptedService::m_wfctMapSem;
    TagService later;
    std::string heard;
    m_service.onChange = [&](const std::string& tag, unsigned int) { heard += "earlier " + tag; };
    later.onChange = [&](const std::string& tag, unsigned int) { heard += "later " + tag; };

    m_service.SetObservedTag("x");

    EXPECT_EQ(heard, "earlier x");
    AaSemReMutexDestroy(&earliersMutex);
}

TEST_F(ServiceTagsTest, EndOfTheServiceLeavesAllTagsBeforeTheMutexGoes)
{
    m_service.SetObservedTag("x");
    m_service.SetObservedTag("y");
    whenWaiting(1, [] { set("w", 1); });
    m_service.WaitForConfigTag("w", 1);
    m_platform.clearCalls();

    m_owner.reset();

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaConfigRadSetValue(0x22000B, 4)", "AaConfigTagUnregister(\"x\")",
                            "AaConfigTagUnregister(\"y\")", "AaSemReMutexTake()", "AaSemReMutexGive()",
                            "AaConfigTagUnregister(\"w\")", "AaSemReMutexDestroy()", "AaSysComUserDeregister(0x456)"));
    EXPECT_THAT(m_platform.observers, IsEmpty());
}

TEST_F(ServiceTagsTest, ChangeAfterTheEndOfTheServiceIsPassedOver)
{
    m_service.SetObservedTag("x");
    m_owner.reset();

    change("x", 1);
    set("x", 1);

    EXPECT_THAT(m_platform.calls("change"), IsEmpty());
}

TEST_F(ServiceTagsTest, ChangeWhileThereIsNoServiceIsPassedOver)
{
    AaSemReMutex* earliersMutex = ScriptedService::m_wfctMapSem;
    std::make_unique<TagService>().reset();
    ASSERT_EQ(Service::Get(), nullptr);
    m_service.SetObservedTag("x");

    change("x", 1);

    EXPECT_THAT(m_platform.calls("change"), IsEmpty());
    m_service.UnSetObservedTag("x");
    AaSemReMutexDestroy(&earliersMutex);
}

TEST_F(ServiceTagsTest, NextServiceBeginsWithoutTags)
{
    m_service.SetObservedTag("x");
    m_owner.reset();
    const TagService next;

    EXPECT_THAT(next.m_observedTags, IsEmpty());
}

TEST_F(ServiceTagsTest, WaitRegistersUnderTheMutexAndWaitsOutsideIt)
{
    whenWaiting(1, [] { set("x", 5); });

    m_service.WaitForConfigTag("x", 5);

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaSemReMutexTake()", "AaSemCreateC(0)", "AaConfigTagRegister(\"x\")", "AaSemReMutexGive()",
                            // the set
                            "AaSemReMutexTake()", "AaSemGive(1)", "AaSemReMutexGive()",
                            // that the wait was for
                            "AaSemTake(1, -1)", "AaSemDestroy(1)"));
    EXPECT_THAT(m_platform.observers, ElementsAre(Pair("x", &Service::WaitForConfigTagObserver)));
}

TEST_F(ServiceTagsTest, PresentValueIsNotRead)
{
    m_platform.tags["x"] = bytesOf(5);
    whenWaiting(1, [&] {
        EXPECT_THAT(m_service.m_waitForConfigTagSem["x"][5], SizeIs(1)); // it waits all the same
        set("x", 5);
    });

    m_service.WaitForConfigTag("x", 5);

    EXPECT_THAT(m_platform.calls("AaConfigTagGetU32"), IsEmpty());
}

TEST_F(ServiceTagsTest, ValueThatThePlatformReportsOnRegistrationEndsTheWait)
{
    m_platform.onCall = [](const std::string& call) {
        if (call == "AaConfigTagRegister(\"x\")") {
            set("x", 5);
        }
    };

    m_service.WaitForConfigTag("x", 5); // with a semaphore that is not given, the recording platform gives up

    EXPECT_THAT(m_service.m_waitForConfigTagSem, IsEmpty());
}

TEST_F(ServiceTagsTest, SetOfAnotherValueTagOrLengthReleasesNobody)
{
    whenWaiting(1, [&] {
        set("x", 4);
        set("y", 5);
        set("", 5);
        for (const unsigned int length : {0U, 1U, 2U, 3U, 5U, 8U}) {
            const std::array<unsigned int, 2> value{5, 0};
            Service::WaitForConfigTagObserver("x", value.data(), length);
        }
        Service::WaitForConfigTagObserver("x", nullptr, 4);
        EXPECT_THAT(m_platform.calls("AaSemGive"), IsEmpty());
        EXPECT_EQ(m_platform.calls("AaSemReMutexTake").size(), m_platform.calls("AaSemReMutexGive").size());
        set("x", 5);
    });

    m_service.WaitForConfigTag("x", 5);
}

TEST_F(ServiceTagsTest, OneSetReleasesAllWhoWaitForItsValue)
{
    whenWaiting(1, [&] { m_service.WaitForConfigTag("x", 5); });
    whenWaiting(2, [] { set("x", 5); });

    m_service.WaitForConfigTag("x", 5);

    EXPECT_THAT(m_platform.calls("AaSemGive"), SizeIs(2));
    EXPECT_THAT(m_platform.calls("AaSemDestroy("), SizeIs(2));
    EXPECT_THAT(m_service.m_waitForConfigTagSem, IsEmpty());
}

TEST_F(ServiceTagsTest, WhoWaitsForAnotherValueOfTheTagStaysInTheTable)
{
    whenWaiting(1, [&] {
        m_service.WaitForConfigTag("x", 6);
        EXPECT_THAT(m_platform.calls("AaSemGive"), SizeIs(1));
        EXPECT_THAT(m_service.m_waitForConfigTagSem, ElementsAre(Pair("x", ElementsAre(Pair(5U, SizeIs(1))))));
        set("x", 5);
    });
    whenWaiting(2, [&] {
        EXPECT_THAT(m_service.m_waitForConfigTagSem,
                    ElementsAre(Pair("x", ElementsAre(Pair(5U, SizeIs(1)), Pair(6U, SizeIs(1))))));
        set("x", 6);
    });

    m_service.WaitForConfigTag("x", 5);
}

TEST_F(ServiceTagsTest, WhoWaitsForAnotherTagStaysInTheTable)
{
    whenWaiting(1, [&] {
        m_service.WaitForConfigTag("y", 5);
        EXPECT_THAT(m_service.m_waitForConfigTagSem, ElementsAre(Pair("x", ElementsAre(Pair(5U, SizeIs(1))))));
        set("x", 5);
    });
    whenWaiting(2, [] { set("y", 5); });

    m_service.WaitForConfigTag("x", 5);
}

TEST_F(ServiceTagsTest, SecondWaitForTheSameTagRegistersAgain)
{
    whenWaiting(1, [] { set("x", 5); });
    whenWaiting(2, [] { set("x", 5); });

    m_service.WaitForConfigTag("x", 5);
    m_service.WaitForConfigTag("x", 5);

    EXPECT_THAT(m_platform.calls("AaConfigTagRegister"), SizeIs(2));
    EXPECT_THAT(m_platform.calls("AaConfigTagUnregister"), IsEmpty()); // the observer stays
}

TEST_F(ServiceTagsTest, WaitWithoutASemaphoreIsAnException)
{
    m_platform.setResult("AaSemCreateC", 1);

    try {
        m_service.WaitForConfigTag("x", 5);
        ADD_FAILURE() << "no exception";
    } catch (const Service::RuntimeException& exception) {
        EXPECT_EQ(exception.getDescription(), "No semaphore to wait for a configuration tag");
        EXPECT_EQ(exception.getFile(), "Common/src/ServiceTags.cpp");
        EXPECT_GT(exception.getLine(), 0);
    }
    EXPECT_THAT(m_service.m_waitForConfigTagSem, IsEmpty());
    EXPECT_EQ(m_platform.calls("AaSemReMutexTake").size(), m_platform.calls("AaSemReMutexGive").size());
}

TEST_F(ServiceTagsTest, WaitWithoutTheMutexIsAnException)
{
    m_owner.reset();
    m_platform.canCreateMutexes = false;
    TagService service;
    m_platform.clearCalls();

    EXPECT_THROW(service.WaitForConfigTag("x", 5), Service::RuntimeException);
    set("x", 5);

    EXPECT_THAT(m_platform.calls("AaSemReMutexGive"), IsEmpty());
    EXPECT_THAT(m_platform.calls("AaSemTake"), IsEmpty());
}

TEST_F(ServiceTagsTest, WaitForATagThatCannotBeObservedIsAnExceptionAndLeavesNothing)
{
    m_platform.setResult("AaConfigTagRegister", 2);

    try {
        m_service.WaitForConfigTag("x", 5);
        ADD_FAILURE() << "no exception";
    } catch (const Service::RuntimeException& exception) {
        EXPECT_EQ(exception.getDescription(), "Configuration tag cannot be observed");
        EXPECT_EQ(exception.getFile(), "Common/src/ServiceTags.cpp");
        EXPECT_GT(exception.getLine(), 0);
    }
    EXPECT_THAT(m_service.m_waitForConfigTagSem, IsEmpty());
    EXPECT_EQ(m_platform.calls("AaSemReMutexTake").size(), m_platform.calls("AaSemReMutexGive").size());
    EXPECT_THAT(m_platform.calls("AaSemDestroy("), SizeIs(1));
}

TEST_F(ServiceTagsTest, WaitThatThePlatformBreaksOffIsAnExceptionAndLeavesNothing)
{
    m_platform.setResult("AaSemTake", 1);

    try {
        m_service.WaitForConfigTag("x", 5);
        ADD_FAILURE() << "no exception";
    } catch (const Service::RuntimeException& exception) {
        EXPECT_EQ(exception.getDescription(), "Wait for a configuration tag failed");
        EXPECT_EQ(exception.getFile(), "Common/src/ServiceTags.cpp");
        EXPECT_GT(exception.getLine(), 0);
    }
    EXPECT_THAT(m_service.m_waitForConfigTagSem, IsEmpty());
    EXPECT_EQ(m_platform.calls("AaSemReMutexTake").size(), m_platform.calls("AaSemReMutexGive").size());
    EXPECT_EQ(m_platform.calls().back(), "AaSemDestroy(1)");
}

TEST_F(ServiceTagsTest, WaitThatThePlatformBreaksOffLeavesTheOthersInTheTable)
{
    whenWaiting(1, [&] {
        m_platform.setResult("AaSemTake", 1);
        EXPECT_THROW(m_service.WaitForConfigTag("x", 5), Service::RuntimeException);
        m_platform.setResult("AaSemTake", 0);
        EXPECT_THAT(m_service.m_waitForConfigTagSem, ElementsAre(Pair("x", ElementsAre(Pair(5U, SizeIs(1))))));
        set("x", 5);
    });

    m_service.WaitForConfigTag("x", 5);

    EXPECT_THAT(m_platform.calls("AaSemGive"), SizeIs(1));
}

} // namespace
} // namespace vel::hwapi::common
