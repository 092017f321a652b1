// SPDX-License-Identifier: GPL-3.0-or-later
#include "diseqc_folding.h"

#include <QApplication>
#include <QLayout>
#include <QMouseEvent>
#include <QTimer>

namespace m47::dish {

DiseqcFolding::DiseqcFolding(QWidget* sat_opt, DiseqcPanel* diseqc)
    : QObject(sat_opt), sat_opt_(sat_opt), diseqc_(diseqc) {
    watch(sat_opt);
    for (QWidget* widget : sat_opt->findChildren<QWidget*>()) watch(widget);
    connect(diseqc, &DiseqcPanel::dsqopt_Click, this, [this] { diseqc_MouseMove(); });
    connect(qApp, &QApplication::focusChanged, this,
            [this](const QWidget*, const QWidget* now) { focus_changed(now); });
    settle();
}

void DiseqcFolding::watch(QWidget* widget) {
    widget->installEventFilter(this);
    widget->setMouseTracking(true);
}

bool DiseqcFolding::eventFilter(QObject* watched, QEvent* event) {
    auto* widget = static_cast<QWidget*>(watched);
    const QEvent::Type type = event->type();
    if (type == QEvent::LayoutRequest && (watched == sat_opt_ || watched == diseqc_)) {
        // Its controls have become larger or smaller, as with another font.
        settle();
    } else if (type == QEvent::MouseMove) {
        // With a button held the pointer selects text or drags, wherever it goes.
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->buttons() == Qt::NoButton) pointer_at(widget->mapTo(sat_opt_, mouse->pos()));
    } else if (watched == diseqc_ && type == QEvent::Enter) {
        // A pointer that stops where it came into the window sends no movement.
        if (sat_opt_->isEnabled()) diseqc_MouseMove();
    } else if (watched == sat_opt_) {
        watch_frame(type);
    }
    return QObject::eventFilter(watched, event);
}

void DiseqcFolding::watch_frame(QEvent::Type type) {
    switch (type) {
        case QEvent::Leave:
            // A list that opens takes the pointer away too; that it is open shows after this.
            QTimer::singleShot(0, this, [this] {
                if (!sat_opt_->underMouse()) sat_opt_MouseMove();
            });
            break;
        case QEvent::EnabledChange:
            if (!sat_opt_->isEnabled()) show_state(DiseqcState::folded);
            break;
        case QEvent::Show:
            settle();
            break;
        default:
            break;
    }
}

void DiseqcFolding::pointer_at(const QPoint& position) {
    if (!sat_opt_->isEnabled()) return;
    if (diseqc_->geometry().contains(position))
        diseqc_MouseMove();
    else
        sat_opt_MouseMove();
}

void DiseqcFolding::diseqc_MouseMove() {
    show_state(diseqc_->opened());
}

void DiseqcFolding::sat_opt_MouseMove() {
    if (!diseqc_->busy()) show_state(DiseqcState::folded);
}

void DiseqcFolding::focus_changed(const QWidget* now) {
    // Without any focus another program is in front: what was open is there on coming back.
    if (!now || folding_) return;
    const bool was_inside = focus_inside_;
    focus_inside_ = belongs_to(diseqc_, now);
    if (focus_inside_)
        show_state(diseqc_->opened());
    else if (was_inside)
        show_state(DiseqcState::folded);
}

void DiseqcFolding::show_state(DiseqcState state) {
    if (state == state_) return;
    state_ = state;
    if (state == DiseqcState::folded) {
        folding_ = true;
        diseqc_->keep_focus();
        folding_ = false;
    }
    settle();
}

void DiseqcFolding::settle() {
    const DiseqcLayout layout = diseqc_layout(state_);
    diseqc_->show_layout(layout);
    // The layout of the frame learns of the new size of the panel in it only when it is activated.
    sat_opt_->layout()->activate();
    sat_opt_->setFixedSize(layout.sat_opt.expandedTo(sat_opt_->minimumSizeHint()));
}

}  // namespace m47::dish
