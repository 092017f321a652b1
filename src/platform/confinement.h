// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace m47::platform {

/// What the kernel of this machine could do to hold a process.
struct Confinement {
    bool no_files = false;   ///< Landlock
    bool few_calls = false;  ///< seccomp
};

/// The version of Landlock that this kernel has; 0 for none. From 3 on it refuses truncating by
/// name, from 4 TCP ports, from 6 signals to processes that are not held alike.
int landlock_version();

/// From here on this process reaches no file by its name, in no way, and starts no program; where
/// the kernel is new enough, no TCP port and no process outside of it either. Descriptors that are
/// open stay so. For good; false where the kernel has no Landlock.
bool give_up_files();

/// From here on this process can compute, take memory, write to stdout and stderr and end. Every
/// other call to the system fails with EPERM. For good; false where the kernel has no seccomp.
bool give_up_calls();

/// No descriptor more and no process more, which every kernel can see to (the latter not for root).
void give_up_descriptors();

/// All of these.
Confinement confine_this_process();

}  // namespace m47::platform
