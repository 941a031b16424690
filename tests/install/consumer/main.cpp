// A program of another project, built against an installed KxTypes through its <kx/...> headers
// alone. It checks that the installed libraries work together with the installed content:
//
//   kx_consumer <content folder of the prefix> <scratch folder>
//
// Exit status 0 when everything matched; otherwise each mismatch is printed and the status is 1.

#include <kx/Base.h>
#include <kx/Documents.h>
#include <kx/Materials.h>
#include <kx/Testors.h>
#include <kx/ValueTypes.h>

#include <exception>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

namespace {

int s_mismatches = 0;

void expect(bool matched, const std::string& what, const std::string& actual)
{
    if (!matched) {
        ++s_mismatches;
        std::cerr << "MISMATCH " << what << ": got " << actual << "\n";
    }
}

void expectText(const std::wstring& actual, const std::wstring& expected, const std::string& what)
{
    expect(actual == expected, what + " (expected \"" + Kx::ToUTF8(expected) + "\")", "\"" + Kx::ToUTF8(actual) + "\"");
}

// Without KX_CONTENT_DIR the libraries must find the prefix's own content: a silent fall-back to
// the build tree they were made in would pass every other check on the build machine.
void checkContentRoot(const std::filesystem::path& expected)
{
    std::error_code error;
    const std::filesystem::path found = Kx::Paths::contentRoot();
    expect(std::filesystem::equivalent(found, expected, error), "content root (expected " + expected.string() + ")",
        found.string());
}

void checkValueTypes()
{
    Kx::Rect2 rect(2, 3, 6, 8);
    rect.inflate(1, 1);
    expectText(rect.toString(), L"(1, 2, 7, 9)", "Rect2 text");
    const Kx::Point2 point(3, -4);
    expectText(point.toString(), L"(3, -4)", "Point2 text");
    expect(Kx::Point2::fromString(point.toString()) == point, "Point2 read back from its text",
        Kx::ToUTF8(Kx::Point2::fromString(point.toString()).toString()));
}

// A document with one test entity, saved and opened again: the data model, the value types'
// callbacks and the zip container, and a label resolved through the installed string tables.
void checkDocument(const std::filesystem::path& scratch)
{
    const std::filesystem::path file = scratch / "consumer.kxd";
    Kx::EntityId id = 0;
    {
        Kx::Document document;
        Kx::Segment& segment = *document.createSegment("main");
        Kx::StrongRef<Kx::GeometryTestor> testor = segment.add(Kx::StrongRefCreator<Kx::GeometryTestor>::create());
        testor->point = Kx::Point2(7, -11);
        testor->rect = Kx::Rect2(1, 2, 30, 40);
        testor->color = Kx::Color(0.25f, 0.5f, 0.75f, 1.0f);
        testor->label = Kx::GlobalizedString(Kx::GlobalizedString::Reference{"KxTypes", "ColorRed", "not from the table"});
        testor->count = 42;
        testor->name = L"installed";
        id = testor->id();
        Kx::DocumentFile::save(document, file, Kx::EStreamMode::eBinary);
    }
    const std::unique_ptr<Kx::Document> reopened = Kx::DocumentFile::open(file);
    const auto* testor = dynamic_cast<const Kx::GeometryTestor*>(reopened->resolveEntity(id));
    expect(testor != nullptr, "the saved GeometryTestor in the reopened document", "none");
    if (testor == nullptr) {
        return;
    }
    expect(testor->point == Kx::Point2(7, -11), "point", Kx::ToUTF8(testor->point.toString()));
    expect(testor->rect == Kx::Rect2(1, 2, 30, 40), "rect", Kx::ToUTF8(testor->rect.toString()));
    expect(testor->color == Kx::Color(0.25f, 0.5f, 0.75f, 1.0f), "color", Kx::ToUTF8(testor->color.toString()));
    expect(testor->count == 42, "count", std::to_string(testor->count));
    expectText(testor->name, L"installed", "name");
    expectText(testor->label.value(), L"Red", "label from the installed string table");
}

// The default physical material of new documents, from the installed standard libraries, and the
// identity of the installed library set (a content file of its own).
void checkMaterial()
{
    expect(!Kx::Types::GetCurrentMaterialLibraryGUID().empty(), "the installed library set's GUID", "none");

    Kx::AmbrelManager* manager = Kx::AmbrelManager::GetAmbrelManager(true);
    expect(manager != nullptr && manager->LibsLoaded(), "the standard material libraries loaded", "not loaded");
    if (manager == nullptr || !manager->LibsLoaded()) {
        return;
    }
    const telvarin::platform::assets::InstancePtr steel(
        manager->GetAssetInstance("CorvexMaterial-018", manager->GetAdvancedPhysicalLibraryID(), Kx::MaterialTweak{}));
    expect(steel != nullptr, "CorvexMaterial-018 in the advanced physical library", "not found");
    if (steel == nullptr) {
        return;
    }
    expectText(manager->GetUIName(steel.get()), L"Steel (generic)", "name of CorvexMaterial-018");
    double density = 0.0;
    expect(manager->GetAssetInstanceDensity(steel.get(), density) && density == 7900.0,
        "density of CorvexMaterial-018 (expected 7900)", std::to_string(density));
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "usage: kx_consumer <content folder> <scratch folder>\n";
        return 2;
    }
    try {
        Kx::Application::initialize();
        checkContentRoot(argv[1]);
        checkValueTypes();
        checkDocument(argv[2]);
        checkMaterial();
    } catch (const std::exception& error) {
        std::cerr << "MISMATCH unexpected exception: " << error.what() << "\n";
        return 1;
    }
    if (s_mismatches != 0) {
        std::cerr << s_mismatches << " mismatch(es)\n";
        return 1;
    }
    std::cout << "kx_consumer: value types, document, string table and material as expected\n";
    return 0;
}
