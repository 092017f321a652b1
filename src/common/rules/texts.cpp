// SPDX-License-Identifier: GPL-3.0-or-later
#include "texts.h"

#include "fault.h"

namespace m47 {
namespace {

// The wording is kept to the letter: technicians know these boxes by heart.
constexpr std::array<Bilingual, Texts::kMessages> kMessageTexts{{
    {"Download is too long.Data are saved in '%1'.",
     "Download e' troppo lungo.I dati sono stati salvati in '%1'."},
    {"Define a Temporary file name.", "Definire Nome per un file temporaneo"},
    {"Filename Error.", "Nome file errato."},
    {"No Data Download.", "Non ci sono Dati da scaricare."},
    {"Do you want to continue?", "Vuoi continuare?"},
    {"The Programme in the data base already exist.", "Il programma esiste già nel database."},
    {"The Programme in the logger status table already exist.",
     "Il programma nella tabella del datalogger già esiste."},
    {"Remove program: ", "Rimuovi il programma: "},
    {"Select file '*.upg', press 'Download'", "Selezionare il file '*.upg', premere 'Download'"},
    {"Turn off the instuments!", "Spegnere lo strumento!"},
    {"Select file '*.upg'!", "Selezionare il file '*.upg'!"},
    {"Select file '*.upg', turn on the instruments and press 'Download'.",
     "Selezionare il file '*.upg',\raccendere lo strumento e premere 'Download'"},
    {"Do you want download FW application?",
     "Vuoi trasmettere l'upgrade Firmware dell'applicazione?"},
    {"Do you want save program configuration?", "Vuoi salvare la configurazione dei programmi?"},
    {"Do you want restore program configuration?",
     "Vuoi reimpostare la configurazione dei programmi?"},
    {"Satellite already exist! Do you want restore it?",
     "Il nome del satellite esiste! vuoi risalvarlo?"},
    {"Satellite already exist! Do you want reprogram it?",
     "Il satellite esiste! Vuoi riprogrammarlo?"},
    {"Do you want save M47 configuration?", "Salvare la configurazione del M47?"},
    {"(Add)Program plan code.", "Aggiungi un piano di programmi"},
    {"Do you want delete satellite from list? ", "Vuoi cancellare il satellite dalla lista? "},
    {"Do you want learn a satellite?", "Vuoi acquisire un satellite?"},
    {"Insert Satellite name:", "Inserire il nome del Satellite:"},
    {"Invalid Satellite name!", "Nome non valido del Satellite!"},
}};

/// Of all texts in a file of Qt Linguist; packaging/write-ts writes it.
constexpr const char* kContext = "m47";

constexpr int kTurnOnAndDownload = 11;
// The reserved languages end this one text with a comma.
constexpr const char* kTurnOnAndDownloadReserved =
    "Select file '*.upg', turn on the instruments and press 'Download',";

}  // namespace

void Texts::load_messages(const QString& file_name) {
    for (std::size_t k = 0; k < kMessages; ++k) {
        const QString english = QString::fromUtf8(kMessageTexts[k].english);
        for (std::size_t code = 0; code < 4; ++code) message_table[code][k] = english;
        message_table[kItalian][k] = QString::fromUtf8(kMessageTexts[k].italian);
        message_table[5][k].clear();
    }
    for (std::size_t code = 1; code < 4; ++code)
        message_table[code][kTurnOnAndDownload] = QString::fromUtf8(kTurnOnAndDownloadReserved);
    for (auto& texts : message_table)
        texts[kDownloadTooLong].replace(QStringLiteral("%1"), file_name);
}

QString Texts::message(int number) const {
    if (language < 0 || language >= kLanguages || number < 0 || number >= kMessages)
        throw Fault("no such message: language " + std::to_string(language) + ", number " +
                    std::to_string(number));
    return message_table[static_cast<std::size_t>(language)][static_cast<std::size_t>(number)];
}

QString Catalogue::translate(const char*, const char* source, const char*, int) const {
    // Forms ask with their own name, which says nothing to a translator.
    return QTranslator::translate(kContext, source);
}

QString Texts::pick(const Bilingual& pair) const {
    if (language == kItalian) return QString::fromUtf8(pair.italian);
    const QString other = catalogue ? catalogue->translate(nullptr, pair.english) : QString();
    return other.isEmpty() ? QString::fromUtf8(pair.english) : other;
}

QString Said::in(const Texts& texts) const {
    // One after another they would be looked for in each other's text too.
    QString text;
    const QString form = texts.pick(words);
    for (qsizetype at = 0; at < form.size(); ++at) {
        const int place = form[at] == u'%' ? form.mid(at + 1, 1).toInt() : 0;
        if (place < 1 || place > values.size()) {
            text += form[at];
            continue;
        }
        text += values[place - 1];
        ++at;
    }
    return text;
}

QString on_one_line(const QString& text) {
    return QString(text).replace(u'\n', u' ');
}

}  // namespace m47
