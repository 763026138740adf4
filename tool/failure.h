// How the tool ends: its exit statuses and the exception that carries one of them to main().
#pragma once

#include <stdexcept>
#include <string>

namespace cfql::tool {

enum class Exit {
    done = 0,
    no = 1,      // the answer is no: not found, faults found, warnings found
    usage = 2,   // the command line
    store = 3,   // the store is absent, damaged, busy or not ours to read or write
    input = 4,   // wrong input: an import file, a value that is too long
    output = 5,  // standard output could not be written
};

// The message is one line: what, where, and how to mend it. It holds no values, which may be secret.
class Failure : public std::runtime_error {
  public:
    Failure(Exit exit, const std::string& message) : std::runtime_error(message), exit_(exit) {}
    Exit exit() const { return exit_; }

  private:
    Exit exit_;
};

}  // namespace cfql::tool
