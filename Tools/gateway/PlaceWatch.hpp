// SPDX-License-Identifier: MIT
/// @file PlaceWatch.hpp
/// Whether processes of the node still find the gateway.
#pragma once

#include "node/RunDirectory.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dorn::gateway {

/// Knows the run directory, and sockets in it, by what they are and not by their names alone: a directory that was
/// removed or moved away, and a socket in whose place there is another one, are not there any more. What cannot be
/// looked at is not taken for gone.
class PlaceWatch {
public:
    /// @param directory stays with the caller
    explicit PlaceWatch(const host::RunDirectory& directory);

    /// Watches a socket, too. @param name in the directory; it is there
    void add(std::string name);
    /// The first thing that is missing: "the run directory '/run/dorn/0f01' is gone". Nothing: all is there.
    std::optional<std::string> whatIsMissing() const;

private:
    /// What lies at a path in a directory, whatever it is called.
    struct File {
        int directory;
        std::string path;
        std::uint64_t device;
        std::uint64_t number;
        bool isGone() const;
    };
    static File fileAt(int directory, std::string path);

    const host::RunDirectory& m_directory;
    File m_place;
    std::vector<File> m_sockets;
};

} // namespace dorn::gateway
