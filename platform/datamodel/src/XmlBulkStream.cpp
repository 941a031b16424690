#include "datamodel/XmlBulkStream.h"

#include "datamodel/VisitorContext.h"

#include <base/Exception.h>

namespace Kx {

XMLNode XmlBulkStream::nodeFromVisitorContext(const IWriteStreamBase*, const VisitorContext& context)
{
    return context.xmlNode();
}

XMLNode XmlBulkStream::nodeFromVisitorContext(const IReadStreamBase*, const VisitorContext& context)
{
    return context.xmlNode();
}

XmlWriteStream::XmlWriteStream(std::string_view rootName) : IWriteStreamBase(EStreamMode::eXML)
{
    m_document.appendChild(rootName);
}

XmlReadStream::XmlReadStream(std::string_view text) : IReadStreamBase(EStreamMode::eXML)
{
    std::string error;
    auto parsed = XMLDocument::parse(text, &error);
    take(std::move(parsed), error);
}

XmlReadStream::XmlReadStream(std::span<std::uint8_t> bytes) : IReadStreamBase(EStreamMode::eXML)
{
    std::string error;
    auto parsed = XMLDocument::parseInPlace({reinterpret_cast<char*>(bytes.data()), bytes.size()}, &error);
    take(std::move(parsed), error);
}

void XmlReadStream::take(std::optional<XMLDocument> parsed, const std::string& error)
{
    if (!parsed)
        throw Exception(L"The data is damaged: it is not well-formed XML.", error);
    m_document = std::move(*parsed);
    if (m_document.documentElement().isNull())
        throw Exception(L"The data is damaged: the XML holds no element.", "xml stream: no document element");
}

} // namespace Kx
