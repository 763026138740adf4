#include "network.h"

#include "agent.h"

namespace {

constexpr char interface_keys[] = R"(
type = "service-set"
ssid = "Lobby"
security = "wpa2"
dot11-cf-pollable = "1"
dot11-privacy-option-implemented = "1"
dot11-authentication-response-time-out = "60"
dot11-association-response-time-out = "70"
dot11-disassociate-reason = "8"
dot11-disassociate-station = "00:11:22:33:44:55"
dot11-deauthenticate-reason = "3"
dot11-deauthenticate-station = "66:77:88:99:AA:BB"
dot11-authenticate-fail-status = "13"
dot11-authenticate-fail-station = "cc:dd:ee:ff:00:01"
dot11-privacy-invoked = "1"
wep-default-key = "3"
wep-key-mapping-length = "20"
wep-key-1 = "FAKE1"
wep-key-2 = "FAKE2"
wep-key-3 = "FAKE-KEY-1234"
wep-key-4 = "FAKE4"
dot11-short-retry-limit = "5"
dot11-long-retry-limit = "3"
dot11-max-transmit-msdu-lifetime = "1024"
dot11-max-receive-lifetime = "2048"
dot11-phy-type = "2"
dot11-current-reg-domain = "48"
dot11-temp-type = "2"
num_supported_pow_level = "4"
tx-power = "50"
curr_tx_power_level = "2"
transmitted-fragment-count = "1001"
multicast-transmitted-frame-count = "1002"
failed-count = "1003"
retry-count = "1004"
multiple-retry-count = "1005"
frame-duplicate-count = "1006"
rts-success-count = "1007"
rts-failure-count = "1008"
ack-failure-count = "1009"
received-fragment-count = "1010"
multicast-received-frame-count = "1011"
fcs-error-count = "1012"
transmitted-frame-count = "1013"
wep-undecryptable-count = "2147483647"
)";

constexpr char bss_keys[] = R"(
dtim-period = "2"
open-system-authentication = "on"
shared-key-authentication = "off"
)";

constexpr char radio_keys[] = R"(
beacon-interval = "100"
dot11d = "up"
rts-threshold = "2000"
fragmentation-threshold = "1500"
manufacturer-id = "Example Radios"
manufacturer-oui = "00:00:5e"
manufacturer-name = "Example Radios Ltd"
manufacturer-product-name = "ER-24"
manufacturer-product-version = "1.2.0"
)";

std::string line(const std::string& key, const std::string& value) {
    return key + " = \"" + value + "\"\n";
}

std::string mac(unsigned i) {
    char text[18];
    snprintf(text, sizeof text, "00:00:5e:00:53:%02x", i & 0xFF);
    return text;
}

}  // namespace

std::string interface_name(unsigned i) {
    return "w" + std::to_string(i);
}

unsigned interface_index(unsigned i) {
    return 11 + i;
}

void add_interfaces(unsigned count) {
    for (unsigned i = 0; i < count; ++i)
        add_interface(interface_name(i), interface_index(i));
}

std::string full_configuration(unsigned count) {
    std::string text = "[[system]]\n" + line("country", "CH");
    for (unsigned i = 0; i < count; ++i) {
        const std::string name = interface_name(i);
        text += "[[interface]]\n" + line("name", name) + line("bss", "b" + name) + line("mac", mac(i)) + interface_keys;
        text += "[[bss]]\n" + line("name", "b" + name) + line("radio", "r" + name) + bss_keys;
        text += "[[radio]]\n" + line("name", "r" + name) + radio_keys;
        text += "[[radio]]\n" + line("name", name) + line("channel", "11");
        text += "[[supported-rate]]\n" + line("name", name) + line("rate", "540");
    }
    return text;
}

std::string empty_configuration(unsigned count) {
    std::string text;
    for (unsigned i = 0; i < count; ++i)
        text += "[[interface]]\n" + line("name", interface_name(i)) + line("type", "service-set");
    return text;
}
