#include "database.h"

#include <sqlite3.h>
#include <stdio.h>
#include <string.h>
#include <time.h>

#include "format.h"
#include "vfs.h"

namespace cfql {
namespace {

constexpr int longest_row = 65536;  // octets; sound rows are far shorter, a damaged one may claim a gigabyte

// How many steps a statement may take before the file counts as damaged: a few times what the worst sound store needs.
constexpr int steps_a_call = 1000;
constexpr int64_t calls_at_least = 50;
constexpr int64_t calls_a_page = 2;

// None of these reads the schema. No mapped pages: reading one that the medium no longer delivers would raise a signal.
// A transaction writes to no other file than the journal.
constexpr const char* first_pragmas =
    "PRAGMA mmap_size=0;"
    "PRAGMA temp_store=MEMORY;"
    "PRAGMA cell_size_check=ON;"
    "PRAGMA trusted_schema=OFF;"
    "PRAGMA secure_delete=ON;";

// The journal is truncated, not deleted: a deletion is not on stable storage before the directory is.
constexpr const char* writer_pragmas = "PRAGMA synchronous=FULL; PRAGMA journal_mode=TRUNCATE; PRAGMA max_page_count=";

Status status_of(int code) {
    if (code == SQLITE_READONLY_ROLLBACK) return Status::interrupted;
    if (code == SQLITE_IOERR_SHORT_READ) return Status::damaged;  // a file that was cut off while it was read
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
    if (!octets) return "";
    return {static_cast<const char*>(octets), static_cast<size_t>(sqlite3_column_bytes(statement, index))};
}

bool is_blob(sqlite3_stmt* statement, int index) {
    return sqlite3_column_type(statement, index) == SQLITE_BLOB;
}

int64_t milliseconds() {
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
}

}  // namespace

void Cursor::close() {
    sqlite3_finalize(statement_);
    statement_ = nullptr;
}

// A damaged tree can lead back to pages that were read before. A listing ends all the same, because every row must come
// after the one before.
bool Cursor::ascends(int64_t id, bool has_key, Text key) {
    key = key.substr(0, text_limit);
    const bool same_object = id == last_id_;
    if (id < last_id_ || (same_object && (!has_key || key <= Text(last_key_, last_key_size_)))) return false;
    last_id_ = id;
    last_key_size_ = key.size();
    memcpy(last_key_, key.data(), key.size());
    return true;
}

// Reads what is the same for all rows of an object.
void Cursor::read_object(Row& row) {
    row.table = column(statement_, 1);
    row.object = column(statement_, 2);
    if (!begun_ || row.id != last_id_) {
        checksum_ = Checksum(row.id, row.table, row.object);
        object_sound_ = is_blob(statement_, 1) && is_blob(statement_, 2) && !table_error(row.table) &&
                        !object_error(row.table, row.object) &&
                        sqlite3_column_int64(statement_, 3) == checksum_.of_object();
    }
    row.object_sound = object_sound_;
    begun_ = true;
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
    read_object(row);
    row.has_attribute = sqlite3_column_type(columns, 4) != SQLITE_NULL;
    row.key = column(columns, 4);
    row.value = column(columns, 5);
    row.attribute_sound = row.has_attribute && is_blob(columns, 4) && is_blob(columns, 5) && !key_error(row.key) &&
                          !value_error(row.value) &&
                          sqlite3_column_int64(columns, 6) == checksum_.of_attribute(row.key, row.value);
    if (!ascends(row.id, row.has_attribute, row.key)) return close(), Status::damaged;
    return Status::ok;
}

Status Database::open(const char* path, Access access, int wait_ms) {
    code_ = SQLITE_OK;
    detail_[0] = '\0';
    Status status = open_once(path, access, wait_ms);
    // If the recovery fails, the journal stays, and the pages that it protects cannot be read either.
    const bool reads = access == Access::recover || access == Access::salvage;
    const bool failed = status == Status::io_error || status == Status::denied || status == Status::read_only;
    if (reads && failed) status = open_for_load(path, reader_wait_ms);
    const bool examines = access != Access::salvage && !is_known_sound();
    if (status == Status::ok && examines) status = examine_structure();
    if (status == Status::ok) rollback();
    if (status == Status::ok && access == Access::write) status = prepare_to_write();
    if (status != Status::ok) close();
    return status;
}

Status Database::open_once(const char* path, Access access, int wait_ms) {
    if (access == Access::read) return open_for_load(path, reader_wait_ms);
    return connect(path, SQLITE_OPEN_READWRITE, wait_ms);
}

Status Database::open_for_load(const char* path, int wait_ms) {
    return connect(path, SQLITE_OPEN_READONLY, wait_ms);
}

// Leaves a read transaction open, whose lock is taken before SQLite reads any of the schema.
Status Database::connect(const char* path, int flags, int wait_ms) {
    char file[PATH_MAX];
    Status status = literal_path(path, file) ? Status::ok : Status::absent;
    if (status == Status::ok && is_empty(file)) status = Status::not_a_store;
    if (status == Status::ok) status = open_file(file, flags, wait_ms);
    if (status == Status::ok) status = begin_read();
    if (status == Status::ok) status = run("PRAGMA cache_size=-64");
    if (status != Status::ok) close();
    return status;
}

// Reads nothing through SQLite yet but a few octets of the header.
Status Database::open_file(const char* file, int flags, int wait_ms) {
    close();
    code_ = SQLITE_OK;
    detail_[0] = '\0';
    wait_ms_ = wait_ms;
    pages_ = 0;
    const Status status = examine_path(file, file_);
    if (status != Status::ok) return status;
    const int code =
        sqlite3_open_v2(file, &connection_, flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_PRIVATECACHE, vfs_name());
    return code == SQLITE_OK ? configure() : failure(code);
}

Status Database::configure() {
    sqlite3_extended_result_codes(connection_, 1);
    sqlite3_progress_handler(connection_, steps_a_call, count_steps, this);
    sqlite3_busy_handler(connection_, wait_for_lock, this);
    sqlite3_limit(connection_, SQLITE_LIMIT_LENGTH, longest_row);
    sqlite3_limit(connection_, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_db_config(connection_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    // No pool of small blocks: it takes up to 120 kB at once to spare a few allocations.
    sqlite3_db_config(connection_, SQLITE_DBCONFIG_LOOKASIDE, nullptr, 0, 0);
    FirstPage page;
    const Status status = read_page(page);
    if (status != Status::ok) return status;
    if (has_log_mode(page)) return Status::old_mode;
    if (is_obstructed(sqlite3_db_filename(connection_, "main"))) return Status::obstructed;
    return run(first_pragmas);
}

Status Database::prepare_to_write() {
    if (sqlite3_db_readonly(connection_, "main") != 0) return Status::read_only;
    pages_ = page_limit;
    char sql[128];
    snprintf(sql, sizeof sql, "%s%lld", writer_pragmas, static_cast<long long>(page_limit));
    return run(sql);
}

// SQLite's own handler waits longer each time, so that a writer that commits without pause would starve it.
int Database::wait_for_lock(void* database, int tries) {
    auto& self = *static_cast<Database*>(database);
    const int64_t now = milliseconds();
    if (tries == 0) self.deadline_ = now + self.wait_ms_;
    if (now >= self.deadline_) return 0;
    constexpr struct timespec pause = {0, 1000000};
    nanosleep(&pause, nullptr);
    return 1;
}

int Database::count_steps(void* database) {
    return --static_cast<Database*>(database)->steps_left_ < 0 ? 1 : 0;
}

void Database::allow_steps() {
    steps_left_ = calls_at_least + calls_a_page * pages_;
}

void Database::close() {
    for (sqlite3_stmt*& statement : queries_) {
        sqlite3_finalize(statement);
        statement = nullptr;
    }
    sqlite3_close_v2(connection_);
    connection_ = nullptr;
}

Status Database::begin_read() {
    return begin("BEGIN");
}
Status Database::begin_write() {
    return begin("BEGIN IMMEDIATE");
}
// What was sound before is sound after it.
Status Database::commit() {
    const bool was_sound = sound_->known && sound_->counter == counter_;
    const Status status = run("COMMIT");
    FileState file;
    sound_->known =
        status == Status::ok && was_sound && examine_path(sqlite3_db_filename(connection_, "main"), file) == Status::ok;
    if (sound_->known) sound_->file = file, sound_->counter = counter_ + 1;
    return status;
}

// The query takes the lock and does not read the schema, which is examined first.
Status Database::begin(const char* sql) {
    int64_t kind = 0;
    Status status = run(sql);
    if (status == Status::ok) status = number("PRAGMA application_id", kind);
    if (status == Status::ok) status = examine_page();
    if (status != Status::ok) rollback();
    return status;
}

// Through SQLite's own descriptor: closing another one would drop the lock.
Status Database::read_page(FirstPage& page) {
    sqlite3_file* file = nullptr;
    sqlite3_file_control(connection_, "main", SQLITE_FCNTL_FILE_POINTER, &file);
    sqlite3_int64 size = 0;
    int code = file->pMethods->xFileSize(file, &size);
    if (code == SQLITE_OK) code = file->pMethods->xRead(file, page.octets, page_size, 0);
    page.file_size = size;
    return code == SQLITE_OK || code == SQLITE_IOERR_SHORT_READ ? Status::ok : failure(code);
}

Status Database::examine_page() {
    FirstPage page;
    const char* fault = nullptr;
    Status status = read_page(page);
    if (status == Status::ok) status = examine_first_page(page, fault);
    counter_ = number_at(page.octets + counter_offset, 4);
    if (pages_ < page_limit) pages_ = page.file_size / int64_t{page_size};
    return fault ? damage(fault) : status;
}

void Database::rollback() {
    if (!connection_ || sqlite3_get_autocommit(connection_) != 0) return;
    sqlite3_exec(connection_, "ROLLBACK", nullptr, nullptr, nullptr);
}

Status Database::find_object(Text table, Text object, int64_t& id) {
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

Status Database::insert_object(Text table, Text object, int64_t& id) {
    if (table_error(table) || object_error(table, object)) return Status::refused;
    // The id goes into the checksum, so it is chosen here. No other writer can come between: a write transaction is
    // open.
    Status status = fetch(next_id_, id);
    sqlite3_stmt* statement = nullptr;
    if (status == Status::ok) status = query(insert_, statement);
    if (status != Status::ok) return status;
    sqlite3_bind_int64(statement, 1, id);
    bind(statement, 2, table);
    bind(statement, 3, object);
    sqlite3_bind_int64(statement, 4, Checksum(id, table, object).of_object());
    return perform(statement);
}

Status Database::delete_object(int64_t id) {
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

Status Database::set_attribute(int64_t id, Text table, Text object, Text key, Text value) {
    if (key_error(key) || value_error(value)) return Status::refused;
    sqlite3_stmt* statement = nullptr;
    const Status status = query(put_, statement);
    if (status != Status::ok) return status;
    sqlite3_bind_int64(statement, 1, id);
    bind(statement, 2, key);
    bind(statement, 3, value);
    sqlite3_bind_int64(statement, 4, Checksum(id, table, object).of_attribute(key, value));
    return perform(statement);
}

Status Database::get_attribute(int64_t id, Text table, Text object, Text key, Text& value) {
    sqlite3_stmt* statement = nullptr;
    Status status = query(get_, statement);
    if (status != Status::ok) return status;
    sqlite3_bind_int64(statement, 1, id);
    bind(statement, 2, key);
    const int code = sqlite3_step(statement);
    if (code == SQLITE_ROW) {
        const Text found = column(statement, 0);
        const bool sound = is_blob(statement, 0) && !value_error(found) &&
                           sqlite3_column_int64(statement, 1) == Checksum(id, table, object).of_attribute(key, found);
        if (sound) value = {static_cast<char*>(memcpy(value_, found.data(), found.size())), found.size()};
        status = sound ? Status::ok : Status::damaged;
    } else {
        status = code == SQLITE_DONE ? Status::not_found : failure(code);
    }
    sqlite3_reset(statement);
    return status;
}

Status Database::unset_attribute(int64_t id, Text key) {
    sqlite3_stmt* statement = nullptr;
    Status status = query(drop_, statement);
    if (status != Status::ok) return status;
    sqlite3_bind_int64(statement, 1, id);
    bind(statement, 2, key);
    status = perform(statement);
    return status == Status::ok && sqlite3_changes(connection_) == 0 ? Status::not_found : status;
}

Status Database::set(Text table, Text object, Text key, Text value) {
    if (table_error(table) || object_error(table, object)) return Status::refused;
    if (key_error(key) || value_error(value)) return Status::refused;
    int64_t id = 0;
    Status status = find_object(table, object, id);
    if (status == Status::not_found) status = insert_object(table, object, id);
    return status == Status::ok ? set_attribute(id, table, object, key, value) : status;
}

Status Database::get(Text table, Text object, Text key, Text& value) {
    int64_t id = 0;
    const Status status = find_object(table, object, id);
    return status == Status::ok ? get_attribute(id, table, object, key, value) : status;
}

Status Database::unset(Text table, Text object, Text key) {
    int64_t id = 0;
    const Status status = find_object(table, object, id);
    return status == Status::ok ? unset_attribute(id, key) : status;
}

Status Database::list(Cursor& cursor, Text table, int64_t after) {
    cursor.close();
    cursor.store_ = this;
    cursor.begun_ = false;
    cursor.last_id_ = after;
    cursor.last_key_size_ = 0;
    const Status status = prepare(
        "SELECT o.id, o.tab, o.name, o.crc, a.key, a.value, a.crc FROM object AS o NOT INDEXED "
        "LEFT JOIN attribute AS a ON a.object = o.id WHERE (?1 = x'' OR o.tab = ?1) AND o.id > ?2 ORDER BY o.id, a.key",
        cursor.statement_);
    if (status != Status::ok) return status;
    sqlite3_bind_int64(cursor.statement_, 2, after);
    const int code = sqlite3_bind_blob(cursor.statement_, 1, table.empty() ? "" : table.data(),
                                       static_cast<int>(table.size()), SQLITE_TRANSIENT);
    return code == SQLITE_OK ? Status::ok : failure(code);
}

bool Database::worth_another_try() const {
    return (code_ & 0xff) == SQLITE_IOERR;
}

Status Database::run(const char* sql) {
    allow_steps();
    const int code = sqlite3_exec(connection_, sql, nullptr, nullptr, nullptr);
    return code == SQLITE_OK ? Status::ok : failure(code);
}

Status Database::number(const char* sql, int64_t& result) {
    sqlite3_stmt* statement = nullptr;
    const Status status = prepare(sql, statement);
    if (status != Status::ok) return status;
    const int code = sqlite3_step(statement);
    result = sqlite3_column_int64(statement, 0);
    sqlite3_finalize(statement);
    return code == SQLITE_ROW ? Status::ok : failure(code);
}

Status Database::prepare(const char* sql, sqlite3_stmt*& statement, unsigned flags) {
    allow_steps();
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
    };
    Status status = Status::ok;
    allow_steps();
    if (!queries_[which]) status = prepare(sql[which], queries_[which], SQLITE_PREPARE_PERSISTENT);
    statement = queries_[which];
    return status;
}

// The single number that a query without parameters returns.
Status Database::fetch(Query which, int64_t& result) {
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

// `code` may be SQLITE_DONE if a row was expected: the file lacks something that every store has.
Status Database::failure(int code) {
    if (code == SQLITE_INTERRUPT) return damage("it takes longer to read than any sound store");
    code_ = code == SQLITE_DONE ? SQLITE_CORRUPT : code;
    if ((code_ & 0xff) == SQLITE_CORRUPT) sound_->known = false;
    const bool known = connection_ && sqlite3_extended_errcode(connection_) == code_;
    snprintf(detail_, sizeof detail_, "%s", known ? sqlite3_errmsg(connection_) : sqlite3_errstr(code_));
    return status_of(code_);
}

Status Database::damage(const char* what) {
    code_ = SQLITE_CORRUPT;
    sound_->known = false;
    snprintf(detail_, sizeof detail_, "%s", what);
    return Status::damaged;
}

}  // namespace cfql
