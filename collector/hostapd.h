// hostapd's control interface: what hostapd says about a BSS.
#pragma once

#include <stdint.h>
#include <map>
#include <string>
#include <string_view>

#include "observed.h"

namespace collector {

// ---- Pure: texts from hostapd, which hold others' data.

// The octets of a text in hostapd's escapes: \\ \" \e \n \r \t \xNN.
std::string unescaped(std::string_view text);

// Adds to `bss` what an answer to STATUS says about `interface`. False: it is not an answer to STATUS.
bool read_status(std::string_view answer, std::string_view interface, HostapdBss& bss);

// Adds what an answer to GET_CONFIG says. False: it is not an answer to GET_CONFIG.
bool read_config(std::string_view answer, HostapdBss& bss);

// ---- Sockets.

enum class Answer : uint8_t {
    told,
    absent,     // no socket: this access point was not started by hostapd, or has no control interface
    dead,       // a left-over socket: its hostapd was killed
    forbidden,  // this process may not write to the socket
    late,       // no answer within the limit
    skipped,    // it was late before and is not asked this time
    garbage,    // something else answers there
};

class Hostapd {
  public:
    static constexpr int64_t time_out = 200;      // ms for an answer
    static constexpr unsigned patience = 3;       // after so many passes with a late answer, ask only every
    static constexpr int64_t long_pause = 60000;  // ms

    // `directory` holds a socket for each BSS, named after its interface.
    explicit Hostapd(std::string directory) : directory_(std::move(directory)) {}
    Hostapd(const Hostapd&) = delete;
    Hostapd& operator=(const Hostapd&) = delete;
    virtual ~Hostapd() = default;

    const std::string& directory() const { return directory_; }

    // A pass begins at `now`, in ms. A hostapd that is late is not asked again in the same pass.
    void begin_pass(int64_t now);

    // Asks about the BSS of `interface` on `radio`. Unless the result is `told`, `bss` stays as it is. Virtual for
    // the tests.
    virtual Answer ask(const std::string& interface, uint32_t radio, HostapdBss& bss);

    // Whether it was late in `patience` passes and has not answered since.
    virtual bool is_hung(const std::string& interface, uint32_t radio) const;

  private:
    // One hostapd serves many sockets. It is identified by its process once it has answered, until then by its radio.
    struct Peer {
        unsigned late_passes = 0;
        bool late_now = false;
        int64_t not_before = 0;
        int64_t last_late = 0;
    };
    std::string key(const std::string& interface, uint32_t radio) const;
    void was_late(const std::string& peer);

    std::string directory_;
    int64_t now_ = 0;
    std::map<std::string, Peer> late_;      // those that are or were late
    std::map<std::string, int64_t> owner_;  // interface: process that answered
};

}  // namespace collector
