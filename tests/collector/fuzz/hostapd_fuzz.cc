// Feeds the readers of hostapd's answers with any text.
#include "demand.h"
#include "hostapd.h"

using namespace collector;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    DEMAND(unescaped(text).size() <= text.size());
    HostapdBss bss;
    const bool is_status = read_status(text, "wlan0", bss);
    DEMAND(is_status || (!bss.enabled && !bss.ssid && !bss.beacon && !bss.dtim));
    DEMAND(!bss.ssid || (!bss.ssid->empty() && bss.ssid->size() <= 32 && bss.ssid->find('\0') == std::string::npos));
    DEMAND(!bss.dtim || (*bss.dtim >= 1 && *bss.dtim <= 255));
    const bool is_config = read_config(text, bss);
    DEMAND(is_config == bss.suites.has_value());
    DEMAND(bss.wpa <= 3);
    for (const char c : bss.suites.value_or(""))
        DEMAND(c >= ' ' && c <= 'Z');
    return 0;
}
