// SPDX-License-Identifier: MIT
#include "config/TagFile.hpp"

#include "AaConfigTag.h"
#include "FailingFilePort.hpp"
#include "NodeTest.hpp"
#include "config/TagStore.hpp"

#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace dorn::host {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* path = "/opt/dorn/dorn.xml";

class TagFileTest : public testkit::NodeTest {
protected:
    TagFileTest() { setenv("DORN_LOG_LEVEL", "debug", 1); }
    ~TagFileTest() override { unsetenv("DORN_LOG_LEVEL"); }

    static std::string get(const std::string& name)
    {
        const auto value = PerNode<TagStore>::get().get(name);
        return value ? std::string(reinterpret_cast<const char*>(value->data()), value->size()) : "none";
    }
};

TEST_F(TagFileTest, TagsOfTheFileAreSet)
{
    m_node.writeBoardFile(path, "<dorn><tag name='sys.x'>1</tag><tag name='tessel.service.x'>2</tag></dorn>");
    EXPECT_EQ(AaConfigTagReadFile(path), 0);
    EXPECT_EQ(get("sys.x"), "1");
    EXPECT_EQ(get("tessel.service.x"), "2");
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(TagFileTest, LaterEntryOfTheSameNameCounts)
{
    m_node.writeBoardFile(path, "<dorn><tag name='sys.x'>1</tag><tag name='sys.x'>2</tag></dorn>");
    EXPECT_EQ(AaConfigTagReadFile(path), 0);
    EXPECT_EQ(get("sys.x"), "2");
}

TEST_F(TagFileTest, BadEntryIsLoggedWithTheTargetsPathAndLine)
{
    m_node.writeBoardFile(path, "<dorn>\n<tag name='sys.x' type='u8'>300</tag>\n<tag name='sys.y'>1</tag>\n</dorn>");
    EXPECT_EQ(AaConfigTagReadFile(path), 2);
    EXPECT_EQ(get("sys.x"), "none");
    EXPECT_EQ(get("sys.y"), "1");
    EXPECT_THAT(m_log.texts(), ElementsAre("Warning 0x0 /opt/dorn/dorn.xml:2: entry is passed over: tag 'sys.x': '300' "
                                           "is not a number from 0 to 255"));
}

TEST_F(TagFileTest, FileThatIsNotWellFormedIsUsedUpToTheFault)
{
    m_node.writeBoardFile(path, "<dorn>\n<tag name='sys.x'>1</tag>\n<tag name='sys.y'>2</dorn>\n");
    EXPECT_EQ(AaConfigTagReadFile(path), 2);
    EXPECT_EQ(get("sys.x"), "1");
    EXPECT_EQ(get("sys.y"), "none");
    EXPECT_THAT(m_log.texts(),
                ElementsAre("Warning 0x0 /opt/dorn/dorn.xml:3: file is passed over from column 22 on: an end "
                            "tag has another name than its element"));
}

TEST_F(TagFileTest, MissingFileIsNoCauseForAWarning)
{
    EXPECT_EQ(AaConfigTagReadFile(path), 1);
    EXPECT_THAT(
        m_log.texts(),
        ElementsAre("Debug 0x0 configuration file '/opt/dorn/dorn.xml' cannot be read: No such file or directory"));
    EXPECT_EQ(AaConfigTagReadFile(nullptr), 1);
    EXPECT_EQ(AaConfigTagReadFile("relative.xml"), 1);
}

TEST_F(TagFileTest, WhatIsNoFileIsAWarning)
{
    std::filesystem::create_directories(m_node.boardPath(path));
    EXPECT_EQ(AaConfigTagReadFile(path), 1);
    EXPECT_THAT(m_log.texts(),
                ElementsAre("Warning 0x0 configuration file '/opt/dorn/dorn.xml' cannot be read: Is a directory"));
}

TEST_F(TagFileTest, PipeDoesNotStopTheReader)
{
    std::filesystem::create_directories(m_node.boardPath("/opt/dorn"));
    ASSERT_EQ(mkfifo(m_node.boardPath(path).c_str(), 0600), 0);
    EXPECT_EQ(AaConfigTagReadFile(path), 1);
}

TEST_F(TagFileTest, HugeFileIsNotRead)
{
    m_node.writeBoardFile(path, "<dorn/>");
    ASSERT_EQ(truncate(m_node.boardPath(path).c_str(), (off_t{16} << 20) + 1), 0);
    EXPECT_EQ(AaConfigTagReadFile(path), 1);
    EXPECT_THAT(m_log.texts(),
                ElementsAre("Warning 0x0 configuration file '/opt/dorn/dorn.xml' cannot be read: File too large"));
}

TEST_F(TagFileTest, TagThatCannotBeSetIsLoggedWithItsLine)
{
    m_node.writeBoardFile(path, "<dorn>\n<tag name='sys.x'>1</tag></dorn>");
    const std::string store = m_node.nodeDirectory() + "/tags.control";
    const testkit::FullDisk disk;
    EXPECT_EQ(AaConfigTagReadFile(path), 2);
    EXPECT_THAT(m_log.texts(), ElementsAre("Warning 0x0 /opt/dorn/dorn.xml:2: tag 'sys.x' cannot be set: store '" +
                                           store + "' cannot be created: No space left on device"));
}

} // namespace
} // namespace dorn::host
