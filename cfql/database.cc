#include "database.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>

#include "code_pages.h"

namespace cfql {
namespace {

constexpr std::int64_t application_id = 0x6366716c;  // "cfql"
constexpr std::int64_t format_version = 1;
constexpr int reader_wait_ms = 200;
constexpr int writer_wait_ms = 2000;
constexpr int longest_row = 65536;  // octets; no sound row comes near, a damaged one may claim a gigabyte

// The schema, in the order of the names. Texts are BLOBs: octets that SQLite does not interpret.
struct SchemaEntry {
    const char* name;
    const char* sql;
};
constexpr SchemaEntry schema[] = {
    {"attribute",
     "CREATE TABLE attribute(object INTEGER NOT NULL, key BLOB NOT NULL, value BLOB NOT NULL, crc INTEGER NOT NULL, "
     "PRIMARY KEY(object, key)) WITHOUT ROWID"},
    {"object",
     "CREATE TABLE object(id INTEGER PRIMARY KEY, tab BLOB NOT NULL, name BLOB NOT NULL, crc INTEGER NOT NULL)"},
    {"object_name", "CREATE INDEX object_name ON object(tab, name)"},
};

// No mapped pages: a read of one that the medium no longer gives would be a signal. Nothing of a transaction goes to
// other files than the journal. The log is cut to nothing when it has been written back, so that no old secrets stay in
// it.
constexpr const char* pragmas =
    "PRAGMA mmap_size=0;"
    "PRAGMA cell_size_check=ON;"
    "PRAGMA trusted_schema=OFF;"
    "PRAGMA synchronous=FULL;"
    "PRAGMA secure_delete=ON;"
    "PRAGMA temp_store=MEMORY;"
    "PRAGMA cache_size=-512;"
    "PRAGMA journal_size_limit=0;";

constexpr auto crc_table = [] {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t octet = 0; octet < table.size(); ++octet) {
        std::uint32_t crc = octet;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1U) != 0 ? 0xedb88320U : 0U);
        table[octet] = crc;
    }
    return table;
}();

class Crc32 {
  public:
    Crc32& octet(unsigned char value) {
        state_ = (state_ >> 8) ^ crc_table[(state_ ^ value) & 0xffU];
        return *this;
    }
    Crc32& number(std::int64_t value) {
        for (int shift = 56; shift >= 0; shift -= 8)
            octet(static_cast<unsigned char>(value >> shift));
        return *this;
    }
    Crc32& text(Text value) {
        for (char c : value)
            octet(static_cast<unsigned char>(c));
        return octet(0);
    }
    std::uint32_t result() const { return ~state_; }

  private:
    std::uint32_t state_ = 0xffffffffU;
};

Status status_of(int code) {
    switch (code & 0xff) {
        case SQLITE_OK:
        case SQLITE_ROW:
        case SQLITE_DONE:
            return Status::ok;
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
        case SQLITE_PROTOCOL:
            return Status::busy;
        case SQLITE_NOTADB:
            return Status::not_a_store;
        case SQLITE_PERM:
        case SQLITE_AUTH:
        case SQLITE_CANTOPEN:
            return Status::denied;
        case SQLITE_READONLY:
            return Status::read_only;
        case SQLITE_FULL:
            return Status::full;
        case SQLITE_IOERR:
            return Status::io_error;
        case SQLITE_NOMEM:
            return Status::no_memory;
        default:
            return Status::damaged;  // the statements are fixed: only a wrong file makes one of them fail
    }
}

void bind(sqlite3_stmt* statement, int index, Text text) {
    // The caller's octets outlive the step. A null pointer would bind NULL.
    sqlite3_bind_blob(statement, index, text.empty() ? "" : text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
}

Text column(sqlite3_stmt* statement, int index) {
    const void* octets = sqlite3_column_blob(statement, index);
    if (octets == nullptr) return "";
    return {static_cast<const char*>(octets), static_cast<std::size_t>(sqlite3_column_bytes(statement, index))};
}

bool is_blob(sqlite3_stmt* statement, int index) {
    return sqlite3_column_type(statement, index) == SQLITE_BLOB;
}

const char* refusal_of(Text text, const char* empty, const char* too_long, const char* with_nul) {
    if (text.empty()) return empty;
    if (text.size() > text_limit) return too_long;
    if (text.find('\0') != Text::npos) return with_nul;
    return nullptr;
}

// SQLite gives names such as ":memory:" and "file:..." a meaning of their own; a path with a slash has none.
bool plain_path(const char* path, char (&out)[PATH_MAX]) {
    const int size = snprintf(out, sizeof out, "%s%s", path[0] == '/' ? "" : "./", path);
    return size > 0 && static_cast<std::size_t>(size) < sizeof out;
}

Status examine_path(const char* path) {
    struct stat file;
    if (stat(path, &file) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) return Status::absent;
        return errno == EACCES ? Status::denied : Status::io_error;
    }
    return S_ISREG(file.st_mode) ? Status::ok : Status::not_a_store;
}

// The write-ahead log needs a file that processes share as memory. Some flash file systems have none.
bool can_map_shared(const char* path) {
    char probe[PATH_MAX];
    const int size = snprintf(probe, sizeof probe, "%s-probe-XXXXXX", path);
    if (size <= 0 || static_cast<std::size_t>(size) >= sizeof probe) return false;
    const int file = mkstemp(probe);
    if (file < 0) return false;
    unlink(probe);
    constexpr std::size_t extent = 32768;  // what the log's index begins with
    void* memory = MAP_FAILED;
    if (ftruncate(file, extent) == 0) memory = mmap(nullptr, extent, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    return memory != MAP_FAILED && munmap(memory, extent) == 0;
}

// An existing file is not opened: closing it again would drop the locks that this process may hold on it.
Status make_file(const char* path) {
    const int file = ::open(path, O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0640);
    if (file < 0) {
        if (errno == EEXIST) return Status::ok;
        if (errno == ENOENT || errno == ENOTDIR) return Status::absent;
        if (errno == EROFS) return Status::read_only;
        if (errno == ENOSPC || errno == EDQUOT) return Status::full;
        return errno == EACCES ? Status::denied : Status::io_error;
    }
    const bool moded = fchmod(file, 0640) == 0;  // whatever the umask
    return close(file) == 0 && moded ? Status::ok : Status::io_error;
}

Status sync_directory(const char* path) {
    char directory[PATH_MAX];
    snprintf(directory, sizeof directory, "%s", path);
    *(strrchr(directory, '/') + 1) = '\0';
    const int handle = ::open(directory, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) return Status::io_error;
    const bool synced = fsync(handle) == 0;
    close(handle);
    return synced ? Status::ok : Status::io_error;
}

// The name of an attribute (or, without key, of an object) for a person: control characters are shown as "?".
void label(char (&out)[1024], const Row& row, Text key, const char* fault) {
    snprintf(out, sizeof out, "%.*s %.*s%s%.*s: %s", static_cast<int>(row.table.size()), row.table.data(),
             static_cast<int>(row.object.size()), row.object.data(), key.empty() ? "" : " ",
             static_cast<int>(key.size()), key.data(), fault);
    for (char* c = out; *c != '\0'; ++c) {
        if (static_cast<unsigned char>(*c) < 0x20 || *c == 0x7f) *c = '?';
    }
}

}  // namespace

const char* describe(Status status) {
    switch (status) {
        case Status::ok:
            return "no error";
        case Status::end:
            return "the end is reached";
        case Status::not_found:
            return "no such object or key";
        case Status::refused:
            return "a text is not allowed";
        case Status::absent:
            return "there is no store";
        case Status::exists:
            return "there is a store already";
        case Status::not_a_store:
            return "the file is not a configuration store";
        case Status::wrong_version:
            return "the store has the format of another release";
        case Status::damaged:
            return "the store is damaged";
        case Status::denied:
            return "the store may not be opened";
        case Status::read_only:
            return "the store may not be written";
        case Status::busy:
            return "another process holds the store locked";
        case Status::full:
            return "no space is left on the file system";
        case Status::io_error:
            return "the file system failed";
        case Status::no_memory:
            return "memory is short";
    }
    return "unknown failure";
}

const char* refusal_of_table(Text table) {
    return refusal_of(table, "the table is empty", "the table is longer than 255 octets", "the table contains a NUL");
}

const char* refusal_of_object(Text table, Text object) {
    if (table == singleton_table) return object.empty() ? nullptr : "the object of the table \"system\" has no name";
    return refusal_of(object, "the object's name is empty", "the object's name is longer than 255 octets",
                      "the object's name contains a NUL");
}

const char* refusal_of_key(Text key) {
    if (key == name_key) return "\"name\" is the object's name, not a key";
    return refusal_of(key, "the key is empty", "the key is longer than 255 octets", "the key contains a NUL");
}

const char* refusal_of_value(Text value) {
    if (value.size() > value_limit) return "the value is longer than 4096 octets";
    if (value.find('\0') != Text::npos) return "the value contains a NUL";
    return nullptr;
}

const char* store_path() {
    const char* path = secure_getenv("CFQL_STORE");
    return path != nullptr && *path != '\0' ? path : "/var/lib/cfql/store.db";
}

std::uint32_t checksum_of_object(std::int64_t id, Text table, Text object) {
    return Crc32().number(id).text(table).text(object).result();
}

std::uint32_t checksum_of_attribute(std::int64_t id, Text table, Text object, Text key, Text value) {
    return Crc32().number(id).text(table).text(object).text(key).text(value).result();
}

void Cursor::close() {
    sqlite3_finalize(statement_);
    statement_ = nullptr;
}

// A damaged tree can lead back to pages that were read before. Since every row must come after the one before, a
// listing ends all the same.
bool Cursor::ascends(std::int64_t id, bool has_key, Text key) {
    key = key.substr(0, text_limit);
    const bool same_object = id == last_id_;
    if (id < last_id_ || (same_object && (!has_key || key <= Text(last_key_, last_key_size_)))) return false;
    last_id_ = id;
    last_key_size_ = key.size();
    memcpy(last_key_, key.data(), key.size());
    return true;
}

Status Cursor::next(Row& row) {
    const int code = sqlite3_step(statement_);
    if (code == SQLITE_DONE) return close(), Status::end;
    if (code != SQLITE_ROW) {
        const Status status = store_->failure(code);
        return close(), status;
    }
    sqlite3_stmt* const columns = statement_;
    row.id = sqlite3_column_int64(columns, 0);
    row.table = column(columns, 1);
    row.object = column(columns, 2);
    row.object_sound = is_blob(columns, 1) && is_blob(columns, 2) && refusal_of_table(row.table) == nullptr &&
                       refusal_of_object(row.table, row.object) == nullptr &&
                       sqlite3_column_int64(columns, 3) == checksum_of_object(row.id, row.table, row.object);
    row.has_attribute = sqlite3_column_type(columns, 4) != SQLITE_NULL;
    row.key = column(columns, 4);
    row.value = column(columns, 5);
    row.attribute_sound =
        row.has_attribute && is_blob(columns, 4) && is_blob(columns, 5) && refusal_of_key(row.key) == nullptr &&
        refusal_of_value(row.value) == nullptr &&
        sqlite3_column_int64(columns, 6) == checksum_of_attribute(row.id, row.table, row.object, row.key, row.value);
    if (!ascends(row.id, row.has_attribute, row.key)) return close(), Status::damaged;
    return Status::ok;
}

Status Database::create(const char* path) {
    char file[PATH_MAX];
    if (!plain_path(path, file)) return Status::absent;
    Status status = make_file(file);
    if (status == Status::ok) status = examine_path(file);
    if (status == Status::ok) status = connect(file, SQLITE_OPEN_READWRITE, writer_wait_ms);
    if (status == Status::ok) status = empty_file();
    if (status == Status::ok) status = build(file);
    if (status != Status::ok) rollback();
    close();
    return status == Status::ok ? sync_directory(file) : status;
}

// A file without contents is what create() begins with.
Status Database::empty_file() {
    std::int64_t kind = 0;
    std::int64_t entries = 0;
    Status status = number("PRAGMA application_id", kind);
    if (status == Status::ok && kind == application_id) return Status::exists;
    if (status == Status::ok) status = number("SELECT count(*) FROM sqlite_schema", entries);
    if (status == Status::ok && (kind != 0 || entries != 0)) return Status::not_a_store;
    return status;
}

Status Database::build(const char* path) {
    Status status = run("PRAGMA encoding='UTF-8'; PRAGMA page_size=1024");
    if (status == Status::ok) {
        status = run(can_map_shared(path) ? "PRAGMA journal_mode=WAL" : "PRAGMA journal_mode=TRUNCATE");
    }
    if (status == Status::ok) status = begin_write();
    if (status == Status::ok) status = empty_file();  // another process may have been faster
    for (const SchemaEntry& entry : schema) {
        if (status == Status::ok) status = run(entry.sql);
    }
    char marks[128];
    snprintf(marks, sizeof marks, "PRAGMA application_id=%lld; PRAGMA user_version=%lld",
             static_cast<long long>(application_id), static_cast<long long>(format_version));
    if (status == Status::ok) status = run(marks);
    return status == Status::ok ? commit() : status;
}

Status Database::open(const char* path, Access access) {
    close();
    char file[PATH_MAX];
    if (!plain_path(path, file)) return Status::absent;
    Status status = examine_path(file);
    const bool writes = access == Access::write;
    if (status == Status::ok) {
        status = connect(file, writes ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY,
                         writes ? writer_wait_ms : reader_wait_ms);
    }
    if (status == Status::ok) status = examine();
    if (status == Status::ok && writes) status = choose_journal();
    if (status == Status::ok && writes && sqlite3_db_readonly(connection_, "main") != 0) status = Status::read_only;
    if (status != Status::ok) {
        const int code = code_;
        close();
        code_ = code;
    }
    return status;
}

void Database::close() {
    for (sqlite3_stmt*& statement : queries_) {
        sqlite3_finalize(statement);
        statement = nullptr;
    }
    sqlite3_close_v2(connection_);
    connection_ = nullptr;
    code_ = SQLITE_OK;
}

Status Database::connect(const char* path, int flags, int wait_ms) {
    const int code =
        sqlite3_open_v2(path, &connection_, flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_PRIVATECACHE, nullptr);
    if (code != SQLITE_OK) return failure(code);
    return configure(wait_ms);
}

Status Database::configure(int wait_ms) {
    sqlite3_extended_result_codes(connection_, 1);
    sqlite3_busy_timeout(connection_, wait_ms);
    sqlite3_limit(connection_, SQLITE_LIMIT_LENGTH, longest_row);
    sqlite3_limit(connection_, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_db_config(connection_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    // No pool of small blocks: it takes up to 120 kB at once to spare a few allocations.
    sqlite3_db_config(connection_, SQLITE_DBCONFIG_LOOKASIDE, nullptr, 0, 0);
    // Without this the last connection to close would remove the log, which readers without write rights cannot make
    // again.
    int persist = 1;
    sqlite3_file_control(connection_, "main", SQLITE_FCNTL_PERSIST_WAL, &persist);
    return run(pragmas);
}

// Without a write-ahead log the journal is cut, not deleted: a deletion is not on stable storage until the directory
// is.
Status Database::choose_journal() {
    sqlite3_stmt* statement = nullptr;
    Status status = prepare("PRAGMA journal_mode", statement);
    if (status != Status::ok) return status;
    const int code = sqlite3_step(statement);
    const bool has_log = code == SQLITE_ROW && column(statement, 0) == "wal";
    sqlite3_finalize(statement);
    if (code != SQLITE_ROW) return failure(code);
    return has_log ? Status::ok : run("PRAGMA journal_mode=TRUNCATE");
}

Status Database::examine() {
    Status status = expect("PRAGMA application_id", application_id, Status::not_a_store);
    if (status == Status::ok) status = expect("PRAGMA user_version", format_version, Status::wrong_version);
    if (status == Status::ok) status = examine_schema();
    return status == Status::ok ? examine_structure() : status;
}

// A page that could not be read is reported as a fault too. What is really wrong is found again.
Status Database::examine_structure() {
    constexpr const char* pragma = "PRAGMA quick_check(1)";
    const Status status = examine_pages(pragma, nullptr, nullptr);
    return status == Status::damaged ? examine_pages(pragma, nullptr, nullptr) : status;
}

Status Database::expect(const char* pragma, std::int64_t expected, Status otherwise) {
    std::int64_t found = 0;
    const Status status = number(pragma, found);
    return status == Status::ok && found != expected ? otherwise : status;
}

// Exactly the schema above: no view or trigger of a foreign hand is ever run.
Status Database::examine_schema() {
    sqlite3_stmt* statement = nullptr;
    const Status status = prepare("SELECT name, sql FROM sqlite_schema ORDER BY name", statement);
    if (status != Status::ok) return status;
    bool equal = true;
    int code = sqlite3_step(statement);
    for (const SchemaEntry& entry : schema) {
        equal = equal && code == SQLITE_ROW && column(statement, 0) == entry.name && column(statement, 1) == entry.sql;
        if (code == SQLITE_ROW) code = sqlite3_step(statement);
    }
    sqlite3_finalize(statement);
    if (code != SQLITE_ROW && code != SQLITE_DONE) return failure(code);
    return equal && code == SQLITE_DONE ? Status::ok : Status::damaged;
}

// PRAGMA answers one row "ok" or a row for each fault. Without REPORT a fault is the result.
Status Database::examine_pages(const char* pragma, Report report, void* context) {
    sqlite3_stmt* statement = nullptr;
    Status status = prepare(pragma, statement);
    if (status != Status::ok) return status;
    int code = SQLITE_ROW;
    while ((code = sqlite3_step(statement)) == SQLITE_ROW) {
        const unsigned char* line = sqlite3_column_text(statement, 0);
        const bool sound = line != nullptr && strcmp(reinterpret_cast<const char*>(line), "ok") == 0;
        if (sound) continue;
        if (report == nullptr) status = Status::damaged;
        if (report != nullptr && line != nullptr) report(context, reinterpret_cast<const char*>(line));
    }
    sqlite3_finalize(statement);
    return code == SQLITE_DONE ? status : failure(code);
}

bool Database::moved() {
    int answer = 0;
    return sqlite3_file_control(connection_, "main", SQLITE_FCNTL_HAS_MOVED, &answer) == SQLITE_OK && answer != 0;
}

Status Database::change_counter(std::int64_t& counter) {
    return fetch(version_, counter);
}

Status Database::begin_read() {
    return run("BEGIN");
}
Status Database::begin_write() {
    return run("BEGIN IMMEDIATE");
}
Status Database::commit() {
    return run("COMMIT");
}

void Database::rollback() {
    if (connection_ == nullptr || sqlite3_get_autocommit(connection_) != 0) return;
    sqlite3_exec(connection_, "ROLLBACK", nullptr, nullptr, nullptr);
}

Status Database::find_object(Text table, Text object, std::int64_t& id) {
    sqlite3_stmt* statement = nullptr;
    const Status status = query(find_, statement);
    if (status != Status::ok) return status;
    bind(statement, 1, table);
    bind(statement, 2, object);
    const int code = sqlite3_step(statement);
    id = sqlite3_column_int64(statement, 0);
    sqlite3_reset(statement);
    if (code == SQLITE_ROW) return Status::ok;
    return code == SQLITE_DONE ? Status::not_found : failure(code);
}

Status Database::insert_object(Text table, Text object, std::int64_t& id) {
    if (refusal_of_table(table) != nullptr || refusal_of_object(table, object) != nullptr) return Status::refused;
    // The id goes into the checksum, so it is chosen here. No other writer can come between: a write transaction is
    // open.
    Status status = fetch(next_id_, id);
    sqlite3_stmt* statement = nullptr;
    if (status == Status::ok) status = query(insert_, statement);
    if (status != Status::ok) return status;
    sqlite3_bind_int64(statement, 1, id);
    bind(statement, 2, table);
    bind(statement, 3, object);
    sqlite3_bind_int64(statement, 4, checksum_of_object(id, table, object));
    return perform(statement);
}

Status Database::delete_object(std::int64_t id) {
    for (const Query which : {erase_attributes_, erase_}) {
        sqlite3_stmt* statement = nullptr;
        Status status = query(which, statement);
        if (status != Status::ok) return status;
        sqlite3_bind_int64(statement, 1, id);
        status = perform(statement);
        if (status != Status::ok) return status;
    }
    return Status::ok;
}

Status Database::delete_all() {
    return run("DELETE FROM attribute; DELETE FROM object");
}

Status Database::set_attribute(std::int64_t id, Text table, Text object, Text key, Text value) {
    if (refusal_of_key(key) != nullptr || refusal_of_value(value) != nullptr) return Status::refused;
    sqlite3_stmt* statement = nullptr;
    const Status status = query(put_, statement);
    if (status != Status::ok) return status;
    sqlite3_bind_int64(statement, 1, id);
    bind(statement, 2, key);
    bind(statement, 3, value);
    sqlite3_bind_int64(statement, 4, checksum_of_attribute(id, table, object, key, value));
    return perform(statement);
}

Status Database::get_attribute(std::int64_t id, Text table, Text object, Text key, Text& value) {
    sqlite3_stmt* statement = nullptr;
    Status status = query(get_, statement);
    if (status != Status::ok) return status;
    sqlite3_bind_int64(statement, 1, id);
    bind(statement, 2, key);
    const int code = sqlite3_step(statement);
    if (code == SQLITE_ROW) {
        const Text found = column(statement, 0);
        const bool sound = is_blob(statement, 0) && refusal_of_value(found) == nullptr &&
                           sqlite3_column_int64(statement, 1) == checksum_of_attribute(id, table, object, key, found);
        if (sound) value = {static_cast<char*>(memcpy(value_, found.data(), found.size())), found.size()};
        status = sound ? Status::ok : Status::damaged;
    } else {
        status = code == SQLITE_DONE ? Status::not_found : failure(code);
    }
    sqlite3_reset(statement);
    return status;
}

Status Database::unset_attribute(std::int64_t id, Text key) {
    sqlite3_stmt* statement = nullptr;
    Status status = query(drop_, statement);
    if (status != Status::ok) return status;
    sqlite3_bind_int64(statement, 1, id);
    bind(statement, 2, key);
    status = perform(statement);
    return status == Status::ok && sqlite3_changes(connection_) == 0 ? Status::not_found : status;
}

Status Database::set(Text table, Text object, Text key, Text value) {
    if (refusal_of_table(table) != nullptr || refusal_of_object(table, object) != nullptr) return Status::refused;
    if (refusal_of_key(key) != nullptr || refusal_of_value(value) != nullptr) return Status::refused;
    std::int64_t id = 0;
    Status status = find_object(table, object, id);
    if (status == Status::not_found) status = insert_object(table, object, id);
    return status == Status::ok ? set_attribute(id, table, object, key, value) : status;
}

Status Database::get(Text table, Text object, Text key, Text& value) {
    std::int64_t id = 0;
    const Status status = find_object(table, object, id);
    return status == Status::ok ? get_attribute(id, table, object, key, value) : status;
}

Status Database::unset(Text table, Text object, Text key) {
    std::int64_t id = 0;
    const Status status = find_object(table, object, id);
    return status == Status::ok ? unset_attribute(id, key) : status;
}

Status Database::list(Cursor& cursor, Text table) {
    cursor.close();
    cursor.store_ = this;
    cursor.last_id_ = INT64_MIN;
    cursor.last_key_size_ = 0;
    const Status status = prepare(
        "SELECT o.id, o.tab, o.name, o.crc, a.key, a.value, a.crc FROM object AS o NOT INDEXED "
        "LEFT JOIN attribute AS a ON a.object = o.id WHERE ?1 = x'' OR o.tab = ?1 ORDER BY o.id, a.key",
        cursor.statement_);
    if (status != Status::ok) return status;
    const int code = sqlite3_bind_blob(cursor.statement_, 1, table.empty() ? "" : table.data(),
                                       static_cast<int>(table.size()), SQLITE_TRANSIENT);
    return code == SQLITE_OK ? Status::ok : failure(code);
}

Status Database::check(Report report, void* context) {
    Status status = examine_pages("PRAGMA integrity_check", report, context);
    if (status == Status::ok) status = examine_orphans(report, context);
    return status == Status::ok ? examine_checksums(report, context) : status;
}

Status Database::examine_orphans(Report report, void* context) {
    std::int64_t orphans = 0;
    const Status status = number("SELECT count(*) FROM attribute WHERE object NOT IN (SELECT id FROM object)", orphans);
    if (status != Status::ok || orphans == 0) return status;
    char line[64];
    snprintf(line, sizeof line, "%lld values belong to no object", static_cast<long long>(orphans));
    report(context, line);
    return Status::ok;
}

Status Database::examine_checksums(Report report, void* context) {
    Cursor cursor;
    Row row;
    char line[1024];
    std::int64_t reported = 0;
    Status status = list(cursor);
    while (status == Status::ok && (status = cursor.next(row)) == Status::ok) {
        if (!row.object_sound && row.id != reported) {
            label(line, row, {}, "the object's checksum is wrong");
            report(context, line);
            reported = row.id;
        }
        if (row.object_sound && row.has_attribute && !row.attribute_sound) {
            label(line, row, row.key, "the value's checksum is wrong");
            report(context, line);
        }
    }
    return status == Status::end ? Status::ok : status;
}

void Database::release_code() {
    release_code_pages(reinterpret_cast<const void*>(&sqlite3_open_v2));
}

const char* Database::detail() const {
    return connection_ != nullptr ? sqlite3_errmsg(connection_) : sqlite3_errstr(code_);
}

bool Database::worth_another_try() const {
    return code_ == SQLITE_READONLY_RECOVERY || code_ == SQLITE_READONLY_CANTINIT || code_ == SQLITE_BUSY_RECOVERY ||
           (code_ & 0xff) == SQLITE_IOERR;
}

Status Database::run(const char* sql) {
    const int code = sqlite3_exec(connection_, sql, nullptr, nullptr, nullptr);
    return code == SQLITE_OK ? Status::ok : failure(code);
}

Status Database::number(const char* sql, std::int64_t& result) {
    sqlite3_stmt* statement = nullptr;
    const Status status = prepare(sql, statement);
    if (status != Status::ok) return status;
    const int code = sqlite3_step(statement);
    result = sqlite3_column_int64(statement, 0);
    sqlite3_finalize(statement);
    return code == SQLITE_ROW ? Status::ok : failure(code);
}

Status Database::prepare(const char* sql, sqlite3_stmt*& statement, unsigned flags) {
    const int code = sqlite3_prepare_v3(connection_, sql, -1, flags, &statement, nullptr);
    return code == SQLITE_OK ? Status::ok : failure(code);
}

Status Database::query(Query which, sqlite3_stmt*& statement) {
    static constexpr const char* sql[query_count_] = {
        "SELECT id FROM object WHERE tab = ?1 AND name = ?2 ORDER BY id LIMIT 1",
        "SELECT coalesce(max(id), 0) + 1 FROM object",
        "INSERT INTO object(id, tab, name, crc) VALUES(?1, ?2, ?3, ?4)",
        "DELETE FROM object WHERE id = ?1",
        "DELETE FROM attribute WHERE object = ?1",
        "INSERT OR REPLACE INTO attribute(object, key, value, crc) VALUES(?1, ?2, ?3, ?4)",
        "SELECT value, crc FROM attribute WHERE object = ?1 AND key = ?2",
        "DELETE FROM attribute WHERE object = ?1 AND key = ?2",
        "PRAGMA data_version",
    };
    Status status = Status::ok;
    if (queries_[which] == nullptr) status = prepare(sql[which], queries_[which], SQLITE_PREPARE_PERSISTENT);
    statement = queries_[which];
    return status;
}

// The one number that a query without parameters answers.
Status Database::fetch(Query which, std::int64_t& result) {
    sqlite3_stmt* statement = nullptr;
    const Status status = query(which, statement);
    if (status != Status::ok) return status;
    const int code = sqlite3_step(statement);
    result = sqlite3_column_int64(statement, 0);
    sqlite3_reset(statement);
    return code == SQLITE_ROW ? Status::ok : failure(code);
}

Status Database::perform(sqlite3_stmt* statement) {
    const int code = sqlite3_step(statement);
    sqlite3_reset(statement);
    sqlite3_clear_bindings(statement);
    return code == SQLITE_DONE ? Status::ok : failure(code);
}

// CODE may be SQLITE_DONE where a row had to come: the file lacks something that every store has.
Status Database::failure(int code) {
    code_ = code == SQLITE_DONE ? SQLITE_CORRUPT : code;
    return status_of(code_);
}

}  // namespace cfql
