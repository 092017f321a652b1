// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include "link.h"

namespace m47::settings {

/// The meter's logo: the short text that it shows as its owner's mark.
class Logo {
  public:
    explicit Logo(link::Link& link) : link_(link) {}

    /// The text of the box.
    QString logo_txt;

    /// Puts the meter's logo into the box. Without a link that is whatever was answered last.
    void read();

    /// A key in the box; only Enter (13) acts: the first line of the box, without blanks around it,
    /// becomes the logo, and the box then shows what the meter has stored. A text that the line
    /// cannot carry is not sent.
    void logo_txt_KeyPress(int key_ascii);

    /// True when the line carries every character of `text`: it knows Latin-1 and no other.
    static bool can_be_sent(const QString& text);

  private:
    link::Link& link_;
};

}  // namespace m47::settings
