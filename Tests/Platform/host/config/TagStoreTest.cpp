// SPDX-License-Identifier: MIT
#include "config/TagStore.hpp"

#include "ChildProcess.hpp"
#include "NodeTest.hpp"
#include "OutputCapture.hpp"

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace dorn::host {
namespace {

using ::testing::ElementsAre;

TagView bytes(const std::string& text)
{
    return std::as_bytes(std::span(text.data(), text.size()));
}

class TagStoreTest : public testkit::NodeTest {
protected:
    static TagStore& store() { return PerNode<TagStore>::get(); }
    static bool set(const std::string& name, const std::string& value) { return store().set(name, bytes(value)); }
    static std::string get(const std::string& name)
    {
        const std::optional<TagBytes> value = store().get(name);
        return value ? std::string(reinterpret_cast<const char*>(value->data()), value->size()) : "none";
    }
};

TEST_F(TagStoreTest, ListHasAllTagsByNameWithTheirValues)
{
    set("sys.b", "2");
    set("tessel.service.a", "3");
    set("sys.a", "");
    set("unit", "4");
    std::vector<std::string> lines;
    for (const Tag& tag : store().list()) {
        lines.push_back(tag.name + "=" +
                        std::string(reinterpret_cast<const char*>(tag.value.data()), tag.value.size()));
    }
    EXPECT_THAT(lines, ElementsAre("sys.a=", "sys.b=2", "tessel.service.a=3", "unit=4"));
}

TEST_F(TagStoreTest, GetGivesTheValueOrNothing)
{
    set("sys.a", "1");
    EXPECT_EQ(get("sys.a"), "1");
    EXPECT_EQ(get("sys.b"), "none");
    EXPECT_EQ(get(""), "none");
    EXPECT_EQ(get(std::string(600, 'n')), "none");
}

TEST_F(TagStoreTest, NamesAndValuesOfImpossibleSizeAreRefused)
{
    EXPECT_FALSE(set("", "1"));
    EXPECT_FALSE(set(std::string(256, 'n'), "1"));
    EXPECT_FALSE(set("sys.a", std::string(65536, 'v')));
    EXPECT_EQ(get("sys.a"), "none");
}

TEST_F(TagStoreTest, StoreOfAnotherVersionOrDamagedIsSetAside)
{
    set("sys.a", "1");
    closeNode();
    const std::string path = m_node.nodeDirectory() + "/tags/data.mdb";
    std::ofstream(path, std::ios::trunc) << std::string(16384, '#');
    testkit::OutputCapture output;
    EXPECT_EQ(get("sys.a"), "none");
    EXPECT_TRUE(set("sys.a", "2"));
    EXPECT_EQ(get("sys.a"), "2");
    EXPECT_TRUE(std::filesystem::exists(path + ".broken"));
    EXPECT_EQ(output.standardError(),
              "dorn: tag store '" + path + "' is damaged or of another version; set aside as '" + path + ".broken'\n");
}

TEST_F(TagStoreTest, StartedProgramsInheritNoDescriptorOfTheStore)
{
    set("sys.a", "1");
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        const std::string target = std::filesystem::read_symlink(entry.path(), error).string();
        if (target.find("/tags") == std::string::npos) {
            continue;
        }
        EXPECT_NE(fcntl(std::stoi(entry.path().filename().string()), F_GETFD) & FD_CLOEXEC, 0) << target;
    }
}

TEST_F(TagStoreTest, ChildOfAProcessThatUsesTheStoreIsRefusedInsteadOfDamagingIt)
{
    set("sys.a", "1");
    test::ChildProcess child([](test::ChildProcess::Parent&) {
        EXPECT_THROW(set("sys.a", "2"), TagError);
        EXPECT_THROW(get("sys.a"), TagError);
        EXPECT_THROW(store().list(), TagError);
        EXPECT_THROW(store().observers(), TagError);
    });
    EXPECT_TRUE(child.hasSucceeded());
    EXPECT_EQ(get("sys.a"), "1");
}

TEST_F(TagStoreTest, ManyThreadsReadAndSetAtOnce)
{
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([thread] {
            const std::string name = "sys." + std::to_string(thread);
            for (int count = 0; count < 100; ++count) {
                EXPECT_TRUE(set(name, std::to_string(count)));
                EXPECT_EQ(get(name), std::to_string(count));
            }
        });
    }

    for (std::thread& thread : threads) {
        thread.join();
    }
}

/// Not inlined: a frame that is unwound by a cancellation must have nothing in it that AddressSanitizer keeps book of.
[[gnu::noinline]] void setLargeValue()
{
    ASSERT_TRUE(PerNode<TagStore>::get().set("sys.a", bytes(std::string(60'000, 'v'))));
}

void* setUntilCancelled(void* /*argument*/)
{
    for (;;) {
        setLargeValue();
        pthread_testcancel();
    }
}

TEST_F(TagStoreTest, CancelledThreadLeavesTheStoreUsable)
{
    pthread_t setter{};
    ASSERT_EQ(pthread_create(&setter, nullptr, setUntilCancelled, nullptr), 0);
    while (get("sys.a") == "none") {
        std::this_thread::yield();
    }
    pthread_cancel(setter);
    pthread_join(setter, nullptr);
    EXPECT_TRUE(set("sys.a", "1"));
    EXPECT_EQ(get("sys.a"), "1");
}

} // namespace
} // namespace dorn::host
