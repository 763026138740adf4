// The command lint: reports where the agent will serve something else than what the store says.
#include <algorithm>
#include <optional>
#include <set>

#include "agent_run.h"
#include "commands.h"
#include "facts.h"
#include "output.h"
#include "store.h"
#include "store/interfaces.h"
#include "text.h"

namespace cfql::tool {

namespace {

std::string place(const std::string& table, const std::string& name) {
    return described({table, name, 1});
}

// A value in a message: never long, and never a secret.
std::string excerpt(std::string_view key, std::string_view value) {
    constexpr size_t longest = 32;
    if (is_secret(key)) return "the value";
    return value.size() <= longest ? quoted(value) : quoted(value.substr(0, longest)) + "...";
}

std::string joined(const std::set<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

// Findings, each printed once: several interfaces may share a bss or a radio.
class Findings {
  public:
    void warn(const std::string& where, const std::string& what) { add("warning", where, what, warnings_); }
    void note(const std::string& where, const std::string& what) { add("note", where, what, notes_); }

    Exit conclude() const {
        report(counted(warnings_, "warning") + ", " + counted(notes_, "note"));
        return warnings_ == 0 ? Exit::done : Exit::no;
    }

  private:
    void add(std::string_view kind, const std::string& where, const std::string& what, size_t& count) {
        const std::string line = std::string(kind) + ": " + where + ": " + what;
        if (!seen_.insert(line).second) return;
        report(line);
        ++count;
    }

    std::set<std::string> seen_;
    size_t warnings_ = 0;
    size_t notes_ = 0;
};

// ---- a text against what is served of it

// Without a sign and zeroes that do not change the number; none if it is not a decimal number.
std::optional<std::string> decimal(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    if (text.empty() || text.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
    text.remove_prefix(std::min(text.find_first_not_of('0'), text.size() - 1));
    return (negative && text != "0" ? "-" : "") + std::string(text);
}

bool is_mac(std::string_view text) {
    std::string digits(text);
    std::erase(digits, ':');
    return digits.size() == 12 && from_hex(digits);
}

bool is_one_of(std::string_view words, std::string_view text) {
    return (' ' + std::string(words) + ' ').find(' ' + std::string(text) + ' ') != std::string::npos &&
           text.find(' ') == std::string_view::npos;
}

// What is wrong with a text as such; empty when it has its key's form.
std::string fault_of_form(const Fact& fact, std::string_view text) {
    const std::string unit = fact.detail.empty() ? "" : " (" + std::string(fact.detail) + ')';
    if (fact.form == Form::number && !decimal(text)) return "is no decimal number" + unit;
    if (fact.form == Form::mac && !is_mac(text)) return "is not 12 hexadecimal digits, with or without colons";
    if (fact.form == Form::words && !is_one_of(fact.detail, text))
        return "is none of the words " + std::string(fact.detail);
    return {};
}

std::string fault_of_text(const Fact& fact, std::string_view served, std::string_view text) {
    if (!served.starts_with(text) && !text.starts_with(served)) return "is not served as it is";
    std::string fault;
    if (served.size() < text.size())
        fault = "is clipped from " + std::to_string(text.size()) + " octets to " + std::to_string(served.size());
    if (is_secret(fact.key) || is_utf8(served)) return fault;
    return fault + (fault.empty() ? "is" : ", which are") +
           " not UTF-8: where it is a label, a scrape of the whole access point fails";
}

// How an answer differs from a text of the right form; empty if it says the same. Numbers that a column shows in
// another unit, and words, cannot be compared.
std::string fault_of_answer(const Fact& fact, const Instance& instance, std::string_view text) {
    if (!instance.is_answered()) return {};
    if (fact.form == Form::number && instance.is_number()) {
        if (decimal(text) == std::to_string(instance.number())) return {};
        const bool is_counter = instance.column->type == dot11::Type::counter;
        return std::string("is not served as it is") + (is_counter ? "; counters go from 2147483647 to 0" : "");
    }
    if (fact.form == Form::text && !instance.is_number()) return fault_of_text(fact, instance.octets, text);
    return {};
}

class Lint {
  public:
    Lint(const Contents& contents, const Request& request)
        : contents_(contents),
          run_(contents, request.offline ? numbers_of_contents(contents) : numbers_of_system()),
          list_defaults_(request.defaults) {}

    Exit run() {
        examine_interfaces();
        examine_links();
        for (const Instance& instance : run_.instances())
            examine_value(instance);
        tell_faults();
        tell_defaults();
        tell_unanswered();
        const std::vector<ObjectRef> all = refs(contents_);
        for (size_t i = 0; i < all.size(); ++i)
            examine_keys(all[i], contents_[i].attributes);
        return findings_.conclude();
    }

  private:
    // ---- which interfaces are served

    void examine_interfaces() {
        std::set<std::string> seen;
        size_t rows = 0;
        for (const Object& object : contents_) {
            if (object.table != "interface" || !is_served(object)) continue;
            ++rows;
            if (!seen.insert(object.name).second)
                findings_.warn(place("interface", object.name), "given more than once: every row shows the first one");
        }
        if (rows == 0) findings_.warn("interface", "none is left to serve: the tables are empty");
        if (rows > dot11::max_interfaces) {
            findings_.warn("interface", std::to_string(rows) + " are more than " +
                                            std::to_string(dot11::max_interfaces) + ": nothing is served at all");
        }
    }

    bool is_served(const Object& object) {
        const std::string where = place("interface", object.name);
        const auto type = object.attributes.find(run_.chosen_by());
        if (type == object.attributes.end() || type->second != run_.chosen_value()) {
            const std::string_view found = type == object.attributes.end() ? std::string_view() : type->second;
            findings_.note(where, "skipped: its " + run_.chosen_by() + " is " + excerpt("", found) + ", not " +
                                      quoted(run_.chosen_value()));
            return false;
        }
        const std::string reason = run_.obstacle(object.name);
        if (!reason.empty()) findings_.warn(where, "skipped: " + reason);
        return reason.empty();
    }

    // ---- what is served

    void examine_links() {
        for (const Question& question : run_.questions()) {
            if (!question.answer || question.answer->empty()) continue;
            const Fact* fact = find_fact(question.table, question.key);
            if (!fact || fact->form != Form::link || run_.find(question.key, *question.answer)) continue;
            findings_.warn(
                place(question.table, question.object),
                "key " + quoted(question.key) + " leads nowhere: there is no " + place(question.key, *question.answer));
        }
    }

    void examine_value(const Instance& instance) {
        const std::optional<std::string_view> text = instance.stored();
        const Fact* fact = text ? find_fact(instance.key->table, instance.key->name) : nullptr;
        if (!fact) return;
        std::string fault = fault_of_form(*fact, *text);
        if (fault.empty()) fault = fault_of_answer(*fact, instance, *text);
        if (fault.empty()) return;
        const std::string where = place(instance.question->table, instance.question->object);
        const std::string what = "key " + quoted(fact->key) + ": " + excerpt(fact->key, *text) + ' ' + fault;
        const bool is_shown = instance.is_answered() && !is_secret(fact->key);
        std::set<std::string>& columns = faults_[{where, what}][is_shown ? instance.served_text() : ""];
        if (is_shown) columns.insert(instance.column->name);
    }

    // One warning for all columns that show the same text.
    void tell_faults() {
        for (const auto& [fault, answers] : faults_) {
            std::string served;
            for (const auto& [value, columns] : answers) {
                if (!columns.empty())
                    served += (served.empty() ? ": served as " : ", as ") + value + " (" + joined(columns) + ')';
            }
            findings_.warn(fault.first, fault.second + served);
        }
    }

    void tell_defaults() {
        std::map<std::string, size_t> counts;  // by interface
        for (const Instance& instance : run_.instances()) {
            if (!instance.key || instance.stored() || !instance.is_answered()) continue;
            ++counts[instance.interface];
            if (!list_defaults_) continue;
            findings_.note(place("interface", instance.interface),
                           std::string(instance.column->name) + ": " + quoted(instance.key->name) + " in " +
                               quoted(instance.key->table) + " is not set, or empty: served as " +
                               instance.served_text());
        }
        for (const auto& [interface, count] : counts) {
            if (list_defaults_) break;
            findings_.note(place("interface", interface),
                           counted(count, "value") + " served by default; see --defaults");
        }
    }

    // Keys that the agent reads but that no manager sees.
    void tell_unanswered() {
        std::set<std::string> answered;
        for (const Instance& instance : run_.instances()) {
            if (instance.key && instance.is_answered()) answered.insert(instance.key->name);
        }
        std::set<std::string> unanswered;
        for (const Question& question : run_.questions()) {
            const Fact* fact = find_fact(question.table, question.key);
            const bool is_link = fact && fact->form == Form::link;
            if (question.answer && !is_link && !answered.contains(question.key)) unanswered.insert(question.key);
        }
        if (!unanswered.empty()) findings_.note("agent", "no GET answers what it reads under " + joined(unanswered));
    }

    // ---- what is not read

    void examine_keys(const ObjectRef& where, const Attributes& attributes) {
        size_t read = 0;
        for (const auto& [key, value] : attributes) {
            const std::string error = typing_error(where.table, key);
            if (!error.empty()) findings_.warn(described(where), error);
            if (is_asked(where, key)) ++read;
        }
        if (attributes.empty() && !is_known_table(where.table))
            findings_.warn(described(where), typing_error(where.table, ""));
        if (read == 0) return tell_unread(where, attributes);
        for (const auto& [key, value] : attributes) {
            if (!find_fact(where.table, key) || is_asked(where, key) || key == run_.chosen_by()) continue;
            findings_.warn(described(where), "key " + quoted(key) + " is not read here" + read_elsewhere(where, key));
        }
    }

    bool is_asked(const ObjectRef& where, const std::string& key) const {
        return where.nth == 1 && std::ranges::any_of(run_.questions(), [&](const Question& question) {
                   return question.table == where.table && question.object == where.name && question.key == key;
               });
    }

    // Interfaces have been dealt with, and further objects of a supported-rate count as rates.
    void tell_unread(const ObjectRef& where, const Attributes& attributes) {
        if (where.table == "interface" || attributes.empty() || !is_known_table(where.table)) return;
        if (where.nth > 1 && where.table != "supported-rate")
            findings_.warn(described(where), "the agent reads only the first one of a name");
        if (where.nth == 1) findings_.note(described(where), "no interface that is served leads to it");
    }

    // Where the agent looks up the same key instead.
    std::string read_elsewhere(const ObjectRef& where, const std::string& key) const {
        for (const Question& question : run_.questions()) {
            if (question.table == where.table && question.key == key)
                return ": it is looked up in " + place(question.table, question.object);
        }
        return "";
    }

    const Contents& contents_;
    AgentRun run_;
    bool list_defaults_;
    // By object and fault: the values that are served, and the columns that serve them.
    std::map<std::pair<std::string, std::string>, std::map<std::string, std::set<std::string>>> faults_;
    Findings findings_;
};

}  // namespace

Exit lint(const Request& request) {
    Store store(request.store, Access::recover);
    const Reading reading = store.read();
    complain_of_damage(store, reading);
    const Exit verdict = Lint(reading.contents, request).run();
    return reading.damage.empty() ? verdict : Exit::store;
}

}  // namespace cfql::tool
