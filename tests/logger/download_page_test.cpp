// SPDX-License-Identifier: GPL-3.0-or-later
// What is shown of a download.
#include "download_test.h"

namespace m47::logger {

void DownloadTest::typing_into_the_text_changes_nothing() {
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

void DownloadTest::a_long_download_shows_how_far_it_is() {
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
        QVERIFY2(text.startsWith(QStringLiteral("Bytes: ")), qPrintable(text));
        QVERIFY(text.mid(7).toLongLong() >= last);
        last = text.mid(7).toLongLong();
    }
    QVERIFY(last > 2000);
    QVERIFY(QSet<int>(values.begin(), values.end()).size() > 5);
    QCOMPARE(status->text(), QString());
    QCOMPARE(bar->value(), 0);
}

void DownloadTest::a_line_that_drops_half_way_leaves_one_empty_line() {
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

void DownloadTest::noise_on_the_line_reaches_the_file_as_it_came() {
    start({QStringLiteral("--logger-bytes"), QStringLiteral("3000"), QStringLiteral("--seed"),
           QStringLiteral("5"), QStringLiteral("--fault"), QStringLiteral("noise"),
           QStringLiteral("--fault-on"), QStringLiteral("DATALASTOUT")});
    for (int round = 0; round < 5; ++round) {
        click("cmddownloadlast");
        QCOMPARE(content_of(in_folder("DWL.TMP")),
                 sent_for(QStringLiteral("DATALASTOUT")) + "\r\n");
    }
}

void DownloadTest::records_are_shown_as_a_table_and_copied() {
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

void DownloadTest::a_span_is_a_curve_and_a_click_reads_a_point() {
    start({});
    click("cmdspan");
    QCOMPARE(new_commands(), QStringList({"outputmode 1", "spanout"}));
    QVERIFY(find<QWidget>("span_panel")->isVisible());
    auto* chart = find<SpanView>("span_chart")->findChild<QCustomPlot*>();
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
        const QPoint place(
            qRound(chart->xAxis->coordToPixel(row)),
            qRound(chart->yAxis->coordToPixel(chart->graph(0)->data()->at(row - 1)->value)));
        QTest::mouseClick(chart, Qt::LeftButton, {}, place);
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

void DownloadTest::the_page_is_printed() {
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

void DownloadTest::a_hundred_thousand_lines_are_shown_without_lag() {
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
    QCOMPARE(view->cursorForPosition(view->viewport()->rect().bottomLeft()).blockNumber(), 100000);
    QCOMPARE(screen_->data.text(), text);
}

}  // namespace m47::logger
