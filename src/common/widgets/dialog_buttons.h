// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialogButtonBox>

#include "texts.h"

namespace m47 {

/// Names the buttons "Cancel" and "Close" of `buttons`, where it has them, in the current language.
void name_buttons(QDialogButtonBox* buttons, const Texts& texts);

}  // namespace m47
