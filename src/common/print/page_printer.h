// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

#include "text_printing.h"

namespace m47 {

/// The printers of the desktop.
class PagePrinter : public QObject, public TextPrinting {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID M47_TEXT_PRINTING)
    Q_INTERFACES(m47::TextPrinting)
  public:
    bool print(QWidget* screen, const QString& title, const QString& text,
               const Texts& texts) override;
};

}  // namespace m47
