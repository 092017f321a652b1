// SPDX-License-Identifier: GPL-3.0-or-later
#include "problem_dialog.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "dialog_buttons.h"

namespace m47::shell {
namespace {

constexpr Bilingual kReportTitle{"Report a problem", "Segnala un problema"};
constexpr Bilingual kIntroduction{
    "What is ticked goes into one file, which is written where you choose. Nothing is sent: look "
    "through it, then give it to whoever helps you. Your home folder stands there as \"~\".",
    "Ciò che è spuntato va in un solo file, che viene scritto dove si sceglie. Non si invia nulla: "
    "guardarlo, poi darlo a chi aiuta. La cartella personale vi compare come \"~\"."};
constexpr Bilingual kContents{"Contents of the report", "Contenuto della segnalazione"};
constexpr Bilingual kSave{"&Save…", "&Salva…"};
constexpr Bilingual kNoPreview{"(no text)", "(non è testo)"};

/// As much of a text as somebody looks through.
constexpr qsizetype kMostShown = qsizetype{200} * 1000;

}  // namespace

ProblemDialog::ProblemDialog(std::vector<unattended::ProblemItem> items, const Texts& texts,
                             QWidget* parent)
    : QDialog(parent),
      items_(std::move(items)),
      list_(new QListWidget),
      preview_(new QPlainTextEdit) {
    setObjectName(QStringLiteral("problem_report"));
    setWindowTitle(texts.pick(kReportTitle));
    setProperty("manual_page", QStringLiteral("problem"));
    auto* introduction = new QLabel(texts.pick(kIntroduction));
    introduction->setTextFormat(Qt::PlainText);
    introduction->setWordWrap(true);
    list_->setObjectName(QStringLiteral("problem_items"));
    list_->setAccessibleName(texts.pick(kContents));
    preview_->setObjectName(QStringLiteral("problem_preview"));
    preview_->setReadOnly(true);
    preview_->setPlaceholderText(texts.pick(kNoPreview));
    preview_->setLineWrapMode(QPlainTextEdit::NoWrap);
    for (const unattended::ProblemItem& item : items_) add_row(item, texts);
    connect(list_, &QListWidget::currentRowChanged, this, &ProblemDialog::show_preview);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Save)->setText(texts.pick(kSave));
    name_buttons(buttons, texts);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(introduction);
    layout->addWidget(list_);
    layout->addWidget(preview_, 1);
    layout->addWidget(buttons);
    // No more room than its rows need; the rest is for what is looked through.
    list_->setMaximumHeight(list_->sizeHintForRow(0) * (list_->count() + 1));
    preview_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    list_->setCurrentRow(0);
    resize(fontMetrics().averageCharWidth() * 80, fontMetrics().height() * 26);
}

void ProblemDialog::add_row(const unattended::ProblemItem& item, const Texts& texts) {
    QString text = item.name + QStringLiteral(" – ") + texts.pick(item.what);
    if (!item.bytes.isEmpty())
        text += QStringLiteral(" (") +
                QLocale().formattedDataSize(item.bytes.size(), 0, QLocale::DataSizeSIFormat) + u')';
    auto* row = new QListWidgetItem(text, list_);
    row->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    row->setCheckState(item.wanted ? Qt::Checked : Qt::Unchecked);
}

void ProblemDialog::show_preview(int row) {
    const unattended::ProblemItem& item = items_[static_cast<std::size_t>(row)];
    preview_->setPlainText(item.text ? QString::fromUtf8(item.bytes.left(kMostShown)) : QString());
}

std::vector<unattended::ProblemItem> ProblemDialog::items() const {
    std::vector<unattended::ProblemItem> items = items_;
    for (std::size_t row = 0; row < items.size(); ++row)
        items[row].wanted = list_->item(static_cast<int>(row))->checkState() == Qt::Checked;
    return items;
}

}  // namespace m47::shell
