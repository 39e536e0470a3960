// SPDX-License-Identifier: MIT
/// @file NoMemory.hpp
/// Memory that runs out.
#pragma once

namespace dorn::gateway::test {

/// As long as it lives `new` throws in its thread. Nothing that allocates for the test itself may happen meanwhile.
class NoMemory {
public:
    NoMemory();
    ~NoMemory();
    NoMemory(const NoMemory&) = delete;
    NoMemory& operator=(const NoMemory&) = delete;
};

} // namespace dorn::gateway::test
