// SPDX-License-Identifier: MIT
// The names by which reset-persistent fields ask the platform for their directory and files. This program brings its
// own wrappers of the functions that take them, so it links none of the TestKit's.
#include "AaFile.h"
#include "RpramShared.h"
#include "TestNode.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

extern "C" {
decltype(AaFileDirExists) __real_AaFileDirExists;
decltype(AaFileDirExists) __wrap_AaFileDirExists;
decltype(AaFileCreateDir) __real_AaFileCreateDir;
decltype(AaFileCreateDir) __wrap_AaFileCreateDir;
decltype(AaFileGetBoardPath) __real_AaFileGetBoardPath;
decltype(AaFileGetBoardPath) __wrap_AaFileGetBoardPath;
}

namespace {

std::vector<std::string>& calls()
{
    static std::vector<std::string> instance;
    return instance;
}

} // namespace

TBoolean __wrap_AaFileDirExists(const char* path)
{
    calls().push_back(std::string("exists ") + path);
    return __real_AaFileDirExists(path);
}

std::int32_t __wrap_AaFileCreateDir(const char* path)
{
    calls().push_back(std::string("create ") + path);
    return __real_AaFileCreateDir(path);
}

std::int32_t __wrap_AaFileGetBoardPath(const char* path, char* buffer, std::uint32_t bufferSize)
{
    calls().push_back(std::string("stream ") + path);
    return __real_AaFileGetBoardPath(path, buffer, bufferSize);
}

namespace {

using testing::ElementsAre;

class RpramNamesTest : public testing::Test {
protected:
    RpramNamesTest() { calls().clear(); }

    dorn::testkit::TestNode m_node;
};

TEST_F(RpramNamesTest, DirectoryIsMadeByItsPlatformNameAndTheFileOpenedByTheOther)
{
    EXPECT_EQ(ApiResetRpramSet(ERP_RAM_field_ResetType, 3, "warm"), 0);
    EXPECT_THAT(calls(), ElementsAre("exists /rpram/hwapi", "create /rpram/hwapi",
                                     "stream /var/tmp/hwapi/RP_RAM_field_ResetType.txt"));
}

TEST_F(RpramNamesTest, DirectoryThatIsThereIsNotMade)
{
    ASSERT_EQ(ApiResetRpramSet(ERP_RAM_field_ResetType, 3, "warm"), 0);
    calls().clear();

    EXPECT_EQ(ApiResetRpramSet(ERP_RAM_hdbde_ISTI_counter_LCP1, 1, ""), 0);

    EXPECT_THAT(calls(),
                ElementsAre("exists /rpram/hwapi", "stream /var/tmp/hwapi/ERP_RAM_hdbde_ISTI_counter_LCP1.txt"));
}

TEST_F(RpramNamesTest, ReaderAsksForNoDirectory)
{
    std::uint32_t value = 0;
    char text[RPRAM_TEXT_SIZE];

    EXPECT_EQ(ApiResetRpramGet(ERP_RAM_field_user5, &value, text), 1);

    EXPECT_THAT(calls(), ElementsAre("stream /var/tmp/hwapi/RP_RAM_field_user5.txt"));
}

} // namespace
