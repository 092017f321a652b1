// SPDX-License-Identifier: GPL-3.0-or-later
#include "identify_dialog.h"

#include <QFileDialog>
#include <QScreen>
#include <QScrollArea>
#include <algorithm>
#include <utility>

#include "belief_words.h"
#include "best_carrier.h"
#include "candidate_programs.h"
#include "file_question.h"
#include "handler.h"
#include "identification_table.h"
#include "measurement.h"
#include "save_file.h"
#include "waits.h"

namespace m47::identify {
namespace {

constexpr Bilingual kTitle{"Identify satellite", "Identifica satellite"};
constexpr Bilingual kStart{"&Start", "&Avvia"};
constexpr Bilingual kStop{"S&top", "&Ferma"};
constexpr Bilingual kClose{"&Close", "&Chiudi"};
constexpr Bilingual kSave{"Sa&ve…", "Sal&va…"};
constexpr Bilingual kPrograms{"Make &programs…", "Crea &programmi…"};
constexpr Bilingual kPeak{"&Find the peak…", "&Trova il massimo…"};
constexpr Bilingual kProgramsTip{"The transponders of this satellite into the plan",
                                 "I transponder di questo satellite nel piano"};
constexpr Bilingual kPeakTip{"Turn the dish to the peak of this satellite",
                             "Gira l'antenna sul massimo di questo satellite"};
constexpr Bilingual kNoMotorTip{
    "Only with a motor: choose DiSEqC 1.2 in the real-time screen first",
    "Solo con un motore: scegliere prima DiSEqC 1.2 nella schermata in tempo reale"};
constexpr Bilingual kBarsName{"How probable each satellite is",
                              "Quanto è probabile ogni satellite"};
constexpr Bilingual kAskedName{"What was asked, and the answers", "Le domande e le risposte"};
constexpr Bilingual kBefore{
    "Which satellite does the dish look at? Levels and locks tell it: about a minute.",
    "Quale satellite guarda l'antenna? Lo dicono livelli e agganci: circa un minuto."};
constexpr Bilingual kNoBars{"A bar for each satellite stands here once the band was looked over.",
                            "Qui compare una barra per ogni satellite, visto tutta la banda."};
constexpr Bilingual kStopping{"It stops; the meter is being set back…",
                              "Si ferma; lo strumento viene ripristinato…"};
constexpr Bilingual kFolderTitle{"Folder of the scan tables", "Cartella delle tabelle"};
constexpr Bilingual kSaveTitle{"Save what was asked", "Salva domande e risposte"};
constexpr Bilingual kNotSaved{"What was asked was not saved as '%1': %2",
                              "Domande e risposte non salvate come '%1': %2"};

constexpr int kLinesOfViews = 4;
constexpr int kLinesOfState = 2;

}  // namespace

IdentifyDialog::IdentifyDialog(IdentifyWork work, QWidget* parent)
    : RunDialog(work.program.texts, parent), work_(std::move(work)) {
    setObjectName(QStringLiteral("identify_dialog"));
    setWindowTitle(work_.program.texts.pick(kTitle));
    setProperty("manual_page", QStringLiteral("identify"));
    build();
    tell(work_.program.texts.pick(kBefore));
    show_running(false);
    // Left alone it gets two thirds of a screen at most, which cuts the table's columns.
    resize(sizeHint().boundedTo(screen()->availableSize()));
}

void IdentifyDialog::build() {
    auto* layout = new QVBoxLayout(this);
    build_choice(layout);
    build_views(layout);
    build_states(layout);
    build_keys(layout);
    join_keys();
}

void IdentifyDialog::build_choice(QBoxLayout* layout) {
    auto* row = new QHBoxLayout;
    choice_ = new ChoicePanel(work_.boxes, work_.program.texts);
    row->addWidget(choice_, 1);
    auto* keys = new QVBoxLayout;
    start_ = add_key(keys, "identify_start", kStart);
    stop_ = add_key(keys, "identify_stop", kStop);
    start_->setDefault(true);
    row->addLayout(keys);
    layout->addLayout(row);
}

void IdentifyDialog::build_views(QBoxLayout* layout) {
    const Texts& texts = work_.program.texts;
    bars_ = new BeliefBars;
    bars_->set_remark(texts.pick(kNoBars));
    bars_->setAccessibleName(texts.pick(kBarsName));
    auto* area = new QScrollArea;
    area->setObjectName(QStringLiteral("identify_beliefs"));
    area->setWidget(bars_);
    area->setWidgetResizable(true);
    table_ = new AskedTable(texts);
    table_->setAccessibleName(texts.pick(kAskedName));
    const int least = kLinesOfViews * fontMetrics().lineSpacing();
    area->setMinimumHeight(least);
    table_->setMinimumHeight(least);
    auto* row = new QHBoxLayout;
    // The table has its columns' width before the bars have more than theirs.
    row->addWidget(area, 1);
    row->addWidget(table_);
    layout->addLayout(row, 1);
}

void IdentifyDialog::build_states(QBoxLayout* layout) {
    const auto add_label = [&](const char* name, int lines) {
        auto* label = new QLabel;
        label->setObjectName(QString::fromLatin1(name));
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        label->setMinimumHeight(lines * fontMetrics().lineSpacing());
        label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
        layout->addWidget(label);
        return label;
    };
    facts_ = add_label("identify_facts", 1);
    state_ = add_label("identify_state", kLinesOfState);
}

void IdentifyDialog::build_keys(QBoxLayout* layout) {
    const Texts& texts = work_.program.texts;
    auto* keys = new QHBoxLayout;
    layout->addLayout(keys);
    programs_ = add_key(keys, "identify_programs", kPrograms);
    peak_ = add_key(keys, "identify_peak", kPeak);
    save_ = add_key(keys, "identify_save", kSave);
    keys->addStretch();
    join_ends(stop_, add_key(keys, "identify_close", kClose));
    programs_->setToolTip(texts.pick(kProgramsTip));
    peak_->setToolTip(texts.pick(work_.find_peak ? kPeakTip : kNoMotorTip));
}

void IdentifyDialog::join_keys() {
    on(start_, &QPushButton::clicked, this, "identify_start_Click", [this] { start(); });
    on(programs_, &QPushButton::clicked, this, "identify_programs_Click",
       [this] { make_programs(); });
    on(peak_, &QPushButton::clicked, this, "identify_peak_Click", [this] { find_peak(); });
    on(save_, &QPushButton::clicked, this, "identify_save_Click", [this] { ask_save(); });
    on(choice_, &ChoicePanel::folder_asked, this, "identify_tables_Click",
       [this] { ask_tables(); });
}

void IdentifyDialog::tell(const QString& text, bool bold) {
    QFont font = facts_->font();
    font.setBold(bold);
    state_->setFont(font);
    state_->setText(text);
}

void IdentifyDialog::show_facts() {
    if (asked_.empty()) return facts_->clear();
    const auto answers = std::ranges::count_if(asked_, [](const Asked& asked) {
        return asked.answer.db.has_value() || asked.answer.locked.has_value();
    });
    facts_->setText(facts_text(static_cast<int>(answers), seconds_, drift_, work_.program.texts));
}

/// What can be done with what came.
void IdentifyDialog::enable_ends() {
    save_->setEnabled(!running() && !asked_.empty());
    programs_->setEnabled(!running() && named_ && !from_plans_ && work_.make_programs);
    peak_->setEnabled(!running() && named_ && work_.find_peak && best_carrier(asked_));
}

void IdentifyDialog::enable(bool running) {
    choice_->setEnabled(!running);
    start_->setEnabled(!running);
    enable_ends();
}

void IdentifyDialog::start() {
    const Texts& texts = work_.program.texts;
    const ChoiceBoxes boxes = choice_->boxes();
    if (const Bilingual* fault = fault_of(boxes)) return tell(texts.pick(*fault));
    const CandidateChoice choice = choice_of(boxes);
    std::vector<Candidate> candidates = candidates_of(choice, work_.database);
    if (candidates.empty()) return tell(why_none(choice, texts));
    begin_anew();
    identify(choice, std::move(candidates));
    leave_if_told();
}

void IdentifyDialog::begin_anew() {
    asked_.clear();
    lines_ = identification_header();
    named_.reset();
    drift_.reset();
    seconds_ = 0;
    bars_->show_bars({});
    table_->setRowCount(0);
    show_facts();
    enable_ends();
}

void IdentifyDialog::identify(const CandidateChoice& choice, std::vector<Candidate> candidates) {
    lnb_ = choice.lnb;
    from_plans_ = choice.plans;
    IdentificationRun identification(work_.link, choice.lnb, std::move(candidates),
                                     choice.dish_cm());
    follow(identification);
    IdentificationEnd end;
    run([&] {
        // A lock takes six seconds without any answer.
        const link::Waits waits(work_.link, [&] {
            seconds_ = identification.seconds();
            show_facts();
        });
        end = identification.run();
    });
    lines_ += verdict_line(identification, end);
    // The verdict weighs more than the last answer did.
    if (end.verdict)
        show_beliefs(identification.standings(), identification.candidates(),
                     identification.drift());
    show_end(end, identification.candidates());
}

void IdentifyDialog::follow(IdentificationRun& run) {
    run.on_question = [this](const Asked& asked) { show_question(asked); };
    run.on_answer = [this, &run](const Asked& asked) {
        show_beliefs(run.standings(), run.candidates(), run.drift());
        show_answer(asked);
        lines_ += asked_line(run, asked, unit());
    };
}

void IdentifyDialog::show_question(const Asked& asked) {
    tell(question_text(asked, work_.program.texts));
}

void IdentifyDialog::show_beliefs(const std::vector<Standing>& standings,
                                  const std::vector<Candidate>& candidates,
                                  std::optional<double> drift) {
    // What nothing was received through has none that anybody knows.
    const bool of_one = !standings.empty() && standings.front().kind == Verdict::Kind::candidate;
    drift_ = of_one ? drift : std::nullopt;
    show_facts();
    bars_->show_bars(bars_of(standings, candidates, work_.program.texts));
}

void IdentifyDialog::show_answer(const Asked& asked) {
    asked_.push_back(asked);
    seconds_ = asked.from_start;
    table_->add(asked, unit());
    show_facts();
}

std::optional<LevelUnit> IdentifyDialog::unit() const {
    return measurement::unit_of_index(work_.link.settings.unit());
}

void IdentifyDialog::show_end(const IdentificationEnd& end,
                              const std::vector<Candidate>& candidates) {
    if (end.verdict && end.verdict->kind == Verdict::Kind::candidate)
        named_ = candidates[end.verdict->candidate];
    tell(end_text(end, candidates, work_.program.texts), end.verdict.has_value());
    enable_ends();
    (programs_->isEnabled() ? programs_ : start_)->setFocus();
}

/// Nothing is sent from here: the run ends before its next command, and sets the meter back.
void IdentifyDialog::stop_run() {
    tell(work_.program.texts.pick(kStopping));
    work_.link.activity.stop();
}

void IdentifyDialog::ask_tables() {
    QFileDialog dialog(this, work_.program.texts.pick(kFolderTitle), choice_->boxes().folder);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    if (dialog.exec() == QDialog::Accepted) take_tables(dialog.selectedFiles().constFirst());
}

void IdentifyDialog::ask_save() {
    QFileDialog dialog(this, work_.program.texts.pick(kSaveTitle), QString(),
                       QStringLiteral("TSV (*.tsv)"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("tsv"));
    dialog.selectFile(proposed_name_with_time(QStringLiteral("satellite"), QStringLiteral("tsv")));
    const QString path = ask_for_file(dialog, work_.program, FilePurpose::identification);
    if (!path.isEmpty()) save(path);
}

void IdentifyDialog::save(const QString& path) {
    const QString reason = write_whole_file(path, lines_);
    if (reason.isEmpty()) return work_.program.saved(path);
    report_fault(this, Said{kNotSaved, {path, reason}}.in(work_.program.texts));
}

void IdentifyDialog::make_programs() {
    work_.make_programs(candidate_programs(*named_, lnb_, unit_offset(work_.program.unit_index)));
}

void IdentifyDialog::find_peak() {
    work_.find_peak(*best_carrier(asked_));
}

}  // namespace m47::identify
