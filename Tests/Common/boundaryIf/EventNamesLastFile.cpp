// SPDX-License-Identifier: MIT
// Linked behind the interfaces.
#include "EventNames.hpp"

const std::vector<std::pair<std::string, std::string>> dorn::test::namesSeenByLastFile = dorn::test::eventNames();
