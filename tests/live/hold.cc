// Holds a store for writing until its standard input ends, as another writer would. Usage: hold STORE
#include <sqlite3.h>
#include <unistd.h>

#include <cstdio>

int main(int argc, char** argv) {
    sqlite3* database = nullptr;
    if (argc != 2 || sqlite3_open(argv[1], &database) != SQLITE_OK ||
        sqlite3_busy_timeout(database, 60000) != SQLITE_OK ||
        sqlite3_exec(database, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr) != SQLITE_OK) {
        fprintf(stderr, "hold: %s\n", sqlite3_errmsg(database));
        return 1;
    }
    puts("held");
    fflush(stdout);
    char ignored = 0;
    while (read(STDIN_FILENO, &ignored, 1) > 0) {
    }
    return sqlite3_close(database) == SQLITE_OK ? 0 : 1;
}
