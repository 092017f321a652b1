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
    : QWidget(parent), programs_(new QComboBox), pages_(new QStackedWidget), nothing_(new QLabel) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    make_bar();
    nothing_->setAlignment(Qt::AlignCenter);
    nothing_->setObjectName(QStringLiteral("trend_nothing"));
    pages_->addWidget(nothing_);
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

void TrendView::make_bar() {
    auto* bar = new QToolBar(this);
    bar->setObjectName(QStringLiteral("trend_bar"));
    bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    layout()->addWidget(bar);
    programs_->setObjectName(QStringLiteral("trend_program"));
    programs_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    bar->addWidget(programs_);
    bar->addSeparator();
    quantities_ = {add_toggle("trend_level"), add_toggle("trend_ber"), add_toggle("trend_mer")};
    bar->addSeparator();
    follow_ = add_toggle("trend_follow");
    reset_ = add_action("trend_reset");
    save_ = add_action("trend_save");
    on(programs_, &QComboBox::activated, this, "trend_program_Click", [this] { choose(); });
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
    texts_.language = texts.language;
    for (const Caption& caption : kCaptions)
        findChild<QAction*>(QLatin1String(caption.control))->setText(texts_.pick(caption.text));
    set_tooltips(this, kTooltips, texts_);
    nothing_->setText(part_.fault().isEmpty() ? texts_.pick(kNothing)
                                              : texts_.pick(kNotLoaded).arg(part_.fault()));
    list_programs();
    if (plot_) plot_->name_panels();
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
    save_->setEnabled(!data_.empty());
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

void TrendView::choose() {
    if (!plot_) return;
    TrendChoice choice;
    choice.program = programs_->currentIndex() - 1;
    for (std::size_t k = 0; k < quantities_.size(); ++k)
        choice.quantities[k] = quantities_[k]->isChecked();
    plot_->choose(choice);
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
    connect(&dialog, &QFileDialog::filterSelected, this, take_suffix);
    const QString path = ask_for_file(dialog, *program_);
    if (!path.isEmpty()) save(path);
}

void TrendView::save(const QString& path) {
    if (!plot_) return;
    std::vector<const TrendSeries*> shown;
    const int program = programs_->currentIndex() - 1;
    for (std::size_t k = 0; k < data_.series().size(); ++k)
        if (program < 0 || static_cast<int>(k) == program) shown.push_back(data_.series()[k].get());
    const QString reason = save_trend(path, *plot_, shown);
    if (!reason.isEmpty()) report_fault(this, texts_.pick(kNotSaved).arg(path, reason));
}

}  // namespace m47::trend
