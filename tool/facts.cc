#include "facts.h"

namespace cfql::tool {

namespace {

using enum Holder;
using enum Conversion;

constexpr std::string_view unset_mac = "00 in the first octet, five octets as they were";
constexpr std::string_view unset_wep_key = "five octets, the first 00";

// clang-format off
constexpr Fact table[] = {
    // key                                     holder     conversion  fallback
    {"bss",                                    interface, link,       "the defaults of everything reached through it"},
    {"radio",                                  bss,       link,       "the defaults of everything reached through it"},

    {"type",                                   interface, text,       "not at all"},
    {"mac",                                    interface, mac,        unset_mac},
    {"dot11-cf-pollable",                      interface, flag,       "2", 0, {}, "1", "0 2"},
    {"dot11-authentication-response-time-out", interface, number,     "1"},
    {"dot11-privacy-option-implemented",       interface, flag,       "2", 0, {}, "1", "0 2"},
    {"security",                               interface, text,       "2"},
    {"ssid",                                   interface, text,       "the text 0", 32},
    {"rate",                                   rate,      rate_text,  "one octet 00 as the operational rate set", rate_text_width},
    {"beacon-interval",                        radio,     number,     "1"},
    {"dtim-period",                            bss,       number,     "1"},
    {"dot11d",                                 radio,     flag,       "implemented 2, enabled -1", 0, {}, "up", "down"},
    {"dot11-association-response-time-out",    interface, number,     "1"},
    {"dot11-disassociate-reason",              interface, number,     "0"},
    {"dot11-disassociate-station",             interface, mac,        unset_mac},
    {"dot11-deauthenticate-reason",            interface, number,     "0"},
    {"dot11-deauthenticate-station",           interface, mac,        unset_mac},
    {"dot11-authenticate-fail-status",         interface, number,     "0"},
    {"dot11-authenticate-fail-station",        interface, mac,        unset_mac},
    {"country",                                system,    country,    "???"},

    {"open-system-authentication",             bss,       flag,       "2", 0, {}, "on", "off"},
    {"shared-key-authentication",              bss,       flag,       "2", 0, {}, "on", "off"},

    {"dot11-privacy-invoked",                  interface, number,     "2",  0, "0"},
    {"wep-default-key",                        interface, number,     "0",  0, "0"},
    {"wep-key-mapping-length",                 interface, number,     "10", 0, "0"},
    {"wep-key-1",                              interface, text,       unset_wep_key, 64},
    {"wep-key-2",                              interface, text,       unset_wep_key, 64},
    {"wep-key-3",                              interface, text,       unset_wep_key, 64},
    {"wep-key-4",                              interface, text,       unset_wep_key, 64},

    {"rts-threshold",                          radio,     number,     "2347, or 2346 when \"fragmentation-threshold\" is not set", 0, "0"},
    {"fragmentation-threshold",                radio,     number,     "2346, as the RTS threshold", 0, "0"},
    {"dot11-short-retry-limit",                interface, number,     "7", 0, "0"},
    {"dot11-long-retry-limit",                 interface, number,     "4", 0, "0"},
    {"dot11-max-transmit-msdu-lifetime",       interface, number,     "512", 0, "0"},
    {"dot11-max-receive-lifetime",             interface, number,     "512", 0, "0"},
    {"manufacturer-id",                        radio,     text,       "the empty text", 127},

    {"transmitted-fragment-count",             interface, number,     "0", 0, "0"},
    {"multicast-transmitted-frame-count",      interface, number,     "0", 0, "0"},
    {"failed-count",                           interface, number,     "0", 0, "0"},
    {"retry-count",                            interface, number,     "0", 0, "0"},
    {"multiple-retry-count",                   interface, number,     "0", 0, "0"},
    {"frame-duplicate-count",                  interface, number,     "0", 0, "0"},
    {"rts-success-count",                      interface, number,     "0", 0, "0"},
    {"rts-failure-count",                      interface, number,     "0", 0, "0"},
    {"ack-failure-count",                      interface, number,     "0", 0, "0"},
    {"received-fragment-count",                interface, number,     "0", 0, "0"},
    {"multicast-received-frame-count",         interface, number,     "0", 0, "0"},
    {"fcs-error-count",                        interface, number,     "0", 0, "0"},
    {"transmitted-frame-count",                interface, number,     "0", 0, "0"},
    {"wep-undecryptable-count",                interface, number,     "0", 0, "0"},

    {"manufacturer-oui",                       radio,     text,       "XYZ", 8},
    {"manufacturer-name",                      radio,     text,       "one octet 00", 255},
    {"manufacturer-product-name",              radio,     text,       "one octet 00", 255},
    {"manufacturer-product-version",           radio,     text,       "one octet 00", 255},

    {"dot11-phy-type",                         interface, phy_type,   "1"},
    {"dot11-current-reg-domain",               interface, number,     "0, and 16 as the supported one", 0, "0"},
    {"dot11-temp-type",                        interface, number,     "1", 0, "0"},
    {"num_supported_pow_level",                interface, number,     "1", 0, "0"},
    {"tx-power",                               interface, number,     "100", 0, "100 at level 1 and 0 at levels 2 to 8"},
    {"curr_tx_power_level",                    interface, number,     "1", 0, "0"},
    {"channel",                                own_radio, number,     "6"},
};
// clang-format on

}  // namespace

std::span<const Fact> facts() {
    return table;
}

}  // namespace cfql::tool
