// What a process knows of the store: opens it, follows its changes and its replacement, and goes on with the last good
// contents when it cannot be read. The rules are in docs/store-format.md.
#ifndef CFQL_READER_H
#define CFQL_READER_H

#include <sys/types.h>

#include <cstdint>

#include "snapshot.h"

namespace cfql {

class Reader {
  public:
    // Not copied, not for several threads at once. Nothing is opened before the first refresh().
    constexpr Reader() = default;

    // Brings the contents up to date: always when AT_ONCE, otherwise when the last look is 50 ms old, or
    // four times as long as it took.
    void refresh(bool at_once);

    // As cfqlquery_get_pv and cfqlquery_get_grid describe. VALUE is valid until the next call.
    bool get(Text table, Text object, Text key, Text& value);
    bool objects(Text table, const cfqlquery_node* filter, Array<char>& names, std::size_t& count);

    // The next refresh looks at the store, however recent the last one or a failure is.
    void expire();
    void close();   // the connection, not the contents
    void forget();  // the contents

  private:
    enum class Contents : std::uint8_t { none, snapshot, too_large };

    Status look();
    Status open();
    Status load();
    Status walk(Text table, const cfqlquery_node* filter, Array<char>& names, std::size_t& count);
    Status carries(const Row& row, const cfqlquery_node* filter);
    void fail(Status status, std::int64_t pause = 0);

    Database store_;
    Snapshot snapshot_;
    Contents contents_ = Contents::none;
    bool loaded_ = false;  // the contents are those of counter_ on the present connection
    std::int64_t counter_ = 0;
    dev_t device_ = 0;  // of the file that the contents are from
    ino_t inode_ = 0;
    std::int64_t now_ = 0;  // times in milliseconds of CLOCK_MONOTONIC
    std::int64_t next_look_ = 0;
    std::int64_t next_try_ = 0;
    std::int64_t next_line_ = 0;
};

}  // namespace cfql

#endif
