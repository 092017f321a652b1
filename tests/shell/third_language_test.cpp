// SPDX-License-Identifier: GPL-3.0-or-later
// A language that is not in the sources, made of a file of Qt Linguist in which every text is
// itself in brackets: what is shown without them was missed.
#include <QAction>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QDirIterator>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QTabBar>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QToolBar>

#include "other_languages.h"
#include "program_in_folder.h"
#include "realtime.h"
#include "sample_dialogs.h"
#include "screen_table.h"

namespace m47::shell {
namespace {

const QString kOpen = QStringLiteral("⟦");

QString text_of(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) qFatal("cannot read %s", qPrintable(path));
    return QString::fromUtf8(file.readAll());
}

/// Notes what the program asks for and the file does not have.
class Listening : public Catalogue {
  public:
    mutable QStringList missed;

    QString translate(const char* context, const char* source, const char* remark,
                      int count) const override {
        const QString found = Catalogue::translate(context, source, remark, count);
        // Without a context it is one of the program's own; the toolkit has its words elsewhere.
        if (!context && *source && found.isEmpty()) missed += QString::fromUtf8(source);
        return found;
    }
};

}  // namespace

class ThirdLanguageTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

    /// Names and units of the trade, values, and what is the same in every language.
    static bool is_text(const QString& text) {
        static const QRegularExpression kWord(QStringLiteral("[a-z]{2}"));
        return kWord.match(text).hasMatch();
    }
    static void look_at(const QObject* object, const QString& text, QStringList& plain) {
        if (is_text(text) && !text.contains(kOpen))
            plain += QStringLiteral("%1: %2").arg(object->objectName(), text);
    }
    static void look_at_table(const QTableView* table, QStringList& plain) {
        const QAbstractItemModel& rows = *table->model();
        for (int column = 0; column < rows.columnCount(); ++column) {
            look_at(table, rows.headerData(column, Qt::Horizontal).toString(), plain);
            for (int row = 0; row < rows.rowCount(); ++row)
                look_at(table, rows.index(row, column).data().toString(), plain);
        }
    }
    static void look_at_widget(const QWidget* one, QStringList& plain) {
        if (one->parentWidget() && one->parentWidget()->inherits("QTabBar")) return;
        look_at(one, one->toolTip(), plain);
        if (const auto* label = qobject_cast<const QLabel*>(one))
            look_at(one, label->text(), plain);
        if (const auto* button = qobject_cast<const QAbstractButton*>(one))
            // A key of a toolbar has the word of its action.
            look_at(one, button->text(), plain);
        if (const auto* frame = qobject_cast<const QGroupBox*>(one))
            look_at(one, frame->title(), plain);
        if (const auto* tabs = qobject_cast<const QTabBar*>(one))
            for (int k = 0; k < tabs->count(); ++k) look_at(one, tabs->tabText(k), plain);
        if (const auto* list = qobject_cast<const QListWidget*>(one))
            for (int k = 0; k < list->count(); ++k) look_at(one, list->item(k)->text(), plain);
        if (const auto* table = qobject_cast<const QTableView*>(one)) look_at_table(table, plain);
    }
    /// What `window` shows without brackets, as "name: text".
    static QStringList plain_texts(const QWidget* window) {
        QStringList plain;
        look_at(window, window->windowTitle(), plain);
        for (const QWidget* one : window->findChildren<QWidget*>())
            // A screen inside the main window is looked at by itself.
            if (!one->inherits("QMdiSubWindow") && !one->parentWidget()->inherits("QMdiSubWindow"))
                look_at_widget(one, plain);
        for (const QMenu* menu : window->findChildren<QMenu*>()) {
            // That of a window within the main one is the toolkit's.
            if (menu->parent()->inherits("QMdiSubWindow")) continue;
            look_at(menu, menu->title(), plain);
            for (const QAction* entry : menu->actions()) {
                look_at(entry, entry->text(), plain);
                look_at(entry, entry->toolTip(), plain);
            }
        }
        plain.removeDuplicates();
        return plain;
    }
    void choose_bracketed() {
        QVERIFY(QDir().mkpath(in_folder("data/m47-remote/translations")));
        QVERIFY(QFile::copy(QStringLiteral(PSEUDO_LANGUAGE),
                            in_folder("data/m47-remote/translations/m47-remote_eo.qm")));
        auto* menu = find<QMenu>("cmdlingua");
        Q_EMIT menu->aboutToShow();
        find<QAction>("cmdlanguage_eo")->trigger();
    }
    Screen* open(const char* key) {
        window().findChild<QAction*>(key)->trigger();
        return window().screen_of(key);
    }
    /// What the dialog that `act` opens shows without brackets.
    QStringList plain_in_dialog(const std::function<void()>& act) {
        QStringList plain{QStringLiteral("no dialog")};
        QTimer::singleShot(0, this, [&plain] {
            QWidget* front = QApplication::activeModalWidget();
            if (!front) return;
            plain = plain_texts(front);
            front->close();
        });
        act();
        return plain;
    }

  private Q_SLOTS:
    void init() {
        new_folder();
        qputenv("XDG_DATA_HOME", in_folder("data").toUtf8());
        start_program({1300, 900});
    }
    void cleanup() { end_program(); }

    void a_language_stands_in_the_menu_once_its_file_is_there() {
        auto* menu = find<QMenu>("cmdlingua");
        Q_EMIT menu->aboutToShow();
        QCOMPARE(menu->actions().size(), 2);
        choose_bracketed();
        QCOMPARE(menu->actions().size(), 3);
        auto* entry = find<QAction>("cmdlanguage_eo");
        QCOMPARE(entry->text(), QStringLiteral("Esperanto"));
        QVERIFY(!find<QAction>("cmdinglese")->isChecked());
        QVERIFY(!find<QAction>("cmditaliano")->isChecked());
        // To the rules it is English, and the numbered messages stay that.
        QCOMPARE(program_state().texts.language, int(kEnglish));
        QCOMPARE(program_state().texts.message(kContinue),
                 QStringLiteral("Do you want to continue?"));
        QCOMPARE(find<QAction>("cmdmanual")->text(), QStringLiteral("⟦&Manual⟧"));
        Q_EMIT menu->aboutToShow();
        QVERIFY(find<QAction>("cmdlanguage_eo")->isChecked());
        for (const char* own : {"cmditaliano", "cmdinglese"}) {
            find<QAction>("cmdlanguage_eo")->trigger();
            QVERIFY(program_state().texts.catalogue);
            find<QAction>(own)->trigger();
            QVERIFY(!program_state().texts.catalogue);
            QVERIFY(!find<QAction>("cmdmanual")->text().contains(kOpen));
        }
    }

    void a_file_that_is_no_language_changes_nothing() {
        QVERIFY(QDir().mkpath(in_folder("data/m47-remote/translations")));
        QFile file(in_folder("data/m47-remote/translations/m47-remote_de.qm"));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("no language") > 0);
        file.close();
        Q_EMIT find<QMenu>("cmdlingua")->aboutToShow();
        find<QAction>("cmdlanguage_de")->trigger();
        QVERIFY(!program_state().texts.catalogue);
        QCOMPARE(program_state().texts.language, int(kItalian));
        QVERIFY(find<QAction>("cmditaliano")->isChecked());
    }

    void no_text_is_missed_on_any_screen() {
        choose_bracketed();
        auto listening = std::make_shared<Listening>();
        QVERIFY(listening->load(QStringLiteral(PSEUDO_LANGUAGE)));
        program_state().texts.catalogue = listening;
        QCoreApplication::installTranslator(listening.get());
        // What technicians know by heart and finds its way from no text of the program.
        QStringList prescribed{"Esperanto",
                               "Menu",
                               "&Language",
                               "Language",
                               "&English",
                               "English",
                               "&Italiano",
                               "Italiano",
                               "&Exit",
                               "Exit",
                               "Start",
                               "&Start",
                               "RS232 ComPort NOT Connected"};
        for (const ScreenEntry& screen : screen_table()) prescribed += screen.title;
        // The numbered messages are the technicians' own.
        prescribed += program_state().texts.message(kLoggerPositionExists);
        // The toolkit has its own words for its own buttons.
        prescribed += "Close";
        // Units are the same in every language.
        prescribed += "cm";
        QStringList plain;
        for (const ScreenEntry& screen : screen_table()) plain += plain_texts(open(screen.key));
        auto* realtime = qobject_cast<realtime::Realtime*>(open("realtime"));
        realtime->toolbar_ButtonClick("qpsk");
        realtime->toolbar_ButtonClick("start");
        plain += plain_texts(realtime) + plain_texts(&window());
        plain += plain_in_dialog([&] { find<QAction>("cmdabout")->trigger(); });
        plain += plain_in_dialog([&] { find<QAction>("cmdreport", realtime)->trigger(); });
        plain += plain_in_dialog([&] { find<QAction>("cmdproblem")->trigger(); });
        program().recording().start(in_folder("line.trace"));
        plain += plain_texts(&window());
        Screen* satellites = open("asl");
        plain += plain_in_dialog([&] { find<QAction>("cmdcompare", satellites)->trigger(); });
        for (const MakeDialog& make : sample_dialogs(
                 program_state(), [this]() -> link::Link& { return program().link(); })) {
            const std::unique_ptr<QDialog> dialog(make(&window()));
            dialog->show();
            plain += plain_texts(dialog.get());
        }
        plain.removeDuplicates();
        plain.removeIf([&](const QString& text) {
            return prescribed.contains(text.section(": ", 1).section(u'\t', 0, 0));
        });
        QCoreApplication::removeTranslator(listening.get());
        QVERIFY2(plain.isEmpty(), qPrintable(plain.join(u'\n')));
        QCOMPARE(listening->missed, QStringList());
    }

    void the_file_has_every_pair_of_the_sources() {
        // Found in another way than the script does it.
        static const QRegularExpression kConstant(
            QStringLiteral("Bilingual\\s+k\\w+\\s*\\{\\s*((?:\"(?:[^\"\\\\]|\\\\.)*\"\\s*)+),"));
        static const QRegularExpression kJoint(QStringLiteral("(?<!\\\\)\"\\s*\""));
        auto pseudo = std::make_unique<Catalogue>();
        QVERIFY(pseudo->load(QStringLiteral(PSEUDO_LANGUAGE)));
        QStringList missed;
        int found = 0;
        QDirIterator sources(QStringLiteral(PROJECT_FOLDER "/src"), {"*.cpp", "*.h"}, QDir::Files,
                             QDirIterator::Subdirectories);
        while (sources.hasNext()) {
            const QString code = text_of(sources.next());
            for (auto match = kConstant.globalMatch(code); match.hasNext();) {
                QString text = match.next().captured(1).trimmed().remove(kJoint);
                text = text.mid(1).chopped(1);
                text.replace("\\n", "\n").replace("\\\"", "\"");
                ++found;
                if (is_text(text) && pseudo->translate(nullptr, text.toUtf8()).isEmpty())
                    missed += text;
            }
        }
        QVERIFY(found > 200);
        QVERIFY2(missed.isEmpty(), qPrintable(missed.join(u'\n')));
    }
};

}  // namespace m47::shell

QTEST_MAIN(m47::shell::ThirdLanguageTest)
#include "third_language_test.moc"
