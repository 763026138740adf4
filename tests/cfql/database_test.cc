// The database layer by itself: what it writes to the file, what it refuses, what it reports.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "checksum.h"
#include "fixture.h"
#include "format.h"
#include "watch.h"

namespace {

using namespace store_test;
using cfql::Access;
using cfql::Status;
namespace fs = std::filesystem;

std::string asked(const std::string& path, const char* query) {
    sqlite3* connection = nullptr;
    sqlite3_stmt* statement = nullptr;
    sqlite3_open_v2(path.c_str(), &connection, SQLITE_OPEN_READONLY, nullptr);
    sqlite3_prepare_v2(connection, query, -1, &statement, nullptr);
    std::string answer;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        for (int i = 0; i < sqlite3_column_count(statement); ++i) {
            const unsigned char* text = sqlite3_column_text(statement, i);
            answer += (text == nullptr ? std::string("-") : reinterpret_cast<const char*>(text)) + "|";
        }
    }
    sqlite3_finalize(statement);
    sqlite3_close(connection);
    return answer;
}

std::vector<std::string> faults(const std::string& path) {
    cfql::Database store;
    std::vector<std::string> lines;
    require(store.open(path.c_str(), Access::read));
    require(store.check([](void* to, const char* line) { static_cast<std::vector<std::string>*>(to)->push_back(line); },
                        &lines));
    return lines;
}

TEST(Checksum, IsTheCrc32OfIdAndTexts) {
    // Computed by zlib over "\0\0\0\0\0\0\0\1interface\0wlan0\0" and the same with "ssid\0office\0" after it.
    EXPECT_EQ(cfql::Checksum(1, "interface", "wlan0").of_object(), 1756320469U);
    EXPECT_EQ(cfql::Checksum(1, "interface", "wlan0").of_attribute("ssid", "office"), 2576157382U);
    EXPECT_EQ(cfql::Checksum(-2, "", "").of_object(), 2952842132U);
}

TEST(File, HasTheFormatThatIsDocumented) {
    const Place place;
    make(place.path(), {{"interface", "wlan0", "ssid", "office"}});
    const struct {
        const char *query, *answer;
    } facts[] = {
        {"PRAGMA application_id", "1667658092|"},
        {"PRAGMA user_version", "1|"},
        {"PRAGMA page_size", "1024|"},
        {"PRAGMA encoding", "UTF-8|"},
        {"PRAGMA journal_mode", "delete|"},  // of this connection: the file names none
        {"SELECT id, tab, name, typeof(tab), typeof(name), crc FROM object", "1|interface|wlan0|blob|blob|1756320469|"},
        {"SELECT object, key, value, typeof(key), typeof(value), crc FROM attribute",
         "1|ssid|office|blob|blob|2576157382|"},
    };
    for (const auto& fact : facts)
        EXPECT_EQ(asked(place.path(), fact.query), fact.answer) << fact.query;
    EXPECT_EQ(fs::file_size(place.path()) % 1024, 0U);
}

TEST(File, IsAloneButForACutJournalAndKeepsNoOldSecrets) {
    const Place place;
    make(place.path(), {{"interface", "wlan0", "wep-key-1", "0123456789"}});
    put(place.path(), {{"interface", "wlan0", "wep-key-1", ""}});
    EXPECT_FALSE(fs::exists(place.path() + "-wal"));
    EXPECT_FALSE(fs::exists(place.path() + "-shm"));
    EXPECT_EQ(fs::file_size(place.path() + "-journal"), 0U);
    EXPECT_EQ(in_child([&] { return execlp("grep", "grep", "-q", "0123456789", place.path().c_str(), nullptr); }), 1);
}

TEST(Create, MakesAStoreOnceWhateverTheUmask) {
    const Place place;
    const mode_t before = umask(0777);
    cfql::Database store;
    EXPECT_EQ(store.create(place.path().c_str()), Status::ok);
    umask(before);
    struct stat file;
    ASSERT_EQ(stat(place.path().c_str(), &file), 0);
    EXPECT_EQ(file.st_mode & 07777, 0640U);
    put(place.path(), {{"system", "", "model", "x"}});
    EXPECT_EQ(store.create(place.path().c_str()), Status::exists);
    EXPECT_EQ(asked(place.path(), "SELECT value FROM attribute"), "x|");
}

TEST(Create, TouchesNothingElse) {
    const Place place;
    const std::string text = place.directory() + "/text";
    const std::string other = place.directory() + "/other";
    {
        EXPECT_EQ(in_child([&] { return execl("/bin/sh", "sh", "-c", ("printf text >" + text).c_str(), nullptr); }), 0);
    }
    sql(other, "CREATE TABLE t(x)");
    const auto size = fs::file_size(other);
    const struct {
        std::string path;
        Status status;
    } facts[] = {
        {place.directory() + "/none/store.db", Status::absent},
        {text + "/store.db", Status::absent},
        {place.directory(), Status::not_a_store},
        {text, Status::not_a_store},
        {other, Status::not_a_store},
        {std::string(5000, 'x'), Status::absent},
    };
    for (const auto& fact : facts) {
        cfql::Database store;
        EXPECT_EQ(store.create(fact.path.c_str()), fact.status) << fact.path;
        EXPECT_FALSE(store.is_open());
    }
    EXPECT_EQ(fs::file_size(text), 4U);
    EXPECT_EQ(fs::file_size(other), size);
}

TEST(Create, CompletesAFileThatAnInterruptedCallLeft) {
    const Place place;
    close(open(place.path().c_str(), O_CREAT | O_WRONLY, 0640));
    make(place.path(), {{"system", "", "model", "x"}});
    EXPECT_EQ(faults(place.path()), std::vector<std::string>());
}

TEST(Create, NamesWithAMeaningToSqliteArePlainFiles) {
    const Place place;
    fs::current_path(place.directory());
    for (const char* name : {":memory:", "file:x?mode=memory", "store.db"}) {
        make(name, {{"system", "", "model", "x"}});
        EXPECT_TRUE(fs::exists(place.directory() + "/" + name)) << name;
    }
    fs::current_path("/");
}

TEST(Path, ComesFromTheEnvironment) {
    const Place place;
    EXPECT_EQ(cfql::store_path(), place.path());
    setenv("CFQL_STORE", "", 1);
    EXPECT_STREQ(cfql::store_path(), "/var/lib/cfql/store.db");
    unsetenv("CFQL_STORE");
    EXPECT_STREQ(cfql::store_path(), "/var/lib/cfql/store.db");
}

TEST(Refusals, NameTheRule) {
    using namespace std::string_view_literals;
    const std::string text(255, 't');
    const std::string value(4096, 'v');
    const struct {
        const char* answer;
        const char* expected;
    } facts[] = {
        {cfql::table_error("interface"), nullptr},
        {cfql::table_error(text), nullptr},
        {cfql::table_error(""), "the table is empty"},
        {cfql::table_error(text + "t"), "the table is longer than 255 octets"},
        {cfql::table_error("a\0b"sv), "the table contains a NUL"},
        {cfql::object_error("system", ""), nullptr},
        {cfql::object_error("system", "x"), "the object of the table \"system\" has no name"},
        {cfql::object_error("bss", text), nullptr},
        {cfql::object_error("bss", ""), "the object's name is empty"},
        {cfql::object_error("bss", text + "t"), "the object's name is longer than 255 octets"},
        {cfql::key_error(text), nullptr},
        {cfql::key_error("names"), nullptr},
        {cfql::key_error("name"), "\"name\" is the object's name, not a key"},
        {cfql::key_error(""), "the key is empty"},
        {cfql::key_error(text + "t"), "the key is longer than 255 octets"},
        {cfql::value_error(""), nullptr},
        {cfql::value_error(value), nullptr},
        {cfql::value_error(value + "v"), "the value is longer than 4096 octets"},
        {cfql::value_error("a\0"sv), "the value contains a NUL"},
    };
    for (const auto& fact : facts)
        EXPECT_STREQ(fact.answer, fact.expected);
}

TEST(Transaction, IsAllOrNothing) {
    const Place place;
    make(place.path(), {{"system", "", "model", "x"}});
    cfql::Database store;
    cfql::Text value;
    require(store.open(place.path().c_str(), Access::write));
    require(store.begin_write());
    require(store.set("system", "", "model", "y"));
    require(store.delete_all());
    require(store.set("interface", "wlan0", "ssid", "z"));
    store.rollback();
    store.rollback();
    EXPECT_EQ(store.get("system", "", "model", value), Status::ok);
    EXPECT_EQ(value, "x");
    EXPECT_EQ(store.get("interface", "wlan0", "ssid", value), Status::not_found);
}

TEST(Transaction, UnsetAndDelete) {
    const Place place;
    make(place.path(), {{"bss", "b", "k", "1"}, {"bss", "b", "l", "2"}, {"bss", "c", "k", "3"}});
    cfql::Database store;
    cfql::Text value;
    std::int64_t id = 0;
    require(store.open(place.path().c_str(), Access::write));
    EXPECT_EQ(store.unset("bss", "b", "k"), Status::ok);
    EXPECT_EQ(store.unset("bss", "b", "k"), Status::not_found);
    EXPECT_EQ(store.unset("bss", "d", "k"), Status::not_found);
    EXPECT_EQ(store.find_object("bss", "b", id), Status::ok);
    EXPECT_EQ(store.delete_object(id), Status::ok);
    EXPECT_EQ(store.delete_object(id), Status::ok);
    EXPECT_EQ(store.get("bss", "b", "l", value), Status::not_found);
    EXPECT_EQ(store.get("bss", "c", "k", value), Status::ok);
    EXPECT_EQ(faults(place.path()), std::vector<std::string>());
}

TEST(List, HasObjectsInOrderOfInsertionAndAttributesByKey) {
    const Place place;
    make(place.path(), {{"b", "2", "z", "1"}, {"a", "1", "y", "2"}, {"b", "2", "a", "3"}});
    cfql::Database store;
    std::int64_t id = 0;
    require(store.open(place.path().c_str(), Access::write));
    require(store.insert_object("b", "2", id));
    const auto listed = [&store](cfql::Text table) {
        std::string lines;
        cfql::Cursor cursor;
        cfql::Row row;
        Status status = store.list(cursor, table);
        while (status == Status::ok && (status = cursor.next(row)) == Status::ok) {
            EXPECT_TRUE(row.object_sound && row.attribute_sound == row.has_attribute);
            lines += std::to_string(row.id) + std::string(row.table) + std::string(row.object);
            lines += row.has_attribute ? std::string(row.key) + std::string(row.value) + " " : ". ";
        }
        EXPECT_EQ(status, Status::end);
        return lines;
    };
    EXPECT_EQ(listed(""), "1b2a3 1b2z1 2a1y2 3b2. ");
    EXPECT_EQ(listed("b"), "1b2a3 1b2z1 3b2. ");
    EXPECT_EQ(listed("c"), "");
}

TEST(Check, NamesEveryFaultWithoutValues) {
    const Place place;
    make(place.path(), {{"bss", "b", "k", "secret"}, {"bss", "c", "l", "2"}, {"bss", "\n", "m", "3"}});
    EXPECT_EQ(faults(place.path()), std::vector<std::string>());
    sql(place.path(),
        "UPDATE attribute SET value = CAST('other' AS BLOB) WHERE object = 1; UPDATE object SET crc = 0 WHERE id = 2;"
        "UPDATE object SET crc = 0 WHERE id = 3; INSERT INTO attribute VALUES(9, x'00', x'00', 0)");
    EXPECT_EQ(
        faults(place.path()),
        (std::vector<std::string>{"1 values belong to no object", "bss b k: the value's checksum is wrong",
                                  "bss c: the object's checksum is wrong", "bss ?: the object's checksum is wrong"}));
}

}  // namespace
