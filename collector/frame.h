// Management frames of IEEE 802.11, as the access point sent them.
#pragma once

#include <optional>
#include <string_view>

#include "observed.h"

namespace collector {

// A disassociation, a deauthentication or a refused authentication that the access point of the address OWN sent to one
// station; otherwise nothing. `frame` begins with the frame control field and has no checksum.
std::optional<Sent> sent_frame(std::string_view frame, const Mac& own);

}  // namespace collector
