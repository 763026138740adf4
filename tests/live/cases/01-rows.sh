# Each started access point is a row, with what the kernel and hostapd say of it
must 'a collector and an agent' serve
expect_soon 'rows' 3 rows
columns=(1.1.1.1 1.1.1.7 1.1.1.9 1.1.1.12 1.1.1.13 1.1.1.23 1.5.1.1 2.1.1.1 2.1.1.2 2.1.1.3 2.1.1.4 2.1.1.5 4.1.1.2 4.5.1.1)

# Privacy is 1 for yes, 2 for no. A threshold that is off is 2347 or 2346.
row_is() {
    local name=$1 phy=$2 privacy=$3 mac found
    mac=$(mac_by_sysfs "$name")
    read -ra found <<<"$(hex_values "$name" "${columns[@]}")"
    expect "$name: dot11StationID, dot11MACAddress" "$mac $mac" "${found[0]} ${found[7]}"
    expect "$name: dot11PrivacyOptionImplemented, dot11PrivacyInvoked" "$privacy $privacy" "${found[1]} ${found[6]}"
    expect "$name: dot11DesiredSSID" "$(ssid_by_hostapd "$name" | octets)" "${found[2]}"
    expect "$name: dot11BeaconPeriod" "$(by_hostapd "$name" beacon_int)" "${found[3]}"
    expect "$name: dot11DTIMPeriod" "$(by_hostapd "$name" dtim_period)" "${found[4]}"
    expect "$name: dot11CountryString" "$(printf '%s ' "$(country_by_iw)" | octets)" "${found[5]}"
    expect "$name: dot11RTSThreshold" "$(or_off 2347 rts_by_iw "$phy")" "${found[8]}"
    expect "$name: dot11ShortRetryLimit, dot11LongRetryLimit" '7 4' "${found[9]} ${found[10]}"
    expect "$name: dot11FragmentationThreshold" "$(or_off 2346 fragmentation_by_iw "$phy")" "${found[11]}"
    expect "$name: dot11CurrentRegDomain of Europe" 48 "${found[12]}"
    expect "$name: dot11CurrentChannel" "$(channel_by_iw "$name")" "${found[13]}"
}
row_is wlan0 phy0 1
row_is wlan0_1 phy0 2
row_is wlan1 phy1 1
expect 'channel, thresholds of phy0 are those of its configuration' '6 2000 1600' \
    "$(channel_by_iw wlan0) $(rts_by_iw phy0) $(fragmentation_by_iw phy0)"
expect 'open system and shared key of wlan0' '1 2' "$(get $dot11.1.2.1.3."$(index wlan0)".{1,2} | in_a_line)"
expect 'cfql lint' 0 "$("$cfql" lint | sed -n 's/^\([0-9]*\) warnings.*/\1/p')"
