// Attributes of a netlink message, read in place. Every access is bounded by the message; an attribute of a wrong
// length counts as absent.
#pragma once

#include <libmnl/libmnl.h>

#include <string.h>
#include <optional>
#include <string_view>

namespace collector {

class Attributes {
  public:
    Attributes(const void* data, size_t size)
        : data_(static_cast<const char*>(data)), end_(static_cast<const char*>(data) + size) {}

    // Those after the message's fixed header of `header` octets.
    static Attributes of(const nlmsghdr* message, size_t header) {
        const size_t size = mnl_nlmsg_get_payload_len(message);
        const size_t skip = MNL_ALIGN(header);
        const char* payload = static_cast<const char*>(mnl_nlmsg_get_payload(message));
        return size < skip ? Attributes(payload, 0) : Attributes(payload + skip, size - skip);
    }

    static Attributes in(const nlattr* nest) { return {mnl_attr_get_payload(nest), mnl_attr_get_payload_len(nest)}; }

    // Calls `visit(type, attribute)` for each.
    template <class Visit>
    void each(Visit visit) const {
        const auto* attribute = reinterpret_cast<const nlattr*>(data_);
        while (mnl_attr_ok(attribute, static_cast<int>(end_ - reinterpret_cast<const char*>(attribute)))) {
            visit(mnl_attr_get_type(attribute), attribute);
            attribute = mnl_attr_next(attribute);
        }
    }

  private:
    const char* data_;
    const char* end_;
};

// The attribute as a number in the host's byte order, which netlink uses.
template <class Number>
std::optional<Number> number(const nlattr* attribute) {
    Number value;
    if (mnl_attr_get_payload_len(attribute) != sizeof value) return std::nullopt;
    memcpy(&value, mnl_attr_get_payload(attribute), sizeof value);
    return value;
}

// Valid as long as the message.
inline std::string_view octets(const nlattr* attribute) {
    return {static_cast<const char*>(mnl_attr_get_payload(attribute)), mnl_attr_get_payload_len(attribute)};
}

// The text up to the first NUL.
inline std::string_view text(const nlattr* attribute) {
    const std::string_view all = octets(attribute);
    return all.substr(0, all.find('\0'));
}

}  // namespace collector
