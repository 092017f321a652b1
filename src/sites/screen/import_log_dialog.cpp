// SPDX-License-Identifier: GPL-3.0-or-later
#include "import_log_dialog.h"

#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "cells_model.h"
#include "dialog_body.h"
#include "dialog_buttons.h"
#include "row_time.h"

namespace m47::sites {
namespace {

constexpr Bilingual kLogTitle{"Import log %1", "Importa log %1"};
constexpr Bilingual kLogKey{"&Import", "I&mporta"};
constexpr Bilingual kVisitTab{"&Visits (%1)", "&Visite (%1)"};
constexpr Bilingual kRowTab{"Lines &read (%1)", "Righe le&tte (%1)"};
constexpr Bilingual kUnreadTab{"Lines &not read (%1)", "Righe &non lette (%1)"};
constexpr Bilingual kVisitColumns[] = {
    {"Visit", "Visita"}, {"From", "Dal"}, {"To", "Al"}, {"Rows", "Righe"}, {"Lines", "Righe log"}};

constexpr int kSampledRows = 50;

QString instant_cell(const Instant& instant) {
    return QString::fromStdString(measurement::time_text(instant.wall()));
}

}  // namespace

ImportLogDialog::ImportLogDialog(LogPreview log, const QString& name, const SiteStore* store,
                                 const Texts& texts, QWidget* parent)
    : QDialog(parent),
      texts_(texts),
      log_(std::move(log)),
      tables_(new QTabWidget),
      picker_(new SitePicker(store, texts)) {
    setObjectName(QStringLiteral("import_log"));
    setWindowTitle(Said{kLogTitle, {name}}.in(texts));
    setProperty("manual_page", QStringLiteral("visits"));
    int rows = 0;
    for (const LogVisit& visit : log_.visits) {
        first_rows_.push_back(rows);
        rows += static_cast<int>(visit.lines.size());
    }
    first_rows_.push_back(rows);
    auto* summary = new QLabel(log_text(log_, texts));
    summary->setObjectName(QStringLiteral("log_summary"));
    summary->setTextFormat(Qt::PlainText);
    summary->setWordWrap(true);
    tables_->setObjectName(QStringLiteral("log_tables"));
    make_tables();
    auto* layout = new QVBoxLayout(this);
    QBoxLayout* body = add_body(layout);
    body->addWidget(summary);
    body->addWidget(tables_, 1);
    body->addWidget(picker_);
    layout->addWidget(make_buttons());
    resize(fontMetrics().averageCharWidth() * 100, fontMetrics().height() * 34);
    picker_->setFocus();
}

void ImportLogDialog::add_table(const char* name, const Bilingual& caption,
                                const QStringList& heading, int rows,
                                const std::function<QStringList(int row)>& cells) {
    auto* table = new QTableView;
    table->setObjectName(QLatin1String(name));
    table->setModel(new CellsModel(heading, rows, cells, table));
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setTabKeyNavigation(false);
    table->verticalHeader()->hide();
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);
    table->horizontalHeader()->setResizeContentsPrecision(kSampledRows);
    table->resizeColumnsToContents();
    table->horizontalHeader()->setStretchLastSection(true);
    table->setMinimumHeight(table->minimumSizeHint().height());
    tables_->addTab(table, Said{caption, {QString::number(rows)}}.in(texts_));
}

void ImportLogDialog::make_tables() {
    QStringList columns;
    for (const Bilingual& column : kVisitColumns) columns += texts_.pick(column);
    add_table("log_visits", kVisitTab, columns, static_cast<int>(log_.visits.size()),
              [this](int row) { return visit_cells(row); });
    add_table("log_rows", kRowTab, log_heading(texts_), first_rows_.back(),
              [this](int row) { return row_cells(row); });
    add_table("log_unread", kUnreadTab, unread_heading(texts_),
              static_cast<int>(log_.unread.size()), [this](int row) {
                  return unread_cells(log_.unread[static_cast<std::size_t>(row)], texts_);
              });
}

QStringList ImportLogDialog::visit_cells(int number) const {
    const LogVisit& visit = log_.visits[static_cast<std::size_t>(number)];
    const Visit& made = visit.whole.visit;
    return {QString::number(number + 1), instant_cell(made.begun),
            instant_cell(made.ended.value_or(made.begun)), QString::number(visit.lines.size()),
            QStringLiteral("%1–%2").arg(visit.lines.front()).arg(visit.lines.back())};
}

QStringList ImportLogDialog::row_cells(int number) const {
    const auto behind = std::ranges::upper_bound(first_rows_, number);
    const auto visit = static_cast<std::size_t>(behind - first_rows_.begin() - 1);
    return log_cells(log_, visit, static_cast<std::size_t>(number - first_rows_[visit]));
}

QDialogButtonBox* ImportLogDialog::make_buttons() {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QPushButton* import = buttons->button(QDialogButtonBox::Ok);
    import->setText(texts_.pick(kLogKey));
    name_buttons(buttons, texts_);
    const auto look = [this, import] {
        import->setEnabled(picker_->site().has_value() && !log_.visits.empty());
    };
    connect(picker_, &SitePicker::changed, import, look);
    look();
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    return buttons;
}

}  // namespace m47::sites
