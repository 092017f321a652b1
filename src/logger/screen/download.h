// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMessageBox>
#include <functional>
#include <memory>

#include "logger_data.h"
#include "screen.h"

class QFileDialog;
class QPushButton;

namespace Ui {
class Download;
}

namespace m47::logger {

/// The screen "Download Data Logged": fetches what the meter's logger has recorded, shows it as
/// text and as a table, keeps it in ".dwl" files, and shows a span as a curve.
class Download : public Screen {
    Q_OBJECT
  public:
    Download(link::Link& link, ProgramState& program, QWidget* parent = nullptr);
    ~Download() override;

    /// Wide enough for a record, high enough for a few logs.
    QSize sizeHint() const override;

    LoggerData data;

    /// Sets the tooltips and composes the column headers; run once, when the screen is there.
    void Form_Load() override;
    /// Run each time the screen comes to the front.
    void Form_Activate() override;

    void cmddownload_Click();
    void cmddownloadlast_Click();
    void cmdclearall_Click();
    void cmdclearlast_Click();
    void cmddatain_Click();
    void cmdrecall_Click();
    void cmdsave_Click();
    void cmddelete_Click();
    void cmdspan_Click();

  Q_SIGNALS:
    /// How much of a download has arrived, "20480 bytes"; empty when none runs.
    void progress(const QString& text);

  private:
    void add_keys();
    void connect_buttons();
    void connect_table();
    bool may_erase(const QPushButton* key, const QString& command);
    void download(const QString& command);
    void show_text();
    void fill_table();
    void show_bytes(qsizetype bytes);
    void show_span_panel(bool on);
    void show_span_point(int row);
    void createdoc();
    QString ask_file(const std::function<void(QFileDialog&)>& set_up);
    void show_message(QMessageBox::Icon icon, const QString& title, int number);

    link::Link& link_;
    ProgramState& program_;
    std::unique_ptr<Ui::Download> ui_;
    /// The name of the temporary file as typed.
    QString tmpfile_;
    bool table_filled_ = true;
};

}  // namespace m47::logger
