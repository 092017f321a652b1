// SPDX-License-Identifier: GPL-3.0-or-later
#include "clash_dialog.h"

#include <QHeaderView>
#include <QPushButton>

#include "dialog_buttons.h"
#include "key_filter.h"
#include "ui_clash_dialog.h"

namespace m47::olddb {
namespace {

constexpr Bilingual kQuestion{
    "These names are in the database already. What shall become of the old plans and satellites?",
    "Questi nomi sono già nel database. Che cosa fare dei vecchi piani e satelliti?"};
constexpr Bilingual kForAll{"For &all:", "Per &tutti:"};
constexpr Bilingual kDialogTitle{"Import old database", "Importa vecchio database"};
constexpr Bilingual kPlan{"Plan %1", "Piano %1"};
constexpr Bilingual kSatellite{"Satellite %1", "Satellite %1"};
constexpr Bilingual kImport{"&Import", "&Importa"};
constexpr Bilingual kName{"Name", "Nome"};
constexpr Bilingual kFate{"Choice", "Scelta"};

// In the order of ClashChoice.
constexpr Bilingual kFates[] = {
    {"Keep the present one", "Mantenere quello attuale"},
    {"Replace the present one", "Sostituire quello attuale"},
    {"Bring it under a new name", "Importare con un nuovo nome"},
};

}  // namespace

ClashDialog::ClashDialog(ImportPlan& plan, const Texts& texts, QWidget* parent)
    : QDialog(parent), texts_(texts), ui_(std::make_unique<Ui::ClashDialog>()) {
    ui_->setupUi(this);
    setWindowTitle(texts.pick(kDialogTitle));
    setProperty("manual_page", QStringLiteral("plans"));
    ui_->question->setText(texts.pick(kQuestion));
    ui_->for_all_label->setText(texts.pick(kForAll));
    ui_->clashes->setHorizontalHeaderLabels({texts.pick(kName), texts.pick(kFate)});
    ui_->buttons->button(QDialogButtonBox::Ok)->setText(texts.pick(kImport));
    name_buttons(ui_->buttons, texts);
    for (ImportedPlan& one : plan.plans)
        if (one.clashes) add_row(one, kPlan);
    for (ImportedSatellite& one : plan.satellites)
        if (one.clashes) add_row(one, kSatellite);
    order_tabs();
    fill(ui_->for_all);
    new WheelGuard(ui_->for_all);
    connect(ui_->for_all, &QComboBox::activated, this, [this](int choice) {
        for (QComboBox* choices : std::as_const(choices_)) choices->setCurrentIndex(choice);
    });
    ui_->clashes->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    ui_->clashes->horizontalHeader()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    ui_->for_all->setFocus();
}

ClashDialog::~ClashDialog() = default;

void ClashDialog::fill(QComboBox* choices) const {
    for (const Bilingual& fate : kFates) choices->addItem(texts_.pick(fate));
}

void ClashDialog::add_row(ImportItem& item, const Bilingual& kind) {
    const int row = ui_->clashes->rowCount();
    ui_->clashes->insertRow(row);
    auto* name = new QTableWidgetItem(texts_.pick(kind).replace(QStringLiteral("%1"), item.name));
    name->setFlags(Qt::ItemIsEnabled);
    ui_->clashes->setItem(row, 0, name);
    auto* choices = new QComboBox;
    choices->setObjectName(QStringLiteral("clash_%1").arg(row));
    choices->setAccessibleName(name->text());
    fill(choices);
    choices->setCurrentIndex(static_cast<int>(item.choice));
    new WheelGuard(choices);
    ui_->clashes->setCellWidget(row, 1, choices);
    items_ += &item;
    choices_ += choices;
}

// As read: the table's boxes are made after the buttons below it.
void ClashDialog::order_tabs() const {
    QWidget* before = ui_->clashes;
    for (QComboBox* choices : choices_) {
        QWidget::setTabOrder(before, choices);
        before = choices;
    }
    for (const auto button : {QDialogButtonBox::Ok, QDialogButtonBox::Cancel}) {
        QWidget::setTabOrder(before, ui_->buttons->button(button));
        before = ui_->buttons->button(button);
    }
}

bool ClashDialog::ask() {
    if (exec() != QDialog::Accepted) return false;
    for (qsizetype k = 0; k < items_.size(); ++k)
        items_[k]->choice = static_cast<ClashChoice>(choices_[k]->currentIndex());
    return true;
}

}  // namespace m47::olddb
