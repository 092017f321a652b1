// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <functional>
#include <memory>

#include "band_desk.h"
#include "band_run.h"
#include "screen.h"

class QFileDialog;

namespace Ui {
class BandSweep;
}

namespace m47::band {

/// The screen "Band sweep": what is in the band, as a chart that grows while the meter is asked and
/// as a table of the carriers found.
class BandSweep : public Screen {
    Q_OBJECT
  public:
    /// `desk` outlives the screen, which begins with what lies there.
    BandSweep(link::Link& link, ProgramState& program, BandDesk& desk, QWidget* parent = nullptr);
    ~BandSweep() override;

    /// Wide enough for chart and table.
    QSize sizeHint() const override;

    /// Captions, tooltips and lists in the language in use; run once, when the screen is there.
    void Form_Load() override;

    /// What came, and the carriers in it.
    const BandStore& store() const { return store_; }
    const std::vector<FoundCarrier>& carriers() const { return carriers_; }

    /// Saves to `path`, in the kind that its suffix says.
    void save(const QString& path);
    /// Takes the table at `path` as the reference, as far as it is sound.
    void load_reference(const QString& path);
    /// Names the carriers by the DVB scan table at `path`.
    void load_scan_table(const QString& path);

  Q_SIGNALS:
    /// A carrier was chosen to be tuned to.
    void carrier_chosen(const m47::band::FoundCarrier& carrier);
    /// The carriers are wanted as programs.
    void programs_wanted(const std::vector<m47::plans::ImportCandidate>& programs);

  private:
    void join_boxes();
    void connect_keys();
    void connect_looks();
    void connect_chart();
    void band_start_Click();
    void band_stop_Click();
    void band_clear_Click();
    void band_keep_Click();
    void band_save_Click();
    void band_programs_Click();
    void choose_carrier(std::size_t place);
    void choose_flag(std::size_t flag);
    void mark(double mhz, std::size_t marker);
    void move_marker(std::size_t marker, bool up);
    void set_marker(std::size_t marker, const std::optional<Sample>& level);

    void follow(BandRun& run);
    void pass_begins(const BandPass& pass, std::optional<LevelUnit> unit);
    void find_all_carriers();
    void list_states(std::size_t shown);
    const BandState* shown_state() const;
    SweepTerms shown_terms() const;
    std::vector<FoundCarrier> shown_carriers() const;
    void show_band();
    void show_while_waiting();
    void axis_changed();
    void tell_result(const QString& text);
    QString ask_file(FilePurpose purpose, const std::function<void(QFileDialog&)>& set_up);
    std::vector<SweepRow> rows() const;

    link::Link& link_;
    ProgramState& program_;
    std::unique_ptr<Ui::BandSweep> ui_;
    BandBoxes& boxes_;
    BandLook look_;
    BandStore& store_;
    std::vector<ListedTransponder>& listed_;
    std::vector<FoundCarrier> carriers_;
    bool grown_ = false;  ///< what came last is not shown yet
    QElapsedTimer shown_at_;
    qint64 next_picture_ = 0;  ///< ms behind it
};

}  // namespace m47::band
