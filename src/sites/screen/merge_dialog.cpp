// SPDX-License-Identifier: GPL-3.0-or-later
#include "merge_dialog.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <iterator>

#include "dialog_body.h"
#include "dialog_buttons.h"
#include "tooltips.h"

namespace m47::sites {
namespace {

constexpr Bilingual kMergeKey{"&Import", "I&mporta"};
constexpr Bilingual kChoose{
    "What is ticked is taken from the file in place of what is here; the rest stays as it is here. "
    "Nothing is written before you choose \"Import\".",
    "Ciò che è spuntato viene preso dal file al posto di ciò che è qui; il resto resta com'è qui. "
    "Nulla viene scritto prima di scegliere \"Importa\"."};
constexpr Bilingual kNotAlike{"Not alike", "Diversi"};
constexpr Bilingual kTakeAll{"Take &all from the file", "Prendi &tutto dal file"};
constexpr Bilingual kKeepAll{"&Keep all that is here", "&Conserva tutto ciò che è qui"};
constexpr Bilingual kSideColumns[] = {
    {"What", "Che cosa"}, {"Here", "Qui"}, {"In the file", "Nel file"}};

/// So many lines of both lists can be seen at least, where the screen has room for them.
constexpr int kLeastConflicts = 3;
constexpr int kLeastSides = 6;
constexpr int kAroundLine = 4;     // pixels
constexpr int kRoomyScreen = 500;  // pixels high

}  // namespace

MergeDialog::MergeDialog(SiteMerge merge, const QString& title, const Texts& texts, QWidget* parent)
    : QDialog(parent), texts_(texts), merge_(std::move(merge)) {
    setObjectName(QStringLiteral("merge_sites"));
    setWindowTitle(title);
    setProperty("manual_page", QStringLiteral("visits"));
    auto* summary = new QLabel(merge_text(merge_, texts));
    summary->setObjectName(QStringLiteral("merge_summary"));
    summary->setTextFormat(Qt::PlainText);
    summary->setWordWrap(true);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(summary);
    if (!merge_.conflicts.empty()) make_conflicts(add_body(layout));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(texts.pick(kMergeKey));
    name_buttons(buttons, texts);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    if (conflicts_)
        resize(fontMetrics().averageCharWidth() * 95, fontMetrics().height() * 28);
    else
        resize(fontMetrics().averageCharWidth() * 60, sizeHint().height());
}

void MergeDialog::make_conflicts(QBoxLayout* layout) {
    auto* choose = new QLabel(texts_.pick(kChoose));
    choose->setTextFormat(Qt::PlainText);
    choose->setWordWrap(true);
    conflicts_ = new QListWidget;
    conflicts_->setObjectName(QStringLiteral("merge_conflicts"));
    conflicts_->setAccessibleName(texts_.pick(kNotAlike));
    conflicts_->setUniformItemSizes(true);
    for (const Conflict& conflict : merge_.conflicts) {
        auto* item = new QListWidgetItem(conflict_title(conflict, texts_), conflicts_);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(conflict.take_theirs ? Qt::Checked : Qt::Unchecked);
    }
    sides_ = new QTableWidget(0, static_cast<int>(std::size(kSideColumns)));
    sides_->setObjectName(QStringLiteral("merge_sides"));
    sides_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    sides_->setTabKeyNavigation(false);
    sides_->verticalHeader()->hide();
    QStringList heading;
    for (const Bilingual& column : kSideColumns) heading += texts_.pick(column);
    sides_->setHorizontalHeaderLabels(heading);
    sides_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    give_room();
    connect(conflicts_, &QListWidget::currentRowChanged, this, &MergeDialog::show_conflict);
    connect(conflicts_, &QListWidget::itemChanged, this, &MergeDialog::take_choice);
    auto* keys = new QHBoxLayout;
    add_choice_key(keys, "merge_theirs", kTakeAll, true);
    add_choice_key(keys, "merge_mine", kKeepAll, false);
    keys->addStretch();
    layout->addWidget(choose);
    layout->addLayout(keys);
    layout->addWidget(conflicts_, 1);
    layout->addWidget(sides_, 1);
    conflicts_->setCurrentRow(0);
}

/// Both lists share the room that there is: as high as they would like to be, the upper one alone
/// would fill a low window. On a screen that is lower still the window is scrolled.
void MergeDialog::give_room() {
    const int line = fontMetrics().height() + kAroundLine;
    sides_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    sides_->verticalHeader()->setDefaultSectionSize(line);
    if (screen()->availableSize().height() < kRoomyScreen) return;
    sides_->setMinimumHeight(sides_->horizontalHeader()->sizeHint().height() + kLeastSides * line +
                             2 * sides_->frameWidth());
    for (QWidget* list : {static_cast<QWidget*>(sides_), static_cast<QWidget*>(conflicts_)})
        list->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
    conflicts_->setMinimumHeight(kLeastConflicts * line + 2 * conflicts_->frameWidth());
}

void MergeDialog::add_choice_key(QBoxLayout* row, const char* name, const Bilingual& caption,
                                 bool theirs) {
    auto* key = new QPushButton(texts_.pick(caption));
    key->setObjectName(QLatin1String(name));
    key->setAutoDefault(false);
    connect(key, &QPushButton::clicked, this, [this, theirs] {
        for (int k = 0; k < conflicts_->count(); ++k)
            conflicts_->item(k)->setCheckState(theirs ? Qt::Checked : Qt::Unchecked);
    });
    row->addWidget(key);
}

void MergeDialog::show_conflict(int row) {
    sides_->setRowCount(0);
    if (row < 0) return;
    const QList<ConflictLine> lines =
        conflict_lines(merge_.conflicts[static_cast<std::size_t>(row)], texts_);
    sides_->setRowCount(static_cast<int>(lines.size()));
    for (int k = 0; k < sides_->rowCount(); ++k) {
        const QString cells[] = {lines[k].what, lines[k].mine, lines[k].theirs};
        for (int column = 0; column < sides_->columnCount(); ++column) {
            auto* cell = new QTableWidgetItem(cells[column]);
            cell->setToolTip(plain_tooltip(cells[column]));
            sides_->setItem(k, column, cell);
        }
    }
}

void MergeDialog::take_choice(const QListWidgetItem* item) {
    merge_.conflicts[static_cast<std::size_t>(conflicts_->row(item))].take_theirs =
        item->checkState() == Qt::Checked;
}

}  // namespace m47::sites
