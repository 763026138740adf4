// What the operator may change in the configuration of the agent's program, in lines after the one that loads the
// module:
//
//   dot11Answers standard | complete
//   dot11MaxAge SECONDS
//
// What they change is in handler.h and in access/iterator.h.
#pragma once

namespace dot11 {

// Registers the two tokens with the program that loads the module. Each time the configuration is read, they begin with
// their defaults. A value that is none is one line in the log, and changes nothing.
void register_options();

}  // namespace dot11
