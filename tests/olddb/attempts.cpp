// SPDX-License-Identifier: GPL-3.0-or-later
#include "attempts.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <seccomp.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace m47::olddb {
namespace {

constexpr int kSignalled = -1;

int error_of(long result) {
    return result == -1 ? errno : 0;
}

sockaddr_un local_address(const QByteArray& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.constData(), sizeof address.sun_path - 1);
    return address;
}

int listening(int family, const sockaddr* address, socklen_t size) {
    const int listener = ::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listener < 0 || ::bind(listener, address, size) != 0 || ::listen(listener, 4) != 0)
        qFatal("nothing listens: %s", std::strerror(errno));
    return listener;
}

int connecting(int family, const sockaddr* address, socklen_t size) {
    const int caller = ::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    return caller < 0 ? errno : error_of(::connect(caller, address, size));
}

/// Waits for the child where there is one, so that none is left over.
int forked() {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(0);
    if (child > 0) ::waitpid(child, nullptr, 0);
    return error_of(child);
}

int executed() {
    const char* const arguments[] = {"true", nullptr};
    ::execve("/bin/true", const_cast<char* const*>(arguments), nullptr);
    return errno;
}

int mapped(int protection, int descriptor) {
    const int kind = MAP_PRIVATE | (descriptor < 0 ? MAP_ANONYMOUS : 0);
    return ::mmap(nullptr, 4096, protection, kind, descriptor, 0) == MAP_FAILED ? errno : 0;
}

int run_from_memory() {
    void* page = ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return error_of(::mprotect(page, 4096, PROT_READ | PROT_EXEC));
}

void add_files(std::vector<Attempt>& attempts, const QByteArray& folder) {
    const QByteArray victim = folder + "/victim";
    const QByteArray other = folder + "/other";
    const int open_file = ::open(victim.constData(), O_RDWR | O_CLOEXEC);
    const auto opening = [&](const char* name, const QByteArray& path, int flags) {
        attempts.push_back({name, [=] { return error_of(::open(path, flags, 0600)); }});
    };
    opening("open to read", victim, O_RDONLY);
    opening("open to write", victim, O_WRONLY);
    opening("create", other, O_WRONLY | O_CREAT);
    opening("read a folder", folder, O_RDONLY | O_DIRECTORY);
    attempts.push_back({"truncate", [=] { return error_of(::truncate(victim, 0)); }, 3});
    attempts.push_back({"truncate what is open",
                        [=] { return error_of(::ftruncate(open_file, 0)); }, kNoLandlock});
    attempts.push_back(
        {"write what is open", [=] { return error_of(::write(open_file, "x", 1)); }, kNoLandlock});
    attempts.push_back({"read what is open",
                        [=] {
                            char byte = 0;
                            return error_of(::read(open_file, &byte, 1));
                        },
                        kNoLandlock});
    attempts.push_back(
        {"map what is open", [=] { return mapped(PROT_READ, open_file); }, kNoLandlock});
    attempts.push_back({"rename", [=] { return error_of(::rename(victim, other)); }});
    attempts.push_back({"link", [=] { return error_of(::link(victim, other)); }});
    attempts.push_back({"symbolic link", [=] { return error_of(::symlink(victim, other)); }});
    attempts.push_back({"make a folder", [=] { return error_of(::mkdir(other, 0700)); }});
    attempts.push_back(
        {"permissions", [=] { return error_of(::chmod(victim, 0777)); }, kNoLandlock});
    attempts.push_back({"unlink", [=] { return error_of(::unlink(victim)); }});
}

void add_sockets(std::vector<Attempt>& attempts, const QByteArray& folder) {
    const sockaddr_un local = local_address(folder + "/socket");
    listening(AF_UNIX, reinterpret_cast<const sockaddr*>(&local), sizeof local);
    sockaddr_in network{};
    network.sin_family = AF_INET;
    network.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof network;
    const int listener = listening(AF_INET, reinterpret_cast<const sockaddr*>(&network), size);
    ::getsockname(listener, reinterpret_cast<sockaddr*>(&network), &size);
    attempts.push_back({"connect to a program",
                        [=] {
                            return connecting(AF_UNIX, reinterpret_cast<const sockaddr*>(&local),
                                              sizeof local);
                        },
                        kNoLandlock});
    attempts.push_back({"connect to the network",
                        [=] {
                            return connecting(AF_INET, reinterpret_cast<const sockaddr*>(&network),
                                              sizeof network);
                        },
                        4});
}

void add_processes(std::vector<Attempt>& attempts) {
    attempts.push_back({"execute", executed});
    attempts.push_back({"fork", forked, kNoLandlock});
    attempts.push_back({"signal", [] { return error_of(::kill(::getppid(), 0)); }, 6});
    attempts.push_back(
        {"signal itself", [] { return error_of(::kill(::getpid(), 0)); }, kNoLandlock});
    attempts.push_back({"watch",
                        [] { return error_of(::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr)); },
                        kNoLandlock});
    attempts.push_back(
        {"memory to run", [] { return mapped(PROT_READ | PROT_EXEC, -1); }, kNoLandlock});
    attempts.push_back({"run what was written", run_from_memory, kNoLandlock});
    attempts.push_back({"duplicate", [] { return error_of(::dup(STDOUT_FILENO)); }, kNoLandlock});
}

}  // namespace

std::vector<Attempt> attempts_in(const QByteArray& folder) {
    std::vector<Attempt> attempts;
    add_files(attempts, folder);
    add_sockets(attempts, folder);
    add_processes(attempts);
    return attempts;
}

int outcome_of(const Attempt& attempt, const std::function<void()>& confine) {
    const pid_t child = ::fork();
    if (child == 0) {
        confine();
        ::_exit(attempt.run());
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child) qFatal("no process");
    return WIFEXITED(status) ? WEXITSTATUS(status) : kSignalled;
}

void pretend_an_old_kernel() {
    scmp_filter_ctx filter = seccomp_init(SCMP_ACT_ALLOW);
    const uint32_t unknown = SCMP_ACT_ERRNO(ENOSYS);
    const scmp_arg_cmp asks_for_filter{0, SCMP_CMP_EQ, PR_SET_SECCOMP, 0};
    bool good = seccomp_rule_add_array(filter, SCMP_ACT_ERRNO(EINVAL), SCMP_SYS(prctl), 1,
                                       &asks_for_filter) == 0;
    for (const int call : {SCMP_SYS(seccomp), SCMP_SYS(landlock_create_ruleset)})
        good = seccomp_rule_add(filter, unknown, call, 0) == 0 && good;
    if (!good || seccomp_load(filter) != 0) qFatal("this kernel has no seccomp");
    seccomp_release(filter);
}

}  // namespace m47::olddb
