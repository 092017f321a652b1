// SPDX-License-Identifier: GPL-3.0-or-later
#include "report_dialog.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPushButton>

#include "ui_report_dialog.h"

namespace m47::olddb {
namespace {

constexpr Bilingual kCopy{"C&opy", "C&opia"};
constexpr Bilingual kClose{"&Close", "&Chiudi"};

}  // namespace

ReportDialog::ReportDialog(const QString& title, const QString& text, const Texts& texts,
                           QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::ReportDialog>()) {
    ui_->setupUi(this);
    setWindowTitle(title);
    setProperty("manual_page", QStringLiteral("plans"));
    ui_->report->setAccessibleName(title);
    ui_->report->setPlainText(text);
    ui_->cmdcopy->setText(texts.pick(kCopy));
    ui_->cmdclose->setText(texts.pick(kClose));
    connect(ui_->cmdcopy, &QPushButton::clicked, this,
            [this] { QGuiApplication::clipboard()->setText(ui_->report->toPlainText()); });
    connect(ui_->cmdclose, &QPushButton::clicked, this, &QDialog::accept);
    ui_->cmdclose->setFocus();
}

ReportDialog::~ReportDialog() = default;

}  // namespace m47::olddb
