// SPDX-License-Identifier: MIT
/// @file AbstractObsaiLink.hpp
/// An OBSAI link; two are equal when their unique ids are.
#pragma once

#include "boundaryIf/baseband/AbstractBasebandLink.hpp"

namespace vel::hwapi::common::bif::baseband::obsai {

/// Names an OBSAI link. Two with the same unique id are the same link.
class AbstractObsaiLink : public AbstractBasebandLink {
public:
    AbstractObsaiLink() : AbstractBasebandLink(EBasebandLinkType_Obsai) {}
    /// A link with unique id 0.
    explicit AbstractObsaiLink(std::int32_t linkId) : AbstractBasebandLink(EBasebandLinkType_Obsai, linkId) {}
    /// A link whose link id comes from its unique id.
    AbstractObsaiLink(std::int32_t uniqueId, std::string name)
        : AbstractBasebandLink(EBasebandLinkType_Obsai, uniqueId, std::move(name))
    {
    }
    /// A link whose two ids need not fit together.
    AbstractObsaiLink(std::int32_t linkId, std::int32_t uniqueId, std::string name)
        : AbstractBasebandLink(EBasebandLinkType_Obsai, linkId, uniqueId, std::move(name))
    {
    }

    /// Makes it another link: sets the unique id, the link id that comes from it, and the name.
    void setObsaiLinkData(std::int32_t uniqueId, const std::string& name) { setBasebandLinkData(uniqueId, name); }
};

} // namespace vel::hwapi::common::bif::baseband::obsai
