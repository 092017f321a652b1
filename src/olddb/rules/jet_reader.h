// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>
#include <QtPlugin>

#include "old_stream.h"

namespace m47::olddb {

/// What the library for files of the old engine does; a part, as few starts ever need it.
///
/// The library can crash or run forever on a damaged file: only to be called in a process of its
/// own (old_reader.h).
class JetReader {
  public:
    virtual ~JetReader() = default;

    /// Loads the tables of every code page that a file of the old engine can name, so that none is
    /// looked for among the files of the system later, when this process may open none.
    virtual void load_code_pages() = 0;

    /// Reads the program's tables from the bytes of a Jet 3 or Jet 4 file, every value as it stands
    /// there. Of a file that contradicts itself it says what is wrong, in technical words: pages
    /// that are missing, another number of rows than a table counts, texts of another length than
    /// stated.
    virtual OldReading read(QByteArrayView file) = 0;
};

/// The name of the part.
inline constexpr const char* kJetPart = "m47-jet";

}  // namespace m47::olddb

#define M47_JET_READER "org.m47remote.JetReader/1"
Q_DECLARE_INTERFACE(m47::olddb::JetReader, M47_JET_READER)
