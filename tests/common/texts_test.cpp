// SPDX-License-Identifier: GPL-3.0-or-later
#include "texts.h"

#include <QTest>

#include "cost_notices.h"
#include "fault.h"
#include "impersonal.h"
#include "program_state.h"
#include "told_lines.h"

namespace m47 {
namespace {

// The wording as the technicians know it, with its missing and trailing blanks.
struct Wording {
    const char* english;
    const char* italian;
};

const Wording kWordings[] = {
    {"Download is too long.Data are saved in ''.",
     "Download e' troppo lungo.I dati sono stati salvati in ''."},
    {"Define a Temporary file name.", "Definire Nome per un file temporaneo"},
    {"Filename Error.", "Nome file errato."},
    {"No Data Download.", "Non ci sono Dati da scaricare."},
    {"Do you want to continue?", "Vuoi continuare?"},
    {"The Programme in the data base already exist.",
     "Il programma esiste gi\xc3\xa0 nel database."},
    {"The Programme in the logger status table already exist.",
     "Il programma nella tabella del datalogger gi\xc3\xa0 esiste."},
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
};

constexpr int kTurnOn = 11;
constexpr const char* kTurnOnWithComma =
    "Select file '*.upg', turn on the instruments and press 'Download',";

}  // namespace

class TextsTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void the_units_lie_apart_as_the_meter_has_them() {
        QCOMPARE(unit_offset(kDbuv), 0.0);
        QCOMPARE(unit_offset(kDbmv), 60.0);
        QCOMPARE(unit_offset(kDbm), 109.0);
        QCOMPARE(unit_name(kDbuv) + unit_name(kDbmv) + unit_name(kDbm),
                 QStringLiteral("dBuVdBmVdBm"));
    }

    void wording_data() {
        QTest::addColumn<int>("number");
        for (int number = 0; number < Texts::kMessages; ++number)
            QTest::addRow("%d", number) << number;
    }

    void wording() {
        QFETCH(int, number);
        const Wording& expected = kWordings[number];
        Texts texts;
        texts.load_messages(QString());
        for (const int language : {0, 1, 2, 3}) {
            texts.language = language;
            const bool reserved = language > 0 && number == kTurnOn;
            QCOMPARE(texts.message(number),
                     QString::fromUtf8(reserved ? kTurnOnWithComma : expected.english));
        }
        texts.language = 4;
        QCOMPARE(texts.message(number), QString::fromUtf8(expected.italian));
        texts.language = 5;
        QCOMPARE(texts.message(number), QString());
    }

    void there_are_as_many_as_expected() {
        QCOMPARE(static_cast<int>(std::size(kWordings)), int{Texts::kMessages});
        QCOMPARE(int{Texts::kLanguages}, 6);
    }

    void the_message_with_a_full_stop_in_english() {
        Texts texts;
        texts.load_messages(QString());
        texts.language = kEnglish;
        QVERIFY(texts.message(kTurnOn).endsWith(u'.'));
    }

    void the_temporary_file_as_it_stands_at_loading() {
        Texts texts;
        texts.load_messages("C:\\50%1.dat");
        texts.language = kEnglish;
        QCOMPARE(texts.message(kDownloadTooLong),
                 QString("Download is too long.Data are saved in 'C:\\50%1.dat'."));
        texts.language = kItalian;
        QCOMPARE(texts.message(kDownloadTooLong),
                 QString("Download e' troppo lungo.I dati sono stati salvati in 'C:\\50%1.dat'."));
        texts.language = 5;
        QCOMPARE(texts.message(kDownloadTooLong), QString());
    }

    void a_box_shown_after_the_change_is_in_the_new_language() {
        Texts texts;
        texts.load_messages(QString());
        texts.language = kItalian;
        QCOMPARE(texts.message(kContinue), QString("Vuoi continuare?"));
        texts.language = kEnglish;
        QCOMPARE(texts.message(kContinue), QString("Do you want to continue?"));
    }

    void out_of_bounds_data() {
        QTest::addColumn<int>("language");
        QTest::addColumn<int>("number");
        QTest::newRow("language 6") << 6 << 0;
        QTest::newRow("language 255") << 255 << 0;
        QTest::newRow("language -1") << -1 << 0;
        QTest::newRow("message 23") << 0 << 23;
        QTest::newRow("message -1") << 0 << -1;
    }

    void out_of_bounds() {
        QFETCH(int, language);
        QFETCH(int, number);
        Texts texts;
        texts.load_messages(QString());
        texts.language = language;
        QVERIFY_THROWS_EXCEPTION(Fault, texts.message(number));
    }

    void one_of_a_pair() {
        const Bilingual pair{"Time", "Citt\xc3\xa0"};
        Texts texts;
        for (const int language : {0, 1, 2, 3, 5, 6}) {
            texts.language = language;
            QCOMPARE(texts.pick(pair), QString("Time"));
        }
        texts.language = kItalian;
        QCOMPARE(texts.pick(pair), QStringLiteral("Citt\u00e0"));
    }

    void what_stands_for_a_place_is_not_looked_into() {
        const Texts texts;
        const auto said = [&](const char* words, const QStringList& values) {
            return Said{{words, words}, values}.in(texts);
        };
        QCOMPARE(said("%1 of %2", {"a", "b"}), QString("a of b"));
        QCOMPARE(said("%2, %1.", {"%2", "b"}), QString("b, %2."));
        // What has no value, and what is no place, stays as it is.
        QCOMPARE(said("%1 %2 %0 100 %", {"a"}), QString("a %2 %0 100 %"));
    }

    void a_cost_is_told_once_until_the_choices_are_others() {
        static constexpr Bilingual kOne{"one", "uno"};
        static constexpr Bilingual kOther{"other", "altro"};
        CostNotices notices;
        notices.tell(kOne);  // nobody to tell yet
        notices.begin_anew();
        QStringList told;
        notices.on_cost = [&](const Bilingual& text) { told += text.english; };
        for (int time = 0; time < 2; ++time) {
            notices.tell(kOne);
            notices.tell(kOther);
        }
        QCOMPARE(told, QStringList({"one", "other"}));
        notices.begin_anew();
        notices.tell(kOther);
        QCOMPARE(told, QStringList({"one", "other", "other"}));
    }

    void the_last_200_lines_that_were_told_are_kept() {
        ToldLines told;
        QCOMPARE(told.lines(), QStringList());
        for (int k = 0; k < 205; ++k)
            told.keep(QtWarningMsg, "m47.run", QStringLiteral("line\n%1").arg(k));
        told.keep(QtCriticalMsg, nullptr, QString(5000, u'x'));
        const QStringList lines = told.lines();
        QCOMPARE(lines.size(), 200);
        const QRegularExpression form(
            "^[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9:]{8}[.][0-9]{3} warning m47[.]run line 6$");
        QVERIFY2(form.match(lines.first()).hasMatch(), qPrintable(lines.first()));
        QVERIFY(lines.last().endsWith(" critical default " + QString(1000, u'x')));
    }

    void no_text_names_the_person_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("told");
        const auto row = [](const char* text, const char* told) {
            QTest::newRow(text) << QString::fromUtf8(text) << QString::fromUtf8(told);
        };
        row("/home/anna/m47/rows.log", "~/m47/rows.log");
        row("in /home/anna.", "in ~.");
        row("/real/anna: /home/anna/x", "~: ~/x");
        row("/home/anna-maria/x /home/annabel", "/home/anna-maria/x /home/annabel");
        row("/media/anna/STICK/x", "/media/user/STICK/x");
        row("run \"sudo usermod -aG dialout anna\", then",
            "run \"sudo usermod -aG dialout user\", then");
        row("log in as anna.", "log in as user.");
        row("annals, manna, m47.anna.run, anna_b", "annals, manna, m47.anna.run, anna_b");
    }
    void no_text_names_the_person() {
        QFETCH(const QString, text);
        const Person anna{{"/home/anna", "/real/anna"}, "anna"};
        QTEST(impersonal(text, anna), "told");
        // Of the administrator there is nothing to hide, and "/" is no home.
        QCOMPARE(impersonal("/ root /etc", {{"/"}, "root"}), QString("/ root /etc"));
    }

    void what_went_over_the_line_stays_in_a_recording() {
        const Person anna{{"/home/anna"}, "anna"};
        const QByteArray recording(
            "PORT 0 0 open /home/anna/m 38400,n,8,2\n"
            "TX 0 0 anna /home/anna<CR>\nRX 1 1 anna<CR>\n"
            "NOTE 1 1 of anna\nPORT 2 2 close");
        QCOMPARE(impersonal_recording(recording, anna),
                 QByteArray("PORT 0 0 open ~/m 38400,n,8,2\n"
                            "TX 0 0 anna /home/anna<CR>\nRX 1 1 anna<CR>\n"
                            "NOTE 1 1 of user\nPORT 2 2 close"));
    }

    void preferences_name_no_file() {
        const Person anna{{"/home/anna"}, "anna"};
        QCOMPARE(impersonal_preferences("[behaviour]\ncorrected=true\n[files]\n"
                                        "directory_log=/srv/Rossi\nlogs=/a/Rossi.log, /b\n\n"
                                        "[windows]\ntabs=false\nof=anna\n",
                                        anna),
                 QString("[behaviour]\ncorrected=true\n[files]\n"
                         "directory_log=(left out)\nlogs=(left out)\n\n"
                         "[windows]\ntabs=false\nof=user\n"));
    }
};

}  // namespace m47

QTEST_APPLESS_MAIN(m47::TextsTest)
#include "texts_test.moc"
