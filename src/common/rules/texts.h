// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <QTranslator>
#include <array>
#include <memory>

namespace m47 {

/// The language codes that are ever set; 1 to 3 are reserved and behave as English, 5 has no texts.
enum LanguageCode { kEnglish = 0, kItalian = 4 };

/// The texts of a language that is not in the sources, from a file made with Qt Linguist. Each is
/// found by its English text, wherever it stands.
class Catalogue : public QTranslator {
  public:
    QString translate(const char* context, const char* source, const char* remark = nullptr,
                      int count = -1) const override;
};

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
    /// While the language is not Italian, what it has takes the place of the English texts; what it
    /// lacks, and the numbered messages, stay English. nullptr without a third language.
    std::shared_ptr<Catalogue> catalogue;
    std::array<std::array<QString, kMessages>, kLanguages> message_table;

    /// Fills `message_table`; `file_name` is the logger screen's temporary file as it stands now.
    void load_messages(const QString& file_name);

    /// Text number `number` in the current language; a language code of 6 or more faults.
    QString message(int number) const;

    /// One of a pair: Italian when the language is Italian, else that of the catalogue or English.
    /// Every text of the program's own comes through here, but for the captions of its forms.
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
