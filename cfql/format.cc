#include "format.h"

#include <string.h>

#include "store_limits.h"

namespace cfql {
namespace {

constexpr char magic[] = "SQLite format 3";  // with its NUL
constexpr size_t tree_header = 100;          // of the page's tree, behind the header of the file
constexpr unsigned char table_leaf = 0x0d;
constexpr size_t first_cell_pointer = tree_header + 8;

// What the header of every store says.
struct Field {
    size_t offset, size;
    uint32_t value;
    const char* fault;
};
constexpr Field fields[] = {
    {16, 2, page_size, "wrong page size"},
    {18, 2, 0x0101, "wrong journal mode"},
    {20, 1, 0, "reserved octets in each page"},
    {44, 4, 4, "wrong schema format"},
    {52, 4, 0, "pages of a vacuum"},
    {56, 4, 1, "wrong encoding"},
    {tree_header, 1, table_leaf, "the schema is no single page"},
    {tree_header + 3, 2, std::size(schema), "another schema"},
};

// Reads the page's octets one after the other. Octets outside the page read as 0 and make `sound` false.
class Octets {
  public:
    Octets(const unsigned char* page, size_t at) : page_(page), at_(at) {}

    unsigned char octet() {
        sound = sound && at_ < page_size;
        return sound ? page_[at_++] : 0;
    }
    // At most two octets long, as every length within a page is.
    size_t varint() {
        const unsigned char first = octet();
        if (first < 0x80) return first;
        const unsigned char second = octet();
        sound = sound && second < 0x80;
        return (first & 0x7fU) << 7 | second;
    }
    Text text(size_t size) {
        sound = sound && size <= page_size - at_;
        if (!sound) return {};
        at_ += size;
        return {reinterpret_cast<const char*>(page_) + at_ - size, size};
    }
    bool has(Text expected) { return text(expected.size()) == expected && sound; }

    bool sound = true;

  private:
    const unsigned char* page_;
    size_t at_;
};

size_t type_of(Text text) {
    return 2 * text.size() + 13;
}

// The root of the tree that the cell at `at` declares for `entry`; 0 if the cell declares something else.
uint32_t root_of(const SchemaEntry& entry, const unsigned char* page, size_t at) {
    Octets cell(page, at);
    cell.varint();  // the length of the record
    cell.varint();  // its row
    cell.varint();  // the length of its own header: the types of five columns
    bool expected = cell.varint() == type_of(entry.type) && cell.varint() == type_of(entry.name) &&
                    cell.varint() == type_of(entry.table);
    const size_t root_size = cell.varint();  // an integer of so many octets
    expected = expected && root_size >= 1 && root_size <= 3 && cell.varint() == type_of(entry.sql);
    expected = expected && cell.has(entry.type) && cell.has(entry.name) && cell.has(entry.table);
    uint32_t root = 0;
    for (size_t i = 0; expected && i < root_size; ++i)
        root = root << 8 | cell.octet();
    return expected && cell.has(entry.sql) ? root : 0;
}

bool has_schema(const unsigned char* page, uint32_t pages) {
    uint32_t roots[std::size(schema)];
    for (size_t i = 0; i < std::size(schema); ++i) {
        roots[i] = root_of(schema[i], page, number_at(page + first_cell_pointer + 2 * i, 2));
        if (roots[i] < 2 || roots[i] > pages) return false;
        for (size_t other = 0; other < i; ++other) {
            if (roots[i] == roots[other]) return false;
        }
    }
    return true;
}

}  // namespace

Status examine_first_page(const FirstPage& page, const char*& fault) {
    const unsigned char* const octets = page.octets;
    fault = nullptr;
    if (memcmp(octets, magic, sizeof magic) != 0) return Status::not_a_store;
    if (number_at(octets + 68, 4) != application_id) return Status::not_a_store;
    if (has_log_mode(page)) return Status::old_mode;
    if (number_at(octets + 60, 4) != format_version) return Status::wrong_version;
    if (page.file_size > file_limit) return Status::too_large;
    for (const Field& field : fields) {
        if (number_at(octets + field.offset, field.size) != field.value) return fault = field.fault, Status::damaged;
    }
    const uint32_t pages = number_at(octets + 28, 4);
    if (pages > page.file_size / int64_t{page_size}) return fault = "the file is cut off", Status::damaged;
    if (!has_schema(octets, pages)) return fault = "another schema", Status::damaged;
    return Status::ok;
}

}  // namespace cfql
