// SPDX-License-Identifier: GPL-3.0-or-later
#include "visit_mark.h"

#include <QEvent>

#include "tooltips.h"

namespace m47::shell {
namespace {

/// The status line has to say other things as well.
constexpr int kMostCharacters = 26;

}  // namespace

VisitMark::VisitMark(const QList<QAction*>& entries, QWidget* parent)
    : QToolButton(parent), menu_(new QMenu(this)) {
    setObjectName(QStringLiteral("visit_mark"));
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
    setPopupMode(QToolButton::InstantPopup);
    setToolButtonStyle(Qt::ToolButtonTextOnly);
    menu_->addActions(entries);
    setMenu(menu_);
}

void VisitMark::say(const QString& text, const QString& more, bool pressing) {
    text_ = text;
    QFont letters = font();
    letters.setBold(pressing);
    setFont(letters);
    setToolTip(plain_tooltip(more.isEmpty() ? text : text + u'\n' + more));
    setAccessibleName(text);
    cut();
}

void VisitMark::cut() {
    const int width = fontMetrics().averageCharWidth() * kMostCharacters;
    // What is no shortcut is shown as it stands.
    setText(
        fontMetrics().elidedText(text_, Qt::ElideRight, width).replace(u'&', QStringLiteral("&&")));
}

QSize VisitMark::sizeHint() const {
    // No higher than the line of text that it stands in.
    return {QToolButton::sizeHint().width(), fontMetrics().height() + 2};
}

void VisitMark::changeEvent(QEvent* event) {
    QToolButton::changeEvent(event);
    if (event->type() == QEvent::FontChange) cut();
}

}  // namespace m47::shell
