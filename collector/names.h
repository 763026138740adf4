// The name under which an interface is served. The agent takes names of at most five octets; an interface with a longer
// one is served under an alternative name, which the kernel resolves like the real one.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "configuration.h"
#include "links.h"

namespace collector {

// Whether `name` looks like one that the collector makes: digits, "ap", digits, as in 0ap1. No other tool makes such
// names.
bool is_made_name(std::string_view name);

// The `nth` name, from 0, to try for an interface of `radio`; nothing if there are no more.
std::optional<std::string> made_name(uint32_t radio, unsigned nth);

class Names {
  public:
    enum class Mode : uint8_t {
        set,      // sets missing names
        inspect,  // uses existing names; this run changes nothing
        refused,  // uses existing names; the operator forbids to set any
    };

    Names(Links& links, Mode mode) : links_(links), mode_(mode) {}

    struct Served {
        std::string name;   // empty: it cannot be served
        std::string cause;  // why not, and what to do
    };

    // `configured`: the name that the operator wants, or null. A name is kept until the interface loses it.
    Served served(uint32_t interface, const std::string& name, uint32_t radio, const std::string* configured);

    // Forgets interfaces for which `gone` holds.
    void forget(const std::function<bool(uint32_t)>& gone);

    // Removes the names that the collector gave to `interface`, and returns them.
    std::vector<std::string> remove(uint32_t interface, const std::string* configured);

  private:
    Served alias(uint32_t interface, const std::string& name, uint32_t radio, const std::string* configured);
    Served add(uint32_t interface, const std::string& name, uint32_t radio, const std::string* configured);
    Served refusal(int error, const std::string& name, const std::string& alias) const;

    Links& links_;
    Mode mode_;
    std::map<uint32_t, std::string> aliases_;
};

}  // namespace collector
