// SPDX-License-Identifier: MIT
#include "xml/XmlTree.hpp"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace dorn::host {

static_assert(std::is_trivially_destructible_v<XmlNode>, "nodes go with their block");

/// What stands in front of the nodes of a block.
struct alignas(XmlNode) XmlTree::Block {
    XmlTree* tree;
    Block* previous;
};
static_assert(alignof(XmlNode) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);

std::unique_ptr<AaGpuXmlNode> XmlTree::create(std::string_view text, Unit columnUnit)
{
    std::unique_ptr<XmlTree> tree(new XmlTree(text, columnUnit));
    tree->m_root = tree->makeNode(AA_GPU_XML_ROOT_NODE, "");
    return std::unique_ptr<AaGpuXmlNode>(tree.release()->m_root);
}

XmlTree& XmlTree::of(const AaGpuXmlNode& node)
{
    const auto& hosted = static_cast<const XmlNode&>(node);
    return *reinterpret_cast<const Block*>(&hosted - hosted.place)[-1].tree;
}

XmlTree::XmlTree(std::string_view text, Unit columnUnit)
    : m_text(std::make_unique_for_overwrite<char[]>(text.size() + 1)), m_textSize(text.size()), m_columnUnit(columnUnit)
{
    std::copy(text.begin(), text.end(), m_text.get());
    m_text[m_textSize] = '\0';
}

XmlTree::~XmlTree()
{
    while (Block* const block = m_lastBlock) {
        m_lastBlock = block->previous;
        ::operator delete(block);
    }
}

void XmlTree::addBlock()
{
    constexpr std::uint32_t least = 32;
    constexpr std::uint32_t greatest = 1U << 15U;
    const std::uint32_t capacity = std::clamp(m_capacity * 2, least, greatest);
    void* const memory = ::operator new(sizeof(Block) + capacity * sizeof(XmlNode));
    m_lastBlock = new (memory) Block{this, m_lastBlock};
    m_nodes = reinterpret_cast<XmlNode*>(m_lastBlock + 1);
    m_capacity = capacity;
    m_used = 0;
}

const char* XmlTree::store(std::string_view text)
{
    if (text.empty()) {
        return "";
    }
    char* const copy = static_cast<char*>(m_stored.allocate(text.size() + 1, 1));
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return copy;
}

void XmlTree::noteLineEnd(const char* at)
{
    if (*at == '\n' || at[1] != '\n') { // of CR LF the LF stays
        m_lostLineEnds.push_back(static_cast<std::size_t>(at - m_text.get()));
    }
}

XmlPosition XmlTree::positionOf(const XmlNode& node) const
{
    switch (node.type) {
    case AA_GPU_XML_ELEMENT_NODE:
        return positionOf(node.name - 1);
    case AA_GPU_XML_ATTRIBUTE_NODE:
        return positionOf(node.name);
    default:
        return {};
    }
}

XmlPosition XmlTree::positionOf(const char* at) const
{
    std::call_once(m_positionsMade, [this] {
        m_positions.emplace(std::string_view(m_text.get(), m_textSize), m_columnUnit, m_lostLineEnds);
    });
    return m_positions->at(static_cast<std::size_t>(at - m_text.get()));
}

} // namespace dorn::host
