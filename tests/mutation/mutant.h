// SPDX-License-Identifier: GPL-3.0-or-later
// Read before every source of a build with mutants: says which of them is switched on, and notes
// which a test comes by.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

/// The number of the mutant that is switched on in this process and those it starts; 0: none.
inline int m47_chosen_mutant() {
    const char* const number = std::getenv("M47_MUTANT");
    return number == nullptr ? 0 : std::atoi(number);
}

/// The file that `M47_MUTANTS_REACHED` names, a byte for each mutant; null when there is none. It
/// is shared memory, so that a process that is killed has told what it reached.
inline unsigned char* m47_reached_mutants() {
    const char* const path = std::getenv("M47_MUTANTS_REACHED");
    const int file = path == nullptr ? -1 : ::open(path, O_RDWR | O_CLOEXEC);
    if (file < 0) return nullptr;
    const off_t size = ::lseek(file, 0, SEEK_END);
    void* const bytes =
        ::mmap(nullptr, static_cast<size_t>(size), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    ::close(file);
    return bytes == MAP_FAILED ? nullptr : static_cast<unsigned char*>(bytes);
}

inline const int m47_mutant_chosen = m47_chosen_mutant();
inline unsigned char* const m47_mutants_reached = m47_reached_mutants();

/// Whether the mutant of this number takes the place of the original expression.
inline bool m47_mutant(int number) {
    if (m47_mutants_reached != nullptr) m47_mutants_reached[number] = 1;
    return number == m47_mutant_chosen;
}
