// SPDX-License-Identifier: MIT
/// @file XmlDocument.hpp
/// The platform's XML parser as the host sees it: what AaGpuXmlParser gives, and more about faults.
#pragma once

#include "AaGpuXml.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace dorn::host {

/// Where a text is not well-formed, and why. Line and column count from 1, the column in bytes.
struct XmlFault {
    std::uint32_t line;
    std::uint32_t column;
    std::string reason;
    bool isUnsupported = false; ///< it may be well-formed, but its encoding is not read
};

/// What becomes of a text that is not well-formed.
enum class XmlFaultPolicy {
    GiveNothing,
    /// The tree has the document element with those of its children that are complete before the fault.
    GiveWhatStandsBefore
};

/// How much of a text is the document.
enum class XmlExtent {
    Whole,
    Prefix ///< it ends with its document element; what stands behind that is not looked at
};

/// A parsed text.
struct XmlDocument {
    std::unique_ptr<AaGpuXmlNode> root; ///< when it is there, it has the document element as its only child
    std::optional<XmlFault> fault;
};

/// Parses a document. Encodings are UTF-8, US-ASCII and ISO-8859-1; the tree has UTF-8.
/// @param encoding name of the text's encoding; empty: what its declaration says, else UTF-8
XmlDocument parseXml(const std::string& text, const std::string& encoding, XmlFaultPolicy policy,
                     XmlExtent extent = XmlExtent::Whole);

} // namespace dorn::host
