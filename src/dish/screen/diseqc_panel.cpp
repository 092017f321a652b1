// SPDX-License-Identifier: GPL-3.0-or-later
#include "diseqc_panel.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLayout>
#include <QMouseEvent>

#include "box_room.h"
#include "control_array.h"
#include "diseqc_commands.h"
#include "enter_key.h"
#include "lamp_colours.h"
#include "ui_diseqc_panel.h"

namespace m47::dish {
namespace {

constexpr Bilingual kSteps{"steps", "passi"};
constexpr Bilingual kSeconds{"s", "s"};
constexpr Bilingual kFindPeak{"&Find the peak…", "&Trova il massimo…"};
constexpr Bilingual kPeakTip{"Turn the dish to the peak of the nearest satellite",
                             "Gira l'antenna sul massimo del satellite più vicino"};

/// Tells when a text box is clicked, or Space is pressed in it where there is no mouse.
class BoxClickFilter : public QObject {
  public:
    BoxClickFilter(QLineEdit* box, std::function<void()> clicked)
        : QObject(box), box_(box), clicked_(std::move(clicked)) {
        box->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::MouseButtonRelease) {
            const auto* mouse = static_cast<QMouseEvent*>(event);
            if (mouse->button() == Qt::LeftButton && box_->rect().contains(mouse->pos()))
                clicked_();
        }
        if (event->type() == QEvent::KeyPress &&
            static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space) {
            clicked_();
            return true;
        }
        return QObject::eventFilter(watched, event);
    }

  private:
    QLineEdit* box_;
    std::function<void()> clicked_;
};

void join_colour(Joints& joints, QLineEdit* box, const LampColour& colour) {
    joints.also([box, &colour] {
        const QColor wanted = shown_colour(colour);
        if (box->palette().color(QPalette::Base) == wanted) return;
        // All else is the desktop's, and changes with it.
        QPalette colours;
        colours.setColor(QPalette::Base, wanted);
        // Black can be read on both colours, whatever the palette of the desktop.
        colours.setColor(QPalette::Text, Qt::black);
        box->setPalette(colours);
    });
}

}  // namespace

bool belongs_to(const QWidget* panel, const QWidget* widget) {
    // Not isAncestorOf(), which stops at a list that has popped up.
    while (widget && widget != panel) widget = widget->parentWidget();
    return widget;
}

DiseqcPanel::DiseqcPanel(QWidget* parent)
    : QGroupBox(parent), ui_(std::make_unique<Ui::DiseqcPanel>()) {
    ui_->setupUi(this);
    size_controls();
    for (const QRadioButton* option : {ui_->dsqopt_0, ui_->dsqopt_1})
        connect(option, &QRadioButton::clicked, this, &DiseqcPanel::dsqopt_Click);
    connect(ui_->cmdpeak, &QPushButton::clicked, this, &DiseqcPanel::peak_asked);
}

DiseqcPanel::~DiseqcPanel() = default;

void DiseqcPanel::join(DishPanel& panel, Joints& joints) {
    joints.text(ui_->storesat, panel.storesat);
    joints.text(ui_->recallsat, panel.recallsat);
    joints.text(ui_->starteast_s, panel.starteast_s);
    joints.text(ui_->starteast_t, panel.starteast_t);
    joints.text(ui_->startwest_s, panel.startwest_s);
    joints.text(ui_->startwest_t, panel.startwest_t);
    join_colour(joints, ui_->starteast_s, panel.starteast_s_colour);
    join_colour(joints, ui_->starteast_t, panel.starteast_t_colour);
    join_colour(joints, ui_->startwest_s, panel.startwest_s_colour);
    join_colour(joints, ui_->startwest_t, panel.startwest_t_colour);
}

void DiseqcPanel::connect_to(Diseqc& rules, const Handle& handle) {
    connect(ui_->diseqc_cmd, &QComboBox::activated, this, [&rules, handle](int index) {
        handle("diseqc_cmd_Click", [&rules, index] { rules.diseqc_cmd_Click(index); });
    });
    const ControlArray<QPushButton> items(this, QStringLiteral("dsqmtr"));
    for (std::size_t k = 0; k < items.size(); ++k)
        connect(items[k], &QPushButton::clicked, this, [&rules, handle, k] {
            handle("dsqmtr_Click", [&rules, k] { rules.dsqmtr_Click(static_cast<int>(k)); });
        });
    const auto box = [&](QLineEdit* edit, const char* name, KeyPress handler) {
        connect_box(edit, name, handler, rules, handle);
    };
    box(ui_->storesat, "storesat_KeyPress", &Diseqc::storesat_KeyPress);
    box(ui_->recallsat, "recallsat_KeyPress", &Diseqc::recallsat_KeyPress);
    box(ui_->starteast_s, "starteast_s_KeyPress", &Diseqc::starteast_s_KeyPress);
    box(ui_->starteast_t, "starteast_t_KeyPress", &Diseqc::starteast_t_KeyPress);
    box(ui_->startwest_s, "startwest_s_KeyPress", &Diseqc::startwest_s_KeyPress);
    box(ui_->startwest_t, "startwest_t_KeyPress", &Diseqc::startwest_t_KeyPress);
    const auto click = [&](QLineEdit* edit, const char* name, Click handler) {
        connect_click(edit, name, handler, rules, handle);
    };
    click(ui_->starteast_s, "starteast_s_Click", &Diseqc::starteast_s_Click);
    click(ui_->starteast_t, "starteast_t_Click", &Diseqc::starteast_t_Click);
    click(ui_->startwest_s, "startwest_s_Click", &Diseqc::startwest_s_Click);
    click(ui_->startwest_t, "startwest_t_Click", &Diseqc::startwest_t_Click);
}

void DiseqcPanel::connect_box(QLineEdit* box, const char* name, KeyPress handler, Diseqc& rules,
                              const Handle& handle) {
    connect(box, &QLineEdit::returnPressed, this, [box, name, handler, &rules, handle] {
        handle(name, [&rules, handler] { (rules.*handler)(kEnterKey); });
        box->setModified(false);
    });
}

void DiseqcPanel::connect_click(QLineEdit* box, const char* name, Click handler, Diseqc& rules,
                                const Handle& handle) {
    new BoxClickFilter(box, [name, handler, &rules, handle] {
        handle(name, [&rules, handler] { (rules.*handler)(); });
    });
}

void DiseqcPanel::add_diseqc_command() {
    ui_->diseqc_cmd->clear();
    for (const char* entry : programme::kDiseqcCommands)
        ui_->diseqc_cmd->addItem(QString::fromLatin1(entry));
    ui_->diseqc_cmd->setCurrentIndex(-1);
}

void DiseqcPanel::set_captions(const Texts& texts) {
    for (QLabel* steps : {ui_->Label1, ui_->Label3}) steps->setText(texts.pick(kSteps));
    for (QLabel* seconds : {ui_->Label2, ui_->Label4}) seconds->setText(texts.pick(kSeconds));
    ui_->cmdpeak->setText(texts.pick(kFindPeak));
    ui_->cmdpeak->setToolTip(texts.pick(kPeakTip));
}

void DiseqcPanel::show_layout(const DiseqcLayout& layout) {
    ui_->dsq11opt->setVisible(layout.dsq11opt);
    ui_->dsq12opt->setVisible(layout.dsq12opt);
    this->layout()->activate();
    setFixedSize(layout.diseqc.expandedTo(minimumSizeHint()));
}

DiseqcState DiseqcPanel::opened() const {
    return opened_state(ui_->dsqopt_1->isChecked());
}

bool DiseqcPanel::busy() const {
    const QWidget* popup = QApplication::activePopupWidget();
    if (popup && belongs_to(this, popup)) return true;
    const auto* box = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    return box && belongs_to(this, box) && box->isModified();
}

void DiseqcPanel::keep_focus() {
    const QWidget* focus = QApplication::focusWidget();
    if (!belongs_to(ui_->dsq11opt, focus) && !belongs_to(ui_->dsq12opt, focus)) return;
    (ui_->dsqopt_1->isChecked() ? ui_->dsqopt_1 : ui_->dsqopt_0)->setFocus();
}

void DiseqcPanel::changeEvent(QEvent* event) {
    QGroupBox::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        size_controls();
}

void DiseqcPanel::size_controls() {
    for (QLineEdit* box : findChildren<QLineEdit*>()) fit_to_text(*box, QStringLiteral("00"));
}

}  // namespace m47::dish
