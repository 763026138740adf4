// Runs passes of the collector over 8 access points with 50 stations each, where only counters change: real messages
// and a real store, but no kernel. Usage: collector-bench STORE PASSES
#include <linux/nl80211.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "collector.h"
#include "nl80211.h"

namespace {

using namespace collector;

constexpr std::uint32_t access_points = 8, stations_each = 50;

// A station's message like a present kernel's: as long, and with as many attributes on both levels.
std::vector<char> station_message(std::uint32_t number) {
    std::vector<char> buffer(4096);
    nlmsghdr* message = mnl_nlmsg_put_header(buffer.data());
    static_cast<char*>(mnl_nlmsg_put_extra_header(message, 4))[0] = NL80211_CMD_NEW_STATION;
    const std::uint8_t mac[] = {2, 0, 0, 0, static_cast<std::uint8_t>(number >> 8), static_cast<std::uint8_t>(number)};
    mnl_attr_put_u32(message, NL80211_ATTR_IFINDEX, 3);
    mnl_attr_put(message, NL80211_ATTR_MAC, sizeof mac, mac);
    mnl_attr_put_u32(message, NL80211_ATTR_GENERATION, 7);
    nlattr* info = mnl_attr_nest_start(message, NL80211_ATTR_STA_INFO);
    for (std::uint16_t type = 1; type <= 24; ++type)
        mnl_attr_put_u32(message, type, 1000);
    nlattr* tids = mnl_attr_nest_start(message, NL80211_STA_INFO_TID_STATS);
    const char statistics[40] = {};
    for (std::uint16_t tid = 1; tid <= 17; ++tid)
        mnl_attr_put(message, tid, sizeof statistics, statistics);
    mnl_attr_nest_end(message, tids);
    mnl_attr_nest_end(message, info);
    buffer.resize(message->nlmsg_len);
    return buffer;
}

// Every station sends and receives between two passes.
void count_on(std::vector<char>& buffer, std::uint32_t by) {
    auto* info = reinterpret_cast<char*>(buffer.data()) + sizeof(nlmsghdr) + 4 + 8 + 12 + 8 + 4;
    for (std::uint16_t type = 1; type <= 24; ++type, info += 8) {
        if (type >= NL80211_STA_INFO_RX_PACKETS && type <= NL80211_STA_INFO_TX_FAILED)
            *reinterpret_cast<std::uint32_t*>(info + 4) += by;
    }
}

class Recorded : public Kernel {
  public:
    Recorded() {
        for (std::uint32_t i = 0; i < stations_each; ++i)
            messages_.push_back(station_message(i));
    }
    void go_on() {
        for (std::vector<char>& message : messages_)
            count_on(message, 3);
    }

    int interfaces(std::vector<Interface>& found) override {
        for (std::uint32_t i = 0; i < access_points; ++i) {
            found.push_back({3 + i, "wlan" + std::to_string(i), i / 4, NL80211_IFTYPE_AP, {2}, "ssid", 2437, 2000});
        }
        return 0;
    }
    int radio(std::uint32_t index, Radio& radio) override {
        radio = {index, "phy" + std::to_string(index), 7, 4, threshold_off, threshold_off};
        return 0;
    }
    int regulatory(std::vector<Regulatory>& found) override {
        found = {{"DE", NL80211_DFS_ETSI, {}}};
        return 0;
    }
    int stations(std::uint32_t, Stations& found) override {
        for (const std::vector<char>& message : messages_) {
            const auto listed = nl80211::read_station(reinterpret_cast<const nlmsghdr*>(message.data()));
            if (!listed) abort();
            found.generation = listed->generation;
            found.stations.push_back(listed->station);
        }
        return 0;
    }
    int group_key(std::uint32_t, bool& present) override {
        present = true;
        return 0;
    }
    void events(Events&) override {}

  private:
    std::vector<std::vector<char>> messages_;
};

class Answering : public Hostapd {
  public:
    Answering() : Hostapd("/run/hostapd") {}
    Answer ask(const std::string&, std::uint32_t, HostapdBss& bss) override {
        bss = {true, "ssid", 100, 2, "WPA-PSK", 2};
        return Answer::told;
    }
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    Recorded kernel;
    Answering hostapd;
    KernelLinks links;
    Names names(links, Names::Mode::refused);
    Writer writer(argv[1]);
    Log log;
    Collector collector({kernel, hostapd, names, writer, log}, {}, {});
    if (collector.load().status != cfql::Status::ok) return 3;
    for (int i = 0; i < std::atoi(argv[2]); ++i) {
        if (!collector.observe(i * std::int64_t{10000})) return 1;
        collector.write(i * std::int64_t{10000});
        kernel.go_on();
    }
    const AccessPoint& last = collector.observed().access_points.back();
    std::printf("%zu access points, %zu stations, received %llu\n", collector.observed().access_points.size(),
                last.stations, static_cast<unsigned long long>(last.totals.received));
    return writer.last_status() == cfql::Status::ok ? 0 : 3;
}
