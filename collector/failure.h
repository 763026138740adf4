// What ends the collector: its exit statuses, and the exception that carries one of them to main().
#pragma once

#include <stdexcept>
#include <string>

namespace collector {

enum class Exit {
    done = 0,
    another = 1,        // another collector fills this store
    usage = 2,          // the command line
    store = 3,          // the store, or its directory
    configuration = 4,  // the configuration file
};

// One line: what, where, and how to mend it.
class Failure : public std::runtime_error {
  public:
    Failure(Exit exit, const std::string& message) : std::runtime_error(message), exit_(exit) {}
    Exit exit() const { return exit_; }

  private:
    Exit exit_;
};

}  // namespace collector
