// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace m47::platform {

/// Has all threads of this process take memory from one pool. To be called before there are any:
/// each would come with a pool of its own, which pays for those alone that ask for much at once.
void share_one_memory_pool();

}  // namespace m47::platform
