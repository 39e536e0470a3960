// SPDX-License-Identifier: MIT
// The functions keep no state: many of them may read one file at once.
#include "binary.h"

#include "FirmwareTest.hpp"

#include <functional>
#include <latch>
#include <set>
#include <thread>

namespace dorn::test {
namespace {

using ::testing::IsSubsetOf;

constexpr std::uint32_t ownId = 0x3A01;

class ThreadsTest : public FirmwareTest {
protected:
    /// Several blocks, so that threads are at different places of it.
    ThreadsTest() { write(imageOf(payload, trailerOf(contentFor(payload)))); }

    void check() const { EXPECT_EQ(binary_crc(path), 0); }

    void validate() const { EXPECT_EQ(binary_validate(path, ownId), 0); }

    void readVersion() const
    {
        std::uint32_t version = 0;
        EXPECT_EQ(binary_version(path, ownId, 0, &version), 0);
        EXPECT_EQ(version, 0x20AU);
    }

    void copyTo(const char* destination) const
    {
        EXPECT_EQ(binary_copy_without_trailer(path, destination), 0);
        EXPECT_EQ(m_node.readBoardFile(destination), payload);
    }

    /// Has each of the calls made many times by a thread of its own, all at once.
    static void callAtOnce(const std::vector<std::function<void()>>& calls)
    {
        constexpr int rounds = 20;
        std::latch start(static_cast<std::ptrdiff_t>(calls.size()));
        std::vector<std::thread> threads;
        for (const std::function<void()>& call : calls) {
            threads.emplace_back([&call, &start] {
                start.arrive_and_wait();
                for (int round = 0; round < rounds; ++round) {
                    call();
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    const std::string payload = payloadOf(200'003);
};

TEST_F(ThreadsTest, OneImageMayBeReadByManyAtOnce)
{
    check();
    validate();
    readVersion();
    const std::vector<std::string> linesOfOne = m_syslog.texts();
    const std::set<std::string> known(linesOfOne.begin(), linesOfOne.end());

    callAtOnce({[this] { check(); }, [this] { check(); }, [this] { validate(); }, [this] { readVersion(); },
                [this] { readVersion(); }, [this] { copyTo("/one"); }, [this] { copyTo("/two"); }});

    const std::vector<std::string> lines = m_syslog.texts();
    EXPECT_THAT(std::set<std::string>(lines.begin(), lines.end()), IsSubsetOf(known));
}

} // namespace
} // namespace dorn::test
