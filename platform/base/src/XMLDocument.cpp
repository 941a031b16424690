#include "base/XMLNode.h"

#include "base/FaultInjection.h"
#include "base/TempFile.h"

#include <core/io/FileDataStream.h>

#include <optional>
#include <system_error>

namespace Kx {

namespace {

constexpr unsigned s_parseOptions = pugi::parse_default;

std::string describe(const pugi::xml_parse_result& result)
{
    return std::string(result.description()) + " at offset " + std::to_string(result.offset);
}

// pugixml accepts several top-level elements and stray top-level text; XML does not.
std::string checkTopLevel(const pugi::xml_document& document)
{
    int elements = 0;
    for (const pugi::xml_node node : document.children()) {
        if (node.type() == pugi::node_element) {
            ++elements;
        } else if (node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata) {
            return "text outside the document element";
        }
    }
    return elements == 1 ? std::string() : "more than one document element";
}

} // namespace

XMLDocument::XMLDocument()
    : m_document(std::make_unique<pugi::xml_document>())
{
}

XMLDocument::~XMLDocument() = default;
XMLDocument::XMLDocument(XMLDocument&&) noexcept = default;
XMLDocument& XMLDocument::operator=(XMLDocument&&) noexcept = default;

XMLNode XMLDocument::appendChild(std::string_view name)
{
    return XMLNode(m_document->append_child(std::string(name).c_str()));
}

XMLNode XMLDocument::documentElement() const
{
    return XMLNode(m_document->document_element());
}

namespace {
// Appends straight to the result: an ostringstream would copy the whole document once more.
struct StringWriter final : pugi::xml_writer {
    void write(const void* data, std::size_t size) override { text.append(static_cast<const char*>(data), size); }
    std::string text;
};
} // namespace

std::string XMLDocument::toString(bool pretty) const
{
    StringWriter out;
    m_document->save(out, "  ", pretty ? pugi::format_indent : pugi::format_raw, pugi::encoding_utf8);
    return std::move(out.text);
}

// The parsed document, or null and the reason in `error` (prefixed by `where` when given).
std::optional<XMLDocument> XMLDocument::checked(XMLDocument document, const pugi::xml_parse_result& result,
    std::string* error, const std::string& where)
{
    const std::string problem = result ? checkTopLevel(*document.m_document) : describe(result);
    if (problem.empty()) {
        return document;
    }
    if (error != nullptr) {
        *error = where.empty() ? problem : where + ": " + problem;
    }
    return std::nullopt;
}

std::optional<XMLDocument> XMLDocument::parse(std::string_view text, std::string* error)
{
    XMLDocument document;
    const auto result = document.m_document->load_buffer(text.data(), text.size(), s_parseOptions, pugi::encoding_utf8);
    return checked(std::move(document), result, error, {});
}

std::optional<XMLDocument> XMLDocument::parseInPlace(std::span<char> text, std::string* error)
{
    XMLDocument document;
    const auto result = document.m_document->load_buffer_inplace(text.data(), text.size(), s_parseOptions, pugi::encoding_utf8);
    return checked(std::move(document), result, error, {});
}

std::optional<XMLDocument> XMLDocument::loadFile(const std::filesystem::path& file, std::string* error)
{
    XMLDocument document;
    const auto result = document.m_document->load_file(file.c_str(), s_parseOptions, pugi::encoding_utf8);
    return checked(std::move(document), result, error, file.string());
}

bool XMLDocument::saveFile(const std::filesystem::path& file) const
{
    using telvarin::platform::core::io::FileDataStream;

    const std::string text = toString(true);
    std::optional<TempFile> temporary = TempFile::tryBeside(file);
    if (!temporary) {
        return false;
    }
    bool written = false;
    {
        FileDataStream stream(temporary->path(), FileDataStream::EOpenMode::eWrite);
        if (stream.openForWrite()) {
            // Two pieces with a fault point between them: tests fail a save midway (a full disk) and
            // check that the partial temporary file is cleaned up and the target left alone.
            const std::size_t half = text.size() / 2;
            written = stream.write(text.data(), half) == half && !FaultInjection::shouldFail("XMLDocument.saveFile.write")
                && stream.commit(text.data() + half, text.size() - half);
            stream.close();
        }
    }
    std::error_code error;
    if (written && !FaultInjection::shouldFail("XMLDocument.saveFile.rename")) {
        std::filesystem::rename(temporary->path(), file, error);
        if (!error) {
            temporary->release();
            return true;
        }
    }
    return false;
}

} // namespace Kx
