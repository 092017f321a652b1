// SPDX-License-Identifier: GPL-3.0-or-later
#include "choice_panel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <cmath>

#include "box_room.h"
#include "numbers.h"
#include "oscillators.h"
#include "tooltips.h"

namespace m47::identify {
namespace {

constexpr double kCBandOscillator = 5150;  // MHz

constexpr Bilingual kCandidates{"C&andidates", "Ca&ndidati"};
constexpr Bilingual kFromTables{"all tables", "tutte le tabelle"};
constexpr Bilingual kFromPart{"part of the arc", "parte dell'arco"};
constexpr Bilingual kFromPlans{"my plans", "i miei piani"};
constexpr Bilingual kOne{"From this place on the arc, as 5.0E or 30W",
                         "Da questo punto dell'arco, come 5.0E o 30W"};
constexpr Bilingual kOther{"To this place on the arc, as 30.0E or 5W",
                           "A questo punto dell'arco, come 30.0E o 5W"};
constexpr Bilingual kTables{"Ta&bles…", "Ta&belle…"};
constexpr Bilingual kTablesTip{"Folder of the scan tables: %1",
                               "Cartella delle tabelle di scansione: %1"};
constexpr Bilingual kLnb{"&LNB", "&LNB"};
constexpr Bilingual kUniversal{"universal", "universale"};
constexpr Bilingual kSingle{"one oscillator", "un oscillatore"};
constexpr Bilingual kCBand{"C band", "banda C"};
constexpr Bilingual kOscillator{"Oscillator of the LNB, MHz", "Oscillatore dell'LNB, MHz"};
constexpr Bilingual kCircular{"ci&rcular", "ci&rcolare"};
constexpr Bilingual kCircularTip{"It receives right-hand at 13 V and left-hand at 18 V",
                                 "Riceve la destrorsa a 13 V e la sinistrorsa a 18 V"};

constexpr Bilingual kDishTip{"Diameter of the dish, 30 to 1000 cm",
                             "Diametro dell'antenna, da 30 a 1000 cm"};

constexpr Bilingual kNoSuchDish{"Nothing was asked: a dish has a diameter from 30 to 1000 cm.",
                                "Non si è chiesto niente: un'antenna ha un diametro da 30 a 1000 "
                                "cm."};
constexpr Bilingual kNoPlace{
    "Nothing was asked: a place on the arc is written as 13.0E or 30W, up to 180 degrees.",
    "Non si è chiesto niente: un punto dell'arco si scrive come 13.0E o 30W, fino a 180 gradi."};
constexpr Bilingual kNoSuchOscillator{
    "Nothing was asked: an LNB has an oscillator from 3070 to 12000 MHz.",
    "Non si è chiesto niente: un LNB ha un oscillatore da 3070 a 12000 MHz."};

Lnb lnb_of(const ChoiceBoxes& boxes) {
    Lnb lnb = Lnb::universal();
    if (boxes.lnb == ChoiceBoxes::single) lnb = Lnb::single(link::typed_value(boxes.oscillator));
    if (boxes.lnb == ChoiceBoxes::c_band) lnb = Lnb::single(kCBandOscillator);
    lnb.circular = boxes.circular;
    return lnb;
}

}  // namespace

CandidateChoice choice_of(const ChoiceBoxes& boxes) {
    CandidateChoice choice{.folder = boxes.folder, .lnb = lnb_of(boxes)};
    choice.dish = static_cast<int>(std::lround(link::typed_value(boxes.dish)));
    choice.plans = boxes.from == ChoiceBoxes::plans;
    if (boxes.from == ChoiceBoxes::part_of_arc)
        choice.part = arc_part_of(boxes.one + u':' + boxes.other);
    return choice;
}

const Bilingual* fault_of(const ChoiceBoxes& boxes) {
    const CandidateChoice choice = choice_of(boxes);
    if (boxes.from == ChoiceBoxes::part_of_arc && !choice.part) return &kNoPlace;
    if (!programme::is_oscillator(choice.lnb.oscillator)) return &kNoSuchOscillator;
    return choice.dish < kLeastDish || choice.dish > kMostDish ? &kNoSuchDish : nullptr;
}

ChoicePanel::ChoicePanel(const ChoiceBoxes& boxes, const Texts& texts, QWidget* parent)
    : QWidget(parent), texts_(texts) {
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    build_candidates(layout, boxes);
    build_lnb(layout, boxes);
    layout->setColumnStretch(2, 1);
    set_folder(boxes.folder);
    enable_boxes();
}

void ChoicePanel::build_candidates(QGridLayout* layout, const ChoiceBoxes& boxes) {
    from_ = list("identify_from", kCandidates, layout, 0);
    for (const Bilingual& entry : {kFromTables, kFromPart, kFromPlans})
        from_->addItem(texts_.pick(entry));
    from_->setCurrentIndex(boxes.from);
    one_ = box("identify_one", boxes.one, QStringLiteral("180.0W"), kOne);
    other_ = box("identify_other", boxes.other, QStringLiteral("180.0W"), kOther);
    tables_ = new QPushButton(texts_.pick(kTables));
    tables_->setObjectName(QStringLiteral("identify_tables"));
    tables_->setAutoDefault(false);
    auto* row = new QHBoxLayout;
    row->setSpacing(fontMetrics().averageCharWidth() / 2);
    row->addWidget(one_);
    row->addWidget(new QLabel(QStringLiteral("–")));
    row->addWidget(other_);
    row->addWidget(tables_);
    row->addStretch();
    layout->addLayout(row, 0, 2);
    connect(from_, &QComboBox::currentIndexChanged, this, &ChoicePanel::enable_boxes);
    connect(tables_, &QPushButton::clicked, this, &ChoicePanel::folder_asked);
}

void ChoicePanel::build_lnb(QGridLayout* layout, const ChoiceBoxes& boxes) {
    lnb_ = list("identify_lnb", kLnb, layout, 1);
    for (const Bilingual& entry : {kUniversal, kSingle, kCBand}) lnb_->addItem(texts_.pick(entry));
    lnb_->setCurrentIndex(boxes.lnb);
    oscillator_ =
        box("identify_oscillator", boxes.oscillator, QStringLiteral("12000"), kOscillator);
    circular_ = new QCheckBox(texts_.pick(kCircular));
    circular_->setObjectName(QStringLiteral("identify_circular"));
    circular_->setToolTip(texts_.pick(kCircularTip));
    circular_->setChecked(boxes.circular);
    auto* row = new QHBoxLayout;
    row->setSpacing(fontMetrics().averageCharWidth() / 2);
    row->addWidget(oscillator_);
    row->addWidget(circular_);
    build_dish(row, boxes);
    row->addStretch();
    layout->addLayout(row, 1, 2);
    connect(lnb_, &QComboBox::currentIndexChanged, this, &ChoicePanel::lnb_chosen);
}

void ChoicePanel::build_dish(QBoxLayout* row, const ChoiceBoxes& boxes) {
    dish_ = box("identify_dish", boxes.dish, QStringLiteral("1000"), kDishTip);
    usual_dish_ = usual_dish(lnb_of(boxes));
    // Words in its place are too wide for a small screen; it has its name and tip.
    row->addWidget(new QLabel(QStringLiteral("Ø")));
    row->addWidget(dish_);
    row->addWidget(new QLabel(QStringLiteral("cm")));
}

/// A dish that nobody has told otherwise is the usual one of the LNB.
void ChoicePanel::lnb_chosen() {
    enable_boxes();
    const int usual = usual_dish(lnb_of(boxes()));
    if (dish_->text() == QString::number(usual_dish_)) dish_->setText(QString::number(usual));
    usual_dish_ = usual;
}

QComboBox* ChoicePanel::list(const char* name, const Bilingual& caption, QGridLayout* layout,
                             int row) {
    auto* label = new QLabel(texts_.pick(caption));
    auto* made = new QComboBox;
    made->setObjectName(QString::fromLatin1(name));
    label->setBuddy(made);
    layout->addWidget(label, row, 0);
    layout->addWidget(made, row, 1);
    return made;
}

QLineEdit* ChoicePanel::box(const char* name, const QString& text, const QString& longest,
                            const Bilingual& tip) {
    auto* made = new QLineEdit(text);
    made->setObjectName(QString::fromLatin1(name));
    made->setToolTip(texts_.pick(tip));
    made->setAccessibleName(texts_.pick(tip));
    fit_to_text(*made, longest);
    return made;
}

void ChoicePanel::set_folder(const QString& folder) {
    folder_ = folder;
    tables_->setToolTip(plain_tooltip(texts_.pick(kTablesTip).arg(folder)));
}

void ChoicePanel::enable_boxes() {
    const bool part = from_->currentIndex() == ChoiceBoxes::part_of_arc;
    one_->setEnabled(part);
    other_->setEnabled(part);
    tables_->setEnabled(from_->currentIndex() != ChoiceBoxes::plans);
    oscillator_->setEnabled(lnb_->currentIndex() == ChoiceBoxes::single);
}

ChoiceBoxes ChoicePanel::boxes() const {
    ChoiceBoxes boxes;
    boxes.from = from_->currentIndex();
    boxes.one = one_->text();
    boxes.other = other_->text();
    boxes.folder = folder_;
    boxes.lnb = lnb_->currentIndex();
    boxes.oscillator = oscillator_->text();
    boxes.circular = circular_->isChecked();
    boxes.dish = dish_->text();
    return boxes;
}

}  // namespace m47::identify
