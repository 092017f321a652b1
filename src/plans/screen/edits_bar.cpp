// SPDX-License-Identifier: GPL-3.0-or-later
#include "edits_bar.h"

#include <QHBoxLayout>

namespace m47::plans {
namespace {

constexpr Bilingual kForget{"Forget these edits", "Dimentica queste modifiche"};

}  // namespace

EditsBar::EditsBar(const Texts& texts)
    : text_(new QLabel), put_back_(new QPushButton), dismiss_(new QToolButton) {
    setObjectName(QStringLiteral("edits_bar"));
    setFrameShape(QFrame::StyledPanel);
    text_->setObjectName(QStringLiteral("edits_text"));
    text_->setTextFormat(Qt::PlainText);
    text_->setWordWrap(true);
    put_back_->setObjectName(QStringLiteral("edits_back"));
    dismiss_->setObjectName(QStringLiteral("edits_forget"));
    dismiss_->setText(QStringLiteral("×"));
    dismiss_->setToolTip(texts.pick(kForget));
    dismiss_->setAccessibleName(texts.pick(kForget));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 2, 6, 2);
    layout->addWidget(text_, 1);
    layout->addWidget(put_back_);
    layout->addWidget(dismiss_);
    connect(put_back_, &QPushButton::clicked, this, &EditsBar::put_back_asked);
    connect(dismiss_, &QToolButton::clicked, this, &EditsBar::dismissed);
    hide();
}

void EditsBar::offer(const QString& text, const QString& key) {
    text_->setText(text);
    put_back_->setText(key);
    show();
}

}  // namespace m47::plans
