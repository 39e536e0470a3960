// SPDX-License-Identifier: MIT
/// @file FailingNew.hpp
/// Memory that is out at a chosen moment. A program that links it has allocation functions of its own.
#pragma once

#include <cstddef>

namespace dorn::test {

/// While it lives, `new` fails once, in any thread: at call number @p nth, from 1.
class FailingNew {
public:
    explicit FailingNew(std::size_t nth);
    ~FailingNew();
    FailingNew(const FailingNew&) = delete;
    FailingNew& operator=(const FailingNew&) = delete;

    bool hasFailed() const;
};

} // namespace dorn::test
