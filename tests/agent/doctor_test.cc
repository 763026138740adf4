// cfql doctor on a real agent: every finding once, and none if all is well.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "agent.h"
#include "network.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// Readers beside the fixture's own community, which has no view.
constexpr char readers[] =
    "view safe included .1.3.6.1.2.1.1\n"
    "view safe included .1.2.840.10036\n"
    "view safe excluded .1.2.840.10036.1.3\n"
    "view bare included .1.3.6.1.2.1.1\n"
    "rocommunity safe default -V safe\n"
    "rocommunity bare default -V bare\n"
    "createUser monitor SHA-256 \"passphrase for auth\" AES \"passphrase for priv\"\n"
    "rouser monitor authpriv -V safe\n";

struct Said {
    int status;
    std::string text;
};

Said said_by(const std::string& command) {
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    Said said = {};
    for (int octet = 0; (octet = fgetc(pipe)) != EOF;)
        said.text += static_cast<char>(octet);
    const int status = pclose(pipe);
    said.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return said;
}

constexpr char asking_safely[] = " --host 127.0.0.1:1161 --community safe --module " MODULE;

Said doctor(const Agent& agent, const std::string& options = asking_safely) {
    return said_by(agent.command("doctor" + options));
}

// A folder of the test's own with a store, and no agent.
class Ward : public testing::Test {
  protected:
    Ward() {
        char name[] = "/tmp/doctor-XXXXXX";
        EXPECT_NE(mkdtemp(name), nullptr);
        folder = name;
        run(CFQL " init --store " + store() + " >/dev/null");
    }
    ~Ward() override { std::filesystem::remove_all(folder); }

    std::string store() const { return folder + "/store.db"; }
    std::string write(const std::string& name, const std::string& text) const {
        std::ofstream(folder + '/' + name) << text;
        return folder + '/' + name;
    }
    void fill(const std::string& contents) const {
        run(CFQL " import --replace --allow-empty --store " + store() + ' ' + write("contents", contents) +
            " >/dev/null 2>&1");
    }
    // `before`: goes before the command. Without the agent, which nobody asks.
    Said doctor(const std::string& options = "", const std::string& before = "") const {
        return said_by(before + " env PATH=/nowhere " CFQL " doctor --store " + store() + ' ' + options);
    }

    // Goes before a command that is to see no process of anybody else's.
    static constexpr char alone[] = "unshare -pf --mount-proc ";

    std::string folder;
};

std::string interfaces(unsigned count) {
    std::string text;
    for (unsigned i = 0; i < count; ++i)
        text += "[[interface]]\nname = \"" + interface_name(i) + "\"\ntype = \"service-set\"\n";
    return text;
}

// ---- with an agent

TEST(Doctor, HasNothingToFix) {
    add_interfaces(2);
    const Agent agent(empty_configuration(2), Role::agent, readers);
    const Said said = doctor(agent);
    EXPECT_EQ(said.status, 0);
    EXPECT_THAT(said.text, HasSubstr("ok: store: " + agent.folder() + "/store.db has 2 interfaces to serve\n"));
    EXPECT_THAT(said.text, HasSubstr(" runs, may read the store\n"));
    EXPECT_THAT(said.text, HasSubstr("ok: clock: 20"));
    EXPECT_THAT(said.text, HasSubstr("note: collector: none fills this store\n"));
    EXPECT_THAT(said.text, HasSubstr("has loaded " + agent.folder() + "/ieee802dot11.so\n"));
    EXPECT_THAT(said.text, HasSubstr("ok: agent: 127.0.0.1:1161 answers community \"safe\"\n"
                                     "ok: rows: the agent has 2\n"
                                     "ok: keys: the WEP keys are not shown to community \"safe\"\n"
                                     "nothing to fix\n"));
    EXPECT_THAT(said.text, Not(HasSubstr("fix: ")));
}

TEST(Doctor, AsksAsAUserOfVersion3) {
    add_interfaces(1);
    const Agent agent(empty_configuration(1), Role::agent, readers);
    std::ofstream(agent.folder() + "/snmp.conf") << "defSecurityLevel authPriv\ndefAuthType SHA-256\n"
                                                    "defAuthPassphrase passphrase for auth\ndefPrivType AES\n"
                                                    "defPrivPassphrase passphrase for priv\n";
    const std::string at = " --host 127.0.0.1:1161 --user ";
    const std::string configured = "SNMPCONFPATH=" + agent.folder() + ' ';
    const Said said = said_by(configured + agent.command("doctor" + at + "monitor"));
    EXPECT_EQ(said.status, 0);
    EXPECT_THAT(said.text, HasSubstr("ok: keys: the WEP keys are not shown to user \"monitor\"\nnothing to fix\n"));
    EXPECT_THAT(said_by(configured + agent.command("doctor" + at + "stranger")).text,
                HasSubstr("fix: agent: snmpget: Unknown user name; name the address"));
}

TEST(Doctor, SaysWhatTheAgentShowsAndWhatNot) {
    add_interfaces(1);
    const Agent agent(empty_configuration(1), Role::agent, readers);
    const std::string at = " --host 127.0.0.1:1161 --community ";
    const Said open = doctor(agent, at + "private");
    EXPECT_EQ(open.status, 1);
    EXPECT_THAT(open.text, HasSubstr("ok: rows: the agent has 1\n"
                                     "fix: keys: the WEP keys (dot11WEPDefaultKeyValue) are shown to community "
                                     "\"private\": exclude .1.2.840.10036.1.3 and"));
    EXPECT_THAT(doctor(agent, at + "bare").text,
                HasSubstr("fix: tables: none is shown to community \"bare\": include .1.2.840.10036 in its view"));
    EXPECT_THAT(
        doctor(agent, at + "nobody").text,
        HasSubstr("fix: agent: Timeout: No Response from 127.0.0.1:1161.; name the address that it listens on and "
                  "a reader that it admits with --host, --community or --user; see its log: journalctl -u snmpd\n"
                  "1 thing to fix\n"));
}

TEST(Doctor, CountsRows) {
    add_interfaces(2);
    Agent agent(empty_configuration(2), Role::agent, readers);
    ASSERT_EQ(agent.walk("1.1.1.1").size(), 2U);
    agent.configure("unset interface " + interface_name(1));
    EXPECT_THAT(doctor(agent).text,
                HasSubstr("fix: rows: the agent has 2, the store 1: it keeps its rows while it is asked more often"));
    remove_interface(interface_name(0));
    agent.control().now = time(nullptr) + 60;
    EXPECT_THAT(doctor(agent).text,
                AllOf(HasSubstr("fix: interface \"w0\": the system has no such interface, so that "),
                      HasSubstr("fix: interfaces: "), HasSubstr("fix: rows: the agent has none\n")));
}

TEST(Doctor, SeesAnotherStore) {
    add_interfaces(1);
    const Agent agent("", Role::agent, readers);
    agent.configure("init", "other.db");
    const std::string file = agent.folder() + "/contents";
    std::ofstream(file) << interfaces(1);
    agent.configure("import " + file, "other.db");
    const Said said = said_by(agent.command(std::string("doctor") + asking_safely, "other.db"));
    EXPECT_THAT(said.text, AllOf(HasSubstr(" reads the store " + agent.folder() + "/store.db, not " + agent.folder() +
                                           "/other.db: name it with --store"),
                                 HasSubstr("fix: rows: the agent has 0, the store 1: it does not read the store;")));
}

TEST(Doctor, SeesAModuleThatWasReplaced) {
    const Agent agent("", Role::agent, readers);
    agent.replace_module();
    EXPECT_THAT(doctor(agent).text,
                HasSubstr("fix: module: " + agent.folder() + "/ieee802dot11.so is newer than what snmpd"));
}

TEST(Doctor, SeesAModuleThatIsLoadedTwice) {
    const Agent agent("", Role::agent, readers);
    std::ofstream(agent.folder() + "/second.conf")
        << "agentAddress udp:127.0.0.1:1162\ndlmod ieee802dot11 " << agent.folder() << "/ieee802dot11.so\n";
    const Daemon second(agent.folder(), "second", "", "NET-SNMP version");
    EXPECT_THAT(doctor(agent).text, HasSubstr("fix: module: 2 processes have loaded it"));
}

TEST(Doctor, SeesAModuleThatIsNotLoaded) {
    char name[] = "/tmp/doctor-XXXXXX";
    ASSERT_NE(mkdtemp(name), nullptr);
    const std::string folder = name;
    std::ofstream(folder + "/bare.conf") << "agentAddress udp:127.0.0.1:1161\nrocommunity safe default\n";
    {
        const Daemon bare(folder, "bare", "", "NET-SNMP version");
        const Said said = said_by(CFQL " doctor --store " + folder + "/none" + asking_safely);
        EXPECT_THAT(said.text, AllOf(HasSubstr(" has not loaded " MODULE ": add the line \"dlmod ieee802dot11\""),
                                     HasSubstr("fix: tables: none is shown to community \"safe\": load the module")));
    }
    std::filesystem::remove_all(folder);
}

TEST(Doctor, DoesNotHangWithASubagent) {
    add_interfaces(1);
    Agent agent(empty_configuration(1), Role::subagent);
    ASSERT_EQ(kill(agent.daemon().pid(), SIGSTOP), 0);
    const Said said = doctor(agent, " --host 127.0.0.1:1161 --community private");
    kill(agent.daemon().pid(), SIGCONT);
    EXPECT_THAT(said.text, AllOf(HasSubstr("ok: agent: "), HasSubstr("fix: tables: "),
                                 HasSubstr("; a subagent that serves them hangs: restart it\n")));
}

// ---- without

TEST_F(Ward, StoresAndInterfaces) {
    add_interfaces(1);
    const std::string present = "name = \"w0\"\ntype = \"service-set\"\n";
    const struct {
        std::string contents, finding;
    } cases[] = {
        {"",
         "fix: interfaces: " + store() + " has none with type \"service-set\" that can be served: no table has rows"},
        {"[[interface]]\nname = \"w0\"\n", "fix: interfaces: "},
        {"[[interface]]\nname = \"wlan10\"\ntype = \"service-set\"\n",
         "fix: interface \"wlan10\": the name has more than 5 characters, so that it has no rows\n"},
        {"[[interface]]\nname = \"w\\u001b[2\"\ntype = \"service-set\"\n",
         "fix: interface \"w\\x1b[2\": the system has no such interface, so that it has no rows\n"},
        {"[[interface]]\n" + present, "ok: store: " + store() + " has 1 interface to serve\n"},
    };
    for (const auto& expected : cases) {
        fill(expected.contents);
        EXPECT_THAT(doctor().text, HasSubstr(expected.finding));
    }
}

TEST_F(Ward, TooManyInterfaces) {
    add_interfaces(129);
    fill(interfaces(129));
    EXPECT_THAT(doctor().text, HasSubstr("fix: interfaces: 129 are more than 128: no table has rows\n"));
}

TEST_F(Ward, StoresThatCannotBeRead) {
    std::filesystem::remove(store());
    EXPECT_THAT(doctor().text,
                HasSubstr("fix: store: " + store() + ": there is no store; make one with \"cfql init\""));
    ASSERT_EQ(mkfifo(store().c_str(), 0600), 0);
    EXPECT_THAT(doctor().text, HasSubstr("fix: store: " + store() + ": "));
}

TEST_F(Ward, ValuesThatAreDamaged) {
    fill("[[system]]\ncountry = \"QZQZ\"\n");
    std::string octets;
    std::getline(std::ifstream(store(), std::ios::binary), octets, '\xff');
    run("sed -i s/QZQZ/QZQX/ " + store());
    EXPECT_THAT(doctor().text,
                HasSubstr("fix: store: system: key \"country\": checksum is wrong; left out; set it again"));
}

TEST_F(Ward, Modules) {
    EXPECT_THAT(doctor("--module " MODULE).text, HasSubstr("ok: module: " MODULE " can be loaded\n"));
    // Linked to find all names at once, as the packages have it: those of the agent are not there.
    EXPECT_THAT(doctor("--module " MODULE, "LD_BIND_NOW=1").text, HasSubstr("ok: module: " MODULE " can be loaded\n"));
    EXPECT_THAT(
        doctor("--module /nowhere.so").text,
        HasSubstr("fix: module: /nowhere.so: No such file or directory; install it, or name it with --module\n"));
    EXPECT_THAT(doctor("--module " + write("text.so", "text")).text,
                AllOf(HasSubstr("fix: module: " + folder + "/text.so: "), HasSubstr("; install what is missing")));
}

TEST_F(Ward, NobodyToAsk) {
    EXPECT_THAT(doctor().text,
                HasSubstr("note: agent: snmpget is not installed (Debian: snmp), so it was not asked\n"));
    const std::string command = alone + std::string(CFQL " doctor --store ") + store() + " --host ";
    EXPECT_THAT(
        said_by(command + "127.0.0.1:9").text,
        HasSubstr("fix: agent: Timeout: No Response from 127.0.0.1:9.; no snmpd runs here: systemctl start snmpd\n"));
    EXPECT_THAT(said_by(command + "-X").text, AllOf(HasSubstr("fix: agent: "), Not(HasSubstr("USAGE"))));
}

// Whatever its client prints, and however much.
TEST_F(Ward, AClientThatIsNoClient) {
    const struct {
        const char *script, *finding;
    } cases[] = {
        {"printf '.1\\033[2J\\n'\nexit 1\n", "fix: agent: .1\\x1b[2J; no snmpd runs here"},
        {"exec yes .1\n", "; no snmpd runs here: systemctl start snmpd\n"},
    };
    for (const auto& expected : cases) {
        const std::string client = write("snmpget", std::string("#!/bin/sh\n") + expected.script);
        run("chmod 755 " + client);
        EXPECT_THAT(said_by("PATH=" + folder + ":$PATH " + alone + CFQL " doctor --store " + store()).text,
                    HasSubstr(expected.finding));
    }
}

TEST_F(Ward, Clocks) {
    EXPECT_THAT(doctor().text, HasSubstr("ok: clock: 20"));
    run("touch -d '1 hour' " + store());
    EXPECT_THAT(doctor().text, HasSubstr(" s from now: the clock was set back; restart the agent"));
    EXPECT_THAT(doctor("", "LD_PRELOAD=" OLD_CLOCK).text, HasSubstr("fix: clock: it stands at the beginning of 1970"));
}

// The line and the lock of a collector that made a pass so many seconds ago.
class Collector {
  public:
    Collector(const std::string& store, int64_t seconds_ago)
        : file_(open((store + ".collector").c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0640)) {
        timespec now = {};
        clock_gettime(CLOCK_BOOTTIME, &now);
        dprintf(file_, "%020lld 00010\n", static_cast<long long>(now.tv_sec - seconds_ago));
        struct flock lock = {};
        lock.l_type = F_WRLCK;
        EXPECT_EQ(fcntl(file_, F_OFD_SETLK, &lock), 0);
    }
    ~Collector() { close(file_); }
    Collector(const Collector&) = delete;
    Collector& operator=(const Collector&) = delete;

  private:
    int file_;
};

TEST_F(Ward, Collectors) {
    EXPECT_THAT(doctor().text, HasSubstr("note: collector: none fills this store\n"));
    {
        const Collector collector(store(), 0);
        EXPECT_THAT(doctor().text,
                    AllOf(HasSubstr("no table has rows; cfql-collector --list says why its collector serves none\n"),
                          HasSubstr("ok: collector: it runs; last pass: ")));
    }
    EXPECT_THAT(doctor().text, HasSubstr("fix: collector: it has stopped; last pass: "));
    {
        const Collector collector(store(), 1000);
        EXPECT_THAT(doctor().text,
                    AllOf(HasSubstr("fix: collector: last pass 10"),
                          HasSubstr(" s ago, though one is due every 10 s: journalctl -u cfql-collector\n")));
    }
    write("store.db.collector", "nonsense");
    EXPECT_THAT(doctor().text, HasSubstr("note: collector: " + store() + ".collector: Bad message\n"));
}

// ---- the agent's user, for which root is needed, and a group "cfql" in a mount namespace of the command's own

class Users : public Ward {
  protected:
    void SetUp() override {
        if (system("setpriv --reuid=65534 --clear-groups true 2>/dev/null") != 0)
            GTEST_SKIP() << "only root can become another user";
        run("chmod 711 " + folder);
    }

    std::string with_groups(const std::string& groups, const std::string& options = "-pf --mount-proc") const {
        return "unshare -m " + options + " sh -c 'mount --bind " + write("group", groups) +
               " /etc/group && exec \"$@\"' sh ";
    }
};

TEST_F(Users, MayOrMayNotReadTheStore) {
    const std::string no_group = with_groups("root:x:0:\n");
    EXPECT_THAT(
        doctor("--as nobody", no_group).text,
        HasSubstr("fix: user: nobody may not read the store: there is no group \"cfql\": addgroup --system cfql; "
                  "adduser nobody cfql; chgrp cfql \"" +
                  folder + "\" \"" + store() + "\"; chmod 2750 \"" + folder + "\"; chmod 640 \"" + store() + "\"\n"));
    const std::string no_member = with_groups("root:x:0:\ncfql:x:4321:\n");
    EXPECT_THAT(doctor("--as nobody", no_member).text,
                HasSubstr("fix: user: nobody may not read the store: adduser nobody cfql, and restart it\n"));
    const std::string member = with_groups("root:x:0:\ncfql:x:4321:nobody\n");
    EXPECT_THAT(doctor("--as nobody", member).text,
                HasSubstr("fix: user: nobody may not read the store: chgrp cfql \""));
    run("chgrp 4321 " + store());
    EXPECT_THAT(doctor("--as nobody", member).text, HasSubstr("ok: user: nobody may read the store\n"));
    EXPECT_THAT(doctor("--as nosuchuser").text,
                HasSubstr("fix: user: there is no user \"nosuchuser\": name the agent's with --as\n"));
    run("chmod 644 " + store());
    // A copy, as others may have no way to the checkout.
    run("install -m 755 " CFQL " " + folder + "/cfql");
    EXPECT_THAT(said_by("setpriv --reuid=65534 --clear-groups env PATH=/nowhere " + folder + "/cfql doctor --store " +
                        store() + " --as root")
                    .text,
                HasSubstr("note: user: run this as root to find out whether root may read the store\n"));
}

// With a sanitizer, an agent that has changed its user cannot look for leaks, and fails.
#ifndef ADDRESS_SANITIZER
// It has the groups that it began with.
TEST_F(Users, AnAgentFromBeforeItsUserCameIntoTheGroup) {
    run("chgrp 4321 " + store());
    const std::string member = with_groups("root:x:0:\ncfql:x:4321:daemon\n", "");
    std::ofstream(folder + "/bare.conf") << "agentAddress udp:127.0.0.1:1161\nrocommunity safe default\n";
    run("chown -R daemon:0 " + folder);
    run("chgrp 4321 " + store());
    run("chown 0 " + store());
    const Daemon agent(folder, "bare", "-u daemon -g daemon", "NET-SNMP version");
    EXPECT_THAT(
        doctor("--as daemon", member).text,
        HasSubstr("fix: user: daemon, as whom snmpd (process " + std::to_string(agent.pid()) +
                  ") runs, may not read the store: it was started before its user joined the group: restart it\n"));
}
#endif

// As a unit with DynamicUser has it. The agent and the command are alone in a namespace of processes.
TEST_F(Users, AnAgentWhoseUserHasNoName) {
    write("bare.conf", "agentAddress udp:127.0.0.1:1161\nrocommunity safe default\n");
    run("chown -R 54321:54321 " + folder + "; chown 0:4321 " + store());
    const std::string agent = "setpriv --reuid=54321 --regid=54321 --clear-groups " SNMPD " -Lf " + folder +
                              "/log -C -c " + folder + "/bare.conf";
    const std::string script = write("script", "mount --bind " + write("group", "root:x:0:\ncfql:x:4321:\n") +
                                                   " /etc/group && export MIBS= SNMP_PERSISTENT_DIR=" + folder +
                                                   " && " + agent + " && until grep -q NET-SNMP " + folder +
                                                   "/log; do sleep 0.05; done; " CFQL
                                                   " doctor --host 127.0.0.1:1161 --community safe --store " +
                                                   store() + "\n");
    EXPECT_THAT(said_by("unshare --kill-child -m -pf --mount-proc timeout -s KILL 300 sh " + script).text,
                AllOf(HasSubstr("fix: user: 54321, as whom snmpd (process "),
                      HasSubstr(" runs, may not read the store: add SupplementaryGroups=cfql to its unit\n")));
}

}  // namespace
