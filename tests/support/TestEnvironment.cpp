// Linked into every test program (kx_add_test): the environment each test runs in.
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace {

// The platform writes logs, options and temporary files under the user directory: every test
// program gets a private one, so no test ever touches the real ~/.kx. The content root is this
// build's generated content unless the caller chose another.
class TestEnvironment : public ::testing::Environment {
public:
    void SetUp() override
    {
        m_dir = std::make_unique<KxTest::TempDir>();
        m_user = std::make_unique<KxTest::ScopedEnvironment>("KX_USER_DIR", m_dir->path());
        if (const char* chosen = std::getenv("KX_CONTENT_DIR"); chosen == nullptr || *chosen == '\0') {
            m_content = std::make_unique<KxTest::ScopedEnvironment>("KX_CONTENT_DIR", KX_TEST_CONTENT_DIR);
        }
    }

    void TearDown() override
    {
        m_content.reset();
        m_user.reset();
        m_dir.reset();
    }

private:
    std::unique_ptr<KxTest::TempDir> m_dir;
    std::unique_ptr<KxTest::ScopedEnvironment> m_user;
    std::unique_ptr<KxTest::ScopedEnvironment> m_content;
};

const auto* const s_environment = ::testing::AddGlobalTestEnvironment(new TestEnvironment);

} // namespace
