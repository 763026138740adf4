#include "names.h"

#include <errno.h>
#include <string.h>
#include <algorithm>

#include "store/interfaces.h"
#include "text.h"

namespace collector {

namespace {

using cfql::tool::quoted;
using dot11::longest_interface_name;

constexpr unsigned most_names = 100;  // to try for one interface

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

bool are_digits(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, is_digit);
}

}  // namespace

bool is_made_name(std::string_view name) {
    const size_t middle = name.find("ap");
    return name.size() <= longest_interface_name && middle != std::string_view::npos &&
           are_digits(name.substr(0, middle)) && are_digits(name.substr(middle + 2));
}

std::optional<std::string> made_name(uint32_t radio, unsigned nth) {
    if (nth >= most_names) return std::nullopt;
    // Two digits for the radio leave one for the access point: its tens are added to the radio's number.
    const uint32_t front = radio % 100;
    if (front < 10) return std::to_string(front) + "ap" + std::to_string(nth);
    return std::to_string(10 + (front - 10 + nth / 10) % 90) + "ap" + std::to_string(nth % 10);
}

Names::Served Names::served(uint32_t interface, const std::string& name, uint32_t radio,
                            const std::string* configured) {
    if (!configured && name.size() <= longest_interface_name) return {name, {}};
    if (configured && *configured == name) return {name, {}};
    const auto known = aliases_.find(interface);
    if (known != aliases_.end() && (!configured || *configured == known->second) &&
        links_.index_of(known->second) == interface) {
        return {known->second, {}};
    }
    aliases_.erase(interface);
    Served found = alias(interface, name, radio, configured);
    if (!found.name.empty()) aliases_[interface] = found.name;
    return found;
}

// The name that an earlier run gave to the interface, or a new one.
Names::Served Names::alias(uint32_t interface, const std::string& name, uint32_t radio, const std::string* configured) {
    std::vector<std::string> present;
    if (const int error = links_.alternative_names(interface, present)) {
        return {{}, std::string("its other names cannot be read: ") + strerror(error)};
    }
    const auto ours = std::ranges::find_if(present, [&](const std::string& candidate) {
        return configured ? candidate == *configured : is_made_name(candidate);
    });
    if (ours != present.end()) return {*ours, {}};
    if (mode_ == Mode::refused) return {{}, "its name is longer than 5 characters, and --no-aliases is given"};
    if (mode_ == Mode::inspect) return {{}, "it has no short name yet: one is set when the collector runs"};
    return add(interface, name, radio, configured);
}

Names::Served Names::add(uint32_t interface, const std::string& name, uint32_t radio, const std::string* configured) {
    if (configured) {
        const int error = links_.add_name(interface, *configured);
        if (error == 0) return {*configured, {}};
        return refusal(error, name, *configured);
    }
    int error = EEXIST;
    for (unsigned nth = 0; error == EEXIST; ++nth) {
        const std::optional<std::string> candidate = made_name(radio, nth);
        if (!candidate) break;
        error = links_.add_name(interface, *candidate);
        if (error == 0) return {*candidate, {}};
    }
    return refusal(error, name, {});
}

Names::Served Names::refusal(int error, const std::string& name, const std::string& alias) const {
    const std::string rename = "rename the interface to at most 5 characters";
    switch (error) {
        case EPERM:
            return {{},
                    "its name is longer than 5 characters, and setting a short one takes CAP_NET_ADMIN: grant it, or " +
                        rename};
        case EOPNOTSUPP:
        case EINVAL:
            return {
                {},
                "its name is longer than 5 characters, and kernels before 5.5 have no alternative names: " + rename};
        case EEXIST:
            if (alias.empty()) return {{}, "every short name is taken: give it one in the configuration"};
            return {{},
                    "the name " + quoted(alias) + " of the configuration is another interface's: choose another for " +
                        quoted(name)};
        default:
            return {{}, std::string("no short name can be set: ") + strerror(error) + "; " + rename};
    }
}

void Names::forget(const std::function<bool(uint32_t)>& gone) {
    std::erase_if(aliases_, [&](const auto& entry) { return gone(entry.first); });
}

std::vector<std::string> Names::remove(uint32_t interface, const std::string* configured) {
    std::vector<std::string> present, removed;
    links_.alternative_names(interface, present);
    for (const std::string& name : present) {
        const bool ours = is_made_name(name) || (configured && name == *configured);
        if (ours && links_.remove_name(interface, name) == 0) removed.push_back(name);
    }
    return removed;
}

}  // namespace collector
