// Pages of a database file built by hand, for what SQLite itself would never write: a tree in which many pages have the
// same child. Each further level of such a tree multiplies the ways to its leaf by sixty.
#ifndef TESTS_CFQL_LIBRARY_PAGES_H
#define TESTS_CFQL_LIBRARY_PAGES_H

#include <cstdint>
#include <string>
#include <vector>

namespace store_test::pages {

using Octets = std::string;

constexpr std::size_t size = 1024;
constexpr std::size_t file_header = 100;  // in front of the first page's own
constexpr unsigned fan = 60;

enum Kind : unsigned char { index_interior = 2, table_interior = 5, index_leaf = 10, table_leaf = 13 };

inline Octets big_endian(std::uint64_t number, int octets) {
    Octets out;
    for (int shift = 8 * (octets - 1); shift >= 0; shift -= 8)
        out += static_cast<char>(number >> shift);
    return out;
}

inline Octets varint(std::uint64_t number) {
    Octets out(1, static_cast<char>(number & 0x7f));
    while ((number >>= 7) != 0)
        out.insert(out.begin(), static_cast<char>(0x80 | (number & 0x7f)));
    return out;
}

// A column of a record: its serial type and its octets.
struct Column {
    std::uint64_t type;
    Octets octets;
};

inline Column text(const Octets& octets) {
    return {13 + 2 * octets.size(), octets};
}

inline Column blob(const Octets& octets) {
    return {12 + 2 * octets.size(), octets};
}

inline Column number(std::uint32_t value) {
    return value < 0x80 ? Column{1, big_endian(value, 1)} : Column{6, big_endian(value, 8)};
}

inline Octets record(const std::vector<Column>& columns) {
    Octets types, octets;
    for (const Column& column : columns) {
        types += varint(column.type);
        octets += column.octets;
    }
    return varint(types.size() + 1) + types + octets;  // a header below 128 octets has a length of one octet
}

// A page of `kind`. `cells` stand at its end; an interior page has a `right` child besides.
inline Octets page(Kind kind, const std::vector<Octets>& cells, unsigned right = 0, std::size_t before = 0) {
    Octets out(size, '\0');
    std::size_t end = size;
    Octets places;
    for (const Octets& cell : cells) {
        end -= cell.size();
        out.replace(end, cell.size(), cell);
        places += big_endian(end, 2);
    }
    Octets header = Octets(1, static_cast<char>(kind)) + big_endian(0, 2) + big_endian(cells.size(), 2) +
                    big_endian(end, 2) + big_endian(0, 1);
    if (right != 0) header += big_endian(right, 4);
    out.replace(before, header.size() + places.size(), header + places);
    return out;
}

// A page all of whose children are `child`. `separator` is what an interior page of an index holds beside each child.
inline Octets fan_page(Kind kind, unsigned child, const Octets& separator = "", std::size_t before = 0) {
    std::vector<Octets> cells;
    for (unsigned key = 1; key < fan; ++key)
        cells.push_back(big_endian(child, 4) + (kind == table_interior ? varint(key) : separator));
    return page(kind, cells, child, before);
}

// Replaces page number `at` of `file` by `page`, or appends it. If it is the first page, the file's header stays.
inline void put(Octets& file, unsigned at, const Octets& page) {
    const std::size_t place = (at - 1) * size;
    if (file.size() < place + size) file.resize(place + size);
    const std::size_t kept = at == 1 ? file_header : 0;
    file.replace(place + kept, size - kept, page.substr(kept));
}

inline unsigned count(const Octets& file) {
    return static_cast<unsigned>(file.size() / size);
}

// Makes the header go with the pages: their number, and a change counter that differs from what it was.
inline void seal(Octets& file) {
    const auto counter = static_cast<unsigned char>(file[27]) + 1U;
    file.replace(24, 4, big_endian(counter, 4));
    file.replace(28, 4, big_endian(count(file), 4));
    file.replace(92, 4, big_endian(counter, 4));
}

// Turns the tree with that `root` into `levels` of shared pages above its leaf.
inline void make_graph(Octets& file, unsigned root, unsigned levels, Kind kind, const Octets& leaf,
                       const Octets& separator = "") {
    const unsigned first = count(file) + 1;
    put(file, root, fan_page(kind, first, separator, root == 1 ? file_header : 0));
    for (unsigned level = 1; level < levels; ++level)
        put(file, first + level - 1, fan_page(kind, first + level, separator));
    put(file, first + levels - 1, leaf);
    seal(file);
}

// A cell of a table's leaf whose record does not fit: the rest of it goes to pages behind the last one of `file`.
inline Octets long_cell(Octets& file, std::uint64_t row, const Octets& record) {
    constexpr std::size_t on_a_page = size - 4, least = (size - 12) * 32 / 255 - 23;
    std::size_t at = least + (record.size() - least) % on_a_page;
    if (at > size - 35) at = least;
    const Octets cell = varint(record.size()) + varint(row) + record.substr(0, at) + big_endian(count(file) + 1, 4);
    for (; at < record.size(); at += on_a_page) {
        const bool last = at + on_a_page >= record.size();
        Octets rest = big_endian(last ? 0 : count(file) + 2, 4) + record.substr(at, on_a_page);
        rest.resize(size);
        put(file, count(file) + 1, rest);
    }
    return cell;
}

inline Octets cell(std::uint64_t row, const Octets& record) {
    return varint(record.size()) + varint(row) + record;
}

}  // namespace store_test::pages

#endif
