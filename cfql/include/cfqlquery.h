/* The configuration store of the access point: four calls for programs that read it and write single keys.
 *
 * The store holds objects. An object belongs to a table ("interface", "bss", "radio", "supported-rate", "system"), has
 * a name, and carries attributes: pairs of a key and a value, both text. Several objects of a table may share a name
 * (as in "supported-rate"); a call then uses the first one inserted. The object of a singleton table ("system") has no
 * name.
 *
 * Texts are octets up to a NUL; the store does not interpret them. Names, keys and tables have 1 to 255 octets, values
 * 0 to 4096.
 *
 * The store's path is /var/lib/cfql/store.db, or that in the environment variable CFQL_STORE, which is ignored in
 * secure-execution mode (see secure_getenv(3)). The store is first read by the first call. If another file takes its
 * place, later calls read that one.
 *
 * Freshness: answers come from a copy in memory. cfqlquery_get_grid always checks whether the store has changed,
 * cfqlquery_get_pv only if the last check is 50 ms old; the rows of a grid and the values read right after it show the
 * same state. After a change the copy is renewed at once, twice in a row, and then once a second, or less often if that
 * takes long: renewing takes at most a fifth of the caller's time. So an answer may be two seconds old, or eight times
 * as old as a renewal takes, at most 10 s. While a writer holds the store locked, answers come from the present copy;
 * if a writer never pauses they are a few seconds old, and no call waits for it longer than 200 ms. After a set of its
 * own, a process sees what it wrote.
 *
 * If a store that was readable is damaged or becomes unreadable, answers come from its last good state, and the system
 * log gets a line at most once a minute.
 *
 * Threads: any thread may call, also several at once. Nothing stays open between calls, so a fork needs no care; but if
 * the child is to call the library, do not fork while another thread is in a call.
 */
#ifndef CFQLQUERY_H
#define CFQLQUERY_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* One pair of a tag/value list; four machine words. Lists that the library returns belong to it: read them, then pass
 * them to cfqlquery_destroy_pv. Lists that a caller passes in stay the caller's. */
typedef struct cfqlquery_node {
    const char* name;            /* the tag: "name" for an object's name, otherwise an attribute's key */
    const char* value;           /* the value; may be null */
    struct cfqlquery_node* next; /* null at the end of the list */
    uintptr_t reserved;          /* 0 */
} cfqlquery_node;

/* All objects of `table` that have every pair of `filter` (null: all objects), in order of insertion.
 *
 * The answer is one list: for every object a node with tag "name" and the object's name, followed by the filter's
 * pairs. No other attributes appear. `object` and `key` are reserved: pass null. `filter_count` is ignored: the filter
 * is the whole list.
 *
 * Returns null if no object matches, if the store is absent or has never been readable, or if memory is short. */
cfqlquery_node* cfqlquery_get_grid(const char* table, const char* object, const char* key, const cfqlquery_node* filter,
                                   int filter_count);

/* The value of `key` of `object` in `table`. `object` is null for the object of a singleton table.
 *
 * Returns a list whose first node is `key` with its value, or null if the object or the key is absent, if the stored
 * value is damaged, if the store has never been readable, or if memory is short. */
cfqlquery_node* cfqlquery_get_pv(const char* table, const char* object, const char* key);

/* Stores the single pair of `pair` in `object` of `table`; creates the object if there is none. `flags` is reserved:
 * pass 0.
 *
 * Returns 1 if the value is on stable storage; otherwise nothing has changed. One exception: if the medium refuses to
 * make the write stable, the call fails, but the value may still appear. Refused (0): an empty table or key, an empty
 * object name except in "system", "name" as key, a table, name or key of more than 255 octets, a value of more than
 * 4096 octets, a null value. */
int32_t cfqlquery_set_pv(const char* table, const char* object, const cfqlquery_node* pair, int flags);

/* Overwrites the texts of a list that one of the get calls returned, and releases it. Null is allowed. */
void cfqlquery_destroy_pv(cfqlquery_node* list);

#ifdef __cplusplus
}
#endif

#endif
