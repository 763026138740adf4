// IEEE 802.11 management frames that the access point sent.
#pragma once

#include <optional>
#include <string_view>

#include "observed.h"

namespace collector {

// A disassociation, deauthentication or refused authentication that the access point with the address `own` sent to one
// station; nothing for any other frame. `frame` begins with the frame control field and has no checksum.
std::optional<Sent> sent_frame(std::string_view frame, const Mac& own);

}  // namespace collector
