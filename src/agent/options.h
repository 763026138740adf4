// The options that an operator may set in the agent's configuration, after the line that loads the module:
//
//   dot11Answers standard | complete
//   dot11MaxAge SECONDS
//
// handler.h and access/iterator.h describe what they change.
#pragma once

namespace dot11 {

// Registers the two tokens with the agent. Each time the configuration is read, the options start from their defaults.
// A wrong value is logged and changes nothing.
void register_options();

}  // namespace dot11
