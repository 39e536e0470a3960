// SPDX-License-Identifier: MIT
/// @file Rule.hpp
/// What a provider is held to, one sentence at a time.
#pragma once

#include <span>
#include <string_view>

namespace dorn::conformance {

/// What a rule does to the board.
enum class Effect {
    None,        ///< nothing that is there when the rule has ended
    Destructive, ///< flashes, overwrites or resets: only with `--destructive`
    Start,       ///< nothing, and it brings the platform up by itself: it is about that
};

/// One rule of a seam.
struct Rule {
    std::string_view id;        ///< stable; its first word is the subject: "sem.take.times-out"
    std::string_view header;    ///< where the rule stands
    std::string_view functions; ///< those that it exercises, separated by blanks
    std::string_view text;      ///< the rule, in a sentence without a full stop
    void (*check)();            ///< returns when the rule is kept; throws Broken or Skipped (Check.hpp)
    Effect effect = Effect::None;
};

/// What another process of the node does for a rule (OtherProcess.hpp).
struct Role {
    std::string_view name;
    void (*play)(std::span<char* const> arguments);
};

/// Whether a rule exercises a function.
bool doesExercise(const Rule& rule, std::string_view function);

} // namespace dorn::conformance
