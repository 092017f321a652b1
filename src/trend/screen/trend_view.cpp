// SPDX-License-Identifier: GPL-3.0-or-later
#include "trend_view.h"

#include <QFileDialog>
#include <QToolBar>
#include <QVBoxLayout>

#include "file_question.h"
#include "handler.h"
#include "tooltips.h"
#include "trend_files.h"

namespace m47::trend {
namespace {

struct Caption {
    const char* control;
    Bilingual text;
};

constexpr Caption kCaptions[] = {
    {"trend_level", {"Level", "Livello"}},
    {"trend_ber", {"BER", "BER"}},
    {"trend_mer", {"MER", "MER"}},
    {"trend_follow", {"Follow", "Segui"}},
    {"trend_reset", {"Reset zoom", "Tutto"}},
    {"trend_save", {"Save…", "Salva…"}},
};
constexpr Bilingual kAllPrograms{"All programs", "Tutti i programmi"};
constexpr Bilingual kNothing{"No measurement on the page.", "Nessuna misura sulla pagina."};
constexpr Bilingual kNotLoaded{"No trend: %1 is missing or damaged.",
                               "Nessun andamento: %1 manca o è danneggiato."};
constexpr Bilingual kSaveTitle{"Save the trend", "Salva l'andamento"};
constexpr Bilingual kNotSaved{"The trend was not saved as '%1': %2",
                              "L'andamento non è stato salvato come '%1': %2"};

constexpr Tooltip kTooltips[] = {
    {"trend_program", "Program shown (plan and number, frequency / oscillator)",
     "Programma mostrato (piano e numero, frequenza / oscillatore)"},
    {"trend_first", "There is no room for all charts: which is shown",
     "Non c'è posto per tutti i grafici: quale si vede"},
    {"trend_level", "Show the level", "Mostra il livello"},
    {"trend_ber", "Show the bit error rate", "Mostra il BER"},
    {"trend_mer", "Show the MER", "Mostra il MER"},
    {"trend_follow", "Go along with the newest measurement", "Segui l'ultima misura"},
    {"trend_reset",
     "Show all measurements. Wheel or drag: time; with Ctrl: values; keys: arrows, +, -, Home",
     "Mostra tutte le misure. Rotella o trascinamento: tempo; con Ctrl: valori; tasti: frecce, +, "
     "-, Home"},
    {"trend_save", "Save as picture (PNG), page (PDF) or table (TSV)",
     "Salva come immagine (PNG), pagina (PDF) o tabella (TSV)"},
};

}  // namespace

TrendView::TrendView(QWidget* parent)
    : QWidget(parent),
      programs_(new QComboBox),
      first_(new QComboBox),
      pages_(new QStackedWidget),
      nothing_(new QLabel) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    make_bar();
    nothing_->setAlignment(Qt::AlignCenter);
    nothing_->setObjectName(QStringLiteral("trend_nothing"));
    pages_->addWidget(nothing_);
    pages_->setMinimumHeight(height_of_charts(1, fontMetrics().height()));
    layout->addWidget(pages_, 1);
    set_texts(texts_);
}

TrendView::~TrendView() = default;

QAction* TrendView::add_action(const char* name) {
    auto* action = new QAction(this);
    action->setObjectName(QLatin1String(name));
    findChild<QToolBar*>()->addAction(action);
    return action;
}

QAction* TrendView::add_toggle(const char* name) {
    QAction* action = add_action(name);
    action->setCheckable(true);
    action->setChecked(true);
    return action;
}

QAction* TrendView::add_list(QComboBox* list) {
    list->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    // A low bar puts keys away rather than cut a list.
    list->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    return findChild<QToolBar*>()->addWidget(list);
}

void TrendView::make_bar() {
    auto* bar = new QToolBar(this);
    bar->setObjectName(QStringLiteral("trend_bar"));
    bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    layout()->addWidget(bar);
    programs_->setObjectName(QStringLiteral("trend_program"));
    first_->setObjectName(QStringLiteral("trend_first"));
    add_list(programs_);
    bar->addSeparator();
    quantities_ = {add_toggle("trend_level"), add_toggle("trend_ber"), add_toggle("trend_mer")};
    first_shown_ = add_list(first_);
    first_shown_->setVisible(false);
    bar->addSeparator();
    follow_ = add_toggle("trend_follow");
    reset_ = add_action("trend_reset");
    save_ = add_action("trend_save");
    on(programs_, &QComboBox::activated, this, "trend_program_Click", [this] { choose(); });
    on(first_, &QComboBox::activated, this, "trend_first_Click", [this] { choose(); });
    for (QAction* quantity : quantities_)
        on(quantity, &QAction::triggered, this, "trend_quantity_Click", [this] { choose(); });
    on(follow_, &QAction::triggered, this, "trend_follow_Click", [this] {
        if (plot_) plot_->set_follows(follow_->isChecked());
    });
    on(reset_, &QAction::triggered, this, "trend_reset_Click", [this] {
        if (plot_) plot_->reset_zoom();
    });
    on(save_, &QAction::triggered, this, "trend_save_Click", [this] { ask_and_save(); });
}

void TrendView::set_texts(const Texts& texts) {
    texts_ = texts;
    for (const Caption& caption : kCaptions)
        findChild<QAction*>(QLatin1String(caption.control))->setText(texts_.pick(caption.text));
    set_tooltips(this, kTooltips, texts_);
    nothing_->setText(part_.fault().isEmpty() ? texts_.pick(kNothing)
                                              : texts_.pick(kNotLoaded).arg(part_.fault()));
    list_programs();
    if (!plot_) return;
    plot_->name_panels();
    choose();
}

void TrendView::set_page(const measurement::PageModel* page, TrendLimits limits,
                         const ProgramState& program) {
    program_ = &program;
    page_ = page;
    limits_ = std::move(limits);
    connect(page, &measurement::PageModel::rowsInserted, this, [this] {
        if (plot_ && isVisible()) catch_up();
    });
    connect(page, &measurement::PageModel::modelReset, this, &TrendView::page_replaced);
}

void TrendView::page_replaced() {
    data_.clear();
    replaced_ = true;
    if (plot_ && isVisible()) catch_up();
}

void TrendView::make_plot() {
    auto* const charts = part_.offer<TrendCharts>();
    if (!charts) return nothing_->setText(texts_.pick(kNotLoaded).arg(part_.fault()));
    plot_ = charts->make(data_, limits_, texts_);
    plot_->on_moved = [this] { follow_->setChecked(plot_->follows()); };
    plot_->set_follows(follow_->isChecked());
    pages_->addWidget(plot_->widget());
    choose();
}

void TrendView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!page_) return;
    if (!plot_) make_plot();
    if (plot_) catch_up();
}

void TrendView::catch_up() {
    const std::size_t known = data_.series().size();
    data_.update(page_->store());
    if (replaced_ || data_.series().size() != known) list_programs();
    if (replaced_) {
        choose();
        plot_->rows_replaced();
    } else {
        plot_->rows_came();
    }
    replaced_ = false;
    // Without a curve the page says that there is none.
    for (QAction* key : {reset_, save_}) key->setEnabled(!data_.empty());
    pages_->setCurrentWidget(data_.empty() ? static_cast<QWidget*>(nothing_) : plot_->widget());
}

void TrendView::list_programs() {
    const auto& series = data_.series();
    const auto wanted = static_cast<int>(series.size()) + 1;
    if (programs_->count() > wanted) programs_->clear();
    if (programs_->count() == 0) programs_->addItem(QString());
    programs_->setItemText(0, texts_.pick(kAllPrograms));
    if (replaced_)
        for (int k = 1; k < programs_->count(); ++k)
            programs_->setItemText(k, series[static_cast<std::size_t>(k) - 1]->name());
    while (programs_->count() < wanted)
        programs_->addItem(series[static_cast<std::size_t>(programs_->count()) - 1]->name());
    if (replaced_) programs_->setCurrentIndex(0);
}

TrendChoice TrendView::ticked() const {
    TrendChoice choice;
    choice.program = programs_->currentIndex() - 1;
    for (std::size_t k = 0; k < quantities_.size(); ++k)
        choice.quantities[k] = quantities_[k]->isChecked();
    return choice;
}

/// Of the charts that are ticked those for which there is room, from the one in the list on.
void TrendView::choose() {
    if (!plot_) return;
    TrendChoice choice = ticked();
    std::vector<std::size_t> charts;
    for (std::size_t k = 0; k < quantities_.size(); ++k)
        if (choice.quantities[k]) charts.push_back(k);
    std::size_t room = charts.size();
    while (room > 1 && height_of_charts(room, fontMetrics().height()) > pages_->height()) --room;
    list_charts(charts, room < charts.size());
    if (room < charts.size()) {
        choice.quantities.fill(false);
        const auto first = static_cast<std::size_t>(qMax(0, first_->currentIndex()));
        for (std::size_t k = 0; k < room; ++k)
            choice.quantities[charts[(first + k) % charts.size()]] = true;
    }
    plot_->choose(choice);
}

void TrendView::list_charts(const std::vector<std::size_t>& charts, bool needed) {
    QStringList names;
    for (const std::size_t chart : charts) names += quantities_[chart]->text();
    QStringList listed;
    for (int k = 0; k < first_->count(); ++k) listed += first_->itemText(k);
    if (names != listed) {
        first_->clear();
        first_->addItems(names);
    }
    first_shown_->setVisible(needed);
}

void TrendView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    layout()->activate();
    choose();
}

void TrendView::limits_changed() {
    if (plot_ && isVisible()) plot_->limits_changed();
}

void TrendView::ask_and_save() {
    QFileDialog dialog(this, texts_.pick(kSaveTitle));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    QStringList filters;
    for (const char* suffix : kTrendSuffixes)
        filters << QStringLiteral("%1 (*.%2)")
                       .arg(QString::fromLatin1(suffix).toUpper(), QLatin1String(suffix));
    dialog.setNameFilters(filters);
    const auto take_suffix = [&dialog, &filters](const QString& filter) {
        const auto place = static_cast<std::size_t>(filters.indexOf(filter));
        dialog.setDefaultSuffix(QLatin1String(kTrendSuffixes[place]));
    };
    take_suffix(filters.constFirst());
    // The suffix follows the chosen kind of file.
    dialog.selectFile(proposed_name(QStringLiteral("trend"), QString()));
    connect(&dialog, &QFileDialog::filterSelected, this, take_suffix);
    const QString path = ask_for_file(dialog, *program_, FilePurpose::trend);
    if (!path.isEmpty()) save(path);
}

void TrendView::save(const QString& path) {
    if (!plot_) return;
    std::vector<const TrendSeries*> shown;
    const int program = programs_->currentIndex() - 1;
    for (std::size_t k = 0; k < data_.series().size(); ++k)
        if (program < 0 || static_cast<int>(k) == program) shown.push_back(data_.series()[k].get());
    // A file has room for all charts.
    plot_->choose(ticked());
    const QString reason = save_trend(path, *plot_, shown);
    choose();
    if (reason.isEmpty() && program_) program_->saved(path);
    if (!reason.isEmpty()) report_fault(this, texts_.pick(kNotSaved).arg(path, reason));
}

}  // namespace m47::trend
