#include "reader.h"

#include <errno.h>
#include <sys/stat.h>
#include <syslog.h>
#include <time.h>

#include <algorithm>

namespace cfql {
namespace {

constexpr std::int64_t look_interval_ms = 50;
constexpr std::int64_t look_cost_factor = 4;
constexpr std::int64_t retry_interval_ms = 1000;
constexpr std::int64_t log_interval_ms = 60000;

// The coarse clock: a few milliseconds of error are nothing here, and every read asks for the time.
std::int64_t milliseconds() {
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
}

}  // namespace

// A large store takes a while to load, and a locked one to give up. Counting the interval from the end, and in
// proportion, leaves most of the time for answers even while somebody writes or locks without pause.
void Reader::refresh(bool at_once) {
    now_ = milliseconds();
    if ((now_ < next_look_ && !at_once) || now_ < next_try_) return;
    Status status = look();
    if (status != Status::ok && store_.worth_another_try()) status = look();
    const std::int64_t begin = now_;
    now_ = milliseconds();
    const std::int64_t pause = look_cost_factor * (now_ - begin);
    next_look_ = now_ + std::max(look_interval_ms, pause);
    if (status != Status::ok && status != Status::absent) fail(status, pause);
    Database::release_code();
}

Status Reader::look() {
    if (store_.is_open() && store_.moved()) close();
    Status status = store_.is_open() ? Status::ok : open();
    std::int64_t counter = 0;
    if (status == Status::ok) status = store_.change_counter(counter);
    if (status == Status::ok && loaded_ && counter == counter_) return status;
    if (status == Status::ok) status = load();
    return status;
}

// A file that was removed or replaced takes its contents with it, one that only became unreadable does not.
Status Reader::open() {
    const Status status = store_.open(store_path(), Access::read);
    struct stat file;
    const bool there = stat(store_path(), &file) == 0;
    const bool gone = !there && (errno == ENOENT || errno == ENOTDIR);
    if (gone || (there && (file.st_dev != device_ || file.st_ino != inode_))) forget();
    if (there) {
        device_ = file.st_dev;
        inode_ = file.st_ino;
    }
    return status;
}

// Counter and contents are of one transaction. The old ones, of both, stay until the new ones are complete.
Status Reader::load() {
    Snapshot next;
    bool fits = true;
    std::int64_t counter = 0;
    Status status = store_.begin_read();
    if (status == Status::ok) status = store_.change_counter(counter);
    if (status == Status::ok) status = next.load(store_, fits);
    store_.rollback();
    if (status != Status::ok) return status;
    snapshot_.swap(next);
    contents_ = fits ? Contents::snapshot : Contents::too_large;
    counter_ = counter;
    loaded_ = true;
    return status;
}

bool Reader::get(Text table, Text object, Text key, Text& value) {
    if (contents_ == Contents::snapshot) return snapshot_.get(table, object, key, value);
    if (contents_ == Contents::none || !store_.is_open()) return false;
    const Status status = store_.get(table, object, key, value);
    if (status != Status::ok && status != Status::not_found && status != Status::damaged) fail(status);
    return status == Status::ok;
}

bool Reader::objects(Text table, const cfqlquery_node* filter, Array<char>& names, std::size_t& count) {
    if (contents_ == Contents::snapshot) return snapshot_.objects(table, filter, names, count);
    if (contents_ == Contents::none || !store_.is_open()) return true;
    const Status status = walk(table, filter, names, count);
    store_.rollback();
    if (status != Status::ok) fail(status);
    return status == Status::ok;
}

Status Reader::walk(Text table, const cfqlquery_node* filter, Array<char>& names, std::size_t& count) {
    Cursor cursor;
    Row row;
    Status status = store_.begin_read();
    if (status == Status::ok) status = store_.list(cursor, table);
    bool first = true;
    std::int64_t id = 0;
    while (status == Status::ok && (status = cursor.next(row)) == Status::ok) {
        if (!row.object_sound || (!first && row.id == id)) continue;
        first = false;
        id = row.id;
        status = carries(row, filter);
        if (status == Status::ok) {
            if (!names.append(row.object.data(), row.object.size()) || !names.append("", 1)) return Status::no_memory;
            ++count;
        }
        if (status == Status::not_found) status = Status::ok;
    }
    return status == Status::end ? Status::ok : status;
}

Status Reader::carries(const Row& row, const cfqlquery_node* filter) {
    for (const cfqlquery_node* pair = filter; pair != nullptr; pair = pair->next) {
        if (pair->name == nullptr || pair->value == nullptr) return Status::not_found;
        Text value;
        const Status status = store_.get_attribute(row.id, row.table, row.object, pair->name, value);
        if (status == Status::damaged) return Status::not_found;
        if (status != Status::ok) return status;
        if (value != pair->value) return Status::not_found;
    }
    return Status::ok;
}

void Reader::expire() {
    next_look_ = next_try_ = 0;
}

void Reader::close() {
    store_.close();
    loaded_ = false;
}

void Reader::forget() {
    snapshot_.clear();
    contents_ = Contents::none;
}

// The connection is given up: the next attempt examines the file anew.
void Reader::fail(Status status, std::int64_t pause) {
    close();
    next_try_ = now_ + std::max(retry_interval_ms, pause);
    if (now_ < next_line_) return;
    next_line_ = now_ + log_interval_ms;
    syslog(LOG_ERR, "cfqlquery: %s: %s%s", store_path(), describe(status),
           contents_ == Contents::snapshot ? "; the last good contents stay in use" : "");
}

}  // namespace cfql
