// SPDX-License-Identifier: MIT
#include "node/PerNode.hpp"

#include <atomic>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace dorn::host;

namespace {

std::string events;
std::atomic<int> made{0};
bool mayBeMade = true;

struct Lower {
    Lower()
    {
        if (!mayBeMade) {
            throw std::runtime_error("not now");
        }
        made.fetch_add(1);
        events += "+lower ";
    }
    ~Lower() { events += "-lower "; }
};

/// Uses Lower, so it is closed before that.
struct Upper {
    Upper()
    {
        PerNode<Lower>::get();
        events += "+upper ";
    }
    ~Upper() { events += "-upper "; }
};

class PerNodeTest : public ::testing::Test {
protected:
    PerNodeTest()
    {
        closeNode();
        events.clear();
        made.store(0);
        mayBeMade = true;
    }
    ~PerNodeTest() override { closeNode(); }
};

} // namespace

TEST_F(PerNodeTest, IsMadeAtTheFirstUseAndOnce)
{
    EXPECT_EQ(PerNode<Lower>::ifOpen(), nullptr);
    Lower& lower = PerNode<Lower>::get();
    EXPECT_EQ(&PerNode<Lower>::get(), &lower);
    EXPECT_EQ(PerNode<Lower>::ifOpen(), &lower);
    EXPECT_EQ(made.load(), 1);
}

TEST_F(PerNodeTest, ThreadsThatUseItFirstAtOnceShareOne)
{
    std::vector<std::thread> threads;
    std::atomic<bool> go{false};
    for (int count = 0; count < 4; ++count) {
        threads.emplace_back([&] {
            go.wait(false);
            PerNode<Lower>::get();
        });
    }

    go.store(true);
    go.notify_all();
    for (std::thread& thread : threads) {
        thread.join();
    }

    EXPECT_EQ(made.load(), 1);
}

TEST_F(PerNodeTest, WhatCouldNotBeMadeIsTriedAgain)
{
    mayBeMade = false;
    EXPECT_THROW(PerNode<Upper>::get(), std::runtime_error);
    EXPECT_EQ(PerNode<Upper>::ifOpen(), nullptr);
    mayBeMade = true;
    PerNode<Upper>::get();
    EXPECT_EQ(events, "+lower +upper ");
}

TEST_F(PerNodeTest, CloseEndsEverythingTheLatestFirst)
{
    PerNode<Upper>::get();
    closeNode();
    EXPECT_EQ(events, "+lower +upper -upper -lower ");
    EXPECT_EQ(PerNode<Lower>::ifOpen(), nullptr);
    closeNode();
    EXPECT_EQ(events, "+lower +upper -upper -lower ");
}

TEST_F(PerNodeTest, IsMadeAnewAfterClose)
{
    PerNode<Lower>::get();
    closeNode();
    PerNode<Lower>::get();
    EXPECT_EQ(made.load(), 2);
}
