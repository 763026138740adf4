// Netlink messages as the kernel sends them, made with libmnl.
#ifndef TESTS_COLLECTOR_MESSAGES_H
#define TESTS_COLLECTOR_MESSAGES_H

#include <libmnl/libmnl.h>
#include <linux/genetlink.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace messages {

// A message of generic netlink; the calls chain.
class Message {
  public:
    explicit Message(std::uint8_t command, std::uint16_t type = 0x1c) : buffer_(8192) {
        mnl_nlmsg_put_header(buffer_.data())->nlmsg_type = type;
        auto* header = static_cast<genlmsghdr*>(mnl_nlmsg_put_extra_header(get(), sizeof(genlmsghdr)));
        header->cmd = command;
    }

    nlmsghdr* get() { return reinterpret_cast<nlmsghdr*>(buffer_.data()); }

    Message& u8(std::uint16_t type, std::uint8_t value) { return put(type, &value, sizeof value); }
    Message& u16(std::uint16_t type, std::uint16_t value) { return put(type, &value, sizeof value); }
    Message& u32(std::uint16_t type, std::uint32_t value) { return put(type, &value, sizeof value); }
    Message& u64(std::uint16_t type, std::uint64_t value) { return put(type, &value, sizeof value); }
    Message& flag(std::uint16_t type) { return put(type, nullptr, 0); }
    Message& octets(std::uint16_t type, const std::string& value) { return put(type, value.data(), value.size()); }
    Message& text(std::uint16_t type, const std::string& value) { return put(type, value.c_str(), value.size() + 1); }

    template <class Fill>
    Message& nest(std::uint16_t type, Fill fill) {
        nlattr* start = mnl_attr_nest_start(get(), type);
        fill(*this);
        mnl_attr_nest_end(get(), start);
        return *this;
    }

  private:
    Message& put(std::uint16_t type, const void* data, std::size_t size) {
        mnl_attr_put(get(), type, size, data);
        return *this;
    }

    std::vector<char> buffer_;
};

}  // namespace messages

#endif
