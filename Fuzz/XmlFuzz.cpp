// SPDX-License-Identifier: MIT
/// @file XmlFuzz.cpp
/// Any bytes as an XML document: there is a tree or a fault, the tree is as its users expect it, and the fault lies in
/// the text.
#include "Require.hpp"
#include "xml/XmlDocument.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using dorn::fuzz::require;
using dorn::host::parseXml;
using dorn::host::XmlDocument;
using dorn::host::XmlExtent;
using dorn::host::XmlFaultPolicy;

/// What a text can have at most of what a tree shows.
struct Limits {
    explicit Limits(const std::string& text)
        : lines(static_cast<std::size_t>(
                    std::count_if(text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r'; })) +
                1),
          columns(text.size() + 1),
          elements(static_cast<std::size_t>(std::count(text.begin(), text.end(), '<'))),
          attributes(static_cast<std::size_t>(std::count(text.begin(), text.end(), '=')))
    {
    }

    void check(std::uint32_t line, std::uint32_t column) const
    {
        require(line >= 1 && line <= lines && column >= 1 && column <= columns);
    }

    std::size_t lines;
    std::size_t columns;
    std::size_t elements;
    std::size_t attributes;
};

struct Counts {
    std::size_t elements = 0;
    std::size_t attributes = 0;
};

/// Checks one child of an element, behind the sibling @p previous.
void checkChild(const AaGpuXmlNode& parent, const AaGpuXmlNode* previous, const AaGpuXmlNode& child,
                const Limits& limits, Counts& counts)
{
    limits.check(child.AaGpuXmlGetLine(), child.AaGpuXmlGetColumn());
    require(*child.AaGpuXmlGetName() != '\0' && child.AaGpuXmlGetValue() != nullptr);
    require(!previous || previous->AaGpuXmlGetNext() == &child);
    require(child.AaGpuXmlGetLine() >= parent.AaGpuXmlGetLine());
    if (child.AaGpuXmlGetType() == AA_GPU_XML_ATTRIBUTE_NODE) {
        ++counts.attributes;
        require(!child.AaGpuXmlHasChildren());
        require(!previous || previous->AaGpuXmlGetType() == AA_GPU_XML_ATTRIBUTE_NODE);
    } else {
        ++counts.elements;
        require(child.AaGpuXmlGetType() == AA_GPU_XML_ELEMENT_NODE);
        require(!previous || previous->AaGpuXmlGetLine() <= child.AaGpuXmlGetLine());
    }
}

void checkTree(const AaGpuXmlNode& root, const Limits& limits)
{
    require(root.AaGpuXmlGetType() == AA_GPU_XML_ROOT_NODE && !root.AaGpuXmlGetNext());
    require(root.AaGpuXmlHasChildren() && !(*root.AaGpuXmlGetFirstChildren())->AaGpuXmlGetNext());
    Counts counts;
    std::vector<const AaGpuXmlNode*> pending{&root};
    while (!pending.empty()) {
        const AaGpuXmlNode& node = *pending.back();
        pending.pop_back();
        const AaGpuXmlNode* previous = nullptr;
        for (auto child = node.AaGpuXmlGetFirstChildren(); child != node.AaGpuXmlGetLastChildren(); ++child) {
            checkChild(node, previous, **child, limits, counts);
            previous = *child;
            if (previous->AaGpuXmlGetType() == AA_GPU_XML_ELEMENT_NODE) {
                pending.push_back(previous);
            }
        }
    }
    require(counts.elements <= limits.elements && counts.attributes <= limits.attributes);
}

void checkDocument(const XmlDocument& document, XmlFaultPolicy policy, const Limits& limits)
{
    require(document.root || document.fault);
    require(policy == XmlFaultPolicy::GiveWhatStandsBefore || !document.root || !document.fault);
    if (document.fault) {
        limits.check(document.fault->line, document.fault->column);
        require(!document.fault->reason.empty() && document.fault->reason.size() < 200);
    }
    if (document.root) {
        checkTree(*document.root, limits);
    }
}

void checkSameFault(const XmlDocument& one, const XmlDocument& other)
{
    require(one.fault.has_value() == other.fault.has_value());
    require(!one.fault || (one.fault->line == other.fault->line && one.fault->column == other.fault->column &&
                           one.fault->reason == other.fault->reason));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const Limits limits(text);
    const XmlDocument strict = parseXml(text, "", XmlFaultPolicy::GiveNothing, XmlExtent::Whole);
    checkDocument(strict, XmlFaultPolicy::GiveNothing, limits);
    const XmlDocument lenient = parseXml(text, "", XmlFaultPolicy::GiveWhatStandsBefore, XmlExtent::Whole);
    checkDocument(lenient, XmlFaultPolicy::GiveWhatStandsBefore, limits);
    checkSameFault(strict, lenient);
    const XmlDocument prefix = parseXml(text, "", XmlFaultPolicy::GiveNothing, XmlExtent::Prefix);
    checkDocument(prefix, XmlFaultPolicy::GiveNothing, limits);
    require(strict.fault || !prefix.fault);
    return 0;
}
