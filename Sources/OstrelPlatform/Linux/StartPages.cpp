#include "OstrelPlatform/Linux/StartPages.h"

#include <cstdint>
#include <string_view>

#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

namespace Ostrel {

namespace {

/// Segments that are mapped from a file and never written: the memory of all others is the only copy.
bool isReadOnlyFile(const ElfW(Phdr) & segment) {
    return segment.p_type == PT_LOAD && !(segment.p_flags & PF_W);
}

int releaseObject(dl_phdr_info* object, std::size_t, void*) {
    // The kernel's own, which has no file behind it.
    if (std::string_view(object->dlpi_name).starts_with("linux-vdso"))
        return 0;
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    for (int i = 0; i < object->dlpi_phnum; ++i) {
        const auto& segment = object->dlpi_phdr[i];
        if (!isReadOnlyFile(segment))
            continue;
        // Whole pages only: a neighbour may share the last one.
        const auto start = (object->dlpi_addr + segment.p_vaddr + page - 1) / page * page;
        const auto end = (object->dlpi_addr + segment.p_vaddr + segment.p_filesz) / page * page;
        if (start < end)
            madvise(reinterpret_cast<void*>(start), end - start, MADV_DONTNEED);
    }
    return 0;
}

} // namespace

void releaseStartPages() {
    dl_iterate_phdr(releaseObject, nullptr);
}

} // namespace Ostrel
