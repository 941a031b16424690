#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

// The platform writes logs, options and temporary files under the user directory: the whole test
// program gets a private one, so no test ever touches the real ~/.kx.
class PrivateUserDirectory : public ::testing::Environment {
public:
    void SetUp() override
    {
        m_dir = std::make_unique<KxTest::TempDir>();
        m_environment = std::make_unique<KxTest::ScopedEnvironment>("KX_USER_DIR", m_dir->path());
    }

    void TearDown() override
    {
        m_environment.reset();
        m_dir.reset();
    }

private:
    std::unique_ptr<KxTest::TempDir> m_dir;
    std::unique_ptr<KxTest::ScopedEnvironment> m_environment;
};

const auto* const s_environment = ::testing::AddGlobalTestEnvironment(new PrivateUserDirectory);

} // namespace
