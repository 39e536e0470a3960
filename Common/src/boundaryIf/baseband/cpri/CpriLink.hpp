// SPDX-License-Identifier: MIT
/// @file CpriLink.hpp
/// A CPRI link; two are equal when their link ids are.
#pragma once

#include "boundaryIf/baseband/AbstractBasebandLink.hpp"

namespace vel::hwapi::common::bif::baseband::cpri {

/// Names a CPRI link. Two with the same link id are the same link.
class CpriLink : public AbstractBasebandLink {
public:
    CpriLink() : AbstractBasebandLink(EBasebandLinkType_Cpri) {}
    /// A link with unique id 0.
    explicit CpriLink(std::int32_t linkId) : AbstractBasebandLink(EBasebandLinkType_Cpri, linkId) {}
    /// A link whose link id comes from its unique id.
    CpriLink(std::int32_t uniqueId, std::string name)
        : AbstractBasebandLink(EBasebandLinkType_Cpri, uniqueId, std::move(name))
    {
    }
    /// A link whose two ids need not fit together.
    CpriLink(std::int32_t linkId, std::int32_t uniqueId, std::string name)
        : AbstractBasebandLink(EBasebandLinkType_Cpri, linkId, uniqueId, std::move(name))
    {
    }
};

} // namespace vel::hwapi::common::bif::baseband::cpri
