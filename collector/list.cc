#include "list.h"

#include <algorithm>

#include "contents.h"
#include "text.h"

namespace collector {

namespace {

using cfql::tool::counted;
using cfql::tool::printable;
using cfql::tool::quoted;

std::string described(const AccessPoint& point) {
    const std::string ssid = point.hostapd && point.hostapd->ssid ? *point.hostapd->ssid : point.interface.ssid;
    const std::optional<uint32_t> number =
        point.interface.frequency ? channel(*point.interface.frequency) : std::nullopt;
    return "served as " + printable(point.name) + ", ssid " + quoted(ssid) +
           (number ? ", channel " + std::to_string(*number) : "") + ", " + counted(point.stations, "station") +
           (point.hostapd ? "" : ", without hostapd");
}

std::string name_of(const Observed& observed, uint32_t radio) {
    const auto found = std::ranges::find_if(observed.radios, [&](const Radio& r) { return r.index == radio; });
    return found == observed.radios.end() ? "number " + std::to_string(radio) : printable(found->name);
}

}  // namespace

std::string list(const Observed& observed) {
    std::map<uint32_t, std::string> radios;  // number: lines
    for (const AccessPoint& point : observed.access_points)
        radios[point.interface.radio] += "  " + printable(point.interface.name) + ": " + described(point) + '\n';
    for (const LeftOut& left : observed.left_out)
        radios[left.interface.radio] += "  " + printable(left.interface.name) + ": not served: " + left.cause + '\n';
    std::string text;
    for (const auto& [radio, lines] : radios)
        text += "radio " + name_of(observed, radio) + '\n' + lines;
    return text.empty() ? "no wireless interfaces\n" : text;
}

}  // namespace collector
