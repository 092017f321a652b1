// SPDX-License-Identifier: GPL-3.0-or-later
// Plans that leave and come by the command line.
#include <sys/stat.h>

#include <QFile>
#include <QTest>

#include "process_support.h"

namespace m47 {

class PlanFilesTest : public QObject {
    Q_OBJECT

    const QString kDatabase = QStringLiteral("VKDM47_03.mdb");

    static Ending import(EmptyStand& stand, const QString& option) {
        return stand.remote.run({"--create-database", "--import-plan", option});
    }
    static Ending import(EmptyStand& stand, const QString& option, const QByteArray& text) {
        stand.write(option.section('=', 1), text);
        return import(stand, option);
    }
    static Ending export_plan(EmptyStand& stand, const QString& option,
                              const QStringList& more = {}) {
        return stand.remote.run(QStringList{"--export-plan", option} + more);
    }
    /// A database as it is made, with "PLAN 1".
    void begin(EmptyStand& stand) const {
        QCOMPARE(export_plan(stand, "PLAN 1=first.tsv", {"--create-database"}).status, 0);
        QVERIFY(QFile::exists(stand.path(kDatabase)));
    }

  private Q_SLOTS:
    void there_and_back() {
        EmptyStand stand;
        const Ending came = import(stand, "Roof=in.csv",
                                   "pg_num,frequenza,oscillator,sat_ad,lev_min\n"
                                   "3,11778,10600,1,-75\n7,1000.5,,0,20\n");
        QCOMPARE(came.err, QByteArray());
        QCOMPARE(came.status, 0);
        QCOMPARE(came.out, QByteArray("ROOF: programs added: 2 of 2.\n"));

        QCOMPARE(export_plan(stand, "roof=out.tsv").status, 0);
        const QList<QStringList> rows = rows_of(stand.files().value("out.tsv"));
        QCOMPARE(rows.size(), 3);
        const auto cell = [&](int row, const char* name) {
            return rows[row].value(rows[0].indexOf(QLatin1String(name)));
        };
        QCOMPARE(cell(1, "nome"), QString("ROOF"));
        QCOMPARE(cell(1, "pg_num"), QString("003"));
        QCOMPARE(cell(1, "oscillator"), QString("10600"));
        // Nobody knows the unit of the meter here: the limits are the file's.
        QCOMPARE(cell(1, "lev_min"), QString("-75"));
        QCOMPARE(cell(2, "frequenza"), QString("1000.5"));

        // What was exported is the same plan again, by comma too.
        QCOMPARE(import(stand, "B=out.tsv").status, 0);
        QCOMPARE(export_plan(stand, "B=out.CSV").status, 0);
        QCOMPARE(stand.files().value("out.CSV").replace("\nB,", "\nROOF,"),
                 stand.files().value("out.tsv").replace('\t', ','));
    }

    void what_is_empty_stays_empty() {
        EmptyStand stand;
        begin(stand);
        stand.write("gaps.csv",
                    stand.files().value("first.tsv").split('\n').first().replace('\t', ',') +
                        "\nG,001,1000.0,1,0,0,,,73,73,0,0,,0,0,,,,,,,,,\n"
                        "G,002,,0,1,1,27500,36,73,73,0,0,05,1,1,45,,1,,,3E-2,,0.5,10600\n"
                        "G,003,,1,0,0,,,73,73,0,0,,0,0,20,120,,,,,,,\n");
        for (const char* name : {"first.tsv", "gaps.csv"}) {
            const QByteArray text = stand.files().value(name);
            const QString plan = text.startsWith("nome\t") ? "PLAN 2" : "G";
            QCOMPARE(import(stand, plan + '=' + name).out,
                     QStringLiteral("%1: programs added: %2 of %2.\n")
                         .arg(plan)
                         .arg(text.count('\n') - 1)
                         .toUtf8());
            QCOMPARE(export_plan(stand, plan + "=back" + name).status, 0);
            QCOMPARE(stand.files().value(QStringLiteral("back") + name).replace("PLAN 2", "PLAN 1"),
                     text);
        }
        const Ending numberless = import(stand, "N=n.csv", "pg_num,frequenza\n,abc\n");
        QVERIFY2(numberless.out.contains("\nLine 2: Left out"), numberless.out);
    }

    void nothing_is_overwritten_unasked() {
        EmptyStand stand;
        begin(stand);
        stand.write("a.tsv", "mine");
        const Ending refused = export_plan(stand, "PLAN 1=a.tsv");
        QCOMPARE(refused.status, 5);
        QCOMPARE(refused.err,
                 QByteArray("m47-remote: a.tsv is there already: --overwrite replaces it\n"));
        QCOMPARE(stand.files().value("a.tsv"), QByteArray("mine"));
        QCOMPARE(export_plan(stand, "PLAN 1=a.tsv", {"--overwrite"}).status, 0);
        QCOMPARE(stand.files().value("a.tsv"), stand.files().value("first.tsv"));

        const QByteArray before = stand.files().value(kDatabase);
        const Ending database = export_plan(stand, "PLAN 1=./" + kDatabase, {"--overwrite"});
        QCOMPARE(database.status, 2);
        QCOMPARE(stand.files().value(kDatabase), before);
        QCOMPARE(mkfifo(qPrintable(stand.path("pipe")), 0600), 0);
        QCOMPARE(export_plan(stand, "PLAN 1=pipe", {"--overwrite"}).err,
                 QByteArray("m47-remote: cannot write pipe: not a plain file\n"));
    }

    void what_cannot_be_used() {
        EmptyStand stand;
        begin(stand);
        QVERIFY(QFile::remove(stand.path("first.tsv")));
        stand.write("other.txt", "name,colour\nsky,blue\n");
        stand.write("long.tsv", "frequenza\n" + QByteArray(1024 * 1024, '1'));
        const auto before = stand.files();
        const Ending no_plan = export_plan(stand, "NONE=a.tsv");
        QCOMPARE(no_plan.status, 4);
        QCOMPARE(no_plan.err, QByteArray("m47-remote: there is no plan NONE\n"));
        const Ending no_folder = export_plan(stand, "PLAN 1=no/a.tsv");
        QCOMPARE(no_folder.status, 5);
        QVERIFY(no_folder.err.startsWith("m47-remote: cannot write no/a.tsv: "));
        const auto told = [&](const char* name) {
            const Ending ending = import(stand, QStringLiteral("NEW=") + name);
            return QByteArray::number(ending.status) + ' ' + ending.out + ending.err;
        };
        QVERIFY(told("missing").startsWith("5 m47-remote: cannot read missing: "));
        QCOMPARE(told("other.txt"),
                 QByteArray("5 m47-remote: cannot read other.txt: it is neither a "
                            "plan nor a DVB scan table\n"));
        QCOMPARE(told("long.tsv"),
                 QByteArray("5 m47-remote: cannot read long.tsv: it is longer than "
                            "1 MiB, which no plan is\n"));
        QCOMPARE(told("."), QByteArray("5 m47-remote: cannot read .: not a plain file\n"));
        QCOMPARE(stand.files(), before);
    }

    void what_was_left_out_is_told() {
        EmptyStand stand;
        const Ending some = import(stand, "A=a.csv",
                                   "pg_num,frequenza,lnb_volt,colour\n1,1000,0,red\n"
                                   "1,1100,0,\n2,1000,abc,\n3,500,0,\n");
        QCOMPARE(some.status, 7);
        QCOMPARE(some.err, QByteArray());
        const QByteArrayList lines = some.out.split('\n');
        QCOMPARE(lines.size(), 6);
        QCOMPARE(lines[0], QByteArray("A: programs added: 2 of 4."));
        QCOMPARE(lines[1], QByteArray("Columns not used: colour"));
        QCOMPARE(lines[2],
                 QByteArray("Line 3, program 001: Its number stands twice among these rows."));
        QVERIFY2(lines[3].startsWith("Line 4, program 2: Left out"), lines[3]);
        QVERIFY2(lines[4].startsWith("Line 5, program 003: Corrected: frequenza: 500 "), lines[4]);

        // A plan of nothing is not made, nor is one touched.
        const QByteArray before = stand.files().value(kDatabase);
        for (const char* plan : {"A", "NEW"}) {
            const Ending none = import(stand, QLatin1String(plan) + QStringLiteral("=b.csv"),
                                       "frequenza,lnb_volt\n1000,abc\n");
            QCOMPARE(none.status, 7);
            QVERIFY2(none.out.startsWith(plan + QByteArray(": programs added: 0 of 1.\n")),
                     none.out);
            QCOMPARE(stand.files().value(kDatabase), before);
        }
        QCOMPARE(export_plan(stand, "NEW=c.csv").status, 4);
    }

    void channels_of_no_satellite_are_counted() {
        EmptyStand stand;
        const Ending some = import(stand, "A=mixed",
                                   "[CHANNEL]\nDELIVERY_SYSTEM = DVBS\nFREQUENCY = 10719000\n"
                                   "POLARIZATION = VERTICAL\nSYMBOL_RATE = 27500000\n"
                                   "[CHANNEL]\nDELIVERY_SYSTEM = DVBT\nFREQUENCY = 594000000\n");
        QCOMPARE(some.out, QByteArray("A: programs added: 1 of 1.\n"
                                      "Terrestrial and cable channels left out: 1.\n"));
        const Ending none = import(stand, "B=roof", "T 594000000 8MHz\nC 121000000 6900000\n");
        QCOMPARE(none.status, 7);
        QCOMPARE(none.out, QByteArray("B: programs added: 0 of 0.\n"
                                      "Terrestrial and cable channels left out: 2.\n"));
    }
};

}  // namespace m47

QTEST_GUILESS_MAIN(m47::PlanFilesTest)
#include "plan_files_test.moc"
