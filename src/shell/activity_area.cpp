// SPDX-License-Identifier: GPL-3.0-or-later
#include "activity_area.h"

#include <QHBoxLayout>

#include "busy_input.h"
#include "elided_label.h"
#include "tooltips.h"

namespace m47::shell {
namespace {

constexpr Bilingual kStop{"Stop", "Stop"};
constexpr Bilingual kStopping{"Stopping…", "Si ferma…"};
constexpr Bilingual kStopTip{"End this before the next command to the meter",
                             "Termina prima del prossimo comando allo strumento"};

}  // namespace

ActivityArea::ActivityArea(link::Activity& activity, const Texts& texts, QWidget* parent)
    : QWidget(parent),
      activity_(activity),
      texts_(texts),
      what_(new ElidedLabel),
      stop_(new QPushButton) {
    what_->setObjectName(QStringLiteral("activity"));
    what_->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
    stop_->setObjectName(QStringLiteral("activity_stop"));
    // The keyboard stays where the user works.
    stop_->setFocusPolicy(Qt::NoFocus);
    act_while_busy(stop_);
    keep_while_busy(stop_);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(what_);
    layout->addWidget(stop_);
    connect(stop_, &QPushButton::clicked, this, &ActivityArea::stop_asked);
}

void ActivityArea::show_activity() {
    const QString text = activity_text(activity_, texts_);
    what_->setText(text);
    what_->setToolTip(plain_tooltip(text));
    what_->setAccessibleName(text);
    stop_->setText(texts_.pick(activity_.stop_asked() ? kStopping : kStop));
    stop_->setToolTip(texts_.pick(kStopTip));
    stop_->setEnabled(!activity_.stop_asked());
    setVisible(!text.isEmpty());
}

}  // namespace m47::shell
