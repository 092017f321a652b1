// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory_pool.h"

#include <malloc.h>

namespace m47::platform {

void share_one_memory_pool() {
    mallopt(M_ARENA_MAX, 1);
}

}  // namespace m47::platform
