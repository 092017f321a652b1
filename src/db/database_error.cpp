// SPDX-License-Identifier: GPL-3.0-or-later
#include "database_error.h"

#include <QDir>
#include <algorithm>

#include "database_check.h"
#include "engine.h"

namespace m47::db {
namespace {

struct Wording {
    DatabaseFault fault;
    Bilingual words;  ///< %1 is the file
};

// What is wrong, and what helps.
constexpr Wording kWordings[] = {
    {DatabaseFault::missing,
     {"The database '%1' does not exist. Start the program in the folder that holds "
      "it, or with --create-database to make a new one.",
      "Il database '%1' non esiste. Avviare il programma nella cartella che lo "
      "contiene, oppure con --create-database per crearne uno nuovo."}},
    {DatabaseFault::unreadable,
     {"The database '%1' cannot be read: it is not an ordinary file or there is no "
      "permission to read it.",
      "Il database '%1' non è leggibile: non è un file normale oppure manca il "
      "permesso di lettura."}},
    {DatabaseFault::read_only,
     {"The database '%1' cannot be written. The file and its folder need write "
      "permission.",
      "Il database '%1' non è scrivibile. Per il file e la sua cartella serve il "
      "permesso di scrittura."}},
    {DatabaseFault::moved,
     {"The database '%1' was deleted, moved or replaced while the program was at work on it. "
      "Nothing was stored. See that the right file is in its place, then start the program again.",
      "Il database '%1' è stato cancellato, spostato o sostituito mentre il programma ci lavorava. "
      "Nulla è stato memorizzato. Verificare che al suo posto ci sia il file giusto, poi riavviare "
      "il programma."}},
    {DatabaseFault::old_engine,
     {"The database '%1' is a file of the old Jet engine, which this program does "
      "not work on. Its plans and satellites can be imported: start the program in "
      "another folder with --create-database --import-database and this file. The "
      "old file has not been changed.",
      "Il database '%1' è un file del vecchio motore Jet, che questo programma non "
      "usa direttamente. I suoi piani e satelliti possono essere importati: avviare "
      "il programma in un'altra cartella con --create-database --import-database e "
      "questo file. Il vecchio file non è stato modificato."}},
    {DatabaseFault::foreign,
     {"The file '%1' is not a database of this program.",
      "Il file '%1' non è un database di questo programma."}},
    {DatabaseFault::damaged,
     {"The database '%1' is damaged. Put a backup copy in its place.",
      "Il database '%1' è danneggiato. Sostituirlo con una copia di riserva."}},
    {DatabaseFault::index_damaged,
     {"An index of the database '%1' is damaged: plans, programs or satellites would be "
      "missing without a word. Put a backup copy in its place. Without one, mend the file with "
      "the tool sqlite3 and its command REINDEX, after a copy of it has been made.",
      "Un indice del database '%1' è danneggiato: piani, programmi o satelliti mancherebbero "
      "senza avviso. Sostituirlo con una copia di riserva. Se non c'è, riparare il file con lo "
      "strumento sqlite3 e il suo comando REINDEX, dopo averne fatto una copia."}},
    {DatabaseFault::table_missing,
     {"The database '%1' is incomplete: a table or a field is missing.",
      "Il database '%1' è incompleto: manca una tabella o un campo."}},
    {DatabaseFault::locked,
     {"The database '%1' is in use by another program. Wait until that program has "
      "finished or close it, then try again.",
      "Il database '%1' è usato da un altro programma. Attendere che quel programma "
      "abbia finito oppure chiuderlo, poi riprovare."}},
    {DatabaseFault::full,
     {"There is no room left for the database '%1'. Make room on its disk, then try "
      "again.",
      "Non c'è più spazio per il database '%1'. Liberare spazio sul suo disco, poi "
      "riprovare."}},
    {DatabaseFault::io_error,
     {"The disk of the database '%1' cannot be read or written. Check the disk and its "
      "connection, then try again.",
      "Il disco del database '%1' non si lascia leggere o scrivere. Controllare il "
      "disco e il suo collegamento, poi riprovare."}},
    {DatabaseFault::cannot_open,
     {"The database '%1', or the journal beside it, cannot be opened. See that the "
      "file and its folder are there and can be written, then try again.",
      "Il database '%1', o il suo giornale, non può essere aperto. Verificare che il "
      "file e la sua cartella esistano e siano scrivibili, poi riprovare."}},
    {DatabaseFault::no_permission,
     {"The system does not permit work on the database '%1'. The file and its folder "
      "need the permission to read and write.",
      "Il sistema non permette di lavorare sul database '%1'. Per il file e la sua "
      "cartella servono i permessi di lettura e scrittura."}},
    {DatabaseFault::changing,
     {"Another program is changing the tables of the database '%1'. Try again when it "
      "has finished.",
      "Un altro programma sta modificando le tabelle del database '%1'. Riprovare "
      "quando ha finito."}},
    {DatabaseFault::refused,
     {"The tables of the database '%1' are no longer as this program needs them. Start "
      "the program again: it says what is missing.",
      "Le tabelle del database '%1' non sono più quelle che servono al programma. "
      "Riavviare il programma: dirà che cosa manca."}},
    {DatabaseFault::constraint,
     {"The database '%1' does not take this entry: there may be another of the same "
      "name by now. Choose another name.",
      "Il database '%1' non accetta questa voce: nel frattempo può esserne comparsa "
      "un'altra con lo stesso nome. Scegliere un altro nome."}},
    {DatabaseFault::too_big,
     {"An entry is too long for the database '%1'. Shorten it, then try again.",
      "Una voce è troppo lunga per il database '%1'. Accorciarla, poi riprovare."}},
    {DatabaseFault::no_memory,
     {"There is not enough memory for the database '%1'. Close other programs, then "
      "try again.",
      "La memoria non basta per il database '%1'. Chiudere altri programmi, poi "
      "riprovare."}},
    {DatabaseFault::crowded,
     {"Too many programs want the database '%1' at the same time. Try again in a moment.",
      "Troppi programmi vogliono il database '%1' nello stesso momento. Riprovare tra "
      "poco."}},
    {DatabaseFault::interrupted,
     {"The work on the database '%1' was broken off. Try again.",
      "Il lavoro sul database '%1' è stato interrotto. Riprovare."}},
    {DatabaseFault::other,
     {"The database '%1' could not be worked on. Try again; if that does not help, "
      "start the program again.",
      "Non è stato possibile lavorare sul database '%1'. Riprovare; se non basta, "
      "riavviare il programma."}},
    {DatabaseFault::cannot_create,
     {"The database '%1' cannot be created.", "Impossibile creare il database '%1'."}},
};

const Bilingual& wording_of(DatabaseFault fault) {
    const Wording* found = std::ranges::find(kWordings, fault, &Wording::fault);
    return found->words;
}

}  // namespace

QString EngineFault::text(const Texts& texts) const {
    return database_error_text(error_of(*this), texts);
}

QString database_error_text(const DatabaseError& error, const Texts& texts) {
    const QString text =
        texts.pick(wording_of(error.fault)).arg(QDir::toNativeSeparators(error.path));
    return error.detail.isEmpty() ? text : text + QStringLiteral("\n(%1)").arg(error.detail);
}

}  // namespace m47::db
