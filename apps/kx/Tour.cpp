#include "Tour.h"

#include <Types/Geometry/ValueMetaTypes.h>
#include <Types/Testors/GeometryTestor.h>

#include <base/BootstrapOptionGroup.h>
#include <base/Strings.h>
#include <datamodel/EntityCodec.h>
#include <datamodel/MetaTypeRegistry.h>
#include <datamodel/ValueMetaType.h>

#include <iomanip>
#include <ostream>

namespace Kx::Console {

namespace {

void printHex(std::ostream& out, const std::vector<std::uint8_t>& bytes)
{
    const auto flags = out.flags();
    for (std::size_t i = 0; i < bytes.size(); ++i)
        out << (i % 16 == 0 ? "\n    " : " ") << std::hex << std::right << std::setw(2) << std::setfill('0')
            << int(bytes[i]);
    out.flags(flags);
    out << '\n';
}

} // namespace

void printRegistry(std::ostream& out)
{
    out << "Value types registered by KxTypes10:\n";
    for (std::string_view name : registeredValueTypeNames()) {
        const auto* metaType = dynamic_cast<ValueMetaType*>(MetaTypeRegistry::get().findByTypeName(name));
        if (metaType == nullptr) {
            out << "  " << name << "  (missing from the registry)\n";
            continue;
        }
        (void)metaType->currentMemberSet(); // attaches the callback, as the first value would
        out << "  " << std::left << std::setw(18) << metaType->typeName() << metaType->metaTypeId() << "  v"
            << metaType->version() << (metaType->dataModelCallback() != nullptr ? "  callback" : "  member by member")
            << '\n';
    }
    out << "All meta types known to the data model: " << MetaTypeRegistry::get().all().size() << "\n\n";
}

void runTour(std::ostream& out)
{
    Rect2 window(0, 0, 10, 10);
    out << "A rectangle:                  " << ToUTF8(window.toString()) << '\n';
    Rect2 deflated = window;
    deflated.deflate(6, 6);
    // Collapsing edges meet at the midpoint horizontally but fall below the old bottom vertically.
    out << "deflated by (6, 6):           " << ToUTF8(deflated.toString()) << '\n';
    out << "intersected with (5,5,20,20): " << ToUTF8((window & Rect2(5, 5, 20, 20)).toString()) << '\n';
    out << "margins to (2,3,7,9):         " << ToUTF8((window - Rect2(2, 3, 7, 9)).toString()) << '\n';
    out << "Point2 from its text:         " << ToUTF8(Point2::fromString(L"(3, -4)").toString()) << '\n';

    // A text from the string tables, resolved in the user's language and again in German.
    GlobalizedString units(std::make_tuple(std::string("KxTypes"), std::string("UnitsMeters"), std::string("meters")));
    auto& bootstrap = BootstrapOptionGroup::get();
    const std::string language = bootstrap.userLanguage();
    out << "A string-table text:          " << ToUTF8(units.value()) << " (" << language << ")";
    bootstrap.userLanguage("de-DE");
    units.resetToGlobalized();
    out << ", " << ToUTF8(units.value()) << " (de-DE)\n\n";
    bootstrap.userLanguage(language);

    GeometryTestor entity;
    entity.rect = deflated;
    entity.point = Point2(3, -4);
    entity.color = Color(1.0f, 0.5f, 0.0f, 1.0f);
    entity.label.set(L"Tour");
    entity.name = L"tour entity";

    const std::string json = entityToJSON(entity);
    out << "As JSON:\n    " << json << '\n';
    const std::string xml = saveEntityXml(entity);
    out << "As XML:\n" << xml;
    const auto bytes = saveEntityBinary(entity);
    out << "As binary (" << bytes.size() << " bytes):";
    printHex(out, bytes);

    GeometryTestor fromJSON;
    const unsigned updated = entityFromJSON(fromJSON, json);
    GeometryTestor fromXml;
    loadEntityXml(fromXml, xml);
    GeometryTestor fromBinary;
    loadEntityBinary(fromBinary, bytes);
    out << "\nRead back: JSON set " << updated << " members; rect from JSON " << ToUTF8(fromJSON.rect.toString())
        << ", from XML " << ToUTF8(fromXml.rect.toString()) << ", from binary " << ToUTF8(fromBinary.rect.toString())
        << '\n';
    const bool same = fromJSON.rect == deflated && fromXml.rect == deflated && fromBinary.rect == deflated
        && fromBinary.color == entity.color && fromXml.point == entity.point;
    out << (same ? "All three encodings gave the values back.\n" : "An encoding did not give the values back!\n");
}

} // namespace Kx::Console
