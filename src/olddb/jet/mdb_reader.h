// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

#include "jet_reader.h"

namespace m47::olddb {

/// Reads by the library of mdbtools.
class MdbReader : public QObject, public JetReader {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID M47_JET_READER)
    Q_INTERFACES(m47::olddb::JetReader)
  public:
    void load_code_pages() override;
    OldReading read(QByteArrayView file) override;
};

}  // namespace m47::olddb
