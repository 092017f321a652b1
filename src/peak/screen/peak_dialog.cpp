// SPDX-License-Identifier: GPL-3.0-or-later
#include "peak_dialog.h"

#include <QHBoxLayout>
#include <QVBoxLayout>
#include <utility>

#include "handler.h"
#include "measurement.h"
#include "message_box.h"

namespace m47::peak {
namespace {

constexpr Bilingual kTitle{"Find the peak", "Trova il massimo"};
constexpr Bilingual kWhat{
    "The motor turns the dish step by step and ends on the peak of the satellite that is nearest "
    "to "
    "where it looks now. The real-time screen says at which frequency is measured.",
    "Il motore gira l'antenna passo per passo e finisce sul massimo del satellite più vicino a "
    "dove "
    "guarda ora. La frequenza di misura è quella della schermata in tempo reale."};
constexpr Bilingual kSpan{"&Not farther than, to either side", "&Non oltre, da ogni lato"};
constexpr Bilingual kStart{"&Start…", "&Avvia…"};
constexpr Bilingual kStop{"S&top", "&Ferma"};
constexpr Bilingual kClose{"&Close", "&Chiudi"};
constexpr Bilingual kStore{"Store &position…", "Memorizza &posizione…"};
constexpr Bilingual kNumber{"Number of the position", "Numero della posizione"};
constexpr Bilingual kMayMove{"Does nobody stand at the dish?", "Non c'è nessuno all'antenna?"};
constexpr Bilingual kWillMove{
    "The motor turns the dish by itself, up to %1° to either side. Who stands there may be hurt.",
    "Il motore gira l'antenna da solo, fino a %1° da ogni lato. Chi è lì può farsi male."};
constexpr Bilingual kMayStore{"Store the place of the dish as position %1?",
                              "Memorizzare il punto dell'antenna come posizione %1?"};
constexpr Bilingual kIsReplaced{"What the motor has under this number is replaced.",
                                "Ciò che il motore ha sotto questo numero viene sostituito."};
constexpr Bilingual kStored{"Stored as position %1.", "Memorizzato come posizione %1."};
constexpr Bilingual kNotStored{"The meter did not take position %1: nothing was surely stored.",
                               "Lo strumento non ha accettato la posizione %1: la memorizzazione "
                               "non è certa."};
constexpr Bilingual kBegins{"The meter is prepared…", "Si prepara lo strumento…"};
constexpr Bilingual kReading{"Reading %1, dish at %2: %3", "Lettura %1, antenna %2: %3"};
constexpr Bilingual kStopping{"The motor is being stopped…", "Il motore viene fermato…"};

constexpr int kMostPositions = 99;

QString two_digits(int number) {
    return QStringLiteral("%1").arg(number, 2, 10, QChar(u'0'));
}

QString value_text(const Taken& taken, const std::optional<LevelUnit>& unit) {
    const QString value = measurement::reading_text(taken.quantity, taken.reading);
    if (taken.quantity == measurement::Quantity::mer)
        return QStringLiteral("MER ") + value + QStringLiteral(" dB");
    return (value + u' ' + measurement::unit_text(unit)).trimmed();
}

std::optional<LevelUnit> unit_on(const link::Link& link) {
    return measurement::unit_of_index(link.settings.unit());
}

}  // namespace

PeakDialog::PeakDialog(PeakWork work, QWidget* parent)
    : RunDialog(work.texts, parent), work_(std::move(work)) {
    setObjectName(QStringLiteral("peak_dialog"));
    setWindowTitle(work_.texts.pick(kTitle));
    setProperty("manual_page", QStringLiteral("motor"));
    build();
    show_running(false);
    store_->setEnabled(false);
    number_->setEnabled(false);
}

void PeakDialog::build() {
    auto* layout = new QVBoxLayout(this);
    auto* what = new QLabel(work_.texts.pick(kWhat));
    what->setWordWrap(true);
    layout->addWidget(what);
    build_span(layout);
    curve_ = new PeakCurve;
    layout->addWidget(curve_, 1);
    state_ = new QLabel;
    state_->setObjectName(QStringLiteral("peak_state"));
    state_->setTextFormat(Qt::PlainText);
    state_->setWordWrap(true);
    state_->setMinimumHeight(3 * fontMetrics().lineSpacing());
    state_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    layout->addWidget(state_);
    build_keys(layout);
}

void PeakDialog::build_span(QBoxLayout* layout) {
    auto* caption = new QLabel(work_.texts.pick(kSpan));
    span_ = new QComboBox;
    span_->setObjectName(QStringLiteral("peak_span"));
    for (int degrees = kLeastSpan; degrees <= kMostSpan; ++degrees)
        span_->addItem(QString::number(degrees) + u'°', degrees);
    span_->setCurrentIndex(span_->findData(kUsualSpan));
    caption->setBuddy(span_);
    auto* row = new QHBoxLayout;
    row->addWidget(caption);
    row->addWidget(span_);
    row->addStretch();
    layout->addLayout(row);
}

void PeakDialog::build_keys(QBoxLayout* layout) {
    auto* keys = new QHBoxLayout;
    layout->addLayout(keys);
    start_ = add_key(keys, "peak_start", kStart);
    auto* stop = add_key(keys, "peak_stop", kStop);
    build_store(keys);
    join_ends(stop, add_key(keys, "peak_close", kClose));
    start_->setDefault(true);
    on(start_, &QPushButton::clicked, this, "peak_start_Click", [this] { start(); });
    on(store_, &QPushButton::clicked, this, "peak_store_Click", [this] { store(); });
}

void PeakDialog::build_store(QBoxLayout* keys) {
    keys->addStretch();
    number_ = new QComboBox;
    number_->setObjectName(QStringLiteral("peak_number"));
    for (int number = 1; number <= kMostPositions; ++number)
        number_->addItem(two_digits(number), number);
    number_->setCurrentIndex(number_->findData(work_.number));
    number_->setToolTip(work_.texts.pick(kNumber));
    number_->setAccessibleName(work_.texts.pick(kNumber));
    store_ = add_key(keys, "peak_store", kStore);
    keys->addWidget(number_);
    keys->addStretch();
}

void PeakDialog::enable(bool running) {
    span_->setEnabled(!running);
    start_->setEnabled(!running);
    if (!running) return;
    store_->setEnabled(false);
    number_->setEnabled(false);
}

void PeakDialog::start() {
    if (!may_move()) return;
    search();
    leave_if_told();
}

bool PeakDialog::may_move() {
    return ask_first(this, windowTitle(), work_.texts.pick(kMayMove),
                     work_.texts.pick(kWillMove).arg(span_->currentData().toInt()));
}

void PeakDialog::search() {
    SearchOptions options;
    options.span = span_->currentData().toInt() * kStepsOfDegree;
    readings_ = 0;
    curve_->begin(options.span, QString());
    state_->setText(work_.texts.pick(kBegins));
    PeakOutcome outcome;
    run([&] {
        PeakRun search(work_.link, options, work_.tuning);
        search.on_reading = [this](const Taken& taken) { show_reading(taken); };
        outcome = search.run();
    });
    show_end(outcome);
}

void PeakDialog::show_reading(const Taken& taken) {
    const std::optional<LevelUnit> unit = unit_on(work_.link);
    ++readings_;
    if (readings_ == 1)
        curve_->begin(span_->currentData().toInt() * kStepsOfDegree, measurement::unit_text(unit));
    if (taken.quantity == measurement::Quantity::level)
        curve_->add({taken.steps, taken.reading.value});
    // "%1" in a value would be filled in again.
    state_->setText(work_.texts.pick(kReading).arg(
        QString::number(readings_), place_text(taken.steps, work_.texts), value_text(taken, unit)));
}

void PeakDialog::show_end(const PeakOutcome& outcome) {
    curve_->set_peak(outcome.search.peak);
    state_->setText(end_sentence(outcome, work_.texts));
    const bool found = outcome.search.end == SearchEnd::found && outcome.linked;
    store_->setEnabled(found);
    number_->setEnabled(found);
    (found ? store_ : start_)->setFocus();
}

/// Nothing is sent from here: the search sends the stop, before its next command.
void PeakDialog::stop_run() {
    state_->setText(work_.texts.pick(kStopping));
    work_.link.activity.stop();
}

void PeakDialog::store() {
    const QString number = number_->currentText();
    if (!ask_first(this, windowTitle(), work_.texts.pick(kMayStore).arg(number),
                   work_.texts.pick(kIsReplaced)))
        return;
    const bool taken = work_.store(number_->currentData().toInt());
    state_->setText(work_.texts.pick(taken ? kStored : kNotStored).arg(number));
}

}  // namespace m47::peak
