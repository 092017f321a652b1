// SPDX-License-Identifier: GPL-3.0-or-later
#include "site_dialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>

#include "dialog_buttons.h"

namespace m47::sites {
namespace {

constexpr Bilingual kNewTitle{"New site", "Nuovo sito"};
constexpr Bilingual kEditTitle{"Site", "Sito"};
constexpr Bilingual kNameField{"&Name", "&Nome"};
constexpr Bilingual kCustomerField{"&Customer", "&Cliente"};
constexpr Bilingual kAddressField{"&Address", "&Indirizzo"};
constexpr Bilingual kRemarksField{"&Remarks", "N&ote"};

/// What a file of sites takes, with room for the rest.
constexpr int kLongestField = 200;
constexpr int kFieldColumns = 40;
constexpr int kRemarkLines = 4;

}  // namespace

SiteDialog::SiteDialog(const Site& site, bool is_new, const Texts& texts, QWidget* parent)
    : QDialog(parent), site_(site), remarks_(new QPlainTextEdit(site.remarks)) {
    setObjectName(QStringLiteral("site_dialog"));
    setProperty("manual_page", QStringLiteral("sites"));
    setWindowTitle(texts.pick(is_new ? kNewTitle : kEditTitle));
    auto* form = new QFormLayout(this);
    name_ = add_line(form, "site_name", kNameField, site.name, texts);
    customer_ = add_line(form, "site_customer", kCustomerField, site.customer, texts);
    address_ = add_line(form, "site_address", kAddressField, site.address, texts);
    remarks_->setObjectName(QStringLiteral("site_remarks"));
    remarks_->setTabChangesFocus(true);
    remarks_->setMinimumHeight(fontMetrics().height() * kRemarkLines);
    auto* caption = new QLabel(texts.pick(kRemarksField));
    caption->setBuddy(remarks_);
    form->addRow(caption, remarks_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    name_buttons(buttons, texts);
    form->addRow(buttons);
    QPushButton* take = buttons->button(QDialogButtonBox::Ok);
    const auto look = [this, take] { take->setEnabled(!name_->text().trimmed().isEmpty()); };
    connect(name_, &QLineEdit::textChanged, this, look);
    look();
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

QLineEdit* SiteDialog::add_line(QFormLayout* form, const char* name, const Bilingual& caption,
                                const QString& text, const Texts& texts) {
    auto* line = new QLineEdit(text);
    line->setObjectName(QLatin1String(name));
    line->setMaxLength(std::max(kLongestField, static_cast<int>(text.size())));
    line->setMinimumWidth(fontMetrics().averageCharWidth() * kFieldColumns);
    line->setCursorPosition(0);
    auto* label = new QLabel(texts.pick(caption));
    label->setBuddy(line);
    form->addRow(label, line);
    return line;
}

Site SiteDialog::site() const {
    Site entered = site_;
    entered.name = name_->text().trimmed();
    entered.customer = customer_->text().trimmed();
    entered.address = address_->text().trimmed();
    entered.remarks = remarks_->toPlainText().trimmed();
    return entered;
}

}  // namespace m47::sites
