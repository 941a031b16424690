#pragma once

#include "base/XMLAttributeProxy.h"
#include "base/XMLString.h"

#include <pugixml.hpp>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Kx {

// An element of an XMLDocument (or a null node). A cheap handle: copies refer to the same element,
// which lives as long as its document. Navigation sees element children only; text content is
// read and written through text()/setText(). Names and texts are UTF-8.
class XMLNode {
public:
    XMLNode() = default;
    explicit XMLNode(pugi::xml_node node)
        : m_node(node)
    {
    }

    [[nodiscard]] XMLAttributeProxy operator[](const XMLString& name) const { return {m_node, name.c_str()}; }
    [[nodiscard]] XMLAttributeProxy operator[](std::string_view name) const { return {m_node, std::string(name)}; }

    XMLNode appendChild(std::string_view name);
    bool removeChild(const XMLNode& child);
    [[nodiscard]] XMLNode child(std::string_view name) const;
    [[nodiscard]] XMLNode child(const std::string& name) const { return XMLNode(m_node.child(name.c_str())); }
    [[nodiscard]] XMLNode child(const char* name) const { return XMLNode(m_node.child(name)); }
    // Null past the end.
    [[nodiscard]] XMLNode childAt(std::size_t index) const;
    [[nodiscard]] std::size_t childCount() const;
    [[nodiscard]] XMLNode firstChild() const;
    [[nodiscard]] XMLNode nextSibling() const;

    [[nodiscard]] std::string name() const;
    // The name without a copy; valid while the element is.
    [[nodiscard]] std::string_view nameView() const { return m_node.name(); }
    [[nodiscard]] bool isNull() const { return !m_node; }
    explicit operator bool() const { return !isNull(); }
    [[nodiscard]] std::string text() const;
    void setText(std::string_view text);

    [[nodiscard]] pugi::xml_node raw() const { return m_node; }
    [[nodiscard]] bool operator==(const XMLNode& other) const { return m_node == other.m_node; }

private:
    pugi::xml_node m_node;
};

// An XML document in memory (UTF-8), with loading and saving that never leave a half-written file.
class XMLDocument {
public:
    XMLDocument();
    ~XMLDocument();
    XMLDocument(XMLDocument&&) noexcept;
    XMLDocument& operator=(XMLDocument&&) noexcept;
    XMLDocument(const XMLDocument&) = delete;
    XMLDocument& operator=(const XMLDocument&) = delete;

    XMLNode appendChild(std::string_view name);
    [[nodiscard]] XMLNode documentElement() const;

    // With an XML declaration; pretty indents by two spaces, otherwise nothing is added between tags.
    [[nodiscard]] std::string toString(bool pretty = true) const;

    // Null (and the reason in `error`) unless the text is well-formed XML with a document element.
    [[nodiscard]] static std::optional<XMLDocument> parse(std::string_view text, std::string* error = nullptr);
    // The same, parsing `text` where it lies: names and values stay in it (it is changed by the
    // parse), so it must outlive the document. A large text is then neither copied nor held twice.
    [[nodiscard]] static std::optional<XMLDocument> parseInPlace(std::span<char> text, std::string* error = nullptr);
    [[nodiscard]] static std::optional<XMLDocument> loadFile(const std::filesystem::path& file,
        std::string* error = nullptr);
    // Writes a sibling temporary file, flushes it to storage and renames it over `file`: the target
    // holds either its previous content or the complete new one. The folder must exist.
    [[nodiscard]] bool saveFile(const std::filesystem::path& file) const;

    [[nodiscard]] pugi::xml_document& raw() { return *m_document; }
    [[nodiscard]] const pugi::xml_document& raw() const { return *m_document; }

private:
    [[nodiscard]] static std::optional<XMLDocument> checked(XMLDocument document, const pugi::xml_parse_result& result,
        std::string* error, const std::string& where);

    std::unique_ptr<pugi::xml_document> m_document;
};

} // namespace Kx
