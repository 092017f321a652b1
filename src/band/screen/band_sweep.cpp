// SPDX-License-Identifier: GPL-3.0-or-later
#include "band_sweep.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QSignalBlocker>

#include "band_files.h"
#include "band_tooltips.h"
#include "box_room.h"
#include "busy_input.h"
#include "fault.h"
#include "file_question.h"
#include "handler.h"
#include "message_box.h"
#include "numbers.h"
#include "plain_file.h"
#include "ui_band_sweep.h"
#include "waits.h"

namespace m47::band {
namespace {

/// The size at which the screen opens, in characters and in lines.
constexpr int kScreenColumns = 150;
constexpr int kScreenLines = 34;

constexpr Bilingual kNoSweep{"No sweep is running.", "Nessuna scansione in corso."};
constexpr Bilingual kStillSweeping{"Stop the sweep first, then choose a carrier.",
                                   "Fermare prima la scansione, poi scegliere una portante."};
constexpr Bilingual kNothingToClear{"There is nothing to clear: nothing was swept yet.",
                                    "Non c'è nulla da svuotare: nessuna scansione finora."};
constexpr Bilingual kNothingToKeep{"There is nothing to keep: sweep the band first.",
                                   "Non c'è nulla da tenere: fare prima una scansione."};
constexpr Bilingual kNothingToSave{"There is nothing to save: sweep the band first.",
                                   "Non c'è nulla da salvare: fare prima una scansione."};
constexpr Bilingual kNoCarriers{"There are no carriers to make programs of: sweep the band first.",
                                "Non ci sono portanti di cui fare programmi: fare prima una "
                                "scansione."};
constexpr Bilingual kAllShown{"The chart shows all already.", "Il grafico mostra già tutto."};
constexpr Bilingual kNamesNeedSky{
    "Names need the sky: choose the axis RF and the oscillators of the LNB.",
    "I nomi richiedono il cielo: scegliere l'asse RF e gli oscillatori dell'LNB."};
constexpr Bilingual kKept{"The last pass is the reference now.",
                          "L'ultimo passaggio è ora il riferimento."};
constexpr Bilingual kReferenceRead{"Levels read as the reference: %1.",
                                   "Livelli letti come riferimento: %1."};
constexpr Bilingual kNoLevelThere{"%1 has no level: the reference is as it was.",
                                  "%1 non contiene livelli: il riferimento resta com'era."};
constexpr Bilingual kOtherUnit{
    "The reference is of another unit or LNB state than the sweep: they cannot be compared.",
    "Il riferimento è di un'altra unità o stato LNB: non si può confrontare."};
constexpr Bilingual kTransponders{"Transponders in the table %2: %1.",
                                  "Transponder nella tabella %2: %1."};
constexpr Bilingual kNoTransponder{"The table %1 lists no transponder.",
                                   "La tabella %1 non elenca transponder."};
constexpr Bilingual kNotRead{"%1 cannot be read: %2", "%1 non può essere letto: %2"};
constexpr Bilingual kTooLong{"it is too long", "è troppo lungo"};
constexpr Bilingual kNotPlain{"it is no plain file", "non è un file normale"};
constexpr Bilingual kNotSaved{"The sweep was not saved as '%1': %2",
                              "La scansione non è stata salvata come '%1': %2"};
constexpr Bilingual kSaveTitle{"Save the sweep", "Salva la scansione"};
constexpr Bilingual kLoadTitle{"Load a reference", "Apri un riferimento"};
constexpr Bilingual kScanTitle{"Open a scan table", "Apri una tabella di scansione"};
constexpr Bilingual kAnyFile{"All files (*)", "Tutti i file (*)"};

/// More pictures in a second nobody sees; and drawing takes one part of the time in so many at
/// most, however slow it is.
constexpr qint64 kShowEvery = 150;
constexpr qint64 kDrawingShare = 50;

/// The bytes of `path`; throws what the user is told where there are none.
QByteArray read_table(const QString& path, const Texts& texts) {
    const platform::FileReading reading = platform::read_plain_file(path, kLongestTableFile);
    QString reason = reading.reason;
    if (reading.fault == platform::FileFault::too_long) reason = texts.pick(kTooLong);
    if (reading.fault == platform::FileFault::not_plain) reason = texts.pick(kNotPlain);
    if (reading.fault == platform::FileFault::none) return reading.bytes;
    throw Fault(Said{kNotRead, {QFileInfo(path).fileName(), reason}}.in(texts).toStdString());
}

}  // namespace

BandSweep::BandSweep(link::Link& link, ProgramState& program, BandDesk& desk, QWidget* parent)
    : Screen(parent),
      link_(link),
      program_(program),
      ui_(std::make_unique<Ui::BandSweep>()),
      boxes_(desk.boxes),
      store_(desk.store),
      listed_(desk.listed) {
    ui_->setupUi(this);
    fill_lists(*ui_, program_.texts);
    fit_span(boxes_);
    join_boxes();
    connect_keys();
    connect_looks();
    connect_chart();
    for (QLineEdit* box : {ui_->band_from, ui_->band_to, ui_->band_low, ui_->band_high})
        fit_to_text(*box, QStringLiteral("10000.00"));
    take_exit(ui_->cmdexit);
    guard_lists();
}

BandSweep::~BandSweep() = default;

QSize BandSweep::sizeHint() const {
    return {fontMetrics().averageCharWidth() * kScreenColumns,
            fontMetrics().height() * kScreenLines};
}

void BandSweep::Form_Load() {
    set_captions(this, band_captions(), program_.texts);
    set_tooltips(this, band_tooltips(), program_.texts);
    fill_lists(*ui_, program_.texts);
    list_states(store_.latest());
    find_all_carriers();
    show_band();
}

void BandSweep::join_boxes() {
    joints().follow(this);
    joints().text(ui_->band_from, boxes_.from);
    joints().text(ui_->band_to, boxes_.to);
    joints().text(ui_->band_low, boxes_.low);
    joints().text(ui_->band_high, boxes_.high);
    joints().entry(ui_->band_feed, boxes_.feed, 0);
    joints().entry(ui_->band_axis, boxes_.axis, 0);
    joints().entry(ui_->band_step, boxes_.step, 0);
    joints().ticked(ui_->band_whole, boxes_.whole);
    joints().ticked(ui_->band_repeat, boxes_.repeats);
    joints().ticked(ui_->band_live, boxes_.trace(Trace::live));
    joints().ticked(ui_->band_hold, boxes_.trace(Trace::max_hold));
    joints().ticked(ui_->band_average, boxes_.trace(Trace::average));
    joints().ticked(ui_->band_reference, boxes_.trace(Trace::reference));
    joints().ticked(ui_->band_difference, boxes_.trace(Trace::difference));
    joints().enabled(ui_->band_from, boxes_.part);
    joints().enabled(ui_->band_to, boxes_.part);
    joints().show();
}

void BandSweep::connect_keys() {
    const auto click = [this](QPushButton* key, const char* name, void (BandSweep::*work)()) {
        when(key, &QPushButton::clicked, name, [this, work] { (this->*work)(); });
    };
    click(ui_->band_start, "band_start_Click", &BandSweep::band_start_Click);
    click(ui_->band_clear, "band_clear_Click", &BandSweep::band_clear_Click);
    click(ui_->band_keep, "band_keep_Click", &BandSweep::band_keep_Click);
    click(ui_->band_save, "band_save_Click", &BandSweep::band_save_Click);
    click(ui_->band_programs, "band_programs_Click", &BandSweep::band_programs_Click);
    when(ui_->band_load, &QPushButton::clicked, "band_load_Click", [this] {
        const QString path = ask_file(FilePurpose::sweep, [this](QFileDialog& dialog) {
            dialog.setWindowTitle(program_.texts.pick(kLoadTitle));
            dialog.setNameFilters({QStringLiteral("TSV (*.tsv)"), program_.texts.pick(kAnyFile)});
        });
        if (!path.isEmpty()) load_reference(path);
    });
    when(ui_->band_scan, &QPushButton::clicked, "band_scan_Click", [this] {
        const QString path = ask_file(FilePurpose::scan_table, [this](QFileDialog& dialog) {
            dialog.setWindowTitle(program_.texts.pick(kScanTitle));
            dialog.setNameFilter(program_.texts.pick(kAnyFile));
        });
        if (!path.isEmpty()) load_scan_table(path);
    });
    // It comes in the middle of an exchange too, when another handler runs.
    connect(ui_->band_stop, &QPushButton::clicked, this, &BandSweep::band_stop_Click);
    connect(ui_->cmdbandstop, &QAction::triggered, ui_->band_stop, &QPushButton::click);
    connect(ui_->cmdbandstart, &QAction::triggered, ui_->band_start, &QPushButton::click);
    act_while_busy(ui_->band_stop);
    act_while_busy(ui_->cmdbandstop);
    act_while_busy(ui_->band_repeat);
}

void BandSweep::connect_looks() {
    for (QCheckBox* look : {ui_->band_live, ui_->band_hold, ui_->band_average, ui_->band_reference,
                            ui_->band_difference}) {
        act_while_busy(look);
        when(look, &QCheckBox::clicked, "band_look_Click", [this] { show_band(); });
    }
    when(ui_->band_shown, &QComboBox::activated, "band_shown_Click", [this] {
        look_.markers = {};
        show_band();
    });
    when(ui_->band_feed, &QComboBox::activated, "band_choice_Click", [this] { axis_changed(); });
    when(ui_->band_axis, &QComboBox::activated, "band_choice_Click", [this] {
        if (look_.in_the_sky != (boxes_.axis == 1)) turn_span(boxes_);
        axis_changed();
    });
    when(ui_->band_whole, &QCheckBox::clicked, "band_whole_Click", [this] { fit_span(boxes_); });
    for (QLineEdit* box : {ui_->band_low, ui_->band_high})
        when(box, &QLineEdit::editingFinished, "band_oscillator_KeyPress",
             [this] { axis_changed(); });
    when(ui_->band_zoom, &QPushButton::clicked, "band_zoom_Click", [this] {
        BandChart* chart = ui_->band_chart->chart(program_.texts);
        if (!chart || !chart->reset_zoom()) program_.costs.tell_each(kAllShown);
    });
}

void BandSweep::connect_chart() {
    connect(ui_->band_chart, &BandChartView::place_clicked, this, &BandSweep::mark);
    connect(ui_->band_chart, &BandChartView::marker_moved, this, &BandSweep::move_marker);
    connect(ui_->band_chart, &BandChartView::flag_clicked, this, [this](std::size_t flag) {
        // The chart is used while it grows, but nothing can be sent then.
        if (link_.activity.working()) return program_.costs.tell_each(kStillSweeping);
        handle("band_flag_Click", [this, flag] { choose_flag(flag); });
    });
    when(ui_->band_carriers, &CarrierTable::chosen, "band_carriers_Click",
         [this](int row) { choose_carrier(static_cast<std::size_t>(row)); });
}

void BandSweep::axis_changed() {
    fit_span(boxes_);
    find_all_carriers();
    show_band();
}

void BandSweep::band_start_Click() {
    if (const Bilingual* fault = fault_of(boxes_)) return tell_result(program_.texts.pick(*fault));
    BandRun run(link_, passes_of(choice_of(boxes_)));
    run.repeats = [this] { return boxes_.repeats; };
    follow(run);
    tell_result(QString());
    BandEnd end;
    {
        const link::Waits waits(link_, [this] { show_while_waiting(); });
        end = run.run();
    }
    find_all_carriers();
    show_band();
    tell_result(end_text(end, carriers_.size(), program_.texts));
    if (end.stopped) throw Interrupted();
}

void BandSweep::follow(BandRun& run) {
    run.on_pass = [this](const BandPass& pass, std::optional<LevelUnit> unit) {
        pass_begins(pass, unit);
    };
    run.on_level = [this](const Sample& sample) {
        store_.take(sample);
        grown_ = true;
    };
    run.on_mixed = [this] {
        store_.drop_pass();
        look_.markers = {};
        grown_ = true;
    };
    run.on_passed = [this] { find_all_carriers(); };
}

void BandSweep::pass_begins(const BandPass& pass, std::optional<LevelUnit> unit) {
    store_.begin_pass(pass.feed, unit);
    list_states(store_.latest());
    grown_ = true;
}

void BandSweep::band_stop_Click() {
    if (!link_.activity.working()) program_.costs.tell_each(kNoSweep);
    link_.activity.stop();
}

void BandSweep::band_clear_Click() {
    if (store_.empty()) return program_.costs.tell_each(kNothingToClear);
    store_.clear();
    look_.markers = {};
    list_states(0);
    find_all_carriers();
    tell_result(QString());
    show_band();
}

void BandSweep::band_keep_Click() {
    if (store_.empty()) return program_.costs.tell_each(kNothingToKeep);
    store_.keep_as_reference();
    tell_result(program_.texts.pick(kKept));
    show_band();
}

void BandSweep::band_programs_Click() {
    if (carriers_.empty()) return program_.costs.tell_each(kNoCarriers);
    Q_EMIT programs_wanted(carrier_programs(carriers_, unit_offset(program_.unit_index)));
}

void BandSweep::choose_carrier(std::size_t place) {
    if (place < carriers_.size()) Q_EMIT carrier_chosen(carriers_[place]);
}

void BandSweep::choose_flag(std::size_t flag) {
    const std::vector<FoundCarrier> shown = shown_carriers();
    if (flag < shown.size()) Q_EMIT carrier_chosen(shown[flag]);
}

void BandSweep::mark(double mhz, std::size_t marker) {
    const BandState* state = shown_state();
    if (!state) return;
    set_marker(marker, nearest_level(state->traces.live(), in_the_band(mhz, shown_terms())));
}

void BandSweep::move_marker(std::size_t marker, bool up) {
    const BandState* state = shown_state();
    if (!state || state->traces.live().empty()) return;
    const BandCurve& live = state->traces.live();
    const std::optional<double> here = look_.markers[marker];
    const SweepTerms terms = shown_terms();
    // An oscillator above the band turns it round.
    const bool turned = on_axis(1, terms) < on_axis(0, terms);
    set_marker(marker,
               here ? next_level(live, *here, up != turned) : live.samples()[live.size() / 2]);
}

void BandSweep::set_marker(std::size_t marker, const std::optional<Sample>& level) {
    look_.markers[marker] = level ? std::optional(level->mhz) : std::nullopt;
    show_band();
}

const BandState* BandSweep::shown_state() const {
    const auto place = static_cast<std::size_t>(qMax(0, ui_->band_shown->currentIndex()));
    return place < store_.states().size() ? &store_.states()[place] : nullptr;
}

SweepTerms BandSweep::shown_terms() const {
    const BandState* state = shown_state();
    return state ? terms_of(*state, choice_of(boxes_)) : SweepTerms();
}

std::vector<FoundCarrier> BandSweep::shown_carriers() const {
    std::vector<FoundCarrier> shown;
    const BandState* state = shown_state();
    for (const FoundCarrier& found : carriers_)
        if (state && found.terms.feed == state->feed) shown.push_back(found);
    return shown;
}

void BandSweep::list_states(std::size_t shown) {
    const QSignalBlocker quiet(ui_->band_shown);
    ui_->band_shown->clear();
    for (const BandState& state : store_.states())
        ui_->band_shown->addItem(feed_text(state.feed, program_.texts));
    ui_->band_shown->setCurrentIndex(static_cast<int>(shown));
}

void BandSweep::find_all_carriers() {
    carriers_.clear();
    for (const BandState& state : store_.states())
        for (const FoundCarrier& found :
             carriers_in(state, terms_of(state, choice_of(boxes_)), listed_))
            carriers_.push_back(found);
    ui_->band_carriers->show_carriers(carriers_, program_.texts);
}

void BandSweep::show_band() {
    grown_ = false;
    BandChart* chart = ui_->band_chart->chart(program_.texts);
    look_.in_the_sky = boxes_.axis == 1;
    look_.traces = boxes_.traces;
    const BandState* state = shown_state();
    const BandState none;
    const BandState& drawn = state ? *state : none;
    const SweepTerms terms = terms_of(drawn, choice_of(boxes_));
    BandPicture picture = picture_of(drawn, terms, look_, store_.reference_for(drawn),
                                     shown_carriers(), program_.texts);
    fit_axis(picture, link::typed_value(boxes_.from), link::typed_value(boxes_.to), drawn, terms);
    if (chart) chart->show_band(picture, link_.activity.working());
    ui_->band_marks->setText(markers_text(drawn, look_, terms));
}

void BandSweep::show_while_waiting() {
    if (!grown_ || (shown_at_.isValid() && !shown_at_.hasExpired(next_picture_))) return;
    shown_at_.start();
    show_band();
    next_picture_ = qMax(kShowEvery, kDrawingShare * shown_at_.elapsed());
}

void BandSweep::tell_result(const QString& text) {
    ui_->band_result->setText(text);
}

std::vector<SweepRow> BandSweep::rows() const {
    std::vector<SweepRow> rows;
    for (const BandState& state : store_.states())
        for (const Sample& sample : state.traces.live().samples())
            rows.push_back({sample, terms_of(state, choice_of(boxes_))});
    return rows;
}

QString BandSweep::ask_file(FilePurpose purpose, const std::function<void(QFileDialog&)>& set_up) {
    QFileDialog dialog(this);
    dialog.setFileMode(QFileDialog::ExistingFile);
    set_up(dialog);
    return ask_for_file(dialog, program_, purpose);
}

void BandSweep::band_save_Click() {
    if (store_.empty()) return program_.costs.tell_each(kNothingToSave);
    const QString path = ask_file(FilePurpose::sweep, [this](QFileDialog& dialog) {
        dialog.setWindowTitle(program_.texts.pick(kSaveTitle));
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        dialog.setFileMode(QFileDialog::AnyFile);
        QStringList filters;
        for (const char* suffix : kSweepSuffixes)
            filters += QStringLiteral("%1 (*.%2)")
                           .arg(QString::fromLatin1(suffix).toUpper(), QLatin1String(suffix));
        dialog.setNameFilters(filters);
        // The suffix follows the chosen kind of file.
        const auto take_suffix = [&dialog, filters](const QString& filter) {
            const auto place = static_cast<std::size_t>(filters.indexOf(filter));
            dialog.setDefaultSuffix(QLatin1String(kSweepSuffixes[place]));
        };
        take_suffix(filters.constFirst());
        dialog.selectFile(proposed_name_with_time(QStringLiteral("sweep"), QString()));
        connect(&dialog, &QFileDialog::filterSelected, this, take_suffix);
    });
    if (!path.isEmpty()) save(path);
}

void BandSweep::save(const QString& path) {
    BandChart* chart = ui_->band_chart->chart(program_.texts);
    const QString reason = chart || is_table(path) ? save_sweep(path, chart, windowTitle(), rows())
                                                   : ui_->band_chart->fault();
    if (reason.isEmpty()) return program_.saved(path);
    report_fault(this, program_.texts.pick(kNotSaved).arg(path, reason));
}

void BandSweep::load_reference(const QString& path) {
    const SweepRead read = read_sweep(read_table(path, program_.texts));
    if (read.rows.empty() && !read.fault)
        tell_result(Said{kNoLevelThere, {QFileInfo(path).fileName()}}.in(program_.texts));
    if (!read.rows.empty()) {
        store_.take_reference(read.rows);
        const Said told{kReferenceRead, {QString::number(read.rows.size())}};
        tell_result(told.in(program_.texts));
        const BandState* state = shown_state();
        if (state && !store_.reference_for(*state)) tell_result(program_.texts.pick(kOtherUnit));
        show_band();
    }
    if (read.fault) report_fault(this, read.fault->in(program_.texts));
}

void BandSweep::load_scan_table(const QString& path) {
    const QString name = QFileInfo(path).fileName();
    const auto listed = listed_transponders(QString::fromUtf8(read_table(path, program_.texts)));
    if (listed.empty()) return report_fault(this, Said{kNoTransponder, {name}}.in(program_.texts));
    listed_ = listed;
    if (boxes_.axis == 0)
        tell_result(program_.texts.pick(kNamesNeedSky));
    else
        tell_result(Said{kTransponders, {QString::number(listed.size()), name}}.in(program_.texts));
    find_all_carriers();
    show_band();
}

}  // namespace m47::band
