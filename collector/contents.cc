#include "contents.h"

#include <linux/nl80211.h>

#include <algorithm>
#include <charconv>
#include <cmath>

#include "counters.h"
#include "keys.h"

namespace collector {

namespace {

constexpr std::string_view default_rts = "2347", default_fragmentation = "2346";  // the MIB's "off"
constexpr size_t longest_plain = 127;

template <class Number>
std::optional<Number> number_of(const Values& values, std::string_view key) {
    const auto found = values.find(key);
    if (found == values.end()) return std::nullopt;
    const std::string& text = found->second;
    Number value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

// The values of one object under construction. Absent and empty ones are left out: the store has no empty live values.
class Object {
  public:
    explicit Object(Values& values) : values_(values) {}

    void put(std::string_view key, std::string text) {
        if (!text.empty()) values_.insert_or_assign(std::string(key), std::move(text));
    }
    void put(std::string_view key, std::string_view text) { put(key, std::string(text)); }
    void put(std::string_view key, const char* text) { put(key, std::string(text)); }

    template <class Number>
    void put(std::string_view key, const std::optional<Number>& number) {
        if (number) put(key, std::to_string(*number));
    }

  private:
    Values& values_;
};

template <class Item, class Condition>
const Item* find(const std::vector<Item>& items, Condition condition) {
    const auto found = std::ranges::find_if(items, condition);
    return found == items.end() ? nullptr : &*found;
}

const Radio* radio_of(const Observed& observed, const AccessPoint& point) {
    return find(observed.radios, [&](const Radio& radio) { return radio.index == point.interface.radio; });
}

const Regulatory* world(const Observed& observed) {
    return find(observed.regulatory, [](const Regulatory& rules) { return !rules.radio; });
}

const Regulatory* rules_of(const Observed& observed, const AccessPoint& point) {
    const Regulatory* own = find(observed.regulatory, [&](const Regulatory& rules) {
        return rules.radio == std::optional(point.interface.radio);
    });
    return own ? own : world(observed);
}

bool is_letter(char c) {
    return c >= 'A' && c <= 'Z';
}

enum class Security : uint8_t { unknown, open, wep, wpa };

Security security(const AccessPoint& point) {
    if (point.hostapd && point.hostapd->wpa != 0) return Security::wpa;
    if (!point.group_key) return Security::unknown;
    if (!*point.group_key) return Security::open;
    // Without hostapd, WEP cannot be told from WPA; privacy is invoked in either case.
    return point.hostapd && point.hostapd->suites ? Security::wep : Security::wpa;
}

std::string wpa_text(const AccessPoint& point) {
    if (!point.hostapd || point.hostapd->wpa == 0) return "wep-or-wpa";
    static constexpr const char* versions[] = {"", "wpa", "wpa2", "wpa wpa2"};
    const std::string suites = point.hostapd->suites.value_or("");
    return versions[point.hostapd->wpa & 3] + (suites.empty() ? "" : ' ' + suites);
}

void put_security(Object& object, const AccessPoint& point) {
    switch (security(point)) {
        case Security::unknown:
            return;
        case Security::open:
            object.put("security", "plain-text");
            return object.put("dot11-privacy-invoked", "2");
        case Security::wep:
            object.put("security", "wep");
            return object.put("dot11-privacy-invoked", "1");
        case Security::wpa:
            object.put("security", wpa_text(point));
            return object.put("dot11-privacy-invoked", "1");
    }
}

void put_sent(Object& object, const LastSent& sent) {
    for (size_t i = 0; i < sent.size(); ++i) {
        if (!sent[i]) continue;
        object.put(sent_keys[i].code, std::to_string(sent[i]->code));
        object.put(sent_keys[i].station, mac_text(sent[i]->station));
    }
}

void put_totals(Object& object, const Totals& totals) {
    object.put(transmitted_key, std::to_string(counter_value(totals.transmitted)));
    object.put(failed_key, std::to_string(counter_value(totals.failed)));
    object.put(received_key, std::to_string(counter_value(totals.received)));
    if (totals.unacknowledged) object.put(unacknowledged_key, std::to_string(counter_value(*totals.unacknowledged)));
    if (totals.bad_checksums) object.put(bad_checksums_key, std::to_string(counter_value(*totals.bad_checksums)));
}

void put_interface(Object object, const AccessPoint& point, const Observed& observed) {
    const Interface& interface = point.interface;
    object.put("type", served_type);
    object.put("bss", point.name);
    object.put(index_key, std::to_string(interface.index));
    if (point.hostapd) object.put(hostapd_key, hostapd_told);
    object.put("mac", mac_text(interface.mac));
    const std::string ssid = point.hostapd && point.hostapd->ssid ? *point.hostapd->ssid : interface.ssid;
    object.put("ssid", ssid.substr(0, ssid.find('\0')));
    put_security(object, point);
    if (interface.power) object.put("tx-power", std::to_string(milliwatts(*interface.power)));
    if (const Regulatory* rules = rules_of(observed, point))
        object.put("dot11-current-reg-domain", regulatory_domain(*rules));
    if (const Radio* radio = radio_of(observed, point)) {
        object.put("dot11-short-retry-limit", radio->short_retry);
        object.put("dot11-long-retry-limit", radio->long_retry);
    }
    put_sent(object, point.sent);
    put_totals(object, point.totals);
}

// With SAE alone, the open-system algorithm is not used.
bool is_sae_alone(std::string_view suites) {
    while (!suites.empty()) {
        const std::string_view suite = suites.substr(0, suites.find(' '));
        if (!suite.empty() && suite.find("SAE") == std::string_view::npos) return false;
        suites.remove_prefix(std::min(suites.size(), suite.size() + 1));
    }
    return true;
}

void put_bss(Object object, const AccessPoint& point) {
    object.put("radio", point.name);
    if (point.hostapd && point.hostapd->dtim) {
        object.put("dtim-period", point.hostapd->dtim);
    } else if (point.dtim) {
        object.put("dtim-period", point.dtim);
    }
    if (point.hostapd && point.hostapd->suites) {
        const std::string& suites = *point.hostapd->suites;
        object.put("open-system-authentication", !suites.empty() && is_sae_alone(suites) ? "off" : "on");
    }
    const Security kind = security(point);
    if (kind == Security::open || (kind == Security::wpa && point.hostapd && point.hostapd->wpa != 0)) {
        object.put("shared-key-authentication", "off");
    }
}

void put_threshold(Object& object, std::string_view key, const std::optional<uint32_t>& octets, std::string_view off) {
    if (octets) object.put(key, *octets == threshold_off ? std::string(off) : std::to_string(*octets));
}

void put_manufacturer(Object& object, const Manufacturer& maker, const Mac& mac) {
    object.put("manufacturer-id", plain(maker.vendor));
    object.put("manufacturer-name", plain(maker.vendor));
    object.put("manufacturer-product-name", plain(maker.product));
    object.put("manufacturer-product-version", plain(maker.version));
    object.put("manufacturer-oui", mac_text(mac).substr(0, 8));
}

void put_radio(Object object, const AccessPoint& point, const Observed& observed) {
    if (point.interface.frequency) object.put("channel", channel(*point.interface.frequency));
    if (point.hostapd && point.hostapd->beacon) {
        object.put("beacon-interval", point.hostapd->beacon);
    } else if (point.beacon) {
        object.put("beacon-interval", point.beacon);
    }
    put_manufacturer(object, observed.manufacturer, point.interface.mac);
    const Radio* radio = radio_of(observed, point);
    if (!radio) return;
    put_threshold(object, "rts-threshold", radio->rts, default_rts);
    // Without this key, the agent would serve 2346 as the RTS threshold.
    put_threshold(object, "fragmentation-threshold", radio->fragmentation, default_fragmentation);
}

bool has_counted(const Totals& totals) {
    return totals.transmitted != 0 || totals.failed != 0 || totals.received != 0 ||
           totals.unacknowledged.value_or(0) != 0 || totals.bad_checksums.value_or(0) != 0;
}

void add_resting(Contents& made, const Resting& resting) {
    if (!has_counted(resting.totals) && resting.sent == LastSent()) return;
    const std::string index = std::to_string(resting.index);
    Object object(made[{std::string(collector_table), index}]);
    object.put(origin_key, origin);
    object.put(index_key, index);
    put_sent(object, resting.sent);
    put_totals(object, resting.totals);
}

// The operator's values come first, so that live ones replace them.
void put_configured(Contents& made, const AccessPoint& point, const Configuration& configuration) {
    for (const std::string_view table : {all_interfaces, std::string_view(point.interface.name)}) {
        const auto values = configuration.tables.find(table);
        if (values == configuration.tables.end()) continue;
        for (const auto& [key, value] : values->second)
            made[{std::string(*table_of(key)), point.name}].insert_or_assign(key, value);
    }
}

void add_access_point(Contents& made, const AccessPoint& point, const Observed& observed,
                      const Configuration& configuration) {
    put_configured(made, point, configuration);
    const auto object = [&](std::string_view table) -> Values& {
        Values& values = made[{std::string(table), point.name}];
        values.insert_or_assign(std::string(origin_key), std::string(origin));
        return values;
    };
    put_interface(Object(object(interface_table)), point, observed);
    put_bss(Object(object(bss_table)), point);
    put_radio(Object(object(radio_table)), point, observed);
}

Totals totals_of(const Values& object) {
    Totals totals;
    totals.transmitted = number_of<uint64_t>(object, transmitted_key).value_or(0);
    totals.failed = number_of<uint64_t>(object, failed_key).value_or(0);
    totals.received = number_of<uint64_t>(object, received_key).value_or(0);
    totals.unacknowledged = number_of<uint64_t>(object, unacknowledged_key);
    totals.bad_checksums = number_of<uint64_t>(object, bad_checksums_key);
    return totals;
}

LastSent sent_of(const Values& object) {
    LastSent sent;
    for (size_t i = 0; i < sent.size(); ++i) {
        const auto code = number_of<uint16_t>(object, sent_keys[i].code);
        const auto station = object.find(sent_keys[i].station);
        if (!code || station == object.end()) continue;
        const std::optional<Mac> mac = mac_of(station->second);
        if (mac) sent[i] = Sent{static_cast<Told>(i), *code, *mac};
    }
    return sent;
}

std::string text_of(const Values& values, std::string_view key) {
    const auto found = values.find(key);
    return found == values.end() ? std::string() : found->second;
}

// The reverse of wpa_text().
void read_wpa_text(std::string_view text, HostapdBss& bss) {
    bss.suites = "";
    for (const auto& [version, bit] : {std::pair(std::string_view("wpa"), 1), std::pair(std::string_view("wpa2"), 2)}) {
        const std::string_view word = text.substr(0, text.find(' '));
        if (word != version) continue;
        bss.wpa = static_cast<uint8_t>(bss.wpa | bit);
        text.remove_prefix(std::min(text.size(), word.size() + 1));
    }
    if (bss.wpa != 0) bss.suites = std::string(text);
}

std::optional<HostapdBss> hostapd_of(const Values& interface, const Contents& held, const std::string& name) {
    if (text_of(interface, hostapd_key) != hostapd_told) return std::nullopt;
    HostapdBss bss;
    bss.enabled = true;
    if (const std::string ssid = text_of(interface, "ssid"); !ssid.empty()) bss.ssid = ssid;
    read_wpa_text(text_of(interface, "security"), bss);
    const auto object = [&](std::string_view table) {
        const auto found = held.find({std::string(table), name});
        return found == held.end() ? Values() : found->second;
    };
    bss.dtim = number_of<uint32_t>(object(bss_table), "dtim-period");
    bss.beacon = number_of<uint32_t>(object(radio_table), "beacon-interval");
    return bss;
}

}  // namespace

std::optional<uint32_t> channel(uint32_t frequency) {
    struct Band {
        uint32_t first, last, base, step;
    };
    // Channel n of a band is at base + n * step. Two channels are exceptions.
    static constexpr Band bands[] = {
        {2407, 2472, 2407, 5}, {4900, 4980, 4000, 5},       {5000, 5925, 5000, 5},
        {5950, 7125, 5950, 5}, {58320, 70200, 56160, 2160},
    };
    if (frequency == 2484) return 14;
    if (frequency == 5935) return 2;  // of the 6 GHz band
    for (const Band& band : bands) {
        if (frequency <= band.base || frequency < band.first || frequency > band.last) continue;
        if ((frequency - band.base) % band.step == 0) return (frequency - band.base) / band.step;
    }
    return std::nullopt;
}

uint32_t milliwatts(int32_t power) {
    const double value = std::pow(10.0, std::clamp(power, -10000, 9000) / 1000.0);
    return std::max<uint32_t>(1, static_cast<uint32_t>(std::lround(value)));
}

std::optional<uint32_t> regulatory_domain(const Regulatory& rules) {
    if (rules.country == "US") return 16;  // FCC
    if (rules.country == "CA") return 32;  // DOC
    if (rules.country == "JP") return 64;  // MKK
    switch (rules.dfs) {
        case NL80211_DFS_FCC:
            return 16;
        case NL80211_DFS_ETSI:
            return 48;
        case NL80211_DFS_JP:
            return 64;
        default:
            return std::nullopt;
    }
}

std::string mac_text(const Mac& mac) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const uint8_t octet : mac) {
        if (!text.empty()) text += ':';
        text += digits[octet >> 4];
        text += digits[octet & 15];
    }
    return text;
}

std::optional<Mac> mac_of(std::string_view text) {
    Mac mac;
    if (text.size() != 17) return std::nullopt;
    for (size_t i = 0; i < mac.size(); ++i) {
        const char* digits = text.data() + 3 * i;
        const auto [end, error] = std::from_chars(digits, digits + 2, mac[i], 16);
        if (error != std::errc() || end != digits + 2 || (i < 5 && *end != ':')) return std::nullopt;
    }
    return mac;
}

std::string plain(std::string_view text) {
    std::string made;
    for (const char c : text) {
        if (c >= ' ' && c <= '~' && made.size() < longest_plain && (c != ' ' || !made.empty())) made += c;
    }
    made.resize(made.find_last_not_of(' ') + 1);
    return made;
}

Contents contents(const Observed& observed, const Configuration& configuration) {
    Contents made;
    for (const AccessPoint& point : observed.access_points)
        add_access_point(made, point, observed, configuration);
    for (const Resting& resting : observed.resting)
        add_resting(made, resting);
    const Regulatory* rules = world(observed);
    if (rules && std::ranges::all_of(rules->country, is_letter)) {
        made[{std::string(system_table), ""}] = {{std::string(country_key), rules->country},
                                                 {std::string(origin_key), std::string(origin)}};
    }
    return made;
}

std::map<uint32_t, Left> left_in(const Contents& held) {
    std::map<uint32_t, Left> made;
    for (const auto& [name, values] : held) {
        const auto index = number_of<uint32_t>(values, index_key);
        if (!index || (name.table != interface_table && name.table != collector_table)) continue;
        made[*index] = {totals_of(values), sent_of(values), hostapd_of(values, held, name.name)};
    }
    return made;
}

}  // namespace collector
