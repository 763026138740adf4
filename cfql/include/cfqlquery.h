/* The configuration store of the access point: four calls for programs that read it and write single keys.
 *
 * The store holds objects. An object belongs to a table ("interface", "bss", "radio", "supported-rate", "system"), has
 * a name, and carries attributes: pairs of a key and a value, both text. Within a table several objects may bear one
 * name
 * ("supported-rate"); a call that names such an object means the first one inserted. The object of a singleton table
 * ("system") has no name.
 *
 * Texts are octets up to a NUL; the store does not interpret them. Names, keys and tables have 1 to 255 octets, values
 * 0 to 4096.
 *
 * Place of the store: /var/lib/cfql/store.db, or the path in the environment variable CFQL_STORE, which is ignored in a
 * secure-execution process. The store is read at the first call, not before, and a file that is replaced is followed.
 *
 * Freshness: answers come from a copy in memory. cfqlquery_get_grid checks first whether the store has changed,
 * cfqlquery_get_pv if the last check is 50 ms old; the rows of a grid and the values read right after it are of one
 * state. The copy is renewed at once, twice in a row, and then once a second, or less often if renewing takes long: it
 * takes at most a fifth of the caller's time. So an answer may be two seconds old, or eight times as old as a renewal
 * takes, at most 10 s. While a writer holds the store, answers come from the copy there is; beside one that never
 * pauses they are a few seconds old, and no call waits for it longer than 200 ms. After a set of its own a process sees
 * what it wrote.
 *
 * A store that was readable and is damaged or unreadable is answered for from its last good state, and the system's log
 * hears of it once a minute at most.
 *
 * Threads: calls may come from any thread, one at a time or several at once. Nothing stays open between calls, so a
 * fork needs no care. Do not fork while another thread is in a call, if the child is to call the library.
 */
#ifndef CFQLQUERY_H
#define CFQLQUERY_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* One pair of a tag/value list. Four machine words. Lists that the library returns belong to it: read them, then hand
 * them to cfqlquery_destroy_pv. Lists that a caller passes in stay the caller's. */
typedef struct cfqlquery_node {
    const char* name;            /* the tag: "name" for an object's name, otherwise an attribute's key */
    const char* value;           /* the value; may be null */
    struct cfqlquery_node* next; /* null at the end of the list */
    uintptr_t reserved;          /* 0 */
} cfqlquery_node;

/* All objects of TABLE that carry every pair of FILTER (null: all objects), in the order in which they were inserted.
 *
 * The answer is one list: for every object a node with tag "name" and the object's name, followed by the filter's
 * pairs. No other attributes appear. OBJECT and KEY are reserved: pass null. FILTER_COUNT is ignored: the filter is the
 * list, up to its end.
 *
 * Returns null when no object matches, when the store is absent or has never been readable, or when memory is short. */
cfqlquery_node* cfqlquery_get_grid(const char* table, const char* object, const char* key, const cfqlquery_node* filter,
                                   int filter_count);

/* The value of KEY of OBJECT in TABLE. OBJECT is null for the object of a singleton table.
 *
 * Returns a list whose first node is KEY with its value, or null when the object or the key is absent, when the stored
 * value is damaged, when the store has never been readable, or when memory is short. */
cfqlquery_node* cfqlquery_get_pv(const char* table, const char* object, const char* key);

/* Stores the one pair of PAIR in OBJECT of TABLE, making the object when there is none. FLAGS is reserved: pass 0.
 *
 * Returns 1 when the value is on stable storage, any other value when nothing has changed. One exception: if the medium
 * refuses to make the write stable, the call fails, and the value may turn up all the same. Refused (0): an empty table
 * or key, an empty object name except in "system", "name" as key, a table, name or key of more than 255 octets, a value
 * of more than 4096, a null value. */
int32_t cfqlquery_set_pv(const char* table, const char* object, const cfqlquery_node* pair, int flags);

/* Releases a list that one of the get calls returned, after overwriting its texts. Null is allowed. */
void cfqlquery_destroy_pv(cfqlquery_node* list);

#ifdef __cplusplus
}
#endif

#endif
