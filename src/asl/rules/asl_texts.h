// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "texts.h"

/// The texts of the satellite screen that are no numbered message.
namespace m47::asl::asl_text {

inline constexpr const char* kTitle = "AutomaticSatelliteLocation";
inline constexpr const char* kDeleteTitle = "ASL";
inline constexpr const char* kNameTitle = "AutomaticSatelliteLocator";

inline constexpr Bilingual kIncompleteCopy{
    "The data of this satellite did not arrive whole from the M47. Nothing was saved.",
    "I dati di questo satellite non sono arrivati completi dal M47. Non è stato salvato nulla."};

inline constexpr Bilingual kNoData{
    "Nothing is stored of this satellite but its name. Nothing was sent to the M47.",
    "Di questo satellite è memorizzato solo il nome. Non è stato inviato nulla al M47."};

// What another program has stored of a satellite
inline constexpr Bilingual kStoredMeanwhile{"Stored meanwhile", "Memorizzato nel frattempo"};
inline constexpr Bilingual kYours{"Yours", "Vostro"};
inline constexpr Bilingual kShownHere{"Shown here", "Mostrato qui"};
inline constexpr Bilingual kOverwriteChanged{
    "Another program has stored %1 since it was shown here. Store yours all the same?",
    "Un altro programma ha memorizzato %1 da quando è mostrato qui. Memorizzare lo stesso il "
    "vostro?"};
inline constexpr Bilingual kDeleteChanged{
    "Another program has stored %1 since it was shown here. Delete it all the same?",
    "Un altro programma ha memorizzato %1 da quando è mostrato qui. Cancellarlo lo stesso?"};

// Emptying a slot
inline constexpr Bilingual kSlotsKept{
    "All slots of the M47 were read and are kept in %1. The menu restores them from there.",
    "Tutte le posizioni del M47 sono state lette e conservate in %1. Il menu le ripristina da lì."};
inline constexpr Bilingual kOtherSatellite{
    "Slot %1 holds another satellite by now. Nothing was deleted.",
    "La posizione %1 contiene ormai un altro satellite. Non è stato cancellato nulla."};
inline constexpr Bilingual kSlotNotKept{
    "This slot did not arrive whole from the M47: there is no copy of it.",
    "Questa posizione non è arrivata completa dal M47: non ce n'è copia."};

// Saving and restoring all slots
inline constexpr Bilingual kNothingRead{
    "The M47 did not send its satellite slots. Nothing was saved or changed.",
    "Il M47 non ha inviato le sue posizioni. Non è stato salvato né modificato nulla."};
inline constexpr Bilingual kSaveWithoutDamaged{
    "These slots did not arrive whole from the M47: %1. Save the others?",
    "Queste posizioni non sono arrivate complete dal M47: %1. Salvare le altre?"};
inline constexpr Bilingual kOverwriteUnread{
    "These slots did not arrive whole from the M47 and cannot be kept: %1. Overwrite them?",
    "Queste posizioni non sono arrivate complete dal M47 e non si possono conservare: %1. "
    "Sovrascriverle?"};
inline constexpr Bilingual kFileKind{"Satellite slots (*.%1);;All files (*)",
                                     "Posizioni satellite (*.%1);;Tutti i file (*)"};
inline constexpr Bilingual kSaved{"Saved in %2. Slots: %1.", "Salvato in %2. Posizioni: %1."};
inline constexpr Bilingual kCannotWrite{"Cannot write %1: %2. Nothing was changed in the M47.",
                                        "Impossibile scrivere %1: %2. Nulla è cambiato nel M47."};
inline constexpr Bilingual kNoSlotsInFile{
    "%1 holds no whole satellite slot. Nothing was changed.",
    "%1 non contiene nessuna posizione completa. Non è stato modificato nulla."};
inline constexpr Bilingual kRestored{
    "Read back and compared: the M47 holds what the file holds. The state before is in %1.",
    "Riletto e confrontato: il M47 contiene i dati del file. Lo stato precedente è in %1."};
inline constexpr Bilingual kDifferent{
    "Read back and compared: these slots are not as they should be: %1. The state before is in %2.",
    "Riletto e confrontato: queste posizioni non sono come dovrebbero: %1. Lo stato precedente è "
    "in %2."};
inline constexpr Bilingual kNotReadBack{
    "The slots could not be read back from the M47. The state before is in %1.",
    "Non è stato possibile rileggere le posizioni dal M47. Lo stato precedente è in %1."};

// The preview of a restore
inline constexpr Bilingual kPreviewTitle{"Restore all slots", "Ripristino di tutte le posizioni"};
inline constexpr Bilingual kSlot{"Slot", "Posizione"};
inline constexpr Bilingual kInMeter{"In the M47", "Nel M47"};
inline constexpr Bilingual kInFile{"In the file", "Nel file"};
inline constexpr Bilingual kFate{"What happens", "Cosa succede"};
inline constexpr Bilingual kUnchanged{"unchanged", "invariata"};
inline constexpr Bilingual kWritten{"is written", "viene scritta"};
inline constexpr Bilingual kEmptied{"is emptied", "viene svuotata"};
inline constexpr Bilingual kLeftAlone{"left alone", "non toccata"};
inline constexpr Bilingual kNotWhole{"(not whole)", "(incompleta)"};
inline constexpr Bilingual kPreviewCount{"Slots that change: %1 of 20.",
                                         "Posizioni che cambiano: %1 su 20."};
inline constexpr Bilingual kRestoreButton{"&Restore", "&Ripristina"};

// The comparison
inline constexpr Bilingual kCompareTitle{"Compare satellites", "Confronto satelliti"};
inline constexpr Bilingual kSame{"All %1 bytes are the same.", "Tutti i %1 byte sono uguali."};
inline constexpr Bilingual kDiffering{"Bytes that differ: %1 of %2.", "Byte diversi: %1 su %2."};
inline constexpr Bilingual kNoSatelliteIn{"%1 is empty: choose a slot with a satellite.",
                                          "%1 è vuota: scegliere una posizione con un satellite."};
inline constexpr Bilingual kNotComparable{"One of the two is not whole.",
                                          "Uno dei due non è completo."};

}  // namespace m47::asl::asl_text
