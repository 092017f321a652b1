// SPDX-License-Identifier: GPL-3.0-or-later
#include "key_room.h"

namespace m47 {
namespace {

/// An empty place as large as a key of its bar.
class EmptyKey : public QWidget {
  public:
    EmptyKey(QToolBar* bar, QAction* key) : QWidget(bar), bar_(bar), key_(key) {
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }
    QSize sizeHint() const override {
        const QWidget* button = bar_->widgetForAction(key_);
        return button ? button->sizeHint() : QSize();
    }

  private:
    QToolBar* bar_;
    QAction* key_;
};

}  // namespace

void keep_room_of_keys(QToolBar* bar, const QList<QAction*>& keys) {
    for (QAction* key : keys) {
        QAction* room = bar->insertWidget(key, new EmptyKey(bar, key));
        const auto show = [room, key] { room->setVisible(!key->isVisible()); };
        show();
        QObject::connect(key, &QAction::visibleChanged, room, show);
    }
}

}  // namespace m47
