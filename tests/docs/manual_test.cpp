// SPDX-License-Identifier: GPL-3.0-or-later
// The manual is whole in both languages, names what the program shows, and F1 opens it.
#include <QAction>
#include <QDesktopServices>
#include <QDialog>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QMessageBox>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>
#include <QUrl>

#include "manual_page.h"
#include "program_in_folder.h"
#include "screen_table.h"

namespace m47 {
namespace {

const QString kPages = QStringLiteral(PROJECT_FOLDER "/docs/manual/");
const QStringList kLanguages{QStringLiteral("en"), QStringLiteral("it")};

QString text_of(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) qFatal("cannot read %s", qPrintable(path));
    return QString::fromUtf8(file.readAll());
}

QStringList files_in(const QString& folder, const QString& pattern) {
    return QDir(folder).entryList({pattern}, QDir::Files, QDir::Name);
}

/// The first capture of `pattern` in `text`, wherever it matches.
QStringList captures(const QString& text, const QString& pattern) {
    QStringList found;
    const QRegularExpression form(pattern);
    for (auto match = form.globalMatch(text); match.hasNext();) found += match.next().captured(1);
    return found;
}

/// How a page is built: its headings, lists, tables and pictures, without the words.
QStringList outline(const QString& page) {
    static const QRegularExpression kListOrHeading(QStringLiteral("^(#+|-|\\d+\\.)$"));
    QStringList shape;
    for (const QString& line : page.split(u'\n')) {
        const QString mark = line.section(u' ', 0, 0);
        if (mark == u"|") shape += QStringLiteral("| %1").arg(line.count(u'|'));
        if (kListOrHeading.match(mark).hasMatch()) shape += mark.left(2);
        if (line.startsWith(u'!')) shape += line.section(u'(', 1);
    }
    return shape;
}

/// The sources as one text, adjacent literals joined and the marks of shortcuts left out.
QString shown_texts() {
    QString all;
    QDirIterator sources(QStringLiteral(PROJECT_FOLDER "/src"), {"*.ui", "*.cpp", "*.h"},
                         QDir::Files, QDirIterator::Subdirectories);
    while (sources.hasNext()) all += text_of(sources.next());
    static const QRegularExpression kJoint(QStringLiteral("\"\\s*\""));
    return all.remove(kJoint).remove(QStringLiteral("&amp;")).remove(u'&');
}

}  // namespace

class ManualTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

    QStringList opened_;

    void start() {
        new_folder();
        start_program();
    }
    void press_f1() {
        QWidget* focus = QApplication::focusWidget();
        QTest::keyClick(focus ? focus : &window(), Qt::Key_F1);
    }

  public Q_SLOTS:
    void take_url(const QUrl& url) { opened_ += url.toLocalFile(); }

  private Q_SLOTS:
    void init() { opened_.clear(); }
    void cleanup() { end_program(); }

    void both_languages_have_the_same_pages_in_the_same_shape() {
        const QStringList english = files_in(kPages + "en", "*.md");
        QVERIFY(english.size() >= 15);
        QCOMPARE(files_in(kPages + "it", "*.md"), english);
        for (const QString& name : english) {
            const QString page = text_of(kPages + "en/" + name);
            const QString other = text_of(kPages + "it/" + name);
            QVERIFY2(page != other, qPrintable(name));
            QCOMPARE(outline(other), outline(page));
        }
        QCOMPARE(files_in(kPages + "it/images", "*"), files_in(kPages + "en/images", "*"));
    }

    void every_link_and_picture_is_there_and_none_is_left_over() {
        for (const QString& language : kLanguages) {
            const QDir folder(kPages + language);
            QStringList pictures;
            for (const QString& name : files_in(folder.path(), "*.md")) {
                const QString page = text_of(folder.filePath(name));
                for (const QString& target : captures(page, "\\]\\(([^)]*)\\)")) {
                    QVERIFY2(QFileInfo(folder.filePath(target)).isFile(), qPrintable(target));
                    if (target.startsWith("images/")) pictures += target.mid(7);
                }
            }
            pictures.removeDuplicates();
            pictures.sort();
            QCOMPARE(pictures, files_in(folder.filePath("images"), "*"));
            const QStringList listed =
                captures(text_of(folder.filePath("index.md")), "\\]\\(([a-z-]*)\\.md\\)");
            for (const QString& name : files_in(folder.path(), "*.md"))
                QVERIFY2(name == "index.md" || listed.contains(QFileInfo(name).baseName()),
                         qPrintable(name));
        }
    }

    void the_pages_are_made_into_html_whose_links_hold() {
        for (const QString& language : kLanguages) {
            const QDir folder(QStringLiteral(MANUAL_HTML "/") + language);
            QStringList wanted = files_in(kPages + language, "*.md");
            wanted.replaceInStrings(".md", ".html");
            QCOMPARE(files_in(folder.path(), "*.html"), wanted);
            for (const QString& name : wanted) {
                const QString page = text_of(folder.filePath(name));
                QVERIFY(page.contains("<h1>"));
                const QStringList targets = captures(page, "(?:href|src)=\"([^\"]*)\"");
                QVERIFY(targets.size() > wanted.size());
                for (const QString& target : targets)
                    QVERIFY2(QFileInfo(folder.filePath(target)).isFile(),
                             qPrintable(name + ": " + target));
            }
        }
    }

    void a_page_marks_itself_and_its_search_knows_every_heading() {
        for (const QString& language : kLanguages) {
            const QDir folder(QStringLiteral(MANUAL_HTML "/") + language);
            const QString known = text_of(folder.filePath("search-data.js"));
            for (const QString& file : files_in(folder.path(), "*.html")) {
                const QString page = text_of(folder.filePath(file));
                QCOMPARE(captures(page, "href=\"([^\"]*)\" aria-current=\"page\""),
                         QStringList(file));
                QVERIFY(page.contains("search-data.js") && page.contains("../search.js"));
                const QString name = QFileInfo(file).baseName();
                const QString title = captures(page, "<h1>(.*)</h1>").value(0);
                QVERIFY2(known.contains(
                             QStringLiteral("[\"%1\", \"%2\", \"\", \"\", ").arg(name, title)),
                         qPrintable(name));
                const QStringList headings = captures(page, "<h2 id=\"s\\d+\">(.*)</h2>");
                QCOMPARE(captures(page, "(<h2)\\b").size() -
                             captures(page.section("<main>", 0, 0), "(<h2)").size(),
                         headings.size());
                for (qsizetype k = 0; k < headings.size(); ++k)
                    QVERIFY2(known.contains(
                                 QStringLiteral("\"%1\", \"s%2\", ").arg(headings[k]).arg(k + 1)),
                             qPrintable(headings[k]));
            }
        }
    }

    void the_pages_follow_the_work() {
        const QStringList work{"connect", "tune",   "measure",    "plans",
                               "upload",  "logger", "satellites", "troubleshooting"};
        for (const QString& language : kLanguages) {
            const QString page =
                text_of(QStringLiteral(MANUAL_HTML "/") + language + "/index.html");
            QStringList listed =
                captures(page.section("<main>", 0, 0), "href=\"([a-z-]*)\\.html\"");
            listed.removeIf([&](const QString& name) { return !work.contains(name); });
            QCOMPARE(listed, work);
            QVERIFY(page.contains("try.html"));
        }
    }

    void what_stands_in_quotes_is_what_the_program_shows() {
        // A number or a name stands in for what the program puts in at that place.
        static const QRegularExpression kPutIn(QStringLiteral("…|\\d"));
        static const QRegularExpression kLineEnd(QStringLiteral("\n *"));
        const QString shown = shown_texts();
        QStringList unknown;
        for (const QString& language : kLanguages)
            for (const QString& name : files_in(kPages + language, "*.md")) {
                const QString page =
                    text_of(kPages + language + u'/' + name).replace(kLineEnd, " ");
                for (const QString& quote : captures(page, "\"([^\"]*)\""))
                    for (const QString& part : quote.split(kPutIn, Qt::SkipEmptyParts))
                        if (!shown.contains(part.trimmed()))
                            unknown += QStringLiteral("%1/%2: %3").arg(language, name, part);
            }
        QCOMPARE(unknown, QStringList());
    }

    void every_screen_has_a_page() {
        QStringList names;
        for (const QString& key : shell::screen_keys()) names += shell::manual_page_name(key);
        QCOMPARE(names.removeDuplicates(), 0);
        QVERIFY(!names.contains("index"));
        for (const QString& name : names)
            QVERIFY2(QFile::exists(kPages + "en/" + name + ".md"), qPrintable(name));
        QCOMPARE(shell::manual_page_name(QString()), QStringLiteral("index"));
    }

    void the_option_that_opens_a_screen_is_described_with_all_of_them() {
        const QString packaging = QStringLiteral(PROJECT_FOLDER "/packaging/");
        QVERIFY(text_of(packaging + "completion/m47-remote")
                    .contains("compgen -W '" + shell::screen_keys().join(u' ') + u'\''));
        for (const char* page : {"man/m47-remote.1.in", "man/m47-remote.it.1.in"}) {
            const QString text = text_of(packaging + page);
            for (const QString& key : shell::screen_keys())
                QVERIFY2(captures(text, "\\n\\.BR? (" + key + ")\\b").size() == 1, qPrintable(key));
        }
    }

    void the_page_is_looked_for_beside_the_program_and_in_the_documents() {
        QCOMPARE(shell::manual_folders("/opt/m47/bin"),
                 QStringList({"/opt/m47/bin/manual", "/opt/m47/share/doc/m47-remote/html"}));
        const QTemporaryDir one, two;
        Texts texts;
        const QStringList folders{one.path(), two.path()};
        const auto find = [&] { return shell::find_manual_page(folders, "tune", texts); };
        const auto put = [](const QTemporaryDir& folder, const char* language) {
            QVERIFY(QDir(folder.path()).mkpath(language));
            QFile file(folder.filePath(QLatin1String(language) + "/tune.html"));
            QVERIFY(file.open(QIODevice::WriteOnly));
        };
        QCOMPARE(find(), QString());
        put(two, "it");
        QCOMPARE(find(), QString());
        put(two, "en");
        QCOMPARE(find(), two.filePath("en/tune.html"));
        texts.language = kItalian;
        QCOMPARE(find(), two.filePath("it/tune.html"));
        put(one, "it");
        QCOMPARE(find(), one.filePath("it/tune.html"));
    }

    void f1_opens_the_page_of_the_screen_in_front() {
        QDesktopServices::setUrlHandler("file", this, "take_url");
        start();
        press_f1();
        for (const QString& key : shell::screen_keys()) {
            window().open_screen(key);
            press_f1();
        }
        window().findChild<QAction*>("cmdinglese")->trigger();
        window().open_screen("asl");
        window().findChild<QAction*>("cmdmanual")->trigger();
        QStringList wanted{"it/index.html"};
        for (const shell::ScreenEntry& screen : shell::screen_table())
            wanted += QStringLiteral("it/%1.html").arg(QLatin1String(screen.manual_page));
        wanted += "en/satellites.html";
        wanted.replaceInStrings(QRegularExpression("^"), QStringLiteral(MANUAL_HTML "/"));
        QCOMPARE(opened_, wanted);
        QDesktopServices::unsetUrlHandler("file");
    }

    void f1_opens_the_manual_from_a_dialog_too() {
        QDesktopServices::setUrlHandler("file", this, "take_url");
        start();
        window().open_screen("asl");
        QDialog plain(&window());
        QDialog other(&window());
        other.setProperty("manual_page", "upload");
        for (QDialog* dialog : {&plain, &other}) {
            auto* box = new QLineEdit(dialog);
            QTimer::singleShot(0, this, [box, dialog] {
                QTest::keyClick(box, Qt::Key_F1);
                dialog->accept();
            });
            dialog->exec();
        }
        QStringList wanted{"it/satellites.html", "it/upload.html"};
        wanted.replaceInStrings(QRegularExpression("^"), QStringLiteral(MANUAL_HTML "/"));
        QCOMPARE(opened_, wanted);
        QDesktopServices::unsetUrlHandler("file");
    }

    void one_message_tells_that_there_is_no_manual() {
        start();
        QStringList seen;
        QTimer::singleShot(0, this, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            QVERIFY(box);
            seen += box->windowTitle() + u'|' + box->text();
            box->accept();
        });
        program().open_manual({"/nowhere/manual", "/nowhere/html"});
        QCOMPARE(seen, QStringList({"Manuale|Il manuale non è installato con questo programma. È "
                                    "stato cercato in /nowhere/manual, /nowhere/html."}));
    }
};

}  // namespace m47

QTEST_MAIN(m47::ManualTest)
#include "manual_test.moc"
