// SPDX-License-Identifier: MIT
#include "AaConfigTag.h"

#include "AaMem.h"
#include "FailingFilePort.hpp"
#include "NodeTest.hpp"
#include "OutputCapture.hpp"
#include "TagRecorder.hpp"
#include "node/PerNode.hpp"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace {

using dorn::host::closeNode;
using dorn::host::test::TagRecorder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TagRecorder recorder;

void record(const char* name, const void* value, uint32_t length)
{
    recorder.add(name, value, length);
}

void recordToo(const char* name, const void* value, uint32_t length)
{
    recorder.add(std::string("too ") + name, value, length);
}

class AaConfigTagTest : public dorn::testkit::NodeTest {
protected:
    AaConfigTagTest() { recorder.clear(); }

    /// The tag's bytes, or the failing call's status as a text in brackets.
    static std::string valueOf(const char* name)
    {
        void* value = nullptr;
        uint32_t length = 0;
        const int32_t status = AaConfigTagGet(name, &value, &length);
        return taken(status, value, length);
    }
    static std::string valueOrDefault(const char* name, const std::string& otherwise)
    {
        void* value = nullptr;
        uint32_t length = 0;
        const int32_t status =
            AaConfigTagGetDefault(name, &value, &length, otherwise.data(), static_cast<uint32_t>(otherwise.size()));
        return taken(status, value, length);
    }

private:
    static std::string taken(int32_t status, void* value, uint32_t length)
    {
        if (status != EAaConfigTagStatus_Ok) {
            EXPECT_EQ(value, nullptr);
            return "<" + std::to_string(status) + ">";
        }
        EXPECT_EQ(static_cast<const char*>(value)[length], '\0');
        std::string text(static_cast<const char*>(value), length);
        AaMemUnRef(value);
        return text;
    }
};

TEST_F(AaConfigTagTest, EarlyStartupMakesTheTagsUsable)
{
    EXPECT_EQ(AaConfigEarlyStartup(), 0);
    EXPECT_EQ(AaConfigEarlyStartup(), 0);
}

TEST_F(AaConfigTagTest, EarlyStartupKeepsTheStoresFromTheNumbersOfClosedStandardStreams)
{
    const pid_t child = fork();
    if (child == 0) {
        for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            close(descriptor);
        }
        bool isRight = AaConfigEarlyStartup() == 0;
        for (const char* const link : {"/proc/self/fd/0", "/proc/self/fd/1", "/proc/self/fd/2"}) {
            std::error_code error;
            isRight = isRight && std::filesystem::read_symlink(link, error) == "/dev/null";
        }
        isRight = isRight && write(STDERR_FILENO, "x", 1) == -1 && errno == EBADF;
        _exit(isRight ? 0 : 1);
    }

    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

TEST_F(AaConfigTagTest, EarlyStartupLeavesOpenStandardStreamsAlone)
{
    const auto links = [] {
        std::vector<std::string> names;
        for (const char* const link : {"/proc/self/fd/0", "/proc/self/fd/1", "/proc/self/fd/2"}) {
            names.push_back(std::filesystem::read_symlink(link));
        }
        return names;
    };
    const std::vector<std::string> before = links();
    EXPECT_EQ(AaConfigEarlyStartup(), 0);
    EXPECT_EQ(links(), before);
}

TEST_F(AaConfigTagTest, StringHasNoTerminatorInItsValue)
{
    EXPECT_EQ(AaConfigTagSetString("sys.name", "board"), 0);
    EXPECT_EQ(valueOf("sys.name"), "board");
}

TEST_F(AaConfigTagTest, NumbersHaveTheirOwnSize)
{
    EXPECT_EQ(AaConfigTagSetU16("sys.u16", 0x1234), 0);
    EXPECT_EQ(AaConfigTagSetU32("sys.u32", 0x12345678), 0);
    EXPECT_EQ(valueOf("sys.u16").size(), 2U);
    EXPECT_EQ(valueOf("sys.u32").size(), 4U);
    uint16_t small = 0;
    std::memcpy(&small, valueOf("sys.u16").data(), sizeof small);
    EXPECT_EQ(small, 0x1234);
    uint32_t number = 0;
    EXPECT_EQ(AaConfigTagGetU32("sys.u32", &number), 0);
    EXPECT_EQ(number, 0x12345678U);
}

TEST_F(AaConfigTagTest, BytesAreKeptAsTheyAre)
{
    const std::string bytes("\0\x01\xFF\0", 4);
    EXPECT_EQ(AaConfigTagSet("sys.bytes", bytes.data(), 4), 0);
    EXPECT_EQ(valueOf("sys.bytes"), bytes);
}

TEST_F(AaConfigTagTest, EmptyValueIsAValue)
{
    EXPECT_EQ(AaConfigTagSetString("sys.empty", ""), 0);
    EXPECT_EQ(valueOf("sys.empty"), "");
    EXPECT_EQ(AaConfigTagSet("sys.nothing", nullptr, 0), 0);
    EXPECT_EQ(valueOf("sys.nothing"), "");
}

TEST_F(AaConfigTagTest, LaterSetReplacesTheValueAndItsSize)
{
    AaConfigTagSetString("sys.name", "a long name");
    AaConfigTagSetU16("sys.name", 1);
    EXPECT_EQ(valueOf("sys.name").size(), 2U);
}

TEST_F(AaConfigTagTest, MissingTagIsNotFound)
{
    EXPECT_EQ(valueOf("sys.none"), "<1>");
    uint32_t number = 77;
    EXPECT_EQ(AaConfigTagGetU32("sys.none", &number), EAaConfigTagStatus_NotFound);
    EXPECT_EQ(number, 77U);
}

TEST_F(AaConfigTagTest, NumberOfAnotherSizeIsNotRead)
{
    AaConfigTagSetU16("sys.u16", 1);
    AaConfigTagSetString("sys.text", "12345");
    uint32_t number = 77;
    EXPECT_EQ(AaConfigTagGetU32("sys.u16", &number), EAaConfigTagStatus_WrongSize);
    EXPECT_EQ(AaConfigTagGetU32("sys.text", &number), EAaConfigTagStatus_WrongSize);
    EXPECT_EQ(number, 77U);
}

TEST_F(AaConfigTagTest, DefaultStandsInForAMissingTagOnly)
{
    EXPECT_EQ(valueOrDefault("sys.unit.ownboard", "\x10"), "\x10");
    EXPECT_EQ(valueOf("sys.unit.ownboard"), "<1>");
    AaConfigTagSetString("sys.unit.ownboard", "set");
    EXPECT_EQ(valueOrDefault("sys.unit.ownboard", "\x10"), "set");
    EXPECT_EQ(valueOrDefault("sys.none", ""), "");
}

TEST_F(AaConfigTagTest, LengthNeedNotBeAskedFor)
{
    AaConfigTagSetString("sys.name", "board");
    void* value = nullptr;
    EXPECT_EQ(AaConfigTagGet("sys.name", &value, nullptr), 0);
    EXPECT_STREQ(static_cast<const char*>(value), "board");
    AaMemUnRef(value);
}

TEST_F(AaConfigTagTest, NamesHaveOneTo255Characters)
{
    const std::string longest(255, 'n');
    const std::string tooLong(256, 'n');

    EXPECT_EQ(AaConfigTagSetU32(longest.c_str(), 1), 0);
    EXPECT_EQ(valueOf(longest.c_str()).size(), 4U);

    for (const char* const name : {tooLong.c_str(), "", static_cast<const char*>(nullptr)}) {
        uint32_t number = 0;
        EXPECT_EQ(AaConfigTagSetU32(name, 1), EAaConfigTagStatus_BadArgument);
        EXPECT_EQ(AaConfigTagSetString(name, "1"), EAaConfigTagStatus_BadArgument);
        EXPECT_EQ(valueOf(name), "<2>");
        EXPECT_EQ(valueOrDefault(name, "1"), "<2>");
        EXPECT_EQ(AaConfigTagGetU32(name, &number), EAaConfigTagStatus_BadArgument);
        EXPECT_EQ(AaConfigTagRegister(name, record), EAaConfigTagStatus_BadArgument);
        EXPECT_EQ(AaConfigTagUnregister(name, record), EAaConfigTagStatus_BadArgument);
    }
}

TEST_F(AaConfigTagTest, ValuesHaveUpTo65535Bytes)
{
    const std::string longest(65535, 'v');
    const std::string tooLong(65536, 'v');
    EXPECT_EQ(AaConfigTagSetString("sys.long", longest.c_str()), 0);
    EXPECT_EQ(valueOf("sys.long"), longest);
    EXPECT_EQ(AaConfigTagSetString("sys.long", tooLong.c_str()), EAaConfigTagStatus_BadArgument);
    EXPECT_EQ(AaConfigTagSet("sys.long", tooLong.data(), 65536), EAaConfigTagStatus_BadArgument);
    EXPECT_EQ(valueOf("sys.long"), longest);
}

TEST_F(AaConfigTagTest, NullPointersAreRefused)
{
    EXPECT_EQ(AaConfigTagSetString("sys.a", nullptr), EAaConfigTagStatus_BadArgument);
    EXPECT_EQ(AaConfigTagSet("sys.a", nullptr, 1), EAaConfigTagStatus_BadArgument);
    EXPECT_EQ(AaConfigTagGet("sys.a", nullptr, nullptr), EAaConfigTagStatus_BadArgument);
    EXPECT_EQ(AaConfigTagGetU32("sys.a", nullptr), EAaConfigTagStatus_BadArgument);
    EXPECT_EQ(AaConfigTagRegister("sys.a", nullptr), EAaConfigTagStatus_BadArgument);
    EXPECT_EQ(AaConfigTagUnregister("sys.a", nullptr), EAaConfigTagStatus_BadArgument);
    void* value = &value;
    EXPECT_EQ(AaConfigTagGetDefault("sys.a", &value, nullptr, nullptr, 1), EAaConfigTagStatus_BadArgument);
    EXPECT_EQ(value, nullptr);
}

TEST_F(AaConfigTagTest, TagsOutliveTheProcessesThatUseThem)
{
    AaConfigTagSetU32("sys.x", 5);
    closeNode();
    uint32_t number = 0;
    EXPECT_EQ(AaConfigTagGetU32("sys.x", &number), 0);
    EXPECT_EQ(number, 5U);
}

TEST_F(AaConfigTagTest, ProcessTagsEndWithTheirProcess)
{
    AaConfigTagSetString("tessel.service.aapro.eename", "GreeterS");
    AaConfigTagSetU16("tessel.service.aatbts.cpid", 0x123);
    EXPECT_EQ(valueOf("tessel.service.aapro.eename"), "GreeterS");
    EXPECT_EQ(valueOf("tessel.service.none"), "<1>");
    closeNode();
    EXPECT_EQ(valueOf("tessel.service.aapro.eename"), "<1>");
}

TEST_F(AaConfigTagTest, ObserverIsToldOfEverySetInOrder)
{
    ASSERT_EQ(AaConfigTagRegister("sys.x", record), 0);
    AaConfigTagSetString("sys.x", "1");
    AaConfigTagSetString("sys.x", "1");
    AaConfigTagSetString("sys.y", "other");
    AaConfigTagSetString("sys.x", "");
    AaConfigTagSetString("sys.x", "2");
    EXPECT_THAT(recorder.waitFor(4), ElementsAre("sys.x=1", "sys.x=1", "sys.x=", "sys.x=2"));
}

TEST_F(AaConfigTagTest, ObserverOfAProcessTagIsTold)
{
    ASSERT_EQ(AaConfigTagRegister("tessel.service.x", record), 0);
    AaConfigTagSetString("tessel.service.x", "1");
    AaConfigTagSetString("tessel.service.y", "2");
    AaConfigTagSetString("tessel.service.x", "3");
    EXPECT_THAT(recorder.waitFor(2), ElementsAre("tessel.service.x=1", "tessel.service.x=3"));
}

TEST_F(AaConfigTagTest, PresentValueIsNotReported)
{
    AaConfigTagSetString("sys.x", "before");
    AaConfigTagSetString("tessel.service.x", "before");
    ASSERT_EQ(AaConfigTagRegister("sys.x", record), 0);
    ASSERT_EQ(AaConfigTagRegister("tessel.service.x", record), 0);
    AaConfigTagSetString("sys.x", "after");
    EXPECT_THAT(recorder.waitFor(1), ElementsAre("sys.x=after"));
    AaConfigTagSetString("tessel.service.x", "after");
    EXPECT_THAT(recorder.waitFor(2), ElementsAre("sys.x=after", "tessel.service.x=after"));
}

TEST_F(AaConfigTagTest, SameObserverIsRegisteredOncePerName)
{
    ASSERT_EQ(AaConfigTagRegister("sys.x", record), 0);
    ASSERT_EQ(AaConfigTagRegister("sys.x", record), 0);
    ASSERT_EQ(AaConfigTagRegister("sys.y", record), 0);
    AaConfigTagSetString("sys.x", "1");
    AaConfigTagSetString("sys.y", "2");
    EXPECT_THAT(recorder.waitFor(2), ElementsAre("sys.x=1", "sys.y=2"));
    EXPECT_EQ(AaConfigTagUnregister("sys.x", record), 0);
    EXPECT_EQ(AaConfigTagUnregister("sys.x", record), EAaConfigTagStatus_NotFound);
}

TEST_F(AaConfigTagTest, SeveralObserversOfATagAreToldInTheOrderOfTheirRegistration)
{
    ASSERT_EQ(AaConfigTagRegister("sys.x", recordToo), 0);
    ASSERT_EQ(AaConfigTagRegister("sys.x", record), 0);
    AaConfigTagSetString("sys.x", "1");
    AaConfigTagSetString("sys.x", "2");
    EXPECT_THAT(recorder.waitFor(4), ElementsAre("too sys.x=1", "sys.x=1", "too sys.x=2", "sys.x=2"));
}

TEST_F(AaConfigTagTest, UnregisteredObserverIsNotCalledAgain)
{
    ASSERT_EQ(AaConfigTagRegister("sys.x", record), 0);
    ASSERT_EQ(AaConfigTagRegister("sys.x", recordToo), 0);
    EXPECT_EQ(AaConfigTagUnregister("sys.x", record), 0);
    AaConfigTagSetString("sys.x", "1");
    EXPECT_THAT(recorder.waitFor(1), ElementsAre("too sys.x=1"));
}

TEST_F(AaConfigTagTest, ObserverThatIsNotRegisteredIsNotFound)
{
    EXPECT_EQ(AaConfigTagUnregister("sys.x", record), EAaConfigTagStatus_NotFound);
    ASSERT_EQ(AaConfigTagRegister("sys.x", record), 0);
    EXPECT_EQ(AaConfigTagUnregister("sys.x", recordToo), EAaConfigTagStatus_NotFound);
    EXPECT_EQ(AaConfigTagUnregister("sys.y", record), EAaConfigTagStatus_NotFound);
}

TEST_F(AaConfigTagTest, ObserversValueIsAlignedForAnyTypeAndNeverNull)
{
    static std::optional<bool> isGood;
    ASSERT_EQ(AaConfigTagRegister("sys.x",
                                  [](const char* name, const void* value, uint32_t length) {
                                      const bool isAligned =
                                          reinterpret_cast<std::uintptr_t>(value) % alignof(std::max_align_t) == 0;
                                      isGood = isGood.value_or(true) && value != nullptr && isAligned;
                                      recorder.add(name, value, length);
                                  }),
              0);

    AaConfigTagSetString("sys.x", "");
    AaConfigTagSetString("sys.x", "1");
    AaConfigTagSetU32("sys.x", 1);
    ASSERT_EQ(recorder.waitFor(3).size(), 3U);
    closeNode();

    EXPECT_EQ(isGood, true);
}

TEST_F(AaConfigTagTest, ObserversShortValueIsFollowedByZeros)
{
    ASSERT_EQ(AaConfigTagRegister("sys.x", [](const char* name, const void* value,
                                              uint32_t /*length*/) { recorder.add(name, value, 4); }),
              0);
    AaConfigTagSet("sys.x", "\xFF\xFE", 2);
    AaConfigTagSet("sys.x", nullptr, 0);
    AaConfigTagSet("sys.x", "\xFF\xFE\xFD", 3);
    EXPECT_THAT(recorder.waitFor(3),
                ElementsAre(std::string("sys.x=\xFF\xFE\0\0", 10), std::string("sys.x=\0\0\0\0", 10),
                            std::string("sys.x=\xFF\xFE\xFD\0", 10)));
}

TEST_F(AaConfigTagTest, StoreThatCannotBeOpenedIsToldOnStandardError)
{
    dorn::testkit::FullDisk disk;
    dorn::testkit::OutputCapture output;
    EXPECT_NE(AaConfigEarlyStartup(), 0);
    EXPECT_EQ(output.standardError(),
              "dorn: store '" + m_node.nodeDirectory() + "/tags.control' cannot be created: No space left on device\n");
}

TEST_F(AaConfigTagTest, FullDiskForTheDatabaseIsToldOnStandardError)
{
    dorn::testkit::FullDisk disk(40'000);
    dorn::testkit::OutputCapture output;
    EXPECT_NE(AaConfigEarlyStartup(), 0);
    EXPECT_EQ(output.standardError(),
              "dorn: tag store '" + m_node.nodeDirectory() + "/tags' cannot be made: No space left on device\n");
}

TEST_F(AaConfigTagTest, StoreThatCannotBeOpenedFailsEveryFunctionWithALogLine)
{
    const std::string path = m_node.nodeDirectory();
    dorn::testkit::FullDisk disk;
    uint32_t number = 0;

    EXPECT_EQ(AaConfigTagSetU32("sys.x", 1), EAaConfigTagStatus_StoreFailed);
    EXPECT_EQ(AaConfigTagGetU32("sys.x", &number), EAaConfigTagStatus_StoreFailed);
    EXPECT_EQ(AaConfigTagRegister("sys.x", record), EAaConfigTagStatus_StoreFailed);
    EXPECT_EQ(AaConfigTagUnregister("sys.x", record), EAaConfigTagStatus_StoreFailed);

    const std::string reason = ": store '" + path + "/tags.control' cannot be created: No space left on device";
    EXPECT_THAT(m_log.texts(), ElementsAre("Error 0x0 configuration tag 'sys.x' cannot be set" + reason,
                                           "Error 0x0 configuration tag 'sys.x' cannot be read" + reason,
                                           "Error 0x0 configuration tag 'sys.x' cannot be observed" + reason,
                                           "Error 0x0 configuration tag 'sys.x' cannot be left" + reason));
}

TEST_F(AaConfigTagTest, NothingIsLoggedWhileAllIsWell)
{
    AaConfigEarlyStartup();
    AaConfigTagSetU32("sys.x", 1);
    valueOf("sys.none");
    AaConfigTagRegister("sys.x", record);
    AaConfigTagUnregister("sys.x", record);
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

} // namespace
