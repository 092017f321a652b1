// SPDX-License-Identifier: GPL-3.0-or-later
// The DiSEqC panel on the real-time screen, under the pointer and from the keyboard.
#pragma once

#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QWheelEvent>

#include "control_array.h"
#include "diseqc_commands.h"
#include "lamp.h"
#include "realtime.h"
#include "realtime_fixture.h"

namespace m47::realtime {

class DiseqcPanelTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void cleanup();

    void loading_fills_the_list_and_sends_none_of_it();
    void the_pointer_opens_and_folds();
    void the_options_open_their_part();
    void the_focus_opens_and_folds();
    void tab_walks_through_the_motor();
    void folding_leaves_the_focus_on_the_option();
    void an_open_list_keeps_the_panel_open();
    void an_unconfirmed_entry_keeps_the_panel_open();
    void selecting_with_the_mouse_does_not_fold();
    void leaving_the_frame_folds();
    void another_program_in_front_folds_nothing();
    void nothing_opens_while_a_plan_runs_the_tuning();
    void the_open_panel_pushes_its_neighbours();
    void the_open_panel_is_scrolled_to_in_a_low_window();
    void a_larger_font_makes_a_larger_panel();
    void nothing_is_clipped();
    void every_choice_of_the_list_sends();
    void keys_and_wheel_on_the_list();
    void motor_items_data();
    void motor_items();
    void boxes_take_two_digits();
    void clicking_a_box_chooses_it();
    void boxes_can_be_read_data();
    void boxes_can_be_read();
    void labels_in_both_languages();

  private:
    template <class Kind = QWidget>
    Kind* find(const char* name) {
        auto* found = screen_->findChild<Kind*>(QString::fromLatin1(name));
        if (!found) qFatal("no %s", name);
        return found;
    }
    void point_at(const char* name) { QTest::mouseMove(find(name)); }
    /// Over `sat_opt`, outside `diseqc`.
    void point_outside() { QTest::mouseMove(find("sat_opt"), QPoint(60, 190)); }
    void open_motor();
    /// The panel is in `state`: its sizes, and its parts shown and hidden.
    bool shows(const QByteArray& state);
    QByteArray shown();
    void load(int language = kEnglish);

    std::unique_ptr<RealtimeFixture> f_;
    std::unique_ptr<Realtime> screen_;
};

}  // namespace m47::realtime
