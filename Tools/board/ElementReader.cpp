// SPDX-License-Identifier: MIT
#include "board/ElementReader.hpp"

#include "Outcome.hpp"
#include "text/Values.hpp"

#include <algorithm>

namespace dorn::tool {

bool isCalled(const AaGpuXmlNode& node, std::string_view name)
{
    return name == node.AaGpuXmlGetName();
}

std::optional<std::string> attributeOf(const AaGpuXmlNode& element, std::string_view name)
{
    for (auto child = element.AaGpuXmlGetFirstChildren(); child != element.AaGpuXmlGetLastChildren(); ++child) {
        if ((*child)->AaGpuXmlGetType() == AA_GPU_XML_ATTRIBUTE_NODE && isCalled(**child, name)) {
            return (*child)->AaGpuXmlGetValue();
        }
    }
    return std::nullopt;
}

std::string inQuotes(const std::string& text)
{
    return "'" + printable(text) + "'";
}

std::string inBrackets(const AaGpuXmlNode& element)
{
    return "<" + printable(element.AaGpuXmlGetName()) + ">";
}

void ElementReader::complain(std::uint32_t line, const std::string& what)
{
    m_complaints += (m_complaints.empty() ? "" : "\n") + m_path + ":" + std::to_string(line) + ": " + what;
}

void ElementReader::refuse(const AaGpuXmlNode& element)
{
    complain(element, inBrackets(element) + " does not belong here");
}

void ElementReader::refuseElementsIn(const AaGpuXmlNode& element)
{
    forElementsOf(element, [this](const AaGpuXmlNode& child) { refuse(child); });
}

void ElementReader::checkAttributes(const AaGpuXmlNode& element, const Names& known)
{
    for (auto child = element.AaGpuXmlGetFirstChildren(); child != element.AaGpuXmlGetLastChildren(); ++child) {
        const AaGpuXmlNode& node = **child;
        if (node.AaGpuXmlGetType() == AA_GPU_XML_ATTRIBUTE_NODE &&
            std::find(known.begin(), known.end(), node.AaGpuXmlGetName()) == known.end()) {
            complain(node, inBrackets(element) + " has no attribute " + inQuotes(node.AaGpuXmlGetName()));
        }
    }
}

std::string ElementReader::required(const AaGpuXmlNode& element, std::string_view name)
{
    std::string value = attributeOf(element, name).value_or("");
    if (value.empty()) {
        complain(element, inBrackets(element) + " needs the attribute '" + std::string(name) + "'");
    }
    return value;
}

std::optional<std::size_t> ElementReader::word(const AaGpuXmlNode& element, std::string_view name,
                                               std::span<const char* const> words)
{
    const auto value = attributeOf(element, name);
    if (!value) {
        return std::nullopt;
    }
    const auto found = std::find(words.begin(), words.end(), *value);
    if (found != words.end()) {
        return static_cast<std::size_t>(found - words.begin());
    }
    std::string all;
    for (const char* const one : words) {
        all += std::string(all.empty() ? "" : ", ") + one;
    }
    complain(element, std::string(name) + ": " + inQuotes(*value) + " is none of " + all);
    return std::nullopt;
}

void ElementReader::seconds(const AaGpuXmlNode& element, std::string_view name, host::Nanoseconds& value)
{
    if (const auto text = attributeOf(element, name)) {
        try {
            value = parseSeconds(std::string(name), *text);
        } catch (const UsageError& error) {
            complain(element, error.what());
        }
    }
}

std::optional<std::uint64_t> ElementReader::number(const AaGpuXmlNode& element, std::string_view name,
                                                   std::uint64_t greatest)
{
    const auto text = attributeOf(element, name);
    try {
        return text ? std::optional(parseNumber(std::string(name), *text, greatest)) : std::nullopt;
    } catch (const UsageError& error) {
        complain(element, error.what());
        return std::nullopt;
    }
}

} // namespace dorn::tool
