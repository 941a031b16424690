#include <base/Assert.h>
#include <base/AppLogMgr.h>
#include <base/JSONNode.h>
#include <base/Paths.h>

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

namespace {

int s_evaluations = 0;

bool countedFalse()
{
    ++s_evaluations;
    return false;
}

int halveEven(int value)
{
    KX_ASSERT(value % 2 == 0);
    return value / 2;
}

TEST(Assert, ReportsConditionFunctionAndModuleThenContinues)
{
    Kx::ScopedAssertionCapture capture;
    EXPECT_EQ(halveEven(7), 3);
    EXPECT_EQ(halveEven(8), 4);

    ASSERT_EQ(capture.reports().size(), 1u);
    const auto& report = capture.reports().front();
    EXPECT_EQ(report.condition, "value % 2 == 0");
    EXPECT_EQ(report.function, "int {anonymous}::halveEven(int)");
    EXPECT_EQ(report.module, "kx_base_tests");
    EXPECT_EQ(std::filesystem::path(report.file).filename(), "AssertTest.cpp");
    EXPECT_GT(report.line, 0);
}

TEST(Assert, LibraryAssertionsNameTheirOwnModule)
{
    Kx::ScopedAssertionCapture capture;
    Kx::JSONNode node;
    node["key"] = 1;
    node.append(2); // an object is no array: reported, and the node becomes one
    ASSERT_EQ(capture.reports().size(), 1u);
    EXPECT_EQ(capture.reports()[0].module, "KxBase");
    EXPECT_EQ(capture.reports()[0].condition, "m_value.is_null() || m_value.is_array()");
    EXPECT_EQ(capture.reports()[0].function, "boost::json::array& Kx::JSONNode::asArray()");
    EXPECT_EQ(node.stringify(), "[2]");
}

TEST(Assert, ConditionIsEvaluatedOnceAndTheMacroIsAStatement)
{
    Kx::ScopedAssertionCapture capture;
    s_evaluations = 0;
    if (s_evaluations == 0)
        KX_ASSERT(countedFalse());
    else
        FAIL() << "the macro swallowed the else branch";
    EXPECT_EQ(s_evaluations, 1);
    EXPECT_EQ(capture.count(), 1u);
}

TEST(Assert, CapturesNestAndRestoreThePreviousHandler)
{
    Kx::ScopedAssertionCapture outer;
    {
        Kx::ScopedAssertionCapture inner;
        KX_ASSERT(1 + 1 == 3);
        EXPECT_EQ(inner.count(), 1u);
    }
    KX_ASSERT(false);
    ASSERT_EQ(outer.count(), 1u);
    EXPECT_EQ(outer.reports()[0].condition, "false");
}

TEST(Assert, ReportsFromOtherThreadsAreCaptured)
{
    Kx::ScopedAssertionCapture capture;
    std::vector<std::thread> workers;
    for (int i = 0; i < 4; ++i) {
        workers.emplace_back([] {
            for (int j = 0; j < 100; ++j) {
                KX_ASSERT(j < 0);
            }
        });
    }
    for (auto& worker : workers) {
        worker.join();
    }
    EXPECT_EQ(capture.reports().size(), 400u);
}

TEST(Assert, DefaultHandlerWritesTheReportToTheApplicationLog)
{
    const Kx::AssertionHandler previous = Kx::setAssertionHandler(nullptr);
    KX_ASSERT(sizeof(int) == 3 && "default handler marker");
    Kx::setAssertionHandler(previous);
    const auto log = KxTest::readText(Kx::AppLogMgr::logDirectory() / "kx.log");
    EXPECT_NE(log.find("sizeof(int) == 3 && \"default handler marker\""), std::string::npos) << log;
    EXPECT_NE(log.find("TestBody()"), std::string::npos);
}

TEST(AppLogMgr, PerformanceLinesGoToTheirOwnFileAsUTF8)
{
    Kx::AppLogMgr::appPerfLog(L"\tPERF: marker \u00fc\U0001F600 END 12");
    Kx::AppLogMgr::appLogEx(Kx::ELogLevel::eWarning, L"application marker \u00e9");
    const auto perf = KxTest::readText(Kx::AppLogMgr::logDirectory() / "kx-perf.log");
    const auto app = KxTest::readText(Kx::AppLogMgr::logDirectory() / "kx.log");
    EXPECT_NE(perf.find("\tPERF: marker \xc3\xbc\xf0\x9f\x98\x80 END 12"), std::string::npos) << perf;
    EXPECT_EQ(perf.find("application marker"), std::string::npos);
    EXPECT_NE(app.find("[warning] application marker \xc3\xa9"), std::string::npos) << app;
}

// Runs in a fresh process (the logs open once per process, with the size read then): writes well
// past the rotation size and exits 0 only when the files rotated and stayed bounded.
[[noreturn]] void writePastTheRotationSizeAndCheck()
{
    ::setenv("KX_LOG_MAX_BYTES", "4096", 1);
    const std::wstring line(100, L'x');
    for (int index = 0; index < 2000; ++index) {
        Kx::AppLogMgr::appLog(std::to_wstring(index) + L" " + line);
    }
    const auto directory = Kx::AppLogMgr::logDirectory();
    std::uintmax_t total = 0;
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        if (entry.path().filename().string().rfind("kx.", 0) == 0) {
            ++files;
            total += entry.file_size();
        }
    }
    const bool rotated = files == 4 && std::filesystem::exists(directory / "kx.3.log") && total <= 4 * (4096 + 200);
    const bool newest = KxTest::readText(directory / "kx.log").find("1999 x") != std::string::npos;
    std::fprintf(stderr, "files %d, %ju bytes\n", files, total);
    // exit() skips the test environment's clean-up: the private user directory goes here.
    std::error_code ignored;
    std::filesystem::remove_all(Kx::Paths::userDirectory(), ignored);
    std::exit(rotated && newest ? 0 : 1);
}

TEST(AppLogMgrDeathTest, FilesRotateAtTheirSizeKeepingThreeOlderOnes)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(writePastTheRotationSizeAndCheck(), ::testing::ExitedWithCode(0), "files 4, ");
}

} // namespace
