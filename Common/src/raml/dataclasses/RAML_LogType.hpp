// SPDX-License-Identifier: MIT
/// @file RAML_LogType.hpp
/// One entry of a block's history.
#pragma once

#include <string>

namespace RAML {

class RAML_LogType {
public:
    RAML_LogType() = default;
    RAML_LogType(const RAML_LogType&) = default;
    RAML_LogType(RAML_LogType&&) noexcept = default;
    RAML_LogType& operator=(const RAML_LogType&) = default;
    RAML_LogType& operator=(RAML_LogType&&) noexcept = default;
    virtual ~RAML_LogType() = default;

    std::string dateTime;
    std::string action;
    std::string user;
    std::string appInfo;
    std::string appVersion;             ///< for callers; no document fills it
    std::string adaptationVersionMinor; ///< for callers; no document fills it
    std::string text;                   ///< the element's character content
};

} // namespace RAML
