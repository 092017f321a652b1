// SPDX-License-Identifier: GPL-3.0-or-later
#include "realtime.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QScrollBar>

#include "busy_input.h"
#include "commands.h"
#include "control_array.h"
#include "corrected_actions.h"
#include "diseqc_folding.h"
#include "enter_key.h"
#include "file_question.h"
#include "handler.h"
#include "icons.h"
#include "key_filter.h"
#include "measures.h"
#include "numbers.h"
#include "panel_binding.h"
#include "panel_limits.h"
#include "peak_dialog.h"
#include "realtime_layout.h"
#include "realtime_tooltips.h"
#include "report_file.h"
#include "report_form.h"
#include "tables.h"
#include "text_printer.h"
#include "trend_view.h"
#include "twips.h"
#include "ui_realtime.h"
#include "verdict_delegate.h"
#include "waits.h"

namespace m47::realtime {
namespace {

// A column was 750 twips wide; it grows with the font so that a date still fits at 200 %.
constexpr int kColumnTwips = 750;

constexpr Bilingual kPageTab{"Measurement page", "Pagina misure"};
constexpr Bilingual kTrendTab{"Trend", "Andamento"};
constexpr Bilingual kRecentEntry{"Recent lo&gs", "Lo&g recenti"};
constexpr Bilingual kNoRecent{"None", "Nessuno"};
constexpr Bilingual kLevelEntry{"Full-screen &level", "&Livello a tutto schermo"};
constexpr Bilingual kReportEntry{"&Report…", "&Rapporto…"};
constexpr Bilingual kReportNotSaved{"The report was not saved as '%1': %2",
                                    "Il rapporto non è stato salvato come '%1': %2"};
constexpr Bilingual kRunGoesOn{"A run is measuring: stop it first",
                               "Un ciclo sta misurando: prima fermarlo"};
constexpr Bilingual kNoMeterForPeak{"The meter is not connected: the dish cannot be turned.",
                                    "Lo strumento non è collegato: l'antenna non si può girare."};

constexpr Bilingual kNothingRuns{
    "There is nothing to stop: neither a pass nor a timed acquisition runs.",
    "Non c'è nulla da fermare: nessun giro né acquisizione a tempo in corso."};
constexpr Bilingual kTimerShown{
    "The timer stands on the screen already: its key begins the timed acquisition.",
    "Il timer è già sulla schermata: il suo tasto inizia l'acquisizione a tempo."};
constexpr Bilingual kPageIsEmpty{"The measurement page is empty already: a measurement fills it.",
                                 "La pagina misure è già vuota: la riempie una misura."};

constexpr std::chrono::milliseconds kBehindBox{200};
/// Without a pause the next exchange would begin before the keys pressed in the last one are seen.
constexpr std::chrono::milliseconds kForTheUser{10};

}  // namespace

Realtime::Realtime(std::unique_ptr<RealtimeRules> own_rules, QWidget* parent)
    : Screen(parent),
      own_rules_(std::move(own_rules)),
      rules(*own_rules_),
      acquisition(rules, {.interval = timer1_, .pass = timer2_, .clock = timer3_}, pass_news()),
      program_(rules.program),
      ui_(std::make_unique<Ui::Realtime>()),
      level_view_(new level::LevelView(
          program_.texts, [this] { return rules.link.port_connected; }, this)) {
    ui_->setupUi(this);
    tie_corrected(this, program_.corrected);
    join_panel();
    rules.cycle.on_log_written = [this](const QString& reason) { show_log_state(reason); };
    rules.cycle.on_doubt = [this](const QString& command) { Q_EMIT no_row(command); };
    ui_->cmdmenu->setToolTipsVisible(true);
    ui_->cmdrecent->setToolTipsVisible(true);
    connect_tuning();
    connect_diseqc();
    connect_lists();
    connect_limits();
    connect_menu();
    connect_timers();
    connect_level_view();
    fill_keys();
    take_toolbar(ui_->barracomandi);
    for (QAction* key : {ui_->satellite, ui_->terrestre, ui_->qam, ui_->ofdm})
        key->setIcon(toolbar_icon(key->objectName(), true));
    take_exit(ui_->cmdexit);
    guard_lists();
    for (QAction* action : {ui_->stop, ui_->cmdlevelview}) keep_while_busy(action);
    // Whoever is on the roof wants it now; it only shows what is measured.
    act_while_busy(ui_->cmdlevelview);
    act_while_busy(level_view_);
    prepare_page();
    new RealtimeLayout(*ui_, this);
    show_log_name();
    show_log_state(rules.log.reason());
    joints().show();
}

Realtime::~Realtime() {
    if (pointing_) pointing_->leave();
    rules.link.activity.set_run(std::nullopt);
}

void Realtime::join_panel() {
    // A cycle goes on while the user types.
    joints().follow(this);
    binding_ =
        std::make_unique<PanelBinding>(this, *ui_, rules.panel, program_.corrected, joints());
    binding_->join();
    joints().show();
}

void Realtime::handle(const char* name, const std::function<void()>& body) {
    Screen::handle(name, body);
    // Whoever wants to end a timed run must not have to wait for a pause in it.
    keep_while_busy(ui_->cmdstart, acquisition.timed());
    ui_->trend->limits_changed();
    level_view_->ended();
    tell_run();
}

void Realtime::tell_run() {
    auto run = acquisition.run();
    if (run) run->stop = [this, stop = run->stop] { handle("activity_stop_Click", stop); };
    rules.link.activity.set_run(run);
}

void Realtime::Form_Load() {
    fill_in();
    handle("Form_Load", [this] { rules.modes.Form_Load(); });
}

void Realtime::Form_Activate() {
    handle("Form_Activate", [this] { rules.modes.Form_Activate(); });
}

void Realtime::meter_came() {
    handle("cmdreconnect_Click", [this] { rules.modes.meter_came(); });
}

void Realtime::tune_to(const WantedCarrier& carrier) {
    handle("band_carrier_Click", [&] { rules.tuning.tune_to(carrier); });
}

void Realtime::find_peak_at(const WantedCarrier& carrier) {
    handle("identify_peak_Click", [&] {
        rules.tuning.tune_to(carrier);
        cmdpeak_Click();
    });
}

bool Realtime::has_motor() const {
    return ui_->diseqc->opened() == dish::DiseqcState::motor;
}

QString Realtime::plan_in_force() const {
    return rules.state.acq_kind == kPlan ? rules.panel.grp_name : QString();
}

void Realtime::add_entries(const QList<QAction*>& entries) {
    ui_->cmdmenu->insertActions(ui_->cmdlevelview, entries);
    ui_->cmdmenu->insertSeparator(ui_->cmdlevelview);
}

bool Realtime::told_that_run_goes_on() {
    const bool goes_on =
        acquisition.running() || acquisition.passing() || rules.state.plan_run_active;
    if (goes_on) program_.costs.tell_each(kRunGoesOn);
    return goes_on;
}

void Realtime::connect_tuning() {
    const auto on_enter = [this](QLineEdit* box, const char* name, void (Tuning::*handler)(int)) {
        when(box, &QLineEdit::returnPressed, name,
             [this, handler] { (rules.tuning.*handler)(kEnterKey); });
    };
    on_enter(ui_->fsat, "fsat_KeyPress", &Tuning::fsat_KeyPress);
    on_enter(ui_->ol_freq, "ol_freq_KeyPress", &Tuning::ol_freq_KeyPress);
    on_enter(ui_->srqpsk_txt, "srqpsk_txt_KeyPress", &Tuning::srqpsk_txt_KeyPress);
    on_enter(ui_->chbws, "chbws_KeyPress", &Tuning::chbws_KeyPress);
    const auto on_noise_enter = [this](QLineEdit* box, QString& frequency) {
        when(box, &QLineEdit::returnPressed, "noise_freq_KeyPress",
             [this, &frequency] { frequency = rules.tuning.noise_frequency(frequency); });
    };
    on_noise_enter(ui_->noise_freqa, rules.panel.noise_freqa);
    on_noise_enter(ui_->noise_freqd, rules.panel.noise_freqd);
    when(ui_->locopt_0, &QRadioButton::clicked, "locopt_Click",
         [this] { rules.tuning.locopt_Click(0); });
    when(ui_->locopt_1, &QRadioButton::clicked, "locopt_Click",
         [this] { rules.tuning.locopt_Click(1); });
}

void Realtime::connect_diseqc() {
    ui_->diseqc->connect_to(
        rules.diseqc,
        [this](const char* name, const std::function<void()>& body) { handle(name, body); });
    when(ui_->diseqc, &dish::DiseqcPanel::peak_asked, "cmdpeak_Click", [this] { cmdpeak_Click(); });
    new dish::DiseqcFolding(ui_->sat_opt, ui_->diseqc);
    QWidget* previous = ui_->k22_state;
    for (QWidget* control : ui_->diseqc->findChildren<QWidget*>()) {
        if (!(control->focusPolicy() & Qt::TabFocus)) continue;
        setTabOrder(previous, control);
        previous = control;
    }
}

void Realtime::connect_lists() {
    const auto on_pick = [this](QComboBox* list, const char* name, void (Tuning::*handler)(int)) {
        when(list, &QComboBox::activated, name,
             [this, handler](int index) { (rules.tuning.*handler)(index); });
    };
    on_pick(ui_->satlnb_state, "satlnb_state_Click", &Tuning::satlnb_state_Click);
    on_pick(ui_->k22_state, "k22_state_Click", &Tuning::k22_state_Click);
    on_pick(ui_->lnb_supply, "lnb_supply_Click", &Tuning::lnb_supply_Click);
    when(ui_->time_delay, &QComboBox::activated, "time_delay_Click",
         [this] { acquisition.time_delay_Click(); });
    new ListKeyFilter(ui_->satlnb_state);
    when(ui_->atten_list, &QComboBox::activated, "atten_list_Click", [this](int index) {
        rules.panel.atten_list =
            rules.tuning.list_Click(link::command::kAttenuator, index, ui_->atten_list->count());
    });
}

void Realtime::connect_limits() {
    for (const LimitBox& limit : limit_boxes()) {
        auto* box = findChild<QLineEdit*>(QString::fromLatin1(limit.control.name));
        new KeyFilter(box, QString::fromLatin1(limit.accepted));
        connect(box, &QLineEdit::textChanged, ui_->trend, &trend::TrendView::limits_changed);
    }
    for (const char* alarms : {"alarm_stated", "alarm_statea"}) {
        const ControlArray<QCheckBox> boxes(this, QString::fromLatin1(alarms));
        for (std::size_t k = 0; k < boxes.size(); ++k)
            connect(boxes[k], &QCheckBox::toggled, ui_->trend, &trend::TrendView::limits_changed);
    }
}

void Realtime::connect_menu() {
    const auto unit = [this](QAction* entry, int index) {
        when(entry, &QAction::triggered, "cmdlev_Click",
             [this, index] { rules.modes.cmdlev_Click(index); });
    };
    unit(ui_->cmdlev_0, 0);
    unit(ui_->cmdlev_1, 1);
    unit(ui_->cmdlev_2, 2);
    when(ui_->cmdcomplete, &QAction::toggled, "cmdcomplete_Click",
         [this] { rules.tuning.start_noise_boxes(); });
    on(ui_->cmdrecent, &QMenu::aboutToShow, this, "cmdrecent_Show", [this] { list_recent_logs(); });
    on(ui_->cmdrecent, &QMenu::triggered, this, "cmdrecent_Click",
       [this](QAction* entry) { cmdrecent_Click(entry->data().toString()); });
    on(ui_->cmdreport, &QAction::triggered, this, "cmdreport_Click", [this] { cmdreport_Click(); });
}

void Realtime::fill_keys() {
    // "satellite", "terrestre", "qam" and "ofdm" are shown and do nothing.
    const auto add = [this](const QAction* key, void (acquisition::Acquisition::*work)()) {
        add_key(key, [this, work] { (acquisition.*work)(); });
    };
    add(ui_->single, &acquisition::Acquisition::single);
    add(ui_->group, &acquisition::Acquisition::group);
    add(ui_->previous, &acquisition::Acquisition::previous);
    add(ui_->next, &acquisition::Acquisition::next);
    add(ui_->previous_prog, &acquisition::Acquisition::previous_prog);
    add(ui_->next_prog, &acquisition::Acquisition::next_prog);
    add(ui_->single_acq, &acquisition::Acquisition::single_acq);
    add(ui_->multiple_acq, &acquisition::Acquisition::multiple_acq);
    add_key(ui_->start, [this] {
        if (rules.panel.timer_opt_visible) program_.costs.tell_each(kTimerShown);
        acquisition.start();
        // Its frame stands last, where a low window has to be scrolled to.
        for (QScrollArea* area : {ui_->controls_area, ui_->body})
            area->ensureWidgetVisible(ui_->timer_opt);
    });
    add_key(ui_->stop, [this] {
        const bool on = rules.panel.timer_opt_visible || acquisition.running();
        if (!on && !rules.state.plan_run_active) program_.costs.tell_each(kNothingRuns);
        acquisition.stop();
    });
    add_key(ui_->save, [this] { datamenagment(); });
    add_key(ui_->analogico, [this] { rules.modes.analogmode(); });
    add_key(ui_->qpsk, [this] { rules.modes.digitalmode(); });
    add_key(ui_->cancella, [this] {
        if (rules.page.measurements() == 0) program_.costs.tell_each(kPageIsEmpty);
        rules.page.clear();
    });
    add_key(ui_->stampa, [this] { createdoc(); });
}

void Realtime::connect_timers() {
    const auto drive = [this](acquisition::TimerTicker& ticker, const char* name,
                              void (acquisition::Acquisition::*tick)()) {
        when(&ticker.timer(), &QTimer::timeout, name, [this, tick] { (acquisition.*tick)(); });
    };
    drive(timer1_, "Timer1_Timer", &acquisition::Acquisition::Timer1_Timer);
    // A pass recalls and tunes before it measures: what is shown is no longer what is received.
    connect(&timer2_.timer(), &QTimer::timeout, level_view_, &level::LevelView::begins);
    drive(timer2_, "Timer2_Timer", &acquisition::Acquisition::Timer2_Timer);
    drive(timer3_, "Timer3_Timer", &acquisition::Acquisition::Timer3_Timer);
    when(ui_->cmdstart, &QPushButton::clicked, "cmdstart_Click",
         [this] { acquisition.cmdstart_Click(); });
}

void Realtime::cmdpeak_Click() {
    if (!rules.link.port_connected) return program_.costs.tell_each(kNoMeterForPeak);
    if (told_that_run_goes_on()) return;
    const QString frequency = rules.tuning.checked_frequency(rules.panel.fsat);
    peak::PeakDialog dialog({.link = rules.link,
                             .texts = program_.texts,
                             .tuning = {link::command::kFrequency + u' ' + frequency},
                             .number = static_cast<int>(link::typed_value(rules.panel.storesat)),
                             .store = [this](int number) { return store_position(number); }},
                            this);
    dialog.exec();
}

/// As its line in the panel does it, whose box shows the number afterwards.
bool Realtime::store_position(int number) {
    rules.panel.storesat = link::format_number(number, "00");
    rules.diseqc.dsqmtr_Click(dish::kStorePosition);
    return rules.link.port_connected && rules.link.last_answer() == QStringLiteral("OK");
}

acquisition::PassNews Realtime::pass_news() {
    return {.progress =
                [this](int place, int monitored) {
                    Q_EMIT progress(monitored > 0
                                        ? QStringLiteral("%1/%2").arg(place).arg(monitored)
                                        : QString());
                },
            .cut_short = [this](const QString& reason) { Q_EMIT cut_short(reason); },
            .left_out = [this](const QString& reason) { Q_EMIT left_out(reason); }};
}

void Realtime::connect_level_view() {
    rules.panel.on_repaint = [this] {
        joints().show();
        // A cycle blanks the results before it asks for new ones.
        const bool digital = rules.state.meas_mode == kDigitalMode;
        const QString& level = digital ? rules.panel.dcplev : rules.panel.leva;
        if (!level.isEmpty() && level.trimmed().isEmpty()) level_view_->begins();
    };
    connect(&rules.page, &measurement::PageModel::rowsInserted, this,
            [this](const QModelIndex&, int row) { show_row_as_level(row); });
    on(ui_->cmdlevelview, &QAction::triggered, this, "cmdlevelview_Click",
       [this] { level_view_->open(); });
    connect(level_view_, &level::LevelView::repeat_asked, this, &Realtime::repeat_level);
    next_level_.setSingleShot(true);
    on(&next_level_, &QTimer::timeout, this, "next_level_Timer", [this] { point_once(); });
}

void Realtime::repeat_level(bool on) {
    const bool run = acquisition.passing() || (rules.state.plan_run_active && !pointing_);
    level_view_->set_remark(on && run ? program_.texts.pick(kRunGoesOn) : QString());
    if (on == (pointing_ != nullptr) || (on && (run || !rules.link.port_connected))) return;
    // Timed firings wait meanwhile, as they do for a pass.
    rules.state.plan_run_active = on || acquisition.passing();
    if (pointing_) pointing_->leave();
    pointing_ = on ? std::make_unique<Pointing>(rules, level_view_->quantity()) : nullptr;
    level_view_->repeats(on);
    if (on) next_level_.start(0);
}

void Realtime::point_once() {
    if (!pointing_) return;
    // A box in front belongs to work that is not done yet.
    if (QApplication::activeModalWidget()) return next_level_.start(kBehindBox);
    if (acquisition.passing()) return repeat_level(false);
    rules.state.plan_run_active = true;
    try {
        const link::Waits ageing(rules.link, [this] { level_view_->grows_old(); });
        const std::optional<measurement::Measurement> level = pointing_->next();
        if (level) level_view_->measured(*level);
    } catch (...) {
        repeat_level(false);
        throw;
    }
    if (!rules.link.port_connected) return repeat_level(false);
    next_level_.start(kForTheUser);
}

void Realtime::show_row_as_level(int row) {
    level_view_->measured(rules.page.store().measurement(row));
}

void Realtime::prepare_page() {
    ui_->measgrid->setModel(&rules.page);
    ui_->measgrid->setItemDelegate(new VerdictDelegate(this));
    ui_->measgrid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    ui_->measgrid->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);
    const int fitting = fontMetrics().horizontalAdvance(QStringLiteral("00/00/00")) + 12;
    const int width = qMax(pixels_of(kColumnTwips), fitting);
    for (int column = 0; column < rules.page.columnCount(); ++column)
        ui_->measgrid->setColumnWidth(column, width);
    connect(&rules.page, &measurement::PageModel::rowsInserted, this, &Realtime::follow_page);
    ui_->trend->set_page(
        &rules.page,
        [this](measurement::Quantity quantity) {
            return trend_limits(quantity, rules.panel, rules.state, rules.steps.empty_limits());
        },
        program_);
}

void Realtime::fill_in() {
    set_tooltips(this, realtime_tooltips(), program_.texts);
    set_key_words(this, realtime_key_words(), program_.texts);
    set_tooltip(ui_->save, program_.texts.pick(kOpenFileTooltip));
    ui_->diseqc->set_captions(program_.texts);
    ui_->diseqc->add_diseqc_command();
    ui_->page_tabs->setTabText(0, program_.texts.pick(kPageTab));
    ui_->page_tabs->setTabText(1, program_.texts.pick(kTrendTab));
    ui_->trend->set_texts(program_.texts);
    ui_->cmdrecent->setTitle(program_.texts.pick(kRecentEntry));
    ui_->cmdlevelview->setText(program_.texts.pick(kLevelEntry));
    ui_->cmdreport->setText(program_.texts.pick(kReportEntry));
    // The keys have pictures alone: in the menu they are read, with their shortcuts.
    for (QAction* key :
         {ui_->single_acq, ui_->multiple_acq, ui_->stop, ui_->previous_prog, ui_->next_prog})
        key->setText(key->toolTip());
    file_name_tooltip_ = ui_->file_name->toolTip();
}

void Realtime::follow_page() {
    // The newest row stays in sight unless the user has scrolled back to look at older ones.
    const QScrollBar* bar = ui_->measgrid->verticalScrollBar();
    if (bar->value() >= bar->maximum() - 1) show_newest();
}

void Realtime::show_newest() {
    ui_->measgrid->scrollToBottom();
}

QString Realtime::ask_log_name() {
    QFileDialog dialog(this);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilter(QStringLiteral("(*.log)"));
    dialog.setDefaultSuffix(QStringLiteral("log"));
    // One log a day: an existing one is gone on with.
    dialog.selectFile(proposed_name(QStringLiteral("measures"), QStringLiteral("log")));
    return ask_for_file(dialog, program_, FilePurpose::log);
}

void Realtime::datamenagment() {
    if (rules.log.log_open()) {
        set_tooltip(ui_->save, program_.texts.pick(kOpenFileTooltip));
        rules.log.close();
    } else {
        set_tooltip(ui_->save, program_.texts.pick(kCloseFileTooltip));
        const QString name = ask_log_name();
        if (!name.isEmpty()) open_log(name);
    }
    show_log_name();
}

void Realtime::open_log(const QString& file) {
    rules.log.open(file, rules.page);
    program_.preferences.log_opened(file);
    show_log_name();
    show_log_state(rules.log.reason());
    show_newest();
}

void Realtime::list_recent_logs() {
    ui_->cmdrecent->clear();
    for (const QString& path : program_.preferences.recent_logs()) {
        QAction* entry = ui_->cmdrecent->addAction(
            QFileInfo(path).fileName().replace(u'&', QStringLiteral("&&")));
        entry->setData(path);
        entry->setToolTip(plain_tooltip(path));
    }
    if (ui_->cmdrecent->isEmpty())
        ui_->cmdrecent->addAction(program_.texts.pick(kNoRecent))->setEnabled(false);
}

void Realtime::cmdrecent_Click(const QString& path) {
    set_tooltip(ui_->save, program_.texts.pick(kCloseFileTooltip));
    open_log(path);
}

void Realtime::show_log_name() {
    ui_->file_name->setText(rules.log.log_open() ? rules.log.path() : QString());
    ui_->file_label->setVisible(rules.log.log_open());
    ui_->file_name->setVisible(rules.log.log_open());
}

void Realtime::show_log_state(const QString& reason) {
    // A full disk must be seen, though no box may stop a run that nobody watches.
    QPalette colours = palette();
    if (!reason.isEmpty()) colours.setColor(QPalette::WindowText, QColor::fromRgb(kRed));
    ui_->file_name->setPalette(colours);
    ui_->file_name->setToolTip(reason.isEmpty() ? file_name_tooltip_ : plain_tooltip(reason));
}

void Realtime::createdoc() {
    print_text(this, windowTitle(),
               simulated_mark(program_) + measurement::print_lines(rules.page).join(u'\n'),
               program_.texts);
}

void Realtime::cmdreport_Click() {
    report::ReportForm form(program_, this);
    if (form.exec() == QDialog::Accepted) write_report(form.path(), form.entry());
}

QList<report::ReportLimits> Realtime::limits_in_force() {
    if (rules.state.acq_kind != kPlan || !rules.modes.rs_programs)
        return {limits_of_panel(rules.panel, rules.state, rules.steps.empty_limits())};
    // A set of its own: a pass may be going through the plan's.
    db::Recordset programs =
        rules.database.of_plan(QLatin1String(db::table::kProgrammi), rules.panel.grp_name);
    return limits_of_plan(programs, rules.panel, rules.steps.empty_limits());
}

void Realtime::write_report(const QString& file, const report::ReportEntry& entry) {
    const report::ReportContext context{.entry = entry,
                                        .meter = meter_of_report(),
                                        .made = QDateTime::currentDateTime(),
                                        .plan = plan_in_force(),
                                        .limits = limits_in_force()};
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const QString reason = report::save_report(
        file, rules.page.store(), context,
        [this](measurement::Quantity quantity) {
            return trend_limits(quantity, rules.panel, rules.state, rules.steps.empty_limits());
        },
        program_.texts);
    QApplication::restoreOverrideCursor();
    if (!reason.isEmpty())
        report_fault(this, program_.texts.pick(kReportNotSaved).arg(file, reason));
    else
        program_.saved(file);
}

}  // namespace m47::realtime
