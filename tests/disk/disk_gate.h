// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// What a call to the disk meets once its turn has come.
enum class DiskFate { goes, halved, full };

/// Asked before a call to the disk ("open", "write", …) of a thread that has one; comes back when
/// it is that call's turn. Only a write can meet another fate than that it goes.
class DiskGate {
  public:
    virtual ~DiskGate() = default;
    virtual DiskFate pass(const char* call) = 0;
};

/// The gate of the calling thread; nullptr for none.
extern "C" void set_disk_gate(DiskGate* gate);
