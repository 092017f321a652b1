// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_edit_menu.h"

#include <QMenu>

#include "tooltips.h"

namespace m47::plans {
namespace {

struct EditEntry {
    const char* name;
    Bilingual caption;
    Bilingual tooltip;
};

constexpr Bilingual kEditMenu{"&Edit", "M&odifica"};

constexpr EditEntry kUndo{"cmdundo",
                          {"&Undo", "&Annulla"},
                          {"Take back what was stored last", "Annulla l'ultima memorizzazione"}};
constexpr EditEntry kRedo{"cmdredo",
                          {"&Redo", "&Ripeti"},
                          {"Do again what was taken back", "Ripete ciò che è stato annullato"}};
constexpr EditEntry kCopy{"cmdcopyrows",
                          {"&Copy rows", "&Copia righe"},
                          {"The selected programs, for a spreadsheet",
                           "I programmi selezionati, per un foglio di "
                           "calcolo"}};
constexpr EditEntry kPaste{
    "cmdpasterows",
    {"&Paste rows", "&Incolla righe"},
    {"Programs from a spreadsheet or from another plan; one whose number is there is replaced",
     "Programmi da un foglio di calcolo o da un altro piano; quello con lo stesso numero viene "
     "sostituito"}};
constexpr EditEntry kInsert{
    "cmdinsertrows",
    {"I&nsert copies", "I&nserisci copie"},
    {"A copy of each selected program below them, with a free number",
     "Una copia di ogni programma selezionato sotto di essi, con un numero libero"}};
constexpr EditEntry kDelete{
    "cmddeleterows",
    {"&Delete rows", "&Elimina righe"},
    {"Delete the selected programs from the plan", "Cancella dal piano i programmi selezionati"}};
constexpr EditEntry kUp{"cmdrowup",
                        {"Move &up", "Sposta &su"},
                        {"The selected programs one place up in the plan's order",
                         "I programmi selezionati un posto più su nell'ordine del piano"}};
constexpr EditEntry kDown{"cmdrowdown",
                          {"Move do&wn", "Sposta &giù"},
                          {"The selected programs one place down in the plan's order",
                           "I programmi selezionati un posto più giù nell'ordine del piano"}};
constexpr EditEntry kKeepOrder{
    "cmdkeeporder",
    {"&Keep the order shown", "&Mantieni l'ordine mostrato"},
    {"The order in which the table is sorted becomes that of the plan: of the arrows, of passes "
     "and "
     "of uploads",
     "L'ordine della tabella diventa quello del piano: delle frecce, dei giri e degli invii"}};
constexpr EditEntry kShowTable{"cmdtable",
                               {"&Table of programs", "&Tabella dei programmi"},
                               {"Show or hide the table beside the program",
                                "Mostra o nasconde la tabella accanto al "
                                "programma"}};

QAction* entry_of(QMenu* menu, const EditEntry& entry, const Texts& texts,
                  const QKeySequence& keys) {
    auto* action = new QAction(texts.pick(entry.caption), menu->window());
    action->setObjectName(QString::fromLatin1(entry.name));
    set_tooltip(action, texts.pick(entry.tooltip));
    action->setStatusTip(texts.pick(entry.tooltip));
    action->setShortcut(keys);
    menu->addAction(action);
    return action;
}

QMenu* edit_menu(QMenuBar* bar, const Texts& texts) {
    QMenu* menu = bar->addMenu(texts.pick(kEditMenu));
    menu->setObjectName(QStringLiteral("cmdedit"));
    menu->setToolTipsVisible(true);
    return menu;
}

}  // namespace

PlanEditMenu::PlanEditMenu(QMenuBar* bar, QWidget* table, const Texts& texts) {
    QMenu* menu = edit_menu(bar, texts);
    const auto entry = [&](const EditEntry& words, const QKeySequence& keys = {}) {
        return entry_of(menu, words, texts, keys);
    };
    undo = entry(kUndo, QKeySequence::Undo);
    redo = entry(kRedo, QKeySequence::Redo);
    menu->addSeparator();
    copy_rows = entry(kCopy, QKeySequence::Copy);
    paste_rows = entry(kPaste, QKeySequence::Paste);
    insert_rows = entry(kInsert, Qt::Key_Insert);
    delete_rows = entry(kDelete, QKeySequence::Delete);
    row_up = entry(kUp, Qt::ALT | Qt::Key_Up);
    row_down = entry(kDown, Qt::ALT | Qt::Key_Down);
    keep_order = entry(kKeepOrder);
    menu->addSeparator();
    show_table = entry(kShowTable);
    show_table->setCheckable(true);
    show_table->setChecked(true);
    for (QAction* action :
         {copy_rows, paste_rows, insert_rows, delete_rows, row_up, row_down, keep_order}) {
        // In a box the same keys are for its text.
        action->setShortcutContext(Qt::WidgetShortcut);
        table->addAction(action);
    }
    table->setContextMenuPolicy(Qt::ActionsContextMenu);
}

}  // namespace m47::plans
