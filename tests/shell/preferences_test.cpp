// SPDX-License-Identifier: GPL-3.0-or-later
// What the program remembers from one run to the next, and what not.
#include <QFileDialog>
#include <QHeaderView>
#include <QMdiSubWindow>
#include <QMenu>
#include <QSettings>
#include <QTableView>

#include "box_answers.h"
#include "program_in_folder.h"
#include "realtime.h"
#include "window_fit.h"

namespace m47::shell {

class PreferencesTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

  private:
    std::unique_ptr<QTemporaryDir> other_;
    BoxAnswers boxes_;

    QString ini() const { return in_folder("settings/m47-remote.ini"); }
    Preferences preferences() const { return Preferences(ini()); }

    /// A run of the program with what earlier runs have left.
    void start() {
        if (is_running()) window().close();
        end_program();
        program_state().preferences = preferences();
        start_program();
    }
    realtime::Realtime* realtime() {
        window().findChild<QAction*>("realtime")->trigger();
        return qobject_cast<realtime::Realtime*>(window().screen_of("realtime"));
    }
    QString write(const QString& path, const QByteArray& bytes) {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly)) qFatal("cannot write %s", qPrintable(path));
        file.write(bytes);
        return path;
    }
    /// Opens the file dialog of `open`, which chooses `file`, and tells in which folder it began.
    QString folder_asked(const std::function<void()>& open, const QString& file = {}) {
        QString began;
        boxes_.answer([&](QDialog* dialog) {
            auto* files = qobject_cast<QFileDialog*>(dialog);
            QVERIFY(files);
            began = files->directory().path();
            if (file.isEmpty()) return files->reject();
            files->selectFile(file);
            files->findChild<QLineEdit*>()->setText(file);
            static_cast<QDialog*>(files)->setResult(QDialog::Accepted);
            QMetaObject::invokeMethod(files, "accept");
        });
        open();
        return began;
    }

  private Q_SLOTS:
    void init() {
        new_folder();
        other_ = std::make_unique<QTemporaryDir>();
    }
    void cleanup() { end_program(); }

    void without_a_file_nothing_is_remembered() {
        const Preferences none;
        none.file_chosen(FilePurpose::log, other_->filePath("x.log"));
        none.log_opened(write(other_->filePath("x.log"), "x"));
        none.keep_place("a", {QRect(1, 2, 300, 200), true});
        QCOMPARE(none.directory(FilePurpose::log, "here"), QStringLiteral("here"));
        QVERIFY(none.recent_logs().isEmpty());
        QVERIFY(!none.place("a"));
    }

    void logs_are_kept_newest_first_and_only_those_that_are_there() {
        for (int k = 0; k < Preferences::kRecentLogs + 2; ++k)
            preferences().log_opened(write(other_->filePath(QString::number(k)), "x"));
        preferences().log_opened(other_->filePath("5"));
        QStringList logs = preferences().recent_logs();
        QCOMPARE(logs.size(), Preferences::kRecentLogs);
        QCOMPARE(logs[0], other_->filePath("5"));
        QCOMPARE(logs[1], other_->filePath("9"));
        QVERIFY(QFile::remove(other_->filePath("9")));
        QVERIFY(!preferences().recent_logs().contains(other_->filePath("9")));
    }

    void a_folder_that_is_gone_is_not_proposed() {
        for (const FilePurpose purpose : {FilePurpose::plan, FilePurpose::old_database})
            QCOMPARE(preferences().directory(purpose, "here"), QStringLiteral("here"));
        preferences().file_chosen(FilePurpose::plan, QDir(other_->path()).filePath("../p.tsv"));
        preferences().file_chosen(FilePurpose::log, other_->filePath("x.log"));
        QCOMPARE(preferences().directory(FilePurpose::log, "here"), other_->path());
        other_.reset();
        QCOMPARE(preferences().directory(FilePurpose::log, "here"), QStringLiteral("here"));
    }

    void the_table_of_programs_stands_as_it_was_left() {
        const auto table = [this] {
            window().findChild<QAction*>("program")->trigger();
            return window().screen_of("program")->findChild<QTableView*>("plan_table");
        };
        const auto entry = [this] {
            return window().screen_of("program")->findChild<QAction*>("cmdtable");
        };
        start();
        window().resize(1900, 900);
        QVERIFY(table()->isVisible());
        QHeaderView* header = table()->horizontalHeader();
        const int usual = header->sectionSize(1);
        // As it comes nothing is kept: another plan may want other widths.
        start();
        window().resize(1900, 900);
        QVERIFY(preferences().columns("plan_table").isEmpty());
        QVERIFY(!preferences().unfolded("plan_table"));
        header = table()->horizontalHeader();
        QCOMPARE(header->sectionSize(1), usual);
        header->resizeSection(1, usual + 37);
        header->moveSection(header->visualIndex(4), 0);
        entry()->trigger();
        QVERIFY(!table()->isVisible());
        start();
        window().resize(1900, 900);
        QVERIFY(!table()->isVisible());
        header = table()->horizontalHeader();
        QCOMPARE(header->sectionSize(1), usual + 37);
        QCOMPARE(header->logicalIndex(0), 4);
        entry()->trigger();
        start();
        window().resize(500, 400);
        QVERIFY(table()->isVisible());
        // A file that somebody has spoilt changes nothing.
        for (const char* spoilt : {"0:50", "nonsense", "0:1 0:1", "1:-5 0:99999"}) {
            end_program();
            preferences().keep_columns("plan_table", spoilt);
            program_state().preferences = preferences();
            start_program();
            QCOMPARE(table()->horizontalHeader()->logicalIndex(0), 0);
            QCOMPARE(table()->horizontalHeader()->sectionSize(1), usual);
        }
    }

    void places_without_sense_are_none() {
        for (const QRect& rect : {QRect(0, 0, 0, 0), QRect(0, 0, 1, 500), QRect(0, 0, 300, 99999),
                                  QRect(999999, 0, 300, 200)}) {
            preferences().keep_place("a", {rect, false});
            QVERIFY(!preferences().place("a"));
        }
        preferences().keep_place("a", {QRect(-5, 7, 300, 200), false});
        preferences().keep_place("a", {QRect(0, 0, 900, 700), true});
        QCOMPARE(preferences().place("a")->rect, QRect(-5, 7, 300, 200));
        QVERIFY(preferences().place("a")->maximised);
    }

    void windows_come_back_where_they_were() {
        start();
        window().findChild<QAction*>("cmdtabs")->setChecked(false);
        window().resize(700, 500);
        window().move(30, 40);
        auto* view = qobject_cast<QMdiSubWindow*>(realtime()->parentWidget());
        view->setGeometry(12, 17, 420, 300);
        window().findChild<QAction*>("setport")->trigger();
        auto* ports = qobject_cast<QMdiSubWindow*>(window().screen_of("setport")->parentWidget());
        const QRect left = QRect(33, 44, ports->width() + 20, ports->height() + 10);
        ports->setGeometry(left);
        ports->close();
        start();
        QCOMPARE(window().size(), QSize(700, 500));
        QCOMPARE(window().pos(), QPoint(30, 40));
        QVERIFY(!window().screen_of("realtime"));  // which screens were open is not remembered
        QCOMPARE(realtime()->parentWidget()->geometry(), QRect(12, 17, 420, 300));
        window().findChild<QAction*>("setport")->trigger();
        QCOMPARE(window().screen_of("setport")->parentWidget()->geometry(), left);
    }

    void tabs_are_remembered_and_leave_the_places_of_windows_alone() {
        const QRect place(12, 17, 420, 300);
        start();
        window().findChild<QAction*>("cmdtabs")->setChecked(false);
        window().resize(700, 500);
        realtime()->parentWidget()->setGeometry(place);
        window().findChild<QAction*>("cmdtabs")->setChecked(true);
        QVERIFY(realtime()->parentWidget()->isMaximized());
        start();
        QVERIFY(window().findChild<QAction*>("cmdtabs")->isChecked());
        QVERIFY(realtime()->parentWidget()->isMaximized());
        realtime()->parentWidget()->close();
        realtime();
        window().findChild<QAction*>("cmdtabs")->setChecked(false);
        QCOMPARE(realtime()->parentWidget()->geometry(), place);
        start();
        QVERIFY(!window().findChild<QAction*>("cmdtabs")->isChecked());
        QCOMPARE(realtime()->parentWidget()->geometry(), place);
    }

    void a_window_lies_on_the_screen_with_its_frame_data() {
        QTest::addColumn<QRect>("left");
        QTest::newRow("first start") << QRect();
        QTest::newRow("as large as the screen") << QRect(0, 0, 4000, 3000);
        QTest::newRow("half outside") << QRect(500, 500, 560, 560);
        QTest::newRow("on a screen that is gone") << QRect(3000, 300, 500, 400);
        QTest::newRow("above and left") << QRect(-90, -90, 500, 400);
    }
    void a_window_lies_on_the_screen_with_its_frame() {
        QFETCH(QRect, left);
        if (left.isValid()) preferences().keep_place("M47MDI", {left, false});
        start();
        const QRect room = window().screen()->availableGeometry();
        const QRect frame = window().frameGeometry();
        QVERIFY(window().geometry() != frame);  // else there is nothing to be tried here
        QVERIFY2(room.contains(frame), qPrintable(QDebug::toString(frame)));
        if (left.isValid() && room.size().width() > left.width() + 50)
            QCOMPARE(window().size(), left.size());
    }

    void a_frame_larger_than_thought_is_put_right() {
        QWidget window;
        WindowFit fit(&window);
        const QRect room(0, 20, 1024, 580);
        const QMargins frame(10, 60, 10, 10);
        fit.size({1100, 720}, room);
        QVERIFY(room.size().expandedTo(window.size()) == room.size());
        fit.correct(frame, room);
        QCOMPARE(QRect(window.pos(), window.size().grownBy(frame)), room);
        // What the user made of it meanwhile is left.
        window.resize(2000, 300);
        fit.correct(frame, room);
        QCOMPARE(window.size(), QSize(2000, 300));
    }

    void a_maximised_screen_comes_back_maximised() {
        start();
        window().findChild<QAction*>("cmdtabs")->setChecked(false);
        realtime()->parentWidget()->showMaximized();
        start();
        QVERIFY(realtime()->parentWidget()->isMaximized());
    }

    void neither_port_nor_language_are_remembered() {
        start();
        window().findChild<QAction*>("cmdinglese")->trigger();
        realtime();
        start();
        QCOMPARE(program_state().texts.language, int(kItalian));
        QCOMPARE(program().link().port_number, 0);
        QVERIFY(!program().link().port_connected);
        window().close();
        for (const QString& key : QSettings(ini(), QSettings::IniFormat).allKeys())
            QVERIFY2(key.startsWith("windows/") || key.startsWith("files/"), qPrintable(key));
    }

    void corrected_behaviour_holds_from_the_start_where_it_is_wished() {
        start();
        window().findChild<QAction*>("cmdcorrectall")->trigger();
        start();
        QVERIFY(!window().findChild<QAction*>("cmdcorrectall")->isChecked());
        QVERIFY(!window().findChild<QAction*>("cmdcorrectstart")->isChecked());
        window().findChild<QAction*>("cmdcorrectstart")->trigger();
        QVERIFY(!program_state().corrected.keep_mode);  // it counts from the next start on
        start();
        QVERIFY(all_chosen(program_state().corrected));
        QVERIFY(window().findChild<QAction*>("cmdcorrectall")->isChecked());
        QVERIFY(window().findChild<QAction*>("cmdkeepmode")->isChecked());
        window().findChild<QAction*>("cmdcorrectstart")->trigger();
        start();
        QVERIFY(!program_state().corrected.keep_mode);
    }

    void a_start_with_broken_settings_works() {
        for (const QByteArray& bytes :
             {QByteArray("\x00\xff[[[=\n%%%=@Rect(", 15),
              QByteArray("[windows]\nM47MDI=@Rect(a b c)"),
              QByteArray("[windows]\nM47MDI=@Rect(0 0 -5 999999999)\nrealtime=rubbish\n"
                         "realtime_maximised=@Invalid()\n[files]\ndirectory=/no/such\nlogs=7")}) {
            write(ini(), bytes);
            start();
            QVERIFY(window().isVisible());
            QVERIFY(window().width() > 100 && window().height() > 100);
            QVERIFY(realtime()->isVisible());
            end_program();
        }
    }

    void settings_that_cannot_be_written_stop_nothing() {
        write(in_folder("settings"), "a file where the folder should be");
        start();
        QVERIFY(realtime()->isVisible());
        window().close();
        QVERIFY(boxes_.take_seen().isEmpty());
    }

    void dialogs_begin_in_the_folder_used_last_for_the_purpose() {
        start();
        realtime::Realtime* screen = realtime();
        const auto save_key = [screen] { screen->findChild<QAction*>("save")->trigger(); };
        const QString log = write(other_->filePath("mine.log"),
                                  "21/11/26\t10:00:00\t950.0\t10600\t58.3\t\t\t\t\t\tPASS\r\n");
        QCOMPARE(folder_asked(save_key, log), QDir(folder()).path());
        QCOMPARE(screen->rules.log.path(), log);
        save_key();  // closes it
        QCOMPARE(folder_asked(save_key), other_->path());
        start();
        // Each purpose has a folder of its own.
        QCOMPARE(folder_asked([this] { window().findChild<QAction*>("cmdimportdb")->trigger(); }),
                 QDir(folder()).path());
        screen = realtime();
        QCOMPARE(folder_asked([screen] { screen->findChild<QAction*>("save")->trigger(); }),
                 other_->path());
    }

    void a_recent_log_is_reopened_from_the_menu() {
        start();
        const QString log = write(other_->filePath("a&b<i>.log"),
                                  "21/11/26\t10:00:00\t950.0\t10600\t58.3\t\t\t\t\t\tPASS\r\n");
        realtime::Realtime* screen = realtime();
        auto* menu = screen->findChild<QMenu*>("cmdrecent");
        Q_EMIT menu->aboutToShow();
        QCOMPARE(menu->actions().size(), 1);
        QVERIFY(!menu->actions()[0]->isEnabled());
        screen->open_log(log);
        start();
        screen = realtime();
        menu = screen->findChild<QMenu*>("cmdrecent");
        QCOMPARE(menu->title(), QStringLiteral("Lo&g recenti"));
        Q_EMIT menu->aboutToShow();
        QCOMPARE(menu->actions().size(), 1);
        QCOMPARE(menu->actions()[0]->text(), QStringLiteral("a&&b<i>.log"));
        QVERIFY(!menu->actions()[0]->toolTip().contains(QStringLiteral("<i>")));
        menu->actions()[0]->trigger();
        QVERIFY(screen->rules.log.log_open());
        QCOMPARE(screen->rules.log.path(), log);
        QCOMPARE(screen->rules.page.measurements(), 1);
        QCOMPARE(screen->findChild<QAction*>("save")->toolTip(), QStringLiteral("Close file"));
    }
};

}  // namespace m47::shell

QTEST_MAIN(m47::shell::PreferencesTest)
#include "preferences_test.moc"
