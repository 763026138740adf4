#include "module.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

namespace {

int add_line(int, int, void* message, void* log) {
    const auto* line = static_cast<snmp_log_message*>(message);
    static_cast<Log*>(log)->lines.push_back(std::to_string(line->priority) + " " + line->msg);
    return 0;
}

}  // namespace

void* find_symbol(const char* name) {
    static void* const module = dlopen(MODULE, RTLD_NOW);
    void* found = module ? dlsym(module, name) : nullptr;
    if (!found) ADD_FAILURE() << dlerror();
    return found;
}

Log::Log() {
    snmp_enable_calllog();
    snmp_register_callback(SNMP_CALLBACK_LIBRARY, SNMP_CALLBACK_LOGGING, add_line, this);
}

Log::~Log() {
    snmp_unregister_callback(SNMP_CALLBACK_LIBRARY, SNMP_CALLBACK_LOGGING, add_line, this, 1);
    snmp_disable_calllog();
}
