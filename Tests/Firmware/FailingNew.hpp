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

/// While it lives, `new` of at least so many bytes fails.
class FailingLargeNew {
public:
    explicit FailingLargeNew(std::size_t size);
    ~FailingLargeNew();
    FailingLargeNew(const FailingLargeNew&) = delete;
    FailingLargeNew& operator=(const FailingLargeNew&) = delete;
};

} // namespace dorn::test
