// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>

#include "scrolled_body.h"

namespace m47::sites {

/// The room of a dialog above its keys, which scrolls where the desktop is low; it is the last of
/// `dialog` as yet.
inline QBoxLayout* add_body(QBoxLayout* dialog) {
    auto* body = new ScrolledBody;
    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    body->setWidget(content);
    dialog->addWidget(body, 1);
    return layout;
}

}  // namespace m47::sites
