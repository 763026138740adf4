// The command preview: what the agent would serve from the store, column by column.
#include <algorithm>
#include <sstream>

#include "agent_run.h"
#include "commands.h"
#include "output.h"
#include "store.h"
#include "text.h"
#include "toml_parser.h"

namespace cfql::tool {

namespace {

bool is_hidden(const Instance& instance, const Request& request) {
    return instance.stored() && is_secret(instance.key->name) && !request.reveal;
}

// Where a value comes from: one word, easy to search for.
const char* kind(const Instance& instance, const Request& request) {
    if (!instance.is_answered(request.complete)) return "unanswered";
    if (!instance.key) return "agent";
    return instance.stored() ? "stored" : "default";
}

// `interface "wlan0" ssid`, or why there is no such object.
std::string source(const Instance& instance) {
    if (!instance.key) return "";
    const std::string table = instance.key->table;
    const std::string key = instance.key->name;
    if (!instance.question) return "no " + table + " for " + key;
    return described({table, instance.question->object, 1}) + ' ' + key;
}

void print_instance(const Instance& instance, const Request& request) {
    const bool hidden = is_hidden(instance, request);
    const std::string stored =
        hidden && instance.stored() ? std::string(mask) : printable(instance.stored().value_or(""));
    print_line(instance.name() + '\t' + printable(instance.interface) + '\t' +
               (hidden ? std::string(mask) : instance.served_text()) + '\t' + kind(instance, request) + '\t' +
               source(instance) + '\t' + stored);
}

// As text, or as { "hex": "c328" } if the octets are not UTF-8.
void put(toml::table& json, const char* name, std::string_view octets) {
    if (is_utf8(octets)) {
        json.insert(name, octets);
    } else {
        json.insert(name, toml::table{{"hex", to_hex(octets)}});
    }
}

toml::table json_of_source(const Instance& instance, bool hidden) {
    toml::table json{{"table", instance.key->table}, {"key", instance.key->name}};
    if (instance.question) put(json, "object", instance.question->object);
    if (instance.stored() && !hidden) put(json, "stored", *instance.stored());
    return json;
}

toml::table json_of(const Instance& instance, const Request& request) {
    const bool hidden = is_hidden(instance, request);
    toml::table json{
        {"table", instance.table->name}, {"column", instance.column->name}, {"from", kind(instance, request)}};
    put(json, "interface", instance.interface);
    toml::array index;
    for (const uint32_t number : instance.index)
        index.push_back(static_cast<int64_t>(number));
    json.insert("index", std::move(index));
    if (instance.key) json.insert("source", json_of_source(instance, hidden));
    if (hidden) {
        json.insert("hidden", true);
    } else if (instance.is_number()) {
        json.insert("value", instance.number());
    } else {
        json.insert("value", toml::table{{"hex", to_hex(instance.octets)}});
    }
    return json;
}

// The library's formatter escapes only ASCII controls; this escapes the others.
std::string json_text(const toml::array& values) {
    std::ostringstream stream;
    stream << toml::json_formatter(values);
    const std::string text = stream.str();
    std::string escaped;
    for (std::string_view rest = text; !rest.empty();) {
        const Character character = first_character(rest);
        const bool is_foreign = character.is_control() && character.octets.size() > 1;
        escaped += is_foreign ? "\\u" + character.number_in_hex() : std::string(character.octets);
        rest.remove_prefix(character.octets.size());
    }
    return escaped;
}

bool is_asked_for(const Instance& instance, const Request& request) {
    return request.object.empty() || instance.interface == request.object;
}

void print_rows(const std::vector<Instance>& instances, const Request& request) {
    for (const Instance& instance : instances) {
        if (is_asked_for(instance, request)) print_instance(instance, request);
    }
}

void print_json(const std::vector<Instance>& instances, const Request& request) {
    toml::array rows;
    for (const Instance& instance : instances) {
        if (is_asked_for(instance, request)) rows.push_back(json_of(instance, request));
    }
    print_line(json_text(rows));
}

}  // namespace

Exit preview(const Request& request) {
    Store store(request.store, Access::recover);
    const Reading reading = store.read();
    const AgentRun run(reading.contents, request.offline ? numbers_of_contents(reading.contents) : numbers_of_system());
    const std::vector<Instance>& instances = run.instances();
    complain_of_damage(store, reading);
    if (!request.object.empty() &&
        std::ranges::none_of(instances, [&](const Instance& instance) { return is_asked_for(instance, request); })) {
        throw Failure(Exit::no, store.path() + ": the agent would serve no interface " + quoted(request.object) +
                                    "; \"cfql lint\" tells why");
    }
    request.json ? print_json(instances, request) : print_rows(instances, request);
    return reading.damage.empty() ? Exit::done : Exit::store;
}

}  // namespace cfql::tool
