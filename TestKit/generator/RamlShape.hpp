// SPDX-License-Identifier: MIT
/// @file RamlShape.hpp
/// What a RAML document that is made for a test is like.
#pragma once

#include "generator/RamlFault.hpp"

#include <cstdint>
#include <vector>

namespace dorn::testkit {

/// Two documents of the same shape are the same, byte by byte, on every machine.
struct RamlShape {
    /// Decides all that is left to chance.
    std::uint64_t seed = 1;

    std::uint64_t objects = 10; ///< managed objects; at least one for each block
    std::uint64_t bytes = 0;    ///< when it is not 0, objects are added until the document has so many bytes

    std::uint32_t blocks = 1;       ///< cmData elements, at least 1
    std::uint32_t logs = 2;         ///< log entries in each header
    std::uint32_t classes = 5;      ///< classes of managed objects, at least 1
    std::uint32_t depth = 3;        ///< greatest number of parts in a distinguished name, at least 1
    std::uint32_t parameters = 6;   ///< simple parameters of an object, on average
    std::uint32_t lists = 1;        ///< lists of an object, on average
    std::uint32_t listElements = 3; ///< values or items of a list, on average
    std::uint32_t valueBytes = 8;   ///< bytes of a value, on average

    /// Whether the document has only what a written document keeps: operations that have a text when written, no
    /// attributes that are not written, at most one character in a value that must be escaped and none elsewhere. A
    /// plain document reads the same before and after it has been written.
    bool isPlain = false;

    /// Each stands once, where its place is, at one of the blocks or objects.
    std::vector<RamlFault> faults{};
};

} // namespace dorn::testkit
