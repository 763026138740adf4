// The database layer of the configuration store: one connection to one store file. The library and the cfql tool stand
// on it.
//
// Every fact about the file is here and in database.cc: schema, limits, pragmas, journal, checksums. The file format is
// described in docs/store-format.md.
//
// No exceptions, no C++ runtime. A Database is not for several threads at once. After a fork neither side may use a
// connection that was open before it: close first.
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
// An import: begin_write(); delete_all() or, to merge, delete_object() for each object that is replaced; then
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
// A watcher: compare change_counter() with its previous value on the same connection, and reopen when moved().
#ifndef CFQL_DATABASE_H
#define CFQL_DATABASE_H

#include <sqlite3.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace cfql {

class Database;
using Text = std::string_view;

inline constexpr std::size_t text_limit = 255;     // octets of a table, an object's name, a key; at least 1
inline constexpr std::size_t value_limit = 4096;   // octets of a value; at least 0
inline constexpr Text singleton_table = "system";  // the table whose object has the empty name
inline constexpr Text name_key = "name";           // stands for an object's name in lists, so no attribute may have it

enum class Status : std::uint8_t {
    ok,
    end,            // of an iteration
    not_found,      // no such object or attribute
    refused,        // the text breaks a limit: see refusal()
    absent,         // no store file at the path
    exists,         // create() on a store that is already there
    not_a_store,    // a file of another kind
    wrong_version,  // a store of a later release
    damaged,        // the file's structure or a checksum is wrong
    denied,         // the file or its directory may not be opened
    read_only,      // the connection, the file or the file system does not allow writing
    busy,           // another process kept the store locked for the whole time-out
    full,           // no space left
    io_error,       // the medium failed
    no_memory,
};

// One line without a full stop, for a message of the form "PATH: <line>".
const char* describe(Status status);

// Why a text is refused, as one line that names the rule, or null when it is allowed. An object is allowed or refused
// for its table. All of them refuse a NUL among the octets.
const char* refusal_of_table(Text table);
const char* refusal_of_object(Text table, Text object);
const char* refusal_of_key(Text key);
const char* refusal_of_value(Text value);

// CFQL_STORE, unless it is empty or the process runs with raised rights; otherwise /var/lib/cfql/store.db.
const char* store_path();

// CRC-32 (IEEE 802.3) over the object's id (8 octets, most significant first) and the given texts, each followed by a
// NUL. An object's own checksum is over its table and name; an attribute's over table, name, key and value.
std::uint32_t checksum_of_object(std::int64_t id, Text table, Text object);
std::uint32_t checksum_of_attribute(std::int64_t id, Text table, Text object, Text key, Text value);

enum class Access : std::uint8_t { read, write };

// One step of a listing: an object with one of its attributes, or alone when it has none. Objects come in order of
// insertion, the attributes of one object together and in octet order of their keys. Texts are valid until the cursor's
// next step.
struct Row {
    std::int64_t id;  // of the object; ascending over the listing, equal over the rows of one object
    Text table;
    Text object;
    bool object_sound;  // the checksum and the limits hold for table and object
    bool has_attribute;
    Text key;
    Text value;
    bool attribute_sound;  // the checksum and the limits hold for key and value
};

// A listing in progress; a read transaction is open as long as it is. Must not outlive its Database or stay open over
// close().
class Cursor {
  public:
    Cursor() = default;
    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;
    ~Cursor() { close(); }

    // ok: ROW is filled; end: there is no more; damaged, busy, io_error: the listing is over, what came so far may be
    // incomplete. Never ends in a loop, whatever the file holds.
    Status next(Row& row);
    void close();

  private:
    friend class Database;
    bool ascends(std::int64_t id, bool has_key, Text key);

    Database* store_ = nullptr;
    sqlite3_stmt* statement_ = nullptr;
    std::int64_t last_id_ = 0;
    std::size_t last_key_size_ = 0;
    char last_key_[text_limit];
};

class Database {
  public:
    Database() = default;
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    ~Database() { close(); }

    // Makes an empty store at PATH: file mode 0640, WAL, or a TRUNCATE journal where files cannot be mapped shared. The
    // directory must exist. All or nothing: an interrupted call leaves at most a file without contents, which the next
    // call turns into a store. `exists` when there is a store, `not_a_store` when there is something else; neither is
    // touched. Leaves nothing open.
    Status create(const char* path);

    // Opens an existing store and examines it (kind, version, schema, structure). Never makes a file; a reader changes
    // nothing. Waits for locks up to 200 ms as a reader, 2 s as a writer. A relative PATH counts from the working
    // directory.
    Status open(const char* path, Access access);
    void close();  // ends a transaction without effect
    bool is_open() const { return connection_ != nullptr; }

    // The file at the path is no longer the one that is open: replaced or removed.
    bool moved();

    // A number that differs from the one before on this connection if another connection has changed the store in
    // between.
    Status change_counter(std::int64_t& counter);

    // Transactions. Reads outside of one see each the latest state. commit() answers ok once everything is on stable
    // storage; with any other answer nothing has changed, unless the medium refused just that, and the transaction is
    // still to be rolled back.
    Status begin_read();
    Status begin_write();
    Status commit();
    void rollback();  // without effect when no transaction is open

    // The id of the first inserted object of that name; not_found.
    Status find_object(Text table, Text object, std::int64_t& id);
    // Adds an object after all others, even if one of that name exists.
    Status insert_object(Text table, Text object, std::int64_t& id);
    // Deletes one object with its attributes; ok also when there is none.
    Status delete_object(std::int64_t id);
    Status delete_all();

    // TABLE and OBJECT must be those of ID: they go into the checksum.
    Status set_attribute(std::int64_t id, Text table, Text object, Text key, Text value);
    // not_found when the object has no such key, damaged when the checksum is wrong. VALUE is valid until the next call
    // on this Database.
    Status get_attribute(std::int64_t id, Text table, Text object, Text key, Text& value);
    Status unset_attribute(std::int64_t id, Text key);  // not_found

    // The same by names: the first inserted object of the name. set() makes an object that is missing. These refuse
    // texts that break a limit. Several calls that belong together, and every set(), stand between begin_write() and
    // commit().
    Status set(Text table, Text object, Text key, Text value);
    Status get(Text table, Text object, Text key, Text& value);
    Status unset(Text table, Text object, Text key);

    // Begins a listing of TABLE, or of everything when TABLE is empty.
    Status list(Cursor& cursor, Text table = {});

    // Examines everything: structure, indexes, attributes without object, every checksum. Calls REPORT with one line
    // for each fault, without values. Answers ok when the examination ended, whatever it found.
    using Report = void (*)(void* context, const char* line);
    Status check(Report report, void* context);

    // Takes the program code of SQLite out of the process's memory until it runs again: more than a megabyte, which a
    // process that keeps its answers elsewhere has no use for between two looks at the store.
    static void release_code();

    // SQLite's own words about the last failure, one line, never null; valid until the next call.
    const char* detail() const;
    // The last failure is of a kind that a second attempt at once may well overcome.
    bool worth_another_try() const;

  private:
    friend class Cursor;
    enum Query : std::uint8_t {
        find_,
        next_id_,
        insert_,
        erase_,
        erase_attributes_,
        put_,
        get_,
        drop_,
        version_,
        query_count_
    };

    Status connect(const char* path, int flags, int wait_ms);
    Status configure(int wait_ms);
    Status choose_journal();
    Status examine();
    Status expect(const char* pragma, std::int64_t expected, Status otherwise);
    Status examine_schema();
    Status examine_structure();
    Status examine_pages(const char* pragma, Report report, void* context);
    Status examine_checksums(Report report, void* context);
    Status examine_orphans(Report report, void* context);
    Status empty_file();
    Status build(const char* path);
    Status run(const char* sql);
    Status number(const char* sql, std::int64_t& result);
    Status prepare(const char* sql, sqlite3_stmt*& statement, unsigned flags = 0);
    Status query(Query which, sqlite3_stmt*& statement);
    Status fetch(Query which, std::int64_t& result);
    Status perform(sqlite3_stmt* statement);
    Status failure(int code);

    sqlite3* connection_ = nullptr;
    sqlite3_stmt* queries_[query_count_] = {};
    int code_ = SQLITE_OK;          // the extended result code of the last failure
    char value_[value_limit] = {};  // the answer of get_attribute()
};

}  // namespace cfql

#endif
