// SPDX-License-Identifier: GPL-3.0-or-later
#include "import_dialog.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "import_words.h"
#include "text_table.h"
#include "tooltips.h"

namespace m47::plans {
namespace {

constexpr Bilingual kImportTitle{"Import programs", "Importa programmi"};
constexpr Bilingual kImportButton{"Import", "Importa"};
constexpr Bilingual kCancelButton{"Cancel", "Annulla"};
constexpr Bilingual kReplace{"&Replace programs by number", "&Sostituisci i programmi per numero"};
constexpr Bilingual kReplaceTip{
    "A program of the file takes the place of the one that has its number",
    "Un programma del file prende il posto di quello con lo stesso numero"};
constexpr Bilingual kLoggerLines{"Give &logger lines", "Assegna righe &datalogger"};
constexpr Bilingual kLoggerLinesTip{
    "Each program gets a line of the meter's logger table and is active in it, as far as the 42 "
    "lines reach",
    "Ogni programma ha una riga della tabella datalogger e vi è attivo, fin dove bastano le 42 "
    "righe"};
constexpr Bilingual kMonitoredAll{"&Monitored", "&Monitorati"};
constexpr Bilingual kMonitoredTip{"Each program is measured when the plan runs",
                                  "Ogni programma è misurato quando il piano viene eseguito"};
constexpr Bilingual kTickAll{"Tick &all", "Spunta &tutti"};
constexpr Bilingual kTickNone{"Tick &none", "Spunta &nessuno"};
constexpr Bilingual kTickTip{"A tick on one of several selected rows holds for all of them.",
                             "La spunta su una di più righe selezionate vale per tutte."};

constexpr int kTickColumn = 0;

Qt::CheckState state_of(bool wanted) {
    return wanted ? Qt::Checked : Qt::Unchecked;
}

}  // namespace

ImportDialog::ImportDialog(const ImportFile& file, ImportPreviewer previewer, const Texts& texts,
                           QWidget* parent)
    : QDialog(parent),
      file_(file),
      previewer_(std::move(previewer)),
      texts_(texts),
      preview_(previewer_(file_.candidates, {})),
      summary_(new QLabel) {
    setObjectName(QStringLiteral("import_preview"));
    setWindowTitle(texts.pick(kImportTitle));
    summary_->setObjectName(QStringLiteral("import_summary"));
    summary_->setTextFormat(Qt::PlainText);
    summary_->setWordWrap(true);
    table_ = make_table();
    auto* buttons = new QDialogButtonBox;
    import_ = buttons->addButton(texts.pick(kImportButton), QDialogButtonBox::AcceptRole);
    buttons->addButton(texts.pick(kCancelButton), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    // Above what grows with them: a choice must not move another one under the pointer.
    layout->addLayout(make_choices());
    layout->addWidget(summary_);
    layout->addWidget(table_);
    layout->addWidget(buttons);
    look_again();
    resize(fontMetrics().averageCharWidth() * 140, fontMetrics().height() * 28);
}

QTableWidget* ImportDialog::make_table() {
    QList<QStringList> rows;
    bool named = false;
    for (std::size_t row = 0; row < preview_.rows.size(); ++row) {
        rows.append(import_cells(file_.candidates[row], preview_.rows[row], texts_));
        named = named || !file_.candidates[row].name.isEmpty();
    }
    QTableWidget* table = text_table("import_table", import_columns(), rows, texts_);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setColumnHidden(kImportNameColumn, !named);
    // What the file itself does not allow has no tick.
    for (int row = 0; row < table->rowCount(); ++row)
        if (file_.candidates[static_cast<std::size_t>(row)].problem == ImportProblem::none)
            table->item(row, kTickColumn)->setCheckState(Qt::Checked);
    table->resizeColumnToContents(kTickColumn);
    connect(table, &QTableWidget::itemChanged, this, &ImportDialog::tick);
    return table;
}

/// In two rows: one would be wider than a small screen.
QLayout* ImportDialog::make_choices() {
    auto* rows = new QVBoxLayout;
    auto* keys = new QHBoxLayout;
    auto* numbers = new QHBoxLayout;
    add_tick_key(keys, "import_all", kTickAll, true);
    add_tick_key(keys, "import_none", kTickNone, false);
    monitored_ = choice_of(keys, "import_monitored", kMonitoredAll, kMonitoredTip);
    replace_ = choice_of(numbers, "import_replace", kReplace, kReplaceTip);
    logger_ = choice_of(numbers, "import_logger", kLoggerLines, kLoggerLinesTip);
    for (QHBoxLayout* row : {keys, numbers}) {
        row->addStretch();
        rows->addLayout(row);
    }
    return rows;
}

QCheckBox* ImportDialog::choice_of(QLayout* row, const char* name, const Bilingual& caption,
                                   const Bilingual& tip) {
    auto* choice = new QCheckBox(texts_.pick(caption));
    choice->setObjectName(QLatin1String(name));
    choice->setToolTip(texts_.pick(tip));
    row->addWidget(choice);
    connect(choice, &QCheckBox::toggled, this, &ImportDialog::look_again);
    return choice;
}

ImportChoices ImportDialog::choices() const {
    return {replace_->isChecked() ? TakenNumbers::replace : TakenNumbers::leave_out,
            logger_->isChecked(), monitored_->isChecked()};
}

void ImportDialog::add_tick_key(QLayout* row, const char* name, const Bilingual& caption,
                                bool wanted) {
    auto* key = new QPushButton(texts_.pick(caption));
    key->setObjectName(QLatin1String(name));
    key->setAutoDefault(false);
    key->setToolTip(texts_.pick(kTickTip));
    connect(key, &QPushButton::clicked, this, [this, wanted] { tick_all(wanted); });
    row->addWidget(key);
}

void ImportDialog::tick(QTableWidgetItem* item) {
    if (item->column() != kTickColumn) return;
    const bool wanted = item->checkState() == Qt::Checked;
    file_.candidates[static_cast<std::size_t>(item->row())].wanted = wanted;
    if (item->isSelected())
        for (const QModelIndex& selected : table_->selectionModel()->selectedRows())
            file_.candidates[static_cast<std::size_t>(selected.row())].wanted = wanted;
    look_again();
}

void ImportDialog::tick_all(bool wanted) {
    for (ImportCandidate& candidate : file_.candidates) candidate.wanted = wanted;
    look_again();
}

/// What one row leaves free another one takes, so all of them are shown anew.
void ImportDialog::look_again() {
    preview_ = previewer_(file_.candidates, choices());
    const QSignalBlocker quiet(table_);
    for (int row = 0; row < table_->rowCount(); ++row) show_row(row);
    table_->viewport()->update();
    QString summary = import_summary(file_, preview_, texts_);
    if (logger_->isChecked()) summary += u'\n' + lines_summary(preview_, texts_);
    summary_->setText(summary);
    import_->setEnabled(preview_.added() > 0);
}

void ImportDialog::show_row(int row) {
    const auto index = static_cast<std::size_t>(row);
    const ImportCandidate& candidate = file_.candidates[index];
    const QStringList cells = import_cells(candidate, preview_.rows[index], texts_);
    for (int column = 0; column < cells.size(); ++column) {
        table_->item(row, column)->setText(cells[column]);
        table_->item(row, column)->setToolTip(plain_tooltip(cells[column]));
    }
    if (candidate.problem == ImportProblem::none)
        table_->item(row, kTickColumn)->setCheckState(state_of(candidate.wanted));
}

}  // namespace m47::plans
