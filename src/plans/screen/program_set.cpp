// SPDX-License-Identifier: GPL-3.0-or-later
#include "program_set.h"

#include <QApplication>

#include "changed_dialog.h"
#include "corrected_actions.h"
#include "handler.h"
#include "icons.h"
#include "key_filter.h"
#include "plan_costs.h"
#include "plan_keys.h"
#include "plan_questions.h"
#include "plan_tooltips.h"
#include "program_checks.h"
#include "ui_program_set.h"
#include "verify_dialog.h"

namespace m47 {
namespace {

constexpr qsizetype kOscillatorLength = 6;
constexpr Bilingual kNoPlan{"There is no plan: make one first.",
                            "Non c'è alcun piano: occorre prima crearne uno."};
constexpr Bilingual kNoProgram{"The plan has no program: make one first.",
                               "Il piano non ha programmi: occorre prima crearne uno."};
constexpr Bilingual kProgramGone{
    "Another program has deleted what was shown here. Nothing was stored; the screen shows what is "
    "there now.",
    "Un altro programma ha cancellato ciò che era mostrato qui. Nulla è stato memorizzato; la "
    "schermata mostra ciò che c'è ora."};
constexpr Bilingual kPlanGone{"The plan %1 is gone: another program has deleted it.",
                              "Il piano %1 non c'è più: un altro programma l'ha cancellato."};
constexpr Bilingual kFrequenciesCorrected{"Frequencies corrected, programs: %1",
                                          "Frequenze corrette, programmi: %1"};

/// The others stay in their places while `frame` is hidden.
void keep_place(QWidget* frame) {
    QSizePolicy place = frame->sizePolicy();
    place.setRetainSizeWhenHidden(true);
    frame->setSizePolicy(place);
}

}  // namespace

ProgramSet::ProgramSet(Link& link, ProgramState& program, Database& database, QWidget* parent)
    : QMainWindow(parent),
      beep([] { QApplication::beep(); }),
      link_(link),
      program_(program),
      sets_(database, program.corrected),
      ui_(std::make_unique<Ui::ProgramSet>()),
      boxes_(*ui_) {
    ui_->setupUi(this);
    // These keys are words of the language, which a form cannot use as names.
    ui_->new_plan->setObjectName(QStringLiteral("new"));
    ui_->delete_plan->setObjectName(QStringLiteral("delete"));
    // Its menu would hide the toolbar, and nothing would bring it back.
    setContextMenuPolicy(Qt::NoContextMenu);
    sets_.on_checked = [this](const QStringList& numbers) {
        const QString list = numbers.join(QStringLiteral(", "));
        Q_EMIT upload_state(program_.texts.pick(kFrequenciesCorrected).arg(list), QString());
    };
    sets_.on_unchecked = [this] { tell_unchecked(program_); };
    set_icons();
    keep_place(ui_->dig_opt);
    keep_place(ui_->monitor_opt);
    show_monitor(false);
    tie_corrected(this, program_.corrected);
    connect_boxes();
    connect_oscillators();
    connect_lists();
    connect_menu();
    fill_keys();
    on(ui_->barracomando, &QToolBar::actionTriggered, this, "barracomando_ButtonClick",
       [this](QAction* key) { barracomando_ButtonClick(key->objectName()); });
}

ProgramSet::~ProgramSet() = default;

template <class Body>
void ProgramSet::handle(const char* name, Body body) {
    run_handler(this, name, [&] {
        try {
            body();
        } catch (const RecordGone&) {
            show_current_row();
            tell_problem(this, program_.texts.pick(kProgramGone));
        } catch (const EngineFault& fault) {
            show_current_row();
            tell_database_fault(this, program_, fault);
        } catch (const std::exception&) {
            show_current_row();
            throw;
        }
    });
}

/// After a fault the boxes may hold another program than the one that would be overwritten next.
/// Where they hold that one, what was typed stays: storing again may be all that is needed.
void ProgramSet::show_current_row() {
    try {
        sets_.refresh();
    } catch (const Fault&) {
        // The file cannot be read just now: what was read last stays.
    }
    try {
        if (sets_.plan() == shown_plan_ && sets_.current_row() == shown_row_) return;
        move_plan(true);
    } catch (const Fault&) {
        // Without a current row nothing can be overwritten.
    }
}

void ProgramSet::set_icons() {
    for (QAction* key : ui_->barracomando->actions()) key->setIcon(toolbar_icon(key->objectName()));
}

void ProgramSet::Form_Load() {
    set_tooltips(this, plan_tooltips(), program_.texts);
    handle("Form_Load", [this] {
        boxes_.fill_lists();
        show_unit();
        sets_.first_plan();
        move_plan(true);
    });
}

void ProgramSet::Form_Activate() {
    show_unit();
    database_changed();
}

void ProgramSet::database_changed() {
    handle("database_changed", [this] {
        if (sets_.refresh()) move_plan(true);
    });
}

double ProgramSet::offset() const {
    return unit_offset(program_.unit_index);
}

/// Limits that nobody has typed since they were shown may be of another unit than the present one.
std::optional<double> ProgramSet::offset_of_limits(const ProgramRecord& record) const {
    const bool none = record.lev_min.trimmed().isEmpty() && record.lev_max.trimmed().isEmpty();
    if (!program_.corrected.keep_unit || none) return offset();
    return typed_offset_;
}

void ProgramSet::connect_boxes() {
    for (QLineEdit* limit : {ui_->lev_mintxt, ui_->lev_maxtxt})
        connect(limit, &QLineEdit::textEdited, this, [this] { typed_offset_ = offset(); });
    const auto check = [this](QLineEdit* box, const char* name, auto on_enter, auto on_leaving) {
        connect(box, &QLineEdit::returnPressed, this,
                [this, name, on_enter] { handle(name, on_enter); });
        filters_.push_back(std::make_unique<LeaveFilter>(
            box, [this, name, on_leaving] { handle(name, on_leaving); }));
    };
    check(
        ui_->prog_num, "prog_num_KeyPress",
        [this] {
            check_prog_num();
            store_as_new();
        },
        [this] { check_prog_num(); });
    const auto frequency = [this] { sat_freq_KeyPress(); };
    check(ui_->sat_freq_txt, "sat_freq_KeyPress", frequency, frequency);
    const auto rate = [this] {
        ui_->srqpsk_txt->setText(checked_symbol_rate(ui_->srqpsk_txt->text()));
    };
    check(ui_->srqpsk_txt, "srqpsk_txt_KeyPress", rate, rate);
    check(
        ui_->chbw_txt, "chbw_txt_KeyPress",
        [this] { ui_->chbw_txt->setText(bandwidth_on_enter(ui_->chbw_txt->text())); },
        [this] { ui_->chbw_txt->setText(bandwidth_on_leaving(ui_->chbw_txt->text())); });
}

void ProgramSet::connect_oscillators() {
    QLineEdit* box = ui_->ol_optval->lineEdit();
    // What is typed belongs to the chosen entry: neither completion nor an equal entry elsewhere
    // may choose another one.
    ui_->ol_optval->setCompleter(nullptr);
    disconnect(box, SIGNAL(editingFinished()), ui_->ol_optval, nullptr);
    connect(box, &QLineEdit::textEdited, this, [box](const QString& text) {
        if (text.size() > kOscillatorLength) box->setText(text.left(kOscillatorLength));
    });
    connect(box, &QLineEdit::returnPressed, this,
            [this] { handle("ol_optval_KeyPress", [this] { ol_optval_KeyPress(); }); });
    filters_.push_back(std::make_unique<LeaveFilter>(ui_->ol_optval, [this] {
        handle("ol_optval_LostFocus", [this] { sat_freq_KeyPress(); });
    }));
    connect(ui_->ol_optval, &QComboBox::activated, this,
            [this] { handle("ol_optval_Click", [this] { sat_freq_KeyPress(); }); });
    for (QRadioButton* option : {ui_->ol_opt_0, ui_->ol_opt_1})
        connect(option, &QRadioButton::clicked, this, [this] {
            boxes_.follow_tuning();
            handle("ol_opt_Click", [this] { sat_freq_KeyPress(); });
        });
}

void ProgramSet::connect_lists() {
    for (QComboBox* list : {ui_->diseqc_cmd, ui_->diseqc_cmd2, ui_->k22_state, ui_->lnb_state})
        new KeyFilter(list, QStringLiteral(" "));
    for (QComboBox* list : {ui_->diseqc_cmd, ui_->diseqc_cmd2, ui_->k22_state, ui_->lnb_state,
                            ui_->logger_pos, ui_->ol_optval})
        new WheelGuard(list);
    filters_.push_back(std::make_unique<TypedKeyFilter>(ui_->logger_pos, [this] {
        handle("logger_pos_KeyPress", [this] { store_record(true); });
    }));
    connect(ui_->cmd_dig, &QCheckBox::toggled, this, [this] { boxes_.follow_digital(); });
}

void ProgramSet::connect_menu() {
    const std::array<QAction*, 3> units{ui_->cmdlev_0, ui_->cmdlev_1, ui_->cmdlev_2};
    for (std::size_t k = 0; k < units.size(); ++k)
        connect(units[k], &QAction::triggered, this,
                [this, k] { cmdlev_Click(static_cast<int>(k)); });
    const auto entry = [this](QAction* action, const char* name, void (ProgramSet::*handler)()) {
        connect(action, &QAction::triggered, this,
                [this, name, handler] { handle(name, [this, handler] { (this->*handler)(); }); });
    };
    entry(ui_->cmdimport, "cmdimport_Click", &ProgramSet::cmdimport_Click);
    entry(ui_->cmdexport, "cmdexport_Click", &ProgramSet::cmdexport_Click);
    entry(ui_->cmdcopyprog, "cmdcopyprog_Click", &ProgramSet::cmdcopyprog_Click);
    entry(ui_->cmdcopyplan, "cmdcopyplan_Click", &ProgramSet::cmdcopyplan_Click);
    connect(ui_->cmdexit, &QAction::triggered, this, &ProgramSet::exit_asked);
}

void ProgramSet::fill_keys() {
    const auto add = [this](const QAction* key, const std::function<void()>& action) {
        keys_.insert(key->objectName(), action);
    };
    add(ui_->previous, [this] { move_plan(sets_.previous_plan()); });
    add(ui_->next, [this] { move_plan(sets_.next_plan()); });
    add(ui_->new_plan, [this] { add_new(); });
    add(ui_->delete_plan, [this] { del_old(); });
    add(ui_->store_new, [this] { store_as_new(); });
    add(ui_->store, [this] { store_record(true); });
    add(ui_->programma_delete, [this] { delete_program(); });
    add(ui_->previous_prog, [this] { move_program(sets_.previous_program()); });
    add(ui_->next_prog, [this] { move_program(sets_.next_program()); });
    add(ui_->accoda, [this] { download_group(ui_->accoda->toolTip(), kAppend); });
    add(ui_->sostituisci, [this] { download_group(ui_->sostituisci->toolTip(), kDisable); });
    add(ui_->nuovo, [this] { download_group(ui_->nuovo->toolTip(), kReplace); });
    add(ui_->monitor, [this] { show_monitor(ui_->monitor_opt->isHidden()); });
}

void ProgramSet::barracomando_ButtonClick(const QString& key) {
    // "storing" is known and does nothing.
    const auto action = keys_.constFind(key);
    if (action != keys_.constEnd()) handle("barracomando_ButtonClick", *action);
}

void ProgramSet::show_monitor(bool visible) {
    ui_->monitor_opt->setVisible(visible);
    ui_->monitor->setChecked(visible);
}

void ProgramSet::mostra_record() {
    load_oscloc();
    boxes_.show(sets_.program());
    shown_plan_ = sets_.plan();
    shown_row_ = sets_.current_row();
    known_ = sets_.stored();
    shown_ = boxes_.read();
    shown_oscillator_ = boxes_.oscillator();
    typed_offset_.reset();
}

void ProgramSet::load_oscloc() {
    boxes_.load_oscloc(sets_.oscillators());
}

/// Shows the plan that has been moved to, or sounds the end of the list.
void ProgramSet::move_plan(bool moved) {
    if (!moved) beep();
    ui_->grp_name->setText(sets_.plan());
    mostra_record();
}

void ProgramSet::move_program(bool moved) {
    if (!moved) beep();
    mostra_record();
}

/// True, and the user knows, where there is no plan that anything could be stored in.
bool ProgramSet::lacks_plan() {
    if (sets_.has_current_plan()) return false;
    const QString lost = sets_.plan();
    if (sets_.refresh()) move_plan(true);
    tell_problem(this, sets_.plan().isEmpty() ? program_.texts.pick(kNoPlan)
                                              : program_.texts.pick(kPlanGone).arg(lost));
    return true;
}

/// The same where there is no program to be changed or sent.
bool ProgramSet::lacks_program() {
    if (lacks_plan()) return true;
    if (sets_.has_program()) return false;
    tell_problem(this, program_.texts.pick(kNoProgram));
    return true;
}

/// Does `store`, and asks whose entries are to stay where another program has changed them since
/// they were shown.
ProgramSet::Outcome ProgramSet::unless_changed(const std::function<Outcome()>& store) {
    for (;;) {
        try {
            return store();
        } catch (const ChangedMeanwhile& change) {
            ChangedDialog dialog(change, program_.texts, this);
            dialog.exec();
            if (dialog.choice() == ChangedDialog::Choice::neither) return Outcome::put_off;
            if (dialog.choice() == ChangedDialog::Choice::stored) {
                move_plan(true);
                return Outcome::kept_theirs;
            }
            known_ = change.now;
        }
    }
}

Clash ProgramSet::try_to_store(ProgramRecord& record, bool over) {
    const ProgramRecord typed = record;
    QString oscillator = boxes_.oscillator();
    const Clash clash =
        sets_.store_record(record, oscillator, offset_of_limits(record), over, &known_);
    if (clash == Clash::none && !typed_offset_) tell_changed_limits(program_, typed, record);
    return clash;
}

/// The user knows why, where nothing was stored.
ProgramSet::Outcome ProgramSet::store_record(bool over) {
    if (over ? lacks_program() : lacks_plan()) return Outcome::clash;
    return unless_changed([&] {
        ProgramRecord record = boxes_.read();
        const Clash clash = try_to_store(record, over);
        if (clash == Clash::none) {
            // A new row is not the current one; whoever adds it moves to it.
            if (over) mostra_record();
            return Outcome::stored;
        }
        ui_->prog_num->setText(record.pg_num);
        beep();
        beep();
        tell_clash(this, program_.texts, clash);
        return Outcome::clash;
    });
}

void ProgramSet::show_first_program() {
    sets_.first_program();
    mostra_record();
}

void ProgramSet::store_as_new() {
    if (lacks_plan()) return;
    const Outcome outcome = store_record(false);
    if (outcome == Outcome::kept_theirs || outcome == Outcome::put_off) return;
    if (outcome == Outcome::clash && program_.corrected.keep_new) return;
    if (outcome == Outcome::clash) tell_refused_new(program_);
    sets_.last_program();
    mostra_record();
}

void ProgramSet::add_new() {
    const QString name = ask_plan_name(this, program_.texts.message(kAddPlan), QString());
    if (name.isEmpty()) return;
    sets_.add_new(name);
    move_plan(true);
}

void ProgramSet::del_old() {
    if (!sets_.can_delete_plan() || !ask_remove(this, program_.texts, sets_.plan())) return;
    sets_.del_old();
    move_plan(true);
}

void ProgramSet::delete_program() {
    if (!sets_.can_delete_program()) {
        // Others may have left this one alone.
        if (sets_.refresh()) move_plan(true);
        return;
    }
    if (!ask_remove(this, program_.texts, sets_.program().pg_num)) return;
    sets_.delete_program();
    mostra_record();
}

void ProgramSet::check_prog_num() {
    ui_->prog_num->setText(checked_program_number(ui_->prog_num->text()));
}

void ProgramSet::sat_freq_KeyPress() {
    ui_->sat_freq_txt->setText(checked_frequency(ui_->sat_freq_txt->text(),
                                                 ui_->ol_opt_0->isChecked(), boxes_.oscillator()));
}

void ProgramSet::ol_optval_KeyPress() {
    boxes_.set_oscillator(checked_oscillator(boxes_.oscillator()));
    if (lacks_program()) return;
    const Outcome outcome = unless_changed([this] {
        sets_.store_oscloc(boxes_.read(), boxes_.oscillator(), known_);
        return Outcome::stored;
    });
    if (outcome == Outcome::stored) store_record(true);
}

void ProgramSet::cmdlev_Click(int index) {
    program_.unit_index = index;
    show_unit();
}

void ProgramSet::show_unit() {
    const std::array<QAction*, 3> units{ui_->cmdlev_0, ui_->cmdlev_1, ui_->cmdlev_2};
    for (std::size_t k = 0; k < units.size(); ++k)
        units[k]->setChecked(program_.unit_index == static_cast<int>(k));
}

/// The program that nobody has stored yet is no program to be sent, so it is not made one. False
/// where the user wants to go on typing first.
bool ProgramSet::store_for_upload() {
    const bool typed = boxes_.read() != shown_ || boxes_.oscillator() != shown_oscillator_;
    if (!program_.corrected.skip_empty || typed || !is_blank(sets_.program()))
        return store_record(true) != Outcome::put_off;
    return true;
}

/// What an upload sends.
UploadPlan ProgramSet::plan_to_upload() const {
    UploadPlan plan{sets_.programs(), sets_.oscillators(), sets_.program().satchbw,
                    program_.unit_index};
    if (program_.corrected.skip_empty) leave_out_blank(plan);
    return plan;
}

void ProgramSet::download_group(const QString& prompt, UploadMode mode) {
    if (lacks_program()) return;
    if (!store_for_upload()) return;
    const UploadPlan plan = plan_to_upload();
    if (plan.programs.empty()) return tell_problem(this, program_.texts.pick(kNoProgram));
    if (!ask_continue(this, program_.texts, prompt)) return;
    PlanUpload upload(link_, program_);
    upload.on_progress = [this](int sent, int commands) {
        Q_EMIT upload_state(QStringLiteral("%1/%2").arg(sent).arg(commands), QString());
    };
    UploadResult result;
    try {
        result = upload.run(plan, mode);
    } catch (...) {
        show_first_program();
        Q_EMIT upload_state(QString(), QString());
        throw;
    }
    show_first_program();
    if (result.accepted > 0) tell_sent(program_, plan, sets_.has_unset_diseqc());
    Q_EMIT upload_state(upload_summary(result, program_.texts), upload_refusals(result));
    if (program_.corrected.verify && link_.can_send()) verify_upload(upload, mode, result.table);
}

void ProgramSet::verify_upload(PlanUpload& upload, UploadMode mode, const QString& before) {
    const std::optional<QString> found = upload.ask_table();
    const TableCheck check{compare_table(sets_.programs(), mode, before, found.value_or(QString())),
                           mode, found.has_value()};
    VerifyDialog dialog(check, program_.texts, this);
    dialog.exec();
}

}  // namespace m47
