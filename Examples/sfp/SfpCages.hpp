// SPDX-License-Identifier: MIT
/// @file SfpCages.hpp
/// The SFP cages of the board and what is plugged into them.
#pragma once

#include "SfpMessages.hpp"

#include <array>
#include <cstdint>

namespace dorn::examples {

/// A cage and what is in it.
struct SfpCage {
    std::uint32_t physicalLinkId; ///< the link that is led to it
    ESfpModule module = ESfpModule_Empty;
    std::uint32_t stepsToGo = 0; ///< until a module that starts can be read
};

/// Four cages. A module may take 300 ms from its plugging until its memory can be read (t_serial of the SFP agreement);
/// only then it is ready.
class SfpCages {
public:
    static constexpr std::uint32_t count = 4;
    static constexpr std::uint32_t noLink = 0xFF;    ///< cage 3 leads to the Ethernet switch
    static constexpr std::uint32_t stepsToStart = 3; ///< of 100 ms

    /// Puts a module into a cage below #count. @return false when there is one.
    bool plug(std::uint32_t cage);
    /// Takes the module out. @return false when there is none.
    bool pull(std::uint32_t cage);
    /// Lets 100 ms pass. @return whether any module still starts.
    bool step();

    const SfpCage& at(std::uint32_t cage) const { return m_cages[cage]; }

private:
    std::array<SfpCage, count> m_cages{{{0}, {1}, {2}, {noLink}}};
};

} // namespace dorn::examples
