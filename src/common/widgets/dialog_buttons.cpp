// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialog_buttons.h"

#include <QPushButton>

namespace m47 {
namespace {

constexpr Bilingual kCancelButton{"Cancel", "Annulla"};
constexpr Bilingual kCloseButton{"&Close", "&Chiudi"};

}  // namespace

void name_buttons(QDialogButtonBox* buttons, const Texts& texts) {
    if (auto* cancel = buttons->button(QDialogButtonBox::Cancel))
        cancel->setText(texts.pick(kCancelButton));
    if (auto* close = buttons->button(QDialogButtonBox::Close))
        close->setText(texts.pick(kCloseButton));
}

}  // namespace m47
