// Runs the built tool as its users do, on a store in a directory of the test's own.
#ifndef TESTS_CFQL_TOOL_TOOL_H
#define TESTS_CFQL_TOOL_TOOL_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

using Words = std::vector<std::string>;

struct Outcome {
    int status;  // exit status; 128 + N when signal N ended it
    std::string out;
    std::string err;
};

struct Setting {
    std::string input = {};
    std::string path = {};    // of the store, as CFQL_STORE; empty: the fixture's
    std::string output = {};  // a file as standard output; empty: captured
    unsigned user = 0;        // runs as this user when not 0
};

class Tool : public testing::Test {
  protected:
    Tool();
    ~Tool() override;

    Outcome run(const Words& words, const Setting& setting = {}) const;

    // The same with a terminal as standard output.
    Outcome run_on_terminal(const Words& words) const;

    // The output of run(), which must return 0 and print nothing but notes on standard error.
    std::string done(const Words& words, const Setting& setting = {}) const;

    std::string write(const std::string& name, const std::string& text) const;  // the path of the new file

    std::string directory;
    std::string store;  // path; init has not been run
};

// A tool that keeps running in the background.
class Background {
  public:
    Background(const std::string& store, const Words& words);
    ~Background();
    Background(const Background&) = delete;
    Background& operator=(const Background&) = delete;

    // What it has said on both outputs up to and including `text`; fails the test when that takes over 20 seconds.
    std::string wait_for(const std::string& text);

  private:
    int pid_;
    int output_;
    std::string said_;
};

#endif
