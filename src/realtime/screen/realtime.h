// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "acquisition.h"
#include "customer_report.h"
#include "level_view.h"
#include "pointing.h"
#include "realtime_rules.h"
#include "screen.h"
#include "timer_ticker.h"

namespace Ui {
class Realtime;
}

namespace m47::realtime {

class PanelBinding;

/// The screen "Real Time Function Mode": binds the real-time rules to its controls.
class Realtime : public Screen {
    Q_OBJECT

    std::unique_ptr<RealtimeRules> own_rules_;
    acquisition::TimerTicker timer1_;
    acquisition::TimerTicker timer2_;
    acquisition::TimerTicker timer3_;

  public:
    /// Takes over `rules`, also such that have measured already, and shows how they stand.
    explicit Realtime(std::unique_ptr<RealtimeRules> rules, QWidget* parent = nullptr);
    ~Realtime() override;

    RealtimeRules& rules;
    acquisition::Acquisition acquisition;

    /// Prepares screen and meter; run once, when the screen is already visible.
    void Form_Load() override;
    /// Captions, tooltips and lists, in the language in force; a part of Form_Load.
    void fill_in();
    /// Brings the newest row of the page into sight.
    void show_newest();
    /// Run each time the screen comes to the front.
    void Form_Activate() override;

    /// A meter was connected again while the screen is open.
    void meter_came();

    /// Tunes to `carrier`, as the controls then show it.
    void tune_to(const WantedCarrier& carrier);
    /// The same, and goes on to the peak of the dish there.
    void find_peak_at(const WantedCarrier& carrier);

    /// The motor of a dish has been chosen.
    bool has_motor() const;
    /// The plan that is measured; empty where none is.
    QString plan_in_force() const;
    /// More entries for the menu, above those of the log and the report.
    void add_entries(const QList<QAction*>& entries);
    /// A run measures, or waits for its next time: the meter is not free for anything else. The
    /// user is told then.
    bool told_that_run_goes_on();

    /// Opens `file` as the log, as the key "save" does with the chosen name.
    void open_log(const QString& file);
    /// What a report says of the meter.
    QString meter_of_report() const { return meter_text(program_); }

    /// Writes the report of the page to `file`; a failure shows one message box.
    void write_report(const QString& file, const report::ReportEntry& entry);

  Q_SIGNALS:
    /// How far a plan pass is, "12/30"; empty when none runs.
    void progress(const QString& text);
    /// A pass ended before its last program, `reason` says why; the next one begins at its time.
    void cut_short(const QString& reason);
    /// A pass goes on without having measured one of its programs, `reason` says why.
    void left_out(const QString& reason);
    /// A measurement has no row, as the meter's answer to `command` was doubtful.
    void no_row(const QString& command);

  private:
    void handle(const char* name, const std::function<void()>& body) override;
    void join_panel();
    void connect_tuning();
    void connect_diseqc();
    void connect_lists();
    void connect_menu();
    void connect_limits();
    void connect_timers();
    acquisition::PassNews pass_news();
    void fill_keys();
    void prepare_page();
    void datamenagment();
    QString ask_log_name();
    void list_recent_logs();
    void cmdrecent_Click(const QString& path);
    void show_log_name();
    void show_log_state(const QString& reason);
    void connect_level_view();
    void cmdpeak_Click();
    bool store_position(int number);
    void show_row_as_level(int row);
    void repeat_level(bool on);
    void point_once();
    /// Shows a run that goes on by itself where work at the meter is shown.
    void tell_run();
    void createdoc();
    void cmdreport_Click();
    QList<report::ReportLimits> limits_in_force();
    void follow_page();

    ProgramState& program_;
    std::unique_ptr<Ui::Realtime> ui_;
    std::unique_ptr<PanelBinding> binding_;
    QString file_name_tooltip_;
    level::LevelView* level_view_;
    std::unique_ptr<Pointing> pointing_;  ///< while the level is repeated alone
    QTimer next_level_;
};

}  // namespace m47::realtime
