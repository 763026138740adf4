// The resource information's rows, on a scripted device.
#include "backend/mac/resource_info.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "rows.h"
#include "scripted.h"

using namespace dot11;

namespace {

using std::to_string;
using testing::ElementsAre;

Fields shown(const ResourceInfoRow& row) {
    EXPECT_LE(row.dot11manufacturerOUILen, 8U);
    return {
        {"ifIndex", to_string(row.ifIndex)},
        {"OUI", std::string(reinterpret_cast<const char*>(row.dot11manufacturerOUI), row.dot11manufacturerOUILen)},
        {"name", row.dot11manufacturerName},
        {"name length", to_string(row.dot11manufacturerNameLen)},
        {"product", row.dot11manufacturerProductName},
        {"product length", to_string(row.dot11manufacturerProductNameLen)},
        {"version", row.dot11manufacturerProductVersion},
        {"version length", to_string(row.dot11manufacturerProductVersionLen)},
    };
}

const Fields defaults = {
    {"ifIndex", "3"}, {"OUI", "XYZ"},          {"name", ""},    {"name length", "1"},
    {"product", ""},  {"product length", "1"}, {"version", ""}, {"version length", "1"},
};

class ResourceInfo : public testing::Test {
  protected:
    ResourceInfo() {
        memset(&rinfo[0], 0xee, sizeof rinfo[0]);
        device.add_interface("wlan0", 3);
    }

    void link_radio() {
        device.set("interface", "wlan0", "bss", "b0");
        device.set("bss", "b0", "radio", "r0");
    }

    void store_everything() {
        link_radio();
        device.set("radio", "r0", "manufacturer-oui", "00:10:18");
        device.set("radio", "r0", "manufacturer-name", "Acme Ltd");
        device.set("radio", "r0", "manufacturer-product-name", "AP-24");
        device.set("radio", "r0", "manufacturer-product-version", "1.2.0");
    }

    static int fill() {
        EXPECT_EQ(GetResourceInfoEntries(), 1);
        const int result = GetResourceInfoTableData();
        EXPECT_TRUE(all_released(res_info));
        return result;
    }

    static Fields filled() {
        EXPECT_EQ(fill(), 1);
        return shown(rinfo[0]);
    }

    ScriptedDevice device;
};

TEST_F(ResourceInfo, ReadsTheKeysInOrder) {
    link_radio();
    filled();
    EXPECT_THAT(device.calls, ElementsAre("grid interface type=service-set",         //
                                          "get interface wlan0 bss",                 //
                                          "get bss b0 radio",                        //
                                          "get radio r0 manufacturer-oui",           //
                                          "get bss b0 radio",                        //
                                          "get radio r0 manufacturer-name",          //
                                          "get bss b0 radio",                        //
                                          "get radio r0 manufacturer-product-name",  //
                                          "get bss b0 radio",                        //
                                          "get radio r0 manufacturer-product-version"));
}

TEST_F(ResourceInfo, HasADefaultForEveryMissingKey) {
    EXPECT_EQ(filled(), defaults);
    link_radio();
    EXPECT_EQ(filled(), defaults);
}

TEST_F(ResourceInfo, ServesEveryKeyUntilItVanishes) {
    store_everything();
    EXPECT_EQ(filled(), (Fields{{"ifIndex", "3"},
                                {"OUI", "00:10:18"},
                                {"name", "Acme Ltd"},
                                {"name length", "8"},
                                {"product", "AP-24"},
                                {"product length", "5"},
                                {"version", "1.2.0"},
                                {"version length", "5"}}));
    device.clear_store();
    device.add_interface("wlan0", 3);
    EXPECT_EQ(filled(), defaults);
}

struct TextFact {
    const char* key;
    const char* field;
    size_t room;
    const char* absent;
};

const TextFact texts[] = {
    {"manufacturer-oui", "OUI", 8, "XYZ"},
    {"manufacturer-name", "name", 255, ""},
    {"manufacturer-product-name", "product", 255, ""},
    {"manufacturer-product-version", "version", 255, ""},
};

TEST_F(ResourceInfo, ClipsTexts) {
    link_radio();
    for (const TextFact& text : texts) {
        for (const size_t length : {1U, 2U, 3U, 4U, 5U, 7U, 8U, 9U, 254U, 255U, 256U, 257U, 4096U}) {
            device.set("radio", "r0", text.key, std::string(length, '\xfe'));
            const size_t kept = length < text.room ? length : text.room;
            const Fields fields = filled();
            EXPECT_EQ(fields.at(text.field), std::string(kept, '\xfe')) << text.key << " of " << length;
            const auto counted = fields.find(std::string(text.field) + " length");
            EXPECT_TRUE(counted == fields.end() || counted->second == to_string(kept)) << text.key << " of " << length;
        }
        device.unset("radio", "r0", text.key);
        EXPECT_EQ(filled(), defaults);
    }
}

TEST_F(ResourceInfo, CountsUnfitAnswersAsAbsent) {
    link_radio();
    for (const TextFact& text : texts) {
        for (const std::vector<ScriptedDevice::Pair>& nodes : std::vector<std::vector<ScriptedDevice::Pair>>{
                 {{text.key, ""}},
                 {{text.key, std::nullopt}},
                 {{std::nullopt, "value"}},
                 {{"other", "value"}, {text.key, "value"}},
             }) {
            device.answer("radio", "r0", text.key, nodes);
            EXPECT_EQ(filled(), defaults) << text.key << testing::PrintToString(nodes);
        }
    }
}

TEST_F(ResourceInfo, HasDefaultsBehindAMissingLink) {
    for (const bool first : {true, false}) {
        for (const char* value : {"", "nowhere"}) {
            store_everything();
            if (first)
                device.set("interface", "wlan0", "bss", value);
            else
                device.set("bss", "b0", "radio", value);
            EXPECT_EQ(filled(), defaults) << value;
        }
    }
}

// The first two allocations are the enumeration's; a value takes one each for its BSS, its radio and itself.
TEST_F(ResourceInfo, LosesOneFieldWithoutMemoryForIt) {
    store_everything();
    const Fields oui = {{"OUI", "XYZ"}};
    const Fields name = {{"name", ""}, {"name length", "1"}};
    const Fields product = {{"product", ""}, {"product length", "1"}};
    const Fields version = {{"version", ""}, {"version length", "1"}};
    const Losses losses = {Fields{}, Fields{}, oui,     oui,     oui,     name,    name,
                           name,     product,  product, product, version, version, version};
    expect_losses(device, losses, fill, [] { return shown(rinfo[0]); });
}

}  // namespace
