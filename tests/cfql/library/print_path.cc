// Succeeds if the process takes the store to be at the path that is its argument.
#include <string.h>

#include "database.h"

int main(int, char** arguments) {
    return strcmp(cfql::store_path(), arguments[1]) == 0 ? 0 : 1;
}
