// A netlink socket: questions that are answered at once, and events that come by themselves.
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
    // All calls answer 0 or an errno value.
    int open(int bus);
    void close() { socket_.reset(); }
    bool is_open() const { return socket_ != nullptr; }
    int descriptor() const { return mnl_socket_get_fd(socket_.get()); }
    int join(uint32_t group);

    // Asks for room for SIZE octets of events that were not read yet; gets less without CAP_NET_ADMIN.
    void enlarge(int size);

    // Sends `request` and gives every part of the answer to `visit`. ETIMEDOUT when the kernel does not end it within
    // two seconds, EINTR when what was listed changed meanwhile: ask again.
    int ask(Request& request, const Visit& visit);

    // Gives every event that is there to `visit`, without waiting. ENOBUFS: some were lost.
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
