// SPDX-License-Identifier: MIT
#include "generator/ObjectNames.hpp"

#include <algorithm>
#include <array>

namespace dorn::testkit {
namespace {

constexpr std::array classWords{"Board", "Fan",     "Sensor",    "Port",   "Clock", "Link",  "Antenna", "Filter",
                                "Slot",  "Counter", "Amplifier", "Supply", "Rack",  "Timer", "Queue",   "Cable"};

std::string classNameOf(std::uint64_t number)
{
    const std::string word = classWords[static_cast<std::size_t>(number % classWords.size())];
    return number < classWords.size() ? word : word + std::to_string(number / classWords.size() + 1);
}

} // namespace

ObjectNames::ObjectNames(std::uint32_t classes, std::uint32_t depth)
    : m_depth(std::max(depth, 1U)), m_counts(std::max(classes, 1U))
{
}

ObjectName ObjectNames::next(RandomNumbers& random)
{
    m_path.resize(nextLevel(random));
    // The first class is that of the tree's top.
    const std::uint64_t number =
        m_path.empty() ? 0 : std::min<std::uint64_t>(1, m_counts.size() - 1) + random.below(m_counts.size() - 1);
    const std::string className = classNameOf(number);
    m_path.push_back(className + "=" + std::to_string(++m_counts[static_cast<std::size_t>(number)]));
    std::string distName = m_path.front();
    std::for_each(m_path.begin() + 1, m_path.end(), [&distName](const std::string& part) { distName += "," + part; });
    return {className, distName};
}

/// How many parts of the latest name the next one keeps: all of them, for a child, in every second case.
std::size_t ObjectNames::nextLevel(RandomNumbers& random) const
{
    const std::size_t deepest = std::min<std::size_t>(m_path.size(), m_depth - 1);
    if (deepest <= 1 || random.oneIn(2)) {
        return deepest;
    }
    return 1 + static_cast<std::size_t>(random.below(deepest));
}

} // namespace dorn::testkit
