// A netlink socket, for requests and their answers, or for events.
#pragma once

#include <libmnl/libmnl.h>

#include <stdint.h>
#include <functional>
#include <memory>
#include <vector>

namespace collector {

using Visit = std::function<void(const nlmsghdr*)>;

// A request under construction: libmnl's calls add to header().
class Request {
  public:
    Request(uint16_t type, uint16_t flags);
    nlmsghdr* header() { return reinterpret_cast<nlmsghdr*>(buffer_); }

  private:
    alignas(nlmsghdr) char buffer_[1024];
};

class Netlink {
  public:
    // All calls return 0 or an errno value.
    int open(int bus);
    void close() { socket_.reset(); }
    bool is_open() const { return socket_ != nullptr; }
    int descriptor() const { return mnl_socket_get_fd(socket_.get()); }
    int join(uint32_t group);

    // Asks for a buffer of `size` octets for unread events; without CAP_NET_ADMIN it is smaller.
    void enlarge(int size);

    // Sends `request` and calls `visit` for each message of the answer. ETIMEDOUT if the kernel has not finished after
    // two seconds; EINTR if what it lists changed meanwhile: ask again.
    int ask(Request& request, const Visit& visit);

    // Calls `visit` for each pending event, without waiting. ENOBUFS: some were lost.
    int drain(const Visit& visit);

  private:
    struct Close {
        void operator()(mnl_socket* socket) const { mnl_socket_close(socket); }
    };
    int receive(size_t& size);
    int answer(uint32_t sequence, const Visit& visit, int64_t deadline);

    std::unique_ptr<mnl_socket, Close> socket_;
    std::vector<char> buffer_;
    uint32_t sequence_ = 0;
};

}  // namespace collector
