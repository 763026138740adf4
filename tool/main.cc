// cfql: the command line. Every command is one entry of the table below.
#include <stdint.h>
#include <stdio.h>

#include <CLI/CLI.hpp>
#include <array>
#include <exception>
#include <vector>

#include "commands.h"
#include "database.h"
#include "nearest.h"
#include "output.h"
#include "text.h"

namespace cfql::tool {

namespace {

constexpr const char* version = "cfql " CFQL_VERSION;

constexpr const char* footer =
    "Exit status: 0 done; 1 the answer is no (not found, faults, warnings, things to fix);\n"
    "2 wrong command line; 3 the store is absent, damaged, busy or not yours; 4 wrong input; 5 output not written.\n"
    "More: man cfql";

// The words after the command. Which of them names the object depends on the table.
struct Words {
    std::string text[4];
    CLI::Option* option[4] = {};

    size_t count() const {
        size_t given = 0;
        while (given < std::size(option) && option[given] && option[given]->count() > 0)
            ++given;
        return given;
    }
};

[[noreturn]] void misused(const CLI::App& command, const std::string& what) {
    const std::string name = command.get_parent() ? command.get_name() + ' ' : "";
    throw Failure(Exit::usage, what + "; see \"cfql " + name + "--help\"");
}

std::vector<std::string> names_of_options(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    }
    return names;
}

std::vector<std::string> names_of_commands(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        names.emplace_back(command->get_name());
    return names;
}

// More words than the command takes, usually a value with blanks. A value given to "set" may be a secret and is not
// repeated.
std::string too_many(const CLI::App& command) {
    const std::vector<std::string> rest = command.remaining();
    std::string text = rest.size() == 1 ? "one argument" : std::to_string(rest.size()) + " arguments";
    text += " too many";
    if (command.get_name() != "set") text += ": " + tool::quoted(rest.front());
    const bool takes_words =
        !command.get_options([](const CLI::Option* option) { return option->get_positional(); }).empty();
    return text + (takes_words ? "; put what has blanks in quotes" : "");
}

// Complains of what `command`, or the program itself, does not take.
std::string left_over(const CLI::App& command) {
    const std::string first = command.remaining().front();
    if (first.starts_with('-')) {
        const std::string hint = first.starts_with("--") ? suggestion(first, names_of_options(command)) : "";
        return "unknown option " + tool::quoted(first) +
               (hint.empty() ? "; -- goes before values that begin with a dash" : hint);
    }
    if (command.get_parent() != nullptr) return too_many(command);
    return "unknown command " + tool::quoted(first) + suggestion(first, names_of_commands(command));
}

// Of an option without its value the parser says "--nth: 1 required N missing".
std::string without_value(std::string text) {
    constexpr std::string_view between = ": 1 required ";
    constexpr std::string_view end = " missing";
    const size_t at = text.find(between);
    if (at == std::string::npos || !text.ends_with(end)) return text;
    text.resize(text.size() - end.size());
    return text.replace(at, between.size(), " must be followed by ");
}

std::string described(const CLI::App& command, const CLI::ParseError& error) {
    const bool is_left_over = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr && !command.remaining().empty();
    if (is_left_over) return left_over(command);
    const bool is_value = dynamic_cast<const CLI::ConversionError*>(&error) != nullptr ||
                          dynamic_cast<const CLI::ValidationError*>(&error) != nullptr;
    if (is_value) return "--nth takes a number, from 1";  // no other option is a number
    return without_value(error.what());
}

[[noreturn]] void misused(const CLI::App& app, const CLI::ParseError& error) {
    const std::vector<CLI::App*> used = app.get_subcommands();
    const CLI::App& command = used.empty() ? app : *used.front();
    misused(command, described(command, error));
}

// "KEY is missing": names the command's words from `given` up to `least`.
std::string missing(size_t given, size_t least) {
    constexpr std::string_view names[] = {"TABLE", "OBJECT", "KEY", "VALUE"};
    std::string text(names[given]);
    for (size_t i = given + 1; i < least; ++i)
        text += (i + 1 < least ? ", " : " and ") + std::string(names[i]);
    return text + (least - given == 1 ? " is missing" : " are missing");
}

// Moves the words into `request`. OBJECT is left out for the table "system", whose object has no name; `least` and
// `wanted` count it all the same.
void address(const CLI::App& command, const Words& words, size_t least, size_t wanted, Request& request) {
    std::array<std::string*, 4> targets = {&request.table, &request.object, &request.key, &request.value};
    const bool nameless = words.text[0] == singleton_table;
    const size_t given = words.count() + (nameless ? 1 : 0);
    if (given < least) misused(command, missing(given, least));
    if (given > wanted)
        misused(command, "one argument too many: the object of the table \"system\" has no name, leave OBJECT out");
    if (nameless && request.nth > 1) misused(command, "the table \"system\" has one object: leave --nth out");
    for (size_t i = 0; i < words.count(); ++i) {
        std::string* target = targets[i > 0 && nameless ? i + 1 : i];
        *target = words.text[i];
        // An empty variable in a script must not turn "unset TABLE OBJECT KEY" into "unset TABLE OBJECT".
        if (target->empty() && target != &request.value) misused(command, "an argument is empty");
    }
}

void add_words(CLI::App& command, Words& words, const std::vector<std::pair<std::string, std::string>>& names) {
    for (size_t i = 0; i < names.size(); ++i) {
        words.option[i] = command.add_option(names[i].first, words.text[i], names[i].second)->type_name("");
    }
}

void add_nth(CLI::App& command, Request& request) {
    command.add_option("--nth", request.nth, "The NTH object of that name, in order of insertion (default 1)")
        ->type_name("N")
        ->check(CLI::Range(1U, UINT32_MAX).description(""));
}

void add_reveal(CLI::App& command, Request& request) {
    command.add_flag("--reveal", request.reveal, "Show secrets on a terminal, too");
}

void add_offline(CLI::App& command, Request& request) {
    command.add_flag("--offline", request.offline, "Assume that the system has every interface of the store");
}

struct Command {
    const char* name;
    const char* description;
    void (*declare)(CLI::App& command, Words& words, Request& request);
    void (*complete)(const CLI::App& command, const Words& words, Request& request);
    Exit (*run)(const Request& request);
};

const std::pair<std::string, std::string> table_word = {"TABLE", "interface, bss, radio, supported-rate, system"};
const std::pair<std::string, std::string> object_word = {"OBJECT", "Its name; left out for the table system"};
const std::pair<std::string, std::string> key_word = {"KEY", "The key of the value"};

void declare_nothing(CLI::App&, Words&, Request&) {}
void complete_nothing(const CLI::App&, const Words&, Request&) {}

const Command commands[] = {
    {"init", "Create an empty store, and its directory if it is missing", declare_nothing, complete_nothing, init},
    {"get", "Print one value",
     [](CLI::App& command, Words& words, Request& request) {
         add_words(command, words, {table_word, object_word, key_word});
         add_nth(command, request);
         add_reveal(command, request);
     },
     [](const CLI::App& command, const Words& words, Request& request) { address(command, words, 3, 3, request); },
     get},
    {"set", "Store one value; creates the object if there is none",
     [](CLI::App& command, Words& words, Request& request) {
         add_words(command, words,
                   {table_word,
                    object_word,
                    key_word,
                    {"VALUE",
                     "The value; - reads it from standard input, without its last newline. Put -- before a value "
                     "that begins with a dash"}});
         add_nth(command, request);
     },
     [](const CLI::App& command, const Words& words, Request& request) { address(command, words, 4, 4, request); },
     set},
    {"unset", "Remove one value, or an object with all of its values",
     [](CLI::App& command, Words& words, Request& request) {
         add_words(command, words,
                   {table_word, object_word, {"KEY", "The key of the value; without it, the whole object is removed"}});
         add_nth(command, request);
     },
     [](const CLI::App& command, const Words& words, Request& request) { address(command, words, 2, 3, request); },
     unset},
    {"list", "Print everything, or one table, or one object: table, object, key, value, separated by tabs",
     [](CLI::App& command, Words& words, Request& request) {
         add_words(command, words, {table_word, object_word});
         add_reveal(command, request);
     },
     [](const CLI::App&, const Words& words, Request& request) {
         request.table = words.text[0];
         request.object = words.text[1];
     },
     list},
    {"import", "Import objects from TOML text: all of them, or none if there is an error",
     [](CLI::App& command, Words&, Request& request) {
         command.add_option("FILE", request.file, "The text; - for standard input")->required()->type_name("");
         command.add_flag(
             "--replace", request.replace,
             "Replace the whole contents. Without it, the objects of the text are updated or added; everything "
             "else stays");
         command.add_flag("--allow-empty", request.allow_empty,
                          "With --replace: let a text without objects empty the store");
     },
     complete_nothing, import_contents},
    {"export", "Print the contents as TOML text that import reads back",
     [](CLI::App& command, Words&, Request& request) {
         command.add_option("--output", request.file, "Write to FILE, readable only by you; all of it or nothing")
             ->type_name("FILE");
         command.add_flag("--salvage", request.salvage,
                          "Read a damaged store as far as possible, and report what is lost");
         add_reveal(command, request);
     },
     complete_nothing, export_contents},
    {"check", "Check the file: structure, indexes, checksums", declare_nothing, complete_nothing, check},
    {"preview", "Print what the agent would serve: column, interface, value, its origin, key, stored text",
     [](CLI::App& command, Words& words, Request& request) {
         add_words(command, words, {{"INTERFACE", "The interface; without it, all of them"}});
         command.add_flag("--json", request.json, "Print JSON");
         command.add_flag("--complete", request.complete, "As an agent with the option \"dot11Answers complete\"");
         add_offline(command, request);
         command.add_flag("--reveal", request.reveal, "Show secrets");
     },
     [](const CLI::App&, const Words& words, Request& request) { request.object = words.text[0]; }, preview},
    {"lint", "Report what the agent will do with the contents",
     [](CLI::App& command, Words&, Request& request) {
         add_offline(command, request);
         command.add_flag("--defaults", request.defaults, "List every value that is served by default");
     },
     complete_nothing, lint},
    {"watch", "Print changes as they happen: set or unset, then the line of list",
     [](CLI::App& command, Words&, Request& request) { add_reveal(command, request); }, complete_nothing, watch},
    {"doctor", "Find out why a table is empty: check store, system and agent, and say what to do",
     [](CLI::App& command, Words&, Request& request) {
         command.add_option("--as", request.agent_user, "The agent's user (default: that of the running agent)")
             ->type_name("USER");
         command.add_option("--host", request.host, "The agent's address (default: 127.0.0.1)")->type_name("HOST");
         command.add_option("--community", request.community, "Ask as this community (default: public)")
             ->type_name("NAME");
         command
             .add_option("--user", request.snmp_user,
                         "Ask as this SNMPv3 user; passphrases and levels are in snmp.conf(5)")
             ->type_name("NAME");
         command.add_option("--module", request.module, "The module's file (default: " DOT11_MODULE ")")
             ->type_name("FILE");
     },
     complete_nothing, doctor},
};

// Options of the program and of every command.
void add_common(CLI::App& app, Request& request) {
    app.set_help_flag("-h,--help", "Print this help");
    app.set_version_flag("--version", version, "Print the version");
    app.add_option("--store", request.store,
                   "The store's file (default: the variable CFQL_STORE, or /var/lib/cfql/store.db)")
        ->type_name("PATH");
    app.footer(footer);
}

int run(int argc, char** argv) {
    Request request;
    request.store = store_path();
    request.module = DOT11_MODULE;
    request.host = "127.0.0.1";
    request.community = "public";
    CLI::App app("The access point's configuration store", "cfql");
    add_common(app, request);
    app.require_subcommand(0, 1);
    std::array<Words, std::size(commands)> words;
    for (size_t i = 0; i < std::size(commands); ++i) {
        CLI::App* command = app.add_subcommand(commands[i].name, commands[i].description);
        add_common(*command, request);
        commands[i].declare(*command, words[i], request);
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& success) {  // help or version
        app.exit(success);
        flush_output();
        return 0;
    } catch (const CLI::ParseError& error) {
        misused(app, error);
    }
    if (app.get_subcommands().empty()) misused(app, "a command is missing");
    const CLI::App* used = app.get_subcommands().front();
    size_t which = 0;
    while (used->get_name() != commands[which].name)
        ++which;
    commands[which].complete(*used, words[which], request);
    const Exit exit = commands[which].run(request);
    flush_output();
    return static_cast<int>(exit);
}

}  // namespace

}  // namespace cfql::tool

int main(int argc, char** argv) {
    using namespace cfql::tool;
    try {
        return run(argc, argv);
    } catch (const Failure& failure) {
        fflush(stdout);
        complain(failure.what());
        return static_cast<int>(failure.exit());
    } catch (const std::exception& error) {  // out of memory
        complain(error.what());
        return static_cast<int>(Exit::store);
    }
}
