// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <array>

#include "dish_panel.h"
#include "lamp_colour.h"
#include "measurement.h"

namespace m47::realtime {

/// The measures that can be ticked, by their index in `meas_stated` and `meas_statea`.
enum DigitalMeasure { kDcpLevel, kCnDigital, kNoiseDigital, kChber, kPvBer, kCfo, kMer, kRu };
enum AnalogMeasure { kLevel, kCnAnalog, kNoiseAnalog };

inline const QString kStartCaption = QStringLiteral("&Start");
inline const QString kStopCaption = QStringLiteral("&Stop");

/// What the real-time screen shows, without a screen: each member is the content of the control of
/// that name. The rules work on it; the screen copies the user's entries into it and shows it.
struct RealtimePanel : dish::DishPanel {
    // Tuning
    QString fsat = QStringLiteral("1000.0");
    QString ol_freq = QStringLiteral("10600");
    QString srqpsk_txt = QStringLiteral("27500");
    QString chbws;
    std::array<bool, 2> locopt{true, false};
    bool ol_freq_enabled = true;
    int satlnb_state = 2;
    int k22_state = 1;
    int lnb_supply = 0;
    int atten_list = 6;

    // Measures and alarms
    std::array<bool, 8> meas_stated{};
    std::array<bool, 3> meas_statea{};
    std::array<bool, 8> meas_stated_enabled{true, true, true, true, true, true, true, true};
    bool rucomune_enabled = true;
    std::array<bool, 4> alarm_stated{};
    std::array<bool, 2> alarm_statea{};
    QString lev_mind, lev_maxd, cn_mind, cn_maxd, mer_mind, mer_maxd;
    QString chber_mind = QStringLiteral("1E-8");
    QString chber_maxd = QStringLiteral("3E-2");
    QString lev_mina, lev_maxa, cn_mina, cn_maxa;
    bool limits_enabled = true;
    std::array<LampColour, 6> alarm_light{};

    // Results
    QString dcplev, cndlev, noisedlev;
    QString bercomune, pvbercomune, cfcomune, mercomune, rucomune;
    QString leva, cnalev, noisealev;
    QString level_unit;  ///< of the levels shown, or of those that come; empty where not known
    /// Values and lamps are those of a program that was shown before the present one.
    bool results_of_before = false;

    // Frames
    bool sat_opt_visible = true;
    bool sat_opt_enabled = true;
    bool satdigmea_visible = false;
    bool analogresults_visible = true;
    bool digitalresults_visible = false;
    bool timer_opt_visible = false;

    // Plan
    bool plan_controls_visible = false;
    bool plan_keys_visible = false;  ///< the toolbar keys that walk through plans
    bool single_acq_visible = true;
    QString grp_name, prog_num;

    // Timed acquisition
    int time_delay = -1;  ///< index into kTimeDelays
    LampColour time_state = LampColour::grey;
    QString time_act;
    QString time_left;  ///< until the next timed firing, empty while none is expected
    QString cmdstart = QStringLiteral("Start");

    // Menu
    int cmdlev = 0;
    QString noise_freqa, noise_freqd;

    /// True where no level is shown.
    bool without_level() const { return leva.trimmed().isEmpty() && dcplev.trimmed().isEmpty(); }
};

/// What a timed firing measures.
inline constexpr int kSingleElement = 1;
inline constexpr int kPlan = 2;

/// What the rules of the real-time screen share and the user does not see.
struct RealtimeState : dish::DishState {
    /// The screen is being loaded or a program recalled: the handlers of the tuning controls and
    /// of the unit menu change the controls without sending their commands.
    bool recall_in_progress = false;
    int meas_mode = 2;  ///< 2 analog, 3 digital satellite (QPSK)
    QChar field_separator;
    bool alarm_raised = false;
    bool cn_done = false;
    double cn_value = 0;
    int acq_kind = kSingleElement;
    int ticks_left = 1;  ///< seconds before the next timed firing
    bool plan_run_active = false;
};

inline constexpr int kAnalogMode = static_cast<int>(measurement::MeasureMode::analog);
inline constexpr int kDigitalMode = static_cast<int>(measurement::MeasureMode::digital);

}  // namespace m47::realtime
