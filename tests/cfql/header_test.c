/* The header is C, and a list node is four machine words in the order that callers rely on. */
#include <cfqlquery.h>
#include <stddef.h>
#include <stdio.h>
#include <string.h>

_Static_assert(sizeof(cfqlquery_node) == 4 * sizeof(void*), "four machine words");
_Static_assert(offsetof(cfqlquery_node, name) == 0, "first word");
_Static_assert(offsetof(cfqlquery_node, value) == sizeof(void*), "second word");
_Static_assert(offsetof(cfqlquery_node, next) == 2 * sizeof(void*), "third word");
_Static_assert(offsetof(cfqlquery_node, reserved) == 3 * sizeof(void*), "fourth word");

static int failures;

static void expect(int holds, const char* what) {
    if (holds) return;
    fprintf(stderr, "not so: %s\n", what);
    ++failures;
}

/* CFQL_STORE names an empty store. */
int main(void) {
    cfqlquery_node pair = {"ssid", "office", NULL, 0};
    cfqlquery_node* list = cfqlquery_get_pv("interface", "wlan0", "ssid");
    expect(list == NULL, "an empty store has no ssid");
    expect(cfqlquery_set_pv("interface", "wlan0", &pair, 0) == 1, "a value is stored");

    list = cfqlquery_get_pv("interface", "wlan0", "ssid");
    expect(list != NULL && strcmp(list->name, "ssid") == 0, "the first node is the key");
    expect(list != NULL && strcmp(list->value, "office") == 0, "with its value");
    expect(list != NULL && list->next == NULL && list->reserved == 0, "and the only one");
    cfqlquery_destroy_pv(list);

    list = cfqlquery_get_grid("interface", NULL, NULL, &pair, 1);
    expect(list != NULL && strcmp(list->name, "name") == 0 && strcmp(list->value, "wlan0") == 0,
           "a row begins with name");
    expect(list != NULL && list->next != NULL && strcmp(list->next->name, "ssid") == 0, "and goes on with the filter");
    cfqlquery_destroy_pv(list);
    cfqlquery_destroy_pv(NULL);
    return failures == 0 ? 0 : 1;
}
