// SPDX-License-Identifier: GPL-3.0-or-later
#include "verdict_delegate.h"

#include "measurement.h"
#include "verdict_colours.h"

namespace m47::realtime {

void VerdictDelegate::initStyleOption(QStyleOptionViewItem* option,
                                      const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    for (const auto verdict : {measurement::Verdict::pass, measurement::Verdict::fail}) {
        if (option->text != measurement::verdict_text(verdict)) continue;
        const bool passed = verdict == measurement::Verdict::pass;
        option->palette.setColor(QPalette::Text,
                                 verdict_colour(passed, option->palette.color(QPalette::Base)));
        option->font.setBold(true);
    }
}

}  // namespace m47::realtime
