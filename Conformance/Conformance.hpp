// SPDX-License-Identifier: MIT
/// @file Conformance.hpp
/// The rules of the platform seam and the driver seam as a program that an integrator links with his providers.
///
/// The suite calls every function that the headers of Platform/include and Ddal/include declare, and holds what comes
/// back against what those headers say. It knows nothing of any provider and needs nothing but the seams, the C++
/// standard library and Linux, so it builds wherever the library does.
///
/// 1. Bring up in `main` what your platform needs before its first function is called.
/// 2. Call runConformance() with what the command line says, and return its result.
///
/// Every rule runs in a process of its own, which the suite starts as a copy of the running program: a rule that hangs
/// or crashes is a broken rule, and the others go on. Your `main` therefore runs once per rule.
#pragma once

namespace dorn::conformance {

/// Runs the rules that the command line asks for; "--help" tells what can be asked.
/// @param argc, argv as `main` got them
/// @return the program's exit status: 0 when no rule is broken, 1 when one is, 2 when the command line is wrong
///   or no rule could be tried.
[[nodiscard]] int runConformance(int argc, char** argv);

} // namespace dorn::conformance
