// Replaces libmnl for machines where Debian has none: the routines that the readers of messages and their tests call.
// See cross/parsers.
#include <libmnl/libmnl.h>

#include <string.h>

namespace {

char* end_of(nlmsghdr* message) {
    return reinterpret_cast<char*>(message) + MNL_ALIGN(message->nlmsg_len);
}

}  // namespace

nlmsghdr* mnl_nlmsg_put_header(void* buffer) {
    memset(buffer, 0, MNL_NLMSG_HDRLEN);
    auto* message = static_cast<nlmsghdr*>(buffer);
    message->nlmsg_len = MNL_NLMSG_HDRLEN;
    return message;
}

void* mnl_nlmsg_put_extra_header(nlmsghdr* message, size_t size) {
    char* header = end_of(message);
    memset(header, 0, MNL_ALIGN(size));
    message->nlmsg_len += MNL_ALIGN(size);
    return header;
}

void* mnl_nlmsg_get_payload(const nlmsghdr* message) {
    return reinterpret_cast<char*>(const_cast<nlmsghdr*>(message)) + MNL_NLMSG_HDRLEN;
}

size_t mnl_nlmsg_get_payload_len(const nlmsghdr* message) {
    return message->nlmsg_len - MNL_NLMSG_HDRLEN;
}

uint16_t mnl_attr_get_type(const nlattr* attribute) {
    return attribute->nla_type & NLA_TYPE_MASK;
}

uint16_t mnl_attr_get_payload_len(const nlattr* attribute) {
    return static_cast<uint16_t>(attribute->nla_len - MNL_ATTR_HDRLEN);
}

void* mnl_attr_get_payload(const nlattr* attribute) {
    return reinterpret_cast<char*>(const_cast<nlattr*>(attribute)) + MNL_ATTR_HDRLEN;
}

bool mnl_attr_ok(const nlattr* attribute, int left) {
    return left >= static_cast<int>(sizeof *attribute) && attribute->nla_len >= sizeof *attribute &&
           attribute->nla_len <= left;
}

nlattr* mnl_attr_next(const nlattr* attribute) {
    return reinterpret_cast<nlattr*>(reinterpret_cast<char*>(const_cast<nlattr*>(attribute)) +
                                     MNL_ALIGN(attribute->nla_len));
}

void mnl_attr_put(nlmsghdr* message, uint16_t type, size_t size, const void* data) {
    auto* attribute = reinterpret_cast<nlattr*>(end_of(message));
    memset(attribute, 0, MNL_ATTR_HDRLEN + MNL_ALIGN(size));
    attribute->nla_type = type;
    attribute->nla_len = static_cast<uint16_t>(MNL_ATTR_HDRLEN + size);
    if (size > 0) memcpy(mnl_attr_get_payload(attribute), data, size);
    message->nlmsg_len += MNL_ALIGN(attribute->nla_len);
}

nlattr* mnl_attr_nest_start(nlmsghdr* message, uint16_t type) {
    auto* nest = reinterpret_cast<nlattr*>(end_of(message));
    mnl_attr_put(message, NLA_F_NESTED | type, 0, nullptr);
    return nest;
}

void mnl_attr_nest_end(nlmsghdr* message, nlattr* nest) {
    nest->nla_len = static_cast<uint16_t>(end_of(message) - reinterpret_cast<char*>(nest));
}
