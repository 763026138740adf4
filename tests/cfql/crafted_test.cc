// Files that were made to keep a reader busy: trees whose pages are shared, so that a few kilobytes hold any number of
// rows. Each is refused at once; alarm() ends a test that hangs.
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "fixture.h"
#include "format.h"

namespace {

using namespace store_test;
using cfql::Access;
using cfql::page_size;
using cfql::Status;

std::string read_file(const std::string& path) {
    std::ostringstream contents;
    contents << std::ifstream(path, std::ios::binary).rdbuf();
    return contents.str();
}

void write_file(const std::string& path, const std::string& contents) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << contents;
}

void put_number(std::string& file, std::size_t at, std::size_t size, std::size_t number) {
    for (std::size_t i = size; i-- > 0; number >>= 8)
        file[at + i] = static_cast<char>(number);
}

// Makes an inner page of a table's tree at `at`, whose 61 children are all the page `child`.
void make_inner(std::string& file, std::size_t at, std::size_t header, std::size_t child) {
    constexpr std::size_t cells = 60;
    constexpr std::size_t cell_size = 5;  // a page's number and a row's
    file[at + header] = 0x05;
    put_number(file, at + header + 1, 2, 0);
    put_number(file, at + header + 3, 2, cells);
    put_number(file, at + header + 5, 2, page_size - cells * cell_size);
    put_number(file, at + header + 7, 1, 0);
    put_number(file, at + header + 8, 4, child);
    for (std::size_t i = 0; i < cells; ++i) {
        const std::size_t cell = page_size - (i + 1) * cell_size;
        put_number(file, at + header + 12 + 2 * i, 2, cell);
        put_number(file, at + cell, 4, child);
        put_number(file, at + cell + 4, 1, cells - i);
    }
}

// Puts `levels` inner pages behind the file and in front of the tree at `page`, counted from 1; the last has the old
// page below it.
void make_graph(std::string& file, std::size_t page, std::size_t levels) {
    const std::size_t header = page == 1 ? 100 : 0;
    const std::size_t first = file.size() / page_size + 1;
    const std::string leaf = file.substr((page - 1) * page_size, page_size);
    file.resize(file.size() + levels * page_size);
    for (std::size_t level = 0; level + 1 < levels; ++level)
        make_inner(file, (first - 1 + level) * page_size, 0, first + level + 1);
    file.replace((first + levels - 2) * page_size, page_size, leaf);
    make_inner(file, (page - 1) * page_size, header, first);
    put_number(file, 28, 4, file.size() / page_size);
}

std::size_t root_of_objects(const std::string& path) {
    sqlite3* connection = nullptr;
    sqlite3_stmt* statement = nullptr;
    sqlite3_open(path.c_str(), &connection);
    sqlite3_prepare_v2(connection, "SELECT rootpage FROM sqlite_schema WHERE name='object'", -1, &statement, nullptr);
    sqlite3_step(statement);
    const int root = sqlite3_column_int(statement, 0);
    sqlite3_finalize(statement);
    sqlite3_close(connection);
    return static_cast<std::size_t>(root);
}

class Crafted : public testing::Test {
  protected:
    Crafted() {
        alarm(60);
        make(place.path(), {{"interface", "wlan0", "ssid", "office"}});
        file = read_file(place.path());
    }
    ~Crafted() override { alarm(0); }

    Status open(Access access) { return store.open(place.path().c_str(), access); }

    Place place;
    std::string file;
    cfql::Database store;
};

TEST_F(Crafted, ASchemaOfSharedPagesIsRefusedBeforeItIsParsed) {
    for (const std::size_t levels : {3U, 12U}) {
        std::string graph = file;
        make_graph(graph, 1, levels);
        write_file(place.path(), graph);
        for (const Access access : {Access::read, Access::recover, Access::salvage, Access::write}) {
            EXPECT_EQ(open(access), Status::damaged);
            EXPECT_STREQ(store.detail(), "the schema is no single page");
        }
        EXPECT_EQ(get("interface", "wlan0", "ssid"), std::nullopt);
        EXPECT_EQ(set("interface", "wlan0", "ssid", "x"), 0);
    }
}

TEST_F(Crafted, ATableOfSharedPagesIsRefused) {
    make_graph(file, root_of_objects(place.path()), 12);
    write_file(place.path(), file);
    EXPECT_EQ(open(Access::read), Status::damaged);
    EXPECT_EQ(open(Access::write), Status::damaged);
    EXPECT_EQ(get("interface", "wlan0", "ssid"), std::nullopt);
    EXPECT_EQ(set("interface", "wlan0", "ssid", "x"), 0);
}

TEST_F(Crafted, NoStatementTakesMoreStepsThanASoundFileNeeds) {
    make_graph(file, root_of_objects(place.path()), 12);
    write_file(place.path(), file);
    ASSERT_EQ(open(Access::salvage), Status::ok);
    cfql::Cursor cursor;
    cfql::Row row;
    ASSERT_EQ(store.list(cursor, "no such table"), Status::ok);
    EXPECT_EQ(cursor.next(row), Status::damaged);
    EXPECT_STREQ(store.detail(), "it takes longer to read than any sound store");
}

struct Change {
    const char* what;
    std::size_t offset;
    std::string octets;
    Status status;
};

TEST_F(Crafted, TheFirstPageIsExamined) {
    using namespace std::string_literals;
    const std::size_t text = file.find("CREATE TABLE object");
    const std::size_t attribute = file.find("tableattributeattribute");
    const std::size_t object = file.find("tableobjectobject");
    ASSERT_TRUE(text < page_size && attribute < page_size && object < page_size);
    const char root = file[attribute + 23];
    const Change changes[] = {
        {"nothing", 0, "SQLite format 3\0"s, Status::ok},
        {"another kind of file", 0, "SQLite format 4\0"s, Status::not_a_store},
        {"another application", 68, "\0\0\0\7"s, Status::not_a_store},
        {"a later version", 60, "\0\0\0\2"s, Status::wrong_version},
        {"a log", 18, "\2\2"s, Status::old_mode},
        {"a log for readers", 18, "\1\2"s, Status::old_mode},
        {"a journal mode to come", 18, "\3\1"s, Status::damaged},
        {"pages of 512 octets", 16, "\2\0"s, Status::damaged},
        {"reserved octets", 20, "\x10"s, Status::damaged},
        {"another encoding", 56, "\0\0\0\2"s, Status::damaged},
        {"more pages than there are", 28, "\0\0\1\0"s, Status::damaged},
        {"two cells", 103, "\0\2"s, Status::damaged},
        {"a cell outside the page", 108, "\x04\0"s, Status::damaged},
        {"a cell at the page's end", 108, "\x03\xff"s, Status::damaged},
        {"another statement", text, "CREATE TABLE 0bject"s, Status::damaged},
        {"another type", object, "index"s, Status::damaged},
        {"a root outside the file", attribute + 23, "\x7f"s, Status::damaged},
        {"the root of the schema", attribute + 23, "\1"s, Status::damaged},
        {"a root of two trees", object + 17, std::string(1, root), Status::damaged},
    };
    for (const Change& change : changes) {
        std::string changed = file;
        changed.replace(change.offset, change.octets.size(), change.octets);
        cfql::FirstPage page;
        page.file_size = static_cast<std::int64_t>(changed.size());
        changed.copy(reinterpret_cast<char*>(page.octets), page_size);
        const char* fault = nullptr;
        EXPECT_EQ(cfql::examine_first_page(page, fault), change.status) << change.what;
        EXPECT_EQ(fault != nullptr, change.status == Status::damaged) << change.what;
        write_file(place.path(), changed);
        EXPECT_EQ(open(Access::read), change.status) << change.what;
    }
}

}  // namespace
