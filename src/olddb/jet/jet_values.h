// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Outside of the library's own header, which would take it for C.
#include <glib.h>
#include <mdbtools.h>

#include <QVariant>

namespace m47::olddb {

/// True for the kinds of field that the program's own fields can be filled from.
bool is_usable_kind(int col_type);

/// The value of one field of the row on the handle's current page; null where it is unset. A
/// JetDamage where the value does not fit its page or its kind.
QVariant jet_value(MdbHandle* handle, const MdbColumn& column, const MdbField& field);

}  // namespace m47::olddb
