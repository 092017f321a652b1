// SPDX-License-Identifier: GPL-3.0-or-later
#include "start_page.h"

#include <QLayoutItem>

#include "busy_input.h"
#include "tooltips.h"

namespace m47::shell {
namespace {

/// Of the column, in characters: a line of text that is read at once.
constexpr int kColumns = 80;
constexpr double kHeadingSize = 1.3;  ///< times that of the text

constexpr Bilingual kMeterHeading{"Meter", "Strumento"};
constexpr Bilingual kLastHeading{"Worked on last", "Ultimi lavori"};
constexpr Bilingual kHelpHeading{"Help", "Aiuto"};
constexpr Bilingual kConnect{"Connect", "Collega"};
constexpr Bilingual kInUse{"connected", "collegato"};
constexpr Bilingual kConnectTip{"Ask behind port %1 for the meter",
                                "Cerca lo strumento sulla porta %1"};
constexpr Bilingual kNoDevice{
    "This computer has no serial port or adapter just now. One that is plugged in appears here.",
    "Al momento questo computer non ha porte seriali né adattatori. Appena collegati appaiono "
    "qui."};
constexpr Bilingual kSearch{"Search for the meter", "Cerca lo strumento"};
constexpr Bilingual kSearchTip{
    "Ask behind each free port in turn; what another program uses is left alone",
    "Interroga una dopo l'altra le porte libere; quelle usate da altri programmi no"};
constexpr Bilingual kSimulated{"Try the simulated meter", "Prova lo strumento simulato"};
constexpr Bilingual kSimulatedTip{"Everything can be tried with it; what it measures is made up",
                                  "Permette di provare tutto; ciò che misura è inventato"};
constexpr Bilingual kManual{"Open the manual", "Apri il manuale"};
constexpr Bilingual kNothingYet{"No log and no plan yet.", "Ancora nessun log e nessun piano."};

void empty(QLayout* layout) {
    while (const QLayoutItem* item = layout->takeAt(0)) {
        // A key that was just clicked is still at work.
        if (item->widget()) item->widget()->deleteLater();
        if (item->widget()) item->widget()->hide();
        delete item;
    }
}

/// One that needs no frame: a word to click on.
QPushButton* word(const QString& text) {
    auto* key = new QPushButton(QString(text).replace(u'&', QStringLiteral("&&")));
    key->setFlat(true);
    key->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    return key;
}

}  // namespace

StartPage::StartPage(const Texts& texts, QWidget* parent)
    : QScrollArea(parent),
      texts_(texts),
      column_(new QVBoxLayout),
      devices_(new QGridLayout),
      no_device_(new QLabel),
      result_(new QLabel),
      recent_(new QVBoxLayout) {
    setObjectName(QStringLiteral("start_page"));
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    auto* inside = new QWidget;
    inside->setLayout(column_);
    const int margin = fontMetrics().height() * 2;
    column_->setContentsMargins(margin, margin, margin, margin);
    column_->setSpacing(fontMetrics().height() / 2);
    inside->setMaximumWidth(fontMetrics().averageCharWidth() * kColumns);
    meter_ = add_heading();
    column_->addLayout(devices_);
    devices_->setColumnStretch(0, 1);
    column_->addWidget(no_device_);
    search_ = add_key("start_search", &StartPage::search_asked);
    simulated_ = add_key("start_simulated", &StartPage::simulated_asked);
    result_->setObjectName(QStringLiteral("start_result"));
    for (QLabel* label : {no_device_, result_}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
    }
    column_->addWidget(result_);
    last_ = add_heading();
    column_->addLayout(recent_);
    help_ = add_heading();
    manual_ = add_key("start_manual", &StartPage::manual_asked);
    keep_while_busy(manual_);
    column_->addStretch(1);
    setAlignment(Qt::AlignHCenter);
    setWidget(inside);
    result_->hide();
    show_texts();
}

QLabel* StartPage::add_heading() {
    auto* heading = new QLabel;
    QFont large = font();
    large.setPointSizeF(large.pointSizeF() * kHeadingSize);
    heading->setFont(large);
    if (column_->count() > 0) column_->addSpacing(heading->fontMetrics().height() / 2);
    column_->addWidget(heading);
    return heading;
}

QPushButton* StartPage::add_key(const char* name, void (StartPage::*signal)()) {
    auto* key = new QPushButton;
    key->setObjectName(QString::fromLatin1(name));
    key->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    connect(key, &QPushButton::clicked, this, [this, signal] { (this->*signal)(); });
    column_->addWidget(key);
    return key;
}

void StartPage::show_devices(const QList<Device>& devices) {
    empty(devices_);
    no_device_->setVisible(devices.isEmpty());
    for (int row = 0; row < devices.size(); ++row) {
        const Device& device = devices[row];
        auto* name =
            new QLabel(QStringLiteral("%1:  %2").arg(device.number).arg(device.description));
        name->setTextFormat(Qt::PlainText);
        name->setWordWrap(true);
        auto* key = new QPushButton(texts_.pick(device.in_use ? kInUse : kConnect));
        key->setObjectName(row == 0 ? QStringLiteral("start_connect")
                                    : QStringLiteral("start_connect_%1").arg(row));
        key->setToolTip(Said{kConnectTip, {QString::number(device.number)}}.in(texts_));
        key->setEnabled(!device.in_use);
        connect(key, &QPushButton::clicked, this,
                [this, number = device.number] { Q_EMIT connect_asked(number); });
        devices_->addWidget(name, row, 0);
        devices_->addWidget(key, row, 1);
    }
}

void StartPage::show_recent(const QList<Recent>& logs, const QList<Recent>& plans) {
    empty(recent_);
    add_recent(logs, &StartPage::log_asked);
    add_recent(plans, &StartPage::plan_asked);
    // Not the layout's isEmpty(): what was just added is not shown yet.
    if (logs.isEmpty() && plans.isEmpty()) recent_->addWidget(new QLabel(texts_.pick(kNothingYet)));
}

void StartPage::add_recent(const QList<Recent>& entries,
                           void (StartPage::*signal)(const QString&)) {
    for (const Recent& entry : entries) {
        QPushButton* key = word(entry.shown);
        key->setToolTip(plain_tooltip(entry.key));
        connect(key, &QPushButton::clicked, this,
                [this, signal, known = entry.key] { (this->*signal)(known); });
        recent_->addWidget(key);
    }
}

void StartPage::show_result(const QString& text) {
    result_->setText(text);
    result_->setVisible(!text.isEmpty());
}

void StartPage::show_texts() {
    meter_->setText(texts_.pick(kMeterHeading));
    last_->setText(texts_.pick(kLastHeading));
    help_->setText(texts_.pick(kHelpHeading));
    no_device_->setText(texts_.pick(kNoDevice));
    search_->setText(texts_.pick(kSearch));
    search_->setToolTip(texts_.pick(kSearchTip));
    simulated_->setText(texts_.pick(kSimulated));
    simulated_->setToolTip(texts_.pick(kSimulatedTip));
    manual_->setText(texts_.pick(kManual));
}

}  // namespace m47::shell
