#include "backend/radio.h"

#include "store/write.h"

namespace dot11 {

bool find_bss(const char* interface, ScratchText& bss) {
    const Answer answer(key::bss, interface);
    return find_value(answer.list(), key::bss, bss);
}

bool find_radio_of_bss(ScratchText& bss, ScratchText& radio, Find find) {
    const Answer answer(key::radio, bss.text);
    release(bss);
    return find(answer.list(), key::radio, radio);
}

bool find_value_of_radio(ScratchText& radio, const StoreKey& key, ScratchText& value) {
    const Answer answer(key, radio.text);
    release(radio);
    return find_value(answer.list(), key, value);
}

bool find_radio(const cfqlquery_node* bss_answer, ScratchText& bss, ScratchText& radio, Find find) {
    return find(bss_answer, key::bss, bss) && find_radio_of_bss(bss, radio, find);
}

int32_t write_radio_number(uint32_t interface_index, const StoreKey& key, uint32_t value, int32_t out_of_memory) {
    const InterfaceName name(interface_index);
    if (!name.text()) return out_of_memory;
    ScratchText bss = {};
    ScratchText radio = {};
    if (!find_bss(name.text(), bss) || !find_radio_of_bss(bss, radio)) return 0;
    const int32_t result = write_number(key, radio.text, value, out_of_memory);
    release(radio);
    return result;
}

}  // namespace dot11
