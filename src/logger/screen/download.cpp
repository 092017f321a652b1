// SPDX-License-Identifier: GPL-3.0-or-later
#include "download.h"

#include <QDateTime>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontDatabase>

#include "column_headers.h"
#include "commands.h"
#include "download_tooltips.h"
#include "file_question.h"
#include "message_box.h"
#include "text_printer.h"
#include "ui_download.h"

namespace m47::logger {
namespace {

/// The keys of the toolbar in their order. They are no part of the form, since "delete" is no name
/// for a member.
constexpr const char* kToolbarKeys[] = {"open",  "save",   "delete", "dwl",   "dwl_c",
                                        "dwl_m", "to_ana", "to_dig", "stampa"};

/// The size at which the screen opens, in characters and in lines.
constexpr int kColumns = 120;
constexpr int kLines = 34;

constexpr Bilingual kBytesSoFar{"Bytes: %1", "Byte: %1"};
constexpr Bilingual kLogsKept{"What is there was read and is kept in %2. Bytes: %1.",
                              "Ciò che c'è è stato letto ed è conservato in %2. Byte: %1."};
constexpr Bilingual kNotReadNotErased{"Nothing was erased: the logs could not be read first",
                                      "Nulla è stato cancellato: non si potevano leggere i log"};
constexpr Bilingual kNoRows{
    "Nothing was copied: the table has no rows. Download the logs or open a file first.",
    "Nulla è stato copiato: la tabella non ha righe. Scaricare prima i log o aprire un file."};
constexpr Bilingual kCopied{"Rows copied: %1", "Righe copiate: %1"};
constexpr Bilingual kNothingToPrint{
    "There is nothing to print: download the logs or open a file first.",
    "Non c'è nulla da stampare: scaricare prima i log o aprire un file."};

}  // namespace

Download::Download(link::Link& link, ProgramState& program, QWidget* parent)
    : Screen(parent),
      data(link, program),
      link_(link),
      program_(program),
      ui_(std::make_unique<Ui::Download>()) {
    ui_->setupUi(this);
    ui_->dwl_txt->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    show_span_panel(false);
    joints().follow(this);
    tmpfile_ = ui_->tmpfile->text();
    joints().text(ui_->tmpfile, tmpfile_);
    joints().text(ui_->nome_file, data.file_name());
    add_keys();
    connect_buttons();
    connect_table();
    take_exit(ui_->cmdexit);
    data.on_bytes = [this](qsizetype bytes) { show_bytes(bytes); };
}

Download::~Download() = default;

QSize Download::sizeHint() const {
    return {fontMetrics().averageCharWidth() * kColumns, fontMetrics().height() * kLines};
}

void Download::Form_Load() {
    set_tooltips(this, download_tooltips(), program_.texts);
    set_key_words(this, download_key_words(), program_.texts);
    ui_->record_table->show_texts(program_.texts);
    // The logged text brings headers of its own, so these are not shown anywhere.
    static_cast<void>(column_headers(link_.last_answer()));
}

void Download::Form_Activate() {
    handle("Form_Activate", [this] { link_.send(link::command::kMeterDevice); });
}

void Download::add_keys() {
    for (const char* name : kToolbarKeys) {
        const QString key = QString::fromLatin1(name);
        ui_->Toolbar1->addAction(key)->setObjectName(key);
    }
    const auto add = [this](const char* name, void (Download::*work)()) {
        const auto* key = findChild<QAction*>(QString::fromLatin1(name));
        add_key(key, [this, work] { (this->*work)(); });
    };
    // "dwl_c", "dwl_m", "to_ana" and "to_dig" are shown and do nothing.
    add("open", &Download::cmdrecall_Click);
    add("save", &Download::cmdsave_Click);
    add("delete", &Download::cmddelete_Click);
    add("dwl", &Download::cmddownload_Click);
    add("stampa", &Download::createdoc);
    take_toolbar(ui_->Toolbar1);
}

void Download::connect_buttons() {
    const auto click = [this](QPushButton* button, const char* name, void (Download::*handler)()) {
        when(button, &QPushButton::clicked, name, [this, handler] { (this->*handler)(); });
    };
    click(ui_->cmddownload, "cmddownload_Click", &Download::cmddownload_Click);
    click(ui_->cmddownloadlast, "cmddownloadlast_Click", &Download::cmddownloadlast_Click);
    click(ui_->cmdclearall, "cmdclearall_Click", &Download::cmdclearall_Click);
    click(ui_->cmdclearlast, "cmdclearlast_Click", &Download::cmdclearlast_Click);
    click(ui_->cmddatain, "cmddatain_Click", &Download::cmddatain_Click);
    click(ui_->cmdspan, "cmdspan_Click", &Download::cmdspan_Click);
    connect(ui_->span_chart, &SpanView::point_clicked, this, &Download::show_span_point);
}

void Download::connect_table() {
    // A text that nobody looks at as a table is not taken to pieces.
    connect(ui_->pages, &QTabWidget::currentChanged, this, &Download::fill_table);
    connect(ui_->record_table, &RecordTable::copied, this, [this](int rows) {
        if (rows == 0) program_.costs.tell_each(kNoRows);
        Q_EMIT progress(rows == 0 ? QString() : program_.texts.pick(kCopied).arg(rows));
    });
}

void Download::cmddownload_Click() {
    download(link::command::kAllLogs);
}

void Download::cmddownloadlast_Click() {
    download(link::command::kLastLog);
}

void Download::cmdclearall_Click() {
    if (may_erase(ui_->cmdclearall, link::command::kAllLogs))
        link_.send(link::command::kDeleteAllLogs);
}

void Download::cmdclearlast_Click() {
    if (may_erase(ui_->cmdclearlast, link::command::kLastLog))
        link_.send(link::command::kDeleteLastLog);
}

/// What `key` erases is what `command` fetches.
bool Download::may_erase(const QPushButton* key, const QString& command) {
    if (!program_.corrected.keep_copy || !link_.can_send()) return true;
    const std::optional<QString> kept = data.keep_copy_of(command);
    Q_EMIT progress(QString());
    if (!kept) {
        program_.costs.tell_each(kNotReadNotErased);
        return false;
    }
    return ask_first(this, QStringLiteral("M47"),
                     key->toolTip() + u'\r' + program_.texts.message(kContinue),
                     program_.texts.pick(kLogsKept).arg(QString::number(QFileInfo(*kept).size()),
                                                        QDir::toNativeSeparators(*kept)));
}

void Download::cmddatain_Click() {
    link_.send(link::command::kStartLog);
}

void Download::download(const QString& command) {
    const NameFault fault = data.download(command, tmpfile_);
    Q_EMIT progress(QString());
    if (fault == NameFault::none) {
        show_text();
        return;
    }
    show_message(QMessageBox::NoIcon, QStringLiteral("Data Error"),
                 fault == NameFault::empty ? kDefineTemporaryName : kFilenameError);
    ui_->tmpfile->setFocus();
}

void Download::show_bytes(qsizetype bytes) {
    Q_EMIT progress(program_.texts.pick(kBytesSoFar).arg(bytes));
}

void Download::show_text() {
    ui_->dwl_txt->setPlainText(QString::fromLatin1(data.text()));
    table_filled_ = false;
    fill_table();
}

void Download::fill_table() {
    if (table_filled_ || ui_->pages->currentWidget() != ui_->table_page) return;
    ui_->record_table->set_text(data.text());
    table_filled_ = true;
}

void Download::show_message(QMessageBox::Icon icon, const QString& title, int number) {
    show_message_box(this, icon, title, program_.texts.message(number));
}

QString Download::ask_file(const std::function<void(QFileDialog&)>& set_up) {
    QFileDialog dialog(this);
    // Any name will do: what cannot be opened is told by nothing being shown.
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilter(QStringLiteral("(*.dwl)"));
    dialog.setDefaultSuffix(QStringLiteral("dwl"));
    set_up(dialog);
    return ask_for_file(dialog, program_, FilePurpose::download);
}

void Download::cmdrecall_Click() {
    const QString path =
        ask_file([](QFileDialog& dialog) { dialog.setAcceptMode(QFileDialog::AcceptOpen); });
    if (path.isEmpty()) return;
    data.open(path);
    show_text();
}

void Download::cmdsave_Click() {
    if (data.text().isEmpty()) {
        show_message(QMessageBox::Critical, QStringLiteral("Error"), kNoDataDownload);
        return;
    }
    const QString path = ask_file([](QFileDialog& dialog) {
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        dialog.setOption(QFileDialog::DontConfirmOverwrite);
        // An existing file is overwritten without a question: what is proposed is none.
        dialog.selectFile(
            QStringLiteral("logged-%1.dwl")
                .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"))));
    });
    if (path.isEmpty()) return;
    data.save(path);
}

void Download::cmddelete_Click() {
    const QString path = ask_file([this](QFileDialog& dialog) {
        dialog.setAcceptMode(QFileDialog::AcceptOpen);
        dialog.setWindowTitle(ui_->Toolbar1->actions().at(2)->toolTip());
        dialog.setLabelText(QFileDialog::Accept, dialog.windowTitle());
    });
    if (path.isEmpty()) return;
    data.remove(path);
    show_text();
}

void Download::cmdspan_Click() {
    show_span_panel(true);
    ui_->pages->setCurrentWidget(ui_->span_panel);
    ui_->span_point->clear();
    ui_->span_chart->show_points(read_span(link_), program_.texts);
}

void Download::show_span_panel(bool on) {
    ui_->pages->setTabVisible(ui_->pages->indexOf(ui_->span_panel), on);
}

void Download::show_span_point(int row) {
    ui_->span_point->setText(
        span_point_text(ui_->span_chart->points(), static_cast<std::size_t>(row)));
}

void Download::createdoc() {
    if (data.text().trimmed().isEmpty()) program_.costs.tell_each(kNothingToPrint);
    print_text(this, windowTitle(), simulated_mark(program_) + print_page(data.text()),
               program_.texts);
}

}  // namespace m47::logger
