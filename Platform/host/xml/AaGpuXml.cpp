// SPDX-License-Identifier: MIT
#include "AaGpuXml.hpp"

#include "xml/XmlDocument.hpp"
#include "xml/XmlTree.hpp"

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
    dorn::host::XmlDocument document = dorn::host::parseXml(xmlText, encoding, dorn::host::XmlFaultPolicy::GiveNothing);
    m_lastError.clear();
    if (document.fault) {
        m_lastError = std::to_string(document.fault->line) + ":" + std::to_string(document.fault->column) + ": " +
                      document.fault->reason;
    }
    return document.root.release();
}

const std::string& AaGpuXmlParser::AaGpuXmlLastError() const
{
    return m_lastError;
}
