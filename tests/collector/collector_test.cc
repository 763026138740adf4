// Whole passes over a kernel and a hostapd in memory, into a real store.
#include "collector.h"

#include <gtest/gtest.h>
#include <linux/nl80211.h>

#include <algorithm>

#include <cerrno>
#include <fstream>

#include "place.h"

namespace {

using namespace collector;
using Lines = std::vector<std::string>;

struct FakeKernel : Kernel {
    int interfaces(std::vector<Interface>& found) override {
        if (error == 0) found = all;
        return error;
    }
    int radio(std::uint32_t index, Radio& radio) override {
        ++radios_asked;
        if (radio_error == 0) radio = {index, "phy" + std::to_string(index), 7, 4, rts, threshold_off};
        return radio_error;
    }
    int regulatory(std::vector<Regulatory>& found) override {
        found = {{"DE", NL80211_DFS_ETSI, {}}};
        return 0;
    }
    int stations(std::uint32_t interface, Stations& found) override {
        if (stations_error == 0) found = present[interface];
        return stations_error;
    }
    int group_key(std::uint32_t, bool& present_key) override {
        if (key_error == 0) present_key = key;
        return key_error;
    }
    void events(Events& events) override {
        for (const Departed& one : departed)
            events.departed.push_back(one);
        for (const auto& frame : frames)
            events.frames.push_back(frame);
        events.changed = !departed.empty() || !frames.empty();
        events.lost = events.lost || lost;
        events.unseen = events.unseen || unseen;
        departed.clear();
        frames.clear();
        lost = false;
    }

    std::vector<Interface> all;
    std::map<std::uint32_t, Stations> present;
    std::vector<Departed> departed;
    std::vector<std::pair<std::uint32_t, std::string>> frames;
    std::uint32_t rts = threshold_off;
    bool key = false, lost = false, unseen = false;
    int error = 0, radio_error = 0, stations_error = 0, key_error = 0;
    int radios_asked = 0;
};

struct FakeHostapd : Hostapd {
    FakeHostapd() : Hostapd("/run/hostapd") {}
    Answer ask(const std::string&, std::uint32_t, HostapdBss& bss) override {
        if (answer == Answer::told) bss = told;
        return answer;
    }
    bool is_hung(const std::string&, std::uint32_t) const override { return hung; }
    Answer answer = Answer::absent;
    bool hung = true;
    HostapdBss told = {true, "lab", 100, 2, "WPA-PSK", 2};
};

struct NoLinks : Links {
    std::uint32_t index_of(const std::string&) override { return 0; }
    int alternative_names(std::uint32_t, std::vector<std::string>&) override { return 0; }
    int add_name(std::uint32_t, const std::string&) override { return error; }
    int remove_name(std::uint32_t, const std::string&) override { return ENOENT; }
    int error = EPERM;
};

Interface access_point(std::uint32_t index, const std::string& name, const std::string& ssid = "old") {
    return {index, name, 0, NL80211_IFTYPE_AP, {2, 0, 0, 0, 0, static_cast<std::uint8_t>(index)}, ssid, 2437, 2000};
}

Station station(std::uint8_t last, std::uint32_t received, std::uint32_t sent, std::uint32_t failed = 0) {
    return {{2, 0, 0, 0, 1, last}, {received, sent, failed, 0, {}}, 3, 200};
}

// A deauthentication from the access point `index`.
std::string deauthentication(std::uint8_t index, std::uint8_t reason) {
    const std::string own = {2, 0, 0, 0, 0, static_cast<char>(index)};
    return std::string("\xc0\0\0\0", 4) + std::string("\2\0\0\0\1\7", 6) + own + own + std::string(2, '\0') +
           std::string{static_cast<char>(reason), 0};
}

struct CollectorTest : testing::Test {
    // A collector that has just been started.
    void start() {
        collector.emplace(Collector::Parts{kernel, hostapd, names, writer.emplace(place.store), log}, Configuration(),
                          Manufacturer());
        ASSERT_EQ(collector->load().status, cfql::Status::ok);
    }

    void pass() {
        now += 10000;
        if (collector->observe(now)) collector->write(now);
    }

    // One pass over the access point wlan0.
    void serve_wlan0() {
        kernel.all = {access_point(3, "wlan0")};
        start();
        pass();
    }

    std::string get(const char* key, const char* object = "wlan0", const char* table = "interface") const {
        return place.get(table, object, key);
    }

    Lines take() { return std::exchange(lines, {}); }

    Place place;
    FakeKernel kernel;
    FakeHostapd hostapd;
    NoLinks links;
    Names names{links, Names::Mode::set};
    std::optional<Writer> writer;
    Lines lines;
    Log log{[this](const std::string& line) { lines.push_back(line.substr(0, line.size() - 1)); }};
    std::optional<Collector> collector;
    std::int64_t now = 0;
};

TEST_F(CollectorTest, RowsAreStartedAccessPoints) {
    kernel.all = {access_point(3, "wlan0"), access_point(4, "wlan1", "")};
    for (const std::uint32_t type : {NL80211_IFTYPE_ADHOC, NL80211_IFTYPE_STATION, NL80211_IFTYPE_AP_VLAN,
                                     NL80211_IFTYPE_MONITOR, NL80211_IFTYPE_MESH_POINT, NL80211_IFTYPE_P2P_GO}) {
        Interface other = access_point(10 + type, "o" + std::to_string(type));
        other.type = type;
        kernel.all.push_back(other);
    }
    start();
    pass();
    ASSERT_EQ(collector->observed().access_points.size(), 1U);
    EXPECT_EQ(get("ssid"), "old");
    EXPECT_EQ(get("radio", "wlan0", "bss"), "wlan0");
    EXPECT_EQ(get("channel", "wlan0", "radio"), "6");
    EXPECT_EQ(get("ssid", "wlan1"), "-");
    EXPECT_TRUE(collector->is_under_way());
}

TEST_F(CollectorTest, HostapdSaysThatItHasStarted) {
    kernel.all = {access_point(3, "wlan0", "")};
    hostapd.answer = Answer::told;
    start();
    pass();
    EXPECT_EQ(get("ssid"), "lab");
}

TEST_F(CollectorTest, WhatHostapdSaidStaysWhileTheAccessPointDoes) {
    hostapd.answer = Answer::told;
    serve_wlan0();
    for (const Answer answer : {Answer::late, Answer::skipped, Answer::dead, Answer::forbidden, Answer::garbage}) {
        hostapd.answer = answer;
        pass();
        EXPECT_EQ(get("ssid"), "lab");
        EXPECT_EQ(get("dtim-period", "wlan0", "bss"), "2");
        EXPECT_EQ(get("beacon-interval", "wlan0", "radio"), "100");
        EXPECT_EQ(get("security"), "wpa2 WPA-PSK");
    }
    kernel.all = {access_point(3, "wlan0", "")};
    pass();
    EXPECT_EQ(place.lines(), Lines{"system : country=DE origin=cfql-collector"});
    kernel.all = {access_point(3, "wlan0")};
    pass();
    EXPECT_EQ(get("ssid"), "old");
}

TEST_F(CollectorTest, AnotherIndexIsAnotherInterface) {
    hostapd.answer = Answer::told;
    serve_wlan0();
    kernel.present[3] = {5, {station(1, 10, 10)}};
    pass();
    EXPECT_EQ(get("received-fragment-count"), "10");
    kernel.all = {access_point(8, "wlan0")};
    hostapd.answer = Answer::absent;
    pass();
    EXPECT_EQ(get("ssid"), "old");
    EXPECT_EQ(get("received-fragment-count"), "0");
    EXPECT_EQ(get("origin-index"), "8");
}

TEST_F(CollectorTest, CountersGoOnOverARestartOfTheCollector) {
    serve_wlan0();
    kernel.present[3] = {5, {station(1, 10, 20, 2)}};
    kernel.frames = {{3, deauthentication(3, 5)}};
    pass();
    EXPECT_EQ(get("transmitted-frame-count"), "18");
    kernel.present[3] = {5, {station(1, 30, 40, 2)}};
    start();
    pass();
    EXPECT_EQ(get("received-fragment-count"), "10");
    EXPECT_EQ(get("dot11-deauthenticate-reason"), "5");
    kernel.present[3] = {5, {station(1, 31, 41, 3)}};
    pass();
    EXPECT_EQ(get("received-fragment-count"), "11");
    EXPECT_EQ(get("failed-count"), "3");
}

TEST_F(CollectorTest, CountersGoOnOverARestartOfTheAccessPoint) {
    serve_wlan0();
    kernel.present[3] = {5, {station(1, 10, 20)}};
    pass();
    kernel.all = {access_point(3, "wlan0", "")};
    kernel.present.clear();
    kernel.departed = {{3, 6, station(1, 0, 0).mac, Sample{12, 24, 0, 0, {}}}};
    pass();
    kernel.all = {access_point(3, "wlan0")};
    kernel.present[3] = {8, {station(1, 1, 1)}};
    pass();
    EXPECT_EQ(get("received-fragment-count"), "13");
    EXPECT_EQ(get("transmitted-frame-count"), "25");
}

// The access point stops, the collector is restarted, the access point starts again: in any order.
TEST_F(CollectorTest, CountersGoOnOverARestartOfBoth) {
    serve_wlan0();
    kernel.present[3] = {5, {station(1, 10, 20, 2)}};
    kernel.frames = {{3, deauthentication(3, 5)}};
    pass();
    kernel.all = {access_point(3, "wlan0", "")};
    kernel.present.clear();
    kernel.departed = {{3, 6, station(1, 0, 0).mac, Sample{12, 24, 3, 0, {}}}};
    pass();
    EXPECT_EQ(get("type"), "-");
    EXPECT_EQ(get("received-fragment-count", "3", "collector"), "12");
    for (int i = 0; i < 2; ++i) {
        start();
        pass();
    }
    kernel.all = {access_point(3, "wlan0")};
    pass();
    EXPECT_EQ(get("received-fragment-count"), "12");
    EXPECT_EQ(get("transmitted-frame-count"), "21");
    EXPECT_EQ(get("dot11-deauthenticate-reason"), "5");
    EXPECT_EQ(get("received-fragment-count", "3", "collector"), "-");
    kernel.present[3] = {8, {station(1, 1, 1)}};
    pass();
    EXPECT_EQ(get("received-fragment-count"), "13");
    // Started again under another index it is another interface.
    kernel.all = {access_point(3, "wlan0", "")};
    kernel.present.clear();
    pass();
    kernel.all = {access_point(4, "wlan0")};
    start();
    pass();
    EXPECT_EQ(get("received-fragment-count"), "0");
    EXPECT_EQ(get("received-fragment-count", "3", "collector"), "-");
}

TEST_F(CollectorTest, WhatHostapdSaidComesBackAtARestart) {
    hostapd.answer = Answer::told;
    serve_wlan0();
    for (const Answer answer : {Answer::late, Answer::dead, Answer::absent, Answer::forbidden}) {
        hostapd.answer = answer;
        start();
        for (int i = 0; i < 2; ++i) {
            pass();
            EXPECT_EQ(get("ssid"), "lab");
            EXPECT_EQ(get("dtim-period", "wlan0", "bss"), "2");
            EXPECT_EQ(get("open-system-authentication", "wlan0", "bss"), "on");
            EXPECT_EQ(get("beacon-interval", "wlan0", "radio"), "100");
            EXPECT_EQ(get("security"), "wpa2 WPA-PSK");
        }
    }
    // Stopped, or under another index, it is not what hostapd spoke of.
    kernel.all = {access_point(3, "wlan0", "")};
    start();
    pass();
    kernel.all = {access_point(3, "wlan0")};
    pass();
    EXPECT_EQ(get("ssid"), "old");
}

TEST_F(CollectorTest, WhatTheKernelSaidDoesNotComeBackAsHostapds) {
    kernel.all = {access_point(3, "wlan0", "first")};
    start();
    pass();
    kernel.all = {access_point(3, "wlan0", "second")};
    start();
    pass();
    EXPECT_EQ(get("ssid"), "second");
}

TEST_F(CollectorTest, AHostapdThatIsLateOnceIsNotToBeRestarted) {
    hostapd.answer = Answer::told;
    serve_wlan0();
    take();
    hostapd.hung = false;
    for (const Answer answer : {Answer::late, Answer::skipped}) {
        hostapd.answer = answer;
        pass();
        EXPECT_EQ(take(), Lines());
    }
    hostapd.hung = true;
    pass();
    EXPECT_EQ(take(), Lines{"<4>cfql-collector: wlan0: hostapd does not answer at /run/hostapd/wlan0: what it said "
                            "before stands; restart it"});
}

TEST_F(CollectorTest, StationsThatCannotBeListedWait) {
    serve_wlan0();
    kernel.present[3] = {5, {station(1, 10, 20)}};
    pass();
    kernel.stations_error = ETIMEDOUT;
    kernel.departed = {{3, 6, station(1, 0, 0).mac, Sample{12, 24, 0, 0, {}}}};
    take();
    pass();
    EXPECT_EQ(get("received-fragment-count"), "10");
    EXPECT_EQ(take(),
              Lines{"<4>cfql-collector: wlan0: its stations cannot be listed: Connection timed out; its counters stand "
                    "still until they can"});
    kernel.stations_error = 0;
    kernel.present[3] = {};
    pass();
    EXPECT_EQ(get("received-fragment-count"), "12");
    EXPECT_EQ(take(), Lines{"<5>cfql-collector: wlan0: its stations are listed again"});
}

TEST_F(CollectorTest, UnpluggedInTheMiddleOfAPass) {
    serve_wlan0();
    kernel.stations_error = ENODEV;
    kernel.radio_error = ENODEV;
    pass();
    EXPECT_EQ(get("ssid"), "-");
    kernel.all = {};
    pass();
    EXPECT_EQ(place.lines().size(), 1U);
}

TEST_F(CollectorTest, AKernelThatDoesNotAnswerLeavesTheStore) {
    serve_wlan0();
    const Lines before = place.lines();
    kernel.error = ETIMEDOUT;
    take();
    pass();
    EXPECT_EQ(place.lines(), before);
    EXPECT_EQ(take(),
              Lines{"<3>cfql-collector: the kernel does not list its wireless interfaces: Connection timed out; the "
                    "store stays as it is, the next pass asks again"});
    kernel.error = 0;
    pass();
    EXPECT_EQ(take(), Lines{"<5>cfql-collector: the kernel lists its wireless interfaces again"});
}

TEST_F(CollectorTest, AKernelWithoutNl80211) {
    kernel.error = ENOENT;
    start();
    for (int i = 0; i < 20; ++i)
        pass();
    EXPECT_EQ(take(),
              Lines{"<4>cfql-collector: this kernel has no nl80211, so there are no access points; load cfg80211 and "
                    "the radio's driver"});
    kernel.error = 0;
    kernel.all = {access_point(3, "wlan0")};
    pass();
    EXPECT_EQ(get("ssid"), "old");
}

TEST_F(CollectorTest, ALongNameWithoutTheRight) {
    kernel.all = {access_point(3, "wlan0"), access_point(4, "wlan0_1")};
    start();
    pass();
    EXPECT_EQ(collector->observed().access_points.size(), 1U);
    const Lines said = take();
    EXPECT_EQ(
        std::ranges::count_if(said,
                              [](const std::string& line) {
                                  return line.starts_with(
                                      "<4>cfql-collector: wlan0_1 is not served: its name is longer than 5 characters");
                              }),
        1);
    links.error = 0;
    pass();
    EXPECT_EQ(take(), Lines{"<5>cfql-collector: wlan0_1 is served as 0ap0"});
    EXPECT_EQ(get("ssid", "0ap0"), "old");
}

TEST_F(CollectorTest, EverythingThatHostapdMayDoIsSaid) {
    kernel.all = {access_point(3, "wlan0")};
    const struct {
        Answer answer;
        const char* line;
    } cases[] = {
        {Answer::absent,
         "<6>cfql-collector: wlan0: no socket /run/hostapd/wlan0: values of the kernel only; with hostapd, see "
         "its ctrl_interface and --hostapd"},
        {Answer::dead,
         "<4>cfql-collector: wlan0: nobody listens at /run/hostapd/wlan0: values of the kernel only, until "
         "hostapd is started again"},
        {Answer::forbidden,
         "<4>cfql-collector: /run/hostapd/wlan0: not allowed: values of the kernel only; give hostapd "
         "ctrl_interface_group=netdev and the collector that group"},
        {Answer::late,
         "<4>cfql-collector: wlan0: hostapd does not answer at /run/hostapd/wlan0: what it said before stands; "
         "restart it"},
        {Answer::garbage,
         "<4>cfql-collector: /run/hostapd/wlan0: not an answer of hostapd's: values of the kernel only; name "
         "its directory with --hostapd"},
    };
    start();
    for (const auto& expected : cases) {
        now += 120000;
        hostapd.answer = expected.answer;
        for (int i = 0; i < 20; ++i)
            pass();
        EXPECT_EQ(take(), Lines{expected.line});
        hostapd.answer = Answer::told;
        pass();
        EXPECT_EQ(take(), Lines{"<5>cfql-collector: wlan0: hostapd answers again"});
    }
}

TEST_F(CollectorTest, WepOrOpenIsUnknownWithoutTheRight) {
    kernel.all = {access_point(3, "wlan0")};
    hostapd.answer = Answer::told;
    hostapd.told.wpa = 0;
    hostapd.told.suites = "";
    kernel.key_error = EPERM;
    start();
    pass();
    EXPECT_EQ(get("security"), "-");
    EXPECT_EQ(take().size(), 1U);
    kernel.key_error = 0;
    kernel.key = true;
    pass();
    EXPECT_EQ(get("security"), "wep");
    kernel.key = false;
    pass();
    EXPECT_EQ(get("security"), "plain-text");
}

TEST_F(CollectorTest, LostEventsAreSurvived) {
    serve_wlan0();
    take();
    kernel.present[3] = {5, {station(1, 10, 10), station(2, 20, 20)}};
    pass();
    kernel.present[3] = {6, {station(2, 21, 21)}};
    kernel.lost = true;
    pass();
    EXPECT_EQ(get("received-fragment-count"), "31");
    EXPECT_EQ(take().size(), 1U);
    pass();
    EXPECT_EQ(take().size(), 0U);
}

TEST_F(CollectorTest, WhatCameDuringALookMayHaveBeenMissed) {
    serve_wlan0();
    EXPECT_FALSE(collector->is_out_of_date());
    kernel.unseen = true;  // an event that comes with the last question
    pass();
    EXPECT_TRUE(collector->is_out_of_date());
    kernel.unseen = false;
    pass();
    EXPECT_FALSE(collector->is_out_of_date());
}

TEST_F(CollectorTest, TheLastFrameOfEachKind) {
    serve_wlan0();
    EXPECT_EQ(get("dot11-deauthenticate-reason"), "-");
    kernel.frames = {{3, deauthentication(3, 5)},
                     {3, deauthentication(3, 15)},
                     {3, deauthentication(4, 9)},
                     {99, deauthentication(3, 9)}};
    EXPECT_TRUE(collector->read_events());
    pass();
    EXPECT_EQ(get("dot11-deauthenticate-reason"), "15");
    EXPECT_EQ(get("dot11-deauthenticate-station"), "02:00:00:00:01:07");
    EXPECT_EQ(get("dot11-disassociate-reason"), "-");
}

TEST_F(CollectorTest, AcknowledgementsStopWhileRtsIsOn) {
    serve_wlan0();
    kernel.present[3] = {5, {station(1, 0, 10, 4)}};
    pass();
    EXPECT_EQ(get("ack-failure-count"), "4");
    kernel.rts = 500;
    kernel.present[3] = {5, {station(1, 0, 20, 9)}};
    pass();
    EXPECT_EQ(get("ack-failure-count"), "4");
    EXPECT_EQ(get("failed-count"), "9");
    EXPECT_EQ(get("rts-threshold", "wlan0", "radio"), "500");
}

TEST_F(CollectorTest, OneQuestionARadio) {
    kernel.all = {access_point(3, "wlan0"), access_point(4, "wlan1"), access_point(5, "wlan2")};
    start();
    pass();
    EXPECT_EQ(kernel.radios_asked, 1);
}

TEST_F(CollectorTest, MoreThanTheAgentServesAreLeftOut) {
    for (std::uint32_t i = 0; i < 130; ++i)
        kernel.all.push_back(access_point(3 + i, "w" + std::to_string(i)));
    start();
    pass();
    EXPECT_EQ(collector->observed().access_points.size(), 128U);
    EXPECT_EQ(collector->observed().left_out.size(), 2U);
}

TEST_F(CollectorTest, AnObjectOfTheOperatorsIsSaidOnce) {
    place.make();
    place.set("interface", "wlan0", "ssid", "theirs");
    kernel.all = {access_point(3, "wlan0")};
    hostapd.answer = Answer::told;
    start();
    for (int i = 0; i < 20; ++i)
        pass();
    EXPECT_EQ(get("ssid"), "theirs");
    EXPECT_EQ(take(), Lines{"<5>cfql-collector: " + place.store +
                            ": interface \"wlan0\" is not the collector's and stays as it "
                            "is; to have it filled: cfql unset interface wlan0"});
}

TEST_F(CollectorTest, AStoreThatCannotBeWrittenIsSaid) {
    kernel.all = {access_point(3, "wlan0")};
    hostapd.answer = Answer::told;
    start();
    std::filesystem::create_directory(place.store);
    pass();
    const Lines said = take();
    ASSERT_EQ(said.size(), 1U);
    EXPECT_TRUE(said[0].starts_with("<3>cfql-collector: " + place.store + ": ")) << said[0];
    std::filesystem::remove(place.store);
    pass();
    EXPECT_EQ(take(), Lines{"<5>cfql-collector: " + place.store + ": written again"});
    EXPECT_EQ(get("ssid"), "lab");
}

// A sanitizer keeps what is released.
#ifndef ADDRESS_SANITIZER
// Resident memory in kB.
long resident() {
    std::ifstream file("/proc/self/statm");
    long size = 0, pages = 0;
    file >> size >> pages;
    return pages * (sysconf(_SC_PAGESIZE) / 1024);
}

TEST_F(CollectorTest, GrowsByNothing) {
    kernel.all = {access_point(3, "wlan0")};
    start();
    long after_warming_up = 0;
    std::uint32_t generation = 1;
    for (int i = 0; i < 10000; ++i) {
        // Every station is another one after a while, and all of them have frames to count.
        Stations stations = {++generation, {}};
        for (std::uint32_t j = 0; j < 400; ++j) {
            Station one = station(0, static_cast<std::uint32_t>(i), static_cast<std::uint32_t>(i));
            const std::uint32_t number = j + static_cast<std::uint32_t>(i) * 7;
            one.mac = {2,
                       0,
                       0,
                       static_cast<std::uint8_t>(number >> 16),
                       static_cast<std::uint8_t>(number >> 8),
                       static_cast<std::uint8_t>(number)};
            stations.stations.push_back(one);
            if (j < 7) kernel.departed.push_back({3, generation - 1, one.mac, one.sample});
        }
        kernel.present[3] = std::move(stations);
        // Every so often it is another interface, too, and another thing is wrong.
        if (i % 10 == 0) kernel.all[0] = access_point(3, "wlan0");
        kernel.all.resize(1);
        kernel.all.push_back(access_point(100 + static_cast<std::uint32_t>(i), "long" + std::to_string(i)));
        now += 10000;
        ASSERT_TRUE(collector->observe(now));
        if (i % 100 == 0) collector->write(now);
        lines.clear();
        if (i == 1000) after_warming_up = resident();
    }
    EXPECT_LE(log.size(), 16U);
    EXPECT_LE(resident() - after_warming_up, 64) << "kB";
}
#endif

}  // namespace
