// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include "texts.h"

namespace m47::plans {

/// What the field `field` of a program or of the plan's oscillators is called; the field's own name
/// where it is none of them.
QString field_name_in_words(const QString& field, const Texts& texts);

/// A value of that field, a text as of field_text(), as the screen would show it.
QString field_in_words(const QString& field, const QString& value, const Texts& texts);

}  // namespace m47::plans
