#include "base/XMLNode.h"

namespace Kx {

namespace {

pugi::xml_node firstElement(pugi::xml_node node)
{
    while (node && node.type() != pugi::node_element) {
        node = node.next_sibling();
    }
    return node;
}

} // namespace

XMLNode XMLNode::appendChild(std::string_view name)
{
    return XMLNode(m_node.append_child(std::string(name).c_str()));
}

bool XMLNode::removeChild(const XMLNode& child)
{
    return m_node.remove_child(child.m_node);
}

XMLNode XMLNode::child(std::string_view name) const
{
    return XMLNode(m_node.child(std::string(name).c_str()));
}

XMLNode XMLNode::childAt(std::size_t index) const
{
    pugi::xml_node node = firstElement(m_node.first_child());
    for (; node && index > 0; --index) {
        node = firstElement(node.next_sibling());
    }
    return XMLNode(node);
}

std::size_t XMLNode::childCount() const
{
    std::size_t count = 0;
    for (pugi::xml_node node = firstElement(m_node.first_child()); node; node = firstElement(node.next_sibling())) {
        ++count;
    }
    return count;
}

XMLNode XMLNode::firstChild() const
{
    return XMLNode(firstElement(m_node.first_child()));
}

XMLNode XMLNode::nextSibling() const
{
    return XMLNode(firstElement(m_node.next_sibling()));
}

std::string XMLNode::name() const
{
    return m_node.name();
}

std::string XMLNode::text() const
{
    return m_node.text().get();
}

void XMLNode::setText(std::string_view text)
{
    m_node.text().set(std::string(text).c_str());
}

} // namespace Kx
