#include "configuration.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <errno.h>
#include <string.h>
#include <algorithm>

#include "database.h"
#include "descriptor.h"
#include "failure.h"
#include "keys.h"
#include "store/interfaces.h"
#include "text.h"
#include "toml_nesting.h"
#include "toml_parser.h"

namespace collector {

namespace {

using cfql::tool::quoted;

constexpr size_t longest_file = 65536;
constexpr std::string_view alias_key = "name";

class Reader {
  public:
    explicit Reader(std::string_view source) : source_(source) {}

    Configuration read(std::string_view text) {
        if (const auto excess = cfql::tool::excess_of_nesting(text)) fail(excess->line, excess->column, excess->what);
        const toml::table root = parse(text);
        for (const auto& [key, node] : root) {
            const toml::table* table = node.as_table();
            if (!table) {
                fail(key.source(), quoted(key.str()) + " belongs to no interface: put it below [\"*\"] or [wlan0]");
            }
            add_table(key, *table);
        }
        return std::move(made_);
    }

  private:
    [[noreturn]] void fail(size_t line, size_t column, const std::string& what) const {
        throw Failure(Exit::configuration,
                      std::string(source_) + ':' + std::to_string(line) + ':' + std::to_string(column) + ": " + what);
    }

    [[noreturn]] void fail(const toml::source_region& where, const std::string& what) const {
        fail(where.begin.line, where.begin.column, what);
    }

    toml::table parse(std::string_view text) const {
        try {
            return toml::parse(text, source_);
        } catch (const toml::parse_error& error) {
            fail(error.source(), std::string(error.description()));
        }
    }

    void add_table(const toml::key& header, const toml::table& table) {
        const std::string interface(header.str());
        if (interface.empty() || interface.size() > 15) {
            fail(header.source(), quoted(interface) + " is not an interface's name: 1 to 15 octets, or \"*\"");
        }
        for (const auto& [key, node] : table) {
            const toml::value<std::string>* value = node.as_string();
            if (!value) {
                fail(node.source(), "the value of " + quoted(key.str()) + " is not a string: put it in quotes");
            }
            if (key.str() == alias_key) {
                add_alias(interface, key, value->get());
            } else {
                add_value(interface, key, value->get());
            }
        }
    }

    void add_alias(const std::string& interface, const toml::key& key, const std::string& name) {
        if (interface == all_interfaces) fail(key.source(), "\"name\" is for one interface: put it below [wlan0_1]");
        if (!is_served_name(name)) {
            fail(key.source(), quoted(name) + " cannot be served: a name has 1 to 5 letters, digits, \"-\" or \"_\"");
        }
        for (const auto& [other, taken] : made_.aliases) {
            if (taken == name) fail(key.source(), quoted(name) + " is the name of " + quoted(other) + " already");
        }
        made_.aliases.emplace(interface, name);
    }

    void add_value(const std::string& interface, const toml::key& key, const std::string& value) {
        const std::string name(key.str());
        if (!table_of(name)) {
            fail(key.source(), quoted(name) + " is not a key that can be given here; man cfql-collector lists them");
        }
        if (const char* refusal = cfql::value_error(value)) fail(key.source(), refusal);
        made_.tables[interface].emplace(name, value);
    }

    std::string_view source_;
    Configuration made_;
};

[[noreturn]] void fail_at(const std::string& path, const std::string& what) {
    throw Failure(Exit::configuration, path + ": " + what);
}

}  // namespace

const std::string* Configuration::find(std::string_view interface, std::string_view key) const {
    for (const std::string_view table : {interface, all_interfaces}) {
        const auto values = tables.find(table);
        if (values == tables.end()) continue;
        const auto value = values->second.find(key);
        if (value != values->second.end()) return &value->second;
    }
    return nullptr;
}

bool is_served_name(std::string_view name) {
    return !name.empty() && name.size() <= dot11::longest_interface_name && std::ranges::all_of(name, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
    });
}

Configuration read_configuration(std::string_view text, std::string_view source) {
    return Reader(source).read(text);
}

Configuration load_configuration(const std::string& path) {
    const cfql::tool::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (file.get() < 0) {
        if (errno == ENOENT) return {};
        fail_at(path,
                std::string(strerror(errno)) + "; let the collector's user read it, or name another with --config");
    }
    struct stat status = {};
    if (fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        fail_at(path, "not a file; name another with --config");
    }
    std::string text(longest_file + 1, '\0');
    size_t size = 0;
    for (ssize_t got = 1; got != 0 && size < text.size(); size += static_cast<size_t>(got)) {
        got = read(file.get(), text.data() + size, text.size() - size);
        if (got < 0) fail_at(path, std::string(strerror(errno)) + "; see the kernel's log (dmesg)");
    }
    if (size > longest_file) fail_at(path, "longer than 64 kB; name another with --config");
    text.resize(size);
    return read_configuration(text, path);
}

}  // namespace collector
