// News of the online material library: which handler each fire reaches, and fires from a worker
// thread, which reach nobody until brought to the UI thread.

#include <Types/Appearance/ExchangeMaterialEvent.h>
#include <Types/Appearance/ExchangeMaterialEventSite.h>
#include <Types/Appearance/ExchangeMaterialEventSource.h>

#include <base/Application.h>
#include <base/OS.h>
#include <base/UIThreadQueue.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace Kx {
namespace {

using namespace std::chrono_literals;

// Hears downloads only; publications go to the default handler, which does nothing.
class DownloadListener final : public ExchangeMaterialEventSite {
public:
    void exchangeMaterialDownloaded(ExchangeMaterialEvent* event) override
    {
        heard.push_back(event->GetMaterialID());
        onUIThread = onUIThread && OS::platformIsUIThread();
    }
    std::vector<std::wstring> heard;
    bool onUIThread = true;
};

class PublishListener final : public ExchangeMaterialEventSite {
public:
    void exchangeMaterialPublished(ExchangeMaterialEvent* event) override { heard.push_back(event->GetMaterialID()); }
    std::vector<std::wstring> heard;
};

class ExchangeMaterialEvents : public ::testing::Test {
protected:
    void SetUp() override
    {
        Application::initialize();
        UIThreadQueue::get().pump();
    }

    ExchangeMaterialEventSource& m_source = ExchangeMaterialEventSource::get();
};

ExchangeMaterialEvent downloaded(const std::wstring& uuid)
{
    ExchangeMaterialEvent event(Event::ePost);
    event.SetDownloadType(ExchangeMaterialEvent::eDownloadMaterial);
    event.SetIsDownloadSuccess(true);
    event.SetMaterialID(uuid);
    return event;
}

TEST_F(ExchangeMaterialEvents, EachFireReachesItsOwnHandler)
{
    EXPECT_EQ(&ExchangeMaterialEventSource::get(), &m_source);
    DownloadListener downloads;
    PublishListener publications;
    EXPECT_TRUE(m_source.subscribe(&downloads));
    EXPECT_FALSE(m_source.subscribe(&downloads));
    EXPECT_TRUE(m_source.subscribe(&publications));

    ExchangeMaterialEvent done = downloaded(L"A");
    m_source.fireExchangeMaterialDownloaded(&done);
    ExchangeMaterialEvent published = downloaded(L"B");
    m_source.fireExchangeMaterialPublished(&published);
    m_source.fireExchangeMaterialDownloaded(nullptr);

    EXPECT_EQ(downloads.heard, std::vector<std::wstring>{L"A"});
    EXPECT_EQ(publications.heard, std::vector<std::wstring>{L"B"});

    EXPECT_TRUE(m_source.unsubscribe(&downloads));
    EXPECT_FALSE(m_source.unsubscribe(&downloads));
    m_source.fireExchangeMaterialDownloaded(&done);
    EXPECT_EQ(downloads.heard.size(), 1u);
    EXPECT_TRUE(m_source.unsubscribe(&publications));
    EXPECT_EQ(m_source.subscriptionCount(), 0u);
}

// A worker fires while the UI thread changes the subscriptions: the worker's fires reach nobody
// (and, run under ThreadSanitizer, are seen not to read the subscriptions at all); the same
// completions posted to the UI thread are heard there, in order.
TEST_F(ExchangeMaterialEvents, FiresOffTheUIThreadReachNobodyUntilPostedToIt)
{
    DownloadListener listener;
    m_source.subscribe(&listener);
    std::atomic<bool> done{false};
    std::thread worker([&] {
        for (int i = 0; i < 200; ++i) {
            ExchangeMaterialEvent event = downloaded(L"worker " + std::to_wstring(i));
            ExchangeMaterialEventSource::get().fireExchangeMaterialDownloaded(&event);
            ExchangeMaterialEventSource::get().fireExchangeMaterialPublished(&event);
        }
        for (const wchar_t* uuid : {L"first", L"second"}) {
            UIThreadQueue::get().post([event = downloaded(uuid)]() mutable {
                ExchangeMaterialEventSource::get().fireExchangeMaterialDownloaded(&event);
            });
        }
        done = true;
    });
    DownloadListener churn;
    while (!done) {
        m_source.subscribe(&churn);
        m_source.unsubscribe(&churn);
    }
    worker.join();
    EXPECT_TRUE(listener.heard.empty());

    EXPECT_EQ(UIThreadQueue::get().pump(), 2u);
    m_source.unsubscribe(&listener);
    EXPECT_EQ(listener.heard, (std::vector<std::wstring>{L"first", L"second"}));
    EXPECT_TRUE(listener.onUIThread);
}

} // namespace
} // namespace Kx
