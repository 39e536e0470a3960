// SPDX-License-Identifier: MIT
/// @file RAML_LogType.hpp
/// One entry of a block's history.
#pragma once

#include <string>

namespace RAML {

/// One `log` element of a header: one change of the data.
class RAML_LogType {
public:
    RAML_LogType() = default;
    RAML_LogType(const RAML_LogType&) = default;
    RAML_LogType(RAML_LogType&&) noexcept = default;
    RAML_LogType& operator=(const RAML_LogType&) = default;
    RAML_LogType& operator=(RAML_LogType&&) noexcept = default;
    virtual ~RAML_LogType() = default;

    /// When it was changed; the text of the document, in no fixed format.
    std::string dateTime;
    /// What was done.
    std::string action;
    /// Who did it.
    std::string user;
    /// The application that did it.
    std::string appInfo;
    std::string appVersion;             ///< for callers; no document fills it
    std::string adaptationVersionMinor; ///< for callers; no document fills it
    std::string text;                   ///< the element's character content
};

} // namespace RAML
