// SPDX-License-Identifier: MIT
/// @file AbstractBasebandLink.hpp
/// Which baseband link is meant: a value that names a serial link between baseband and radio.
///
/// A link has a unique id, its number on the board, and a link id, its number in its group. The unique ids 0 to 8, 9 to
/// 19, and 20 and above are three groups, each of which counts its link ids from 0.
#pragma once

#include "boundaryIf/baseband/BasebandTypes.hpp"

#include <cstdint>
#include <string>
#include <utility>

namespace vel::hwapi::common::bif::baseband {

/// What names a link, of whichever kind; drivers and clients use the derived classes.
class AbstractBasebandLink {
public:
    AbstractBasebandLink(const AbstractBasebandLink&) = default;
    AbstractBasebandLink& operator=(const AbstractBasebandLink&) = default;
    virtual ~AbstractBasebandLink() = default;

    /// OBSAI or CPRI; decides which of the two ids tells links apart.
    EBasebandLinkType getLinkType() const { return m_linkType; }
    /// The link id: the link's number in its group.
    std::int32_t getLinkIdentifier() const { return m_linkIdentifier; }
    /// The unique id: the link's number on the board.
    std::int32_t getLinkUniqueIdentifier() const { return m_linkUniqueIdentifier; }
    /// For people; "no name" when nobody has given one.
    std::string getLinkHumanName() const { return m_linkHumanName; }

    /// Tells whether both are the same link: of the same type, and with the same unique id when they are OBSAI links or
    /// the same link id when they are CPRI links. A link of undefined type is the same as none, not even as itself.
    /// Names do not count.
    bool operator==(const AbstractBasebandLink& other) const;

protected:
    /// A link with link id and unique id 0.
    explicit AbstractBasebandLink(EBasebandLinkType type) : m_linkType(type) {}
    /// A link with unique id 0.
    AbstractBasebandLink(EBasebandLinkType type, std::int32_t linkId) : m_linkType(type), m_linkIdentifier(linkId) {}
    /// A link whose link id comes from its unique id.
    AbstractBasebandLink(EBasebandLinkType type, std::int32_t uniqueId, std::string name)
        : AbstractBasebandLink(type, convertLinkUniqIdToLinkId(uniqueId), uniqueId, std::move(name))
    {
    }
    /// A link whose two ids need not fit together.
    AbstractBasebandLink(EBasebandLinkType type, std::int32_t linkId, std::int32_t uniqueId, std::string name)
        : m_linkType(type), m_linkIdentifier(linkId), m_linkUniqueIdentifier(uniqueId), m_linkHumanName(std::move(name))
    {
    }

    /// Changes the link id alone; the unique id stays.
    void setLinkIdentifier(std::int32_t linkId) { m_linkIdentifier = linkId; }
    /// Changes the unique id alone; the link id stays. setBasebandLinkData() changes both.
    void setLinkUniqueIdentifier(std::int32_t uniqueId) { m_linkUniqueIdentifier = uniqueId; }
    /// Changes the name, which no comparison looks at.
    void setLinkHumanName(const std::string& name) { m_linkHumanName = name; }
    /// Sets the unique id, the link id that comes from it, and the name.
    void setBasebandLinkData(std::int32_t uniqueId, const std::string& name);

    /// Number of a link in its group.
    static std::int32_t convertLinkUniqIdToLinkId(std::int32_t uniqueId);

private:
    EBasebandLinkType m_linkType;
    std::int32_t m_linkIdentifier = 0;
    std::int32_t m_linkUniqueIdentifier = 0;
    std::string m_linkHumanName = "no name";
};

inline bool AbstractBasebandLink::operator==(const AbstractBasebandLink& other) const
{
    if (m_linkType != other.m_linkType) {
        return false;
    }
    switch (m_linkType) {
    case EBasebandLinkType_Obsai:
        return m_linkUniqueIdentifier == other.m_linkUniqueIdentifier;
    case EBasebandLinkType_Cpri:
        return m_linkIdentifier == other.m_linkIdentifier;
    default:
        return false;
    }
}

inline void AbstractBasebandLink::setBasebandLinkData(std::int32_t uniqueId, const std::string& name)
{
    m_linkIdentifier = convertLinkUniqIdToLinkId(uniqueId);
    m_linkUniqueIdentifier = uniqueId;
    m_linkHumanName = name;
}

inline std::int32_t AbstractBasebandLink::convertLinkUniqIdToLinkId(std::int32_t uniqueId)
{
    constexpr std::int32_t secondGroup = 9;
    constexpr std::int32_t thirdGroup = 20;
    if (uniqueId >= thirdGroup) {
        return uniqueId - thirdGroup;
    }
    return uniqueId >= secondGroup ? uniqueId - secondGroup : uniqueId;
}

} // namespace vel::hwapi::common::bif::baseband
