// SPDX-License-Identifier: GPL-3.0-or-later
#include "realtime_layout.h"

#include <QEvent>
#include <QHeaderView>
#include <QScrollBar>
#include <initializer_list>

#include "body_sides.h"
#include "box_room.h"
#include "diseqc_layout.h"
#include "key_room.h"
#include "measure_rows.h"
#include "measures.h"
#include "read_out.h"
#include "ui_realtime.h"

namespace m47::realtime {
namespace {

// What the boxes are to show whole, of their kind the longest.
constexpr const char* kLongestLimit = "0.0E-00";
constexpr const char* kLongestFrequency = "00000.00";
constexpr const char* kLongestNumber = "00000";

/// Of all columns and what is around them.
int page_width(const QTableView& page) {
    return page.horizontalHeader()->length() + page.verticalScrollBar()->sizeHint().width() +
           page.verticalHeader()->sizeHint().width() + 2 * page.frameWidth();
}

}  // namespace

RealtimeLayout::RealtimeLayout(Ui::Realtime& ui, QWidget* screen)
    : QObject(screen), ui_(ui), screen_(screen) {
    keep_rooms();
    fit();
    new BodySides(ui.body, ui.sides, ui.controls_area, ui.controls_layout,
                  page_width(*ui.measgrid));
    screen->installEventFilter(this);
}

void RealtimeLayout::keep_rooms() {
    for (QWidget* hidden : std::initializer_list<QWidget*>{
             ui_.grp_label, ui_.grp_name, ui_.pglabel, ui_.prog_num, ui_.file_label, ui_.file_name,
             ui_.satdigmea, ui_.analogresults, ui_.digitalresults, ui_.timer_opt})
        keep_room(*hidden);
    keep_room_of_keys(ui_.barracomandi, {ui_.previous, ui_.next, ui_.previous_prog, ui_.next_prog});
    // The DiSEqC panel opens to the side without pushing the measures away.
    ui_.satdigmea->setMinimumWidth(dish::diseqc_layout(dish::DiseqcState::motor).sat_opt.width());
}

bool RealtimeLayout::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) fit();
    return QObject::eventFilter(watched, event);
}

void RealtimeLayout::fit() {
    for (const Measure& measure : measures())
        if (auto* result = screen_->findChild<ReadOut*>(QLatin1String(measure.result)))
            result->follow(screen_->font());
    fit_boxes();
    level_all_rows();
    // What is hidden does not tell its neighbours that it needs another room now.
    for (QWidget* frame : {ui_.satdigmea, ui_.analogresults, ui_.digitalresults, ui_.timer_opt}) {
        for (QLayout* layout : frame->findChildren<QLayout*>()) layout->invalidate();
        frame->updateGeometry();
    }
}

void RealtimeLayout::fit_boxes() {
    for (const LimitBox& limit : limit_boxes())
        if (auto* box = screen_->findChild<QLineEdit*>(QLatin1String(limit.control.name)))
            fit_to_text(*box, QString::fromLatin1(kLongestLimit));
    for (QLineEdit* box : {ui_.fsat, ui_.ol_freq, ui_.noise_freqa, ui_.noise_freqd})
        fit_to_text(*box, QString::fromLatin1(kLongestFrequency));
    for (QLineEdit* box : {ui_.chbws, ui_.srqpsk_txt})
        fit_to_text(*box, QString::fromLatin1(kLongestNumber));
}

void RealtimeLayout::level_all_rows() {
    level_rows(*ui_.digital_measures, *ui_.alarm_opttd, *ui_.alarm_opttd_layout);
    level_rows(*ui_.analog_measures, *ui_.alarm_optta, *ui_.alarm_optta_layout);
}

}  // namespace m47::realtime
