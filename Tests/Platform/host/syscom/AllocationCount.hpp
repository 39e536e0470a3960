// SPDX-License-Identifier: MIT
/// @file AllocationCount.hpp
/// How often a program has allocated. Its linker sends `malloc` of the library here; see CMakeLists.txt.
#pragma once

namespace dorn::host::test {

unsigned mallocCount();
unsigned newCount();

} // namespace dorn::host::test
