// A connection to a store file, for the library and the cfql tool. docs/store-format.md describes the file format.
//
// No exceptions, no C++ runtime. A Database is for one thread at a time. Open one for each piece of work and close it
// soon: readers and writers exclude each other while a write is committed. A process that closes any descriptor of the
// store's file loses the locks of all its connections to it.
//
// A typical writer:
//
//     cfql::Database store;
//     cfql::Status status = store.open(cfql::store_path(), cfql::Access::write);
//     if (status == cfql::Status::ok) status = store.begin_write();
//     if (status == cfql::Status::ok) status = store.set("interface", "wlan0", "ssid", "office");
//     if (status == cfql::Status::ok) status = store.commit();   // durable once this is ok
//     if (status != cfql::Status::ok) { store.rollback(); complain(cfql::describe(status), store.detail()); }
//
// An import: begin_write(); delete_all() or, to merge, delete_object() for each object to be replaced; then
// insert_object() and set_attribute() in the order of the file; commit().
//
// A listing, in order of insertion:
//
//     cfql::Cursor cursor;
//     cfql::Row row;
//     status = store.list(cursor);
//     while (status == cfql::Status::ok && (status = cursor.next(row)) == cfql::Status::ok) use(row);
//     if (status != cfql::Status::end) complain();
//
// To follow a store, ask a Watch (watch.h) whether it may have changed, and open it anew if so.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "checksum.h"
#include "path.h"
#include "status.h"
#include "store_limits.h"

struct sqlite3;
struct sqlite3_stmt;

namespace cfql {

class Database;
struct FirstPage;

inline constexpr int reader_wait_ms = 200;   // for each lock
inline constexpr int writer_wait_ms = 2000;  // likewise

enum class Access : uint8_t {
    read,     // changes nothing; opening ends with `interrupted` if an interrupted write has to be undone
    recover,  // like read, but undoes an interrupted write first, if this process may
    salvage,  // like recover, without examining the trees: list() reads what it can, check() says where the damage is
    write,
};

// One step of a listing: an object with one of its attributes, or alone if it has none. Objects come in order of
// insertion, the attributes of an object together and in octet order of their keys. Texts are valid until the cursor's
// next step.
struct Row {
    int64_t id;  // of the object; ascending over the listing, equal over the rows of one object
    Text table;
    Text object;
    bool object_sound;  // the checksum and the limits hold for table and object
    bool has_attribute;
    Text key;
    Text value;
    bool attribute_sound;  // the checksum and the limits hold for key and value
};

// A listing in progress, which holds a read transaction open. Close it before its Database is closed or destroyed.
class Cursor {
  public:
    Cursor() = default;
    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;
    ~Cursor() { close(); }

    // ok: `row` is filled; end: there are no more; damaged, busy, io_error: the listing is over and may be incomplete.
    // Always comes to an end, whatever the file holds.
    Status next(Row& row);
    void close();

  private:
    friend class Database;
    bool ascends(int64_t id, bool has_key, Text key);
    void read_object(Row& row);

    Database* store_ = nullptr;
    sqlite3_stmt* statement_ = nullptr;
    Checksum checksum_;          // of the object
    bool object_sound_ = false;  // likewise
    bool begun_ = false;
    int64_t last_id_ = 0;
    size_t last_key_size_ = 0;
    char last_key_[text_limit];
};

// A file that a Database has examined, or has written after that.
struct Sound {
    bool known = false;
    FileState file = {};
    uint32_t counter = 0;  // of changes
};

class Database {
  public:
    Database() = default;
    // `sound` belongs to the caller. It tells one Database what the last one has examined.
    explicit Database(Sound& sound) : sound_(&sound) {}
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    ~Database() { close(); }

    // Creates an empty store at `path`, with file mode 0640. The directory must exist. All or nothing: an interrupted
    // call leaves at most an empty file, which the next call turns into a store. `exists` if there is a store,
    // `not_a_store` if there is something else; neither is touched. Leaves nothing open.
    Status create(const char* path);

    // Opens an existing store and examines it (kind, version, schema, structure). Never creates a file. Waits for each
    // lock reader_wait_ms for Access::read, otherwise `wait_ms`. A relative `path` starts at the working directory. The
    // structure is not examined again if it was sound and the file has not changed since.
    Status open(const char* path, Access access, int wait_ms = writer_wait_ms);

    // Like open() for Access::read, waiting `wait_ms` for the lock, but does not examine the trees, and leaves a read
    // transaction open, so that all reads see the same state.
    Status open_for_load(const char* path, int wait_ms);

    void close();  // rolls back an open transaction
    bool is_open() const { return connection_ != nullptr; }

    // The header's change counter in the last transaction that was begun: every write adds 1.
    uint32_t change_counter() const { return counter_; }

    // Transactions. Outside of one, each read sees the latest state. commit() returns ok once everything is on stable
    // storage. Otherwise nothing has changed (unless the medium refused to make the write stable), and the transaction
    // has still to be rolled back.
    Status begin_read();
    Status begin_write();
    Status commit();
    void rollback();  // does nothing if no transaction is open

    // The id of the first object inserted under that name; not_found.
    Status find_object(Text table, Text object, int64_t& id);
    // Adds an object after all others, even if one of that name exists.
    Status insert_object(Text table, Text object, int64_t& id);
    // Deletes one object with its attributes; ok also if there is none.
    Status delete_object(int64_t id);
    Status delete_all();

    // `table` and `object` must be those of `id`: they go into the checksum.
    Status set_attribute(int64_t id, Text table, Text object, Text key, Text value);
    // not_found if the object has no such key, damaged if the checksum is wrong. `value` is valid until the next call
    // on this Database.
    Status get_attribute(int64_t id, Text table, Text object, Text key, Text& value);
    Status unset_attribute(int64_t id, Text key);  // not_found

    // The same by names, which stand for the first object inserted. set() creates a missing object. These refuse texts
    // that break a limit. Put every set(), and calls that belong together, between begin_write() and commit().
    Status set(Text table, Text object, Text key, Text value);
    Status get(Text table, Text object, Text key, Text& value);
    Status unset(Text table, Text object, Text key);

    // Begins a listing of `table`, or of everything if that is empty, from the first object whose id is above `after`.
    Status list(Cursor& cursor, Text table = {}, int64_t after = INT64_MIN);

    // Examines every page: `damaged` with the first fault in detail().
    Status examine_structure();

    // Examines everything: structure, indexes, attributes without an object, every checksum. Calls `report` with a line
    // for each fault, without values. Returns ok if the examination was completed, whatever it found.
    using Report = void (*)(void* context, const char* line);
    Status check(Report report, void* context);

    // What the last failure was about: one line, never null, empty if there is nothing to add to describe(). Valid
    // until the next call.
    const char* detail() const { return detail_; }
    // Whether an immediate second attempt may well overcome the last failure.
    bool worth_another_try() const;

  private:
    friend class Cursor;
    enum Query : uint8_t { find_, next_id_, insert_, erase_, erase_attributes_, put_, get_, drop_, query_count_ };

    Status open_once(const char* path, Access access, int wait_ms);
    Status connect(const char* path, int flags, int wait_ms);
    Status open_file(const char* file, int flags, int wait_ms);
    Status configure();
    Status prepare_to_write();
    Status begin(const char* sql);
    Status read_page(FirstPage& page);
    Status examine_page();
    Status examine_pages(const char* pragma, Report report, void* context);
    Status examine_checksums(Report report, void* context);
    Status examine_orphans(Report report, void* context);
    bool is_known_sound() const;
    Status empty_file();
    Status build();
    Status run(const char* sql);
    Status number(const char* sql, int64_t& result);
    Status prepare(const char* sql, sqlite3_stmt*& statement, unsigned flags = 0);
    Status query(Query which, sqlite3_stmt*& statement);
    Status fetch(Query which, int64_t& result);
    Status perform(sqlite3_stmt* statement);
    Status failure(int code);
    Status damage(const char* what);
    void allow_steps();
    static int wait_for_lock(void* database, int tries);
    static int count_steps(void* database);

    sqlite3* connection_ = nullptr;
    sqlite3_stmt* queries_[query_count_] = {};
    int wait_ms_ = 0;
    int64_t deadline_ = 0;    // of the present wait for a lock
    int64_t pages_ = 0;       // in the file; bounds the statements' steps
    int64_t steps_left_ = 0;  // of the present statement, in thousands
    FileState file_ = {};     // before it was opened
    Sound own_;
    Sound* const sound_ = &own_;
    uint32_t counter_ = 0;
    int code_ = 0;  // the extended result code of the last failure
    char detail_[200] = {};
    char value_[value_limit] = {};  // the result of get_attribute()
};

}  // namespace cfql
