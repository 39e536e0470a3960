// SPDX-License-Identifier: MIT
/// @file RAML_HeaderType.hpp
/// The header of a block: its history.
#pragma once

#include "raml/dataclasses/RAML_LogType.hpp"

#include <vector>

namespace RAML {

/// The `header` element of a block: who changed it, and when.
class RAML_HeaderType {
public:
    RAML_HeaderType() = default;
    RAML_HeaderType(const RAML_HeaderType&) = default;
    RAML_HeaderType(RAML_HeaderType&&) noexcept = default;
    RAML_HeaderType& operator=(const RAML_HeaderType&) = default;
    RAML_HeaderType& operator=(RAML_HeaderType&&) noexcept = default;
    virtual ~RAML_HeaderType() = default;

    std::vector<RAML_LogType> logs; ///< of all `header` elements of the block, in the order of the document
};

} // namespace RAML
