// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>

#include "fault.h"
#include "old_database.h"

namespace m47::olddb {

/// A file of the old engine contradicts itself.
class JetDamage : public Fault {
  public:
    using Fault::Fault;
};

/// Reads the program's tables from the bytes of a Jet 3 or Jet 4 file, every value as it stands
/// there. A file that contradicts itself is a JetDamage: pages that are missing, another number of
/// rows than a table counts, texts of another length than stated.
///
/// The library that this stands on can crash or run forever on a damaged file: only to be called in
/// a process of its own (old_reader.h).
OldDatabase read_jet_file(QByteArrayView file);

}  // namespace m47::olddb
