// SPDX-License-Identifier: GPL-3.0-or-later
#include "corrected_menu.h"

#include "corrected_actions.h"

namespace m47::shell {
namespace {

constexpr Bilingual kMenuTitle{"Corrected &behaviour", "&Comportamento corretto"};

/// What an entry is called, and what it changes against what happens without it.
struct EntryTexts {
    Bilingual caption;
    Bilingual tooltip;
};

constexpr EntryTexts kAllTexts{
    {"&All of them", "T&utti"},
    {"Tick every entry of this menu, or none", "Attiva tutte le voci di questo menu, o nessuna"}};

constexpr EntryTexts kStartTexts{
    {"&Start with corrected behaviour", "&Inizia con il comportamento corretto"},
    {"Every start of the program ticks all entries. By default none is ticked.",
     "Ogni avvio del programma attiva tutte le voci. Di norma nessuna è attiva."}};

/// In the order of kCorrectedEntries.
constexpr std::array<EntryTexts, kCorrectedEntries.size()> kEntryTexts{{
    {{"&Complete C/N and noise", "Completa &C/N e rumore"},
     {"C/N and noise are measured to their end. By default the measurement ends there and what "
      "comes after stays empty.",
      "C/N e rumore vengono misurati fino in fondo. Di norma la misura termina lì e ciò che segue "
      "resta vuoto."}},
    {{"&Tune everything in a pass", "Imposta &tutto in una passata"},
     {"A pass sets oscillator, LNB, tone, DiSEqC and bandwidth of each program. By default they "
      "stay as they are.",
      "Una passata imposta oscillatore, LNB, tono, DiSEqC e larghezza di banda di ogni programma. "
      "Di norma restano come sono."}},
    {{"&Verify upload", "&Verifica l'invio"},
     {"After an upload the logger table is read and compared with the plan. By default nothing is "
      "compared.",
      "Dopo un invio la tabella datalogger viene letta e confrontata con il piano. Di norma nulla "
      "viene confrontato."}},
    {{"Keep the &mode on return", "Mantieni il &modo al ritorno"},
     {"Coming back to the real-time screen keeps analog or digital. By default digital "
      "measurements go on there without their level.",
      "Tornando alla schermata in tempo reale resta il modo analogico o digitale. Di norma le "
      "misure digitali proseguono senza il livello."}},
    {{"Keep the b&ox where no answer came", "Mantieni la c&asella senza risposta"},
     {"Frequency and symbol rate stay where the meter does not answer. By default the box is "
      "emptied and the next measurement takes the lowest value.",
      "Frequenza e symbol rate restano se lo strumento non risponde. Di norma la casella si svuota "
      "e la misura seguente usa il valore minimo."}},
    {{"Limits stay in their &unit", "I &limiti restano nella loro unità"},
     {"Storing and uploading keep the level limits as they were typed. By default they are brought "
      "into the range of the present unit.",
      "La memorizzazione e l'invio lasciano i limiti di livello come sono stati scritti. Di norma "
      "vengono portati nel campo dell'unità attuale."}},
    {{"&Empty programs are not uploaded", "I programmi &vuoti non vengono inviati"},
     {"Programs without a frequency are left out of an upload. By default they are sent with "
      "zeros.",
      "I programmi senza frequenza restano fuori dall'invio. Di norma vengono "
      "inviati con degli zeri."}},
    {{"&Refused new programs stay on the screen", "I nuovi programmi &rifiutati restano visibili"},
     {"A new program that was refused stays in the boxes, to be corrected. By default the last "
      "program of the plan is shown instead.",
      "Un nuovo programma rifiutato resta nelle caselle, per correggerlo. Di norma viene mostrato "
      "l'ultimo programma del piano."}},
    {{"A new oscillator checks every &program", "Un nuovo oscillatore controlla ogni &programma"},
     {"A new oscillator frequency checks every program of the plan. By default only the one on "
      "the screen is checked.",
      "Una nuova frequenza di oscillatore controlla ogni programma del piano. Di norma viene "
      "controllato solo quello sullo schermo."}},
    {{"Unset &DiSEqC is NONE", "&DiSEqC non scelto è NONE"},
     {"A program without a chosen DiSEqC command has NONE. By default it has TONE BURST.",
      "Un programma senza comando DiSEqC scelto ha NONE. Di norma ha TONE BURST."}},
    {{"Band&width of the program", "Larghe&zza di banda del programma"},
     {"Recalling a program on the real-time screen sets its channel bandwidth. By default the "
      "bandwidth stays as it is.",
      "Richiamando un programma nella schermata in tempo reale si imposta la sua larghezza di "
      "banda. Di norma la larghezza resta com'è."}},
    {{"An alarm without &limits is told", "Un allarme &senza limiti viene segnalato"},
     {"An alarm whose limits are empty checks nothing, and the status line says so. By default "
      "empty limits count as numbers and the alarm fails.",
      "Un allarme con i limiti vuoti non controlla nulla, e la riga di stato lo dice. Di norma i "
      "limiti vuoti contano come numeri e l'allarme scatta."}},
    {{"Ask and &keep a copy before erasing", "Chiedi e conserva una cop&ia prima di cancellare"},
     {"Before the logger is cleared, a satellite slot deleted or the programs replaced, what is "
      "there is read and kept in the folder backup, and you are asked. By default it is erased at "
      "once, and only replacing asks.",
      "Prima di cancellare il logger o una posizione satellite, o di sostituire i programmi, ciò "
      "che c'è viene letto e conservato nella cartella backup, con una domanda. Di norma viene "
      "cancellato subito, e solo la sostituzione chiede."}},
    {{"Ask t&wice", "Chiedi d&ue volte"},
     {"A value that lies off the ones before it, or crosses a limit, is asked for again and taken "
      "when two answers agree. By default the first answer is taken.",
      "Un valore lontano dai precedenti, o che supera un limite, viene chiesto di nuovo e preso "
      "quando due risposte concordano. Di norma viene presa la prima risposta."}},
    {{"Ask before &leaving a program", "Chiedi prima di &lasciare un programma"},
     {"Edits of a program that are not stored are asked about before another one is shown. By "
      "default they leave the boxes and are offered back below.",
      "Prima di mostrare un altro programma viene chiesto che fare delle modifiche non "
      "memorizzate. Di norma lasciano le caselle e vengono riproposte in basso."}},
}};

void show_on(QAction* action, const EntryTexts& entry, const Texts& texts) {
    action->setText(texts.pick(entry.caption));
    action->setToolTip(texts.pick(entry.tooltip));
    action->setStatusTip(action->toolTip());
}

}  // namespace

CorrectedMenu::CorrectedMenu(QMenu* menu, ProgramState& program)
    : QObject(menu), menu_(menu), program_(program) {
    if (program.preferences.starts_corrected()) choose_all(program.corrected, true);
    add_choices();
    menu_->addSeparator();
    add_all();
    menu_->addSeparator();
    add_start();
    show_texts();
}

QAction* CorrectedMenu::add_entry(const char* name) {
    auto* entry = new QAction(menu_->window());
    entry->setObjectName(QString::fromLatin1(name));
    entry->setCheckable(true);
    menu_->addAction(entry);
    return entry;
}

void CorrectedMenu::add_choices() {
    for (const CorrectedEntry& entry : kCorrectedEntries) entries_.push_back(add_entry(entry.name));
    tie_corrected(menu_->window(), program_.corrected);
    for (QAction* entry : entries_)
        connect(entry, &QAction::toggled, this, &CorrectedMenu::choose_one);
}

void CorrectedMenu::add_all() {
    all_ = add_entry("cmdcorrectall");
    all_->setChecked(all_chosen(program_.corrected));
    connect(all_, &QAction::toggled, this, &CorrectedMenu::cmdcorrectall_Click);
}

void CorrectedMenu::add_start() {
    start_ = add_entry("cmdcorrectstart");
    start_->setChecked(program_.preferences.starts_corrected());
    connect(start_, &QAction::toggled, this,
            [this](bool ticked) { program_.preferences.keep_starts_corrected(ticked); });
}

void CorrectedMenu::choose_one() {
    if (following_) return;
    following_ = true;
    all_->setChecked(all_chosen(program_.corrected));
    following_ = false;
    Q_EMIT chosen();
}

void CorrectedMenu::cmdcorrectall_Click(bool ticked) {
    if (following_) return;
    following_ = true;
    for (QAction* entry : entries_) entry->setChecked(ticked);
    following_ = false;
    Q_EMIT chosen();
}

void CorrectedMenu::show_texts() {
    menu_->setTitle(program_.texts.pick(kMenuTitle));
    for (std::size_t k = 0; k < entries_.size(); ++k)
        show_on(entries_[k], kEntryTexts[k], program_.texts);
    show_on(all_, kAllTexts, program_.texts);
    show_on(start_, kStartTexts, program_.texts);
}

void CorrectedMenu::join(const QObject* screen) {
    for (std::size_t k = 0; k < entries_.size(); ++k) {
        auto* same = screen->findChild<QAction*>(entries_[k]->objectName());
        if (!same) continue;
        follow_each_other(entries_[k], same);
        same->setText(program_.texts.pick(kEntryTexts[k].caption));
    }
}

}  // namespace m47::shell
