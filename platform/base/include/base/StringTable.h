#pragma once

#include <string>

namespace Kx {

// The user-visible texts of a module in every shipped language, read from
//   Paths::contentRoot()/strings/<language>/<module>.xml
// (format in docs/formats.md). A text is looked up in the user's language
// (BootstrapOptionGroup::userLanguage(), e.g. "de-DE"), then in any table of the same primary
// language ("de", "de-AT", ...), then in "en-US", and finally `defaultValue` is used. Tables are
// read once per language and module and shared by all threads.
class StringTable {
public:
    [[nodiscard]] static std::wstring getLocalizedString(const std::string& module, const std::string& id,
        const std::string& defaultValue);
    // Forgets every table read so far (after the language or the content changed).
    static void reload();
};

} // namespace Kx
