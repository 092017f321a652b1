// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_tooltips.h"

namespace m47::plans {
namespace {

// The slips in these texts ("commad", "sucessivo", the blank at an end) are the screen's own.
constexpr Tooltip kPlanTooltips[] = {
    {"grp_name", "Program's Group name", "Nome del gruppo di programmi"},
    {"prog_num", "Program number", "Numero del programma"},
    {"logger_pos", "Logger status table position", "Posizione nella tabella datalogger"},
    {"logger_state", "Logger status", "Stato attivazione"},
    {"sat_opt", "Satellite options", nullptr},
    {"k22_state", "Selection of 22KHz tone", "Selezione tono 22KHz"},
    {"lnb_state", "Selection of LNB options", "Selezione opzioni LNB"},
    {"diseqc_cmd", "Select DiSEqC commad", "Selezione comando DiSEqC"},
    {"dig_opt", "Digital satellite options", "Opzioni acquisizione QPSK"},
    {"cmd_dig", "Select digital acquisition mode ", "Selezione acquisizione digitale"},
    {"srqpsk_txt", "Symbol Rate QPSK board", "Selezione SymbolRate"},
    {"chbw_txt", "Select channel bandwidth for digital channel power measurement",
     "Selezione banda per misura DCP"},
    {"Frame1", "Local oscillator options", "Opzioni oscillatore locale"},
    {"sat_freq_txt", "Select Frequency", "Selezione frequenza"},
    {"monitor_opt", "Monitor acquisition options", "Opzioni acquisizioni monitorate"},
    {"monitor_state", "Monitor Element State", "Stato monitor"},
    {"lev_mintxt", "Minimum alarm level", "Livello minimo d'allarme"},
    {"lev_maxtxt", "Maximum alarm level", "Livello massimo d'allarme"},
    {"cn_mintxt", "Minimum alarm level", "Livello minimo CN d'allarme"},
    {"cn_maxtxt", "Maximum alarm NOISE level", "Livello massimo CN d'allarme"},
    {"chber_mintxt", "Minimum alarm CHBER level", "Livello minimo CHBER d'allarme"},
    {"chber_maxtxt", "Maximum alarm CHBER level", "Livello massimo CHBER d'allarme"},
    {"mer_mintxt", "Minimum alarm MER level", "Livello minimo MER d'allarme"},
    {"mer_maxtxt", "Maximum alarm MER level", "Livello massimo MER d'allarme"},

    {"previous", "Move to Previous Plan", "Seleziona il piano precedente"},
    {"next", "Move to Next Plan", "Seleziona il piano sucessivo"},
    {"new", "Create New Plan", "Crea un nuovo piano di programmi"},
    {"delete", "Delete Plan", "Cancella il piano selezionato"},
    {"store_new", "New Program", "Crea un nuovo programma"},
    {"store", "Update Program", "Memorizza programma"},
    {"programma_delete", "Delete Program from Plan", "Cancella il programma selezionato dal piano"},
    {"previous_prog", "Move to Previous Program", "Seleziona il programma precedente"},
    {"next_prog", "Move to Next Program", "Seleziona il programma sucessivo"},
    {"accoda", "Append the new Plan of program", "Aggiunge il nuovo piano di programmi"},
    {"sostituisci", "Disable all and append the new Plan of program",
     "Disabilita i programmi ed aggiunge il nuovo piano"},
    {"nuovo", "Replace with the new Plan of program", "Cancella e rimpiazza con il nuovo piano"},
    {"monitor", "Monitor acquisition options", "Opzioni per il monitoraggio con il piano"},

    {"cmdverify", "Compare the logger table with the plan after an upload",
     "Confronta la tabella datalogger con il piano dopo l'invio"},
    {"cmdimport", "Add programs from a plan file or a DVB scan table",
     "Aggiunge programmi da un file o da una tabella DVB"},
    {"cmdexport", "Write the plan to a file", "Scrive il piano su un file"},
    {"cmdcopyprog", "Copy the program into another plan or under another number",
     "Copia il programma in un altro piano o con un altro numero"},
    {"cmdcopyplan", "Copy the whole plan under another name",
     "Copia tutto il piano con un altro nome"},
};

constexpr Caption kKeyWords[] = {
    {"previous", {"‹ Plan", "‹ Piano"}},          {"next", {"Plan ›", "Piano ›"}},
    {"new", {"New plan", "Nuovo piano"}},         {"delete", {"Delete plan", "Cancella piano"}},
    {"store_new", {"Add", "Aggiungi"}},           {"store", {"Store", "Memorizza"}},
    {"programma_delete", {"Delete", "Cancella"}}, {"previous_prog", {"‹ Program", "‹ Programma"}},
    {"next_prog", {"Program ›", "Programma ›"}},  {"accoda", {"Append", "Accoda"}},
    {"sostituisci", {"Disable", "Disabilita"}},   {"nuovo", {"Replace", "Rimpiazza"}},
    {"monitor", {"Monitor", "Monitor"}},
};

}  // namespace

std::span<const Caption> plan_key_words() {
    return kKeyWords;
}

std::span<const Tooltip> plan_tooltips() {
    return kPlanTooltips;
}

}  // namespace m47::plans
