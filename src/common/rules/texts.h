// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <array>

namespace m47 {

/// The language codes that are ever set; 1 to 3 are reserved and behave as English, 5 has no texts.
enum LanguageCode { kEnglish = 0, kItalian = 4 };

/// A text of the program in its two languages.
struct Bilingual {
    const char* english;
    const char* italian;
};

/// The numbered texts of the message boxes. The numbers are those of `message_table`.
enum Message {
    kDownloadTooLong = 0,
    kDefineTemporaryName = 1,
    kFilenameError = 2,
    kNoDataDownload = 3,
    kContinue = 4,
    kProgramExists = 5,
    kLoggerPositionExists = 6,
    kRemoveProgram = 7,
    kSatelliteExistsRestore = 15,
    kSatelliteExistsReprogram = 16,
    kAddPlan = 18,
    kDeleteSatellite = 19,
    kLearnSatellite = 20,
    kSatelliteName = 21,
    kInvalidSatelliteName = 22,
};

/// The language in use and the texts that depend on it. One object for the whole program.
class Texts {
  public:
    static constexpr int kLanguages = 6;
    static constexpr int kMessages = 23;

    int language = kEnglish;
    std::array<std::array<QString, kMessages>, kLanguages> message_table;

    /// Fills `message_table`; `file_name` is the logger screen's temporary file as it stands now.
    void load_messages(const QString& file_name);

    /// Text number `number` in the current language; a language code of 6 or more faults.
    QString message(int number) const;

    /// One of a pair: Italian when the language is Italian, English for every other code.
    QString pick(const Bilingual& pair) const;
};

/// A sentence and what stands in its places %1, %2 and so on.
struct Said {
    Bilingual words;
    QStringList values;

    QString in(const Texts& texts) const;
};

/// `text` as a line of stderr, where each message is one line for whoever goes through them.
QString on_one_line(const QString& text);

}  // namespace m47
