// SPDX-License-Identifier: MIT
/// @file KioskTest.hpp
/// What the recipes begin with: a running kiosk and a customer.
#pragma once

#include "KioskS.hpp"
#include "NodeTest.hpp"
#include "Peer.hpp"
#include "ServiceUnderTest.hpp"

#include <optional>

namespace kiosk {

using namespace dorn::testkit;

class KioskTest : public NodeTest {
protected:
    /// Opens the kiosk; what it is to find at its start is there before.
    void open() { ASSERT_TRUE(m_running.emplace(m_kiosk).waitUntilReady()); }

    std::uint32_t priceOf(std::uint32_t paper)
    {
        m_customer.send<PriceReqMsg>(m_running->address(), {paper});
        return m_customer.expect<PriceRespMsg>()->price;
    }

    KioskS m_kiosk;
    Peer m_customer;
    std::optional<ServiceUnderTest> m_running;
};

} // namespace kiosk
