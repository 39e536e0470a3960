// SPDX-License-Identifier: MIT
#include "AaGpuXml.hpp"

#include "xml/XmlDocument.hpp"
#include "xml/XmlTree.hpp"

#include <new>
#include <optional>

using dorn::host::parseXml;
using dorn::host::XmlDocument;
using dorn::host::XmlExtent;
using dorn::host::XmlFault;
using dorn::host::XmlFaultPolicy;
using dorn::host::XmlNode;
using dorn::host::XmlTree;

namespace {

const XmlNode& hosted(const AaGpuXmlNode& node)
{
    return static_cast<const XmlNode&>(node);
}

/// Parses a text and says in @p result and @p error what came of it. @return the root, owned by the caller.
AaGpuXmlNode* parse(const std::string& text, const std::string& encoding, XmlExtent extent, EAaGpuXmlResult& result,
                    std::string& error)
{
    result = AA_GPU_XML_OK;
    error.clear();
    try {
        XmlDocument document = parseXml(text, encoding, XmlFaultPolicy::GiveNothing, extent);
        if (const std::optional<XmlFault>& fault = document.fault) {
            result = fault->isUnsupported ? AA_GPU_XML_NOT_SUPPORTED : AA_GPU_XML_NOT_WELL_FORMED;
            error = std::to_string(fault->line) + ":" + std::to_string(fault->column) + ": " + fault->reason;
        }
        return document.root.release();
    } catch (const std::bad_alloc&) {
        result = AA_GPU_XML_NO_MEMORY;
        error = "1:1: no memory"; // short enough to need none
        return nullptr;
    }
}

} // namespace

TAaGpuXmlNodeListConstIterator& TAaGpuXmlNodeListConstIterator::operator++()
{
    m_node = m_node->AaGpuXmlGetNext();
    return *this;
}

TAaGpuXmlNodeListConstIterator TAaGpuXmlNodeListConstIterator::operator++(int)
{
    const TAaGpuXmlNodeListConstIterator before = *this;
    ++*this;
    return before;
}

void AaGpuXmlNode::operator delete(AaGpuXmlNode* root, std::destroying_delete_t)
{
    delete &XmlTree::of(*root);
}

const char* AaGpuXmlNode::AaGpuXmlGetName() const
{
    return hosted(*this).name;
}

const char* AaGpuXmlNode::AaGpuXmlGetValue() const
{
    return hosted(*this).value;
}

EAaGpuXmlNodeType AaGpuXmlNode::AaGpuXmlGetType() const
{
    return hosted(*this).type;
}

AaGpuXmlNode* AaGpuXmlNode::AaGpuXmlGetNext() const
{
    return hosted(*this).next;
}

bool AaGpuXmlNode::AaGpuXmlHasChildren() const
{
    return hosted(*this).firstChild != nullptr;
}

TAaGpuXmlNodeListConstIterator AaGpuXmlNode::AaGpuXmlGetFirstChildren() const
{
    return TAaGpuXmlNodeListConstIterator(hosted(*this).firstChild);
}

TAaGpuXmlNodeListConstIterator AaGpuXmlNode::AaGpuXmlGetLastChildren() const
{
    return {};
}

std::uint32_t AaGpuXmlNode::AaGpuXmlGetLine() const
{
    return XmlTree::of(*this).positionOf(hosted(*this)).line;
}

std::uint32_t AaGpuXmlNode::AaGpuXmlGetColumn() const
{
    return XmlTree::of(*this).positionOf(hosted(*this)).column;
}

AaGpuXmlParser::AaGpuXmlParser(unsigned int /*options*/) {}

AaGpuXmlNode* AaGpuXmlParser::AaGpuXmlParse(const std::string& xmlText, const std::string& encoding)
{
    return parse(xmlText, encoding, XmlExtent::Whole, m_lastResult, m_lastError);
}

AaGpuXmlNode* AaGpuXmlParser::AaGpuXmlParsePrefix(const std::string& text, const std::string& encoding)
{
    return parse(text, encoding, XmlExtent::Prefix, m_lastResult, m_lastError);
}

EAaGpuXmlResult AaGpuXmlParser::AaGpuXmlLastResult() const
{
    return m_lastResult;
}

const std::string& AaGpuXmlParser::AaGpuXmlLastError() const
{
    return m_lastError;
}
