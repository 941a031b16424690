#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>

#include <unistd.h>

namespace KxTest {

TempDir::TempDir()
{
    static std::atomic<unsigned> counter{0};
    std::random_device random;
    const auto name = "kx-test-" + std::to_string(::getpid()) + "-" + std::to_string(counter++) + "-"
        + std::to_string(random());
    m_path = std::filesystem::temp_directory_path() / name;
    std::filesystem::create_directories(m_path);
}

TempDir::~TempDir()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

ScopedEnvironment::ScopedEnvironment(std::string name, const char* value)
    : m_name(std::move(name))
{
    if (const char* previous = std::getenv(m_name.c_str())) {
        m_previous = previous;
        m_hadPrevious = true;
    }
    if (value != nullptr) {
        ::setenv(m_name.c_str(), value, 1);
    } else {
        ::unsetenv(m_name.c_str());
    }
}

ScopedEnvironment::~ScopedEnvironment()
{
    if (m_hadPrevious) {
        ::setenv(m_name.c_str(), m_previous.c_str(), 1);
    } else {
        ::unsetenv(m_name.c_str());
    }
}

std::filesystem::path dataPath(const std::string& relative)
{
    return std::filesystem::path(KX_TEST_DATA_DIR) / relative;
}

std::vector<std::uint8_t> readBytes(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string readText(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void writeBytes(const std::filesystem::path& file, const std::vector<std::uint8_t>& bytes)
{
    std::filesystem::create_directories(file.parent_path());
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

static bool updatingGolden()
{
    const char* flag = std::getenv("KX_UPDATE_GOLDEN");
    return flag != nullptr && std::string(flag) == "1";
}

void expectGoldenBytes(const std::string& relative, const std::vector<std::uint8_t>& actual)
{
    const auto file = dataPath(relative);
    if (updatingGolden()) {
        writeBytes(file, actual);
        return;
    }
    ASSERT_TRUE(std::filesystem::exists(file)) << "missing golden file " << file;
    EXPECT_EQ(readBytes(file), actual) << "differs from golden file " << file;
}

void expectGoldenText(const std::string& relative, const std::string& actual)
{
    expectGoldenBytes(relative, std::vector<std::uint8_t>(actual.begin(), actual.end()));
}

} // namespace KxTest
