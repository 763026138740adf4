// Examining a store.
#include <sqlite3.h>
#include <stdio.h>
#include <string.h>

#include "database.h"
#include "format.h"

namespace cfql {
namespace {

// Names an attribute (or, with an empty `key`, an object) in a message: control characters are shown as "?".
void label(char (&out)[1024], const Row& row, Text key, const char* fault) {
    snprintf(out, sizeof out, "%.*s %.*s%s%.*s: %s", static_cast<int>(row.table.size()), row.table.data(),
             static_cast<int>(row.object.size()), row.object.data(), key.empty() ? "" : " ",
             static_cast<int>(key.size()), key.data(), fault);
    for (char* c = out; *c != '\0'; ++c) {
        if (static_cast<unsigned char>(*c) < 0x20 || *c == 0x7f) *c = '?';
    }
}

}  // namespace

// SQLite reports a page that could not be read as a fault, too. Real damage shows again the second time.
Status Database::examine_structure() {
    constexpr const char* pragma = "PRAGMA quick_check(1)";
    Status status = examine_pages(pragma, nullptr, nullptr);
    if (status == Status::damaged) status = examine_pages(pragma, nullptr, nullptr);
    sound_->known = status == Status::ok;
    sound_->file = file_;
    sound_->counter = counter_;
    return status;
}

bool Database::is_known_sound() const {
    return sound_->known && sound_->file == file_ && sound_->counter == counter_;
}

// `pragma` returns one row "ok", or a row for each fault. Without `report`, a fault becomes the result.
Status Database::examine_pages(const char* pragma, Report report, void* context) {
    sqlite3_stmt* statement = nullptr;
    Status status = prepare(pragma, statement);
    if (status != Status::ok) return status;
    int code = SQLITE_ROW;
    while ((code = sqlite3_step(statement)) == SQLITE_ROW) {
        const unsigned char* line = sqlite3_column_text(statement, 0);
        const bool sound = line && strcmp(reinterpret_cast<const char*>(line), "ok") == 0;
        if (sound) continue;
        if (!report) status = damage(line ? reinterpret_cast<const char*>(line) : "");
        if (report && line) report(context, reinterpret_cast<const char*>(line));
    }
    sqlite3_finalize(statement);
    return code == SQLITE_DONE ? status : failure(code);
}

Status Database::check(Report report, void* context) {
    pages_ = 10 * page_limit;  // it may take longer than other statements, but not for ever
    Status status = examine_pages("PRAGMA integrity_check", report, context);
    if (status == Status::ok) status = examine_orphans(report, context);
    return status == Status::ok ? examine_checksums(report, context) : status;
}

Status Database::examine_orphans(Report report, void* context) {
    int64_t orphans = 0;
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
    int64_t reported = 0;
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

}  // namespace cfql
