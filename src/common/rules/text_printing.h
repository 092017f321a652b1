// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtPlugin>

#include "texts.h"

class QWidget;

namespace m47 {

/// Prints lines of text, as print_text() says it.
class TextPrinting {
  public:
    virtual ~TextPrinting() = default;

    virtual bool print(QWidget* screen, const QString& title, const QString& text,
                       const Texts& texts) = 0;
};

}  // namespace m47

#define M47_TEXT_PRINTING "org.m47remote.TextPrinting/1"
Q_DECLARE_INTERFACE(m47::TextPrinting, M47_TEXT_PRINTING)
