#include "toml_text.h"

#include <algorithm>
#include <optional>

#include "database.h"
#include "failure.h"
#include "text.h"
#include "toml_nesting.h"
#include "toml_parser.h"

namespace cfql::tool {

namespace {

constexpr std::string_view hex_prefix = "hex:";  // before a table or key by its octets

// A well-formed `character` as it stands in double quotes. Controls are escaped: an export may be shown on a terminal.
std::string basic(const Character& character) {
    std::string octets(character.octets);
    if (octets == "\"" || octets == "\\") return '\\' + octets;
    if (octets == "\n") return "\\n";
    if (octets == "\t") return "\\t";
    if (!character.is_control()) return octets;
    return "\\u" + character.number_in_hex();
}

std::string basic_string(std::string_view text) {
    std::string line = "\"";
    while (!text.empty()) {
        const Character character = first_character(text);
        line += basic(character);
        text.remove_prefix(character.octets.size());
    }
    return line + '"';
}

std::string value_text(std::string_view value) {
    return is_utf8(value) ? basic_string(value) : "{ hex = \"" + to_hex(value) + "\" }";
}

bool is_bare(char octet) {
    return (octet >= 'a' && octet <= 'z') || (octet >= 'A' && octet <= 'Z') || (octet >= '0' && octet <= '9') ||
           octet == '-' || octet == '_';
}

std::string key_text(std::string_view key) {
    if (!is_utf8(key) || key.starts_with(hex_prefix)) return basic_string(std::string(hex_prefix) + to_hex(key));
    return std::ranges::all_of(key, is_bare) ? std::string(key) : basic_string(key);
}

std::string line(std::string_view key, std::string_view value) {
    return key_text(key) + " = " + value_text(value) + '\n';
}

// The value of a line such as `ssid = Guests`, for which the parser has many error messages.
struct Unquoted {
    std::string_view key;
    size_t column;  // from 1
};

std::optional<Unquoted> unquoted_value(std::string_view text, size_t line_number) {
    constexpr std::string_view blanks = " \t";
    for (size_t i = 1; i < line_number; ++i)
        text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
    const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
    const size_t begin = std::min(line.find_first_not_of(blanks), line.size());
    const std::string_view from_key = line.substr(begin);
    const auto length = static_cast<size_t>(std::ranges::find_if_not(from_key, is_bare) - from_key.begin());
    const size_t equals = line.find_first_not_of(blanks, begin + length);
    if (length == 0 || equals == std::string_view::npos || line[equals] != '=') return std::nullopt;
    const size_t value = line.find_first_not_of(blanks, equals + 1);
    if (value == std::string_view::npos || std::string_view("\"'{[#").find(line[value]) != std::string_view::npos)
        return std::nullopt;
    return Unquoted{from_key.substr(0, length), value + 1};
}

class Reader {
  public:
    explicit Reader(std::string_view source) : source_(source) {}

    Contents read(std::string_view text) const {
        if (const std::optional<Excess> excess = excess_of_nesting(text))
            fail(excess->line, excess->column, excess->what);
        const toml::table root = parse(text);
        Contents contents;
        bool has_system = false;
        for (const Block& block : blocks(root)) {
            contents.push_back(object(block));
            if (contents.back().table != singleton_table) continue;
            if (has_system)
                fail(block.table->source(), "the table \"system\" has one object: put its keys into one block");
            has_system = true;
        }
        return contents;
    }

  private:
    struct Block {
        const toml::key* header;
        const toml::table* table;
    };

    [[noreturn]] void fail(size_t line, size_t column, const std::string& what) const {
        throw Failure(Exit::input,
                      std::string(source_) + ':' + std::to_string(line) + ':' + std::to_string(column) + ": " + what);
    }

    [[noreturn]] void fail(const toml::source_region& where, const std::string& what) const {
        fail(where.begin.line, where.begin.column, what);
    }

    toml::table parse(std::string_view text) const {
        try {
            return toml::parse(text, source_);
        } catch (const toml::parse_error& error) {
            if (const std::optional<Unquoted> found = unquoted_value(text, error.source().begin.line))
                fail(error.source().begin.line, found->column, no_text(found->key));
            fail(error.source(), std::string(error.description()));
        }
    }

    // The parser keeps arrays by name, but here the order of the blocks in the text counts.
    std::vector<Block> blocks(const toml::table& root) const {
        std::vector<Block> found;
        for (const auto& [key, node] : root) {
            const toml::array* array = node.as_array();
            if (!array) fail(key.source(), misplaced(key.str(), node));
            for (const toml::node& element : *array) {
                if (!element.is_table())
                    fail(element.source(), "expected a block such as [[" + key_text(key.str()) + "]]");
                found.push_back({&key, element.as_table()});
            }
        }
        std::ranges::stable_sort(found, {}, [](const Block& block) {
            const toml::source_position& begin = block.table->source().begin;
            return std::pair(begin.line, begin.column);
        });
        return found;
    }

    static std::string misplaced(std::string_view key, const toml::node& node) {
        if (node.is_table()) return "a block is headed by two brackets: write [[" + key_text(key) + "]]";
        return quoted(key) + " belongs to no object: put it below a heading such as [[interface]]";
    }

    Object object(const Block& block) const {
        Object made;
        made.table = octets(*block.header);
        allow(block.header->source(), table_error(made.table));
        if (const toml::node* name = block.table->get(name_key)) made.name = value(name_key, *name);
        if (const char* refusal = object_error(made.table, made.name)) {
            const bool nameless = !block.table->contains(name_key);
            fail(block.table->source(),
                 nameless ? "this block has no name: add a line such as name = \"wlan0\"" : refusal);
        }
        for (const auto& [key, node] : *block.table) {
            if (key != name_key) add(made, key, node);
        }
        return made;
    }

    void add(Object& made, const toml::key& key, const toml::node& node) const {
        const std::string name = octets(key);
        allow(key.source(), key_error(name));
        const std::string text = value(name, node);
        allow(node.source(), value_error(text));
        const std::string refusal = mask_error(name, text);
        if (!refusal.empty()) fail(node.source(), refusal);
        if (!made.attributes.emplace(name, text).second)
            fail(key.source(), quoted(name) + " is given twice in this block");
    }

    void allow(const toml::source_region& where, const char* refusal) const {
        if (refusal) fail(where, refusal);
    }

    std::string octets(const toml::key& key) const {
        const std::string_view text = key.str();
        if (!text.starts_with(hex_prefix)) return std::string(text);
        return hex(key.source(), text.substr(hex_prefix.size()));
    }

    std::string value(std::string_view key, const toml::node& node) const {
        if (const toml::value<std::string>* text = node.as_string()) return text->get();
        const toml::table* table = node.as_table();
        if (table && table->size() == 1) {
            const toml::node* digits = table->get("hex");
            if (digits && digits->is_string()) return hex(digits->source(), digits->as_string()->get());
        }
        fail(node.source(), no_text(key));
    }

    static std::string no_text(std::string_view key) {
        return "the value of " + quoted(key) + " is not a string: put it in quotes, or write { hex = \"c328\" }";
    }

    std::string hex(const toml::source_region& where, std::string_view digits) const {
        if (std::optional<std::string> decoded = from_hex(digits)) return *decoded;
        fail(where, "expected pairs of hexadecimal digits");
    }

    std::string_view source_;
};

}  // namespace

std::string to_toml(const Contents& contents) {
    std::string text = "# Contents of a configuration store. To read them back: cfql import --replace FILE\n";
    for (const Object& object : contents) {
        text += "\n[[" + key_text(object.table) + "]]\n";
        if (!object.name.empty()) text += line(name_key, object.name);
        for (const auto& [key, value] : object.attributes)
            text += line(key, value);
    }
    return text;
}

Contents from_toml(std::string_view text, std::string_view source) {
    return Reader(source).read(text);
}

}  // namespace cfql::tool
