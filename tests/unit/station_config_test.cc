// The station configuration's rows and writers, on a scripted device.
#include "backend/smt/station_config.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "scripted.h"

namespace {

using testing::ElementsAre;

class StationConfig : public testing::Test {
  protected:
    StationConfig() {
        memset(&row(), 0, sizeof row());
        device.add_interface("wlan0", 3);
    }

    static StationConfigRow& row() { return sinfo[0]; }

    void fill() {
        ASSERT_EQ(GetStationConfigEntries(), 1);
        ASSERT_EQ(GetStationConfigTableData(), 1);
    }

    ScriptedDevice device;
};

TEST_F(StationConfig, ReadsTheKeysInOrder) {
    device.set("interface", "wlan0", "bss", "b0");
    device.set("bss", "b0", "radio", "r0");
    fill();
    EXPECT_THAT(device.calls,
                ElementsAre("grid interface type=service-set",                             //
                            "get interface wlan0 mac",                                     //
                            "get interface wlan0 dot11-cf-pollable",                       //
                            "get interface wlan0 dot11-authentication-response-time-out",  //
                            "get interface wlan0 dot11-privacy-option-implemented",        //
                            "get interface wlan0 security",                                //
                            "get interface wlan0 ssid",                                    //
                            "get supported-rate wlan0 rate",                               //
                            "get interface wlan0 bss",                                     //
                            "get bss b0 radio",                                            //
                            "get radio r0 beacon-interval",                                //
                            "get bss b0 dtim-period",                                      //
                            "get bss b0 radio",                                            //
                            "get radio r0 dot11d",                                         //
                            "get interface wlan0 dot11-association-response-time-out",     //
                            "get interface wlan0 dot11-disassociate-reason",               //
                            "get interface wlan0 dot11-disassociate-station",              //
                            "get interface wlan0 dot11-deauthenticate-reason",             //
                            "get interface wlan0 dot11-deauthenticate-station",            //
                            "get interface wlan0 dot11-authenticate-fail-status",          //
                            "get interface wlan0 dot11-authenticate-fail-station",         //
                            "get system - country"));
}

}  // namespace
