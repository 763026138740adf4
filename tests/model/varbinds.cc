#include "varbinds.h"

#include <algorithm>

Oid name(const std::vector<uint32_t>& suffix) {
    Oid whole = {1, 2, 840, 10036};
    whole.insert(whole.end(), suffix.begin(), suffix.end());
    return whole;
}

Value number(int64_t value, uint8_t type) {
    return {type, integer_octets(value)};
}

Value text(const std::string& octets) {
    return {octet_string, octets};
}

namespace {

const Value five_octet_integer = {integer, std::string("\0\xff\xff\xff\xff", 5)};  // -1 in 32 bits

const std::vector<Varbind> station_management_varbinds = {
    // dot11StationConfigTable
    {name({1, 1, 1, 12, 3}), number(100)},
    {name({1, 1, 1, 12, 3}), number(0)},
    {name({1, 1, 1, 12, 3}), text("100")},
    {name({1, 1, 1, 12, 3}), {no_such_object, ""}},
    {name({1, 1, 1, 12, 7}), number(65535)},
    {name({1, 1, 1, 12, 9}), number(100)},
    {name({1, 1, 1, 12}), number(100)},
    {name({1, 1, 1, 12, 3, 1}), number(100)},
    {name({1, 1, 1, 2, 3}), five_octet_integer},
    {name({1, 1, 1, 3, 3}), number(1)},
    {name({1, 1, 1, 8, 3}), number(2)},
    {name({1, 1, 1, 9, 3}), text("")},
    {name({1, 1, 1, 9, 3}), text(std::string(33, 's'))},
    {name({1, 1, 1, 11, 3}), text("\x02\x04")},
    {name({1, 1, 1, 99, 3}), number(1)},
    {name({1, 1, 2, 12, 3}), number(100)},
    {name({1, 1, 1}), number(1)},
    {name({1, 1}), number(1)},
    // dot11AuthenticationAlgorithmsTable
    {name({1, 2, 1, 3, 3, 1}), number(2)},
    {name({1, 2, 1, 3, 7, 2}), number(3)},
    {name({1, 2, 1, 3, 3, 9}), number(1)},
    {name({1, 2, 1, 3, 3}), number(1)},
    {name({1, 2, 1, 2, 3, 1}), number(1)},
    // dot11WEPDefaultKeysTable
    {name({1, 3, 1, 2, 3, 1}), text("12345")},
    {name({1, 3, 1, 2, 3, 1}), text(std::string(13, 'k'))},
    {name({1, 3, 1, 2, 3, 5}), text("12345")},
    // dot11WEPKeyMappingsTable
    {name({1, 4, 1, 2, 3, 1}), text("\x11\x22\x33\x44\x55\x66")},
    {name({1, 4, 1, 3, 3, 1}), number(1)},
    {name({1, 4, 1, 3, 3, 2}), number(2)},
    {name({1, 4, 1, 3, 3, 1}), {no_such_instance, ""}},
    {name({1, 4, 1, 3, 3, 1}), five_octet_integer},
    {name({1, 4, 1, 4, 3, 1}), text("12345")},
    {name({1, 4, 1, 4, 3, 1}), text("")},
    {name({1, 4, 1, 5, 3, 1}), number(6)},
    {name({1, 4, 1, 5, 3, 1}), number(4)},
    {name({1, 4, 1, 6, 3, 1}), number(1)},
    {name({1, 4}), number(1)},
    // dot11PrivacyTable
    {name({1, 5, 1, 1, 3}), number(1)},
    {name({1, 5, 1, 1, 3}), number(-1)},
    {name({1, 5, 1, 3, 3}), number(4000000)},
    {name({1, 5, 1, 5, 3}), number(1, counter32)},
};

const std::vector<Varbind> mac_varbinds = {
    // dot11OperationTable
    {name({2, 1, 1, 2, 3}), number(2347)},
    {name({2, 1, 1, 5, 3}), number(255)},
    {name({2, 1, 1, 8, 3}), text("maker")},
    // dot11CountersTable
    {name({2, 2, 1, 1, 3}), number(0, counter32)},
    {name({2, 2, 1, 1, 9}), number(0)},
    // dot11GroupAddressesTable. (A NULL of type 5 is left out: some agents refuse it before any handler sees it.)
    {name({2, 3, 1, 2, 3, 1}), text("\x01\x80\x5e\x7f\xff\xfa")},
    {name({2, 3, 1, 3, 3, 1}), number(4)},
    {name({2, 3, 1, 3, 3, 1}), number(1)},
    {name({2, 3, 1, 2, 3, 1}), {end_of_mib_view, ""}},
};

const std::vector<Varbind> resource_and_phy_varbinds = {
    // dot11ResourceInfoTable
    {name({3, 1, 2, 1, 2, 3}), text("maker")},
    // dot11PhyOperationTable
    {name({4, 1, 1, 2, 3}), number(-2147483648)},
    {name({4, 1, 1, 1, 3}), number(1)},
    // dot11PhyTxPowerTable
    {name({4, 3, 1, 10, 3}), number(8)},
    {name({4, 3, 1, 10, 3}), number(9)},
    // dot11PhyDSSSTable
    {name({4, 5, 1, 1, 3}), number(14)},
    {name({4, 5, 1, 1, 7}), number(15)},
    {name({4, 5, 1, 3, 3}), number(3)},
    // dot11RegDomainsSupportedTable, and the supported data rates
    {name({4, 7, 1, 2, 3, 1}), number(16)},
    {name({4, 9, 1, 2, 3, 1}), number(2)},
    {name({4, 10, 1, 2, 3, 1}), number(2)},
    // dot11PhyHRDSSSTable and dot11PhyERPTable
    {name({4, 12, 1, 1, 3}), number(1)},
    {name({4, 14, 1, 2, 3}), number(1)},
    {name({4, 14, 1, 5, 9}), number(2)},
    {name({4, 14, 1, 6, 3}), number(3)},
    {name({4, 14, 1, 1, 3}), number(1)},
    // no table of ours
    {name({4, 2, 1, 1, 3}), number(1)},
    {name({}), {object_id, "\x2a"}},
};

}  // namespace

void set_up(ScriptedDevice& device) {
    device.add_interface("wlan0", 3);
    device.add_interface("wlan1", 7);
    device.set("interface", "wlan0", "bss", "b0");
    device.set("bss", "b0", "radio", "r0");
    device.set("radio", "r0", "beacon-interval", "100");
    device.set("radio", "r0", "fragmentation-threshold", "2300");
    device.set("radio", "r0", "rts-threshold", "2000");
    device.set("bss", "b0", "open-system-authentication", "on");
    device.set("interface", "wlan0", "ssid", "access");
    device.set("interface", "wlan0", "wep-key-1", "abcde");
    device.set("interface", "wlan0", "dot11-privacy-invoked", "1");
    device.set("interface", "wlan0", "dot11-current-reg-domain", "48");
    device.set("radio", "wlan0", "channel", "11");
}

const Device& device_seen() {
    static const Device device = {
        {
            {name({1, 1, 1, 2, 3}), number(100)},                    // dot11MediumOccupancyLimit
            {name({1, 1, 1, 3, 3}), number(2)},                      // dot11CFPollable
            {name({1, 1, 1, 8, 3}), number(1)},                      // dot11PowerManagementMode
            {name({1, 1, 1, 9, 3}), text("access")},                 // dot11DesiredSSID
            {name({1, 1, 1, 12, 3}), number(100)},                   // dot11BeaconPeriod
            {name({1, 1, 1, 12, 7}), number(1)},                     //
            {name({1, 2, 1, 2, 3, 1}), number(1)},                   // dot11AuthenticationAlgorithm
            {name({1, 2, 1, 3, 3, 1}), number(1)},                   // dot11AuthenticationAlgorithmsEnable
            {name({1, 2, 1, 3, 7, 2}), number(2)},                   //
            {name({1, 3, 1, 2, 3, 1}), text("abcde")},               // dot11WEPDefaultKeyValue
            {name({1, 5, 1, 1, 3}), number(1)},                      // dot11PrivacyInvoked
            {name({1, 5, 1, 3, 3}), number(10, gauge32)},            // dot11WEPKeyMappingLength
            {name({1, 5, 1, 5, 3}), number(0, counter32)},           // dot11WEPICVErrorCount
            {name({2, 1, 1, 2, 3}), number(2000)},                   // dot11RTSThreshold
            {name({2, 1, 1, 5, 3}), number(2300)},                   // dot11FragmentationThreshold
            {name({2, 1, 1, 8, 3}), text("Vantorix")},               // dot11ManufacturerID
            {name({2, 2, 1, 1, 3}), number(0, counter32)},           // dot11TransmittedFragmentCount
            {name({3, 1, 2, 1, 2, 3}), text(std::string(1, '\0'))},  // dot11manufacturerName
            {name({4, 1, 1, 2, 3}), number(48)},                     // dot11CurrentRegDomain
            {name({4, 3, 1, 10, 3}), number(1)},                     // dot11CurrentTxPowerLevel
            {name({4, 5, 1, 1, 3}), number(11)},                     // dot11CurrentChannel
            {name({4, 5, 1, 1, 7}), number(6)},                      //
            {name({4, 7, 1, 2, 3, 1}), number(48)},                  // dot11RegDomainsSupportValue
        },
        {
            {name({1, 1}), {{3}, {7}}},
            {name({1, 2}), {{3, 1}, {3, 2}, {7, 1}, {7, 2}}},
            {name({1, 3}), {{3, 1}, {3, 2}, {3, 3}, {3, 4}, {7, 1}, {7, 2}, {7, 3}, {7, 4}}},
            {name({1, 5}), {{3}, {7}}},
            {name({2, 1}), {{3}, {7}}},
            {name({2, 2}), {{3}, {7}}},
            {name({3, 1, 2}), {{3}, {7}}},
            {name({4, 1}), {{3}, {7}}},
            {name({4, 3}), {{3}, {7}}},
            {name({4, 5}), {{3}, {7}}},
            {name({4, 7}), {{3, 1}, {7, 1}}},
        },
    };
    return device;
}

const std::vector<Varbind>& representative_varbinds() {
    static const std::vector<Varbind> varbinds = [] {
        std::vector<Varbind> all;
        for (const auto& some : {station_management_varbinds, mac_varbinds, resource_and_phy_varbinds})
            all.insert(all.end(), some.begin(), some.end());
        return all;
    }();
    return varbinds;
}
