// SPDX-License-Identifier: GPL-3.0-or-later
#include "diseqc.h"

#include "commands.h"
#include "enter_key.h"
#include "numbers.h"
#include "program_commands.h"

namespace m47::dish {
namespace {

constexpr double kEntryMinimum = 1;
constexpr double kEntryMaximum = 99;

void confirm_entry(QString& box, int key) {
    if (key != kEnterKey) return;
    if (link::typed_value(box) < kEntryMinimum) box = QStringLiteral("01");
    if (link::typed_value(box) > kEntryMaximum) box = QStringLiteral("99");
    box = link::format_number(link::typed_value(box), "00");
}

/// What follows the two digits of a drive command.
QString amount_kind(bool in_steps) {
    return in_steps ? QStringLiteral(" 01") : QStringLiteral(" 00");
}

}  // namespace

void Diseqc::diseqc_cmd_Click(int index) {
    link_.send(programme::diseqc_command(index));
}

void Diseqc::dsqmtr_Click(int index) {
    if (index < kStopMotor || index > kResetMotor) return;
    const QString command = link::command::kDiseqcMotor + link::format_number(index, " 00");
    switch (index) {
        case kStorePosition:
            storesat_KeyPress(kEnterKey);
            panel_.repaint();
            link_.send(command + panel_.storesat);
            break;
        case kRecallPosition:
            recallsat_KeyPress(kEnterKey);
            panel_.repaint();
            link_.send(command + panel_.recallsat);
            break;
        case kDriveEast:
            drive(command, state_.east_limit_set, panel_.starteast_s, panel_.starteast_t);
            break;
        case kDriveWest:
            drive(command, state_.west_limit_set, panel_.startwest_s, panel_.startwest_t);
            break;
        default:
            link_.send(command);
    }
}

void Diseqc::drive(const QString& command, bool limit_set, QString& steps, QString& time) {
    QString& box = limit_set ? time : steps;
    confirm_entry(box, kEnterKey);
    panel_.repaint();
    link_.send(command + u' ' + box + amount_kind(!limit_set));
}

void Diseqc::storesat_KeyPress(int key) {
    confirm_entry(panel_.storesat, key);
}

void Diseqc::recallsat_KeyPress(int key) {
    confirm_entry(panel_.recallsat, key);
}

void Diseqc::starteast_s_KeyPress(int key) {
    confirm_entry(panel_.starteast_s, key);
}

void Diseqc::starteast_t_KeyPress(int key) {
    confirm_entry(panel_.starteast_t, key);
}

void Diseqc::startwest_s_KeyPress(int key) {
    confirm_entry(panel_.startwest_s, key);
}

void Diseqc::startwest_t_KeyPress(int key) {
    confirm_entry(panel_.startwest_t, key);
}

void Diseqc::starteast_s_Click() {
    panel_.starteast_s_colour = LampColour::red;
    panel_.starteast_t_colour = LampColour::green;
    state_.east_limit_set = false;
}

void Diseqc::starteast_t_Click() {
    panel_.starteast_s_colour = LampColour::green;
    panel_.starteast_t_colour = LampColour::red;
    state_.east_limit_set = true;
}

void Diseqc::startwest_s_Click() {
    panel_.startwest_s_colour = LampColour::red;
    panel_.startwest_t_colour = LampColour::green;
    state_.west_limit_set = false;
}

void Diseqc::startwest_t_Click() {
    panel_.startwest_s_colour = LampColour::green;
    panel_.startwest_t_colour = LampColour::red;
    state_.west_limit_set = true;
}

}  // namespace m47::dish
