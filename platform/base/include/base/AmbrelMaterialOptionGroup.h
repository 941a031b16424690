#pragma once

#include "base/OptionGroup.h"

#include <string>
#include <vector>

namespace Kx {

class StringListOption;

// The material libraries the user added: two parallel lists, display names and file paths, changed
// together so that they stay the same length. Changes are persisted by save().
class AmbrelMaterialOptionGroup : public OptionGroup {
public:
    [[nodiscard]] static AmbrelMaterialOptionGroup& get();

    [[nodiscard]] std::vector<std::wstring> libraryNames() const;
    [[nodiscard]] std::vector<std::wstring> libraryPaths() const;
    // Appends the pair, or renames the entry when `path` is listed already.
    void addLibraryPath(const std::wstring& name, const std::wstring& path);
    // False when `path` is not listed.
    bool removeLibraryPath(const std::wstring& path);

private:
    AmbrelMaterialOptionGroup();

    StringListOption& m_names;
    StringListOption& m_paths;
};

} // namespace Kx
