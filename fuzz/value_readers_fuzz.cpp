// Arbitrary input to every reader of value text and encodings: the text forms (Point2::fromString,
// Color::fromHex, ungroupStrings), JSON (parse, and setting a whole entity), XML and binary
// entities. Each reader must answer with its stated result or exception, never crash or hang.

#include <Types/Geometry/Color.h>
#include <Types/Geometry/Point2.h>
#include <Types/Testors/GeometryTestor.h>

#include <base/Exception.h>
#include <base/JSONNode.h>
#include <base/Strings.h>
#include <datamodel/EntityCodec.h>

#include <boost/lexical_cast.hpp>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

namespace {

template <class Read>
void expectOnlyStatedFailures(Read&& read)
{
    try {
        read();
    } catch (const Kx::Exception&) {
    } catch (const boost::bad_lexical_cast&) {
    } catch (const std::bad_cast&) {
    } catch (const std::invalid_argument&) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::wstring wide = Kx::ToIString(text);

    expectOnlyStatedFailures([&] { (void)Kx::Point2::fromString(wide); });
    expectOnlyStatedFailures([&] { (void)Kx::Color::fromHex(text); });

    std::vector<std::wstring> items;
    if (Kx::Strings::ungroupStrings(wide, items)) {
        std::vector<std::wstring> again;
        // Grouping what was read and reading it again must give the same items.
        if (!Kx::Strings::ungroupStrings(Kx::Strings::groupStrings(items), again) || again != items)
            __builtin_trap();
    }

    (void)Kx::JSONNode::parse(text);
    expectOnlyStatedFailures([&] {
        Kx::GeometryTestor entity;
        Kx::entityFromJSON(entity, text);
    });
    expectOnlyStatedFailures([&] {
        Kx::GeometryTestor entity;
        Kx::loadEntityXml(entity, text);
    });
    expectOnlyStatedFailures([&] {
        Kx::GeometryTestor entity;
        Kx::loadEntityBinary(entity, std::span(data, size));
    });
    return 0;
}
