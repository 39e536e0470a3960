// SPDX-License-Identifier: MIT
/// @file PeakMemory.hpp
/// What another process takes of the machine's memory at most.
#pragma once

#include <cstddef>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <sys/types.h>

namespace dorn::gateway::test {

/// The greatest memory that a process has had in use since this object was made.
class PeakMemory {
public:
    explicit PeakMemory(pid_t process) : m_folder("/proc/" + std::to_string(process))
    {
        std::ofstream(m_folder + "/clear_refs") << "5\n"; // forgets the peak
        m_before = peak();
    }

    /// How much more it was than at first, in bytes.
    std::size_t growth() const { return peak() - m_before; }

private:
    std::size_t peak() const
    {
        std::ifstream lines(m_folder + "/status");
        for (std::string line; std::getline(lines, line);) {
            std::istringstream words(line);
            std::string label;
            std::size_t kibi = 0;
            if (words >> label >> kibi && label == "VmHWM:") {
                return kibi * 1024;
            }
        }
        throw std::runtime_error("the system does not tell what memory a process takes");
    }

    std::string m_folder;
    std::size_t m_before = 0;
};

} // namespace dorn::gateway::test
