// SPDX-License-Identifier: GPL-3.0-or-later
#include "restore_preview.h"

#include <QHeaderView>
#include <QPushButton>

#include "asl_texts.h"
#include "dialog_buttons.h"
#include "numbers.h"
#include "ui_restore_preview.h"

namespace m47::asl {
namespace {

QString fate_text(SlotFate fate, const Texts& texts) {
    switch (fate) {
        case SlotFate::unchanged:
            return texts.pick(asl_text::kUnchanged);
        case SlotFate::written:
            return texts.pick(asl_text::kWritten);
        case SlotFate::emptied:
            return texts.pick(asl_text::kEmptied);
        case SlotFate::left_alone:
            break;
    }
    return texts.pick(asl_text::kLeftAlone);
}

QString name_of(const std::optional<SlotBlock>& block, const Texts& texts) {
    return block ? block->name() : texts.pick(asl_text::kNotWhole);
}

bool changes(SlotFate fate) {
    return fate == SlotFate::written || fate == SlotFate::emptied;
}

}  // namespace

RestorePreview::RestorePreview(const RestorePlan& plan, const Texts& texts, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::RestorePreview>()) {
    ui_->setupUi(this);
    setWindowTitle(texts.pick(asl_text::kPreviewTitle));
    fill(plan, texts);
    name_buttons(ui_->preview_buttons, texts);
    auto* restore = ui_->preview_buttons->button(QDialogButtonBox::Ok);
    restore->setText(texts.pick(asl_text::kRestoreButton));
    restore->setEnabled(changes_any(plan));
    // What cannot be undone by a careless Enter.
    ui_->preview_buttons->button(QDialogButtonBox::Cancel)->setDefault(true);
    ui_->preview_buttons->button(QDialogButtonBox::Cancel)->setFocus();
}

RestorePreview::~RestorePreview() = default;

void RestorePreview::fill(const RestorePlan& plan, const Texts& texts) {
    QTableWidget* table = ui_->preview_table;
    table->setHorizontalHeaderLabels({texts.pick(asl_text::kSlot), texts.pick(asl_text::kInMeter),
                                      texts.pick(asl_text::kInFile), texts.pick(asl_text::kFate)});
    table->setRowCount(kSlots);
    int changing = 0;
    for (int slot = 0; slot < kSlots; ++slot) {
        const SlotPlan& one = plan[static_cast<std::size_t>(slot)];
        const QStringList cells{link::format_number(slot, "00"), name_of(one.now, texts),
                                name_of(one.file, texts), fate_text(one.fate, texts)};
        for (int column = 0; column < cells.size(); ++column) {
            auto* cell = new QTableWidgetItem(cells[column]);
            QFont font = cell->font();
            font.setBold(changes(one.fate));
            cell->setFont(font);
            table->setItem(slot, column, cell);
        }
        if (changes(one.fate)) ++changing;
    }
    table->resizeColumnsToContents();
    table->resizeRowsToContents();
    table->horizontalHeader()->setStretchLastSection(true);
    ui_->preview_count->setText(texts.pick(asl_text::kPreviewCount).arg(changing));
}

}  // namespace m47::asl
