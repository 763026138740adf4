// A scripted device for tests of the backends: the test decides what the configuration store, the system's interfaces,
// the clock, memory and the driver's files are. There is one device at a time. It receives the linked module's calls of
// cfqlquery_*, if_nametoindex, if_indextoname, gettimeofday, calloc and fopen, and fails the test if an answer of the
// store is not released exactly once.
#pragma once

#include <climits>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "cfqlquery.h"

class ScriptedDevice {
  public:
    using Pair =
        std::pair<std::optional<std::string>, std::optional<std::string>>;  // tag and value; nullopt is a null pointer

    ScriptedDevice();
    ~ScriptedDevice();

    // -- the store
    // -------------------------------------------------------------------------------------------------------

    // An object with a name, listed by get_grid in the order of the calls. "" names the object of "system".
    void add(const std::string& table, const std::string& object);
    // A key of an object; what get_pv answers.
    void set(const std::string& table, const std::string& object, const std::string& key, const std::string& value);
    void unset(const std::string& table, const std::string& object, const std::string& key);
    // Answers get_pv with exactly these nodes.
    void answer(const std::string& table, const std::string& object, const std::string& key, std::vector<Pair> nodes);
    // Answers get_grid of a table with exactly these nodes, instead of the objects added.
    void answer_grid(const std::string& table, std::vector<Pair> nodes);
    void clear_store();
    // After that many listings of grids every table has lost all its objects but the first. 0: never.
    int listings_before_loss = 0;

    int32_t set_status = 1;  // what set_pv answers
    // Every call, in order: "grid interface type=service-set", "get interface wlan0 mac", "set bss wlan0
    // dtim-period=3". A null object is written "-".
    std::vector<std::string> calls;
    // Whether `calls` shows more: "release interface wlan0 mac" for the answer that is handed back, "open /proc/net/x".
    bool shows_releases = false;
    std::vector<std::string> calls_of(const std::string& kind) const;  // those that begin with it, without it

    // -- the system
    // ------------------------------------------------------------------------------------------------------

    std::map<std::string, unsigned> interfaces;  // name and index
    int64_t now = 1'000'000'000;                 // seconds since the epoch
    int64_t monotonic_milliseconds = 1'000'000;  // of CLOCK_MONOTONIC; stands still unless a test moves it
    bool clock_fails = false;                    // as one of 32 bits does after 2038
    int64_t tick = 0;                            // seconds by which each read of the clock moves it
    int ticks = INT_MAX;                         // as many reads at most
    // The device's files: what fopen of that path reads. Paths below /proc/net that are not here cannot be opened.
    std::map<std::string, std::string> files;
    std::vector<std::string> opened;  // every path below /proc/net, in order

    // A wireless interface: in the system and in the store's grid.
    void add_interface(const std::string& name, unsigned index);

    // -- memory
    // ----------------------------------------------------------------------------------------------------------

    // The n-th calloc from now fails (1 is the next one); 0: none does.
    void fail_allocation(int n);
    // The same, and all that follow.
    void fail_allocations_from(int n);
    // Whether the allocation told to fail has been asked for.
    bool allocation_failed() const { return allocation_failed_; }

    // -- called by the linked routines
    // -----------------------------------------------------------------------------------

    cfqlquery_node* grid(const char* table, const cfqlquery_node* filter);
    cfqlquery_node* get(const char* table, const char* object, const char* key);
    int32_t write(const char* table, const char* object, const cfqlquery_node* pair);
    void destroy(cfqlquery_node* list);
    bool allocation_fails();
    const std::string* open(const std::string& path);  // what the file holds; null: it cannot be opened

  private:
    struct Object {
        std::string table, name;
    };
    using Address = std::vector<std::string>;  // table, object, key

    cfqlquery_node* make(const std::string& question, const std::vector<Pair>& nodes);
    void lose_objects();

    std::vector<Object> objects_;
    std::map<Address, std::vector<Pair>> answers_;
    std::map<std::string, std::vector<Pair>> grids_;
    std::map<cfqlquery_node*, std::string> live_;  // answers, and what was asked
    int allocations_left_ = 0;
    bool allocation_failed_ = false;
    bool later_ones_fail_ = false;
};
