// SPDX-License-Identifier: MIT
/// @file Finding.hpp
/// What came of trying a rule, and how the process that tried it tells.
#pragma once

#include "Rule.hpp"

#include <string>

namespace dorn::conformance {

enum class Verdict { Kept, Broken, Skipped };

struct Finding {
    Verdict verdict = Verdict::Kept;
    std::string text; ///< why it is broken or skipped
};

/// Brings the platform up as an executable does, and tries a rule in this process.
Finding tryRule(const Rule& rule);

/// The steps that bring the platform up; ends the rule as broken when one fails.
void startPlatform();

/// Writes a finding to the one who has started this process; the first one counts.
void report(const Finding& finding);

/// Tells that what follows may end this process, and that this would keep the rule.
void announceEnd();

/// What stands in a report, and in @p status how the process has ended, as `waitpid` gives it.
Finding readReport(const std::string& text, int status);

/// Reports the rule as broken and ends the process at once, for what cannot be left in an orderly way.
[[noreturn]] void giveUp(const std::string& why);

} // namespace dorn::conformance
