// SPDX-License-Identifier: MIT
/// @file LibraryComplaints.hpp
/// Why a function of the library failed, in its own words.
#pragma once

#include <mutex>
#include <string>

namespace dorn::tool {

/// Collects the lines that this process logs at severity Warning or above while it lives.
class LibraryComplaints {
public:
    LibraryComplaints();
    ~LibraryComplaints();
    LibraryComplaints(const LibraryComplaints&) = delete;
    LibraryComplaints& operator=(const LibraryComplaints&) = delete;

    /// The lines so far, with a line feed between them.
    std::string text() const;

private:
    mutable std::mutex m_mutex;
    std::string m_text;
    int m_observer;
};

} // namespace dorn::tool
