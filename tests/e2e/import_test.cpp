// SPDX-License-Identifier: GPL-3.0-or-later
// An old database comes along: by the command line, and by the menu as a person uses it.
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDialog>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTableWidget>
#include <QTest>
#include <QTimer>

#include "old_reader.h"
#include "process_support.h"
#include "program_in_folder.h"

namespace m47 {

class ImportTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

    const QString kOld = QStringLiteral(OLD_DATABASE);

    static QByteArray cut_file() {
        const QByteArray whole = content_of(QStringLiteral(OLD_DATABASE));
        return whole.first(24 * 4096);
    }

    /// The first column of the answer, read by a connection of its own.
    static QStringList answer(const QString& path, const QString& statement) {
        QStringList rows;
        {
            QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "look");
            database.setDatabaseName(path);
            if (!database.open()) qFatal("cannot open %s", qPrintable(path));
            QSqlQuery query(statement, database);
            while (query.next()) rows += query.value(0).toString();
        }
        QSqlDatabase::removeDatabase("look");
        return rows;
    }
    QString database_path() const { return in_folder(db::kDatabaseFile); }

    void start(int language) {
        new_folder();
        start_program();
        program_state().texts.language = language;
    }

    QAction* entry() { return window().findChild<QAction*>("cmdimportdb"); }

    /// Picks the menu entry and answers each dialog that comes in its turn.
    void import_with(const QList<std::function<void(QDialog*)>>& answers) {
        qsizetype next = 0;
        QTimer timer;
        connect(&timer, &QTimer::timeout, this, [&] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (!dialog || !dialog->isVisible()) return;
            if (next < answers.size())
                answers[next++](dialog);
            else
                qFatal("a dialog too many: %s", qPrintable(dialog->windowTitle()));
        });
        timer.start(20);
        entry()->trigger();
        QCOMPARE(next, answers.size());
    }
    static void choose_file(QDialog* dialog, const QString& path) {
        auto* files = qobject_cast<QFileDialog*>(dialog);
        if (!files) qFatal("no file dialog");
        auto* name = files->findChild<QLineEdit*>("fileNameEdit");
        name->setText(path);
        QTest::keyClick(name, Qt::Key_Return);
    }
    static void press(QDialog* dialog, const QString& text) {
        for (QPushButton* button : dialog->findChildren<QPushButton*>())
            if (button->text().remove(u'&') == text) return button->click();
        qFatal("no button %s", qPrintable(text));
    }
    static QString report_of(QDialog* dialog) {
        auto* report = dialog->findChild<QPlainTextEdit*>("report");
        if (!report) qFatal("no report but %s", qPrintable(dialog->windowTitle()));
        return report->toPlainText();
    }

  private Q_SLOTS:
    void init() {
        // As a platform without file dialogs of its own has them.
        QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    }
    void cleanup() { end_program(); }

    void the_command_line_brings_everything() {
        EmptyStand stand;
        const Ending ending = stand.remote.run({"--create-database", "--import-database", kOld});
        QCOMPARE(ending.status, 0);
        QCOMPARE(ending.err, QByteArray());
        for (const char* line :
             {"(Jet 4)", "  HOTBIRD13E (programs: 10): came", "  CITTÀ (programs: 2): came",
              "  VUOTO (programs: 1): came", "  HOTBIRD: came", "  ASTRA1: came",
              "Came: 5. Replaced: 0. Renamed: 0. Kept: 0. Corrections: 0."})
            QVERIFY2(ending.out.contains(QByteArray(line) + '\n'), line);
        const QString path = stand.path("VKDM47_03.mdb");
        QCOMPARE(answer(path, "SELECT nome FROM gruppo ORDER BY id"),
                 (QStringList{"PLAN 1", "HOTBIRD13E", "CITTÀ", "VUOTO"}));
        QCOMPARE(answer(path,
                        "SELECT '[' || qpsk_symbolrate || ']' || mer_max || frequenza FROM "
                        "programmi WHERE nome = 'CITTÀ' AND pg_num = '099'"),
                 QStringList{"[ 22000 ]1503.2"});
        QCOMPARE(answer(path,
                        "SELECT lev_min IS NULL AND lnb_volt IS NULL FROM programmi WHERE "
                        "nome = 'VUOTO'"),
                 QStringList{"1"});
        QCOMPARE(answer(path,
                        "SELECT user_sc0 || user_sc1 || loc_osc2 FROM configurazione WHERE "
                        "nome = 'HOTBIRD13E'"),
                 QStringList{"SW ASW B10600.0"});
        QCOMPARE(answer(path,
                        "SELECT length(dati) - length(replace(dati, char(13), '')) FROM asl "
                        "ORDER BY id"),
                 (QStringList{"4", "4"}));
    }

    void the_command_line_keeps_what_is_there() {
        EmptyStand stand;
        stand.remote.run({"--create-database", "--import-database", kOld});
        const QByteArray before = stand.files().value("VKDM47_03.mdb");
        const Ending ending = stand.remote.run({"--import-database", kOld});
        QCOMPARE(ending.status, 0);
        QVERIFY(ending.out.contains("CITTÀ (programs: 2): clashed: the present one is kept\n"));
        QVERIFY(ending.out.contains("Came: 0. Replaced: 0. Renamed: 0. Kept: 5."));
        QCOMPARE(stand.files().value("VKDM47_03.mdb"), before);
    }

    void a_damaged_file_is_one_message_and_changes_nothing() {
        EmptyStand stand;
        stand.write("OLD.mdb", cut_file());
        stand.remote.run({"--create-database", "--import-database", kOld});
        const auto before = stand.files();
        const Ending ending = stand.remote.run({"--import-database", "OLD.mdb"});
        QCOMPARE(ending.status, 5);
        QCOMPARE(ending.out, QByteArray());
        QCOMPARE(ending.err.count('\n'), 1);
        QVERIFY2(ending.err.startsWith("m47-remote: The old database 'OLD.mdb' is damaged."),
                 ending.err);
        QVERIFY(ending.err.contains("Nothing has been imported."));
        QCOMPARE(stand.files(), before);
    }

    void other_endings_of_the_command_line() {
        EmptyStand stand;
        QCOMPARE(stand.remote.run({"--import-database", kOld}).status, 4);
        QVERIFY(stand.files().isEmpty());
        QCOMPARE(stand.remote.run({"--create-database", "--import-database", "none.mdb"}).status,
                 5);
        for (const QStringList& wrong :
             {QStringList{"--import-database"}, QStringList{"--import-database", ""},
              QStringList{"--import-database", kOld, "--open", "asl"},
              QStringList{"--import-database", kOld, "--measure", "--on-port", "1"}}) {
            const Ending ending = stand.remote.run(wrong);
            QCOMPARE(ending.status, 2);
            QVERIFY(ending.err.contains("import-database"));
        }
        stand.remote.start_in_shell("\"$0\" \"$@\" >/dev/full", {"--import-database", kOld});
        QCOMPARE(stand.remote.wait().status, 5);
        QVERIFY(stand.remote.run({"--help"}).out.contains("--import-database <OLD>"));
    }

    void the_menu_brings_everything_and_reports() {
        start(kEnglish);
        QCOMPARE(entry()->text(), QString::fromUtf8("&Importa un vecchio database…"));
        QCOMPARE(entry()->toolTip(),
                 QStringLiteral("Importa piani e satelliti da un vecchio database"));
        QString report;
        import_with({[&](QDialog* dialog) { choose_file(dialog, kOld); },
                     [&](QDialog* dialog) {
                         report = report_of(dialog);
                         press(dialog, "Copy");
                         press(dialog, "Close");
                     }});
        QVERIFY(report.contains(QString::fromUtf8("CITTÀ (programs: 2): came")));
        QCOMPARE(QApplication::clipboard()->text(), report);
        QCOMPARE(program().database().gruppo().count(), 4);
        QCOMPARE(program().database().asl().count(), 2);
    }

    void the_menu_asks_about_clashes() {
        start(kItalian);
        const auto close = [](QDialog* dialog) { press(dialog, "Chiudi"); };
        const auto choose = [&](QDialog* dialog) { choose_file(dialog, kOld); };
        import_with({choose, close});
        program().database().gruppo().move_last();
        // Cancelled: nothing.
        import_with({choose, [](QDialog* dialog) { press(dialog, "Annulla"); }});
        QString report;
        import_with({choose,
                     [](QDialog* dialog) {
                         auto* clashes = dialog->findChild<QTableWidget*>("clashes");
                         QCOMPARE(clashes->rowCount(), 5);
                         QCOMPARE(clashes->item(1, 0)->text(), QString::fromUtf8("Piano CITTÀ"));
                         auto* all = dialog->findChild<QComboBox*>("for_all");
                         all->setFocus();
                         QTest::keyClick(all, Qt::Key_Down);
                         QTest::keyClick(all, Qt::Key_Down);
                         auto* first = dialog->findChild<QComboBox*>("clash_0");
                         QCOMPARE(first->currentIndex(), 2);
                         QTest::keyClick(first, Qt::Key_Home);
                         QTest::keyClick(dialog->findChild<QComboBox*>("clash_1"), Qt::Key_Up);
                         QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
                         QCOMPARE(dialog->focusWidget(), clashes);
                         QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
                         QCOMPARE(dialog->focusWidget(), first);
                         press(dialog, "Importa");
                     },
                     [&](QDialog* dialog) {
                         report = report_of(dialog);
                         close(dialog);
                     }});
        QVERIFY2(report.contains(QString::fromUtf8(
                     "HOTBIRD13E (programmi: 10): già presente: mantenuto quello attuale")),
                 qPrintable(report));
        QVERIFY(report.contains(
            QString::fromUtf8("CITTÀ (programmi: 2): già presente: sostituito quello attuale")));
        QVERIFY(report.contains(
            QString::fromUtf8("VUOTO (programmi: 1): già presente: importato come 'VUOTO-2'")));
        QCOMPARE(answer(database_path(), "SELECT nome FROM gruppo ORDER BY id").last(),
                 QStringLiteral("VUOTO-2"));
        QCOMPARE(answer(database_path(), "SELECT nome FROM asl ORDER BY id"),
                 (QStringList{"HOTBIRD", "ASTRA1", "HOTBIRD-2", "ASTRA1-2"}));
        QCOMPARE(answer(database_path(), "SELECT count(*) FROM programmi"), QStringList{"15"});
        // The screens step on from the plan they were at.
        QCOMPARE(program().database().gruppo().text("nome"), QStringLiteral("VUOTO"));
    }

    void the_menu_tells_a_damaged_file() {
        start(kEnglish);
        const QString path = in_folder("cut.mdb");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(cut_file());
        file.close();
        const QByteArray before = content_of(database_path());
        QString text;
        import_with({[&](QDialog* dialog) { choose_file(dialog, path); },
                     [&](QDialog* dialog) {
                         text = qobject_cast<QMessageBox*>(dialog)->text();
                         press(dialog, "OK");
                     }});
        QVERIFY2(text.contains("is damaged"), qPrintable(text));
        QCOMPARE(content_of(database_path()), before);
    }
};

}  // namespace m47

int main(int argc, char** argv) {
    if (argc == 2 && qstrcmp(argv[1], m47::olddb::kReadOldDatabase) == 0)
        return m47::olddb::run_old_reader();
    QApplication application(argc, argv);
    m47::ImportTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "import_test.moc"
