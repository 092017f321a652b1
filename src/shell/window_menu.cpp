// SPDX-License-Identifier: GPL-3.0-or-later
#include "window_menu.h"

#include <QMdiSubWindow>

#include "busy_input.h"

namespace m47::shell {
namespace {

constexpr Bilingual kWindowMenu{"&Window", "&Finestra"};

struct WindowEntry {
    Bilingual caption;
    Bilingual tooltip;
};

constexpr WindowEntry kTabs{
    {"&Tabs", "&Schede"},
    {"Each screen fills the window, a tab for each; else they are windows in it",
     "Ogni schermata riempie la finestra, una scheda per ciascuna; altrimenti sono finestre al suo "
     "interno"}};
constexpr WindowEntry kCascade{{"&Cascade", "&Sovrapponi"},
                               {"The screens as windows, one behind the other",
                                "Le schermate come finestre, una dietro l'altra"}};
constexpr WindowEntry kTile{
    {"T&ile", "&Affianca"},
    {"The screens as windows, side by side", "Le schermate come finestre, una accanto all'altra"}};

constexpr WindowEntry kWords{{"&Words under the keys", "&Parole sotto i tasti"},
                             {"The keys of the toolbars say in a word what they do, where there is "
                              "room for it",
                              "I tasti delle barre dicono in una parola che cosa fanno, dove c'è "
                              "posto"}};

void show_on(QAction* action, const WindowEntry& entry, const Texts& texts) {
    action->setText(texts.pick(entry.caption));
    action->setToolTip(texts.pick(entry.tooltip));
    action->setStatusTip(action->toolTip());
}

}  // namespace

WindowMenu::WindowMenu(QMenu* menu, QMdiArea* area, ProgramState& program)
    : QObject(menu),
      menu_(menu),
      area_(area),
      program_(program),
      tabs_(add_entry("cmdtabs")),
      cascade_(add_entry("cmdcascade")),
      tile_(add_entry("cmdtile")),
      words_(add_entry("cmdtoolbarwords")) {
    tabs_->setCheckable(true);
    tabs_->setChecked(program.preferences.screens_as_tabs());
    area_->setTabsClosable(true);
    area_->setTabsMovable(true);
    area_->setDocumentMode(true);
    if (tabs_->isChecked()) area_->setViewMode(QMdiArea::TabbedView);
    connect(tabs_, &QAction::toggled, this, &WindowMenu::show_as_tabs);
    connect(cascade_, &QAction::triggered, this, [this] { arrange(&QMdiArea::cascadeSubWindows); });
    connect(tile_, &QAction::triggered, this, [this] { arrange(&QMdiArea::tileSubWindows); });
    connect(menu_, &QMenu::aboutToShow, this, &WindowMenu::list_screens);
    show_texts();
}

void WindowMenu::take_toolbar(QToolBar* bar) {
    bars_ += bar;
    if (bars_.size() > 1) return show_words();
    words_->setCheckable(true);
    words_->setChecked(program_.preferences.toolbar_words());
    connect(words_, &QAction::toggled, this, [this](bool words) {
        program_.preferences.keep_toolbar_words(words);
        show_words();
        Q_EMIT words_wanted(words);
    });
    show_words();
}

bool WindowMenu::words() const {
    return words_->isChecked();
}

void WindowMenu::show_words() {
    for (QToolBar* bar : bars_)
        bar->setToolButtonStyle(words_->isChecked() ? Qt::ToolButtonTextUnderIcon
                                                    : Qt::ToolButtonIconOnly);
}

QAction* WindowMenu::add_entry(const char* name) {
    auto* entry = new QAction(menu_->window());
    entry->setObjectName(QString::fromLatin1(name));
    // Where a screen stands is a matter of looking: the meter is not asked.
    keep_while_busy(entry);
    menu_->addAction(entry);
    return entry;
}

void WindowMenu::show_as_tabs(bool tabs) {
    program_.preferences.keep_screens_as_tabs(tabs);
    if (tabs) Q_EMIT tabs_wanted();
    area_->setViewMode(tabs ? QMdiArea::TabbedView : QMdiArea::SubWindowView);
    if (!tabs) Q_EMIT windows_wanted();
}

void WindowMenu::arrange(void (QMdiArea::*how)()) {
    tabs_->setChecked(false);
    for (QMdiSubWindow* view : area_->subWindowList()) view->showNormal();
    (area_->*how)();
}

void WindowMenu::list_screens() {
    qDeleteAll(screens_);
    screens_.clear();
    const QList<QAction*> keys = open_keys();
    if (!keys.isEmpty()) screens_ += menu_->addSeparator();
    for (const QAction* key : keys) screens_ += add_screen(key);
}

QAction* WindowMenu::add_screen(const QAction* key) {
    // The shortcut stays the key's own: a second one would make both ambiguous.
    QAction* entry =
        menu_->addAction(key->text() + u'\t' + key->shortcut().toString(QKeySequence::NativeText));
    const QString name = key->objectName();
    entry->setCheckable(true);
    entry->setChecked(name == front_key());
    keep_while_busy(entry);
    connect(entry, &QAction::triggered, this, [this, name] { Q_EMIT picked(name); });
    return entry;
}

void WindowMenu::show_texts() {
    menu_->setTitle(program_.texts.pick(kWindowMenu));
    show_on(tabs_, kTabs, program_.texts);
    show_on(cascade_, kCascade, program_.texts);
    show_on(tile_, kTile, program_.texts);
    show_on(words_, kWords, program_.texts);
}

}  // namespace m47::shell
