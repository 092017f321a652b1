// SPDX-License-Identifier: GPL-3.0-or-later
// A measurement as a line for other programs.
#include "measurement_output.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include "row_time.h"

namespace m47::measurement {

class MeasurementOutputTest : public QObject {
    Q_OBJECT

    static constexpr int kOneHour = 3600;

    static Measurement whole() {
        Measurement made;
        made.instant = row_midnight("21/11/26").value() + 36001;
        made.program = {"A \"B\", C", "007"};
        made.mode = MeasureMode::digital;
        made.frequency = 11778.0F;
        made.oscillator = 10600.0F;
        made.reading(Quantity::level) = {-50.3F, RangeMark::none};
        made.reading(Quantity::ber) = {1e-8F, RangeMark::below};
        made.reading(Quantity::noise) = {20.0F, RangeMark::above};
        made.unit = kDbm;
        made.verdict = Verdict::fail;
        return made;
    }
    static QByteArray line(OutputFormat format, const Measurement& measured = whole()) {
        return output_line(format, measured, kOneHour);
    }

  private Q_SLOTS:
    void separated_by_tab() {
        QCOMPARE(output_header(OutputFormat::tsv),
                 QByteArray("time\tplan\tprogram\tmode\tfrequency\toscillator\tunit\tlevel\t"
                            "level_mark\tber\tber_mark\tmer\tmer_mark\tpvber\tpvber_mark\tcfo\t"
                            "cfo_mark\tcn\tcn_mark\tnoise\tnoise_mark\tverdict\n"));
        QCOMPARE(line(OutputFormat::tsv),
                 QByteArray("2026-11-21T10:00:01+01:00\tA \"B\", C\t007\tdigital\t11778\t10600\t"
                            "dBm\t-50.3\t\t1e-08\t<\t\t\t\t\t\t\t\t\t20\t>\tFAIL\n"));
        Measurement foreign;
        foreign.program = {"A\tB\nC\rD", "001"};
        QCOMPARE(line(OutputFormat::tsv, foreign), "\tA B C D\t001" + QByteArray(19, '\t') + '\n');
    }

    void separated_by_comma() {
        QCOMPARE(output_header(OutputFormat::csv),
                 output_header(OutputFormat::tsv).replace('\t', ',').replace("\n", "\r\n"));
        QCOMPARE(line(OutputFormat::csv),
                 QByteArray("2026-11-21T10:00:01+01:00,\"A \"\"B\"\", C\",007,digital,11778,10600,"
                            "dBm,-50.3,,1e-08,<,,,,,,,,,20,>,FAIL\r\n"));
        Measurement foreign;
        for (const char* text : {"A\nB", "A\rB", "A\"B", "A,B"}) {
            foreign.program = {QLatin1String(text), {}};
            const QByteArray quoted = QByteArray(text).replace('"', "\"\"");
            QCOMPARE(line(OutputFormat::csv, foreign),
                     ",\"" + quoted + '"' + QByteArray(20, ',') + "\r\n");
        }
    }

    void an_object_a_line() {
        QCOMPARE(output_header(OutputFormat::json), QByteArray());
        const QByteArray text = line(OutputFormat::json);
        QCOMPARE(text.count('\n'), 1);
        const QJsonObject object = QJsonDocument::fromJson(text).object();
        QCOMPARE(object.size(), 22);
        QCOMPARE(object["time"].toString(), QString("2026-11-21T10:00:01+01:00"));
        QCOMPARE(object["plan"].toString(), QString("A \"B\", C"));
        QCOMPARE(object["program"].toString(), QString("007"));
        QCOMPARE(object["frequency"], QJsonValue(11778.0));
        QCOMPARE(object["level"], QJsonValue(-50.3));
        QVERIFY(object["level_mark"].isNull());
        QCOMPARE(object["ber"], QJsonValue(1e-8));
        QCOMPARE(object["ber_mark"].toString(), QString("<"));
        QVERIFY(object["mer"].isNull());
        QCOMPARE(object["noise_mark"].toString(), QString(">"));
        QCOMPARE(object["verdict"].toString(), QString("FAIL"));
    }

    void nothing_is_made_up() {
        const QJsonObject object =
            QJsonDocument::fromJson(line(OutputFormat::json, Measurement())).object();
        QCOMPARE(object.size(), 22);
        for (const QString& name : object.keys()) QVERIFY2(object[name].isNull(), qPrintable(name));
        Measurement marked;
        marked.reading(Quantity::mer).mark = RangeMark::below;
        QVERIFY(!line(OutputFormat::csv, marked).contains('<'));
    }

    void the_offset_is_told() {
        const auto time = [](int offset) {
            return output_line(OutputFormat::tsv, whole(), offset).split('\t').value(0);
        };
        QCOMPARE(time(0), QByteArray("2026-11-21T10:00:01+00:00"));
        QCOMPARE(time(-12600), QByteArray("2026-11-21T10:00:01-03:30"));
        QCOMPARE(time(2 * kOneHour), QByteArray("2026-11-21T10:00:01+02:00"));
    }
};

}  // namespace m47::measurement

QTEST_GUILESS_MAIN(m47::measurement::MeasurementOutputTest)
#include "measurement_output_test.moc"
