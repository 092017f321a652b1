// SPDX-License-Identifier: GPL-3.0-or-later
#include "tooltips.h"

#include <QAction>
#include <QGroupBox>
#include <QMenu>
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
        const char* const english = tooltip.english ? tooltip.english : "";
        set_tooltip(control, texts.pick({english, tooltip.italian ? tooltip.italian : english}));
    }
}

void set_captions(QObject* screen, std::span<const Caption> table, const Texts& texts) {
    for (const Caption& caption : table) {
        auto* control = screen->findChild<QObject*>(QString::fromLatin1(caption.control));
        if (!control) throw Fault(std::string("no control for the caption of ") + caption.control);
        // Each kind of control has its own word for it.
        const char* property =
            qobject_cast<QMenu*>(control) || qobject_cast<QGroupBox*>(control) ? "title" : "text";
        control->setProperty(property, texts.pick(caption.text));
    }
}

void set_key_words(QObject* screen, std::span<const Caption> table, const Texts& texts) {
    for (const Caption& word : table) {
        auto* key = screen->findChild<QAction*>(QString::fromLatin1(word.control));
        if (!key) throw Fault(std::string("no key for the word of ") + word.control);
        key->setIconText(texts.pick(word.text));
    }
}

}  // namespace m47
