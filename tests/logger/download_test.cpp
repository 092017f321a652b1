// SPDX-License-Identifier: GPL-3.0-or-later
// The logger screen in the whole program, clicked and typed at as a technician does, against the
// simulated meter.
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPrintDialog>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QToolBar>

#include "download.h"
#include "download_tooltips.h"
#include "process_support.h"
#include "program_in_folder.h"
#include "span_chart.h"

namespace m47 {

class DownloadTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

  private:
    std::unique_ptr<MeterProcess> meter_;
    Download* screen_ = nullptr;
    qsizetype seen_ = 0;

    template <class Kind>
    Kind* find(const char* name, QObject* in = nullptr) {
        return ProgramInFolder::find<Kind>(name, in ? in : screen_);
    }
    void click(const char* button) { QTest::mouseClick(find<QPushButton>(button), Qt::LeftButton); }
    QString shown() { return find<QPlainTextEdit>("dwl_txt")->toPlainText(); }

    void open_screen() {
        find<QAction>("download", &window())->trigger();
        screen_ = qobject_cast<Download*>(window().screen_of(QStringLiteral("download")));
        QVERIFY(screen_);
    }
    void close_screen() {
        find<QAction>("cmdexit")->trigger();
        QTRY_VERIFY(!window().screen_of(QStringLiteral("download")));
    }
    /// A program without a meter, in English, its logger screen open.
    void start_alone() {
        new_folder(folder_template());
        PortList ports;
        if (meter_) QVERIFY(ports.add(QStringLiteral("1=") + meter_->link()));
        start_program({}, ports);
        program_state().texts.language = kEnglish;
    }
    /// The same on an identified meter.
    void start(const QStringList& options, const char* pace = "0") {
        meter_folder_ = std::make_unique<QTemporaryDir>(folder_template());
        meter_ = std::make_unique<MeterProcess>(
            meter_folder_->path(),
            QStringList{QStringLiteral("--baud-factor"), QString::fromLatin1(pace),
                        QStringLiteral("--delay"), QStringLiteral("0")} +
                options);
        start_alone();
        program().identify(1);
        open_screen();
        new_commands();
    }
    std::unique_ptr<QTemporaryDir> meter_folder_;

    QStringList new_commands() {
        QTest::qWait(30);
        const QStringList all = meter_->commands();
        const QStringList fresh = all.mid(seen_);
        seen_ = all.size();
        return fresh;
    }
    /// What the meter sent for `command`, without the echo and the CR that ends it.
    QByteArray sent_for(const QString& command) {
        QTest::qWait(50);
        const QList<QByteArray> answers = meter_->answers_to(command);
        return answers.isEmpty() ? QByteArray() : answers.last().mid(command.size() + 1).chopped(1);
    }

    /// Types `name` into the file dialog that comes up next; nothing cancels it.
    void answer_dialog(const QString& name, QStringList* filters = nullptr) {
        QTimer::singleShot(50, this, [name, filters] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            if (filters) *filters = dialog->nameFilters();
            if (name.isEmpty()) return dialog->reject();
            auto* box = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            box->setText(name);
            QTest::keyClick(box, Qt::Key_Return);
        });
    }
    struct Box {
        QString title, text;
        QMessageBox::Icon icon = QMessageBox::NoIcon;
        QMessageBox::StandardButtons buttons;
    };
    /// The message box that `action` brings up.
    template <class Action>
    Box box_of(Action action) {
        Box seen;
        QTimer::singleShot(50, this, [&seen] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            QVERIFY(box);
            seen = {box->windowTitle(), box->text(), box->icon(), box->standardButtons()};
            box->accept();
        });
        action();
        return seen;
    }

  private Q_SLOTS:
    void init() { seen_ = 0; }
    void cleanup() {
        end_program();
        meter_.reset();
        screen_ = nullptr;
    }

    void the_screen_is_as_technicians_know_it() {
        start_alone();
        open_screen();
        QCOMPARE(screen_->objectName(), QStringLiteral("download"));
        QStringList keys;
        for (const QAction* key : find<QToolBar>("Toolbar1")->actions()) {
            keys += key->objectName();
            QVERIFY2(!key->icon().isNull(), qPrintable(key->objectName()));
        }
        QCOMPARE(keys, QStringList({"open", "save", "delete", "dwl", "dwl_c", "dwl_m", "to_ana",
                                    "to_dig", "stampa"}));
        const QList<std::pair<const char*, const char*>> captions{
            {"cmddownload", "Download"},  {"cmddownloadlast", "Download Last"},
            {"cmdclearall", "Clear All"}, {"cmdclearlast", "Clear Last"},
            {"cmddatain", "Start Log"},   {"cmdspan", "Span"}};
        for (const auto& [name, caption] : captions)
            QCOMPARE(find<QPushButton>(name)->text(), QString::fromLatin1(caption));
        QCOMPARE(find<QLabel>("Label2")->text(), QStringLiteral("Temporary File:"));
        QCOMPARE(find<QLineEdit>("tmpfile")->text(), QStringLiteral("dwl.tmp"));
        QCOMPARE(find<QLabel>("nome_file")->text(), QString());
        QVERIFY(find<QPlainTextEdit>("dwl_txt")->isReadOnly());
        QVERIFY(!find<QWidget>("span_panel")->isVisible());
    }

    void every_tooltip_stands_in_both_languages() {
        start_alone();
        for (const int language : {int(kEnglish), 1, int(kItalian)}) {
            program_state().texts.language = language;
            open_screen();
            for (const Tooltip& tooltip : download_tooltips()) {
                const bool italian = language == kItalian && tooltip.italian;
                const char* text = italian ? tooltip.italian : tooltip.english;
                QCOMPARE(find<QObject>(tooltip.control)->property("toolTip").toString(),
                         QString::fromUtf8(text ? text : ""));
            }
            close_screen();
        }
        open_screen();
        QCOMPARE(find<QAction>("dwl_c")->toolTip(), QStringLiteral("Download and clear"));
        QCOMPARE(find<QPushButton>("cmdspan")->toolTip(),
                 QStringLiteral("Legge lo span dallo strumento"));
        QCOMPARE(find<QPlainTextEdit>("dwl_txt")->toolTip(), QStringLiteral("Elenco misure"));
    }

    void a_temporary_name_is_wanted_and_must_stay_in_the_folder() {
        start_alone();
        open_screen();
        auto* name = find<QLineEdit>("tmpfile");
        name->setText(QStringLiteral("  "));
        Box box = box_of([this] { click("cmddownload"); });
        QCOMPARE(box.title, QStringLiteral("Data Error"));
        QCOMPARE(box.text, QStringLiteral("Define a Temporary file name."));
        QCOMPARE(box.icon, QMessageBox::NoIcon);
        QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
        QCOMPARE(window().focusWidget(), name);
        program_state().texts.language = kItalian;
        box = box_of([this] { click("cmddownloadlast"); });
        QCOMPARE(box.text, QStringLiteral("Definire Nome per un file temporaneo"));
        name->setText(QStringLiteral("../dwl.tmp"));
        box = box_of([this] { find<QAction>("dwl")->trigger(); });
        QCOMPARE(box.title, QStringLiteral("Data Error"));
        QCOMPARE(box.text, QStringLiteral("Nome file errato."));
        name->setText(QStringLiteral("vkdm47_03.mdb"));
        program_state().texts.language = kEnglish;
        box = box_of([this] { click("cmddownload"); });
        QCOMPARE(box.text, QStringLiteral("Filename Error."));
        QCOMPARE(QDir(folder()).entryList(QDir::Files).filter(QStringLiteral("TMP")).size(), 0);
    }

    void nothing_to_save_is_said() {
        start_alone();
        open_screen();
        const Box box = box_of([this] { find<QAction>("save")->trigger(); });
        QCOMPARE(box.title, QStringLiteral("Error"));
        QCOMPARE(box.text, QStringLiteral("No Data Download."));
        QCOMPARE(box.icon, QMessageBox::Critical);
    }

    void each_button_sends_its_command() {
        start({});
        const QList<std::pair<const char*, QString>> commands{
            {"cmdclearlast", QStringLiteral("DATADELLAST")},
            {"cmdclearall", QStringLiteral("DATADELALL")},
            {"cmddatain", QStringLiteral("DATAIN")},
            {"cmddownloadlast", QStringLiteral("DATALASTOUT")},
            {"cmddownload", QStringLiteral("DATAOUT")}};
        for (const auto& [button, command] : commands) {
            click(button);
            QCOMPARE(new_commands(), QStringList{command});
        }
        find<QAction>("dwl")->trigger();
        QCOMPARE(new_commands(), QStringList{QStringLiteral("DATAOUT")});
        for (const char* dead : {"dwl_c", "dwl_m", "to_ana", "to_dig"})
            find<QAction>(dead)->trigger();
        QCOMPARE(new_commands(), QStringList());
        QVERIFY(shown().startsWith(QStringLiteral("LOG ")));
    }

    void each_coming_to_the_front_chooses_the_device() {
        start({});
        QCOMPARE(meter_->commands().mid(2), QStringList{QStringLiteral("DEVICE 0")});
        find<QAction>("setport", &window())->trigger();
        find<QAction>("download", &window())->trigger();
        QCOMPARE(new_commands(), QStringList{QStringLiteral("DEVICE 0")});
    }

    void a_download_is_saved_and_recalled_byte_for_byte() {
        start({QStringLiteral("--logger-bytes"), QStringLiteral("200000")});
        click("cmddownload");
        const QByteArray sent = sent_for(QStringLiteral("DATAOUT"));
        QVERIFY(sent.size() > 200000);
        QCOMPARE(content_of(in_folder("DWL.TMP")), sent + "\r\n");
        QCOMPARE(screen_->data.text(), sent + "\r\n");
        QCOMPARE(shown(), QString::fromLatin1(sent).remove(u'\r') + u'\n');

        QStringList filters;
        answer_dialog(in_folder("day.dwl"), &filters);
        find<QAction>("save")->trigger();
        QCOMPARE(filters, QStringList{QStringLiteral("(*.dwl)")});
        QCOMPARE(content_of(in_folder("day.dwl")), sent + "\r\n\r\n");
        QCOMPARE(find<QLabel>("nome_file")->text(), in_folder("day.dwl"));

        const QString before = shown();
        click("cmdclearall");
        click("cmddownload");
        QCOMPARE(shown(), QStringLiteral("OK\n"));
        answer_dialog(in_folder("day.dwl"), &filters);
        find<QAction>("open")->trigger();
        QCOMPARE(filters, QStringList{QStringLiteral("(*.dwl)")});
        QCOMPARE(shown(), before + u'\n');
    }

    void saving_overwrites_and_adds_the_ending_dwl() {
        start({QStringLiteral("--logger-bytes"), QStringLiteral("500")});
        click("cmddownloadlast");
        answer_dialog(in_folder("day"));
        find<QAction>("save")->trigger();
        QCOMPARE(find<QLabel>("nome_file")->text(), in_folder("day.dwl"));
        click("cmddownload");
        answer_dialog(in_folder("day.dwl"));
        find<QAction>("save")->trigger();
        QCOMPARE(content_of(in_folder("day.dwl")),
                 sent_for(QStringLiteral("DATAOUT")) + "\r\n\r\n");
    }

    void a_file_that_is_chosen_is_that_file() {
        start_alone();
        open_screen();
        const auto put = [this](const char* name, const QByteArray& bytes) {
            QFile file(in_folder(name));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        };
        put("PLAIN", "chosen\r\n");
        put("PLAIN.dwl", "another\r\n");
        answer_dialog(in_folder("PLAIN"));
        find<QAction>("open")->trigger();
        QCOMPARE(shown(), QString("chosen\n"));
        QCOMPARE(find<QLabel>("nome_file")->text(), in_folder("PLAIN"));
        answer_dialog(in_folder("PLAIN"));
        find<QAction>("save")->trigger();
        QCOMPARE(content_of(in_folder("PLAIN")), QByteArray("chosen\r\n\r\n"));
        QCOMPARE(content_of(in_folder("PLAIN.dwl")), QByteArray("another\r\n"));
        answer_dialog(in_folder("PLAIN"));
        find<QAction>("delete")->trigger();
        QVERIFY(!QFile::exists(in_folder("PLAIN")));
        // A name that no file has is the short one of a ".dwl".
        answer_dialog(in_folder("PLAIN"));
        find<QAction>("open")->trigger();
        QCOMPARE(shown(), QString("another\n"));
    }

    void the_database_is_no_file_to_choose() {
        start_alone();
        open_screen();
        const QString database = in_folder("VKDM47_03.mdb");
        program_state().database_file = database;
        QVERIFY(QFile::link(database, in_folder("other.dwl")));
        for (const char* name : {"VKDM47_03.mdb", "other.dwl"}) {
            QString told;
            answer_dialog(in_folder(name));
            QTimer::singleShot(400, this, [&told] {
                auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                QVERIFY(box);
                told = box->text();
                box->accept();
            });
            find<QAction>("delete")->trigger();
            QVERIFY2(told.endsWith(" is the database of this program. Choose another file."),
                     qPrintable(told));
            QVERIFY(QFile::exists(database));
        }
    }

    void a_cancelled_dialog_changes_nothing() {
        start({QStringLiteral("--logger-bytes"), QStringLiteral("500")});
        click("cmddownload");
        answer_dialog(in_folder("day.dwl"));
        find<QAction>("save")->trigger();
        const QString before = shown();
        for (const char* key : {"open", "save", "delete"}) {
            answer_dialog(QString());
            find<QAction>(key)->trigger();
            QCOMPARE(shown(), before);
            QCOMPARE(find<QLabel>("nome_file")->text(), in_folder("day.dwl"));
        }
    }

    void deleting_asks_nothing_and_a_missing_file_is_silent() {
        start({QStringLiteral("--logger-bytes"), QStringLiteral("500")});
        click("cmddownload");
        answer_dialog(in_folder("day.dwl"));
        find<QAction>("save")->trigger();
        QStringList filters;
        answer_dialog(in_folder("day.dwl"), &filters);
        find<QAction>("delete")->trigger();
        QCOMPARE(filters, QStringList{QStringLiteral("(*.dwl)")});
        QVERIFY(!QFileInfo::exists(in_folder("day.dwl")));
        QCOMPARE(shown(), QString());
        answer_dialog(in_folder("day.dwl"));
        find<QAction>("delete")->trigger();
        answer_dialog(in_folder("day.dwl"));
        find<QAction>("open")->trigger();
        QCOMPARE(shown(), QString());
        QCOMPARE(find<QLabel>("nome_file")->text(), in_folder("day.dwl"));
    }

    void typing_into_the_text_changes_nothing() {
        start({QStringLiteral("--logger-bytes"), QStringLiteral("500")});
        click("cmddownload");
        const QString before = shown();
        auto* text = find<QPlainTextEdit>("dwl_txt");
        text->setFocus();
        QTest::keyClicks(text, QStringLiteral("abc 1"));
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Backspace, Qt::Key_Delete})
            QTest::keyClick(text, key);
        QApplication::clipboard()->setText(QStringLiteral("pasted"));
        QTest::keyClick(text, Qt::Key_V, Qt::ControlModifier);
        QTest::keyClick(text, Qt::Key_X, Qt::ControlModifier);
        QCOMPARE(shown(), before);
    }

    void a_long_download_shows_how_far_it_is() {
        start({QStringLiteral("--logger-bytes"), QStringLiteral("3000")}, "1");
        const auto* status = find<QLabel>("plan_progress", &window());
        const auto* bar = find<QProgressBar>("pbar1", &window());
        QStringList texts;
        QList<int> values;
        connect(screen_, &Download::progress, this, [&] {
            if (!status->text().isEmpty()) texts += status->text();
            values += bar->value();
        });
        click("cmddownload");
        QVERIFY2(texts.size() > 10, qPrintable(QString::number(texts.size())));
        qsizetype last = 0;
        for (const QString& text : texts) {
            QVERIFY2(text.endsWith(QStringLiteral(" bytes")), qPrintable(text));
            QVERIFY(text.chopped(6).toLongLong() >= last);
            last = text.chopped(6).toLongLong();
        }
        QVERIFY(last > 2000);
        QVERIFY(QSet<int>(values.begin(), values.end()).size() > 5);
        QCOMPARE(status->text(), QString());
        QCOMPARE(bar->value(), 0);
    }

    void a_line_that_drops_half_way_leaves_one_empty_line() {
        start({QStringLiteral("--logger-bytes"), QStringLiteral("20000"), QStringLiteral("--fault"),
               QStringLiteral("drop:1"), QStringLiteral("--fault-on"), QStringLiteral("DATAOUT")});
        QElapsedTimer timer;
        timer.start();
        click("cmddownload");
        QVERIFY(timer.elapsed() < 2000);
        QVERIFY(!program().link().port_connected);
        QCOMPARE(find<QLabel>("port_state", &window())->text(),
                 QStringLiteral("RS232 ComPort 1 NOT Connected"));
        QCOMPARE(shown(), QStringLiteral("\n"));
        QCOMPARE(content_of(in_folder("DWL.TMP")), QByteArray("\r\n"));
        QCOMPARE(find<QLabel>("plan_progress", &window())->text(), QString());
    }

    void noise_on_the_line_reaches_the_file_as_it_came() {
        start({QStringLiteral("--logger-bytes"), QStringLiteral("3000"), QStringLiteral("--seed"),
               QStringLiteral("5"), QStringLiteral("--fault"), QStringLiteral("noise"),
               QStringLiteral("--fault-on"), QStringLiteral("DATALASTOUT")});
        for (int round = 0; round < 5; ++round) {
            click("cmddownloadlast");
            QCOMPARE(content_of(in_folder("DWL.TMP")),
                     sent_for(QStringLiteral("DATALASTOUT")) + "\r\n");
        }
    }

    void records_are_shown_as_a_table_and_copied() {
        start({QStringLiteral("--logger-bytes"), QStringLiteral("3000")});
        click("cmddownload");
        auto* pages = find<QTabWidget>("pages");
        QCOMPARE(pages->tabText(0), QStringLiteral("Text"));
        QCOMPARE(pages->tabText(1), QStringLiteral("Table"));
        pages->setCurrentIndex(1);
        auto* table = find<QTableView>("record_table");
        const auto* model = table->model();
        QCOMPARE(model->rowCount(), int(screen_->data.text().count('\n')));
        int level = -1;
        for (int column = 0; column < model->columnCount(); ++column)
            if (model->headerData(column, Qt::Horizontal) == QStringLiteral("dBuV")) level = column;
        QVERIFY(level > 0);
        const auto* header = table->horizontalHeader();
        const QPoint name(header->sectionViewportPosition(level) + 8, header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, name);
        const auto value = [&](int row) {
            return model->index(row, level).data().toString().remove(u'<').toDouble();
        };
        QVERIFY(value(0) <= value(1) && value(1) <= value(2));
        table->selectRow(1);
        table->setFocus();
        QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
        const QStringList copied = QApplication::clipboard()->text().split(u'\n');
        QCOMPARE(copied.size(), 3);
        QCOMPARE(copied[0].split(u'\t').size(), model->columnCount());
        QCOMPARE(copied[1].split(u'\t')[level], model->index(1, level).data().toString());
        click("cmdclearall");
        click("cmddownload");
        QCOMPARE(model->rowCount(), 1);
    }

    void a_span_is_a_curve_and_a_click_reads_a_point() {
        start({});
        click("cmdspan");
        QCOMPARE(new_commands(), QStringList({"outputmode 1", "spanout"}));
        QVERIFY(find<QWidget>("span_panel")->isVisible());
        auto* chart = find<SpanChart>("span_chart");
        QTRY_VERIFY(chart->width() > 200);
        chart->replot();
        const QStringList lines =
            QString::fromLatin1(sent_for(QStringLiteral("spanout"))).split(QStringLiteral("\r\n"));
        QCOMPARE(chart->graph(0)->data()->size(), 100);
        QCOMPARE(lines.size(), 101);
        const auto* caption = find<QLabel>("span_point");
        QCOMPARE(caption->text(), QString());
        for (const int row : {1, 37, 100}) {
            const QStringList words = lines[row - 1].split(u'\t');
            QCOMPARE(chart->graph(0)->data()->at(row - 1)->value, words[1].toDouble() - 30);
            QTest::mouseClick(chart, Qt::LeftButton, {}, chart->place_of(row));
            const QStringList read = caption->text().split(u' ');
            QCOMPARE(read.size(), 2);
            QCOMPARE(read[0], words[0]);
            QVERIFY(qAbs(read[1].toDouble() - (words[1].toDouble() - 30)) < 1e-6);
        }
        const QString before = caption->text();
        QTest::mouseClick(chart, Qt::LeftButton, {}, {2, 2});
        QCOMPARE(caption->text(), before);
        meter_->kill_now();
        click("cmdspan");
        QCOMPARE(chart->graph(0)->data()->size(), 0);
        QCOMPARE(caption->text(), QString());
    }

    void the_page_is_printed() {
        start({QStringLiteral("--logger-bytes"), QStringLiteral("300")});
        click("cmddownload");
        const QString pdf = in_folder("page.pdf");
        QTimer::singleShot(100, this, [pdf] {
            auto* dialog = qobject_cast<QPrintDialog*>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            dialog->printer()->setOutputFormat(QPrinter::PdfFormat);
            dialog->printer()->setOutputFileName(pdf);
            dialog->done(QDialog::Accepted);
        });
        find<QAction>("stampa")->trigger();
        QProcess reader;
        reader.start(QStringLiteral("pdftotext"),
                     {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
        QVERIFY(reader.waitForFinished());
        const QString read = QString::fromUtf8(reader.readAllStandardOutput()).simplified();
        QVERIFY2(read.startsWith(shown().simplified()), qPrintable(read));
    }

    void a_hundred_thousand_lines_are_shown_without_lag() {
        start_alone();
        open_screen();
        QByteArray text;
        for (int k = 0; k < 100000; ++k)
            text += "D01  1000.0 S01   65.3 1.2E-05  " + QByteArray::number(k) + "\r\n";
        QFile file(in_folder("full.dwl"));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
        file.close();
        answer_dialog(in_folder("full.dwl"));
        find<QAction>("open")->trigger();
        auto* view = find<QPlainTextEdit>("dwl_txt");
        QCOMPARE(view->blockCount(), 100001);
        QScrollBar* bar = view->verticalScrollBar();
        bar->setValue(bar->maximum());
        QCOMPARE(view->cursorForPosition(view->viewport()->rect().bottomLeft()).blockNumber(),
                 100000);
        QCOMPARE(screen_->data.text(), text);
    }
};

}  // namespace m47

QTEST_MAIN(m47::DownloadTest)
#include "download_test.moc"
