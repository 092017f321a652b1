// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>
#include <QMainWindow>
#include <QMap>
#include <QMdiSubWindow>
#include <QPointer>
#include <functional>
#include <memory>

#include "activity_area.h"
#include "corrected_menu.h"
#include "identification.h"
#include "other_languages.h"
#include "program_state.h"
#include "saved_notice.h"
#include "screen.h"
#include "status_panel.h"
#include "toolkit_language.h"
#include "visit_mark.h"
#include "window_fit.h"
#include "window_menu.h"

namespace Ui {
class M47MDI;
}

namespace m47::shell {

/// How the main window makes one of its screens.
using ScreenMaker = std::function<Screen*()>;

/// The main window: toolbar and menus, the child views, the link's status.
class M47MDI : public QMainWindow, public link::MainWindowView {
    Q_OBJECT
  public:
    explicit M47MDI(ProgramState& program, QWidget* parent = nullptr);
    ~M47MDI() override;

    StatusPanel& status() { return *status_; }

    /// The screen that toolbar key `key` opens.
    void add_screen(const QString& key, const ScreenMaker& maker);

    /// Takes the place that the window had in the run before, or the size `otherwise`; wholly on a
    /// screen, with its frame, whatever screen there is now.
    void restore_place(const QSize& otherwise);

    /// Remembers the places of the windows.
    void keep_places();

    /// Shows the screen of `key`, made where it does not exist yet; a key without one does nothing.
    void open_screen(const QString& key);
    /// The screen of `key` where it is open, else nullptr.
    Screen* screen_of(const QString& key) const;
    /// The screen of that kind where it is open, else nullptr.
    template <class Kind>
    Kind* opened() const {
        for (const QString& key : views_.keys())
            if (auto* found = qobject_cast<Kind*>(screen_of(key))) return found;
        return nullptr;
    }

    /// The key of the screen in front, empty where none is open.
    QString front_key() const;

    /// Progress of a plan pass in the status line; empty clears it.
    void show_progress(const QString& text);
    /// Progress and outcome of an upload, or a pass that ended early, in the same place, with what
    /// went wrong as its tooltip.
    void show_upload(const QString& text, const QString& tooltip);

    /// What the user has to know though no box may stop a run for it; stays until the next one, or
    /// until corrected behaviour is chosen. Beside the progress, which changes all the time.
    void show_notice(const QString& text);
    /// The same for what is true until the user does something else, such as why nothing was done.
    void show_remark(const QString& text);
    /// `text` is true no more; does nothing where something else stands there.
    void end_remark(const QString& text);

    /// Shows `page`, which belongs to this window then, where no screen lies, as large as the room.
    void put_behind_screens(QWidget* page);

    /// Shows what is being done at the meter; what is shown may stop it.
    void show_activity(link::Activity& activity);

    /// Shows that the line is recorded into `path`; that it is not where that is empty.
    void show_recording(const QString& path);

    /// What the entry "Begin visit…" is called, and which of the two entries can be chosen.
    void show_visit_entries(const QString& begin, const QString& tip, bool can_begin, bool can_end);
    /// Names the visit in the status line, as VisitMark::say; nothing stands there where `text` is
    /// empty.
    void show_visit(const QString& text, const QString& more, bool pressing);
    /// The entries of a visit, for the menu of a screen as well.
    QList<QAction*> visit_entries() const;

    /// Asked before the window closes, behind the screens; false where the user wants to stay.
    std::function<bool()> may_close;

    /// There is a port whose identification cmdreconnect can run again.
    void allow_reconnect();

    void cmdinglese_Click();
    void cmditaliano_Click();
    /// Says in the language in force what this window says itself; the menu's check marks stay.
    void show_texts();

    QString caption() const override;
    void set_caption(const QString& caption) override;
    void enable_asl(bool on) override;

  Q_SIGNALS:
    /// The window has been painted for the first time and is to be seen, or a second has passed
    /// without that.
    void painted();
    /// The language is another one now.
    void texts_shown();
    /// The menu entry "&Reconnect".
    void reconnect_asked();
    /// The menu entry and key "I&dentify satellite…".
    void identify_asked();
    /// The menu entry "Begin &visit…".
    void visit_asked();
    /// The menu entry "&End visit…".
    void end_visit_asked();
    /// The menu entry "Import lo&g…".
    void import_log_asked();
    /// The menu entry "&Import old database…".
    void import_asked();
    /// The menu entry "Re&cord the line…".
    void trace_asked();
    /// The menu entry "Ope&n recording…".
    void replay_asked();
    /// The menu entry "Report a &problem…".
    void problem_asked();
    /// The menu entry "&Manual", F1.
    void manual_asked();
    /// The key [Stop] of what is being done.
    void stop_asked();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void add_keys();
    void key_clicked(const QByteArray& bar, const QAction* key);
    void add_instruments();
    void connect_entries();
    void connect_window_menu();
    /// Gives a screen that opens, or is no tab any more, its place.
    void put_in_place(const QString& key, QMdiSubWindow* view) const;
    void restore_place_of(const QString& key, QMdiSubWindow* view) const;
    void keep_places_of_screens();
    void keep_place_of(const QString& key, const QMdiSubWindow* view) const;
    void begin();
    void screen_activated(QMdiSubWindow* view);
    /// Gives the keyboard to `screen`, where it was in it last.
    static void focus_in(Screen* screen);
    /// A new screen opens wholly visible, scaled to the room there is.
    void keep_inside(QMdiSubWindow* view) const;
    QString key_of(const QMdiSubWindow* view) const;
    void tell_costs();
    void end_remark();
    void show_saved(const QString& path);

    ProgramState& program_;
    QString caption_;
    std::unique_ptr<Ui::M47MDI> ui_;
    QLabel* progress_;
    QLabel* notice_;
    OtherLanguages* languages_;
    SavedNotice* saved_ = nullptr;      ///< made with the first file
    VisitMark* visit_ = nullptr;        ///< made with the first visit
    ActivityArea* activity_ = nullptr;  ///< made with the first activity
    StatusPanel* status_;
    CorrectedMenu* corrected_ = nullptr;
    WindowMenu* windows_ = nullptr;
    QList<QAction*> screen_keys_;  ///< one for each screen, in their order
    QMap<QString, ScreenMaker> makers_;
    QMap<QString, QPointer<QMdiSubWindow>> views_;
    QPointer<QMdiSubWindow> front_;
    QString remark_;
    bool was_painted_ = false;
    bool begun_ = false;
    QPointer<QWidget> behind_;  ///< the screens
    WindowFit fit_{this};
    ToolkitLanguage toolkit_language_;
};

}  // namespace m47::shell
