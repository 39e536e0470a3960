// SPDX-License-Identifier: MIT
/// @file AbstractBaseBif.hpp
/// Root of all boundary interfaces: any of them can be held and destroyed through a pointer to it.
#pragma once

namespace vel::hwapi::common::bif {

/// Root of all boundary interfaces, which lets them be held and destroyed without knowing what they are.
class AbstractBaseBif {
public:
    AbstractBaseBif() = default;
    AbstractBaseBif(const AbstractBaseBif&) = delete;
    AbstractBaseBif& operator=(const AbstractBaseBif&) = delete;
    virtual ~AbstractBaseBif() = default;
};

} // namespace vel::hwapi::common::bif
