// SPDX-License-Identifier: GPL-3.0-or-later
#include "corrected_actions.h"

namespace m47 {

void tie_corrected(QObject* screen, CorrectedBehaviour& choices) {
    for (const CorrectedEntry& entry : kCorrectedEntries) {
        auto* action = screen->findChild<QAction*>(QString::fromLatin1(entry.name));
        if (!action) continue;
        bool& chosen = choices.*entry.member;
        action->setChecked(chosen);
        QObject::connect(action, &QAction::toggled, action,
                         [&chosen](bool ticked) { chosen = ticked; });
    }
}

void follow_each_other(QAction* one, QAction* other) {
    QObject::connect(one, &QAction::toggled, other, &QAction::setChecked);
    QObject::connect(other, &QAction::toggled, one, &QAction::setChecked);
}

}  // namespace m47
