#pragma once

#include <datamodel/Streams.h>

#include <base/XMLNode.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Kx {

class VisitorContext;

// XML save and load streams. The data model gives every member that is a value its own element
// (named after the member); the value's callback finds that element in the visitor context and
// stores its fields as attributes or child elements of it.
class XmlBulkStream {
public:
    [[nodiscard]] static XMLNode nodeFromVisitorContext(const IWriteStreamBase* stream, const VisitorContext& context);
    [[nodiscard]] static XMLNode nodeFromVisitorContext(const IReadStreamBase* stream, const VisitorContext& context);
};

class XmlWriteStream final : public IWriteStreamBase {
public:
    explicit XmlWriteStream(std::string_view rootName = "KxData");

    [[nodiscard]] XMLNode root() const { return m_document.documentElement(); }
    [[nodiscard]] const XMLDocument& document() const noexcept { return m_document; }
    [[nodiscard]] std::string toString(bool pretty = true) const { return m_document.toString(pretty); }

private:
    XMLDocument m_document;
};

class XmlReadStream final : public IReadStreamBase {
public:
    // Throws Kx::Exception when the text is not well-formed XML.
    explicit XmlReadStream(std::string_view text);
    // Parses `bytes` where they lie (they are changed, and must outlive the stream).
    explicit XmlReadStream(std::span<std::uint8_t> bytes);

    [[nodiscard]] XMLNode root() const { return m_document.documentElement(); }

private:
    void take(std::optional<XMLDocument> parsed, const std::string& error);

    XMLDocument m_document;
};

} // namespace Kx
