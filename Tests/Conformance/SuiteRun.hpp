// SPDX-License-Identifier: MIT
/// @file SuiteRun.hpp
/// The conformance suite, run on a node and board of its own.
#pragma once

#include "NodeTest.hpp"
#include "TestBoard.hpp"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace dorn::conformance {

/// What a run of the suite has printed and how it ended.
struct SuiteRun {
    int status = 0;
    std::string output;
    std::string errors;

    /// The ids behind a word: "kept", "BROKEN" or "skipped".
    std::set<std::string> rules(const std::string& verdict) const;
};

/// Runs a suite program with arguments. @p program one of the DORN_CONFORMANCE... paths
SuiteRun runSuite(const std::string& program, const std::vector<std::string>& arguments);

/// The functions that each rule exercises, by the rule's id, as `--list` prints them.
std::map<std::string, std::vector<std::string>> listedRules();

/// What the simulated board of a test has to offer.
std::vector<std::string> boardArguments();

class SuiteTest : public testkit::NodeTest {
protected:
    testkit::TestBoard m_board;
};

} // namespace dorn::conformance
