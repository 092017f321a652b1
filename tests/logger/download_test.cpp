// SPDX-License-Identifier: GPL-3.0-or-later
#include "download_test.h"

namespace m47::logger {

void DownloadTest::open_screen() {
    find<QAction>("download", &window())->trigger();
    screen_ = qobject_cast<Download*>(window().screen_of(QStringLiteral("download")));
    QVERIFY(screen_);
}

void DownloadTest::close_screen() {
    find<QAction>("cmdexit")->trigger();
    QTRY_VERIFY(!window().screen_of(QStringLiteral("download")));
}

void DownloadTest::start_alone() {
    new_folder(folder_template());
    link::PortList ports;
    if (meter_) QVERIFY(ports.add(QStringLiteral("1=") + meter_->link()));
    start_program({}, ports);
    program_state().texts.language = kEnglish;
}

void DownloadTest::start(const QStringList& options, const char* pace) {
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

QStringList DownloadTest::new_commands() {
    QTest::qWait(30);
    const QStringList all = meter_->commands();
    const QStringList fresh = all.mid(seen_);
    seen_ = all.size();
    return fresh;
}

QByteArray DownloadTest::sent_for(const QString& command) {
    QTest::qWait(50);
    const QList<QByteArray> answers = meter_->answers_to(command);
    return answers.isEmpty() ? QByteArray() : answers.last().mid(command.size() + 1).chopped(1);
}

void DownloadTest::answer_dialog(const QString& name, QStringList* filters) {
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

void DownloadTest::cleanup() {
    end_program();
    meter_.reset();
    screen_ = nullptr;
}

void DownloadTest::the_screen_is_as_technicians_know_it() {
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

void DownloadTest::every_tooltip_stands_in_both_languages() {
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

void DownloadTest::a_temporary_name_is_wanted_and_must_stay_in_the_folder() {
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

void DownloadTest::nothing_to_save_is_said() {
    start_alone();
    open_screen();
    const Box box = box_of([this] { find<QAction>("save")->trigger(); });
    QCOMPARE(box.title, QStringLiteral("Error"));
    QCOMPARE(box.text, QStringLiteral("No Data Download."));
    QCOMPARE(box.icon, QMessageBox::Critical);
}

void DownloadTest::each_button_sends_its_command() {
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
    for (const char* dead : {"dwl_c", "dwl_m", "to_ana", "to_dig"}) find<QAction>(dead)->trigger();
    QCOMPARE(new_commands(), QStringList());
    QVERIFY(shown().startsWith(QStringLiteral("LOG ")));
}

void DownloadTest::erasing_keeps_a_copy_and_asks_where_that_is_chosen() {
    start({QStringLiteral("--logger-bytes"), QStringLiteral("500")});
    program_state().corrected.keep_copy = true;
    click("cmddownloadlast");
    const QString before = shown();
    static_cast<void>(new_commands());
    const QDir backup(in_folder("backup"));
    const struct {
        const char* key;
        QString reads, erases, text;
    } keys[] = {{"cmdclearlast", "DATALASTOUT", "DATADELLAST", "Clear Last logged data"},
                {"cmdclearall", "DATAOUT", "DATADELALL", "Clear All logged data"}};
    int copies = 0;
    for (const auto& key : keys) {
        for (const bool agrees : {false, true}) {
            QTimer::singleShot(50, this, [&] {
                auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                QVERIFY(box && box->defaultButton() == box->button(QMessageBox::No));
                QCOMPARE(box->text(), key.text + "\rDo you want to continue?");
                QCOMPARE(new_commands(), QStringList{key.reads});
                const QString newest = backup.entryList(QDir::Files, QDir::Name).last();
                QCOMPARE(content_of(backup.filePath(newest)), sent_for(key.reads));
                QVERIFY(box->informativeText().contains(newest));
                box->button(agrees ? QMessageBox::Yes : QMessageBox::No)->click();
            });
            click(key.key);
            QCOMPARE(new_commands(), agrees ? QStringList{key.erases} : QStringList());
            QCOMPARE(backup.entryList(QDir::Files).size(), ++copies);
        }
    }
    QCOMPARE(shown(), before);
}

void DownloadTest::what_cannot_be_read_first_is_not_erased() {
    start({});
    program_state().corrected.keep_copy = true;
    static_cast<void>(new_commands());
    program_state().base_dir = in_folder("nowhere/");
    QVERIFY(QFile(in_folder("nowhere")).open(QIODevice::WriteOnly));
    const Box box = box_of([this] { click("cmdclearall"); });
    QVERIFY2(box.text.contains("nowhere"), qPrintable(box.text));
    QCOMPARE(new_commands(), QStringList{"DATAOUT"});
}

void DownloadTest::each_coming_to_the_front_chooses_the_device() {
    start({});
    QCOMPARE(meter_->commands().mid(2), QStringList{QStringLiteral("DEVICE 0")});
    find<QAction>("setport", &window())->trigger();
    find<QAction>("download", &window())->trigger();
    QCOMPARE(new_commands(), QStringList{QStringLiteral("DEVICE 0")});
}

}  // namespace m47::logger

QTEST_MAIN(m47::logger::DownloadTest)
