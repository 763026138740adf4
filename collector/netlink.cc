#include "netlink.h"

#include <poll.h>
#include <sys/socket.h>

#include <errno.h>
#include <string.h>

#include "clock.h"

namespace collector {

namespace {

constexpr size_t buffer_size = 32768;             // the most that the kernel sends in one datagram
constexpr int64_t answer_limit = 2000;            // ms
constexpr unsigned most_events_at_once = 100000;  // more than any buffer holds

enum class Part : uint8_t { data, end, foreign };

// What `message` is in the answer to the request of that `sequence`; `error` is set at the end.
Part part(const nlmsghdr* message, uint32_t sequence, int& error) {
    if (message->nlmsg_seq != sequence) return Part::foreign;
    if (message->nlmsg_type == NLMSG_DONE) return Part::end;
    if (message->nlmsg_type != NLMSG_ERROR) return Part::data;
    int32_t code = -EBADMSG;
    if (mnl_nlmsg_get_payload_len(message) >= sizeof(nlmsgerr)) {
        memcpy(&code, mnl_nlmsg_get_payload(message), sizeof code);
    }
    error = -code;
    return Part::end;
}

}  // namespace

Request::Request(uint16_t type, uint16_t flags) : buffer_{} {
    nlmsghdr* header = mnl_nlmsg_put_header(buffer_);
    header->nlmsg_type = type;
    header->nlmsg_flags = static_cast<uint16_t>(NLM_F_REQUEST | flags);
}

int Netlink::open(int bus) {
    socket_.reset(mnl_socket_open2(bus, SOCK_CLOEXEC));
    if (!socket_) return errno;
    buffer_.resize(buffer_size);
    if (mnl_socket_bind(socket_.get(), 0, MNL_SOCKET_AUTOPID) == 0) return 0;
    const int error = errno;
    close();
    return error;
}

int Netlink::join(uint32_t group) {
    return mnl_socket_setsockopt(socket_.get(), NETLINK_ADD_MEMBERSHIP, &group, sizeof group) == 0 ? 0 : errno;
}

void Netlink::enlarge(int size) {
    if (setsockopt(descriptor(), SOL_SOCKET, SO_RCVBUFFORCE, &size, sizeof size) == 0) return;
    setsockopt(descriptor(), SOL_SOCKET, SO_RCVBUF, &size, sizeof size);
}

// Reads one datagram of the kernel into the buffer; EAGAIN if there is none. Those of other processes are dropped.
int Netlink::receive(size_t& size) {
    for (;;) {
        sockaddr_nl sender = {};
        socklen_t length = sizeof sender;
        const ssize_t got = recvfrom(descriptor(), buffer_.data(), buffer_.size(), MSG_DONTWAIT | MSG_TRUNC,
                                     reinterpret_cast<sockaddr*>(&sender), &length);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return errno;
        if (length < sizeof sender || sender.nl_pid != 0) continue;
        if (static_cast<size_t>(got) > buffer_.size()) return EMSGSIZE;
        size = static_cast<size_t>(got);
        return 0;
    }
}

int Netlink::answer(uint32_t sequence, const Visit& visit, int64_t deadline) {
    bool interrupted = false;
    for (;;) {
        size_t size = 0;
        const int status = receive(size);
        if (status == EAGAIN) {
            const int64_t left = deadline - now_ms();
            if (left <= 0) return ETIMEDOUT;
            pollfd wanted = {descriptor(), POLLIN, 0};
            poll(&wanted, 1, static_cast<int>(left));
            continue;
        }
        if (status != 0) return status;
        int left = static_cast<int>(size);
        for (const auto* message = reinterpret_cast<const nlmsghdr*>(buffer_.data()); mnl_nlmsg_ok(message, left);
             message = mnl_nlmsg_next(message, &left)) {
            int error = 0;
            const Part kind = part(message, sequence, error);
            interrupted = interrupted || (kind != Part::foreign && (message->nlmsg_flags & NLM_F_DUMP_INTR) != 0);
            if (kind == Part::data) visit(message);
            if (kind == Part::end) return error != 0 || !interrupted ? error : EINTR;
        }
    }
}

int Netlink::ask(Request& request, const Visit& visit) {
    nlmsghdr* header = request.header();
    header->nlmsg_seq = ++sequence_;
    if (mnl_socket_sendto(socket_.get(), header, header->nlmsg_len) < 0) return errno;
    return answer(sequence_, visit, now_ms() + answer_limit);
}

int Netlink::drain(const Visit& visit) {
    int lost = 0;
    for (unsigned i = 0; i < most_events_at_once; ++i) {
        size_t size = 0;
        const int status = receive(size);
        if (status == EAGAIN) return lost;
        if (status == ENOBUFS || status == EMSGSIZE) {
            lost = ENOBUFS;
            continue;
        }
        if (status != 0) return status;
        int left = static_cast<int>(size);
        for (const auto* message = reinterpret_cast<const nlmsghdr*>(buffer_.data()); mnl_nlmsg_ok(message, left);
             message = mnl_nlmsg_next(message, &left)) {
            visit(message);
        }
    }
    return ENOBUFS;
}

}  // namespace collector
