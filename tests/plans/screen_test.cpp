// SPDX-License-Identifier: GPL-3.0-or-later
// The plan screen of the whole program, clicked and typed at as a technician does, and its uploads
// against the simulated meter on a pseudo-terminal.
#include <signal.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QSet>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QWheelEvent>

#include "fake_port.h"
#include "meter_in_process.h"
#include "plan_sets.h"
#include "plan_tooltips.h"
#include "process_support.h"
#include "program_in_folder.h"
#include "program_set.h"
#include "upload_commands.h"
#include "virtual_clock.h"

namespace m47 {

class PlanScreenTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

  private:
    std::unique_ptr<MeterProcess> meter_;
    std::unique_ptr<MeterInProcess> quick_meter_;
    /// The line to it.
    FakePort* line_ = nullptr;
    ProgramSet* screen_ = nullptr;
    int beeps_ = 0;
    /// Every box that was answered: its title and its text.
    QStringList told_;
    /// The icon of each message box among them.
    QList<QMessageBox::Icon> icons_;

    template <class Kind>
    Kind* find(const char* name) {
        return ProgramInFolder::find<Kind>(name, screen_);
    }

    void start(const PortList& ports, int language) {
        start_program({1024, 600}, ports);
        to_the_front(language);
    }
    /// Makes the window the active one, as beneath a hand that types.
    void to_the_front(int language) {
        window().activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window()));
        program_state().texts.language = language;
    }
    void open_screen() {
        window().findChild<QAction*>(QStringLiteral("program"))->trigger();
        screen_ = qobject_cast<ProgramSet*>(window().screen_of(QStringLiteral("program")));
        QVERIFY(screen_);
        screen_->beep = [this] { ++beeps_; };
        beeps_ = 0;
        told_.clear();
        icons_.clear();
    }
    void start_alone(int language = kEnglish) {
        new_folder(folder_template());
        start(PortList(), language);
        open_screen();
    }
    /// What takes a minute on a line takes an instant.
    void start_on_virtual_line() {
        new_folder(folder_template());
        auto clock = std::make_unique<VirtualClock>();
        auto line = std::make_unique<FakePort>(*clock);
        line_ = line.get();
        quick_meter_ = std::make_unique<MeterInProcess>(*line, 1);
        PortList ports;
        QVERIFY(ports.add(QStringLiteral("1=/dev/no-such-meter")));
        start_program({1024, 600}, ports, std::move(clock), std::move(line));
        to_the_front(kEnglish);
        program().identify(1);
        QVERIFY(program().link().port_connected);
        open_screen();
    }
    /// What answers takes every command, even one that no meter could carry out.
    void start_on_patient_line() {
        start_on_virtual_line();
        line_->answer = [](const QByteArray& command) { return FakePort::good(command); };
        line_->take_commands();
    }
    void start_with_meter(const QStringList& options = {}) {
        new_folder(folder_template());
        meter_ = std::make_unique<MeterProcess>(
            folder(),
            QStringList{"--baud-factor", "0", "--delay", "0", "--state", state_file()} + options);
        PortList ports;
        QVERIFY(ports.add(QStringLiteral("1=") + meter_->link()));
        start(ports, kEnglish);
        program().identify(1);
        QVERIFY(program().link().port_connected);
        open_screen();
        new_commands();
    }
    QString state_file() const { return in_folder(QStringLiteral("state")); }

    /// Does `act`, and `answer` to the window that then stands in front.
    void answering(const std::function<void()>& act, const std::function<void(QWidget*)>& answer) {
        QTimer watch;
        bool answered = false;
        connect(&watch, &QTimer::timeout, this, [&] {
            QWidget* front = QApplication::activeModalWidget();
            if (!front || answered) return;
            answered = true;
            note(front);
            answer(front);
        });
        watch.start(5);
        act();
        QVERIFY2(answered, "nothing was asked");
    }
    /// The same with one answer for each window that comes after the other.
    void answering_each(const std::function<void()>& act,
                        const QList<std::function<void(QWidget*)>>& answers) {
        QTimer watch;
        qsizetype next = 0;
        QPointer<QWidget> last;
        connect(&watch, &QTimer::timeout, this, [&] {
            QWidget* front = QApplication::activeModalWidget();
            if (!front || front == last || next >= answers.size()) return;
            last = front;
            note(front);
            answers[next++](front);
        });
        watch.start(5);
        act();
        QCOMPARE(next, answers.size());
    }
    /// Takes the file in the dialog that asks for one.
    static std::function<void(QWidget*)> choosing(const QString& path) {
        return [path](QWidget* front) {
            auto* box = front->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            box->setText(path);
            QTest::keyClick(box, Qt::Key_Return);
        };
    }
    /// The rows of the box that shows what another program has stored.
    static QStringList changes_in(QWidget* front) {
        QStringList rows;
        const auto* table = front->findChild<QTableWidget*>(QStringLiteral("changed_table"));
        for (int row = 0; table && row < table->rowCount(); ++row) {
            QStringList cells;
            for (int column = 0; column < table->columnCount(); ++column)
                cells += table->item(row, column)->text();
            rows += cells.join(u'|');
        }
        return rows;
    }
    static void choose(QWidget* front, const char* button) {
        auto* found = front->findChild<QPushButton*>(QString::fromLatin1(button));
        if (!found) return qobject_cast<QDialog*>(front)->reject();
        QTest::mouseClick(found, Qt::LeftButton);
    }
    static std::function<void(QWidget*)> noting_changes(QStringList& changes, const char* button) {
        return [&changes, button](QWidget* front) {
            changes = changes_in(front);
            choose(front, button);
        };
    }
    static std::function<void(QWidget*)> choosing_button(const char* button) {
        return [button](QWidget* front) { choose(front, button); };
    }
    static std::function<void(QWidget*)> accepting() {
        return [](QWidget* front) { qobject_cast<QDialog*>(front)->accept(); };
    }
    QString file_with(const QString& name, const QByteArray& content) {
        QFile file(in_folder(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("cannot write %s", qPrintable(name));
        return file.fileName();
    }
    void change_file(const QString& statement) {
        QSqlQuery query(program().database().connection());
        QVERIFY2(query.exec(statement), qPrintable(statement));
    }
    /// As another program that has the file open.
    void elsewhere(const QString& statement) {
        {
            QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "other");
            other.setDatabaseName(in_folder(kDatabaseFile));
            QVERIFY(other.open());
            QSqlQuery query(other);
            QVERIFY2(query.exec(statement), qPrintable(statement));
        }
        QSqlDatabase::removeDatabase("other");
    }
    /// Two programs, 001 at 1001 MHz and 002 at 1002 MHz, the second one shown.
    void type_two_programs() {
        click("ol_opt_0");
        type("sat_freq_txt", QStringLiteral("1001"));
        type("prog_num", QStringLiteral("1"));
        press("store");
        type("sat_freq_txt", QStringLiteral("1002"));
        enter("prog_num", QStringLiteral("2"));
    }
    /// Two programs through an oscillator of 9750 MHz, the second one shown.
    void type_two_programs_of_an_oscillator() {
        type_oscillator(QStringLiteral("9750"));
        type("sat_freq_txt", QStringLiteral("11000"));
        type("prog_num", QStringLiteral("1"));
        press("store");
        enter("prog_num", QStringLiteral("2"));
    }
    QLabel* progress() { return window().findChild<QLabel*>(QStringLiteral("plan_progress")); }
    void note(QWidget* front) {
        if (const auto* box = qobject_cast<QMessageBox*>(front))
            told_ += box->windowTitle() + u'|' + box->text();
        if (const auto* box = qobject_cast<QMessageBox*>(front)) icons_ += box->icon();
        if (const auto* input = qobject_cast<QInputDialog*>(front))
            told_ += input->windowTitle() + u'|' + input->labelText();
    }
    static std::function<void(QWidget*)> pressing(QMessageBox::StandardButton button) {
        return [button](QWidget* front) {
            QTest::mouseClick(qobject_cast<QMessageBox*>(front)->button(button), Qt::LeftButton);
        };
    }
    static std::function<void(QWidget*)> typing(const QString& text) {
        return [text](QWidget* front) {
            auto* box = front->findChild<QLineEdit*>();
            box->selectAll();
            QTest::keyClicks(box, text);
            if (text.isEmpty()) box->clear();
            QTest::keyClick(box, Qt::Key_Return);
        };
    }
    void press(const char* key) { find<QAction>(key)->trigger(); }
    std::function<void()> pressed(const char* key) {
        return [this, key] { press(key); };
    }

    QString text_of(const char* box) { return find<QLineEdit>(box)->text(); }
    void type(const char* name, const QString& text) {
        auto* box = find<QLineEdit>(name);
        box->setFocus();
        box->selectAll();
        QTest::keyClick(box, Qt::Key_Delete);
        QTest::keyClicks(box, text);
    }
    void enter(const char* name, const QString& text) {
        type(name, text);
        QTest::keyClick(find<QLineEdit>(name), Qt::Key_Return);
    }
    void leave(const char* name, const QString& text) {
        type(name, text);
        QTest::keyClick(find<QLineEdit>(name), Qt::Key_Tab);
    }
    void type_oscillator(const QString& text, bool with_enter = true) {
        auto* list = find<QComboBox>("ol_optval");
        list->setFocus();
        list->lineEdit()->selectAll();
        QTest::keyClick(list, Qt::Key_Delete);
        QTest::keyClicks(list, text);
        if (with_enter) QTest::keyClick(list, Qt::Key_Return);
    }
    /// Opens the list and takes an entry with the mouse.
    void pick(const char* name, int entry) {
        auto* list = find<QComboBox>(name);
        list->showPopup();
        QAbstractItemView* view = list->view();
        const QModelIndex index = list->model()->index(entry, 0);
        view->scrollTo(index);
        // Within the time of a double click the popup takes a release for the opening click's.
        QTest::qWait(QApplication::doubleClickInterval() / 100);
        view->setCurrentIndex(index);
        QTest::keyClick(view, Qt::Key_Return);
        QCOMPARE(list->currentIndex(), entry);
    }
    void click(const char* button) {
        auto* box = find<QAbstractButton>(button);
        QTest::mouseClick(box, Qt::LeftButton, {}, {8, box->height() / 2});
    }
    void new_plan(const QString& name) { answering(pressed("new"), typing(name)); }

    QString stored(const QString& column) {
        QSqlQuery query(QStringLiteral("SELECT group_concat(coalesce(%1, '-')) FROM (SELECT * "
                                       "FROM programmi JOIN configurazione USING (nome) WHERE nome "
                                       "= '%2' ORDER BY programmi.id)")
                            .arg(column, text_of("grp_name")),
                        program().database().connection());
        return query.next() ? query.value(0).toString() : QStringLiteral("?");
    }

    QStringList new_commands() {
        QTest::qWait(20);
        const QStringList all = meter_->commands();
        const QStringList fresh = all.mid(seen_);
        seen_ = all.size();
        return fresh;
    }
    qsizetype seen_ = 0;

    QByteArray meter_report() {
        if (quick_meter_) return quick_meter_->kept();
        QFile::remove(state_file());
        meter_->send_signal(SIGUSR1);
        if (!QTest::qWaitFor([this] { return QFile::exists(state_file()); }))
            qFatal("the meter does not report");
        return content_of(state_file());
    }

    /// What the meter keeps, as the lines of its report that begin with `word`.
    QStringList meter_keeps(const QString& word) {
        QStringList lines;
        for (const QString& line : QString::fromUtf8(meter_report()).split(u'\n'))
            if (line.startsWith(word + u' ')) lines += line.mid(word.size() + 1);
        return lines;
    }

    /// Three programs of all kinds, typed in.
    void type_three_programs() {
        type_oscillator(QStringLiteral("9750"));
        pick("ol_optval", 1);
        type_oscillator(QStringLiteral("10600"));
        pick("ol_optval", 0);
        click("cmd_dig");
        type("prog_num", QStringLiteral("10"));
        type("sat_freq_txt", QStringLiteral("11000"));
        pick("lnb_state", 1);
        pick("diseqc_cmd", 73);
        type("srqpsk_txt", QStringLiteral("27500"));
        type("chbw_txt", QStringLiteral("33"));
        press("store");
        pick("ol_optval", 1);
        type("sat_freq_txt", QStringLiteral("12000"));
        pick("lnb_state", 2);
        pick("k22_state", 1);
        type("srqpsk_txt", QStringLiteral("29900"));
        click("logger_state");
        enter("prog_num", QStringLiteral("11"));
        click("ol_opt_0");
        click("cmd_dig");
        type("sat_freq_txt", QStringLiteral("1234.5"));
        pick("lnb_state", 0);
        pick("k22_state", 0);
        enter("prog_num", QStringLiteral("12"));
    }
    const QStringList three_programs_{"CHBW 33",
                                      "UNIT 00",
                                      "PROGRAM 10",
                                      "LOCOSC 1 09750",
                                      "LOCOSC 1",
                                      "FREQ 11000",
                                      "MARKER 1 1",
                                      "SYMBRATEQPSK 27500",
                                      "DISEQC 73",
                                      "LNB 01",
                                      "LNVOLT 13",
                                      "TONE22K 00",
                                      "STORE",
                                      "LNB 00",
                                      "PROGRAM 11",
                                      "LOCOSC 2 10600",
                                      "LOCOSC 2",
                                      "FREQ 12000",
                                      "MARKER 1 1",
                                      "SYMBRATEQPSK 29900",
                                      "DISEQC 73",
                                      "LNB 01",
                                      "LNVOLT 18",
                                      "TONE22K 01",
                                      "STORE",
                                      "LNB 00",
                                      "TONE22K 00",
                                      "DATAPROGRAM 01 11 01",
                                      "PROGRAM 12",
                                      "LOCOSC 0",
                                      "FREQ 1234.5",
                                      "MARKER 1 0",
                                      "DISEQC 73",
                                      "LNB 00",
                                      "TONE22K 00",
                                      "STORE",
                                      "DATAPROGRAM 02 12 01"};
    const QStringList three_kept_{
        "10 freq 11000 if 1250.0 osc 1A 09750 lnb on volt 13 tone off mode qpsk symbolrate 27500 "
        "chbw 33 diseqc 73 unit dBuV atten 6",
        "11 freq 12000 if 1400.0 osc 2A 10600 lnb on volt 18 tone on mode qpsk symbolrate 29900 "
        "chbw 33 diseqc 73 unit dBuV atten 6",
        "12 freq 1234.5 if 1234.5 osc 0A 00000 lnb off volt 18 tone off mode analog symbolrate "
        "29900 chbw 33 diseqc 73 unit dBuV atten 6"};

  private Q_SLOTS:
    void init() { seen_ = 0; }
    void cleanup() {
        quick_meter_.reset();
        end_program();
        meter_.reset();
    }

    void it_opens_as_technicians_know_it() {
        start_alone();
        QCOMPARE(screen_->objectName(), QStringLiteral("program_set"));
        QCOMPARE(screen_->windowTitle(), QStringLiteral("Plan Setup"));
        QStringList keys;
        for (const QAction* key : find<QToolBar>("barracomando")->actions())
            if (!key->isSeparator()) keys += key->objectName();
        QCOMPARE(keys, QStringList({"previous", "next", "new", "delete", "store_new", "store",
                                    "programma_delete", "previous_prog", "next_prog", "accoda",
                                    "sostituisci", "nuovo", "monitor"}));
        for (const QAction* key : find<QToolBar>("barracomando")->actions())
            QVERIFY(key->isSeparator() || !key->icon().isNull());
        QCOMPARE(find<QMenu>("cmdmenu")->title(), QStringLiteral("Menu"));
        QCOMPARE(find<QMenu>("cmdmeaunit")->title(), QStringLiteral("&Unit"));
        QCOMPARE(find<QAction>("cmdverify")->text(), QStringLiteral("&Verify upload"));
        QVERIFY(!find<QAction>("cmdverify")->isChecked());
        QCOMPARE(text_of("grp_name"), QStringLiteral("PLAN 1"));
        QVERIFY(!find<QWidget>("monitor_opt")->isVisible());
        QVERIFY(!find<QWidget>("dig_opt")->isVisible());
        QCOMPARE(find<QComboBox>("diseqc_cmd")->count(), 74);
        QCOMPARE(find<QComboBox>("diseqc_cmd2")->itemText(73), QStringLiteral("NONE"));
        QCOMPARE(find<QComboBox>("logger_pos")->count(), 43);
        QCOMPARE(find<QComboBox>("logger_pos")->itemText(1), QStringLiteral("00"));
        QCOMPARE(find<QComboBox>("logger_pos")->itemText(42), QStringLiteral("41"));
        QCOMPARE(find<QComboBox>("ol_optval")->count(), 4);
        QCOMPARE(find<QComboBox>("k22_state")->itemText(0), QStringLiteral("OFF"));
        QCOMPARE(find<QComboBox>("lnb_state")->itemText(2), QStringLiteral("18V"));
        const QRect area = screen_->parentWidget()->parentWidget()->rect();
        QVERIFY(area.contains(screen_->parentWidget()->geometry()));
    }

    void every_tooltip_stands_in_both_languages_data() {
        QTest::addColumn<int>("language");
        QTest::newRow("english") << int(kEnglish);
        QTest::newRow("italian") << int(kItalian);
    }
    void every_tooltip_stands_in_both_languages() {
        QFETCH(int, language);
        start_alone(language);
        for (const Tooltip& tooltip : plan_tooltips()) {
            const bool italian = language == kItalian && tooltip.italian;
            const char* text = italian ? tooltip.italian : tooltip.english;
            QCOMPARE(find<QObject>(tooltip.control)->property("toolTip").toString(),
                     QString::fromUtf8(text));
        }
    }

    void a_control_without_an_italian_tooltip_keeps_the_english_one() {
        start_alone(kItalian);
        QCOMPARE(find<QWidget>("sat_opt")->toolTip(), QStringLiteral("Satellite options"));
        QCOMPARE(find<QWidget>("dig_opt")->toolTip(), QStringLiteral("Opzioni acquisizione QPSK"));
    }

    void an_empty_program_is_shown_empty_and_nothing_is_changed() {
        start_alone();
        for (const char* box : {"prog_num", "sat_freq_txt", "srqpsk_txt", "chbw_txt", "lev_mintxt",
                                "chber_mintxt", "mer_maxtxt"})
            QCOMPARE(text_of(box), QString());
        QVERIFY(find<QRadioButton>("ol_opt_1")->isChecked());
        QVERIFY(find<QComboBox>("ol_optval")->isEnabled());
        QCOMPARE(find<QComboBox>("ol_optval")->currentText(), QString());
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-"));
        QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("-"));
    }

    void plans_are_walked_with_beeps_at_the_ends() {
        start_alone();
        new_plan(QStringLiteral("b"));
        press("next");
        QCOMPARE(beeps_, 1);
        QCOMPARE(text_of("grp_name"), QStringLiteral("B"));
        press("previous");
        QCOMPARE(beeps_, 1);
        press("previous");
        QCOMPARE(beeps_, 2);
        QCOMPARE(text_of("grp_name"), QStringLiteral("PLAN 1"));
        press("next");
        QCOMPARE(text_of("grp_name"), QStringLiteral("B"));
        press("next_prog");
        press("previous_prog");
        QCOMPARE(beeps_, 4);
    }

    void a_new_plan_is_asked_for_in_the_language() {
        start_alone(kItalian);
        new_plan(QStringLiteral("europe and more"));
        QCOMPARE(told_, QStringList{"VKDM47|Aggiungi un piano di programmi"});
        QCOMPARE(text_of("grp_name"), QStringLiteral("EUROPE AND"));
        new_plan(QString());
        QCOMPARE(text_of("grp_name"), QStringLiteral("EUROPE AND"));
        new_plan(QStringLiteral("plan 1"));
        QCOMPARE(text_of("grp_name"), QStringLiteral("PLAN 1"));
        press("next");
        QCOMPARE(text_of("grp_name"), QStringLiteral("EUROPE AND"));
        press("next");
        QCOMPARE(beeps_, 1);
    }

    void plans_and_programs_are_deleted_after_a_question() {
        start_alone();
        press("delete");
        press("programma_delete");
        new_plan(QStringLiteral("B"));
        enter("prog_num", QStringLiteral("7"));
        told_.clear();
        answering(pressed("programma_delete"), pressing(QMessageBox::Cancel));
        QCOMPARE(stored(QStringLiteral("pg_num")), QString("-,007"));
        answering(pressed("programma_delete"), pressing(QMessageBox::Ok));
        QCOMPARE(stored(QStringLiteral("pg_num")), QString("-"));
        press("programma_delete");
        answering(pressed("delete"), pressing(QMessageBox::Cancel));
        QCOMPARE(text_of("grp_name"), QStringLiteral("B"));
        answering(pressed("delete"), pressing(QMessageBox::Ok));
        QCOMPARE(text_of("grp_name"), QStringLiteral("PLAN 1"));
        QCOMPARE(told_, QStringList({"VKDM47|Remove program: 007", "VKDM47|Remove program: 007",
                                     "VKDM47|Remove program: B", "VKDM47|Remove program: B"}));
    }

    void enter_in_the_number_adds_a_program() {
        start_alone();
        click("ol_opt_0");
        QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("920.0"));
        QVERIFY(!find<QComboBox>("ol_optval")->isEnabled());
        enter("sat_freq_txt", QStringLiteral("1234.5"));
        enter("prog_num", QStringLiteral("150"));
        QCOMPARE(text_of("prog_num"), QStringLiteral("099"));
        QCOMPARE(find<QComboBox>("logger_pos")->currentText(), QStringLiteral("01"));
        QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1234.5"));
        enter("prog_num", QStringLiteral("7"));
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,099,007"));
        QCOMPARE(stored(QStringLiteral("logger_pos")), QStringLiteral("-,01,02"));
        QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("-,1234.5,1234.5"));
    }

    void a_number_that_exists_is_refused() {
        start_alone();
        enter("prog_num", QStringLiteral("7"));
        press("previous_prog");
        type("prog_num", QStringLiteral("7"));
        answering(pressed("store_new"), [](QWidget* front) {
            QCOMPARE(qobject_cast<QMessageBox*>(front)->icon(), QMessageBox::Warning);
            pressing(QMessageBox::Ok)(front);
        });
        QCOMPARE(told_, QStringList{"Error|The Programme in the data base already exist."});
        QCOMPARE(beeps_, 2);
        QCOMPARE(text_of("prog_num"), QStringLiteral("007"));
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,007"));
    }

    void a_logger_position_that_is_taken_is_refused() {
        start_alone(kItalian);
        enter("prog_num", QStringLiteral("7"));
        enter("prog_num", QStringLiteral("8"));
        pick("logger_pos", 2);
        answering(pressed("store"), pressing(QMessageBox::Ok));
        QCOMPARE(told_, QStringList{"Error|Il programma nella tabella del datalogger già esiste."});
        QCOMPARE(beeps_, 2);
        QCOMPARE(stored(QStringLiteral("logger_pos")), QStringLiteral("-,01,02"));
        QCOMPARE(text_of("prog_num"), QStringLiteral("008"));
    }

    void a_key_in_the_position_list_stores_and_types_nothing() {
        start_alone();
        auto* list = find<QComboBox>("logger_pos");
        pick("logger_pos", 6);
        QCOMPARE(stored(QStringLiteral("logger_pos")), QStringLiteral("-"));
        list->setFocus();
        QTest::keyClicks(list, QStringLiteral("3"));
        QCOMPARE(list->currentText(), QStringLiteral("05"));
        QCOMPARE(stored(QStringLiteral("logger_pos")), QStringLiteral("05"));
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("000"));
    }

    void lists_take_their_own_entries_alone() {
        start_alone();
        for (const char* name : {"diseqc_cmd", "diseqc_cmd2", "k22_state", "lnb_state"}) {
            auto* list = find<QComboBox>(name);
            list->setFocus();
            QTest::keyClicks(list, QStringLiteral("DON1N"));
            QWheelEvent wheel({5, 5}, list->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton,
                              Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(list, &wheel);
            QCOMPARE(list->currentIndex(), 0);
        }
        pick("diseqc_cmd", 73);
        pick("lnb_state", 1);
        press("store");
        QCOMPARE(stored(QStringLiteral("diseqc_cmd || ' ' || diseqc_cmd2 || ' ' || lnb_volt")),
                 QStringLiteral("73 0 1"));
    }

    void boxes_are_checked_on_enter_and_on_leaving() {
        start_alone();
        leave("prog_num", QStringLiteral("150"));
        QCOMPARE(text_of("prog_num"), QStringLiteral("099"));
        leave("prog_num", QStringLiteral("-3"));
        QCOMPARE(text_of("prog_num"), QStringLiteral("000"));
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-"));
        click("ol_opt_0");
        leave("sat_freq_txt", QStringLiteral("500"));
        QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("920.0"));
        enter("sat_freq_txt", QStringLiteral("2500"));
        QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("2150.0"));
        click("cmd_dig");
        QVERIFY(find<QWidget>("dig_opt")->isVisible());
        QVERIFY(find<QWidget>("dig_opt")->isEnabled());
        leave("srqpsk_txt", QStringLiteral("60000"));
        QCOMPARE(text_of("srqpsk_txt"), QStringLiteral("45000"));
        enter("srqpsk_txt", QStringLiteral("800"));
        QCOMPARE(text_of("srqpsk_txt"), QStringLiteral("1500"));
        enter("chbw_txt", QStringLiteral("45"));
        QCOMPARE(text_of("chbw_txt"), QStringLiteral("40"));
        type("chbw_txt", QStringLiteral("45"));
        auto* other = find<QLineEdit>("srqpsk_txt");
        QTest::mouseClick(other, Qt::LeftButton);
        QCOMPARE(text_of("chbw_txt"), QStringLiteral("36"));
        click("cmd_dig");
        QVERIFY(!find<QWidget>("dig_opt")->isVisible());
        QVERIFY(!find<QWidget>("dig_opt")->isEnabled());
    }

    void a_menu_in_front_of_a_box_is_no_leaving() {
        start_alone();
        type("prog_num", QStringLiteral("150"));
        find<QMenu>("cmdmenu")->popup(screen_->mapToGlobal(QPoint(5, 5)));
        find<QMenu>("cmdmenu")->close();
        QCOMPARE(text_of("prog_num"), QStringLiteral("150"));
    }

    void the_oscillator_is_edited_stored_and_bounds_the_frequency() {
        start_alone();
        type_oscillator(QStringLiteral("12345678"), false);
        QCOMPARE(find<QComboBox>("ol_optval")->currentText(), QStringLiteral("123456"));
        type_oscillator(QStringLiteral("13000"));
        QCOMPARE(stored(QStringLiteral("loc_osc1")), QStringLiteral("12000.0"));
        type_oscillator(QStringLiteral("2000"));
        QCOMPARE(stored(QStringLiteral("loc_osc1")), QStringLiteral("3070.0"));
        QCOMPARE(find<QComboBox>("ol_optval")->itemText(0), QStringLiteral("3070"));
        type_oscillator(QStringLiteral("9750"));
        enter("sat_freq_txt", QStringLiteral("10000"));
        QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("10670"));
        enter("sat_freq_txt", QStringLiteral("12500"));
        QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("11900"));
        // Leaving the oscillator checks the frequency against what stands there.
        type_oscillator(QStringLiteral("5150"), false);
        QTest::keyClick(find<QComboBox>("ol_optval"), Qt::Key_Tab);
        QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("4230"));
        click("ol_opt_0");
        QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("2150.0"));
        QCOMPARE(stored(QStringLiteral("loc_osc1")), QStringLiteral("9750.0"));
    }

    void each_oscillator_has_its_own_place() {
        start_alone();
        type_oscillator(QStringLiteral("9750"));
        pick("ol_optval", 1);
        QCOMPARE(find<QComboBox>("ol_optval")->currentText(), QString());
        // An equal entry elsewhere is not taken instead.
        type_oscillator(QStringLiteral("9750"));
        QCOMPARE(find<QComboBox>("ol_optval")->currentIndex(), 1);
        type_oscillator(QStringLiteral("10600"));
        QCOMPARE(stored(QStringLiteral("loc_osc1 || ' ' || loc_osc2 || ' ' || loc_osc0")),
                 QStringLiteral("9750.0 10600.0 1"));
        enter("sat_freq_txt", QStringLiteral("12000"));
        enter("prog_num", QStringLiteral("2"));
        pick("ol_optval", 0);
        QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("11900"));
        press("store");
        press("previous_prog");
        QCOMPARE(find<QComboBox>("ol_optval")->currentIndex(), 1);
        press("store");
        QCOMPARE(stored(QStringLiteral("loc_osc1 || ' ' || loc_osc2 || ' ' || loc_osc0")),
                 QStringLiteral("9750.0 10600.0 1,9750.0 10600.0 0"));
    }

    void without_an_oscillator_the_frequency_stays_empty() {
        start_alone();
        press("store");
        leave("sat_freq_txt", QString());
        QCOMPARE(text_of("sat_freq_txt"), QString());
        QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("-"));
        QCOMPARE(stored(QStringLiteral("loc_osc1")), QStringLiteral("-"));
        QCOMPARE(stored(QStringLiteral("satchbw")), QStringLiteral("1.0"));
    }

    void storing_checks_the_limits_in_the_unit_that_is_chosen() {
        start_alone();
        press("monitor");
        QVERIFY(find<QWidget>("monitor_opt")->isVisible());
        press("cmdlev_1");
        QCOMPARE(program_state().unit_index, int(kDbmv));
        QVERIFY(find<QAction>("cmdlev_1")->isChecked());
        QVERIFY(!find<QAction>("cmdlev_0")->isChecked());
        press("cmdlev_1");
        QVERIFY(find<QAction>("cmdlev_1")->isChecked());
        type("lev_mintxt", QStringLiteral("-50"));
        type("lev_maxtxt", QStringLiteral("70"));
        type("cn_mintxt", QStringLiteral("45"));
        type("cn_maxtxt", QStringLiteral("30"));
        type("chber_mintxt", QStringLiteral("0.05"));
        type("chber_maxtxt", QStringLiteral("0.1"));
        type("mer_mintxt", QStringLiteral("10"));
        type("mer_maxtxt", QStringLiteral("5"));
        click("monitor_state");
        press("store");
        QCOMPARE(text_of("lev_mintxt"), QStringLiteral("-40"));
        QCOMPARE(stored(QStringLiteral("lev_min || ' ' || lev_max || ' ' || noise_min || ' ' || "
                                       "noise_max || ' ' || chber_min || ' ' || chber_max || ' ' "
                                       "|| mer_min || ' ' || mer_max || ' ' || monitor_state")),
                 QStringLiteral("-40 60 1 30 3E-2 0.1 10 11 1"));
        press("monitor");
        QVERIFY(!find<QWidget>("monitor_opt")->isVisible());
    }

    void the_unit_chosen_elsewhere_shows_when_the_screen_comes_to_the_front() {
        start_alone();
        window().open_screen(QStringLiteral("setport"));
        program_state().unit_index = kDbm;
        window().open_screen(QStringLiteral("program"));
        QVERIFY(find<QAction>("cmdlev_2")->isChecked());
    }

    void the_exit_entry_closes_the_screen() {
        start_alone();
        find<QLineEdit>("prog_num")->setFocus();
        press("cmdexit");
        QTRY_VERIFY(!window().screen_of(QStringLiteral("program")));
    }

    void user_switches_fill_a_list() {
        start_alone();
        QSqlQuery(QStringLiteral("UPDATE configurazione SET user_sc0 = 'A', user_sc3 = 'D'"),
                  program().database().connection());
        Recordset row = program().database().of_plan(QStringLiteral("configurazione"), "PLAN 1");
        QListWidget list;
        list.addItem(QStringLiteral("old"));
        associa_user_sc(&list, row);
        QCOMPARE(list.count(), 4);
        QCOMPARE(list.item(0)->text() + list.item(1)->text() + list.item(3)->text(), "AD");
    }

    void a_read_only_file_is_told_once_and_nothing_is_half_written() {
        start_alone();
        enter("prog_num", QStringLiteral("7"));
        QSqlQuery(QStringLiteral("PRAGMA query_only = 1"), program().database().connection());
        for (const char* key : {"store", "store_new"}) {
            type("prog_num", QStringLiteral("9"));
            answering(pressed(key), pressing(QMessageBox::Ok));
            QCOMPARE(told_.size(), 1);
            QVERIFY2(told_[0].contains(QStringLiteral("cannot be written")), qPrintable(told_[0]));
            told_.clear();
        }
        answering(pressed("new"), [this](QWidget* front) {
            QTimer::singleShot(50, this, [this] {
                note(QApplication::activeModalWidget());
                pressing(QMessageBox::Ok)(QApplication::activeModalWidget());
            });
            typing(QStringLiteral("C"))(front);
        });
        QVERIFY(told_.constLast().contains(QStringLiteral("cannot be written")));
        QCOMPARE(text_of("grp_name"), QStringLiteral("PLAN 1"));
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,007"));
    }

    void a_number_meant_for_a_new_program_renumbers_none_after_a_fault() {
        start_alone();
        type_two_programs();
        const QString numbers = stored(QStringLiteral("pg_num"));
        const QString shown = text_of("prog_num");
        type("sat_freq_txt", QStringLiteral("1700"));
        change_file(QStringLiteral("PRAGMA query_only = 1"));
        answering([this] { enter("prog_num", QStringLiteral("10")); }, pressing(QMessageBox::Ok));
        QCOMPARE(text_of("prog_num"), shown);
        QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1700"));
        change_file(QStringLiteral("PRAGMA query_only = 0"));
        press("store");
        QCOMPARE(stored(QStringLiteral("pg_num")), numbers);
    }

    void thirty_programs_are_typed_in_edited_and_uploaded_in_each_way() {
        start_on_virtual_line();
        new_plan(QStringLiteral("thirty"));
        click("ol_opt_0");
        click("cmd_dig");
        pick("lnb_state", 1);
        pick("diseqc_cmd", 73);
        type("srqpsk_txt", QStringLiteral("27500"));
        type("chbw_txt", QStringLiteral("36"));
        type("sat_freq_txt", QStringLiteral("1000"));
        type("prog_num", QStringLiteral("10"));
        press("store");
        click("logger_state");
        for (int k = 1; k < 30; ++k) {
            type("sat_freq_txt", QString::number(1000 + 30 * k));
            enter("prog_num", QString::number(10 + k));
        }
        press("previous_prog");
        type("sat_freq_txt", QStringLiteral("2000.5"));
        click("logger_state");
        pick("lnb_state", 0);
        press("store");
        QCOMPARE(stored(QStringLiteral("pg_num")).split(u',').size(), 30);
        QCOMPARE(stored(QStringLiteral("frequenza")).split(u',').mid(27),
                 QStringList({"1810.0", "2000.5", "1870.0"}));
        QCOMPARE(stored(QStringLiteral("logger_pos")).split(u',').constLast(),
                 QStringLiteral("29"));

        QStringList kept;
        QStringList lines;
        for (int k = 0; k < 30; ++k) {
            const bool edited = k == 28;
            const QString mhz = edited ? QStringLiteral("2000.5")
                                       : QString::number(1000 + 30 * k) + QStringLiteral(".0");
            kept += QStringLiteral(
                        "%1 freq %2 if %2 osc 0A 00000 lnb %3 volt 13 tone off mode qpsk "
                        "symbolrate 27500 chbw 36 diseqc 73 unit dBuV atten 6")
                        .arg(QString::number(10 + k), mhz,
                             edited ? QStringLiteral("off") : QStringLiteral("on"));
            if (k > 0 && !edited)
                lines += QStringLiteral("%1 %2 01").arg(k, 2, 10, QChar(u'0')).arg(10 + k);
        }
        const QStringList others = meter_keeps(QStringLiteral("program"));
        for (const char* key : {"accoda", "sostituisci", "nuovo"}) {
            answering(pressed(key), pressing(QMessageBox::Yes));
            const bool all = qstrcmp(key, "nuovo") == 0;
            QCOMPARE(meter_keeps(QStringLiteral("program")), all ? kept : others + kept);
            QCOMPARE(meter_keeps(QStringLiteral("logger-line")), lines);
            QVERIFY(progress()->toolTip().isEmpty());
        }
    }

    void transponders_of_a_scan_table_are_imported_and_uploaded() {
        start_with_meter();
        new_plan(QStringLiteral("hot bird"));
        const QString table = file_with(
            QStringLiteral("scan"),
            "# freq pol sr fec\n\n[CHANNEL]\n\tDELIVERY_SYSTEM = DVBS\n\tFREQUENCY = 10719000\n"
            "\tPOLARIZATION = VERTICAL\n\tSYMBOL_RATE = 27500000\n\tINNER_FEC = 3/4\n"
            "\tINVERSION = AUTO\n\n[CHANNEL]\n\tDELIVERY_SYSTEM = DVBS\n\tFREQUENCY = 10723000\n"
            "\tPOLARIZATION = HORIZONTAL\n\tSYMBOL_RATE = 29900000\n\tINNER_FEC = 3/4\n\n"
            "[CHANNEL]\n\tDELIVERY_SYSTEM = DVBS\n\tFREQUENCY = 11727000\n"
            "\tPOLARIZATION = VERTICAL\n\tSYMBOL_RATE = 27500000\n\tINNER_FEC = 3/4\n");
        answering_each(pressed("cmdimport"), {choosing(table), accepting()});
        answering(pressed("nuovo"), pressing(QMessageBox::Yes));
        QCOMPARE(
            meter_keeps(QStringLiteral("program")),
            QStringList(
                {"00 freq 10719 if 969.0 osc 1A 09750 lnb on volt 13 tone off mode qpsk symbolrate "
                 "27500 chbw 36 diseqc 73 unit dBuV atten 6",
                 "01 freq 10723 if 973.0 osc 1A 09750 lnb on volt 18 tone off mode qpsk symbolrate "
                 "29900 chbw 36 diseqc 73 unit dBuV atten 6",
                 "02 freq 11727 if 1127.0 osc 2A 10600 lnb on volt 13 tone on mode qpsk symbolrate "
                 "27500 chbw 36 diseqc 73 unit dBuV atten 6"}));
        QCOMPARE(meter_keeps(QStringLiteral("logger-line")), QStringList());
    }

    void without_a_plan_one_message_says_so() {
        start_alone(kEnglish);
        for (const char* table : {"gruppo", "programmi", "configurazione"})
            change_file(QStringLiteral("DELETE FROM %1").arg(QLatin1String(table)));
        screen_->database_changed();
        QCOMPARE(text_of("grp_name"), QString());
        for (const char* key : {"store", "store_new", "accoda", "sostituisci", "nuovo", "cmdimport",
                                "cmdexport", "cmdcopyprog", "cmdcopyplan"}) {
            answering(pressed(key), pressing(QMessageBox::Ok));
            QCOMPARE(told_, QStringList{"Error|There is no plan: make one first."});
            told_.clear();
        }
        answering([this] { type_oscillator(QStringLiteral("9750")); }, pressing(QMessageBox::Ok));
        answering([this] { enter("prog_num", QStringLiteral("7")); }, pressing(QMessageBox::Ok));
        QCOMPARE(told_, QStringList({"Error|There is no plan: make one first.",
                                     "Error|There is no plan: make one first."}));
        for (const char* key : {"delete", "programma_delete", "previous_prog", "next"}) press(key);
        for (const char* table : {"gruppo", "programmi", "configurazione"}) {
            QSqlQuery rows(QStringLiteral("SELECT count(*) FROM %1").arg(QLatin1String(table)),
                           program().database().connection());
            QVERIFY(rows.next());
            QCOMPARE(rows.value(0).toInt(), 0);
        }
        new_plan(QStringLiteral("b"));
        enter("prog_num", QStringLiteral("7"));
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,007"));
    }

    void a_plan_without_programs_or_oscillators_can_still_be_filled() {
        start_alone();
        change_file(QStringLiteral("DELETE FROM programmi"));
        change_file(QStringLiteral("DELETE FROM configurazione"));
        screen_->database_changed();
        answering(pressed("store"), pressing(QMessageBox::Ok));
        QCOMPARE(told_, QStringList{"Error|The plan has no program: make one first."});
        enter("prog_num", QStringLiteral("7"));
        type_oscillator(QStringLiteral("9750"));
        QCOMPARE(stored(QStringLiteral("pg_num || ' ' || loc_osc1")), QStringLiteral("007 9750.0"));
    }

    void plans_that_came_into_the_file_are_there_at_once() {
        start_alone();
        change_file(QStringLiteral("INSERT INTO gruppo (nome) VALUES ('OLD')"));
        press("next");
        QCOMPARE(text_of("grp_name"), QStringLiteral("OLD"));
        QCOMPARE(beeps_, 0);
        press("previous");
        // What is being typed stays, unless its program has changed.
        type("prog_num", QStringLiteral("42"));
        change_file(QStringLiteral("INSERT INTO gruppo (nome) VALUES ('OLDER')"));
        screen_->database_changed();
        QCOMPARE(text_of("prog_num"), QStringLiteral("42"));
        change_file(QStringLiteral("UPDATE programmi SET pg_num = '008'"));
        window().open_screen(QStringLiteral("setport"));
        window().open_screen(QStringLiteral("program"));
        QCOMPARE(text_of("prog_num"), QStringLiteral("008"));
    }

    void a_store_asks_where_another_program_has_stored_meanwhile() {
        start_alone();
        type_two_programs();
        const QString both = QStringLiteral("frequenza || ' ' || lev_min");
        const auto changed_elsewhere = [&](const char* level) {
            elsewhere(QStringLiteral("UPDATE programmi SET lev_min = '%1' WHERE pg_num = '002'")
                          .arg(QLatin1String(level)));
        };
        changed_elsewhere("41");
        type("sat_freq_txt", QStringLiteral("1500"));
        QStringList changes;
        answering(pressed("store"), noting_changes(changes, "changed_neither"));
        QCOMPARE(changes, QStringList({"Frequency, MHz|1002.0|1500.0", "Level, minimum|41|20"}));
        // Nothing is stored and nothing typed is lost; storing again asks again.
        QCOMPARE(stored(both), QStringLiteral("1001.0 20,1002.0 41"));
        QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1500"));
        answering(pressed("store"), choosing_button("changed_stored"));
        QCOMPARE(stored(both), QStringLiteral("1001.0 20,1002.0 41"));
        QCOMPARE(text_of("sat_freq_txt") + u' ' + text_of("lev_mintxt"),
                 QStringLiteral("1002.0 41"));
        type("sat_freq_txt", QStringLiteral("1600"));
        changed_elsewhere("42");
        answering(pressed("store"), choosing_button("changed_mine"));
        QCOMPARE(stored(both), QStringLiteral("1001.0 20,1600.0 41"));
        // Nobody has changed it since: nothing is asked.
        type("lev_mintxt", QStringLiteral("43"));
        press("store");
        QCOMPARE(stored(both), QStringLiteral("1001.0 20,1600.0 43"));
    }

    void a_deletion_asks_where_another_program_has_stored_meanwhile() {
        start_alone();
        type_two_programs();
        const auto changed_elsewhere = [&](const char* level) {
            elsewhere(QStringLiteral("UPDATE programmi SET lev_min = '%1' WHERE pg_num = '002'")
                          .arg(QLatin1String(level)));
        };
        const auto remove = pressed("programma_delete");
        const auto confirmed = pressing(QMessageBox::Ok);
        changed_elsewhere("41");
        QStringList changes;
        answering_each(remove, {confirmed, noting_changes(changes, "changed_neither")});
        QCOMPARE(changes, QStringList({"002: Level, minimum|41|20"}));
        QCOMPARE(stored(QStringLiteral("lev_min")), QStringLiteral("20,41"));
        QCOMPARE(text_of("lev_mintxt"), QStringLiteral("41"));
        changed_elsewhere("42");
        answering_each(remove, {confirmed, choosing_button("changed_mine")});
        QCOMPARE(stored(QStringLiteral("lev_min")), QStringLiteral("20"));
    }

    void a_plan_is_not_deleted_with_what_another_program_has_stored_in_it() {
        start_alone();
        program_state().texts.language = kItalian;
        type_two_programs();
        const auto remove = pressed("delete");
        const auto confirmed = pressing(QMessageBox::Ok);
        elsewhere(QStringLiteral("INSERT INTO gruppo (nome) VALUES ('OTHER')"));
        elsewhere(
            QStringLiteral("INSERT INTO programmi (nome, pg_num, frequenza) VALUES ('PLAN 1', "
                           "'003', 1003)"));
        elsewhere(QStringLiteral("UPDATE configurazione SET loc_osc2 = 10600"));
        QStringList changes;
        answering_each(remove, {confirmed, noting_changes(changes, "changed_neither")});
        QCOMPARE(changes, QStringList({"003: Programma|003|", "003: Frequenza, MHz|1003|",
                                       "Oscillatore 2, MHz|10600|"}));
        QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("1001.0,1002.0,1003.0"));
        // What has been asked about is known now.
        answering(remove, confirmed);
        QCOMPARE(stored(QStringLiteral("frequenza")), QString());
    }

    void a_plan_that_has_become_the_last_one_stays_and_it_is_told() {
        start_alone();
        type_two_programs();
        elsewhere(QStringLiteral("INSERT INTO gruppo (nome) VALUES ('OTHER')"));
        answering_each(pressed("delete"),
                       {[this](QWidget* front) {
                            elsewhere(QStringLiteral("DELETE FROM gruppo WHERE nome = 'OTHER'"));
                            pressing(QMessageBox::Ok)(front);
                        },
                        pressing(QMessageBox::Ok)});
        QVERIFY2(told_.last().contains(QStringLiteral("The last one stays")),
                 qPrintable(told_.last()));
        QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("1001.0,1002.0"));
        QCOMPARE(text_of("grp_name"), QStringLiteral("PLAN 1"));
    }

    void what_is_stored_twice_alike_is_not_asked() {
        start_alone();
        type_two_programs();
        type("sat_freq_txt", QStringLiteral("1500"));
        elsewhere(QStringLiteral("UPDATE programmi SET frequenza = 1500 WHERE pg_num = '002'"));
        press("store");
        QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("1001.0,1500.0"));
        QCOMPARE(told_, QStringList());
    }

    void an_oscillator_that_another_program_has_stored_is_asked_about() {
        start_alone();
        program_state().texts.language = kItalian;
        type_two_programs_of_an_oscillator();
        const auto oscillator_elsewhere = [&](int mhz) {
            elsewhere(QStringLiteral("UPDATE configurazione SET loc_osc1 = %1").arg(mhz));
        };
        oscillator_elsewhere(10600);
        const QString oscillators = QStringLiteral("loc_osc1");
        QStringList changes;
        answering([this] { type_oscillator(QStringLiteral("9800")); },
                  noting_changes(changes, "changed_neither"));
        QCOMPARE(changes, QStringList("Oscillatore 1, MHz|10600|9800"));
        QCOMPARE(stored(oscillators), QStringLiteral("10600.0,10600.0"));
        // A new program would overwrite it as well.
        type("prog_num", QStringLiteral("3"));
        answering(pressed("store_new"), choosing_button("changed_stored"));
        QCOMPARE(stored(oscillators), QStringLiteral("10600.0,10600.0"));
        QCOMPARE(find<QComboBox>("ol_optval")->currentText(), QStringLiteral("10600"));
        // Another program of the plan is shown with the oscillator that is stored by then.
        oscillator_elsewhere(10700);
        press("previous_prog");
        QCOMPARE(find<QComboBox>("ol_optval")->currentText(), QStringLiteral("10700"));
        oscillator_elsewhere(10800);
        answering([this] { type_oscillator(QStringLiteral("9900")); },
                  choosing_button("changed_mine"));
        QCOMPARE(stored(oscillators), QStringLiteral("9900.0,9900.0"));
    }

    void an_upload_waits_for_whoever_wants_to_go_on_typing() {
        start_on_patient_line();
        type_two_programs();
        elsewhere(QStringLiteral("UPDATE programmi SET lev_min = '41' WHERE pg_num = '002'"));
        type("sat_freq_txt", QStringLiteral("1500"));
        answering(pressed("accoda"), choosing_button("changed_neither"));
        QCOMPARE(line_->take_commands(), QStringList());
        answering_each(pressed("accoda"),
                       {choosing_button("changed_stored"), pressing(QMessageBox::Yes)});
        const QStringList sent = line_->take_commands();
        QVERIFY(!sent.isEmpty());
        QVERIFY2(sent.filter(QStringLiteral("1500")).isEmpty(), qPrintable(sent.join(u';')));
    }

    void an_upload_that_cannot_keep_the_table_ends_cleanly() {
        start_with_meter();
        type_three_programs();
        file_with(QStringLiteral("backup"), {});
        answering_each(pressed("sostituisci"),
                       {pressing(QMessageBox::Yes), pressing(QMessageBox::Ok)});
        QVERIFY2(told_.constLast().contains(QStringLiteral("backup")), qPrintable(told_.last()));
        QCOMPARE(new_commands(), QStringList({"MEASURE", "DATAPROGRAM?"}));
        QCOMPARE(progress()->text(), QString());
        QCOMPARE(text_of("prog_num"), QStringLiteral("010"));
    }

    void closing_during_an_upload_waits_for_the_comparison_to_be_read() {
        start_with_meter();
        click("ol_opt_0");
        pick("diseqc_cmd", 73);
        press("cmdverify");
        const QPointer<ProgramSet> alive(screen_);
        connect(
            screen_, &ProgramSet::upload_state, screen_,
            [this] {
                QMetaObject::invokeMethod(
                    screen_, [this] { screen_->parentWidget()->close(); }, Qt::QueuedConnection);
            },
            Qt::SingleShotConnection);
        bool stayed = false;
        answering_each(pressed("accoda"), {pressing(QMessageBox::Yes), [&](QWidget* front) {
                                               QTimer::singleShot(150, front, [&, front] {
                                                   stayed = !alive.isNull();
                                                   qobject_cast<QDialog*>(front)->accept();
                                               });
                                           }});
        QVERIFY(stayed);
        QTRY_VERIFY(!alive);
    }

    void what_the_meter_holds_beside_the_plan_is_shown() {
        start_with_meter();
        click("ol_opt_0");
        type("prog_num", QStringLiteral("10"));
        pick("diseqc_cmd", 73);
        pick("logger_pos", 2);
        click("logger_state");
        // Somebody works at the meter between the last command and the comparison.
        connect(screen_, &ProgramSet::upload_state, this, [this](const QString& text) {
            if (text.contains(QStringLiteral("answered")))
                QVERIFY(program().link().send(QStringLiteral("DATAPROGRAM 05 10 01")));
        });
        press("cmdverify");
        QString summary;
        QStringList row;
        answering_each(pressed("nuovo"),
                       {pressing(QMessageBox::Yes), [&](QWidget* front) {
                            summary = front->findChild<QLabel*>("verify_summary")->text();
                            auto* table = front->findChild<QTableWidget*>();
                            for (int k = 0; k < table->columnCount(); ++k)
                                row += table->item(1, k)->text();
                            qobject_cast<QDialog*>(front)->accept();
                        }});
        QCOMPARE(summary,
                 QStringLiteral("1 lines of the logger table are not as planned.\nActive lines "
                                "planned: 1. Lines read from the meter: 2, active: 2."));
        QCOMPARE(row, QStringList({"05", "none", "program 10, active", QString::fromUtf8("✗")}));
        QCOMPARE(progress()->text(), QStringLiteral("14 of 14 commands answered OK"));
    }

    void a_refused_store_does_not_hold_up_the_question() {
        start_with_meter();
        enter("prog_num", QStringLiteral("7"));
        enter("prog_num", QStringLiteral("8"));
        // A screen takes the language on when it opens.
        program_state().texts.language = kItalian;
        press("cmdexit");
        QTRY_VERIFY(!window().screen_of(QStringLiteral("program")));
        open_screen();
        press("next_prog");
        press("next_prog");
        type("prog_num", QStringLiteral("7"));
        answering_each(pressed("accoda"), {pressing(QMessageBox::Ok), pressing(QMessageBox::No)});
        QCOMPARE(told_,
                 QStringList({QString::fromUtf8("Error|Il programma esiste già nel "
                                                "database."),
                              "M47|Aggiunge il nuovo piano di programmi\rVuoi continuare?"}));
        QCOMPARE(icons_, QList<QMessageBox::Icon>({QMessageBox::Warning, QMessageBox::Question}));
        QCOMPARE(beeps_, 2);
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,007,008"));
        QCOMPARE(new_commands(), QStringList());
    }

    void the_unit_goes_out_with_the_plan() {
        start_with_meter();
        press("cmdlev_2");
        press("monitor");
        click("ol_opt_0");
        type("lev_mintxt", QStringLiteral("-100"));
        type("lev_maxtxt", QStringLiteral("20"));
        answering(pressed("accoda"), pressing(QMessageBox::Yes));
        QCOMPARE(stored(QStringLiteral("lev_min || ' ' || lev_max")), QStringLiteral("-89 11"));
        QCOMPARE(new_commands().mid(0, 4),
                 QStringList({"MEASURE", "CHBW 01", "UNIT 02", "PROGRAM 00"}));
    }

    void keys_of_the_position_list() {
        start_alone();
        auto* list = find<QComboBox>("logger_pos");
        pick("logger_pos", 4);
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Tab);
        QCOMPARE(stored(QStringLiteral("logger_pos")), QStringLiteral("-"));
        QVERIFY(!list->hasFocus());
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Return);
        QCOMPARE(stored(QStringLiteral("logger_pos")), QStringLiteral("03"));
        // The arrows choose, as in each list.
        QTest::keyClick(list, Qt::Key_Down);
        QCOMPARE(list->currentText(), QStringLiteral("04"));
        QCOMPARE(stored(QStringLiteral("logger_pos")), QStringLiteral("03"));
        QTest::keyClick(list, Qt::Key_Backspace);
        QCOMPARE(list->currentText(), QStringLiteral("04"));
        QCOMPARE(stored(QStringLiteral("logger_pos")), QStringLiteral("04"));
    }

    void a_number_of_another_program_is_refused_by_enter_and_by_store() {
        start_alone();
        enter("prog_num", QStringLiteral("7"));
        enter("prog_num", QStringLiteral("8"));
        press("previous_prog");
        const auto again = [this](const std::function<void()>& act) {
            beeps_ = 0;
            told_.clear();
            answering(act, pressing(QMessageBox::Ok));
            QCOMPARE(told_, QStringList{"Error|The Programme in the data base already exist."});
            QCOMPARE(icons_.takeLast(), QMessageBox::Warning);
            QCOMPARE(beeps_, 2);
            QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,007,008"));
        };
        again([this] {
            type("prog_num", QStringLiteral("8"));
            press("store");
        });
        QCOMPARE(text_of("prog_num"), QStringLiteral("008"));
        press("previous_prog");
        again([this] { enter("prog_num", QStringLiteral("7")); });
        // The last program is shown.
        QCOMPARE(text_of("prog_num"), QStringLiteral("008"));
        press("next_prog");
        QCOMPARE(beeps_, 3);
    }

    void the_key_without_work_does_nothing() {
        start_alone();
        type("prog_num", QStringLiteral("7"));
        screen_->toolbar_ButtonClick(QStringLiteral("storing"));
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-"));
        QCOMPARE(text_of("prog_num"), QStringLiteral("7"));
        QCOMPARE(beeps_, 0);
    }

    void a_read_only_file_is_told_by_everything_that_writes() {
        start_with_meter();
        enter("prog_num", QStringLiteral("7"));
        new_plan(QStringLiteral("B"));
        press("previous");
        press("next_prog");
        const QString file = file_with(QStringLiteral("one.csv"), "frequenza\n1000\n");
        change_file(QStringLiteral("PRAGMA query_only = 1"));
        const auto ok = pressing(QMessageBox::Ok);
        const auto refused = [&](const char* key, QList<std::function<void(QWidget*)>> answers) {
            told_.clear();
            answering_each(pressed(key), answers << ok);
            QVERIFY2(told_.constLast().contains(QStringLiteral("cannot be written")),
                     qPrintable(told_.join(u';')));
            QCOMPARE(text_of("grp_name"), QStringLiteral("PLAN 1"));
            QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,007"));
        };
        refused("delete", {ok});
        refused("programma_delete", {ok});
        refused("cmdimport", {choosing(file), accepting()});
        refused("cmdcopyprog", {typing(QStringLiteral("C"))});
        refused("cmdcopyplan", {typing(QStringLiteral("C"))});
        // An upload stores first; what is not stored is not sent.
        refused("nuovo", {});
        QCOMPARE(new_commands(), QStringList());
        QSqlQuery plans(QStringLiteral("SELECT count(*) FROM gruppo"),
                        program().database().connection());
        QVERIFY(plans.next());
        QCOMPARE(plans.value(0).toInt(), 2);
    }

    void a_plan_is_exported_with_tabs_or_the_reason_is_told() {
        start_alone();
        click("ol_opt_0");
        type("sat_freq_txt", QStringLiteral("1234.5"));
        type("prog_num", QStringLiteral("7"));
        press("store");
        const QString out = in_folder(QStringLiteral("out.tsv"));
        answering(pressed("cmdexport"), choosing(out));
        const QByteArray written = content_of(out);
        QVERIFY(written.startsWith("nome\tpg_num\tfrequenza\t"));
        QVERIFY(written.contains("\nPLAN 1\t007\t1234.5\t1\t"));
        told_.clear();
        answering_each(pressed("cmdexport"),
                       {choosing(QStringLiteral("/proc/none.csv")), pressing(QMessageBox::Ok)});
        QVERIFY2(told_.constLast().contains(QStringLiteral("/proc/none.csv")),
                 qPrintable(told_.constLast()));
    }

    void blanks_around_a_new_name_go() {
        start_alone();
        new_plan(QStringLiteral("  roof east and west"));
        QCOMPARE(text_of("grp_name"), QStringLiteral("ROOF EAS"));
        new_plan(QStringLiteral("   "));
        QCOMPARE(text_of("grp_name"), QStringLiteral("ROOF EAS"));
    }

    void the_tab_key_goes_through_the_boxes_in_their_order() {
        start_alone();
        press("monitor");
        click("cmd_dig");
        find<QLineEdit>("prog_num")->setFocus();
        QStringList order;
        for (int k = 0; k < 24; ++k) {
            order += QApplication::focusWidget()->objectName();
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        QCOMPARE(order.mid(0, 7),
                 QStringList({"prog_num", "logger_pos", "logger_state", "k22_state", "lnb_state",
                              "diseqc_cmd", "diseqc_cmd2"}));
        QCOMPARE(order.filter(QRegularExpression(QStringLiteral("(txt|state)$"))).mid(3),
                 QStringList({"sat_freq_txt", "srqpsk_txt", "chbw_txt", "monitor_state",
                              "lev_mintxt", "lev_maxtxt", "cn_mintxt", "cn_maxtxt", "chber_mintxt",
                              "chber_maxtxt", "mer_mintxt", "mer_maxtxt"}));
    }

    void every_box_has_a_name_for_those_who_cannot_see_it() {
        start_alone();
        QSet<QString> names;
        for (const char* name :
             {"ol_optval", "lev_maxtxt", "cn_maxtxt", "chber_maxtxt", "mer_maxtxt"}) {
            const QString spoken = find<QWidget>(name)->accessibleName();
            QVERIFY2(!spoken.isEmpty(), name);
            names += spoken;
        }
        QCOMPARE(names.size(), 5);
    }

    void a_file_is_imported_after_its_preview_and_exported() {
        start_alone();
        new_plan(QStringLiteral("B"));
        const QString file = in_folder(QStringLiteral("some.csv"));
        QFile source(file);
        QVERIFY(source.open(QIODevice::WriteOnly));
        source.write("pg_num,frequenza,oscillator\n5,12000,10600\n5,11000,\n6,500,\n");
        source.close();
        const auto choose = [&](const QString& path, const std::function<void()>& then) {
            return [path, then](QWidget* front) {
                auto* box = front->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
                box->setText(path);
                if (then) QTimer::singleShot(50, front->parentWidget(), then);
                QTest::keyClick(box, Qt::Key_Return);
            };
        };
        QStringList results;
        const auto preview_and = [&](bool accept) {
            return [&results, accept] {
                auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
                QCOMPARE(dialog->objectName(), QStringLiteral("import_preview"));
                auto* table = dialog->findChild<QTableWidget*>();
                results.clear();
                for (int row = 0; row < table->rowCount(); ++row)
                    results += table->item(row, 0)->text() + u'|' + table->item(row, 5)->text();
                accept ? dialog->accept() : dialog->reject();
            };
        };
        answering(pressed("cmdimport"), choose(file, preview_and(false)));
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-"));
        answering(pressed("cmdimport"), choose(file, preview_and(true)));
        QCOMPARE(results, QStringList({"2|Added", "3|The Programme in the data base already exist.",
                                       "4|Added, corrected: frequenza: 500 → 920.0"}));
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("005,006"));
        QCOMPARE(text_of("prog_num"), QStringLiteral("005"));
        const QString out = in_folder(QStringLiteral("out.csv"));
        answering(pressed("cmdexport"), choose(out, {}));
        const QByteArray written = content_of(out);
        QVERIFY(written.startsWith("nome,pg_num,frequenza,"));
        QVERIFY(written.contains("\nB,005,12000,0,0,"));
        QVERIFY(
            written.endsWith(",10600\nB,006,920.0,1,0,0,27500,36,73,73,0,0,,0,0,20,120,1,40,"
                             "1E-8,3E-2,1,40,\n"));
        QVERIFY(QFile::remove(file));
        QVERIFY(source.open(QIODevice::WriteOnly));
        source.write("no plan");
        source.close();
        told_.clear();
        answering(pressed("cmdimport"), choose(file, [this] {
                      note(QApplication::activeModalWidget());
                      pressing(QMessageBox::Ok)(QApplication::activeModalWidget());
                  }));
        QCOMPARE(told_, QStringList{"Error|some.csv is neither a plan nor a DVB scan table."});
        // What is longer than any plan is not even read.
        QVERIFY(source.open(QIODevice::WriteOnly));
        source.write("pg_num,frequenza\n8,1500\n" + QByteArray(1024 * 1024, '\n'));
        source.close();
        told_.clear();
        answering(pressed("cmdimport"), choose(file, [this] {
                      note(QApplication::activeModalWidget());
                      pressing(QMessageBox::Ok)(QApplication::activeModalWidget());
                  }));
        QCOMPARE(told_, QStringList{"Error|some.csv is longer than 1 MiB, which no plan is."});
    }

    void programs_and_plans_are_copied() {
        start_alone();
        enter("prog_num", QStringLiteral("7"));
        answering(pressed("cmdcopyprog"), typing(QStringLiteral("plan 1")));
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,007,001"));
        QCOMPARE(text_of("prog_num"), QStringLiteral("001"));
        answering(pressed("cmdcopyplan"), typing(QStringLiteral("again")));
        QCOMPARE(text_of("grp_name"), QStringLiteral("AGAIN"));
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,007,001"));
        told_.clear();
        answering(pressed("cmdcopyplan"), [this](QWidget* front) {
            QTimer::singleShot(50, front->parentWidget(), [this] {
                note(QApplication::activeModalWidget());
                pressing(QMessageBox::Ok)(QApplication::activeModalWidget());
            });
            typing(QStringLiteral("plan 1"))(front);
        });
        QCOMPARE(told_.constLast(), QStringLiteral("Error|The plan PLAN 1 already exists."));
    }

    void no_sends_nothing_but_the_program_is_stored() {
        start_with_meter();
        type("prog_num", QStringLiteral("7"));
        answering(pressed("nuovo"), pressing(QMessageBox::No));
        QCOMPARE(told_,
                 QStringList{"M47|Replace with the new Plan of program\rDo you want to continue?"});
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("007"));
        QCOMPARE(new_commands(), QStringList());
    }

    void the_meter_holds_the_plan_after_each_kind_of_upload() {
        start_with_meter();
        type_three_programs();
        press("cmdverify");
        const QStringList factory_programs = meter_keeps(QStringLiteral("program"));
        QCOMPARE(
            meter_keeps(QStringLiteral("logger-line")),
            QStringList({"01 01 01", "02 02 01", "03 03 00", "04 04 01", "05 05 01", "06 06 00"}));
        const auto upload = [this](const char* key) {
            QString verified;
            answering(pressed(key), [&](QWidget* front) {
                // The window behind the question comes when all has been sent.
                auto* wait = new QTimer(screen_);
                connect(wait, &QTimer::timeout, screen_, [wait, front, &verified] {
                    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
                    if (!dialog || dialog == front) return;
                    verified = dialog->findChild<QLabel*>(QStringLiteral("verify_summary"))->text();
                    wait->deleteLater();
                    dialog->accept();
                });
                wait->start(20);
                pressing(QMessageBox::Yes)(front);
            });
            QVERIFY2(verified.startsWith(QStringLiteral("The logger table is as planned.\n")),
                     qPrintable(verified));
            QCOMPARE(text_of("prog_num"), QStringLiteral("010"));
            press("next_prog");
            press("next_prog");
        };
        const auto* summary = window().findChild<QLabel*>(QStringLiteral("plan_progress"));

        upload("accoda");
        QCOMPARE(new_commands(),
                 QStringList{"MEASURE"} + three_programs_ + QStringList{"DATAPROGRAM?"});
        QCOMPARE(meter_keeps(QStringLiteral("program")), factory_programs + three_kept_);
        QCOMPARE(
            meter_keeps(QStringLiteral("logger-line")),
            QStringList({"01 11 01", "02 12 01", "03 03 00", "04 04 01", "05 05 01", "06 06 00"}));
        QCOMPARE(summary->text(), QStringLiteral("38 of 38 commands answered OK"));
        QCOMPARE(summary->toolTip(), QString());

        upload("sostituisci");
        QCOMPARE(new_commands(), QStringList({"MEASURE", "DATAPROGRAM?", "DATAPROGRAM 01 11 00",
                                              "DATAPROGRAM 02 12 00", "DATAPROGRAM 04 04 00",
                                              "DATAPROGRAM 05 05 00"}) +
                                     three_programs_ + QStringList{"DATAPROGRAM?"});
        QCOMPARE(
            meter_keeps(QStringLiteral("logger-line")),
            QStringList({"01 11 01", "02 12 01", "03 03 00", "04 04 00", "05 05 00", "06 06 00"}));
        const QDir backup(in_folder(QStringLiteral("backup")));
        QCOMPARE(backup.entryList(QDir::Files).size(), 1);
        QCOMPARE(content_of(backup.filePath(backup.entryList(QDir::Files)[0])),
                 QByteArray("01 11 01\r02 12 01\r03 03 00\r04 04 01\r05 05 01\r06 06 00"));
        QVERIFY(!QFile::exists(in_folder(QStringLiteral("temp.dat"))));

        upload("nuovo");
        QCOMPARE(new_commands(), QStringList({"MEASURE", "DELETE 00 99", "DATAPROGRAM *"}) +
                                     three_programs_ + QStringList{"DATAPROGRAM?"});
        QCOMPARE(meter_keeps(QStringLiteral("program")), three_kept_);
        QCOMPARE(meter_keeps(QStringLiteral("logger-line")), QStringList({"01 11 01", "02 12 01"}));
    }

    void after_a_failed_store_the_next_one_overwrites_no_other_program() {
        start_alone();
        type_two_programs();
        // The second time round as well.
        for (int round = 0; round < 2; ++round) {
            elsewhere(QStringLiteral("DELETE FROM programmi WHERE pg_num = '002'"));
            type("sat_freq_txt", QStringLiteral("1500"));
            told_.clear();
            answering(pressed("store"), pressing(QMessageBox::Ok));
            QCOMPARE(told_,
                     QStringList{"Error|Another program has deleted what was shown here. Nothing "
                                 "was stored; the screen shows what is there now."});
            QCOMPARE(text_of("prog_num"), QStringLiteral("001"));
            QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1001.0"));
            press("store");
            QCOMPARE(stored(QStringLiteral("pg_num || ' ' || frequenza")),
                     QStringLiteral("001 1001.0"));
            enter("prog_num", QStringLiteral("2"));
        }
    }

    void a_program_deleted_elsewhere_is_not_deleted_twice() {
        start_alone();
        type_two_programs();
        enter("prog_num", QStringLiteral("3"));
        elsewhere(QStringLiteral("DELETE FROM programmi WHERE pg_num = '003'"));
        answering_each(pressed("programma_delete"),
                       {pressing(QMessageBox::Ok), pressing(QMessageBox::Ok)});
        QVERIFY2(told_.constLast().startsWith(QStringLiteral("Error|Another program")),
                 qPrintable(told_.constLast()));
        QCOMPARE(text_of("prog_num"), QStringLiteral("001"));
        // The last one that is there cannot be deleted, however many there were.
        elsewhere(QStringLiteral("DELETE FROM programmi WHERE pg_num = '001'"));
        press("programma_delete");
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("002"));
        QCOMPARE(text_of("prog_num"), QStringLiteral("002"));
    }

    void a_plan_deleted_elsewhere_is_named_and_another_one_shown() {
        start_alone();
        new_plan(QStringLiteral("B"));
        for (const char* table : {"gruppo", "programmi", "configurazione"})
            elsewhere(QStringLiteral("DELETE FROM %1 WHERE nome = 'B'").arg(QLatin1String(table)));
        type("prog_num", QStringLiteral("7"));
        told_.clear();
        answering(pressed("store"), pressing(QMessageBox::Ok));
        QCOMPARE(told_, QStringList{"Error|The plan B is gone: another program has deleted it."});
        QCOMPARE(text_of("grp_name"), QStringLiteral("PLAN 1"));
        QCOMPARE(text_of("prog_num"), QString());
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-"));
    }

    void a_move_that_failed_leaves_plan_and_program_together() {
        start_alone();
        new_plan(QStringLiteral("B"));
        press("previous");
        type_two_programs();
        elsewhere(QStringLiteral("ALTER TABLE configurazione RENAME TO away"));
        answering(pressed("next"), pressing(QMessageBox::Ok));
        elsewhere(QStringLiteral("ALTER TABLE away RENAME TO configurazione"));
        QCOMPARE(text_of("grp_name"), QStringLiteral("PLAN 1"));
        QCOMPARE(text_of("prog_num"), QStringLiteral("002"));
        press("store");
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("001,002"));
        press("next");
        QCOMPARE(text_of("grp_name"), QStringLiteral("B"));
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-"));
    }

    void an_oscillator_entry_that_does_not_exist_erases_none_data() {
        QTest::addColumn<int>("entry");
        QTest::newRow("behind the last") << 4;
        QTest::newRow("far behind") << 7;
        QTest::newRow("before the first") << -1;
    }
    void an_oscillator_entry_that_does_not_exist_erases_none() {
        QFETCH(int, entry);
        start_alone();
        change_file(QStringLiteral("UPDATE configurazione SET loc_osc1 = 9750, loc_osc2 = 10600"));
        change_file(QStringLiteral("UPDATE programmi SET pg_num = '007', frequenza = 11000, "
                                   "loc_osc = 0, satchbw = 36, loc_osc0 = %1")
                        .arg(entry));
        screen_->database_changed();
        QCOMPARE(find<QComboBox>("ol_optval")->currentText(), QStringLiteral("9750"));
        // An upload stores first as well.
        press("store");
        answering(pressed("accoda"), pressing(QMessageBox::No));
        QCOMPARE(stored(QStringLiteral("loc_osc1 || ' ' || loc_osc2 || ' ' || loc_osc0")),
                 QStringLiteral("9750.0 10600.0 0"));
    }

    void what_the_box_shows_is_what_is_stored_data() {
        QTest::addColumn<QByteArray>("box");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QByteArray>("field");
        QTest::addColumn<QString>("kept");
        QTest::newRow("decimal comma")
            << QByteArray("sat_freq_txt") << "1500,5" << QByteArray("frequenza") << "1500.5";
        QTest::newRow("letters behind")
            << QByteArray("sat_freq_txt") << "1234abc" << QByteArray("frequenza") << "1234.0";
        QTest::newRow("two decimals")
            << QByteArray("sat_freq_txt") << "1234.56" << QByteArray("frequenza") << "1234.6";
        QTest::newRow("symbol rate")
            << QByteArray("srqpsk_txt") << "27500abc" << QByteArray("qpsk_symbolrate") << "27500";
        QTest::newRow("symbol rate, comma")
            << QByteArray("srqpsk_txt") << "27500,5" << QByteArray("qpsk_symbolrate") << "27500.5";
        QTest::newRow("level, comma")
            << QByteArray("lev_mintxt") << "45,5" << QByteArray("lev_min") << "45.5";
        QTest::newRow("level, unit")
            << QByteArray("lev_maxtxt") << "75 dBuV" << QByteArray("lev_max") << "75";
        QTest::newRow("noise") << QByteArray("cn_maxtxt") << "30dB" << QByteArray("noise_max")
                               << "30";
        QTest::newRow("exponent") << QByteArray("chber_mintxt") << "1E-7" << QByteArray("chber_min")
                                  << "1E-7";
        QTest::newRow("no number")
            << QByteArray("chber_mintxt") << "x" << QByteArray("chber_min") << "0";
        QTest::newRow("MER") << QByteArray("mer_maxtxt") << "20,25" << QByteArray("mer_max")
                             << "20.25";
    }
    void what_the_box_shows_is_what_is_stored() {
        QFETCH(QByteArray, box);
        QFETCH(QString, typed);
        QFETCH(QByteArray, field);
        QFETCH(QString, kept);
        start_alone();
        press("monitor");
        click("cmd_dig");
        click("ol_opt_0");
        type(box.constData(), typed);
        press("store");
        QCOMPARE(stored(QString::fromLatin1(field)), kept);
        QCOMPARE(text_of(box.constData()), kept);
        press("next_prog");
        QCOMPARE(text_of(box.constData()), kept);
    }

    void a_number_with_letters_behind_is_cut_on_leaving() {
        start_alone();
        click("cmd_dig");
        click("ol_opt_0");
        leave("sat_freq_txt", QStringLiteral("1234abc"));
        QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1234"));
        leave("srqpsk_txt", QStringLiteral("27500abc"));
        QCOMPARE(text_of("srqpsk_txt"), QStringLiteral("27500"));
    }

    void an_oscillator_typed_with_a_comma_is_read_whole() {
        start_alone();
        type_oscillator(QStringLiteral("9750,5"));
        QCOMPARE(stored(QStringLiteral("loc_osc1")), QStringLiteral("9750.5"));
        QCOMPARE(find<QComboBox>("ol_optval")->currentText(), QStringLiteral("9750.5"));
    }

    void a_plan_name_is_plain_text_in_every_box() {
        start_alone();
        new_plan(QStringLiteral("<b>x</b>"));
        QCOMPARE(text_of("grp_name"), QStringLiteral("<B>X</B>"));
        const auto plainly = [](QMessageBox::StandardButton button) {
            return [button](QWidget* front) {
                const Qt::TextFormat format = qobject_cast<QMessageBox*>(front)->textFormat();
                pressing(button)(front);
                QCOMPARE(format, Qt::PlainText);
            };
        };
        told_.clear();
        answering(pressed("delete"), plainly(QMessageBox::Cancel));
        QCOMPARE(told_, QStringList{"VKDM47|Remove program: <B>X</B>"});
        answering_each(pressed("cmdcopyplan"),
                       {typing(QStringLiteral("<b>x</b>")), plainly(QMessageBox::Ok)});
        QCOMPARE(told_.constLast(), QStringLiteral("Error|The plan <B>X</B> already exists."));
    }

    void a_cell_of_a_file_is_plain_text_in_the_preview() {
        start_alone();
        const QString file =
            file_with(QStringLiteral("some.csv"), "frequenza,qpsk_symbolrate\n1000,<b>x</b>\n");
        answering_each(pressed("cmdimport"),
                       {choosing(file), [](QWidget* front) {
                            const auto* cell = front->findChild<QTableWidget*>()->item(0, 5);
                            const QString text = cell->text();
                            const QString tip = cell->toolTip();
                            qobject_cast<QDialog*>(front)->reject();
                            QVERIFY(text.contains(QStringLiteral("<b>x</b>")));
                            QVERIFY(!tip.contains(QStringLiteral("<b>")));
                            QVERIFY(tip.contains(QStringLiteral("&lt;b&gt;x")));
                        }});
    }

    void limits_stay_in_their_unit_where_that_is_chosen_data() {
        QTest::addColumn<bool>("keep");
        QTest::addColumn<QString>("untouched");
        QTest::addColumn<QString>("typed_before");
        QTest::newRow("as ever") << false << "10 11"
                                 << "10 11";
        QTest::newRow("kept") << true << "30 90"
                              << "25 120";
    }
    void limits_stay_in_their_unit_where_that_is_chosen() {
        QFETCH(bool, keep);
        start_alone();
        program_state().corrected.keep_unit = keep;
        press("monitor");
        click("ol_opt_0");
        const auto limits = [this] { return stored(QStringLiteral("lev_min || ' ' || lev_max")); };
        // Without limits there is nothing to keep.
        press("store");
        QCOMPARE(limits(), QStringLiteral("20 21"));
        type("lev_mintxt", QStringLiteral("30"));
        type("lev_maxtxt", QStringLiteral("90"));
        press("store");
        QCOMPARE(limits(), QStringLiteral("30 90"));
        // The meter turned out to measure in dBm.
        program_state().unit_index = kDbm;
        answering(pressed("accoda"), pressing(QMessageBox::No));
        QTEST(limits(), "untouched");
        // What was typed before the unit was changed is of the unit before.
        press("cmdlev_0");
        type("lev_mintxt", QStringLiteral("25"));
        type("lev_maxtxt", QStringLiteral("130"));
        press("cmdlev_2");
        press("store");
        QTEST(limits(), "typed_before");
        // What is typed now is checked in the unit of now.
        type("lev_mintxt", QStringLiteral("-100"));
        type("lev_maxtxt", QStringLiteral("-20"));
        press("store");
        QCOMPARE(limits(), QStringLiteral("-89 -20"));
    }

    void what_the_behaviour_as_ever_costs_is_told_once() {
        start_on_patient_line();
        const auto told = [this] {
            auto* notice = window().findChild<QLabel*>(QStringLiteral("corrected_notice"));
            const QString text = notice->text();
            notice->clear();
            return text;
        };
        type_two_programs_of_an_oscillator();
        press("monitor");
        type("lev_mintxt", QStringLiteral("30"));
        type("lev_maxtxt", QStringLiteral("90"));
        press("store");
        QCOMPARE(told(), QString());
        program_state().unit_index = kDbm;
        press("store");
        QCOMPARE(told(), QStringLiteral("Level limits changed to fit the unit: type them again"));
        answering([this] { enter("prog_num", QStringLiteral("1")); }, pressing(QMessageBox::Ok));
        QCOMPARE(told(), QStringLiteral("The refused program is gone: type it again"));
        type_oscillator(QStringLiteral("9760"));
        QCOMPARE(told(), QString());
        type_oscillator(QStringLiteral("5150"));
        QCOMPARE(told(), QStringLiteral("Other programs are out of range of the new oscillator: "
                                        "store each of them"));
        type_oscillator(QStringLiteral("9750"));
        QCOMPARE(told(), QString());
        const auto upload = [this] { answering(pressed("accoda"), pressing(QMessageBox::Yes)); };
        upload();
        QCOMPARE(told(), QString());
        change_file(QStringLiteral("UPDATE programmi SET diseqc_cmd = NULL WHERE pg_num = '002'"));
        upload();
        QCOMPARE(told(), QStringLiteral("A program without DiSEqC was sent with TONE BURST: choose "
                                        "NONE"));
        new_plan(QStringLiteral("B"));
        enter("prog_num", QStringLiteral("7"));
        upload();
        QCOMPARE(told(),
                 QStringLiteral("A program without frequency was sent with zeros: type it or "
                                "delete the program"));
        upload();
        QCOMPARE(told(), QString());
    }

    void imported_limits_stay_in_their_unit_where_that_is_chosen() {
        start_alone();
        program_state().unit_index = kDbm;
        const QString file = file_with(QStringLiteral("some.csv"),
                                       "pg_num,frequenza,lev_min,lev_max\n1,1000,30,90\n");
        const auto limits_after = [&](const char* plan) {
            new_plan(QString::fromLatin1(plan));
            answering_each(pressed("cmdimport"), {choosing(file), accepting()});
            return stored(QStringLiteral("lev_min || ' ' || lev_max"));
        };
        QCOMPARE(limits_after("B"), QStringLiteral("10 11"));
        program_state().corrected.keep_unit = true;
        QCOMPARE(limits_after("C"), QStringLiteral("30 90"));
    }

    void empty_programs_are_not_uploaded_where_that_is_chosen() {
        start_on_patient_line();
        click("ol_opt_0");
        click("cmd_dig");
        type("sat_freq_txt", QStringLiteral("1100"));
        type("chbw_txt", QStringLiteral("8"));
        enter("prog_num", QStringLiteral("7"));
        const auto sent = [this] {
            answering(pressed("accoda"), pressing(QMessageBox::Yes));
            return line_->take_commands().filter(QRegularExpression("^(CHBW|PROGRAM|FREQ)"));
        };
        QCOMPARE(sent(),
                 QStringList({"CHBW 08", "PROGRAM 00", "FREQ 00000", "PROGRAM 07", "FREQ 1100.0"}));
        program_state().corrected.skip_empty = true;
        QCOMPARE(sent(), QStringList({"CHBW 08", "PROGRAM 07", "FREQ 1100.0"}));
        // Shown is the empty one since the upload, which stays empty.
        QCOMPARE(text_of("prog_num"), QString());
        QCOMPARE(sent(), QStringList({"CHBW 08", "PROGRAM 07", "FREQ 1100.0"}));
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,007"));
        // Once something is typed into it, it is a program.
        type("prog_num", QStringLiteral("8"));
        click("ol_opt_0");
        QCOMPARE(sent(), QStringList({"CHBW 01", "PROGRAM 08", "FREQ 0920.0", "PROGRAM 07",
                                      "FREQ 1100.0"}));
    }

    void a_plan_of_empty_programs_deletes_nothing_in_the_meter() {
        start_on_patient_line();
        program_state().corrected.skip_empty = true;
        told_.clear();
        answering(pressed("nuovo"), pressing(QMessageBox::Ok));
        QCOMPARE(told_, QStringList{"Error|The plan has no program: make one first."});
        QCOMPARE(line_->take_commands(), QStringList());
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-"));
    }

    void a_refused_new_program_stays_where_that_is_chosen() {
        start_alone();
        type_two_programs();
        const auto refused = [this](const char* how) {
            type("sat_freq_txt", QStringLiteral("1700"));
            if (qstrcmp(how, "key") == 0) {
                type("prog_num", QStringLiteral("1"));
                answering(pressed("store_new"), pressing(QMessageBox::Ok));
            } else {
                answering([this] { enter("prog_num", QStringLiteral("1")); },
                          pressing(QMessageBox::Ok));
            }
        };
        refused("key");
        QCOMPARE(text_of("prog_num"), QStringLiteral("002"));
        QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1002.0"));
        program_state().corrected.keep_new = true;
        for (const char* how : {"key", "enter"}) {
            refused(how);
            QCOMPARE(text_of("prog_num"), QStringLiteral("001"));
            QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1700"));
        }
        enter("prog_num", QStringLiteral("3"));
        QCOMPARE(stored(QStringLiteral("pg_num || ' ' || frequenza")),
                 QStringLiteral("001 1001.0,002 1002.0,003 1700.0"));
    }

    void a_new_oscillator_checks_every_program_where_that_is_chosen() {
        start_alone();
        type_two_programs_of_an_oscillator();
        pick("ol_optval", 1);
        type_oscillator(QStringLiteral("10600"));
        type("sat_freq_txt", QStringLiteral("12000"));
        press("store");
        pick("ol_optval", 0);
        type("sat_freq_txt", QStringLiteral("11000"));
        enter("prog_num", QStringLiteral("3"));
        const auto frequencies = [this] { return stored(QStringLiteral("frequenza")); };
        QCOMPARE(frequencies(), QStringLiteral("11000.0,12000.0,11000.0"));
        // As ever: the program on the screen alone.
        type_oscillator(QStringLiteral("5150"));
        QCOMPARE(frequencies(), QStringLiteral("11000.0,12000.0,4230.0"));
        type_oscillator(QStringLiteral("9750"));
        type("sat_freq_txt", QStringLiteral("11000"));
        press("store");
        program_state().corrected.check_all = true;
        type_oscillator(QStringLiteral("5150"));
        QCOMPARE(frequencies(), QStringLiteral("4230.0,12000.0,4230.0"));
        QCOMPARE(progress()->text(), QStringLiteral("Frequencies corrected, programs: 001, 003"));
        // The key does what Enter does.
        type_oscillator(QStringLiteral("9750"), false);
        press("store");
        QCOMPARE(frequencies(), QStringLiteral("10670.0,12000.0,10670.0"));
        press("previous_prog");
        press("previous_prog");
        QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("10670"));
    }

    void an_empty_program_stays_empty_when_all_are_checked() {
        start_alone();
        enter("prog_num", QStringLiteral("7"));
        program_state().corrected.check_all = true;
        type_oscillator(QStringLiteral("9750"));
        QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("-,10670.0"));
    }

    void an_unset_diseqc_command_is_none_where_that_is_chosen() {
        start_on_patient_line();
        const auto shown = [this] {
            return find<QComboBox>("diseqc_cmd")->currentText() + u'|' +
                   find<QComboBox>("diseqc_cmd2")->currentText();
        };
        const auto sent = [this] {
            answering(pressed("accoda"), pressing(QMessageBox::Yes));
            return line_->take_commands().filter(QStringLiteral("DISEQC"));
        };
        change_file(
            QStringLiteral("INSERT INTO programmi (nome, pg_num, frequenza, loc_osc) "
                           "VALUES ('PLAN 1', '007', 1100, 1)"));
        screen_->database_changed();
        QCOMPARE(shown(), QStringLiteral("TONE BURST|TONE BURST"));
        program_state().corrected.none_diseqc = true;
        press("next_prog");
        QCOMPARE(shown(), QStringLiteral("NONE|NONE"));
        press("previous_prog");
        QCOMPARE(shown(), QStringLiteral("NONE|NONE"));
        // The one that is not on the screen as well.
        QCOMPARE(sent(), QStringList({"DISEQC 73", "DISEQC 73"}));
        QCOMPARE(stored(QStringLiteral("coalesce(diseqc_cmd, 'unset')")),
                 QStringLiteral("73,unset"));
        press("next_prog");
        find<QComboBox>("diseqc_cmd2")->setCurrentIndex(-1);
        press("store");
        QCOMPARE(stored(QStringLiteral("diseqc_cmd || ' ' || diseqc_cmd2")),
                 QStringLiteral("73 73,73 73"));
        // What somebody has chosen stays chosen.
        pick("diseqc_cmd", 0);
        press("store");
        QCOMPARE(shown(), QStringLiteral("TONE BURST|NONE"));
        // The empty program of a new plan is still empty.
        program_state().corrected.skip_empty = true;
        new_plan(QStringLiteral("B"));
        QCOMPARE(shown(), QStringLiteral("NONE|NONE"));
        answering(pressed("accoda"), pressing(QMessageBox::Ok));
        QCOMPARE(told_.constLast(), QStringLiteral("Error|The plan has no program: make one "
                                                   "first."));
    }

  private:
    /// What the box after an upload by `key` says, and the rows of its table.
    QString verified(const char* key, QStringList* rows = nullptr) {
        QString said;
        answering_each(pressed(key), {pressing(QMessageBox::Yes), [&](QWidget* front) {
                                          said =
                                              front->findChild<QLabel*>("verify_summary")->text();
                                          auto* table = front->findChild<QTableWidget*>();
                                          for (int k = 0; rows && k < table->rowCount(); ++k) {
                                              QStringList cells;
                                              for (int c = 0; c < table->columnCount(); ++c)
                                                  cells += table->item(k, c)->text();
                                              *rows += cells.join(u'|');
                                          }
                                          qobject_cast<QDialog*>(front)->accept();
                                      }});
        return said;
    }

  private Q_SLOTS:
    void a_refused_table_is_not_as_planned() {
        start_on_virtual_line();
        click("ol_opt_0");
        pick("diseqc_cmd", 73);
        press("cmdverify");
        const auto usual = line_->answer;
        line_->answer = [usual](const QByteArray& command) {
            return command == "DATAPROGRAM?" ? command + "\rInvalid Parameter(s)\rOK\r"
                                             : usual(command);
        };
        QCOMPARE(verified("nuovo"),
                 QStringLiteral("The meter did not tell its logger table: nothing was compared.\n"
                                "Active lines planned: 0."));
        QVERIFY(program().link().port_connected);
    }

    void a_plan_without_lines_is_not_called_verified() {
        start_on_virtual_line();
        click("ol_opt_0");
        pick("diseqc_cmd", 73);
        press("cmdverify");
        QCOMPARE(verified("accoda"),
                 QStringLiteral("The plan enters no program in the logger table: nothing was "
                                "compared.\nActive lines planned: 0. Lines read from the meter: 6, "
                                "active: 4."));
        QStringList rows;
        QCOMPARE(
            verified("sostituisci", &rows),
            QStringLiteral("The plan enters no program in the logger table, and none is active "
                           "there.\nActive lines planned: 0. Lines read from the meter: 6, "
                           "active: 0."));
        QCOMPARE(rows.constFirst(),
                 QString::fromUtf8("01|program 01, inactive|program 01, inactive|✓"));
    }

    void a_line_that_the_meter_lists_as_inactive_is_as_good_as_none() {
        start_on_virtual_line();
        click("ol_opt_0");
        type("prog_num", QStringLiteral("10"));
        pick("diseqc_cmd", 73);
        pick("logger_pos", 2);
        click("logger_state");
        connect(screen_, &ProgramSet::upload_state, this, [this](const QString& text) {
            if (text.contains(QStringLiteral("answered")))
                QVERIFY(program().link().send(QStringLiteral("DATAPROGRAM 05 10 00")));
        });
        press("cmdverify");
        QStringList rows;
        QCOMPARE(verified("nuovo", &rows),
                 QStringLiteral("The logger table is as planned.\nActive lines planned: 1. Lines "
                                "read from the meter: 2, active: 1."));
        QCOMPARE(rows, QStringList({QString::fromUtf8("01|program 10, active|program 10, active|✓"),
                                    QString::fromUtf8("05|none|program 10, inactive|✓")}));
    }

    void a_refused_upload_says_how_far_it_came() {
        start_with_meter({"--fault", "error", "--fault-on", "DISEQC"});
        type_three_programs();
        press("cmdverify");
        answering(pressed("accoda"), pressing(QMessageBox::Yes));
        const auto* summary = window().findChild<QLabel*>(QStringLiteral("plan_progress"));
        QCOMPARE(summary->text(), QStringLiteral("9 of 38 commands answered OK"));
        QVERIFY(summary->toolTip().startsWith(QStringLiteral("DISEQC 73\nLNB 01\n")));
        QVERIFY(!program().link().port_connected);
        QCOMPARE(new_commands().mid(9), QStringList({"DISEQC 73", "DISEQC 73", "DISEQC 73"}));
    }
};

}  // namespace m47

QTEST_MAIN(m47::PlanScreenTest)
#include "screen_test.moc"
