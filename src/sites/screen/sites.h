// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTimer>
#include <memory>
#include <optional>
#include <vector>

#include "database.h"
#include "open_sites.h"
#include "program_state.h"
#include "screen.h"
#include "site_list.h"
#include "site_tables.h"
#include "site_tree.h"
#include "worse_search.h"

namespace Ui {
class Sites;
}

namespace m47::sites {

/// The screen "Sites": what was measured where and when, and what became of it since.
class Sites : public Screen {
    Q_OBJECT
  public:
    /// The code rates of transponders come from the plans of `database`.
    Sites(OpenSites& sites, ProgramState& program, const db::Database& database,
          QWidget* parent = nullptr);
    ~Sites() override;

    QSize sizeHint() const override;
    void Form_Load() override;
    void Form_Activate() override;

    /// The site that is chosen, or whose visit is; nothing where none is.
    const std::optional<Site>& site() const { return site_; }
    /// The visit that is chosen, of a site the latest one; nothing where it has none.
    const std::optional<Visit>& visit() const { return visit_; }

    /// Reads the file anew and shows it, with the same choice where that is still there.
    void reload();
    /// Chooses the visit and shows it; filters that hide it are taken away.
    void show_visit(const QUuid& site, const QUuid& visit);
    /// The same, compared with the visit `other`.
    void show_comparison(const QUuid& site, const QUuid& visit, const QUuid& other);
    /// What "Report…" does for a site and the visits chosen of it, none where it is the site
    /// itself. There is no such key before.
    using MakeReport = std::function<void(const Site& site, const std::vector<QUuid>& visits)>;
    void set_report(MakeReport report);
    /// The code rates that the plans know; never a fault.
    CodeRateOf code_rates() const;

    /// Saves the table in front to `path`.
    void save(const QString& path);

  protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    /// What a visit is compared with.
    enum class With { last, first, chosen };

    void set_up_looks();
    void connect_keys();
    void connect_files();
    void connect_lists();
    void connect_views();
    void name_views();
    // The list of sites.
    void read_file();
    void let_go();
    void show_list();
    void show_note(const QString& text);
    void keep_choice();
    void choose(const QModelIndex& index);
    void look_at_file();
    void file_failed(const StoreError& error);
    SitesWanted wanted() const;
    void propose_dates();
    void show_all();
    QString file_signature() const;
    // What the keys do.
    void sites_new_Click();
    void sites_edit_Click();
    void sites_remove_Click();
    void sites_report_Click();
    void sites_save_Click();
    bool still_so(const Site& site) const;
    bool may_remove(const Visit* visit);
    // The visit and its views.
    void show_chosen();
    void show_front();
    void show_rows();
    void list_others();
    void compare_chosen();
    void show_compared();
    std::optional<Visit> other_visit() const;
    void list_programs();
    void choose_program(const measurement::SeriesKey& key);
    void show_chart();
    void list_charts();
    void sites_look_Click();
    void look_on();
    void show_worse();
    ShownTable front_table() const;
    QString front_name() const;

    OpenSites& sites_;
    ProgramState& program_;
    const db::Database& database_;
    std::unique_ptr<Ui::Sites> ui_;
    SiteTree tree_;
    QTimer watch_;
    QTimer looking_;
    QString signature_;  ///< of the file as it was read last

    std::shared_ptr<SiteStore> store_;
    std::unique_ptr<SiteList> list_;
    std::optional<Site> site_;
    std::optional<Visit> visit_;
    MakeReport report_;
    bool dates_proposed_ = false;
    bool site_itself_ = false;  ///< not one of its visits is chosen
    std::vector<VisitMeasurement> rows_;
    std::vector<Visit> at_site_;  ///< all visits there, the latest first
    std::vector<Visit> others_;   ///< but the one chosen
    With with_ = With::last;
    QUuid with_visit_;  ///< where With::chosen
    std::vector<ProgramComparison> compared_;
    std::vector<measurement::SeriesKey> programs_;
    std::vector<VisitMeasurement> charted_;
    std::unique_ptr<WorseSearch> search_;
    std::vector<GotWorse> worse_;
};

}  // namespace m47::sites
