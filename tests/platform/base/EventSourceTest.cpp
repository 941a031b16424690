// The event framework: filters, deliveries that change their own subscriptions, sites destroyed
// while subscribed, and bubbled events that stop at the site accepting them.

#include <base/BubbledEvent.h>
#include <base/BubbledEventSite.h>
#include <base/EventFilter.h>
#include <base/EventSite.h>
#include <base/EventSource.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Kx::Event;

struct PingEvent final : Kx::BubbledEvent {
    using BubbledEvent::BubbledEvent;
    std::string topic;
};

// Each site writes its name into the shared log when it hears an event, then runs its action.
class PingSite final : public Kx::BubbledEventSite {
public:
    PingSite(std::string name, std::vector<std::string>& log, bool receiveAccepted = false)
        : BubbledEventSite(receiveAccepted)
        , m_name(std::move(name))
        , m_log(log)
    {
    }
    void ping(PingEvent* event)
    {
        m_log.push_back(m_name);
        if (action)
            action(*event);
    }
    std::function<void(PingEvent&)> action;

private:
    std::string m_name;
    std::vector<std::string>& m_log;
};

class PingSource final : public Kx::EventSource {
public:
    void firePing(PingEvent* event) { deliverTo(*event, &PingSite::ping); }
};

class TopicFilter final : public Kx::EventFilter {
public:
    explicit TopicFilter(std::string topic) : m_topic(std::move(topic)) {}
    bool passes(const Event& event, const Kx::EventSite&) const override
    {
        return static_cast<const PingEvent&>(event).topic == m_topic;
    }

private:
    std::string m_topic;
};

void fire(PingSource& source, const std::string& topic = {}, Event::ETiming timing = Event::ePost)
{
    PingEvent event(timing);
    event.topic = topic;
    source.firePing(&event);
}

class EventSourceTest : public ::testing::Test {
protected:
    std::vector<std::string> m_log;
    PingSource m_source;

    std::vector<std::string> take()
    {
        return std::exchange(m_log, {});
    }
};

TEST_F(EventSourceTest, FiltersChooseTheSitesAndASiteHearsAnEventOnce)
{
    PingSite all("all", m_log), post("post", m_log), colour("colour", m_log);
    Kx::TimingEventFilter postOnly(Event::ePost);
    TopicFilter red("red"), blue("blue");
    auto* postFilter = &postOnly;
    auto* redFilter = &red;
    auto* blueFilter = &blue;

    EXPECT_TRUE(m_source.subscribe(&all));
    EXPECT_TRUE(m_source.subscribe(&post, postFilter));
    EXPECT_TRUE(m_source.subscribe(&colour, redFilter));
    EXPECT_TRUE(m_source.subscribe(&colour, blueFilter));
    EXPECT_FALSE(m_source.subscribe(&colour, blueFilter)) << "the same subscription twice";
    EXPECT_FALSE(m_source.subscribe(nullptr));
    EXPECT_EQ(m_source.siteSubscriptions(&colour), 2u);
    EXPECT_EQ(m_source.subscriptionCount(), 4u);

    fire(m_source, "red", Event::ePre);
    EXPECT_EQ(take(), (std::vector<std::string>{"all", "colour"}));
    fire(m_source, "blue", Event::ePost);
    EXPECT_EQ(take(), (std::vector<std::string>{"all", "post", "colour"}));

    PingEvent both(Event::ePost);
    both.topic = "red";
    std::vector<Kx::EventSite*> sites;
    m_source.sitesForEvent(both, sites);
    EXPECT_EQ(sites, (std::vector<Kx::EventSite*>{&all, &post, &colour}));

    EXPECT_FALSE(m_source.unsubscribe(&colour)) << "colour has no subscription without a filter";
    EXPECT_TRUE(m_source.unsubscribe(&colour, redFilter));
    fire(m_source, "red");
    EXPECT_EQ(take(), (std::vector<std::string>{"all", "post"})) << "only the blue subscription is left";
    fire(m_source, "blue");
    EXPECT_EQ(take(), (std::vector<std::string>{"all", "post", "colour"}));
}

TEST_F(EventSourceTest, ASiteUnsubscribedDuringADeliveryHearsNothingMoreOfIt)
{
    PingSite first("first", m_log), second("second", m_log), third("third", m_log), late("late", m_log);
    TopicFilter red("red");
    auto* redFilter = &red;
    m_source.subscribe(&first);
    m_source.subscribe(&second);
    m_source.subscribe(&third);
    m_source.subscribe(&third, redFilter);

    first.action = [&](PingEvent&) {
        EXPECT_TRUE(m_source.notifying());
        m_source.unsubscribe(&first);
        m_source.unsubscribe(&second);
        m_source.unsubscribe(&third);
        m_source.subscribe(&late);
        EXPECT_TRUE(m_source.subscriptionRemoved());
    };
    fire(m_source, "red");
    EXPECT_EQ(take(), (std::vector<std::string>{"first", "third"}))
        << "second lost its only subscription; third keeps its red one; late joined after the list was taken";
    EXPECT_FALSE(m_source.notifying());
    EXPECT_FALSE(m_source.subscriptionRemoved()) << "the mark ends with the delivery";

    fire(m_source, "red");
    EXPECT_EQ(take(), (std::vector<std::string>{"third", "late"}));
}

TEST_F(EventSourceTest, ASiteDestroyedWhileSubscribedLeavesNothingBehind)
{
    PingSite first("first", m_log);
    auto doomed = std::make_unique<PingSite>("doomed", m_log);
    PingSite last("last", m_log);
    m_source.subscribe(&first);
    m_source.subscribe(doomed.get());
    m_source.subscribe(doomed.get(), nullptr);
    m_source.subscribe(&last);

    first.action = [&](PingEvent&) { doomed.reset(); };
    fire(m_source);
    EXPECT_EQ(take(), (std::vector<std::string>{"first", "last"})) << "the destroyed site is passed over, not called";
    EXPECT_EQ(m_source.subscriptionCount(), 2u);

    // A source that goes first is taken out of its sites, so their destruction later is harmless.
    auto source = std::make_unique<PingSource>();
    PingSite survivor("survivor", m_log);
    source->subscribe(&survivor);
    m_source.subscribe(&survivor);
    EXPECT_EQ(survivor.subscribedSources().size(), 2u);
    source.reset();
    EXPECT_EQ(survivor.subscribedSources(), (std::vector<Kx::EventSource*>{&m_source}));
    m_source.unsubscribeAll(&survivor);
    EXPECT_TRUE(survivor.subscribedSources().empty());

    // A copy of a site is a subscriber of its own, subscribed nowhere.
    const PingSite copy(first);
    EXPECT_TRUE(copy.subscribedSources().empty());
    EXPECT_EQ(m_source.siteSubscriptions(&copy), 0u);
}

TEST_F(EventSourceTest, AnAcceptedEventReachesOnlyTheSitesTakingAcceptedEvents)
{
    PingSite before("before", m_log), taker("taker", m_log), skipped("skipped", m_log);
    PingSite watcher("watcher", m_log, /*receiveAccepted=*/true);
    for (PingSite* site : {&before, &taker, &skipped, &watcher})
        m_source.subscribe(site);
    taker.action = [](PingEvent& event) { event.accept(); };

    PingEvent event(Event::ePre);
    m_source.firePing(&event);
    EXPECT_TRUE(event.accepted());
    EXPECT_EQ(take(), (std::vector<std::string>{"before", "taker", "watcher"}));

    // The same event fired again, already accepted, starts out passing the ordinary sites.
    m_source.firePing(&event);
    EXPECT_EQ(take(), (std::vector<std::string>{"watcher"}));

    skipped.receiveAcceptedEvents(true);
    fire(m_source);
    EXPECT_EQ(take(), (std::vector<std::string>{"before", "taker", "skipped", "watcher"}));
}

// Sites that are not of the source's class, and events that cannot be accepted.
TEST_F(EventSourceTest, PlainSitesAndPlainEvents)
{
    struct PlainEvent final : Event {
        using Event::Event;
    };
    struct PlainSite final : Kx::EventSite {
        int calls = 0;
        void hear(PlainEvent*) { ++calls; }
    };
    struct PlainSource final : Kx::EventSource {
        void fire(PlainEvent* event) { deliverTo(*event, &PlainSite::hear); }
    };

    PlainSource source;
    PlainSite plain;
    PingSite ping("ping", m_log);
    source.subscribe(&ping);
    source.subscribe(&plain);
    PlainEvent event(Event::ePost);
    source.fire(&event);
    EXPECT_EQ(plain.calls, 1);
    EXPECT_TRUE(m_log.empty()) << "a site of another class is passed over";

    // A plain site does not take accepted events.
    m_source.subscribe(&ping);
    PingEvent accepted(Event::ePost);
    accepted.accept();
    m_source.firePing(&accepted);
    EXPECT_TRUE(m_log.empty());
}

TEST_F(EventSourceTest, AThrowingHandlerEndsTheDeliveryButNotTheSource)
{
    PingSite thrower("thrower", m_log), after("after", m_log), quitter("quitter", m_log);
    m_source.subscribe(&quitter);
    m_source.subscribe(&thrower);
    m_source.subscribe(&after);
    quitter.action = [&](PingEvent&) { m_source.unsubscribe(&quitter); };
    thrower.action = [](PingEvent&) { throw std::runtime_error("handler failed"); };

    EXPECT_THROW(fire(m_source), std::runtime_error);
    EXPECT_EQ(take(), (std::vector<std::string>{"quitter", "thrower"}));
    EXPECT_FALSE(m_source.notifying());
    EXPECT_FALSE(m_source.subscriptionRemoved());

    thrower.action = nullptr;
    fire(m_source);
    EXPECT_EQ(take(), (std::vector<std::string>{"thrower", "after"}));
}

TEST_F(EventSourceTest, ADeliveryInsideADeliveryKeepsTheOuterOneSafe)
{
    PingSite outer("outer", m_log), victim("victim", m_log), last("last", m_log);
    m_source.subscribe(&outer);
    m_source.subscribe(&victim);
    m_source.subscribe(&last);
    bool nested = false;
    outer.action = [&](PingEvent&) {
        if (std::exchange(nested, true))
            return;
        fire(m_source, "inner");
        m_log.push_back("inner done");
        EXPECT_TRUE(m_source.notifying()) << "the outer delivery still runs";
    };
    victim.action = [&](PingEvent& event) {
        if (event.topic == "inner")
            m_source.unsubscribe(&victim);
    };

    fire(m_source, "outer");
    EXPECT_EQ(take(), (std::vector<std::string>{"outer", "outer", "victim", "last", "inner done", "last"}))
        << "the victim left in the inner delivery and is passed over in the outer one";
    EXPECT_FALSE(m_source.notifying());
    EXPECT_FALSE(m_source.subscriptionRemoved());
}

} // namespace
