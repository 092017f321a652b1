// SPDX-License-Identifier: GPL-3.0-or-later
#include "mdb_reader.h"

#include "jet_code_pages.h"
#include "jet_file.h"

namespace m47::olddb {

void MdbReader::load_code_pages() {
    olddb::load_code_pages();
}

OldReading MdbReader::read(QByteArrayView file) {
    try {
        return read_jet_file(file);
    } catch (const Fault& fault) {
        return QString::fromUtf8(fault.what());
    } catch (const std::exception&) {
        return QString();
    }
}

}  // namespace m47::olddb
