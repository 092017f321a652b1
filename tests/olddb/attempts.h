// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <functional>
#include <vector>

namespace m47::olddb {

inline constexpr int kNoLandlock = 99;

/// Something that a process may try: 0 where the system let it, else its error number.
struct Attempt {
    const char* name;
    std::function<int()> run;
    int landlock_from = 1;  ///< the first version of Landlock that refuses it
};

/// Reaching out of a process in every way that a taken-over one would like: to files of `folder`
/// (which has "victim"), to sockets, programs and other processes. The descriptors that some of
/// them use are opened here.
std::vector<Attempt> attempts_in(const QByteArray& folder);

/// How `attempt` ends in a process of its own that has called `confine` first; -1 where a signal
/// ended that process.
int outcome_of(const Attempt& attempt, const std::function<void()>& confine);

/// From here on this process and those it starts live on a kernel that knows neither Landlock nor
/// seccomp, as far as they can tell.
void pretend_an_old_kernel();

}  // namespace m47::olddb
