#include "Types/Online/OnlineFiles.h"

#include <fstream>
#include <sstream>

namespace Kx::Types {

std::optional<std::string> readWholeFile(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in)
        return std::nullopt;
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

bool writeFileAtomically(const std::filesystem::path& target, std::span<const std::uint8_t> bytes)
{
    std::optional<TempFile> temporary = TempFile::tryBeside(target);
    if (!temporary)
        return false;
    {
        std::ofstream out(temporary->path(), std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        if (!out.flush())
            return false;
    }
    return installTempFile(*temporary, target);
}

bool writeFileAtomically(const std::filesystem::path& target, const std::string& text)
{
    return writeFileAtomically(target, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

bool installTempFile(TempFile& file, const std::filesystem::path& target)
{
    std::error_code error;
    std::filesystem::rename(file.path(), target, error);
    if (error)
        return false;
    (void)file.release();
    return true;
}

} // namespace Kx::Types
