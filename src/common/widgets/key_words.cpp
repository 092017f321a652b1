// SPDX-License-Identifier: GPL-3.0-or-later
#include "key_words.h"

#include <QEvent>

namespace m47 {

namespace {

/// Of the screen, in lines of text.
constexpr int kLeastLines = 12;

}  // namespace

KeyWords::KeyWords(QToolBar* bar, QWidget* screen) : QObject(bar), bar_(bar), screen_(screen) {
    bar->installEventFilter(this);
    screen->installEventFilter(this);
}

void KeyWords::show(bool wanted) {
    wanted_ = wanted;
    width_with_words_ = 0;
    fit();
}

bool KeyWords::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type == QEvent::FontChange || type == QEvent::StyleChange) width_with_words_ = 0;
    if (type == QEvent::Resize) fit();
    return QObject::eventFilter(watched, event);
}

void KeyWords::fit() {
    if (wanted_ && width_with_words_ == 0) {
        bar_->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
        width_with_words_ = bar_->sizeHint().width();
    }
    const bool high = screen_->height() >= kLeastLines * screen_->fontMetrics().lineSpacing();
    const bool words = wanted_ && high && width_with_words_ <= bar_->width();
    bar_->setToolButtonStyle(words ? Qt::ToolButtonTextUnderIcon : Qt::ToolButtonIconOnly);
}

}  // namespace m47
