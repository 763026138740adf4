// Writing single keys into the configuration store. No SNMP request gets here, because the column accessors refuse.
#pragma once

#include <net/if.h>

#include <stdint.h>
#include <stdlib.h>

#include "store/answer.h"

namespace dot11 {

#pragma GCC visibility push(default)
extern "C" {

// Writes one key of one object. Returns 0 if the store accepts it (its status 1), and 1 for every other status.
//
// Quirk: when out of memory nothing is written, and the result is 0 as well.
int32_t setTableData(const char* table, const char* object, const char* key, const char* value);
}
#pragma GCC visibility pop

// The name of the interface with a given index, in a heap buffer that is released at the end of the scope. Empty if the
// system has no such interface; the store then refuses the write. `text()` is null when out of memory.
class InterfaceName {
  public:
    explicit InterfaceName(uint32_t index);
    ~InterfaceName() { free(text_); }
    InterfaceName(const InterfaceName&) = delete;
    InterfaceName& operator=(const InterfaceName&) = delete;

    const char* text() const { return text_; }

  private:
    char* text_;
};

// Calls setTableData with the decimal text of `value`. Returns `out_of_memory` if the text cannot be allocated.
int32_t write_number(const StoreKey& key, const char* object, uint32_t value, int32_t out_of_memory);

// Calls write_number for the object of the interface with that index.
int32_t write_interface_number(uint32_t index, const StoreKey& key, uint32_t value, int32_t out_of_memory);

}  // namespace dot11
