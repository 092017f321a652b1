// SPDX-License-Identifier: GPL-3.0-or-later
// The logger screen in the whole program, clicked and typed at as a technician does, against the
// simulated meter.
#pragma once

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

#include "custom_plot.h"
#include "download.h"
#include "download_tooltips.h"
#include "process_support.h"
#include "program_in_folder.h"
#include "span_view.h"

namespace m47::logger {

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

    void open_screen();
    void close_screen();
    /// A program without a meter, in English, its logger screen open.
    void start_alone();
    /// The same on an identified meter.
    void start(const QStringList& options, const char* pace = "0");
    std::unique_ptr<QTemporaryDir> meter_folder_;

    QStringList new_commands();
    /// What the meter sent for `command`, without the echo and the CR that ends it.
    QByteArray sent_for(const QString& command);

    /// Types `name` into the file dialog that comes up next; nothing cancels it.
    void answer_dialog(const QString& name, QStringList* filters = nullptr);
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
    void cleanup();

    void the_screen_is_as_technicians_know_it();

    void every_tooltip_stands_in_both_languages();

    void a_temporary_name_is_wanted_and_must_stay_in_the_folder();

    void nothing_to_save_is_said();

    void each_button_sends_its_command();

    void erasing_keeps_a_copy_and_asks_where_that_is_chosen();

    void what_cannot_be_read_first_is_not_erased();

    void each_coming_to_the_front_chooses_the_device();

    void a_download_is_saved_and_recalled_byte_for_byte();

    void saving_overwrites_and_adds_the_ending_dwl();

    void a_file_that_is_chosen_is_that_file();

    void the_database_is_no_file_to_choose();

    void a_cancelled_dialog_changes_nothing();

    void deleting_asks_nothing_and_a_missing_file_is_silent();

    void typing_into_the_text_changes_nothing();

    void a_long_download_shows_how_far_it_is();

    void a_line_that_drops_half_way_leaves_one_empty_line();

    void noise_on_the_line_reaches_the_file_as_it_came();

    void records_are_shown_as_a_table_and_copied();

    void a_span_is_a_curve_and_a_click_reads_a_point();

    void the_page_is_printed();

    void a_hundred_thousand_lines_are_shown_without_lag();
};

}  // namespace m47::logger
