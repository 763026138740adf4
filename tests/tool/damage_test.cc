// The tool on stores that are damaged, absent, or were interrupted in a write.
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "database.h"
#include "tool.h"

#include <sqlite3.h>

namespace {

namespace fs = std::filesystem;

constexpr std::size_t page = 1024;
constexpr unsigned nobody = 65534;

std::string octets_of(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class Damage : public Tool {
  protected:
    void SetUp() override {
        done({"init"});
        std::string text = "[[system]]\ncountry = \"DE\"\n";
        for (int i = 0; i < 40; ++i) {
            text += "[[interface]]\nname = \"w" + std::to_string(i) + "\"\ntype = \"service-set\"\nssid = \"S" +
                    std::to_string(i) + "\"\nmac = \"" + std::string(40, 'm') + "\"\n";
        }
        done({"import", "-"}, {.input = text});
        sound_ = octets_of(store);
    }

    std::string with(std::size_t at, const std::string& octets) const {
        std::string damaged = sound_;
        return damaged.replace(at, octets.size(), octets);
    }

    void put(const std::string& octets) const { std::ofstream(store, std::ios::binary | std::ios::trunc) << octets; }

    std::string sound_;
};

// Every page of the file, in several ways; each command ends soon, in good order, and says what is the matter.
TEST_F(Damage, EveryPage) {
    const Words commands[] = {{"check"}, {"export"}, {"export", "--salvage"}, {"lint"}};
    for (std::size_t at = 0; at < sound_.size(); at += page) {
        const std::string damaged[] = {with(at, std::string(page, '\0')), with(at, std::string(page, '\xff')),
                                       with(at + 2, std::string(20, '\x07')), sound_.substr(0, at + page / 2)};
        for (std::size_t kind = 0; kind < std::size(damaged); ++kind) {
            put(damaged[kind]);
            for (const Words& words : commands) {
                SCOPED_TRACE(words.back() + ", page " + std::to_string(at / page + 1) + ", " + std::to_string(kind));
                const Outcome outcome = run(words);
                EXPECT_TRUE(outcome.status == 0 || outcome.status == 1 || outcome.status == 3) << outcome.status;
                EXPECT_TRUE(outcome.status == 0 || !outcome.err.empty());
                EXPECT_EQ((outcome.out + outcome.err).find("not an error"), std::string::npos) << outcome.err;
            }
        }
    }
}

TEST_F(Damage, CheckSaysWhatAndWhere) {
    const struct {
        std::string octets;
        std::string what;
    } cases[] = {
        {with(4 * page, std::string(page, '\0')), "Page 5: "},
        {sound_.substr(0, 4 * page), "Page 5: "},
        {with(sound_.find("S17"), "X17"), "interface w17 ssid: the value's checksum is wrong\n"},
    };
    for (const auto& expected : cases) {
        put(expected.octets);
        const Outcome outcome = run({"check"});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_NE(outcome.out.find(expected.what), std::string::npos) << outcome.out;
        EXPECT_EQ(outcome.err, "cfql: save what is left with \"cfql export --salvage --output FILE\"\n");
    }
}

// What is read is what was stored; what is not read is told.
TEST_F(Damage, SalvageSavesTheRest) {
    const std::string everything = done({"export"});
    const std::size_t leaf = sound_.find("S20") / page * page;
    const std::string damaged[] = {with(leaf, std::string(page, '\0')), sound_.substr(0, sound_.size() - page / 2),
                                   with(sound_.find("S17"), "X17")};
    for (const std::string& octets : damaged) {
        put(octets);
        const Outcome outcome = run({"export", "--salvage"});
        EXPECT_EQ(outcome.status, 3);
        EXPECT_TRUE(outcome.err.find("; left out\n") != std::string::npos) << outcome.err;
        const std::string head =
            "\n[[interface]]\nname = \"w0\"\nmac = \"" + std::string(40, 'm') + "\"\nssid = \"S0\"\n";
        EXPECT_NE(outcome.out.find(head), std::string::npos) << outcome.out;
        std::size_t saved = 0;
        for (int i = 0; i < 40; ++i) {
            const std::string line = "ssid = \"S" + std::to_string(i) + "\"\n";
            if (outcome.out.find(line) != std::string::npos) ++saved;
        }
        EXPECT_GT(saved, 9U) << outcome.out;
        EXPECT_LT(saved, 40U);
        const std::string other = directory + "/other.db";
        done({"init", "--store", other});
        done({"import", "--store", other, "-"}, {.input = outcome.out});
        fs::remove(other);
    }
    EXPECT_EQ(run({"export", "--salvage"}, {.path = directory + "/none"}).status, 3);
    put(sound_);
    EXPECT_EQ(done({"export", "--salvage"}), everything);
}

// A writer that was killed in the middle of a write: its journal holds what the file was before.
void interrupt_a_write(const std::string& path) {
    const int child = fork();
    if (child == 0) {
        sqlite3* connection = nullptr;
        sqlite3_open(path.c_str(), &connection);
        const char* statements =
            "PRAGMA cache_size=1; PRAGMA synchronous=OFF; PRAGMA journal_mode=TRUNCATE; BEGIN IMMEDIATE;"
            "UPDATE attribute SET value = x'5858585858585858'; UPDATE object SET crc = 1";
        _exit(sqlite3_exec(connection, statements, nullptr, nullptr, nullptr) == SQLITE_OK ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_EQ(status, 0);
    ASSERT_GT(fs::file_size(path + "-journal"), 0U);
    ASSERT_NE(octets_of(path).find("XXXXXXXX"), std::string::npos);
}

// Every command that comes first undoes it.
TEST_F(Damage, AnInterruptedWriteIsUndone) {
    const Words commands[] = {{"get", "interface", "w3", "ssid"},
                              {"list"},
                              {"check"},
                              {"export"},
                              {"export", "--salvage"},
                              {"lint", "--offline"},
                              {"preview", "--offline"}};
    for (const Words& words : commands) {
        SCOPED_TRACE(words.front());
        const Outcome before = run(words);
        interrupt_a_write(store);
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.status, before.status);
        EXPECT_EQ(outcome.out, before.out);
        EXPECT_TRUE(!fs::exists(store + "-journal") || fs::file_size(store + "-journal") == 0);
        EXPECT_EQ(octets_of(store), sound_);
    }
}

TEST_F(Damage, AnInterruptedWriteThatMayNotBeUndone) {
    if (getuid() != 0) GTEST_SKIP() << "only root can become another user";
    ASSERT_EQ(chmod(directory.c_str(), 0755), 0);
    interrupt_a_write(store);
    for (const char* suffix : {"", "-journal"})
        ASSERT_EQ(chmod((store + suffix).c_str(), 0644), 0);
    const Outcome refused = run({"list"}, {.user = nobody});
    EXPECT_EQ(refused.status, 3);
    EXPECT_EQ(refused.out, "");
    EXPECT_TRUE(refused.err.starts_with("cfql: " + store + ": a write was interrupted; run cfql check as root"))
        << refused.err;
    EXPECT_EQ(done({"check"}), store + ": no faults\n");
    EXPECT_EQ(done({"get", "interface", "w3", "ssid"}, {.user = nobody}), "S3\n");
}

TEST_F(Damage, WatchGoesOnWhenTheStoreIsAway) {
    Background watch(store, {"watch"});
    watch.wait_for("Ctrl-C\n");
    const std::string aside = directory + "/aside.db";
    fs::rename(store, aside);
    EXPECT_EQ(watch.wait_for("\n"), "cfql: " + store +
                                        ": there is no store; make one with \"cfql init\", or name another "
                                        "with --store\n");
    done({"set", "--store", aside, "interface", "w1", "ssid", "changed"});
    fs::rename(aside, store);
    EXPECT_EQ(watch.wait_for("watching on\n"), "set\tinterface\tw1\tssid\tchanged\ncfql: watching on\n");
    put("this is no store");
    EXPECT_TRUE(watch.wait_for("\n").starts_with("cfql: " + store + ": ")) << "no complaint";
    put(sound_);
    EXPECT_EQ(watch.wait_for("watching on\n"), "set\tinterface\tw1\tssid\tS1\ncfql: watching on\n");
    done({"set", "interface", "w1", "ssid", "again"});
    EXPECT_EQ(watch.wait_for("\n"), "set\tinterface\tw1\tssid\tagain\n");
}

}  // namespace
