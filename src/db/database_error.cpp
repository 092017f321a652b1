// SPDX-License-Identifier: GPL-3.0-or-later
#include "database_error.h"

#include <QDir>

namespace m47 {
namespace {

// %1 is the file.
Bilingual wording_of(DatabaseFault fault) {
    switch (fault) {
        case DatabaseFault::missing:
            return {
                "The database '%1' does not exist. Start the program in the folder that holds "
                "it, or with --create-database to make a new one.",
                "Il database '%1' non esiste. Avviare il programma nella cartella che lo "
                "contiene, oppure con --create-database per crearne uno nuovo."};
        case DatabaseFault::unreadable:
            return {
                "The database '%1' cannot be read: it is not an ordinary file or there is no "
                "permission to read it.",
                "Il database '%1' non è leggibile: non è un file normale oppure manca il "
                "permesso di lettura."};
        case DatabaseFault::read_only:
            return {
                "The database '%1' cannot be written. The file and its folder need write "
                "permission and free space.",
                "Il database '%1' non è scrivibile. Per il file e la sua cartella servono il "
                "permesso di scrittura e spazio libero."};
        case DatabaseFault::old_engine:
            return {
                "The database '%1' is a file of the old Jet engine, which this program does "
                "not work on. Its plans and satellites can be imported: start the program in "
                "another folder with --create-database --import-database and this file. The "
                "old file has not been changed.",
                "Il database '%1' è un file del vecchio motore Jet, che questo programma non "
                "usa direttamente. I suoi piani e satelliti possono essere importati: avviare "
                "il programma in un'altra cartella con --create-database --import-database e "
                "questo file. Il vecchio file non è stato modificato."};
        case DatabaseFault::foreign:
            return {"The file '%1' is not a database of this program.",
                    "Il file '%1' non è un database di questo programma."};
        case DatabaseFault::damaged:
            return {"The database '%1' is damaged. Put a backup copy in its place.",
                    "Il database '%1' è danneggiato. Sostituirlo con una copia di riserva."};
        case DatabaseFault::table_missing:
            return {"The database '%1' is incomplete: a table or a field is missing.",
                    "Il database '%1' è incompleto: manca una tabella o un campo."};
        case DatabaseFault::locked:
            return {
                "The database '%1' is in use by another program. Close that program and start "
                "again.",
                "Il database '%1' è usato da un altro programma. Chiudere quel programma e "
                "riprovare."};
        case DatabaseFault::cannot_create:
            break;
    }
    return {"The database '%1' cannot be created.", "Impossibile creare il database '%1'."};
}

}  // namespace

QString database_error_text(const DatabaseError& error, const Texts& texts) {
    const QString text =
        texts.pick(wording_of(error.fault)).arg(QDir::toNativeSeparators(error.path));
    return error.detail.isEmpty() ? text : text + QStringLiteral("\n(%1)").arg(error.detail);
}

}  // namespace m47
