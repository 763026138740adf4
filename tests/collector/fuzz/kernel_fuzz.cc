// Feeds the readers of netlink messages and of frames with any octets. The first octet of the input chooses the reader;
// the rest is the message without its header, or the frame.
#include <linux/nl80211.h>
#include <linux/rtnetlink.h>

#include <cstring>
#include <vector>

#include "contents.h"
#include "counters.h"
#include "database.h"
#include "demand.h"
#include "frame.h"
#include "links.h"
#include "nl80211.h"

namespace {

using namespace collector;

// A message of exactly that size on the heap, so that the address sanitizer sees each octet too many.
class Message {
  public:
    Message(std::uint16_t type, const unsigned char* data, size_t size) : octets_(sizeof(nlmsghdr) + size) {
        nlmsghdr header = {};
        header.nlmsg_len = static_cast<std::uint32_t>(octets_.size());
        header.nlmsg_type = type;
        std::memcpy(octets_.data(), &header, sizeof header);
        if (size > 0) std::memcpy(octets_.data() + sizeof header, data, size);
    }
    const nlmsghdr* get() const { return reinterpret_cast<const nlmsghdr*>(octets_.data()); }

  private:
    std::vector<char> octets_;
};

// Whatever was seen, a store can hold it.
void demand_contents(const Observed& observed) {
    for (const auto& [name, values] : contents(observed, {})) {
        DEMAND(cfql::object_error(name.table, name.name) == nullptr);
        for (const auto& [key, value] : values) {
            DEMAND(cfql::key_error(key) == nullptr);
            DEMAND(cfql::value_error(value) == nullptr);
        }
    }
}

void feed_interface(const nlmsghdr* message) {
    const std::optional<Interface> found = nl80211::read_interface(message);
    if (!found) return;
    DEMAND(found->index != 0 && !found->name.empty() && found->ssid.size() <= 32);
    AccessPoint point;
    point.interface = *found;
    point.name = "wlan0";
    Observed observed;
    observed.access_points = {point};
    if (const auto radio = nl80211::read_radio(message)) observed.radios = {*radio};
    demand_contents(observed);
}

void feed_stations(const nlmsghdr* message) {
    Accumulator sums;
    Stations stations;
    if (const auto listed = nl80211::read_station(message)) {
        stations.generation = listed->generation;
        stations.stations.push_back(listed->station);
    }
    std::vector<Departed> departed;
    const nl80211::Event event = nl80211::read_event(message);
    if (const auto* left = std::get_if<Departed>(&event)) departed.push_back(*left);
    std::uint64_t last = 0;
    for (int i = 0; i < 3; ++i) {
        sums.update(stations, departed, i != 1);
        DEMAND(sums.totals().transmitted >= last);
        last = sums.totals().transmitted;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    if (size == 0) return 0;
    const unsigned char which = data[0] % 6;
    const Message message(which == 5 ? RTM_NEWLINK : 0x1c, data + 1, size - 1);
    if (which == 0) feed_interface(message.get());
    if (which == 1) feed_stations(message.get());
    if (which == 2) nl80211::read_radio(message.get());
    if (which == 3) nl80211::read_regulatory(message.get());
    if (which == 3) nl80211::read_family(message.get());
    if (which == 4) {
        const std::vector<char> frame(data + 1, data + size);
        const Mac own = {2, 0, 0, 0, 0, 0};
        const auto sent = sent_frame({frame.data(), frame.size()}, own);
        DEMAND(!sent || (sent->station[0] & 1) == 0);
    }
    if (which == 5) {
        for (const std::string& name : read_alternative_names(message.get()))
            DEMAND(name.find('\0') == std::string::npos);
        read_link_event(message.get());
    }
    return 0;
}
