// SPDX-License-Identifier: MIT
#include "files/InputFile.hpp"

#include "Outcome.hpp"
#include "TestConsole.hpp"
#include "TestNode.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace dorn::tool {
namespace {

constexpr std::uint64_t mebibyte = 1U << 20U;

class InputFileTest : public ::testing::Test {
protected:
    std::string file(const std::string& content)
    {
        m_node.writeBoardFile("/input", content);
        return m_node.boardPath("/input");
    }
    std::string failureOf(const std::string& path, std::uint64_t limit)
    {
        try {
            readInput(path, limit, m_console);
        } catch (const Failure& failure) {
            return failure.what();
        }
        return "none";
    }

    testkit::TestNode m_node;
    TestConsole m_console;
};

TEST_F(InputFileTest, FileIsReadWhole)
{
    EXPECT_EQ(readInput(file(""), mebibyte, m_console), "");
    const std::string content = std::string(300'000, 'a') + '\0' + "end";
    EXPECT_EQ(readInput(file(content), mebibyte, m_console), content);
}

TEST_F(InputFileTest, FileOfTheGreatestSizeIsRead)
{
    EXPECT_EQ(readInput(file("12345"), 5, m_console), "12345");
    EXPECT_EQ(failureOf(file("123456"), 5),
              "'" + m_node.boardPath("/input") + "' is greater than 5 B; --limit sets another limit");
}

TEST_F(InputFileTest, GreatFileIsRefusedBeforeItIsRead)
{
    const std::string path = file("<raml>");
    ASSERT_EQ(truncate(path.c_str(), off_t{1} << 41), 0); // a hole of two tebibytes
    EXPECT_EQ(failureOf(path, 256 * mebibyte), "'" + path + "' is greater than 256 MiB; --limit sets another limit");
}

TEST_F(InputFileTest, PipeIsReadToItsEnd)
{
    const std::string path = m_node.boardPath("/pipe");
    file(""); // makes the directory
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const std::string content(200'000, 'a');
    std::thread writer([&] {
        const int descriptor = open(path.c_str(), O_WRONLY);
        for (std::size_t sent = 0; sent < content.size();) {
            sent += static_cast<std::size_t>(write(descriptor, content.data() + sent, content.size() - sent));
        }
        close(descriptor);
    });
    EXPECT_EQ(readInput(path, mebibyte, m_console), content);
    writer.join();
}

TEST_F(InputFileTest, EndlessInputIsRefusedAtTheLimit)
{
    EXPECT_EQ(failureOf("/dev/zero", mebibyte), "'/dev/zero' is greater than 1.0 MiB; --limit sets another limit");
}

TEST_F(InputFileTest, WhatCannotBeReadIsToldWithItsReason)
{
    EXPECT_EQ(failureOf("/no/such", mebibyte), "'/no/such' cannot be read: No such file or directory");
    EXPECT_EQ(failureOf(m_node.boardRoot(), mebibyte), "'" + m_node.boardRoot() + "' cannot be read: Is a directory");
}

TEST_F(InputFileTest, StandardInputHasAName)
{
    EXPECT_EQ(shownName("-"), "standard input");
    EXPECT_EQ(shownName("plan.xml"), "'plan.xml'");
}

} // namespace
} // namespace dorn::tool
