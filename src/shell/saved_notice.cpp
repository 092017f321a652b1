// SPDX-License-Identifier: GPL-3.0-or-later
#include "saved_notice.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QTimer>
#include <QToolButton>
#include <QUrl>
#include <chrono>

#include "tooltips.h"

namespace m47::shell {
namespace {

constexpr Bilingual kSaved{"Saved %1", "Salvato %1"};
constexpr Bilingual kOpen{"Open", "Apri"};
constexpr Bilingual kNotOpened{"No program of this computer opens %1",
                               "Nessun programma di questo computer apre %1"};

constexpr std::chrono::seconds kShown{60};

}  // namespace

SavedNotice::SavedNotice(const Texts& texts, QWidget* parent)
    : QWidget(parent), texts_(texts), name_(new QLabel), open_(new QToolButton) {
    setObjectName(QStringLiteral("saved_notice"));
    name_->setObjectName(QStringLiteral("saved_name"));
    name_->setTextFormat(Qt::PlainText);
    open_->setObjectName(QStringLiteral("saved_open"));
    open_->setFocusPolicy(Qt::TabFocus);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(name_);
    row->addWidget(open_);
    connect(open_, &QToolButton::clicked, this, [this] {
        if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path_)))
            name_->setText(texts_.pick(kNotOpened).arg(QFileInfo(path_).fileName()));
    });
}

void SavedNotice::show_file(const QString& path) {
    path_ = QFileInfo(path).absoluteFilePath();
    name_->setText(texts_.pick(kSaved).arg(QFileInfo(path).fileName()));
    name_->setToolTip(plain_tooltip(QDir::toNativeSeparators(path_)));
    open_->setText(texts_.pick(kOpen));
    show();
    QTimer::singleShot(kShown, this, [this, shown = path_] {
        if (shown == path_) hide();
    });
}

}  // namespace m47::shell
