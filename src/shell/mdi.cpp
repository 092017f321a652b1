// SPDX-License-Identifier: GPL-3.0-or-later
#include "mdi.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <chrono>
#include <utility>

#include "about_box.h"
#include "busy_input.h"
#include "elided_label.h"
#include "handler.h"
#include "icons.h"
#include "keyboard_access.h"
#include "screen_table.h"
#include "tooltips.h"
#include "ui_mdi.h"

namespace m47::shell {
namespace {

/// Timers rest while a handler waits for the meter.
constexpr std::chrono::milliseconds kAfterTheHandler{1};
/// What has been painted is to be seen before anything else is made.
constexpr std::chrono::milliseconds kOnTheScreen{20};
/// A window that is begun minimised is not painted.
constexpr std::chrono::seconds kNobodyLooks{1};

constexpr Bilingual kNoWork{"The key \"%1\" has no function.", "Il tasto \"%1\" non ha funzioni."};

constexpr Bilingual kRecords{"The line is being recorded into %1",
                             "La linea viene registrata in %1"};

constexpr Bilingual kIdentifyWord{"Identify", "Identifica"};

constexpr Tooltip kMenuTips[] = {
    {"cmdidentify", "Find out which satellite the dish looks at",
     "Scopre quale satellite guarda l'antenna"},
    {"cmdendvisit", "End the visit; remarks can be added",
     "Termina la visita; si può aggiungere una nota"},
    {"cmdimportlog", "Make visits to a site of an existing log",
     "Ricava da un log esistente le visite a un sito"},
    {"cmdimportdb", "Bring plans and satellites from an old database",
     "Importa piani e satelliti da un vecchio database"},
    {"cmdtrace", "Write down all that goes over the line, for whoever looks for a fault",
     "Annota tutto ciò che passa sulla linea, per chi cerca un guasto"},
    {"cmdreplay", "Connect the meter of a recording: it answers as it did then",
     "Collega lo strumento di una registrazione: risponde come allora"},
    {"cmdproblem", "Put into one file what somebody needs who looks for a fault",
     "Raccoglie in un file ciò che serve a chi cerca un guasto"},
    {"cmdmanual", "Open the manual at the page of this screen",
     "Apre il manuale alla pagina di questa schermata"},
    {"cmdabout", "Version, folder and licence of this program",
     "Versione, cartella e licenza di questo programma"},
};

constexpr Caption kMenuCaptions[] = {
    {"cmdscreens", {"&Screens", "&Schermate"}},
    {"cmdreconnect", {"&Reconnect", "&Ricollega"}},
    {"cmdidentify", {"I&dentify satellite…", "I&dentifica satellite…"}},
    {"cmdendvisit", {"&End visit…", "T&ermina visita…"}},
    {"cmdimportlog", {"Import lo&g…", "Imp&orta log…"}},
    {"cmdimportdb", {"&Import old database…", "&Importa un vecchio database…"}},
    {"cmdtrace", {"Re&cord the line…", "Regis&tra la linea…"}},
    {"cmdreplay", {"Ope&n recording…", "Apri re&gistrazione…"}},
    {"cmdproblem", {"Report a &problem…", "Segnala un &problema…"}},
    {"cmdmanual", {"&Manual", "&Manuale"}},
    {"cmdabout", {"&About", "I&nformazioni"}},
};

}  // namespace

M47MDI::M47MDI(ProgramState& program, QWidget* parent)
    : QMainWindow(parent),
      program_(program),
      ui_(std::make_unique<Ui::M47MDI>()),
      progress_(new QLabel),
      notice_(new ElidedLabel),
      status_(new StatusPanel) {
    ui_->setupUi(this);
    add_keys();
    caption_ = windowTitle();
    progress_->setObjectName(QStringLiteral("plan_progress"));
    progress_->setTextFormat(Qt::PlainText);
    ui_->status_line->addWidget(progress_);
    notice_->setObjectName(QStringLiteral("corrected_notice"));
    ui_->status_line->addWidget(notice_, 1);
    ui_->status_line->addPermanentWidget(status_);
    setWindowIcon(application_icon());
    // Its menu would hide the toolbar, and nothing would bring it back.
    setContextMenuPolicy(Qt::NoContextMenu);
    for (QAction* entry : {ui_->cmdinglese, ui_->cmditaliano, ui_->cmdmanual, ui_->cmdexit})
        keep_while_busy(entry);
    open_to_keyboard(this);
    connect(ui_->barracomandi, &QToolBar::actionTriggered, this,
            [this](const QAction* key) { key_clicked("barracomandi_ButtonClick ", key); });
    on(ui_->cmdinglese, &QAction::triggered, this, "cmdinglese_Click",
       [this] { cmdinglese_Click(); });
    on(ui_->cmditaliano, &QAction::triggered, this, "cmditaliano_Click",
       [this] { cmditaliano_Click(); });
    connect_entries();
    on(ui_->cmdabout, &QAction::triggered, this, "cmdabout_Click",
       [this] { show_about(this, program_); });
    connect(ui_->cmdexit, &QAction::triggered, this, &QWidget::close);
    connect(ui_->screens, &QMdiArea::subWindowActivated, this, &M47MDI::screen_activated);
    corrected_ = new CorrectedMenu(ui_->cmdcorrected, program_);
    connect_window_menu();
    tell_costs();
    languages_ = new OtherLanguages(ui_->cmdlingua, program_.texts,
                                    language_folders(QCoreApplication::applicationDirPath()));
    connect(languages_, &OtherLanguages::chosen, this, [this] {
        ui_->cmdinglese->setChecked(false);
        ui_->cmditaliano->setChecked(false);
        show_texts();
    });
    ui_->cmdinglese->setChecked(true);
    cmditaliano_Click();
}

/// What others than this window do.
void M47MDI::connect_entries() {
    connect(ui_->cmdreconnect, &QAction::triggered, this, &M47MDI::reconnect_asked);
    connect(ui_->cmdidentify, &QAction::triggered, this, &M47MDI::identify_asked);
    connect(ui_->cmdvisit, &QAction::triggered, this, &M47MDI::visit_asked);
    connect(ui_->cmdendvisit, &QAction::triggered, this, &M47MDI::end_visit_asked);
    connect(ui_->cmdimportlog, &QAction::triggered, this, &M47MDI::import_log_asked);
    connect(ui_->cmdimportdb, &QAction::triggered, this, &M47MDI::import_asked);
    connect(ui_->cmdtrace, &QAction::triggered, this, &M47MDI::trace_asked);
    connect(ui_->cmdreplay, &QAction::triggered, this, &M47MDI::replay_asked);
    connect(ui_->cmdproblem, &QAction::triggered, this, &M47MDI::problem_asked);
    connect(ui_->cmdmanual, &QAction::triggered, this, &M47MDI::manual_asked);
}

M47MDI::~M47MDI() {
    program_.costs.on_cost = nullptr;
    program_.costs.on_remark = nullptr;
    watch_handlers(this, nullptr);
    program_.on_saved = nullptr;
    // The screens go while this window is whole; none of them comes to the front any more.
    ui_->screens->disconnect(this);
    delete ui_->screens;
}

void M47MDI::add_keys() {
    for (const ScreenEntry& screen : screen_table()) {
        const QString name = QString::fromLatin1(screen.key);
        auto* key = new QAction(toolbar_icon(name), QString::fromLatin1(screen.title), this);
        key->setObjectName(name);
        // Tab stays within a screen, so another one is opened from there by its shortcut.
        keep_while_busy(key);
        key->setShortcut(Qt::CTRL | screen.shortcut);
        screen_keys_ += key;
        if (screen.bar == KeyBar::commands) {
            ui_->barracomandi->addAction(key);
            continue;
        }
        connect(key, &QAction::triggered, this,
                [this, key] { key_clicked("barrastrumenti_ButtonClick ", key); });
        // Its shortcut holds before it has a bar.
        addAction(key);
    }
    // The keys have pictures alone: here they are read, with their shortcuts.
    ui_->cmdscreens->addActions(screen_keys_);
}

void M47MDI::key_clicked(const QByteArray& bar, const QAction* key) {
    const QByteArray name = bar + key->objectName().toLatin1();
    run_handler(this, name.constData(), [&] { open_screen(key->objectName()); });
}

/// Behind the first picture of the window, which does not wait for it; it takes room from nothing.
void M47MDI::add_instruments() {
    auto* bar = new QToolBar;
    bar->setObjectName(QStringLiteral("barrastrumenti"));
    bar->setMovable(false);
    for (qsizetype k = 0; k < screen_keys_.size(); ++k)
        if (screen_table()[static_cast<std::size_t>(k)].bar == KeyBar::instruments)
            bar->addAction(screen_keys_[k]);
    ui_->cmdidentify->setIcon(toolbar_icon(ui_->cmdidentify->objectName()));
    bar->addAction(ui_->cmdidentify);
    addToolBar(bar);
    windows_->take_toolbar(bar);
    open_to_keyboard(bar);
}

void M47MDI::add_screen(const QString& key, const ScreenMaker& maker) {
    makers_[key] = maker;
}

Screen* M47MDI::screen_of(const QString& key) const {
    const QMdiSubWindow* view = views_.value(key);
    return view ? qobject_cast<Screen*>(view->widget()) : nullptr;
}

void M47MDI::open_screen(const QString& key) {
    if (!makers_.contains(key)) return;
    if (QMdiSubWindow* view = views_.value(key)) {
        if (view->isMinimized()) view->showNormal();
        ui_->screens->setActiveSubWindow(view);
        return;
    }
    Screen* screen = makers_[key]();
    QMdiSubWindow* view = ui_->screens->addSubWindow(screen);
    view->setAttribute(Qt::WA_DeleteOnClose);
    view->setWindowIcon(toolbar_icon(key));
    // The screen is already at the front while it loads; its activation comes after that, once.
    front_ = view;
    views_[key] = view;
    put_in_place(key, view);
    view->installEventFilter(this);
    connect(screen, &Screen::exit_asked, view, &QWidget::close);
    connect(screen, &Screen::no_work, this, [this](const QString& caption) {
        show_remark(Said{kNoWork, {caption}}.in(program_.texts));
    });
    screen->load();
    screen->show_words(windows_->words());
    corrected_->join(screen);
    screen->Form_Activate();
    focus_in(screen);
}

void M47MDI::focus_in(Screen* screen) {
    // Its shortcuts hold only then, and a tab that was clicked has the keyboard itself.
    if (screen == QApplication::focusWidget() || screen->isAncestorOf(QApplication::focusWidget()))
        return;
    QWidget* last = screen->focusWidget();
    (last ? last : screen)->setFocus();
}

void M47MDI::connect_window_menu() {
    windows_ = new WindowMenu(ui_->cmdwindow, ui_->screens, program_);
    windows_->take_toolbar(ui_->barracomandi);
    windows_->front_key = [this] { return front_key(); };
    windows_->open_keys = [this] {
        QList<QAction*> keys = screen_keys_;
        keys.removeIf([this](const QAction* key) { return !screen_of(key->objectName()); });
        return keys;
    };
    on(windows_, &WindowMenu::picked, this, "cmdwindow_Click",
       [this](const QString& key) { open_screen(key); });
    connect(windows_, &WindowMenu::words_wanted, this, [this](bool words) {
        for (const QString& key : views_.keys())
            if (Screen* screen = screen_of(key)) screen->show_words(words);
    });
    connect(windows_, &WindowMenu::tabs_wanted, this, &M47MDI::keep_places_of_screens);
    connect(windows_, &WindowMenu::windows_wanted, this, [this] {
        for (auto view = views_.cbegin(); view != views_.cend(); ++view)
            if (view.value()) put_in_place(view.key(), view.value());
    });
}

void M47MDI::put_in_place(const QString& key, QMdiSubWindow* view) const {
    if (windows_->as_tabs()) return view->showMaximized();
    view->showNormal();
    restore_place_of(key, view);
    keep_inside(view);
}

void M47MDI::keep_inside(QMdiSubWindow* view) const {
    const QSize room = ui_->screens->viewport()->size();
    if (view->isMaximized()) return;
    view->resize(view->size().boundedTo(room));
    const QPoint furthest(room.width() - view->width(), room.height() - view->height());
    view->move(qMax(0, qMin(view->x(), furthest.x())), qMax(0, qMin(view->y(), furthest.y())));
}

void M47MDI::restore_place(const QSize& otherwise) {
    const std::optional<WindowPlace> place = program_.preferences.place(objectName());
    if (!place) return fit_.size(otherwise, screen()->availableGeometry());
    // A window whose screen is no longer plugged in comes back where it can be seen.
    const QScreen* was_on = QGuiApplication::screenAt(place->rect.center());
    fit_.place(place->rect, (was_on ? was_on : screen())->availableGeometry());
    if (place->maximised) setWindowState(windowState() | Qt::WindowMaximized);
}

void M47MDI::paintEvent(QPaintEvent* event) {
    QMainWindow::paintEvent(event);
    if (!std::exchange(was_painted_, true)) QTimer::singleShot(kOnTheScreen, this, &M47MDI::begin);
}

void M47MDI::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    if (!begun_) QTimer::singleShot(kNobodyLooks, this, &M47MDI::begin);
}

void M47MDI::begin() {
    if (std::exchange(begun_, true)) return;
    add_instruments();
    Q_EMIT painted();
}

void M47MDI::closeEvent(QCloseEvent* event) {
    for (const QString& key : views_.keys()) {
        Screen* screen = screen_of(key);
        if (screen && !screen->may_be_left()) return event->ignore();
    }
    if (may_close && !may_close()) return event->ignore();
    QMainWindow::closeEvent(event);
    if (event->isAccepted()) keep_places();
}

void M47MDI::keep_places() {
    program_.preferences.keep_place(objectName(),
                                    {QRect(pos(), normalGeometry().size()), isMaximized()});
    keep_places_of_screens();
}

void M47MDI::keep_places_of_screens() {
    for (auto view = views_.cbegin(); view != views_.cend(); ++view)
        if (view.value()) keep_place_of(view.key(), view.value());
}

bool M47MDI::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Close) {
        const auto* view = qobject_cast<const QMdiSubWindow*>(watched);
        const QString key = view ? key_of(view) : QString();
        if (!key.isEmpty()) keep_place_of(key, view);
    }
    if (event->type() == QEvent::Resize && behind_ && watched == behind_->parent())
        behind_->resize(static_cast<QResizeEvent*>(event)->size());
    return QMainWindow::eventFilter(watched, event);
}

void M47MDI::restore_place_of(const QString& key, QMdiSubWindow* view) const {
    const std::optional<WindowPlace> place = program_.preferences.place(key);
    if (!place) return;
    view->setGeometry(place->rect);
    if (place->maximised) view->showMaximized();
}

void M47MDI::keep_place_of(const QString& key, const QMdiSubWindow* view) const {
    // A tab has no place of its own: that of the window it was stays.
    const bool tab = ui_->screens->viewMode() == QMdiArea::TabbedView;
    if (!tab && !view->isMinimized())
        program_.preferences.keep_place(key, {view->geometry(), view->isMaximized()});
}

QString M47MDI::key_of(const QMdiSubWindow* view) const {
    for (auto it = views_.cbegin(); it != views_.cend(); ++it)
        if (it.value() == view) return it.key();
    return {};
}

QString M47MDI::front_key() const {
    return key_of(ui_->screens->currentSubWindow());
}

void M47MDI::screen_activated(QMdiSubWindow* view) {
    // Leaving the program for another window of the desktop and coming back is no activation.
    if (!view || view == front_) return;
    if (status_->pumping()) {
        // The desktop brings it up while the meter is waited for: it comes to the front when the
        // running handler has ended, as its own commands cannot go out before that.
        QTimer::singleShot(kAfterTheHandler, this,
                           [this] { screen_activated(ui_->screens->currentSubWindow()); });
        return;
    }
    front_ = view;
    Screen* screen = screen_of(key_of(view));
    if (!screen) return;
    screen->Form_Activate();
    focus_in(screen);
}

void M47MDI::cmdinglese_Click() {
    languages_->leave();
    program_.texts.language = kEnglish;
    ui_->cmdinglese->setChecked(true);
    ui_->cmditaliano->setChecked(false);
    show_texts();
}

void M47MDI::cmditaliano_Click() {
    languages_->leave();
    program_.texts.language = kItalian;
    ui_->cmdinglese->setChecked(false);
    ui_->cmditaliano->setChecked(true);
    show_texts();
}

void M47MDI::show_texts() {
    // This window is never loaded again, so what it says changes with the language.
    status_->show_reason();
    corrected_->show_texts();
    windows_->show_texts();
    toolkit_language_.follow(program_.texts);
    set_tooltips(this, kMenuTips, program_.texts);
    set_captions(this, kMenuCaptions, program_.texts);
    for (QAction* entry :
         {ui_->cmdidentify, ui_->cmdendvisit, ui_->cmdimportlog, ui_->cmdimportdb, ui_->cmdtrace,
          ui_->cmdreplay, ui_->cmdproblem, ui_->cmdmanual, ui_->cmdabout})
        entry->setStatusTip(entry->toolTip());
    ui_->cmdidentify->setIconText(program_.texts.pick(kIdentifyWord));
    for (const ScreenEntry& screen : screen_table())
        findChild<QAction*>(QString::fromLatin1(screen.key))
            ->setIconText(program_.texts.pick(screen.word));
    if (activity_) activity_->show_activity();
    Q_EMIT texts_shown();
}

void M47MDI::tell_costs() {
    program_.costs.on_cost = [this](const Bilingual& text) {
        show_notice(program_.texts.pick(text));
    };
    program_.costs.on_remark = [this](const Bilingual& text) {
        show_remark(program_.texts.pick(text));
    };
    watch_handlers(this, [this](const char*) { end_remark(); });
    program_.on_saved = [this](const QString& path) { show_saved(path); };
    // What was told may no longer be true.
    connect(corrected_, &CorrectedMenu::chosen, this, [this] {
        program_.costs.begin_anew();
        show_notice(QString());
    });
}

void M47MDI::show_notice(const QString& text) {
    notice_->setText(text);
    notice_->setToolTip(plain_tooltip(text));
}

void M47MDI::show_remark(const QString& text) {
    show_notice(text);
    remark_ = text;
}

/// Before another deed of the user, of which it need not be true any more; not before what that
/// deed does in turn. What a deed has opened a dialog for is one of its own.
void M47MDI::end_remark() {
    if (running_handler() && !QApplication::activeModalWidget()) return;
    const QString remark = std::exchange(remark_, QString());
    if (!remark.isEmpty() && notice_->text() == remark) show_notice(QString());
}

void M47MDI::end_remark(const QString& text) {
    if (notice_->text() == text) show_notice(QString());
}

void M47MDI::show_saved(const QString& path) {
    if (!saved_) {
        saved_ = new SavedNotice(program_.texts);
        ui_->status_line->addWidget(saved_);
    }
    saved_->show_file(path);
}

void M47MDI::show_progress(const QString& text) {
    show_upload(text, QString());
}

void M47MDI::show_upload(const QString& text, const QString& tooltip) {
    progress_->setText(text);
    progress_->setToolTip(plain_tooltip(tooltip));
}

void M47MDI::put_behind_screens(QWidget* page) {
    behind_ = page;
    QWidget* room = ui_->screens->viewport();
    page->setParent(room);
    page->setGeometry(room->rect());
    page->lower();
    room->installEventFilter(this);
    page->show();
}

void M47MDI::show_activity(link::Activity& activity) {
    if (!activity_) {
        if (!activity.what()) return;
        activity_ = new ActivityArea(activity, program_.texts);
        connect(activity_, &ActivityArea::stop_asked, this, &M47MDI::stop_asked);
        // Between the progress of a pass and what the user has to know.
        ui_->status_line->insertWidget(1, activity_);
    }
    activity_->show_activity();
}

void M47MDI::show_visit_entries(const QString& begin, const QString& tip, bool can_begin,
                                bool can_end) {
    ui_->cmdvisit->setText(begin);
    set_tooltip(ui_->cmdvisit, tip);
    ui_->cmdvisit->setStatusTip(tip);
    ui_->cmdvisit->setEnabled(can_begin);
    ui_->cmdendvisit->setEnabled(can_end);
}

QList<QAction*> M47MDI::visit_entries() const {
    return {ui_->cmdvisit, ui_->cmdendvisit};
}

void M47MDI::show_visit(const QString& text, const QString& more, bool pressing) {
    if (!visit_ && text.isEmpty()) return;
    if (!visit_) {
        visit_ = new VisitMark(visit_entries());
        ui_->status_line->removeWidget(status_);
        ui_->status_line->addPermanentWidget(visit_);
        ui_->status_line->addPermanentWidget(status_);
        status_->show();
    }
    visit_->setVisible(!text.isEmpty());
    visit_->say(text, more, pressing);
}

void M47MDI::show_recording(const QString& path) {
    ui_->cmdtrace->setChecked(!path.isEmpty());
    status_->show_recording(
        path.isEmpty() ? QString()
                       : Said{kRecords, {QDir::toNativeSeparators(path)}}.in(program_.texts));
}

void M47MDI::allow_reconnect() {
    ui_->cmdreconnect->setEnabled(true);
}

QString M47MDI::caption() const {
    // Not windowTitle(): a maximised screen adds its own name there.
    return caption_;
}

void M47MDI::set_caption(const QString& caption) {
    caption_ = caption;
    setWindowTitle(caption);
}

void M47MDI::enable_asl(bool on) {
    findChild<QAction*>(QStringLiteral("asl"))->setEnabled(on);
}

}  // namespace m47::shell
