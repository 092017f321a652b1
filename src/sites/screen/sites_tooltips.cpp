// SPDX-License-Identifier: GPL-3.0-or-later
#include "sites_tooltips.h"

namespace m47::sites {
namespace {

constexpr Tooltip kTooltips[] = {
    {"sites_new", "Add a site (Ctrl+N)", "Aggiunge un sito (Ctrl+N)"},
    {"sites_edit", "Change name, customer, address and remarks of the site (F2)",
     "Modifica nome, cliente, indirizzo e note del sito (F2)"},
    {"sites_remove", "Remove the chosen site or visit; asks first",
     "Elimina il sito o la visita; prima chiede"},
    {"sites_files", "Import a log or a colleague's sites, export sites for one",
     "Importa un log o i siti di un collega, esporta siti per lui"},
    {"sites_report", "A report of the visit for the customer, as PDF (Ctrl+P)",
     "Un rapporto della visita per il cliente, in PDF (Ctrl+P)"},
    {"sites_save", "Save the table in front for other programs (TSV, Ctrl+S)",
     "Salva la tabella in vista per altri programmi (TSV, Ctrl+S)"},
    {"sites_search",
     "Words of the name, customer, address or remarks, of a technician or plan (Ctrl+F)",
     "Parole di nome, cliente, indirizzo o note, di un tecnico o di un piano (Ctrl+F)"},
    {"sites_dates", "Only visits that began within these days",
     "Solo visite iniziate in questi giorni"},
    {"sites_from", "First day", "Primo giorno"},
    {"sites_to", "Last day", "Ultimo giorno"},
    {"sites_verdict", "Only visits in which a measurement failed its limits, or in which none did",
     "Solo visite con una misura fuori dai limiti, oppure senza"},
    {"sites_tree", "Sites and their visits", "I siti e le loro visite"},
    {"sites_rows", "Measurements of the visit; a double click, or Enter, shows the chart",
     "Misure della visita; un doppio clic, o Invio, mostra il grafico"},
    {"sites_with", "The visit to compare with", "La visita con cui confrontare"},
    {"sites_readings", "Show the readings of both visits too",
     "Mostra anche i valori delle due visite"},
    {"sites_compared", "Programs, the worst first; a double click, or Enter, shows the chart",
     "Programmi, il peggiore per primo; un doppio clic, o Invio, mostra il grafico"},
    {"sites_program", "The program to show over all visits",
     "Il programma da mostrare in tutte le visite"},
    {"sites_first", "There is no room for all charts: which is shown",
     "Non c'è posto per tutti i grafici: quale si vede"},
    {"sites_zoom",
     "Show all visits. Wheel or drag: time; with Ctrl: values; keys: arrows, +, -, Home",
     "Mostra tutte le visite. Rotella o trascinamento: tempo; con Ctrl: valori; tasti: frecce, +, "
     "-, Home"},
    {"sites_by", "By how many dB MER or level have to have fallen",
     "Di quanti dB devono essere scesi MER o livello"},
    {"sites_look", "Go through all sites; once more stops", "Esamina tutti i siti; di nuovo ferma"},
    {"sites_worse",
     "What got worse, the worst first; a double click, or Enter, compares the visits",
     "Che cosa è peggiorato; un doppio clic, o Invio, confronta le visite"},
};

constexpr Caption kCaptions[] = {
    {"sites_new", {"New site…", "Nuovo sito…"}},
    {"sites_edit", {"Edit site…", "Modifica sito…"}},
    {"sites_remove", {"Remove…", "Elimina…"}},
    {"sites_files", {"Files", "File"}},
    {"cmdsitelog", {"Import &log…", "Importa &log…"}},
    {"cmdsitesimport", {"&Import sites…", "&Importa siti…"}},
    {"cmdsitesexport", {"E&xport sites…", "Es&porta siti…"}},
    {"sites_report", {"Report…", "Rapporto…"}},
    {"sites_save", {"Save table…", "Salva tabella…"}},
    {"sites_dates", {"From", "Dal"}},
    {"label_to", {"to", "al"}},
    {"label_with", {"Compare with", "Confronta con"}},
    {"sites_readings", {"Readings too", "Anche i valori"}},
    {"label_program", {"Program", "Programma"}},
    {"sites_zoom", {"Show all", "Mostra tutto"}},
    {"label_by", {"Fell by more than", "Scesi di oltre"}},
    {"sites_look", {"Look through all sites", "Esamina tutti i siti"}},
    {"cmdsitenew", {"&New site…", "&Nuovo sito…"}},
    {"cmdsiteedit", {"&Edit site…", "&Modifica sito…"}},
    {"cmdsiteremove", {"&Remove…", "&Elimina…"}},
    {"cmdsitesfind", {"&Find", "&Cerca"}},
    {"cmdsitesreload", {"Re&ad again", "&Rileggi"}},
    {"cmdsitereport", {"Re&port…", "Ra&pporto…"}},
    {"cmdsitesave", {"&Save table…", "&Salva tabella…"}},
};

}  // namespace

std::span<const Tooltip> sites_tooltips() {
    return kTooltips;
}

std::span<const Caption> sites_captions() {
    return kCaptions;
}

}  // namespace m47::sites
