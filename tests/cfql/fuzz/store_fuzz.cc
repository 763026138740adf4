// Fuzzes the store's file as a reader finds it: the input is the database, or, if it begins with 'L', a journal
// beside a sound database. Opening, loading a snapshot, listing, direct reads and the tool's examination must end
// without a fault.
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "database.h"
#include "snapshot.h"

namespace {

std::string path;

void write_file(const std::string& name, const void* data, std::size_t size) {
    const int file = open(name.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600);
    if (file < 0 || write(file, data, size) != static_cast<ssize_t>(size)) abort();
    close(file);
}

void clean() {
    for (const char* suffix : {"", "-journal"})
        unlink((path + suffix).c_str());
}

void make_sound() {
    cfql::Database store;
    if (store.create(path.c_str()) != cfql::Status::ok) abort();
    store.open(path.c_str(), cfql::Access::write);
    store.begin_write();
    store.set("interface", "wlan0", "ssid", "office");
    store.commit();
}

void read_everything() {
    cfql::Database store;
    if (store.open(path.c_str(), cfql::Access::salvage) != cfql::Status::ok) return;
    cfql::Snapshot snapshot;
    cfql::Text value;
    std::size_t position = 0;
    snapshot.load(store);
    while (snapshot.next("interface", nullptr, position, value)) {
    }
    snapshot.get("interface", "wlan0", "ssid", value);
    store.get("interface", "wlan0", "ssid", value);
    store.check([](void*, const char*) {}, nullptr);
}

// A writer may meet the file as well.
void write_something() {
    cfql::Database store;
    if (store.open(path.c_str(), cfql::Access::write) != cfql::Status::ok) return;
    if (store.begin_write() == cfql::Status::ok && store.set("interface", "wlan0", "ssid", "x") == cfql::Status::ok)
        store.commit();
    store.rollback();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // In memory: the fuzzer is not to wait for a disk.
    char name[] = "/dev/shm/cfql-fuzz-XXXXXX";
    char other[] = "/tmp/cfql-fuzz-XXXXXX";
    const char* const directory = mkdtemp(name) != nullptr ? name : mkdtemp(other);
    if (directory == nullptr) return 1;
    path = std::string(directory) + "/store.db";
    atexit([] {
        clean();
        rmdir(path.substr(0, path.rfind('/')).c_str());
    });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    clean();
    if (size > 0 && data[0] == 'L') {
        make_sound();
        write_file(path + "-journal", data + 1, size - 1);
    } else {
        write_file(path, data, size);
    }
    read_everything();
    write_something();
    return 0;
}
