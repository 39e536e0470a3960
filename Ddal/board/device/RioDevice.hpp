// SPDX-License-Identifier: MIT
/// @file RioDevice.hpp
/// A device behind the RapidIO bus and its memory.
#pragma once

#include "description/BoardNode.hpp"
#include "state/StateFile.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace dorn::board {

/// A part of a device's memory: a file of the board's state in which only what was written takes room. What was never
/// written reads as zeros.
struct RioMemory {
    std::uint64_t address;
    std::uint64_t size;
    std::string label; ///< may be empty
    StateFile file;

    /// Bytes of the machine's disk that it takes. @throws BoardFailure
    std::uint64_t bytesOnDisk() const;
};

class RioDevice {
public:
    /// @param node a node of a RapidIO port. @throws BoardFailure when its description makes no sense.
    RioDevice(std::uint32_t port, const BoardNode& node);

    /// The number of the port behind which it is.
    std::uint32_t port() const { return m_port; }
    std::uint32_t id() const { return m_id; }
    /// What people call it; may be empty.
    const std::string& label() const { return m_label; }
    const std::vector<RioMemory>& memories() const { return m_memories; }

    /// Copies to the memory. @throws BoardFailure
    void write(std::uint64_t address, const void* data, std::uint32_t size) const;
    /// Copies from the memory. @throws BoardFailure
    void read(std::uint64_t address, void* data, std::uint32_t size) const;

private:
    const RioMemory& memoryAt(std::uint64_t address, std::uint32_t size) const;

    std::uint32_t m_port;
    std::uint32_t m_id;
    std::string m_label;
    std::vector<RioMemory> m_memories;
};

} // namespace dorn::board
