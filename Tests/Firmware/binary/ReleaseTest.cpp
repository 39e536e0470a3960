// SPDX-License-Identifier: MIT
// Whatever becomes of an image, nothing of its trailer stays in memory: neither the text nor the document.
#include "binary.h"

#include "AaFile.h"
#include "FailNth.hpp"
#include "Image.hpp"
#include "LiveBlocks.hpp"
#include "TestNode.hpp"

#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace dorn::test {
namespace {

using testkit::FailNth;

constexpr const char* path = "/image.bin";
constexpr std::uint32_t ownId = 0x3A01;

/// The functions that read a trailer and its document, as the rest of the tests calls them.
std::int32_t validate()
{
    return binary_validate(path, ownId);
}

std::int32_t check()
{
    return binary_crc(path);
}

std::int32_t version()
{
    std::uint32_t number = 0;
    return binary_version(path, ownId, 1, &number);
}

class ReleaseTest : public ::testing::Test {
protected:
    ReleaseTest() { write(goodImage()); }

    void write(const std::string& image) const { m_node.writeBoardFile(path, image); }

    static void expectReleased(const std::function<std::int32_t()>& call, std::int32_t result)
    {
        EXPECT_EQ(call(), result); // what is made once in the life of a process is there from now on
        const std::ptrdiff_t blocks = liveBlocks();
        EXPECT_EQ(call(), result);
        EXPECT_EQ(liveBlocks(), blocks);
    }

    /// The same with each of the three functions.
    static void expectAllReleased(std::int32_t ofValidate, std::int32_t ofCheck, std::int32_t ofVersion)
    {
        expectReleased(validate, ofValidate);
        expectReleased(check, ofCheck);
        expectReleased(version, ofVersion);
    }

    const std::string payload = payloadOf(1000);

    testkit::TestNode m_node;
};

TEST_F(ReleaseTest, BlocksAreCounted)
{
    const std::ptrdiff_t blocks = liveBlocks();
    std::uint32_t beginning = 0;
    char* trailer = nullptr;
    ASSERT_EQ(get_trailer(path, &beginning, &trailer), 0U);
    EXPECT_EQ(liveBlocks(), blocks + 1);
    std::free(trailer);
    EXPECT_EQ(liveBlocks(), blocks);
}

TEST_F(ReleaseTest, GoodImageLeavesNothingBehind)
{
    expectAllReleased(0, 0, 0);
}

TEST_F(ReleaseTest, ImageThatIsMissingLeavesNothingBehind)
{
    AaFileRemove(path);

    expectAllReleased(70406, 70406, -1);
}

TEST_F(ReleaseTest, TrailerOffsetThatIsInvalidLeavesNothingBehind)
{
    write("payload" + wordOf(0));

    expectAllReleased(70407, 70407, -1);
}

TEST_F(ReleaseTest, TrailerThatIsReadInPartLeavesNothingBehind)
{
    const auto partly = [](std::int32_t (*call)()) {
        return [call] {
            const FailNth<AaFileRead> shortRead(2, 20);
            return call();
        };
    };

    expectReleased(partly(validate), 70406);
    expectReleased(partly(check), 70406);
    expectReleased(partly(version), -1);
}

TEST_F(ReleaseTest, TrailerThatIsNotXmlLeavesNothingBehind)
{
    write(imageOf(payload, "<trailer><Version>1</Version>"));

    expectAllReleased(70401, 70401, -2);
}

TEST_F(ReleaseTest, DocumentOfAnotherElementLeavesNothingBehind)
{
    write(imageOf(payload, element("image", trailerOf(contentFor(payload)))));

    expectAllReleased(70401, 70401, -3);
}

TEST_F(ReleaseTest, PayloadThatIsDamagedLeavesNothingBehind)
{
    write(imageOf(payloadOf(1000), trailerOf(contentFor("another payload"))));

    expectAllReleased(70413, 70413, 0);
}

TEST_F(ReleaseTest, CrcThatCannotBeComputedLeavesNothingBehind)
{
    const auto withoutCrc = [](std::int32_t (*call)()) {
        return [call] {
            const FailNth<AaFileOpen> failure(2);
            return call();
        };
    };

    expectReleased(withoutCrc(validate), 70413);
    expectReleased(withoutCrc(check), 70413);
}

TEST_F(ReleaseTest, ImageForAnotherBoardLeavesNothingBehind)
{
    write(imageOf(payload, trailerOf(element("Crc32", std::to_string(crcOf(payload))))));

    expectAllReleased(70411, 0, 1);
}

TEST_F(ReleaseTest, CrcLeavesNothingBehind)
{
    const auto calculate = [] {
        std::uint32_t crc = 0;
        return static_cast<std::int32_t>(calculate_crc(path, 1000, &crc));
    };

    expectReleased(calculate, 0);
    AaFileRemove(path);
    expectReleased(calculate, 70406);
}

TEST_F(ReleaseTest, CopyLeavesNothingBehind)
{
    const auto copy = [] { return binary_copy_without_trailer(path, "/payload"); };

    expectReleased(copy, 0);
    write("payload" + wordOf(11));
    expectReleased(copy, -6);
}

} // namespace
} // namespace dorn::test
