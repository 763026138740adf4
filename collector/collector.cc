#include "collector.h"

#include <linux/nl80211.h>

#include <errno.h>
#include <string.h>
#include <algorithm>

#include "frame.h"
#include "keys.h"
#include "store/interfaces.h"
#include "text.h"

namespace collector {

namespace {

using cfql::tool::printable;
using cfql::tool::quoted;

constexpr size_t most_departures = 16384;  // of one interface between two passes

std::string reason(int error) {
    return strerror(error);
}

const char* kind(uint32_t type) {
    switch (type) {
        case NL80211_IFTYPE_ADHOC:
            return "ad hoc";
        case NL80211_IFTYPE_STATION:
            return "a station";
        case NL80211_IFTYPE_AP_VLAN:
            return "a VLAN of an access point";
        case NL80211_IFTYPE_MONITOR:
            return "a monitor";
        case NL80211_IFTYPE_MESH_POINT:
            return "a mesh point";
        case NL80211_IFTYPE_P2P_CLIENT:
        case NL80211_IFTYPE_P2P_GO:
            return "Wi-Fi Direct";
        default:
            return "of another kind";
    }
}

bool is_gone(int error) {
    return error == ENODEV || error == ENOENT || error == ENXIO;
}

}  // namespace

Writer::Result Collector::load() {
    Writer::Result result = parts_.writer.load();
    left_by_earlier_run_ = left_in(parts_.writer.held());
    return result;
}

bool Collector::read_events() {
    events_.changed = false;
    parts_.kernel.events(events_);
    return events_.changed;
}

// In the first pass nobody knows since when the stations present have been counting.
Collector::State& Collector::state(const Interface& interface) {
    const auto known = states_.find(interface.index);
    if (known != states_.end()) return known->second;
    State& made = states_[interface.index];
    if (has_observed_) return made;
    const auto left = left_by_earlier_run_.find(interface.index);
    if (left == left_by_earlier_run_.end()) {
        made.counters = Accumulator(Totals());
    } else {
        made.counters = Accumulator(left->second.totals);
        made.sent = left->second.sent;
        made.hostapd = left->second.hostapd;
    }
    return made;
}

bool Collector::read_interfaces(int64_t now) {
    Log& log = parts_.log;
    std::vector<Interface> found;
    const int error = parts_.kernel.interfaces(found);
    if (error == ENOENT) {
        log.holds("kernel", Level::warning,
                  "this kernel has no nl80211, so there are no access points; load cfg80211 and the radio's driver",
                  now);
    } else if (error != 0) {
        log.holds("kernel", Level::error,
                  "the kernel does not list its wireless interfaces: " + reason(error) +
                      "; the store stays as it is, the next pass asks again",
                  now);
        return false;
    } else {
        log.ended("kernel", "the kernel lists its wireless interfaces again", now);
    }
    interfaces_ = std::move(found);
    const auto gone = [&](uint32_t index) {
        return std::ranges::none_of(interfaces_, [&](const Interface& interface) { return interface.index == index; });
    };
    std::erase_if(states_, [&](const auto& entry) { return gone(entry.first); });
    for (const Interface& interface : interfaces_) {
        if (left_by_earlier_run_.contains(interface.index)) state(interface);
    }
    parts_.names.forget(gone);
    return true;
}

void Collector::read_radios(int64_t now) {
    Log& log = parts_.log;
    for (const Interface& interface : interfaces_) {
        const auto same = [&](const Radio& radio) { return radio.index == interface.radio; };
        if (interface.type != NL80211_IFTYPE_AP || std::ranges::any_of(observed_.radios, same)) continue;
        Radio radio;
        const std::string cause = "radio:" + std::to_string(interface.radio);
        const int error = parts_.kernel.radio(interface.radio, radio);
        if (error == 0) {
            observed_.radios.push_back(radio);
            log.ended(cause, "radio " + printable(radio.name) + " answers again", now);
        } else if (!is_gone(error)) {
            log.holds(cause, Level::warning,
                      "radio number " + std::to_string(interface.radio) + ": " + reason(error) +
                          "; its thresholds and retry limits are left out",
                      now);
        }
    }
    const int error = parts_.kernel.regulatory(observed_.regulatory);
    if (error != 0 && error != ENOENT) {
        log.holds("regulatory", Level::warning, "the regulatory domain cannot be read: " + reason(error), now);
    } else {
        log.ended("regulatory", "the regulatory domain is read again", now);
    }
}

void Collector::log_hostapd(const Interface& of, Answer answer, int64_t now) {
    Log& log = parts_.log;
    const std::string& interface = of.name;
    const std::string socket = parts_.hostapd.directory() + '/' + interface;
    const std::string cause = "hostapd:" + interface;
    switch (answer) {
        case Answer::told:
            return log.ended(cause, interface + ": hostapd answers again", now);
        case Answer::absent:
            return log.holds(cause, Level::info,
                             interface + ": no socket " + socket +
                                 ": values of the kernel only; with hostapd, see its ctrl_interface and --hostapd",
                             now);
        case Answer::dead:
            return log.holds(cause, Level::warning,
                             interface + ": nobody listens at " + socket +
                                 ": values of the kernel only, until hostapd is started again",
                             now);
        case Answer::forbidden:
            return log.holds(
                cause, Level::warning,
                socket +
                    ": not allowed: values of the kernel only; give hostapd ctrl_interface_group=netdev and "
                    "the collector that group",
                now);
        case Answer::late:
        case Answer::skipped:
            // On a busy machine an answer is late now and then.
            if (!parts_.hostapd.is_hung(interface, of.radio)) return;
            return log.holds(
                cause, Level::warning,
                interface + ": hostapd does not answer at " + socket + ": what it said before stands; restart it", now);
        case Answer::garbage:
            return log.holds(
                cause, Level::warning,
                socket + ": not an answer of hostapd's: values of the kernel only; name its directory with --hostapd",
                now);
    }
}

// Returns whether hostapd says that the access point has started.
bool Collector::ask_hostapd(const Interface& interface, int64_t now) {
    HostapdBss bss;
    const Answer answer = parts_.hostapd.ask(interface.name, interface.radio, bss);
    log_hostapd(interface, answer, now);
    if (answer != Answer::told) return false;
    state(interface).hostapd = bss;
    return bss.enabled;
}

void Collector::leave_out(const Interface& interface, const std::string& cause, int64_t now) {
    observed_.left_out.push_back({interface, cause});
    if (interface.type != NL80211_IFTYPE_AP || interface.ssid.empty()) return;
    parts_.log.holds("row:" + interface.name, Level::warning, interface.name + " is not served: " + cause, now);
}

bool Collector::add_stations(AccessPoint& point, int64_t now) {
    Log& log = parts_.log;
    const std::string cause = "stations:" + point.interface.name;
    Stations found;
    const int error = parts_.kernel.stations(point.interface.index, found);
    if (is_gone(error)) return false;
    if (error != 0) {
        log.holds(cause, Level::warning,
                  point.interface.name + ": its stations cannot be listed: " + reason(error) +
                      "; its counters stand still until they can",
                  now);
        return true;
    }
    log.ended(cause, point.interface.name + ": its stations are listed again", now);
    if (!found.stations.empty()) {
        point.dtim = found.stations.front().dtim;
        point.beacon = found.stations.front().beacon;
    }
    stations_[point.interface.index] = std::move(found);
    return true;
}

// WPA is known from hostapd. Of the others, those with a group key have WEP (or WPA, if hostapd does not answer), and
// those without are open.
void Collector::add_group_key(AccessPoint& point, int64_t now) {
    if (point.hostapd && point.hostapd->wpa != 0) return;
    bool present = false;
    const int error = parts_.kernel.group_key(point.interface.index, present);
    if (error == 0) point.group_key = present;
    if (error == EPERM || error == EACCES) {
        parts_.log.holds(
            "keys", Level::notice,
            "without CAP_NET_ADMIN, an access point that is open looks like one with WEP: security is left out; the "
            "configuration can give it",
            now);
    }
}

void Collector::observe_interface(const Interface& interface, int64_t now) {
    if (interface.type != NL80211_IFTYPE_AP)
        return leave_out(interface, std::string("it is ") + kind(interface.type), now);
    State& state = this->state(interface);
    const bool enabled = ask_hostapd(interface, now);
    if (interface.ssid.empty() && !enabled) {
        state.hostapd.reset();
        under_way_ = true;
        return leave_out(interface, "it has not been started", now);
    }
    if (observed_.access_points.size() >= dot11::max_interfaces)
        return leave_out(interface, "the agent serves at most 128", now);
    const auto alias = configuration_.aliases.find(interface.name);
    const Names::Served served = parts_.names.served(interface.index, interface.name, interface.radio,
                                                     alias == configuration_.aliases.end() ? nullptr : &alias->second);
    if (served.name.empty()) return leave_out(interface, served.cause, now);
    AccessPoint point;
    point.interface = interface;
    point.name = served.name;
    point.hostapd = state.hostapd;
    if (!add_stations(point, now)) return leave_out(interface, "it has just disappeared", now);
    add_group_key(point, now);
    observed_.access_points.push_back(std::move(point));
    parts_.log.ended("row:" + interface.name, interface.name + " is served as " + served.name, now);
}

// An RTS without a CTS counts as a retry, too: while RTS is in use, missing acknowledgements cannot be told apart.
bool Collector::acks_count(const Interface& interface) const {
    const auto radio =
        std::ranges::find_if(observed_.radios, [&](const Radio& r) { return r.index == interface.radio; });
    return radio != observed_.radios.end() && radio->rts == std::optional(threshold_off);
}

// Adds up the counters. The generations tell whether a station left before or after the list of stations was read.
void Collector::count() {
    for (Departed& departed : events_.departed) {
        const auto known = states_.find(departed.interface);
        if (known == states_.end() || known->second.departed.size() >= most_departures) continue;
        known->second.departed.push_back(departed);
    }
    events_.departed.clear();
    for (const Interface& interface : interfaces_) {
        const auto known = states_.find(interface.index);
        if (known == states_.end()) continue;
        State& state = known->second;
        const auto present = stations_.find(interface.index);
        // A stopped access point has no stations. If it is started, their list could not be read: wait for the next.
        if (present == stations_.end() && !interface.ssid.empty()) continue;
        static const Stations none;
        state.counters.update(present == stations_.end() ? none : present->second, state.departed,
                              acks_count(interface));
        state.departed.clear();
    }
    stations_.clear();
}

void Collector::read_frames() {
    for (const auto& [sender, frame] : events_.frames) {
        const uint32_t index = sender;
        const auto of = std::ranges::find_if(interfaces_, [&](const Interface& i) { return i.index == index; });
        if (of == interfaces_.end() || of->type != NL80211_IFTYPE_AP) continue;
        const std::optional<Sent> sent = sent_frame(frame, of->mac);
        if (sent) state(*of).sent[static_cast<size_t>(sent->told)] = sent;
    }
    events_.frames.clear();
}

// Includes interfaces that are not served now: the collector may be restarted before they are served again.
void Collector::hand_over_counts() {
    for (const auto& [index, state] : states_) {
        const uint32_t wanted = index;
        const auto served = std::ranges::find_if(
            observed_.access_points, [&](const AccessPoint& point) { return point.interface.index == wanted; });
        if (served != observed_.access_points.end()) {
            served->totals = state.counters.totals();
            served->stations = state.counters.stations();
            served->sent = state.sent;
        } else {
            observed_.resting.push_back({index, state.counters.totals(), state.sent});
        }
    }
}

bool Collector::observe(int64_t now) {
    observed_ = {};
    observed_.manufacturer = manufacturer_;
    under_way_ = false;
    parts_.hostapd.begin_pass(now);
    if (!read_interfaces(now)) return false;
    read_radios(now);
    for (const Interface& interface : interfaces_)
        observe_interface(interface, now);
    events_.unseen = false;
    read_events();
    if (events_.lost) {
        parts_.log.holds(
            "events", Level::notice,
            "more events than the buffer holds: some stations' last frames are not counted; with CAP_NET_ADMIN the "
            "buffer is larger",
            now);
        events_.lost = false;
    } else {
        parts_.log.ended("events", "", now);
    }
    read_frames();
    count();
    hand_over_counts();
    for (const char* of_an_interface : {"row:", "hostapd:", "stations:", "radio:"})
        parts_.log.end_others(of_an_interface, "", now, now);
    has_observed_ = true;
    left_by_earlier_run_.clear();
    return true;
}

void Collector::write(int64_t now) {
    Log& log = parts_.log;
    const std::string& path = parts_.writer.path();
    const Writer::Result result = parts_.writer.write(wanted());
    if (result.status != cfql::Status::ok) {
        return log.holds("store", Level::error,
                         path + ": " + cfql::describe(result.status) +
                             (result.detail.empty() ? "" : " (" + result.detail + ')') + "; the next pass tries again",
                         now);
    }
    log.ended("store", path + ": written again", now);
    for (const ObjectName& name : parts_.writer.others()) {
        log.holds("other:" + name.table + ' ' + name.name, Level::notice,
                  path + ": " + name.table + ' ' + quoted(name.name) +
                      " is not the collector's and stays as it is; to have it "
                      "filled: cfql unset " +
                      name.table + ' ' + printable(name.name),
                  now);
    }
    log.end_others("other:", " is filled", now, now);
}

}  // namespace collector
