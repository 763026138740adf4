// cfql-collector: fills the store from the kernel and hostapd.
#include <sys/stat.h>

#include <stdio.h>
#include <string.h>
#include <CLI/CLI.hpp>
#include <exception>

#include "clock.h"
#include "collector.h"
#include "failure.h"
#include "links.h"
#include "list.h"
#include "loop.h"
#include "manufacturer.h"
#include "notify.h"
#include "presence.h"
#include "wireless.h"

namespace collector {

namespace {

constexpr const char* version = "cfql-collector " COLLECTOR_VERSION;

constexpr const char* footer =
    "Exit status: 0 done; 1 another collector fills this store; 2 wrong command line; 3 the store;\n"
    "4 the configuration. More: man cfql-collector";

struct Options {
    int interval = 10;
    std::string hostapd = "/run/hostapd";
    std::string store = "/run/cfql/store.db";
    std::string config = "/etc/cfql/collector.toml";
    bool no_aliases = false;
    bool once = false;
    bool dry_run = false;
    bool list = false;
    bool remove_aliases = false;

    bool writes() const { return !dry_run && !list; }
};

void declare(CLI::App& app, Options& options) {
    app.set_help_flag("-h,--help", "Print this help");
    app.set_version_flag("--version", version, "Print the version");
    app.add_option("--interval", options.interval, "Seconds from one pass to the next, 2 to 3600 (default 10)")
        ->type_name("SECONDS")
        ->check(CLI::Range(2, 3600));
    app.add_option("--hostapd", options.hostapd, "hostapd's control sockets (default /run/hostapd)")->type_name("DIR");
    app.add_option("--store", options.store, "The store's file (default /run/cfql/store.db)")->type_name("PATH");
    app.add_option("--config", options.config, "The configuration (default /etc/cfql/collector.toml)")
        ->type_name("FILE");
    app.add_flag("--no-aliases", options.no_aliases,
                 "Set no alternative names; interfaces with long names are left out");
    app.add_flag("--once", options.once, "Make one pass, then exit");
    app.add_flag("--dry-run", options.dry_run, "Make one pass and print what it would change in the store");
    app.add_flag("--list", options.list, "Print radios, access points, stations, and what is served under which name");
    app.add_flag("--remove-aliases", options.remove_aliases, "Remove the alternative names that were set, then exit");
    app.footer(footer);
}

// Refuses options that exclude each other, and empty values, which come from an unset variable in a script.
void check_options(const Options& options) {
    for (const std::string* value : {&options.hostapd, &options.store, &options.config}) {
        if (value->empty()) throw Failure(Exit::usage, "an argument is empty; see \"cfql-collector --help\"");
    }
    if (options.once + options.dry_run + options.list + options.remove_aliases > 1) {
        throw Failure(Exit::usage, "--once, --dry-run, --list and --remove-aliases exclude each other");
    }
}

void print(const std::string& text) {
    if (fwrite(text.data(), 1, text.size(), stdout) == text.size() && fflush(stdout) == 0) return;
    throw Failure(Exit::store, std::string("standard output: ") + strerror(errno));
}

[[noreturn]] void fail_store(const std::string& path, const Writer::Result& result) {
    throw Failure(Exit::store,
                  path + ": " + cfql::describe(result.status) +
                      (result.detail.empty() ? "" : " (" + result.detail + ')') +
                      "; see that its directory exists and belongs to the collector, or name another with --store; "
                      "a damaged store may be removed, and a new one is created");
}

void claim(Presence& presence, const std::string& store) {
    const int error = presence.claim();
    if (error == 0) return;
    if (error == EWOULDBLOCK) {
        throw Failure(Exit::another,
                      store + ": another collector fills it; end that one, or name another store with --store");
    }
    throw Failure(Exit::store,
                  presence.path() + ": " + strerror(error) +
                      "; see that the directory exists and belongs to the collector, or name another with --store");
}

// Puts the collector's parts together and runs them as the command line asks.
class Program {
  public:
    explicit Program(const Options& options)
        : options_(options),
          configuration_(load_configuration(options.config)),
          hostapd_(options.hostapd),
          names_(links_, !options.writes()    ? Names::Mode::inspect
                         : options.no_aliases ? Names::Mode::refused
                                              : Names::Mode::set),
          writer_(options.store),
          presence_(options.store),
          collector_({kernel_, hostapd_, names_, writer_, log_}, configuration_, read_manufacturer("/sys")) {}

    void run() {
        if (const int error = kernel_.open()) {
            throw Failure(Exit::usage, std::string("netlink: ") + strerror(error) +
                                           "; the process must be allowed sockets of the family AF_NETLINK");
        }
        if (options_.remove_aliases) return remove_aliases();
        if (options_.writes()) claim(presence_, options_.store);
        const Writer::Result loaded = collector_.load();
        if (loaded.status != cfql::Status::ok) fail_store(options_.store, loaded);
        if (!options_.writes()) return print_pass();
        // Creates the store now, so that a fault of its directory shows at once.
        const Writer::Result made = writer_.write(writer_.held());
        if (made.status != cfql::Status::ok && made.status != cfql::Status::busy) fail_store(options_.store, made);
        if (options_.once) return pass_once();
        run_loop();
    }

  private:
    void print_pass() {
        if (!collector_.observe(now_ms())) return;
        if (options_.list) return print(list(collector_.observed()));
        for (const std::string& line : writer_.preview(collector_.wanted()))
            print(line + '\n');
    }

    void pass_once() {
        if (!pass(now_ms())) return;
        if (writer_.last_status() != cfql::Status::ok) fail_store(options_.store, {writer_.last_status(), "", 0});
    }

    bool pass(int64_t now) {
        const bool observed = collector_.observe(now);
        if (observed) collector_.write(now);
        presence_.stamp(now_ms() / 1000, options_.interval);
        return observed;
    }

    void reload() {
        notify_.send("RELOADING=1");
        try {
            collector_.configure(load_configuration(options_.config));
            log_.say(Level::info, options_.config + ": read again");
        } catch (const Failure& failure) {
            log_.say(Level::error, std::string(failure.what()) + "; the previous configuration stays");
        }
        notify_.send("READY=1");
    }

    void run_loop() {
        bool is_ready = false;
        Work work;
        work.events = {kernel_.wireless_events(), kernel_.link_events()};
        work.read_events = [&] { return collector_.read_events(); };
        work.pass = [&](int64_t now) {
            pass(now);
            if (!is_ready) notify_.send("READY=1");
            is_ready = true;
            return After{collector_.is_under_way(), collector_.is_out_of_date()};
        };
        work.reload = [&] { reload(); };
        work.alive = [&] { notify_.send("WATCHDOG=1"); };
        work.interval = options_.interval * int64_t{1000};
        work.watchdog = notify_.watchdog();
        collector::run(work);
        notify_.send("STOPPING=1");
    }

    void remove_aliases() {
        std::vector<Interface> interfaces;
        const int error = kernel_.interfaces(interfaces);
        if (error != 0 && error != ENOENT)
            throw Failure(Exit::usage, std::string("the kernel does not list its interfaces: ") + strerror(error));
        for (const Interface& interface : interfaces) {
            const auto alias = configuration_.aliases.find(interface.name);
            for (const std::string& name :
                 names_.remove(interface.index, alias == configuration_.aliases.end() ? nullptr : &alias->second)) {
                print(interface.name + ": removed " + name + '\n');
            }
        }
    }

    const Options& options_;
    Configuration configuration_;
    Wireless kernel_;
    Hostapd hostapd_;
    KernelLinks links_;
    Names names_;
    Writer writer_;
    Log log_;
    Notify notify_;
    Presence presence_;
    Collector collector_;
};

}  // namespace

static int run_command(int argc, char** argv) {
    Options options;
    CLI::App app("Fills the access point's configuration store from the kernel and hostapd", "cfql-collector");
    declare(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& success) {  // help or version
        app.exit(success);
        return 0;
    } catch (const CLI::ParseError& error) {
        throw Failure(Exit::usage, std::string(error.what()) + "; see \"cfql-collector --help\"");
    }
    check_options(options);
    umask(027);
    hold_signals();
    Program(options).run();
    return 0;
}

}  // namespace collector

int main(int argc, char** argv) {
    using collector::Exit;
    collector::Log log;
    try {
        return collector::run_command(argc, argv);
    } catch (const collector::Failure& failure) {
        log.say(collector::Level::error, failure.what());
        return static_cast<int>(failure.exit());
    } catch (const std::exception& error) {  // out of memory, or of descriptors
        log.say(collector::Level::error, error.what());
        return static_cast<int>(Exit::store);
    }
}
