// SPDX-License-Identifier: GPL-3.0-or-later
#include "confinement.h"

#include <seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <memory>

namespace m47::platform {
namespace {

/// What of the system Landlock sees to: written out here, as the kernel's header of a build machine
/// may be older than the kernel that the program runs on.
struct LandlockRules {
    std::uint64_t files = 0;
    std::uint64_t network = 0;
    std::uint64_t scopes = 0;
};
constexpr unsigned kAskVersion = 1;
// Bits that each version of Landlock knows: 13 for files at first, then renaming between folders,
// truncating, and controlling devices.
constexpr std::array<unsigned, 5> kFileBits{13, 14, 15, 15, 16};
constexpr int kNetworkFrom = 4;
constexpr std::uint64_t kBindAndConnect = 3;
constexpr int kScopesFrom = 6;
constexpr std::uint64_t kSocketsAndSignals = 3;

LandlockRules rules_of_version(int version) {
    const int known = static_cast<int>(kFileBits.size());
    const auto at = static_cast<std::size_t>(std::min(version, known) - 1);
    LandlockRules rules;
    rules.files = (std::uint64_t{1} << kFileBits[at]) - 1;
    if (version >= kNetworkFrom) rules.network = kBindAndConnect;
    if (version >= kScopesFrom) rules.scopes = kSocketsAndSignals;
    return rules;
}

struct FreeFilter {
    void operator()(void* filter) const { seccomp_release(filter); }
};
using Filter = std::unique_ptr<void, FreeFilter>;

bool allow(const Filter& filter, int call) {
    return seccomp_rule_add(filter.get(), SCMP_ACT_ALLOW, call, 0) == 0;
}

/// Only with `condition` on an argument.
bool allow_if(const Filter& filter, int call, const scmp_arg_cmp& condition) {
    return seccomp_rule_add_array(filter.get(), SCMP_ACT_ALLOW, call, 1, &condition) == 0;
}

/// True for a call whose argument `number`, an int, has of `bits` those of `value` set.
scmp_arg_cmp has_bits(unsigned number, std::uint32_t bits, std::uint32_t value) {
    return {number, SCMP_CMP_MASKED_EQ, bits, value};
}

/// Memory that no file lies behind and that is not run as a program.
bool allow_memory(const Filter& filter) {
    const scmp_arg_cmp not_to_run = has_bits(2, PROT_EXEC, 0);
    const std::array anonymous{not_to_run, has_bits(4, UINT32_MAX, UINT32_MAX)};
    for (const int call : {SCMP_SYS(mmap), SCMP_SYS(mmap2)})
        if (seccomp_rule_add_array(filter.get(), SCMP_ACT_ALLOW, call, anonymous.size(),
                                   anonymous.data()) != 0)
            return false;
    for (const int call : {SCMP_SYS(munmap), SCMP_SYS(mremap), SCMP_SYS(brk), SCMP_SYS(madvise)})
        if (!allow(filter, call)) return false;
    return allow_if(filter, SCMP_SYS(mprotect), not_to_run);
}

bool allow_work(const Filter& filter) {
    for (const int call :
         {SCMP_SYS(futex), SCMP_SYS(futex_time64), SCMP_SYS(rt_sigreturn),
          SCMP_SYS(restart_syscall), SCMP_SYS(getrandom), SCMP_SYS(clock_gettime),
          SCMP_SYS(clock_gettime64), SCMP_SYS(gettimeofday), SCMP_SYS(exit), SCMP_SYS(exit_group)})
        if (!allow(filter, call)) return false;
    for (const unsigned stream : {1U, 2U})
        if (!allow_if(filter, SCMP_SYS(write), has_bits(0, UINT32_MAX, stream))) return false;
    return true;
}

/// Where an exception or an end leaves a stack, the sanitizers ask which stack that is.
bool allow_sanitizers([[maybe_unused]] const Filter& filter) {
#ifdef M47_SANITIZED
    return allow(filter, SCMP_SYS(sigaltstack));
#else
    return true;
#endif
}

}  // namespace

int landlock_version() {
    const long version = ::syscall(SYS_landlock_create_ruleset, nullptr, 0, kAskVersion);
    return version < 0 ? 0 : static_cast<int>(version);
}

bool give_up_files() {
    const int version = landlock_version();
    if (version < 1) return false;
    const LandlockRules rules = rules_of_version(version);
    // An older kernel takes the longer record, as what it does not know is zero in it.
    const long ruleset = ::syscall(SYS_landlock_create_ruleset, &rules, sizeof rules, 0);
    if (ruleset < 0) return false;
    const bool held = ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
                      ::syscall(SYS_landlock_restrict_self, ruleset, 0) == 0;
    ::close(static_cast<int>(ruleset));
    return held;
}

bool give_up_calls() {
    const Filter filter(seccomp_init(SCMP_ACT_ERRNO(EPERM)));
    return filter && allow_memory(filter) && allow_work(filter) && allow_sanitizers(filter) &&
           seccomp_load(filter.get()) == 0;
}

void give_up_descriptors() {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_NOFILE, &none);
    setrlimit(RLIMIT_NPROC, &none);
}

Confinement confine_this_process() {
    Confinement confinement;
    confinement.no_files = give_up_files();
    give_up_descriptors();
    confinement.few_calls = give_up_calls();
    return confinement;
}

}  // namespace m47::platform
