// SPDX-License-Identifier: MIT
/// @file EuEnd.hpp
/// An end that is an execution unit (EU) with a cpid of its own: the platform's own messages.
#pragma once

#include "AaSysCom.h"
#include "messages/Traffic.hpp"

#include <cstddef>
#include <string>

namespace dorn::benchmarks {

/// Id of the messages.
constexpr TAaSysComMsgId parcelId = 0x5101;

/// To be used in the thread that makes it. A service's main EU may be its partner as well: whoever sends first is.
class EuEnd {
public:
    explicit EuEnd(std::size_t size);
    /// The end that sends to @p address.
    EuEnd(const std::string& address, std::size_t size);
    ~EuEnd();
    EuEnd(const EuEnd&) = delete;
    EuEnd& operator=(const EuEnd&) = delete;

    EuEnd partner() const { return {address(), m_size}; }
    std::string address() const { return std::to_string(m_own); }

    void send(const Parcel& parcel);
    Parcel receive();

private:
    std::uint16_t m_size;
    TAaSysComSicad m_own;
    TAaSysComSicad m_partner = 0;
};

} // namespace dorn::benchmarks
