// SPDX-License-Identifier: MIT
#include "AaGpuXml.hpp"

#include "xml/XmlDocument.hpp"
#include "xml/XmlTree.hpp"

#include <optional>

using dorn::host::parseXml;
using dorn::host::XmlDocument;
using dorn::host::XmlExtent;
using dorn::host::XmlFault;
using dorn::host::XmlFaultPolicy;

namespace {

/// Says in @p result and @p error what came of a text, and gives its tree away.
AaGpuXmlNode* give(XmlDocument document, EAaGpuXmlResult& result, std::string& error)
{
    result = AA_GPU_XML_OK;
    error.clear();
    if (const std::optional<XmlFault>& fault = document.fault) {
        result = fault->isUnsupported ? AA_GPU_XML_NOT_SUPPORTED : AA_GPU_XML_NOT_WELL_FORMED;
        error = std::to_string(fault->line) + ":" + std::to_string(fault->column) + ": " + fault->reason;
    }
    return document.root.release();
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

AaGpuXmlNode::~AaGpuXmlNode()
{
    delete m_tree;
}

const char* AaGpuXmlNode::AaGpuXmlGetName() const
{
    return m_name;
}

const char* AaGpuXmlNode::AaGpuXmlGetValue() const
{
    return m_value;
}

EAaGpuXmlNodeType AaGpuXmlNode::AaGpuXmlGetType() const
{
    return m_type;
}

AaGpuXmlNode* AaGpuXmlNode::AaGpuXmlGetNext() const
{
    return m_next;
}

bool AaGpuXmlNode::AaGpuXmlHasChildren() const
{
    return m_firstChild != nullptr;
}

TAaGpuXmlNodeListConstIterator AaGpuXmlNode::AaGpuXmlGetFirstChildren() const
{
    return TAaGpuXmlNodeListConstIterator(m_firstChild);
}

TAaGpuXmlNodeListConstIterator AaGpuXmlNode::AaGpuXmlGetLastChildren() const
{
    return {};
}

std::uint32_t AaGpuXmlNode::AaGpuXmlGetLine() const
{
    return m_line;
}

std::uint32_t AaGpuXmlNode::AaGpuXmlGetColumn() const
{
    return m_column;
}

AaGpuXmlParser::AaGpuXmlParser(unsigned int /*options*/) {}

AaGpuXmlNode* AaGpuXmlParser::AaGpuXmlParse(const std::string& xmlText, const std::string& encoding)
{
    return give(parseXml(xmlText, encoding, XmlFaultPolicy::GiveNothing, XmlExtent::Whole), m_lastResult, m_lastError);
}

AaGpuXmlNode* AaGpuXmlParser::AaGpuXmlParsePrefix(const std::string& text, const std::string& encoding)
{
    return give(parseXml(text, encoding, XmlFaultPolicy::GiveNothing, XmlExtent::Prefix), m_lastResult, m_lastError);
}

EAaGpuXmlResult AaGpuXmlParser::AaGpuXmlLastResult() const
{
    return m_lastResult;
}

const std::string& AaGpuXmlParser::AaGpuXmlLastError() const
{
    return m_lastError;
}
