// SPDX-License-Identifier: GPL-3.0-or-later
#include "resident_memory.h"

#include <link.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <bit>
#include <cstddef>

namespace m47::platform {
namespace {

/// Whole pages only that nobody can have written to: they stand in the file as they are here.
void give_back(const dl_phdr_info& object, const ElfW(Phdr) & part) {
    if (part.p_type != PT_LOAD || (part.p_flags & PF_W) != 0) return;
    const auto page = static_cast<ElfW(Addr)>(sysconf(_SC_PAGESIZE));
    const ElfW(Addr) first = (object.dlpi_addr + part.p_vaddr + page - 1) / page * page;
    const ElfW(Addr) end = (object.dlpi_addr + part.p_vaddr + part.p_filesz) / page * page;
    if (end > first) madvise(std::bit_cast<void*>(first), end - first, MADV_DONTNEED);
}

int give_back_object(dl_phdr_info* object, std::size_t /*size*/, void* /*none*/) {
    for (int k = 0; k < object->dlpi_phnum; ++k) give_back(*object, object->dlpi_phdr[k]);
    return 0;
}

}  // namespace

void give_back_code() {
    dl_iterate_phdr(give_back_object, nullptr);
    malloc_trim(0);
}

}  // namespace m47::platform
