// SPDX-License-Identifier: MIT
/// @file ObjectNames.hpp
/// Classes and distinguished names of managed objects that are made for a test.
#pragma once

#include "generator/RandomNumbers.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace dorn::testkit {

/// What a generated managed object is called.
struct ObjectName {
    std::string className; ///< "Fan"
    std::string distName;  ///< "Board=1,Port=2,Fan=7"
};

/// Names objects of a tree: each stands below one that was named before it, and no name is given twice.
class ObjectNames {
public:
    /// @param classes how many classes there are, at least 1
    /// @param depth greatest number of parts in a distinguished name, at least 1
    ObjectNames(std::uint32_t classes, std::uint32_t depth);

    /// The next object's name; no two have the same distinguished name.
    ObjectName next(RandomNumbers& random);

private:
    std::size_t nextLevel(RandomNumbers& random) const;

    std::uint32_t m_depth;
    std::vector<std::uint64_t> m_counts; ///< objects of each class so far
    std::vector<std::string> m_path;     ///< parts of the latest distinguished name
};

} // namespace dorn::testkit
