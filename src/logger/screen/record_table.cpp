// SPDX-License-Identifier: GPL-3.0-or-later
#include "record_table.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <algorithm>

namespace m47::logger {
namespace {

constexpr Bilingual kCopyRows{"Copy rows", "Copia righe"};
constexpr Bilingual kLine{"Line", "Riga"};
constexpr Bilingual kLog{"Log", "Log"};
constexpr Bilingual kText{"Text", "Testo"};

}  // namespace

RecordTable::RecordTable(QWidget* parent)
    : QTableView(parent), records_(new RecordModel(this)), copy_(new QAction(this)) {
    setModel(records_);
    setSortingEnabled(true);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setAlternatingRowColors(true);
    setWordWrap(false);
    setTabKeyNavigation(false);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);
    copy_->setObjectName(QStringLiteral("copy_rows"));
    copy_->setShortcut(QKeySequence::Copy);
    copy_->setShortcutContext(Qt::WidgetShortcut);
    addAction(copy_);
    setContextMenuPolicy(Qt::ActionsContextMenu);
    connect(copy_, &QAction::triggered, this, &RecordTable::copy_rows);
}

void RecordTable::show_texts(const Texts& texts) {
    copy_->setText(texts.pick(kCopyRows));
    records_->name_columns({texts.pick(kLine), texts.pick(kLog), texts.pick(kText)});
}

void RecordTable::set_text(const QByteArray& text) {
    records_->set_text(text);
    sortByColumn(0, Qt::AscendingOrder);
    resizeColumnsToContents();
}

void RecordTable::copy_rows() {
    if (records_->rowCount() == 0) {
        Q_EMIT copied(0);
        return;
    }
    std::vector<int> rows;
    for (const QModelIndex& index : selectionModel()->selectedRows()) rows.push_back(index.row());
    std::sort(rows.begin(), rows.end());
    QGuiApplication::clipboard()->setText(records_->tab_separated(rows));
    Q_EMIT copied(rows.empty() ? records_->rowCount() : static_cast<int>(rows.size()));
}

}  // namespace m47::logger
