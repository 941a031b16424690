#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace KxTest {

// A fresh directory under the system temp folder, removed with everything in it on destruction.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
    [[nodiscard]] std::filesystem::path operator/(const std::string& name) const { return m_path / name; }

private:
    std::filesystem::path m_path;
};

// Sets an environment variable (or unsets it, for a null value) and restores the previous state on
// destruction: paths, languages and content roots are all read from the environment.
class ScopedEnvironment {
public:
    ScopedEnvironment(std::string name, const char* value);
    ScopedEnvironment(std::string name, const std::filesystem::path& value)
        : ScopedEnvironment(std::move(name), value.c_str())
    {
    }
    ~ScopedEnvironment();
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

private:
    std::string m_name;
    std::string m_previous;
    bool m_hadPrevious = false;
};

[[nodiscard]] std::filesystem::path dataPath(const std::string& relative);
[[nodiscard]] std::vector<std::uint8_t> readBytes(const std::filesystem::path& file);
[[nodiscard]] std::string readText(const std::filesystem::path& file);
void writeBytes(const std::filesystem::path& file, const std::vector<std::uint8_t>& bytes);

// Compares `actual` with the golden file tests/data/<relative>. With KX_UPDATE_GOLDEN=1 in the
// environment the golden file is (re)written instead, so a deliberate format change is one run.
void expectGoldenBytes(const std::string& relative, const std::vector<std::uint8_t>& actual);
void expectGoldenText(const std::string& relative, const std::string& actual);

} // namespace KxTest
