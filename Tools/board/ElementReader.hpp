// SPDX-License-Identifier: MIT
/// @file ElementReader.hpp
/// Elements of an XML file that people have written, and everything that is wrong with them.
#pragma once

#include "AaGpuXml.hpp"
#include "port/Clock.hpp"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace dorn::tool {

/// Calls @p action with each element right below another one.
template <class Action>
void forElementsOf(const AaGpuXmlNode& parent, const Action& action)
{
    for (auto child = parent.AaGpuXmlGetFirstChildren(); child != parent.AaGpuXmlGetLastChildren(); ++child) {
        if ((*child)->AaGpuXmlGetType() == AA_GPU_XML_ELEMENT_NODE) {
            action(**child);
        }
    }
}

bool isCalled(const AaGpuXmlNode& node, std::string_view name);
/// The value of an attribute; nothing when the element does not have it.
std::optional<std::string> attributeOf(const AaGpuXmlNode& element, std::string_view name);

/// "'text'" as complaints quote what somebody has written.
std::string inQuotes(const std::string& text);
/// "<service>"
std::string inBrackets(const AaGpuXmlNode& element);

/// Reads attributes and gathers complaints, so that all of them can be told at once.
class ElementReader {
public:
    using Names = std::vector<std::string_view>;

    /// @param path how complaints call the file
    explicit ElementReader(std::string path) : m_path(std::move(path)) {}

    void complain(std::uint32_t line, const std::string& what);
    void complain(const AaGpuXmlNode& node, const std::string& what) { complain(node.AaGpuXmlGetLine(), what); }
    /// All so far, each on a line of its own as "file:line: what is wrong"; empty when nothing is.
    const std::string& complaints() const { return m_complaints; }

    /// Complains of an element that does not belong where it is.
    void refuse(const AaGpuXmlNode& element);
    /// Complains of every element below another one.
    void refuseElementsIn(const AaGpuXmlNode& element);
    /// Complains of attributes that are not @p known.
    void checkAttributes(const AaGpuXmlNode& element, const Names& known);

    /// An attribute that has to be there; empty, with a complaint, when it is not.
    std::string required(const AaGpuXmlNode& element, std::string_view name);
    /// The place of an attribute's value among @p words; nothing without one, and with a complaint for another word.
    std::optional<std::size_t> word(const AaGpuXmlNode& element, std::string_view name,
                                    std::span<const char* const> words);
    /// Stores an attribute's value if there is one and it is a number of seconds; complains if it is not.
    void seconds(const AaGpuXmlNode& element, std::string_view name, host::Nanoseconds& value);
    /// An attribute's value; nothing without one, and with a complaint for what is no number up to @p greatest.
    std::optional<std::uint64_t> number(const AaGpuXmlNode& element, std::string_view name, std::uint64_t greatest);

private:
    std::string m_path;
    std::string m_complaints;
};

} // namespace dorn::tool
