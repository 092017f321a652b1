// SPDX-License-Identifier: GPL-3.0-or-later
#include "tooltips.h"

#include <QAction>
#include <QTextDocument>
#include <QWidget>

#include "fault.h"

namespace m47 {

QString plain_tooltip(const QString& text) {
    if (!Qt::mightBeRichText(text)) return text;
    const QString lines = text.toHtmlEscaped().replace(u'\n', QStringLiteral("<br>"));
    return QStringLiteral("<qt>%1</qt>").arg(lines);
}

void set_tooltip(QObject* control, const QString& text) {
    if (auto* action = qobject_cast<QAction*>(control)) action->setToolTip(text);
    if (auto* widget = qobject_cast<QWidget*>(control)) widget->setToolTip(text);
}

void set_tooltips(QObject* screen, std::span<const Tooltip> table, const Texts& texts) {
    for (const Tooltip& tooltip : table) {
        auto* control = screen->findChild<QObject*>(QString::fromLatin1(tooltip.control));
        if (!control) throw Fault(std::string("no control for the tooltip of ") + tooltip.control);
        const bool italian = texts.language == kItalian && tooltip.italian;
        const char* text = italian ? tooltip.italian : tooltip.english;
        set_tooltip(control, text ? QString::fromUtf8(text) : QString());
    }
}

}  // namespace m47
