#pragma once

// A folder of one benchmark run's files, named after the program and the process, removed with
// them at exit.

#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace KxBench {

class BenchDirectory {
public:
    explicit BenchDirectory(const std::string& name)
        : m_path(std::filesystem::temp_directory_path() / ("kx-bench-" + name + "-" + std::to_string(::getpid())))
    {
        std::filesystem::create_directories(m_path);
    }
    ~BenchDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    BenchDirectory(const BenchDirectory&) = delete;
    BenchDirectory& operator=(const BenchDirectory&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

} // namespace KxBench
