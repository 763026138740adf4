#include "hostapd.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <errno.h>
#include <stddef.h>
#include <string.h>
#include <algorithm>
#include <charconv>
#include <optional>

#include "clock.h"

namespace collector {

namespace {

constexpr size_t longest_ssid = 32;
constexpr size_t longest_suites = 128;
constexpr size_t longest_answer = 8192;  // hostapd itself stops at 4096
constexpr size_t most_known = 1024;      // interfaces whose hostapd is remembered

int hex_value(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    return -1;
}

char plain_escape(char letter) {
    switch (letter) {
        case 'e':
            return '\033';
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        default:
            return letter;
    }
}

// Iterates over the lines "KEY=VALUE" of `text`.
template <class Visit>
void each_line(std::string_view text, Visit visit) {
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        const size_t sign = line.find('=');
        if (sign != std::string_view::npos) visit(line.substr(0, sign), line.substr(sign + 1));
    }
}

std::optional<uint32_t> count_between(std::string_view text, uint32_t least, uint32_t most) {
    uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < least || value > most) return std::nullopt;
    return value;
}

// An SSID as the store can hold it: cut off at a NUL.
std::optional<std::string> ssid_of(std::string_view escaped) {
    std::string ssid = unescaped(escaped);
    ssid.resize(std::min({ssid.size(), ssid.find('\0'), longest_ssid}));
    if (ssid.empty()) return std::nullopt;
    return ssid;
}

// "bss[3]" -> "[3]" for the name "bss".
std::string_view place_in(std::string_view key, std::string_view name) {
    if (!key.starts_with(name) || !key.ends_with(']')) return {};
    key.remove_prefix(name.size());
    return key.starts_with('[') ? key : std::string_view();
}

bool is_suites(std::string_view text) {
    return text.size() <= longest_suites && std::ranges::all_of(text, [](char c) {
               return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == ' ';
           });
}

}  // namespace

std::string unescaped(std::string_view text) {
    std::string made;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            made += text[i];
            continue;
        }
        const char letter = text[++i];
        const int high = letter == 'x' && i + 2 < text.size() ? hex_value(text[i + 1]) : -1;
        const int low = high >= 0 ? hex_value(text[i + 2]) : -1;
        if (low >= 0) {
            made += static_cast<char>(high << 4 | low);
            i += 2;
        } else {
            made += plain_escape(letter);
        }
    }
    return made;
}

bool read_status(std::string_view answer, std::string_view interface, HostapdBss& bss) {
    HostapdBss found = bss;
    bool has_state = false;
    std::string_view place;
    each_line(answer, [&](std::string_view key, std::string_view value) {
        if (key == "state") {
            has_state = true;
            found.enabled = value == "ENABLED";
        } else if (key == "beacon_int") {
            found.beacon = count_between(value, 1, 65535);
        } else if (key == "dtim_period") {
            found.dtim = count_between(value, 1, 255);
        } else if (const std::string_view at = place_in(key, "bss"); !at.empty() && value == interface) {
            place = at;
        } else if (!place.empty() && place_in(key, "ssid") == place) {
            found.ssid = ssid_of(value);
        }
    });
    if (has_state) bss = found;
    return has_state;
}

bool read_config(std::string_view answer, HostapdBss& bss) {
    HostapdBss found = bss;
    bool has_ssid = false;
    found.suites = "";
    found.wpa = 0;
    each_line(answer, [&](std::string_view key, std::string_view value) {
        if (key == "ssid") has_ssid = true;
        if (key == "wpa") found.wpa = static_cast<uint8_t>(count_between(value, 0, 3).value_or(0));
        if (key == "key_mgmt" && is_suites(value))
            found.suites = std::string(value.substr(0, value.find_last_not_of(' ') + 1));
    });
    if (has_ssid) bss = found;
    return has_ssid;
}

// ---- Sockets

namespace {

// A connection to one of hostapd's sockets.
class Connection {
  public:
    Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() {
        explicit_bzero(buffer_, sizeof buffer_);
        if (socket_ >= 0) close(socket_);
    }

    Answer open(const std::string& path);
    Answer ask(std::string_view command, std::string_view& answer);
    int64_t process() const { return process_; }  // who answered; 0: unknown

  private:
    Answer receive(std::string_view& answer);

    int socket_ = -1;
    int64_t process_ = 0;
    // Wipes the buffer: an answer to GET_CONFIG may hold a passphrase.
    char buffer_[longest_answer];
};

Answer answer_for(int error) {
    switch (error) {
        case ECONNREFUSED:
            return Answer::dead;
        case EACCES:
        case EPERM:
            return Answer::forbidden;
        case EAGAIN:  // its queue is full: it does not read
            return Answer::late;
        case EPROTOTYPE:
            return Answer::garbage;
        default:
            return Answer::absent;
    }
}

Answer Connection::open(const std::string& path) {
    sockaddr_un peer = {};
    peer.sun_family = AF_UNIX;
    if (path.size() >= sizeof peer.sun_path) return Answer::absent;
    path.copy(peer.sun_path, path.size());
    socket_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (socket_ < 0) return Answer::absent;
    // hostapd needs an address to answer to. The kernel assigns one without a file.
    sockaddr_un own = {};
    own.sun_family = AF_UNIX;
    const int yes = 1;
    if (setsockopt(socket_, SOL_SOCKET, SO_PASSCRED, &yes, sizeof yes) != 0 ||
        bind(socket_, reinterpret_cast<sockaddr*>(&own), sizeof own.sun_family) != 0) {
        return Answer::absent;
    }
    if (connect(socket_, reinterpret_cast<sockaddr*>(&peer), sizeof peer) != 0) return answer_for(errno);
    return Answer::told;
}

Answer Connection::receive(std::string_view& answer) {
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(ucred))];
    iovec place = {buffer_, sizeof buffer_};
    msghdr message = {};
    message.msg_iov = &place;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    const ssize_t size = recvmsg(socket_, &message, MSG_CMSG_CLOEXEC);
    if (size < 0) return answer_for(errno);
    for (cmsghdr* part = CMSG_FIRSTHDR(&message); part; part = CMSG_NXTHDR(&message, part)) {
        if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_CREDENTIALS) continue;
        ucred sender;
        memcpy(&sender, CMSG_DATA(part), sizeof sender);
        process_ = sender.pid;
    }
    if ((message.msg_flags & MSG_TRUNC) != 0) return Answer::garbage;
    answer = {buffer_, static_cast<size_t>(size)};
    return Answer::told;
}

Answer Connection::ask(std::string_view command, std::string_view& answer) {
    if (send(socket_, command.data(), command.size(), MSG_NOSIGNAL) < 0) return answer_for(errno);
    const int64_t deadline = now_ms() + Hostapd::time_out;
    for (int64_t left = Hostapd::time_out; left > 0; left = deadline - now_ms()) {
        pollfd wanted = {socket_, POLLIN, 0};
        if (poll(&wanted, 1, static_cast<int>(left)) > 0) return receive(answer);
    }
    return Answer::late;
}

}  // namespace

void Hostapd::begin_pass(int64_t now) {
    now_ = now;
    for (auto& [name, peer] : late_)
        peer.late_now = false;
    std::erase_if(late_, [&](const auto& entry) { return now - entry.second.last_late > 2 * long_pause; });
    if (owner_.size() > most_known) owner_.clear();
}

std::string Hostapd::key(const std::string& interface, uint32_t radio) const {
    const auto owner = owner_.find(interface);
    if (owner != owner_.end()) return "process " + std::to_string(owner->second);
    return "radio " + std::to_string(radio);
}

void Hostapd::was_late(const std::string& name) {
    Peer& peer = late_[name];
    peer.late_now = true;
    peer.last_late = now_;
    if (++peer.late_passes >= patience) peer.not_before = now_ + long_pause;
}

bool Hostapd::is_hung(const std::string& interface, uint32_t radio) const {
    const auto late = late_.find(key(interface, radio));
    return late != late_.end() && late->second.late_passes >= patience;
}

Answer Hostapd::ask(const std::string& interface, uint32_t radio, HostapdBss& bss) {
    const std::string peer = key(interface, radio);
    const auto late = late_.find(peer);
    if (late != late_.end() && (late->second.late_now || now_ < late->second.not_before)) return Answer::skipped;
    Connection connection;
    HostapdBss found;
    std::string_view text;
    Answer answer = connection.open(directory_ + '/' + interface);
    if (answer == Answer::told) answer = connection.ask("STATUS", text);
    if (answer == Answer::told && !read_status(text, interface, found)) answer = Answer::garbage;
    if (answer == Answer::told) answer = connection.ask("GET_CONFIG", text);
    if (answer == Answer::told && !read_config(text, found)) answer = Answer::garbage;
    if (answer == Answer::late) was_late(peer);
    if (answer == Answer::dead || answer == Answer::absent) owner_.erase(interface);
    if (answer != Answer::told) return answer;
    late_.erase(peer);
    if (connection.process() > 0) owner_[interface] = connection.process();
    bss = found;
    return Answer::told;
}

}  // namespace collector
