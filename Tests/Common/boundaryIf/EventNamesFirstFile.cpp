// SPDX-License-Identifier: MIT
// Linked before the interfaces.
#include "EventNames.hpp"

#include <cstdlib>

const std::vector<std::pair<std::string, std::string>> dorn::test::namesSeenByFirstFile = dorn::test::eventNames();

namespace {

/// Ends the program with a failure when a name is gone while static objects are destroyed.
class LookAtTheEnd {
public:
    LookAtTheEnd() = default;
    ~LookAtTheEnd()
    {
        for (const auto& [name, expected] : dorn::test::eventNames()) {
            if (name != expected) {
                std::_Exit(EXIT_FAILURE);
            }
        }
    }
    LookAtTheEnd(const LookAtTheEnd&) = delete;
    LookAtTheEnd& operator=(const LookAtTheEnd&) = delete;
};
const LookAtTheEnd lookAtTheEnd;

} // namespace
