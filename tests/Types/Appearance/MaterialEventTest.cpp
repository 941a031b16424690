// A document's material events: each fire reaches its own handler of every subscribed site, in
// order, on the UI thread only; sites leave during a delivery, accept requests and filter events;
// listeners answer queries in the event.

#include <Types/Appearance/MaterialEvent.h>
#include <Types/Appearance/MaterialEventSite.h>
#include <Types/Appearance/MaterialEventSource.h>

#include <base/Application.h>
#include <base/EventFilter.h>
#include <base/UIThreadQueue.h>
#include <datamodel/Comp/Component.h>
#include <datamodel/Document.h>
#include <datamodel/Segment.h>
#include <datamodel/Selection.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace Kx {
namespace {

using Log = std::vector<std::string>;

// Writes "<site> <handler>" into the shared log for every call, then runs its action.
class RecordingSite final : public MaterialEventSite {
public:
    RecordingSite(std::string name, Log& log) : m_name(std::move(name)), m_log(log) {}

    void onReplaceMaterial(MaterialEvent* event) override { record("replace", event); }
    void onWhereUsed(MaterialEvent* event) override { record("whereUsed", event); }
    void onSelectEntityWithMat(MaterialEvent* event) override { record("select", event); }
    void onGetCompsWithPMMatRef(MaterialEvent* event) override { record("comps", event); }

    std::function<void(MaterialEvent&)> action;

private:
    void record(const char* handler, MaterialEvent* event)
    {
        m_log.push_back(m_name + " " + handler);
        if (action)
            action(*event);
    }

    std::string m_name;
    Log& m_log;
};

// Passes the events about an appearance only.
class AppearanceFilter final : public EventFilter {
public:
    bool passes(const Event& event, const EventSite&) const override
    {
        return !static_cast<const MaterialEvent&>(event).visualMaterial().ambrelMaterialID().empty();
    }
};

class MaterialEvents : public ::testing::Test {
protected:
    void SetUp() override
    {
        Application::initialize();
        UIThreadQueue::get().pump();
    }

    Log take() { return std::exchange(m_log, {}); }

    Log m_log;
    MaterialEventSource m_source;
    const PhysicalMaterial m_steel{L"steel-id", L"physical-library"};
    const PhysicalMaterial m_oak{L"oak-id", L"physical-library"};
    const VisualMaterial m_red{L"red-id", L"appearance-library"};
};

TEST_F(MaterialEvents, EachFireCallsItsHandlerOfEverySiteInOrderAndTheSitesAnswerInTheEvent)
{
    Document document;
    Segment& segment = *document.createSegment("main");
    const StrongRef<Comp::Component> body = segment.add(StrongRefCreator<Comp::Component>::create(L"Rim"));
    const StrongRef<Comp::Component> wheel = segment.add(StrongRefCreator<Comp::Component>::create(L"Wheel", body));

    RecordingSite first("first", m_log), second("second", m_log);
    m_source.subscribe(&first);
    m_source.subscribe(&second);
    first.action = [&](MaterialEvent& event) {
        event.addRefCount();
        event.addRefCount();
        const StrongRef<Selection> picked = segment.add(StrongRefCreator<Selection>::create(L"steel"));
        picked->add(body.get());
        event.addSelection(picked);
    };
    second.action = [&](MaterialEvent& event) {
        event.addRefCount();
        event.addCompWithPMMatRef(wheel);
        event.addComponentPath(ObjectPath({wheel->id(), body.id()}));
    };

    MaterialEvent replace(m_steel, m_oak, Event::ePre);
    m_source.fireReplaceMaterial(&replace);
    MaterialEvent whereUsed(m_steel, Event::ePost);
    m_source.fireWhereUsed(&whereUsed);
    MaterialEvent select(m_red, Event::ePost);
    m_source.fireSelectEntityWithMat(&select);
    MaterialEvent comps(m_steel, Event::ePost);
    m_source.fireGetCompsWithPMMatRef(&comps);
    EXPECT_EQ(take(), (Log{"first replace", "second replace", "first whereUsed", "second whereUsed", "first select",
                          "second select", "first comps", "second comps"}));

    EXPECT_EQ(whereUsed.refCount(), 3u);
    ASSERT_EQ(select.selections().size(), 1u);
    EXPECT_TRUE(select.selections()[0]->contains(body.get()));
    ASSERT_EQ(comps.getCompsWithPMMatRef().size(), 1u);
    EXPECT_EQ(comps.getCompsWithPMMatRef()[0], wheel);
    EXPECT_EQ(comps.getComponentPaths(), (std::vector<ObjectPath>{ObjectPath({wheel->id(), body.id()})}));

    // What each constructor sets, and a copy that keeps the listeners' answers.
    EXPECT_EQ(replace.physicalMaterial().ambrelMaterialID(), L"steel-id");
    EXPECT_EQ(replace.replacePhysicalMaterial().ambrelMaterialID(), L"oak-id");
    EXPECT_TRUE(replace.visualMaterial().ambrelMaterialID().empty());
    EXPECT_EQ(select.visualMaterial().ambrelMaterialID(), L"red-id");
    EXPECT_TRUE(select.physicalMaterial().ambrelMaterialID().empty());
    EXPECT_EQ(replace.timing(), Event::ePre);
    const MaterialEvent copy(comps);
    EXPECT_EQ(copy.getCompsWithPMMatRef(), comps.getCompsWithPMMatRef());
    EXPECT_EQ(copy.getComponentPaths(), comps.getComponentPaths());
    EXPECT_EQ(MaterialEvent(whereUsed).refCount(), 3u);
}

TEST_F(MaterialEvents, FiredFromAWorkerThreadTheyReachNobody)
{
    RecordingSite site("site", m_log);
    site.action = [](MaterialEvent& event) { event.addRefCount(); };
    m_source.subscribe(&site);

    MaterialEvent event(m_steel, m_oak, Event::ePost);
    std::thread([&] {
        m_source.fireReplaceMaterial(&event);
        m_source.fireWhereUsed(&event);
        m_source.fireSelectEntityWithMat(&event);
        m_source.fireGetCompsWithPMMatRef(&event);
    }).join();
    EXPECT_TRUE(m_log.empty());
    EXPECT_EQ(event.refCount(), 0u);
    EXPECT_FALSE(m_source.notifying());

    m_source.fireWhereUsed(&event);
    EXPECT_EQ(take(), Log{"site whereUsed"}) << "the same event on the UI thread is heard";
}

// The framework's rules, seen through the material handlers: a site taken out during a delivery
// hears nothing more of it, an accepted request skips the sites that do not take accepted events,
// and filters choose the events a site hears.
TEST_F(MaterialEvents, SitesLeaveDuringADeliveryAcceptRequestsAndFilterEvents)
{
    RecordingSite taker("taker", m_log), leaving("leaving", m_log), watcher("watcher", m_log), appearances("appearances", m_log);
    watcher.receiveAcceptedEvents(true);
    AppearanceFilter appearanceOnly;
    for (RecordingSite* site : {&taker, &leaving, &watcher})
        m_source.subscribe(site);
    m_source.subscribe(&appearances, &appearanceOnly);
    taker.action = [&](MaterialEvent& event) {
        if (event.timing() == Event::ePre)
            event.accept();
        else
            m_source.unsubscribe(&leaving);
    };

    MaterialEvent claimed(m_red, m_red, Event::ePre);
    m_source.fireReplaceMaterial(&claimed);
    EXPECT_EQ(take(), (Log{"taker replace", "watcher replace"}));
    MaterialEvent physical(m_steel, Event::ePost);
    m_source.fireWhereUsed(&physical);
    EXPECT_EQ(take(), (Log{"taker whereUsed", "watcher whereUsed"})) << "taker took leaving out before its turn";
    MaterialEvent visual(m_red, Event::ePost);
    m_source.fireWhereUsed(&visual);
    EXPECT_EQ(take(), (Log{"taker whereUsed", "watcher whereUsed", "appearances whereUsed"}));
}

} // namespace
} // namespace Kx
