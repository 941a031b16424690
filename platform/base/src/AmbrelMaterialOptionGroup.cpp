#include "base/AmbrelMaterialOptionGroup.h"
#include "base/OptionGroupInitializer.h"

#include "base/StringListOption.h"
#include "base/Strings.h"

#include <algorithm>

namespace Kx {

namespace {

std::vector<std::wstring> toWide(const std::vector<std::string>& items)
{
    std::vector<std::wstring> wide;
    wide.reserve(items.size());
    for (const auto& item : items) {
        wide.push_back(ToIString(item));
    }
    return wide;
}

} // namespace

AmbrelMaterialOptionGroup& AmbrelMaterialOptionGroup::get()
{
    static AmbrelMaterialOptionGroup s_group;
    return s_group;
}

AmbrelMaterialOptionGroup::AmbrelMaterialOptionGroup()
    : OptionGroup("AmbrelMaterialOptionGroup")
    , m_names(add<StringListOption>("UserLibraryNames"))
    , m_paths(add<StringListOption>("UserLibraryPaths"))
{
}

std::vector<std::wstring> AmbrelMaterialOptionGroup::libraryNames() const
{
    return toWide(m_names.value());
}

std::vector<std::wstring> AmbrelMaterialOptionGroup::libraryPaths() const
{
    return toWide(m_paths.value());
}

void AmbrelMaterialOptionGroup::addLibraryPath(const std::wstring& name, const std::wstring& path)
{
    auto names = m_names.value();
    auto paths = m_paths.value();
    // A file edited by hand may hold lists of different lengths; the shorter one decides.
    const std::size_t count = std::min(names.size(), paths.size());
    names.resize(count);
    paths.resize(count);
    const std::string utf8Path = ToUTF8(path);
    const auto found = std::find(paths.begin(), paths.end(), utf8Path);
    if (found != paths.end()) {
        names[static_cast<std::size_t>(found - paths.begin())] = ToUTF8(name);
    } else {
        names.push_back(ToUTF8(name));
        paths.push_back(utf8Path);
    }
    m_names.setValue(std::move(names));
    m_paths.setValue(std::move(paths));
}

bool AmbrelMaterialOptionGroup::removeLibraryPath(const std::wstring& path)
{
    auto names = m_names.value();
    auto paths = m_paths.value();
    const auto found = std::find(paths.begin(), paths.end(), ToUTF8(path));
    if (found == paths.end()) {
        return false;
    }
    const auto index = static_cast<std::size_t>(found - paths.begin());
    paths.erase(found);
    if (index < names.size()) {
        names.erase(names.begin() + static_cast<std::ptrdiff_t>(index));
    }
    m_names.setValue(std::move(names));
    m_paths.setValue(std::move(paths));
    return true;
}

namespace {

const OptionGroupInitializer s_initializer("AmbrelMaterialOptionGroupInitializer", [] { return &AmbrelMaterialOptionGroup::get(); });

} // namespace

} // namespace Kx
