// SPDX-License-Identifier: GPL-3.0-or-later
#include "screen_test.h"

namespace m47::plans {

void PlanScreenTest::start(const link::PortList& ports, int language) {
    start_program({1024, 600}, ports);
    to_the_front(language);
}

void PlanScreenTest::to_the_front(int language) {
    window().activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window()));
    program_state().texts.language = language;
}

void PlanScreenTest::open_screen() {
    window().findChild<QAction*>(QStringLiteral("program"))->trigger();
    screen_ = qobject_cast<ProgramSet*>(window().screen_of(QStringLiteral("program")));
    QVERIFY(screen_);
    screen_->beep = [this] { ++beeps_; };
    beeps_ = 0;
    told_.clear();
    icons_.clear();
}

void PlanScreenTest::start_alone(int language) {
    new_folder(folder_template());
    start(link::PortList(), language);
    open_screen();
}

void PlanScreenTest::start_on_virtual_line() {
    new_folder(folder_template());
    auto clock = std::make_unique<VirtualClock>();
    auto line = std::make_unique<FakePort>(*clock);
    line_ = line.get();
    quick_meter_ = std::make_unique<MeterInProcess>(*line, 1);
    link::PortList ports;
    QVERIFY(ports.add(QStringLiteral("1=/dev/no-such-meter")));
    start_program({1024, 600}, ports, std::move(clock), std::move(line));
    to_the_front(kEnglish);
    program().identify(1);
    QVERIFY(program().link().port_connected);
    open_screen();
}

void PlanScreenTest::start_on_patient_line() {
    start_on_virtual_line();
    line_->answer = [](const QByteArray& command) { return FakePort::good(command); };
    line_->take_commands();
}

void PlanScreenTest::start_with_meter(const QStringList& options) {
    new_folder(folder_template());
    meter_ = std::make_unique<MeterProcess>(
        folder(),
        QStringList{"--baud-factor", "0", "--delay", "0", "--state", state_file()} + options);
    link::PortList ports;
    QVERIFY(ports.add(QStringLiteral("1=") + meter_->link()));
    start(ports, kEnglish);
    program().identify(1);
    QVERIFY(program().link().port_connected);
    open_screen();
    new_commands();
}

void PlanScreenTest::answering(const std::function<void()>& act,
                               const std::function<void(QWidget*)>& answer) {
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

void PlanScreenTest::answering_each(const std::function<void()>& act,
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

std::function<void(QWidget*)> PlanScreenTest::choosing(const QString& path) {
    return [path](QWidget* front) {
        auto* box = front->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        box->setText(path);
        QTest::keyClick(box, Qt::Key_Return);
    };
}

QStringList PlanScreenTest::changes_in(QWidget* front) {
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

void PlanScreenTest::choose(QWidget* front, const char* button) {
    auto* found = front->findChild<QPushButton*>(QString::fromLatin1(button));
    if (!found) return qobject_cast<QDialog*>(front)->reject();
    QTest::mouseClick(found, Qt::LeftButton);
}

std::function<void(QWidget*)> PlanScreenTest::noting_changes(QStringList& changes,
                                                             const char* button) {
    return [&changes, button](QWidget* front) {
        changes = changes_in(front);
        choose(front, button);
    };
}

std::function<void(QWidget*)> PlanScreenTest::choosing_button(const char* button) {
    return [button](QWidget* front) { choose(front, button); };
}

std::function<void(QWidget*)> PlanScreenTest::accepting() {
    return [](QWidget* front) { qobject_cast<QDialog*>(front)->accept(); };
}

QString PlanScreenTest::file_with(const QString& name, const QByteArray& content) {
    QFile file(in_folder(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(name));
    return file.fileName();
}

void PlanScreenTest::change_file(const QString& statement) {
    QSqlQuery query(program().database().connection());
    QVERIFY2(query.exec(statement), qPrintable(statement));
}

void PlanScreenTest::elsewhere(const QString& statement) {
    {
        QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "other");
        other.setDatabaseName(in_folder(db::kDatabaseFile));
        QVERIFY(other.open());
        QSqlQuery query(other);
        QVERIFY2(query.exec(statement), qPrintable(statement));
    }
    QSqlDatabase::removeDatabase("other");
}

void PlanScreenTest::type_two_programs() {
    click("ol_opt_0");
    type("sat_freq_txt", QStringLiteral("1001"));
    type("prog_num", QStringLiteral("1"));
    press("store");
    type("sat_freq_txt", QStringLiteral("1002"));
    enter("prog_num", QStringLiteral("2"));
}

void PlanScreenTest::type_two_programs_of_an_oscillator() {
    type_oscillator(QStringLiteral("9750"));
    type("sat_freq_txt", QStringLiteral("11000"));
    type("prog_num", QStringLiteral("1"));
    press("store");
    enter("prog_num", QStringLiteral("2"));
}

void PlanScreenTest::note(QWidget* front) {
    if (const auto* box = qobject_cast<QMessageBox*>(front))
        told_ += box->windowTitle() + u'|' + box->text();
    if (const auto* box = qobject_cast<QMessageBox*>(front)) icons_ += box->icon();
    if (const auto* input = qobject_cast<QInputDialog*>(front))
        told_ += input->windowTitle() + u'|' + input->labelText();
}

std::function<void(QWidget*)> PlanScreenTest::pressing(QMessageBox::StandardButton button) {
    return [button](QWidget* front) {
        QTest::mouseClick(qobject_cast<QMessageBox*>(front)->button(button), Qt::LeftButton);
    };
}

std::function<void(QWidget*)> PlanScreenTest::typing(const QString& text) {
    return [text](QWidget* front) {
        auto* box = front->findChild<QLineEdit*>();
        box->selectAll();
        QTest::keyClicks(box, text);
        if (text.isEmpty()) box->clear();
        QTest::keyClick(box, Qt::Key_Return);
    };
}

std::function<void()> PlanScreenTest::pressed(const char* key) {
    return [this, key] { press(key); };
}

void PlanScreenTest::type(const char* name, const QString& text) {
    auto* box = find<QLineEdit>(name);
    box->setFocus();
    box->selectAll();
    QTest::keyClick(box, Qt::Key_Delete);
    QTest::keyClicks(box, text);
}

void PlanScreenTest::enter(const char* name, const QString& text) {
    type(name, text);
    QTest::keyClick(find<QLineEdit>(name), Qt::Key_Return);
}

void PlanScreenTest::leave(const char* name, const QString& text) {
    type(name, text);
    QTest::keyClick(find<QLineEdit>(name), Qt::Key_Tab);
}

void PlanScreenTest::type_oscillator(const QString& text, bool with_enter) {
    auto* list = find<QComboBox>("ol_optval");
    list->setFocus();
    list->lineEdit()->selectAll();
    QTest::keyClick(list, Qt::Key_Delete);
    QTest::keyClicks(list, text);
    if (with_enter) QTest::keyClick(list, Qt::Key_Return);
}

void PlanScreenTest::pick(const char* name, int entry) {
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

void PlanScreenTest::click(const char* button) {
    auto* box = find<QAbstractButton>(button);
    QTest::mouseClick(box, Qt::LeftButton, {}, {8, box->height() / 2});
}

QString PlanScreenTest::stored(const QString& column) {
    QSqlQuery query(QStringLiteral("SELECT group_concat(coalesce(%1, '-')) FROM (SELECT * "
                                   "FROM programmi JOIN configurazione USING (nome) WHERE nome "
                                   "= '%2' ORDER BY programmi.id)")
                        .arg(column, text_of("grp_name")),
                    program().database().connection());
    return query.next() ? query.value(0).toString() : QStringLiteral("?");
}

QStringList PlanScreenTest::new_commands() {
    QTest::qWait(20);
    const QStringList all = meter_->commands();
    const QStringList fresh = all.mid(seen_);
    seen_ = all.size();
    return fresh;
}

QByteArray PlanScreenTest::meter_report() {
    if (quick_meter_) return quick_meter_->kept();
    QFile::remove(state_file());
    meter_->send_signal(SIGUSR1);
    if (!QTest::qWaitFor([this] { return QFile::exists(state_file()); }))
        qFatal("the meter does not report");
    return content_of(state_file());
}

QStringList PlanScreenTest::meter_keeps(const QString& word) {
    QStringList lines;
    for (const QString& line : QString::fromUtf8(meter_report()).split(u'\n'))
        if (line.startsWith(word + u' ')) lines += line.mid(word.size() + 1);
    return lines;
}

void PlanScreenTest::type_three_programs() {
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

void PlanScreenTest::cleanup() {
    quick_meter_.reset();
    end_program();
    meter_.reset();
}

}  // namespace m47::plans

QTEST_MAIN(m47::plans::PlanScreenTest)
