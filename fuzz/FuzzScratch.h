#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

// A folder of the fuzzer's own under /tmp for the files it hands the readers, removed when the
// fuzzer ends normally (a crashing run leaves it, beside the crashing input).
class FuzzScratch {
public:
    explicit FuzzScratch(const std::string& name)
    {
        std::string pattern = "/tmp/" + name + "-XXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr)
            std::abort();
        m_path = pattern;
    }
    ~FuzzScratch()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    FuzzScratch(const FuzzScratch&) = delete;
    FuzzScratch& operator=(const FuzzScratch&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};
