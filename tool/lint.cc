// The command lint: what the agent will do with the contents of the store.
#include <net/if.h>

#include <algorithm>
#include <set>

#include "commands.h"
#include "facts.h"
#include "output.h"
#include "rates.h"
#include "store.h"
#include "text.h"

namespace cfql::tool {

namespace {

std::string place(std::string_view table, std::string_view name) {
    return described({std::string(table), std::string(name), 1});
}

// A value in a message: never long, and never asked for a secret.
std::string excerpt(std::string_view value) {
    constexpr std::size_t longest = 32;
    return value.size() <= longest ? quoted(value) : quoted(value.substr(0, longest)) + "...";
}

// Findings, each printed once: several interfaces may share a bss or a radio.
class Findings {
  public:
    void warn(const std::string& where, const std::string& what) { add("warning", where, what, warnings_); }
    void note(const std::string& where, const std::string& what) { add("note", where, what, notes_); }

    Exit conclude() const {
        print_line(counted(warnings_, "warning") + ", " + counted(notes_, "note"));
        return warnings_ == 0 ? Exit::done : Exit::no;
    }

  private:
    void add(std::string_view kind, const std::string& where, const std::string& what, std::size_t& count) {
        const std::string line = std::string(kind) + ": " + where + ": " + what;
        if (!seen_.insert(line).second) return;
        print_line(line);
        ++count;
    }

    std::set<std::string> seen_;
    std::size_t warnings_ = 0;
    std::size_t notes_ = 0;
};

std::string number_served(const Fact& fact, int value) {
    return value < 0 && !fact.negative.empty() ? std::string(fact.negative) : std::to_string(value);
}

std::string fault_of_number(const Fact& fact, std::string_view text) {
    const std::optional<Number> read = number(text);
    const std::string served = ": served as " + number_served(fact, read ? read->value : -1);
    if (!read || !read->has_digits) return excerpt(text) + " is no decimal number" + served;
    if (read->wrapped) return excerpt(text) + " does not fit 32 bits" + served;
    if (read->value >= 0 || fact.negative.empty()) return {};
    return excerpt(text) + " is negative" + served;
}

std::string fault_of_phy_type(std::string_view text) {
    const std::optional<Number> read = number(text);
    const bool is_type = read && read->value >= 0 && read->value <= 3;
    if (is_type && read->has_digits && !read->wrapped) return {};
    return excerpt(text) + " is not 0 to 3: served as " + std::to_string(is_type ? read->value : 1);
}

std::string fault_of_rate(std::string_view text) {
    const std::optional<Number> read = number(text);
    if (read && read->has_digits && read->value >= 0) return {};  // too long a one is clipped
    return excerpt(text) + " is no rate: served as " + std::to_string(served_rate(text)) +
           ", and as the operational rate set " + std::to_string(operational_rate(text));
}

std::string fault_of_mac(std::string_view text) {
    std::string digits(text);
    std::erase(digits, ':');
    if (digits.size() == 12 && from_hex(digits)) return {};
    return excerpt(text) + " is not 12 hexadecimal digits, with or without colons: wrong octets are served";
}

std::string fault_of_flag(const Fact& fact, std::string_view text) {
    const std::string words = ' ' + std::string(fact.off) + ' ';
    if (text == fact.on || words.find(' ' + std::string(text) + ' ') != std::string::npos) return {};
    return excerpt(text) + " is read as disabled: only " + quoted(fact.on) + " is enabled";
}

// What is wrong with a value that is set; empty when the agent serves it as it stands.
std::string fault_of(const Fact& fact, std::string_view value) {
    if (fact.width != 0 && value.size() > fact.width) {
        return std::to_string(value.size()) + " octets are clipped to " + std::to_string(fact.width);
    }
    switch (fact.conversion) {
        case Conversion::number:
            return fault_of_number(fact, value);
        case Conversion::phy_type:
            return fault_of_phy_type(value);
        case Conversion::rate_text:
            return fault_of_rate(value);
        case Conversion::mac:
            return fault_of_mac(value);
        case Conversion::flag:
            return fault_of_flag(fact, value);
        case Conversion::country:
            return value.size() == 2 ? "" : excerpt(value) + " is not two characters: served as ???";
        case Conversion::text:
        case Conversion::link:  // followed by the caller
            break;
    }
    return {};
}

std::string_view table_of(Holder holder) {
    switch (holder) {
        case Holder::interface:
            return "interface";
        case Holder::bss:
            return "bss";
        case Holder::radio:
        case Holder::own_radio:
            return "radio";
        case Holder::rate:
            return "supported-rate";
        case Holder::system:
            break;
    }
    return singleton_table;
}

class Lint {
  public:
    Lint(const Contents& contents, const Request& request)
        : contents_(contents), offline_(request.offline), list_defaults_(request.defaults) {
        for (const Object& object : contents_)
            first_.try_emplace({object.table, object.name}, &object);
    }

    Exit run() {
        const std::vector<std::string> served = interfaces();
        for (const std::string& name : served)
            examine_interface(name);
        examine_rates();
        for (const Object& object : contents_)
            examine_keys(object);
        return findings_.conclude();
    }

  private:
    const Object* find(std::string_view table, std::string_view name) const {
        const auto entry = first_.find({std::string(table), std::string(name)});
        return entry == first_.end() ? nullptr : entry->second;
    }

    // Empty, too, when there is no such object or key: the agent treats all three alike.
    static std::string_view value_of(const Object* object, std::string_view key) {
        if (object == nullptr) return {};
        const auto attribute = object->attributes.find(key);
        return attribute == object->attributes.end() ? std::string_view{} : attribute->second;
    }

    // Why the agent passes over an interface or a rate of that name; empty when it does not.
    std::string obstacle(const std::string& name) const {
        if (name.size() > longest_interface_name) {
            return "skipped: the name has more than " + std::to_string(longest_interface_name) + " characters";
        }
        if (!offline_ && if_nametoindex(name.c_str()) == 0) return "skipped: the system has no such interface";
        return {};
    }

    std::vector<std::string> interfaces() {
        std::vector<std::string> served;
        std::size_t rows = 0;
        for (const Object& object : contents_) {
            if (object.table != "interface" || !is_served(object)) continue;
            ++rows;
            if (std::ranges::find(served, object.name) == served.end()) {
                served.push_back(object.name);
            } else {
                findings_.warn(place("interface", object.name), "given more than once: every row shows the first one");
            }
        }
        judge_count(rows);
        return served;
    }

    bool is_served(const Object& object) {
        const std::string where = place("interface", object.name);
        const std::string_view type = value_of(&object, "type");
        if (type != served_type) {
            findings_.note(where, "skipped: its type is " + excerpt(type) + ", not " + quoted(served_type));
            return false;
        }
        const std::string reason = obstacle(object.name);
        if (!reason.empty()) findings_.warn(where, reason);
        return reason.empty();
    }

    void judge_count(std::size_t rows) {
        if (rows == 0) findings_.warn("interface", "none is left to serve: the tables are empty");
        if (rows > most_interfaces) {
            findings_.warn("interface", std::to_string(rows) + " are more than " + std::to_string(most_interfaces) +
                                            ": nothing is served at all");
        }
    }

    void examine_interface(const std::string& name) {
        const Object* interface = find("interface", name);
        const Object* bss = follow(interface, "bss");
        const Object* radio = follow(bss, "radio");
        const Object* own_radio = find("radio", name);
        if (radio != nullptr && radio != own_radio) warn_of_channel(name, *radio);
        if (radio != nullptr) warn_of_thresholds(*radio);
        // In the order of Holder.
        const Object* const holders[] = {
            interface, bss, radio, own_radio, find("supported-rate", name), find(singleton_table, "")};
        const std::string where = place("interface", name);
        std::size_t defaults = 0;
        for (const Fact& fact : facts()) {
            const Object* holder = holders[static_cast<std::size_t>(fact.holder)];
            if (!value_of(holder, fact.key).empty()) {
                examine_value(fact, *holder);
            } else if (++defaults; list_defaults_) {
                findings_.note(where,
                               quoted(fact.key) + " is not set, or empty: served as " + std::string(fact.fallback));
            }
        }
        if (defaults > 0 && !list_defaults_) {
            findings_.note(where,
                           counted(defaults, "key") + " not set, or empty, and served by default; see --defaults");
        }
    }

    // The object that KEY of FROM names; the key's name is also the table's.
    const Object* follow(const Object* from, std::string_view key) {
        const std::string_view name = value_of(from, key);
        if (name.empty()) return nullptr;
        const Object* to = find(key, name);
        if (to == nullptr) {
            findings_.warn(place(from->table, from->name),
                           "key " + quoted(key) + " leads nowhere: there is no " + place(key, name));
        }
        return to;
    }

    void examine_value(const Fact& fact, const Object& holder) {
        const std::string fault = fault_of(fact, value_of(&holder, fact.key));
        if (!fault.empty()) findings_.warn(place(holder.table, holder.name), "key " + quoted(fact.key) + ": " + fault);
    }

    void warn_of_channel(const std::string& interface, const Object& radio) {
        if (value_of(&radio, "channel").empty()) return;
        findings_.warn(place("radio", radio.name), "its \"channel\" is not that of " + place("interface", interface) +
                                                       ": that one is looked up in " + place("radio", interface));
    }

    // The default of the fragmentation threshold goes into the RTS threshold.
    void warn_of_thresholds(const Object& radio) {
        if (value_of(&radio, "rts-threshold").empty() || !value_of(&radio, "fragmentation-threshold").empty()) return;
        findings_.warn(place("radio", radio.name),
                       "key \"rts-threshold\": without \"fragmentation-threshold\" served as 2346");
    }

    void examine_rates() {
        std::vector<std::string> names;
        std::vector<std::string> rates;
        for (const Object& object : contents_) {
            if (object.table != "supported-rate") continue;
            const std::string where = place(object.table, object.name);
            const std::string reason = names.size() < most_rate_objects
                                           ? obstacle(object.name)
                                           : "skipped: " + std::to_string(most_rate_objects) + " are before it";
            if (!reason.empty()) {
                findings_.warn(where, reason);
                continue;
            }
            const Object& first = *find(object.table, object.name);  // the others are only counted
            if (!first.attributes.contains("rate")) {
                findings_.warn(where, "no \"rate\": what is served of all rates depends on the requests before");
                rates_are_foreseeable_ = false;
            }
            names.push_back(object.name);
            rates.emplace_back(value_of(&first, "rate"));
        }
        describe_groups(rate_groups(names, rates));
    }

    void describe_groups(const std::vector<RateGroup>& groups) {
        std::set<std::string> seen;
        for (const RateGroup& group : groups)
            describe_group(group, !seen.insert(group.interface).second);
        if (groups.size() > most_rate_groups) {
            findings_.warn("supported-rate", std::to_string(groups.size()) + " groups are more than " +
                                                 std::to_string(most_rate_groups) + ": keep to that many");
        }
    }

    void describe_group(const RateGroup& group, bool again) {
        const std::string where = place("supported-rate", group.interface);
        if (again) findings_.warn(where, "its objects do not follow each other: each run is a group of its own");
        if (group.size > most_rates) {
            findings_.warn(where, std::to_string(group.size) + " rates in a row: only " + std::to_string(most_rates) +
                                      " are served");
        }
        if (!rates_are_foreseeable_) return;
        std::string values;
        for (const int value : group.served)
            values += (values.empty() ? "" : ", ") + std::to_string(value);
        const std::string_view rate = value_of(find("supported-rate", group.interface), "rate");
        findings_.note(where,
                       counted(group.served.size(), "row") + ", served as " + values +
                           " (in 500 kbit/s; only the first object's rate is read), and as the operational rate set " +
                           std::to_string(operational_rate(rate)));
    }

    void examine_keys(const Object& object) {
        const auto is_of_table = [&](const Fact& fact) { return table_of(fact.holder) == object.table; };
        if (std::ranges::none_of(facts(), is_of_table)) {
            findings_.note(place(object.table, object.name), "the agent reads no such table");
            return;
        }
        for (const auto& [key, value] : object.attributes) {
            if (is_read(object.table, key)) continue;
            findings_.note(place(object.table, object.name), "key " + quoted(key) + " is not read by the agent");
        }
    }

    static bool is_read(std::string_view table, std::string_view key) {
        return std::ranges::any_of(facts(),
                                   [&](const Fact& fact) { return fact.key == key && table_of(fact.holder) == table; });
    }

    const Contents& contents_;
    bool offline_;
    bool list_defaults_;
    bool rates_are_foreseeable_ = true;
    std::map<std::pair<std::string, std::string>, const Object*> first_;  // by table and name
    Findings findings_;
};

}  // namespace

Exit lint(const Request& request) {
    Store store(request.store, Access::read);
    const Reading reading = store.read();
    complain_of_damage(store, reading);
    const Exit verdict = Lint(reading.contents, request).run();
    return reading.damage.empty() ? verdict : Exit::store;
}

}  // namespace cfql::tool
