// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QStyledItemDelegate>

#include "site_tables.h"
#include "verdict_colours.h"

namespace m47::sites {

/// In the models of the screen: the Tone of a cell.
inline constexpr int kToneRole = Qt::UserRole;

/// The colour of a text on `ground` that means `tone`, which is none that is plain.
inline QColor tone_colour(Tone tone, const QColor& ground) {
    if (tone != Tone::doubtful) return verdict_colour(tone == Tone::good, ground);
    return ground.lightness() < 128 ? QColor(0xFF, 0xC0, 0x40) : QColor(0x80, 0x50, 0x00);
}

/// Writes each cell in the colour of its tone (kToneRole).
class ToneDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        // Room between a number and the text beside it.
        option->text = QChar::Nbsp + option->text + QChar::Nbsp;
        const auto tone = static_cast<Tone>(index.data(kToneRole).toInt());
        const QColor ground = option->palette.color(QPalette::Base);
        if (tone != Tone::plain)
            option->palette.setColor(QPalette::Text, tone_colour(tone, ground));
    }
};

}  // namespace m47::sites
