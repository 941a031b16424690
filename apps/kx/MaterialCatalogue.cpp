#include "MaterialCatalogue.h"

#include "CatalogueAssets.h"
#include "MaterialEntries.h"

#include "Png.h"

#include <Types/Appearance/AmbrelManager.h>

#include <assets/IAssetLibrary.h>
#include <base/Exception.h>
#include <base/Strings.h>

#include <fmt/format.h>

#include <cctype>
#include <fstream>
#include <ostream>
#include <set>
#include <string>
#include <system_error>
#include <vector>

namespace Kx::Console {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void cannotWrite(const fs::path& path, const std::string& reason)
{
    throw Exception(L"The catalogue could not be written", path.string() + ": " + reason);
}

// Beside its place first, then renamed over it: a failure never leaves a half-written file.
void writeFile(const fs::path& path, std::string_view bytes)
{
    const fs::path partial = path.string() + ".partial";
    {
        std::ofstream stream(partial, std::ios::binary | std::ios::trunc);
        if (!stream || !stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size())) || !stream.flush()) {
            std::error_code ignored;
            fs::remove(partial, ignored);
            cannotWrite(path, "cannot write the file");
        }
    }
    std::error_code error;
    fs::rename(partial, path, error);
    if (error) {
        fs::remove(partial, error);
        cannotWrite(path, error.message());
    }
}

void makeFolder(const fs::path& folder)
{
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) {
        cannotWrite(folder, error.message());
    }
}

std::string escaped(std::string_view text)
{
    std::string html;
    for (const char c : text) {
        switch (c) {
        case '&': html += "&amp;"; break;
        case '<': html += "&lt;"; break;
        case '>': html += "&gt;"; break;
        case '"': html += "&quot;"; break;
        default: html += c;
        }
    }
    return html;
}

// A file name of plain letters, digits and dashes, unique among `taken`.
std::string slugOf(const std::string& name, std::set<std::string>& taken)
{
    std::string slug;
    for (const char c : name) {
        if (std::isalnum(static_cast<unsigned char>(c))) {
            slug += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        } else if (!slug.empty() && slug.back() != '-') {
            slug += '-';
        }
    }
    while (!slug.empty() && slug.back() == '-') {
        slug.pop_back();
    }
    if (slug.empty()) {
        slug = "library";
    }
    std::string unique = slug;
    for (int count = 2; !taken.insert(unique).second; ++count) {
        unique = slug + "-" + std::to_string(count);
    }
    return unique;
}

// The swatch of the entry's colour; a textured appearance shows the preview its library embeds,
// and a neutral grey stands in when there is neither.
std::string swatchBytes(AmbrelManager& manager, const LibraryListing& listing, const MaterialEntry& entry)
{
    if (entry.colour) {
        const Content::Image image = Content::swatch({entry.colour->red(), entry.colour->green(), entry.colour->blue()}, 32);
        const std::vector<std::uint8_t> png = Content::encodePng(image);
        return {png.begin(), png.end()};
    }
    std::vector<std::uint8_t> embedded;
    const Assets::IAssetLibrary* library = manager.GetLibraryByIdentifier(listing.id);
    static constexpr std::string_view s_signature = "\x89PNG\r\n\x1a\n";
    if (library != nullptr && !entry.thumbnail.empty() && library->ReadEmbeddedResource(entry.thumbnail, embedded) &&
        std::string_view(reinterpret_cast<const char*>(embedded.data()), std::min(embedded.size(), s_signature.size())) ==
            s_signature) {
        return {embedded.begin(), embedded.end()};
    }
    const std::vector<std::uint8_t> png = Content::encodePng(Content::swatch({0.18, 0.18, 0.18}, 32));
    return {png.begin(), png.end()};
}

std::string pageStart(const std::string& title)
{
    return fmt::format("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>{0}</title>\n"
                       "<link rel=\"icon\" href=\"data:,\">\n<link rel=\"stylesheet\" href=\"catalogue.css\">\n"
                       "<script src=\"sort.js\" defer></script>\n</head>\n<body>\n",
        escaped(title));
}

struct Column {
    const char* key;
    std::string header;
    bool number;
};

std::string headerRow(const std::vector<Column>& columns)
{
    std::string html = "<thead><tr>";
    for (const Column& column : columns) {
        html += fmt::format("<th data-key=\"{}\" data-type=\"{}\">{}</th>", column.key, column.number ? "number" : "text",
            escaped(column.header));
    }
    return html + "</tr></thead>\n";
}

std::string textCell(const std::string& text)
{
    return "<td>" + escaped(text) + "</td>";
}

// A value cell: its exact value for sorting, and its origin when it is not the source's own figure.
std::string valueCell(const MaterialEntry& entry, std::size_t property)
{
    const std::optional<double> value = entry.shown(property);
    const std::string& origin = entry.origins[property];
    std::string classes = "number";
    if (!origin.empty()) {
        classes += origin.starts_with("corrected") ? " corrected" : origin.starts_with("withdrawn") ? " withdrawn" : " family";
    }
    std::string html = "<td class=\"" + classes + "\"";
    if (value) {
        html += fmt::format(" data-value=\"{}\"", *value);
    }
    if (!origin.empty()) {
        html += " title=\"" + escaped(origin) + "\"";
    }
    return html + ">" + (value ? formatValue(*value) : std::string()) + "</td>";
}

std::string libraryPage(const LibraryListing& listing, const std::string& slug)
{
    std::vector<Column> columns{{"swatch", "Swatch", false}, {"id", "Material id", false}, {"name", "Name", false},
        {"category", "Category", false}, {"subcategory", "Subcategory", false}};
    if (listing.physical) {
        for (const MaterialProperty& property : s_materialProperties) {
            const std::string label(property.label);
            columns.push_back({property.key.data(),
                property.unit.empty() ? label : label + " " + std::string(property.unit), true});
        }
        columns.push_back({"appearance", "Appearance", false});
    } else {
        columns.push_back({"kind", "Kind", false});
        columns.push_back({"colour", "Colour (sRGB)", false});
        columns.push_back({"roughness", "Roughness", true});
    }
    std::string html = pageStart(listing.name);
    html += "<p><a href=\"index.html\">All libraries</a></p>\n<h1>" + escaped(listing.name) + "</h1>\n";
    html += fmt::format("<p>{} {}. Click a column header to sort; click again to reverse.</p>\n", listing.entries.size(),
        listing.physical ? "physical materials" : "appearances");
    html += "<table class=\"sortable\">\n" + headerRow(columns) + "<tbody>\n";
    for (const MaterialEntry& entry : listing.entries) {
        html += fmt::format("<tr data-id=\"{}\"><td><img class=\"swatch\" src=\"swatches/{}/{}.png\" alt=\"\"></td>",
            escaped(entry.id), slug, escaped(entry.id));
        html += textCell(entry.id) + textCell(entry.name) + textCell(entry.category) + textCell(entry.subcategory);
        if (listing.physical) {
            for (std::size_t index = 0; index < s_materialPropertyCount; ++index) {
                html += valueCell(entry, index);
            }
            html += textCell(entry.appearance);
        } else {
            html += textCell(entry.kind) + textCell(entry.colour ? srgbHex(*entry.colour) : "textured");
            html += entry.roughness ? fmt::format("<td class=\"number\" data-value=\"{}\">{}</td>", *entry.roughness,
                                          formatValue(*entry.roughness))
                                    : std::string("<td class=\"number\"></td>");
        }
        html += "</tr>\n";
    }
    html += "</tbody>\n</table>\n";
    if (listing.physical) {
        html += "<p class=\"legend\">Values marked c are corrections of the source, f are values of the material's "
                "family where its source gives none, and w are figures of the source withdrawn as wrong; the note on "
                "each (hover the cell) names the reference. Empty cells: not given.</p>\n";
    }
    return html + "</body>\n</html>\n";
}

std::string indexPage(const std::vector<std::pair<LibraryListing, std::string>>& pages)
{
    std::string html = pageStart("Material libraries");
    html += "<h1>Material libraries</h1>\n<table class=\"sortable\">\n" +
            headerRow({{"name", "Library", false}, {"kind", "Holds", false}, {"count", "Presets", true}}) + "<tbody>\n";
    for (const auto& [listing, slug] : pages) {
        html += fmt::format("<tr><td><a href=\"{}.html\">{}</a></td><td>{}</td><td class=\"number\" data-value=\"{}\">{}</td></tr>\n",
            slug, escaped(listing.name), listing.physical ? "physical materials" : "appearances", listing.entries.size(),
            listing.entries.size());
    }
    return html + "</tbody>\n</table>\n<p class=\"legend\">Colours are shown in sRGB, encoded from the libraries' "
                  "linear values.</p>\n</body>\n</html>\n";
}

} // namespace

void writeCatalogue(AmbrelManager& manager, const fs::path& folder, std::ostream& progress)
{
    makeFolder(folder);
    writeFile(folder / "catalogue.css", s_catalogueStyle);
    writeFile(folder / "sort.js", s_catalogueScript);
    std::set<std::string> taken{"index"};
    std::vector<std::pair<LibraryListing, std::string>> pages;
    for (const auto& [name, id] : openLibraries(manager)) {
        LibraryListing listing = readLibrary(manager, name, id);
        const std::string slug = slugOf(name, taken);
        makeFolder(folder / "swatches" / slug);
        for (const MaterialEntry& entry : listing.entries) {
            writeFile(folder / "swatches" / slug / (entry.id + ".png"), swatchBytes(manager, listing, entry));
        }
        writeFile(folder / (slug + ".html"), libraryPage(listing, slug));
        progress << "catalogue: " << name << ": " << listing.entries.size() << ' '
                 << (listing.physical ? "physical materials" : "appearances") << '\n';
        pages.emplace_back(std::move(listing), slug);
    }
    writeFile(folder / "index.html", indexPage(pages));
    progress << "catalogue written: " << (folder / "index.html").string() << '\n';
}

} // namespace Kx::Console
