// SPDX-License-Identifier: MIT
/// @file CpriLink.hpp
/// A CPRI link; two are equal when their link ids are.
#pragma once

#include "boundaryIf/baseband/AbstractBasebandLink.hpp"

namespace vel::hwapi::common::bif::baseband::cpri {

class CpriLink : public AbstractBasebandLink {
public:
    CpriLink() : AbstractBasebandLink(EBasebandLinkType_Cpri) {}
    explicit CpriLink(std::int32_t linkId) : AbstractBasebandLink(EBasebandLinkType_Cpri, linkId) {}
    CpriLink(std::int32_t uniqueId, std::string name)
        : AbstractBasebandLink(EBasebandLinkType_Cpri, uniqueId, std::move(name))
    {
    }
    CpriLink(std::int32_t linkId, std::int32_t uniqueId, std::string name)
        : AbstractBasebandLink(EBasebandLinkType_Cpri, linkId, uniqueId, std::move(name))
    {
    }
};

} // namespace vel::hwapi::common::bif::baseband::cpri
