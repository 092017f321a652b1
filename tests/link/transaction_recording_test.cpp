// SPDX-License-Identifier: GPL-3.0-or-later
// The line is written down while it is used, and nobody notices.
#include <QFile>

#include "recording_file.h"
#include "recording_port.h"
#include "transaction_test.h"

namespace m47::link {
namespace {

/// Keeps a recording in memory, as much of it as there is room for.
class KeptLines : public RecordingSink {
  public:
    explicit KeptLines(QByteArray& kept, int room = 1000) : kept_(kept), room_(room) {}
    std::error_code put(std::string_view lines) noexcept override {
        if (room_-- <= 0) return std::make_error_code(std::errc::no_space_on_device);
        kept_.append(lines.data(), qsizetype(lines.size()));
        return {};
    }

  private:
    QByteArray& kept_;
    int room_;
};

/// A line of which a recording is made.
struct Recorded {
    Recorded(FakePort& fake, VirtualClock& clock, LinkView& view)
        : recorder(clock), port(fake, recorder), link(port, clock, view) {
        link.port_connected = true;
        link.port_number = 2;
    }
    void start(int room = 1000) {
        recorder.start(std::make_unique<KeptLines>(kept, room), "m47-remote 1 Qt 2");
    }
    /// What was recorded behind the first line.
    QByteArray events() const { return kept.mid(kept.indexOf('\n') + 1); }

    QByteArray kept;
    LineRecorder recorder;
    RecordingPort port;
    Link link;
};

/// The lines of the page's example.
QByteArray example_of_page() {
    QFile page(PROJECT_FOLDER "/docs/trace-file.md");
    if (!page.open(QIODevice::ReadOnly)) return {};
    const QByteArray text = page.readAll();
    QByteArray lines;
    for (const QByteArray& line : text.mid(text.indexOf("## An example")).split('\n'))
        if (line.startsWith("    PORT ") || !lines.isEmpty()) {
            if (!line.startsWith("    ")) break;
            lines += line.trimmed() + '\n';
        }
    return lines;
}

/// The characters that go out in `LEVANL?` and its CR need so long.
constexpr double kSent = 8 * kTick;

}  // namespace

void TransactionTest::a_recording_tells_what_happened_as_the_page_about_it() {
    Recorded line(*port_, *clock_, *view_);
    line.start();
    port_->feed("LEVANL?\r73.", kSent + 0.01);
    port_->feed("5\rOK\r", kSent + 0.02);
    QCOMPARE(line.link.ask("LEVANL?"), std::optional<QString>("73.5"));
    line.recorder.user("barra_ButtonClick single_acq");
    port_->vanish_in(3.5 * kTick);
    QCOMPARE(line.link.ask("VER?"), std::optional<QString>());
    QVERIFY(!line.link.port_connected);
    QVERIFY2(line.events() == example_of_page(), line.events().constData());
}

void TransactionTest::a_recording_has_every_byte_in_printable_form() {
    QByteArray all;
    for (int code = 0; code < 256; ++code) all += char(code);
    const QByteArray text = printable(all);
    QVERIFY(text.startsWith("<00><01><02><03><04><05><06><07><08><TAB><LF><0B><0C><CR><0E>"));
    QVERIFY(text.contains("<1F> !\"#"));
    QVERIFY(text.contains("9:;<LT>=>?@"));
    QVERIFY(text.endsWith("z{|}~<7F>" + printable(all.mid(0x80))));
    QVERIFY(text.contains("<80><81>") && text.endsWith("<FE><FF>"));
    Recorded line(*port_, *clock_, *view_);
    line.start();
    port_->answer = [](const QByteArray& command) { return FakePort::good(command, "7\xB5<\n5"); };
    QVERIFY(line.link.ask("A?"));
    QVERIFY2(line.events().contains("TX ") &&
                 line.events().contains(" A?<CR>7<B5><LT><LF>5<CR>OK<CR>\n"),
             line.kept.constData());
}

void TransactionTest::a_recording_says_how_it_began_and_ended() {
    Recorded line(*port_, *clock_, *view_);
    answer_with("73.5");
    // Nothing of what is before or behind it.
    QVERIFY(line.link.ask("BEFORE?"));
    clock_->sleep(3);
    line.start();
    QVERIFY(line.recorder.recording());
    clock_->sleep(0.0015);
    line.recorder.stop();
    QVERIFY(!line.recorder.recording());
    QVERIFY(line.link.ask("BEHIND?"));
    const QRegularExpression form(
        "^M47TRACE 1 2026-11-21T10:00:0[0-9](Z|[+-][0-9]{2}:[0-9]{2}) m47-remote 1 Qt 2\n"
        "NOTE 1[.]500 1[.]500 recording ended\n$");
    QVERIFY2(form.match(QString::fromUtf8(line.kept)).hasMatch(), line.kept.constData());
    // The next one begins anew.
    line.start();
    QCOMPARE(line.kept.count("M47TRACE"), 2);
    QCOMPARE(line.kept.count("recording ended"), 1);
}

void TransactionTest::an_event_of_a_recording_is_one_line() {
    Recorded line(*port_, *clock_, *view_);
    line.start();
    port_->device = "/dev/a\nb\r\x7f\t\u00e8";
    answer_with("1");
    QVERIFY(line.link.ask("A?"));
    line.recorder.note("two\nlines");
    for (const QByteArray& event : line.events().trimmed().split('\n'))
        QVERIFY2(event.startsWith("PORT ") || event.startsWith("RX ") || event.startsWith("TX ") ||
                     event.startsWith("NOTE "),
                 event.constData());
    QVERIFY2(line.events().contains("open /dev/a b   \u00e8 38400,n,8,2\n"), line.kept.constData());
}

void TransactionTest::a_port_that_does_not_open_is_recorded_with_its_reason() {
    Recorded line(*port_, *clock_, *view_);
    line.start();
    port_->open_fault = PortFault::no_permission;
    QVERIFY(!line.link.ask("VER?"));
    QCOMPARE(line.events(), QByteArray("PORT 0.000 0.000 open-failed no-permission\n"));
}

void TransactionTest::a_recording_that_fails_stops_nothing_data() {
    QTest::addColumn<int>("room");
    for (int room = 0; room <= 6; ++room) QTest::addRow("%d lines", room) << room;
}

/// The same transaction with a recording that ends in it and with none at all.
void TransactionTest::a_recording_that_fails_stops_nothing() {
    QFETCH(const int, room);
    answer_with("73.5");
    run("LEVANL?");
    const double took = clock_->elapsed();
    const QByteArray sent = port_->written;
    const int pumps = view_->pumps;

    make();
    answer_with("73.5");
    // Told of the last line too, which the end of the recording writes.
    QStringList told;
    Recorded line(*port_, *clock_, *view_);
    line.recorder.on_failed = [&](const QString& reason) { told += reason; };
    line.start(room);
    QCOMPARE(line.link.ask("LEVANL?"), last_);
    QCOMPARE(clock_->elapsed(), took);
    QCOMPARE(port_->written, sent);
    QCOMPARE(view_->pumps, pumps);
    // Opened, sent, answered, closed, behind the first line.
    const bool whole = room >= 5;
    QCOMPARE(line.recorder.recording(), whole);
    QCOMPARE(told, whole ? QStringList() : QStringList("No space left on device"));
    QCOMPARE(line.kept.count('\n'), whole ? 5 : room);
}

void TransactionTest::a_recording_in_a_file_is_there_line_by_line() {
    const QTemporaryDir folder;
    const QString path = folder.filePath("line.trace");
    const auto content = [&path] {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    QFile old(path);
    QVERIFY(old.open(QIODevice::WriteOnly) && old.write("something that was longer\n") > 0);
    old.close();
    Recorded line(*port_, *clock_, *view_);
    auto file = std::make_unique<RecordingFile>(path);
    QVERIFY(!file->fault());
    QCOMPARE(content(), QByteArray());
    line.recorder.start(std::move(file), "m47-remote");
    line.recorder.note("seen at once");
    QVERIFY2(content().endsWith("\nNOTE 0.000 0.000 seen at once\n"), content().constData());
    QVERIFY(RecordingFile(folder.filePath("none/line.trace")).fault());
    RecordingFile full("/dev/full");
    QVERIFY(!full.fault());
    QCOMPARE(full.put("x\n"), std::make_error_code(std::errc::no_space_on_device));
}

}  // namespace m47::link
