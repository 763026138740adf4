#include "code_pages.h"

#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace cfql {
namespace {

using Segment = ElfW(Phdr);

// BASE is what the loader has added to every address of the library's file.
bool holds(const Segment& segment, std::uintptr_t base, std::uintptr_t address) {
    return segment.p_type == PT_LOAD && address - base - segment.p_vaddr < segment.p_memsz;
}

char* start_of(const Segment& segment, std::uintptr_t base) {
    return reinterpret_cast<char*>(base + segment.p_vaddr);  // NOLINT(performance-no-int-to-ptr): the loader's numbers
}

bool tells_of_relocated_code(const Segment& segment, std::uintptr_t base) {
    if (segment.p_type != PT_DYNAMIC) return false;
    const auto* entry = reinterpret_cast<const ElfW(Dyn)*>(start_of(segment, base));
    for (; entry->d_tag != DT_NULL; ++entry) {
        const bool flagged = entry->d_tag == DT_FLAGS && (entry->d_un.d_val & DF_TEXTREL) != 0;
        if (entry->d_tag == DT_TEXTREL || flagged) return true;
    }
    return false;
}

// Only whole pages: what shares one with the segment may be variables.
void release(const Segment& segment, std::uintptr_t base) {
    if (segment.p_type != PT_LOAD || (segment.p_flags & PF_W) != 0) return;
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t before = (page - (base + segment.p_vaddr) % page) % page;
    if (segment.p_memsz < before + page) return;
    madvise(start_of(segment, base) + before, (segment.p_memsz - before) / page * page, MADV_DONTNEED);
}

int visit(dl_phdr_info* library, std::size_t, void* pointer) {
    const std::span<const Segment> segments(library->dlpi_phdr, library->dlpi_phnum);
    const std::uintptr_t base = library->dlpi_addr;
    const auto address = reinterpret_cast<std::uintptr_t>(pointer);
    const auto holds_it = [=](const Segment& segment) { return holds(segment, base, address); };
    const auto relocated = [=](const Segment& segment) { return tells_of_relocated_code(segment, base); };
    if (std::ranges::none_of(segments, holds_it)) return 0;
    if (std::ranges::any_of(segments, relocated)) return 1;
    for (const Segment& segment : segments)
        release(segment, base);
    return 1;
}

}  // namespace

void release_code_pages(const void* address) {
    dl_iterate_phdr(visit, const_cast<void*>(address));
}

}  // namespace cfql
