// SPDX-License-Identifier: GPL-3.0-or-later
// Sites as a file between colleagues: what is written is read, checked against the schema, and
// merged without a loss.
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>
#include <cstring>
#include <limits>

#include "site_file.h"
#include "site_merge.h"
#include "sites_support.h"
#include "what_got_worse.h"

namespace m47::sites {

class ExchangeTest : public QObject {
    Q_OBJECT

  private:
    static Texts texts(int language = kEnglish) {
        Texts made;
        made.language = language;
        return made;
    }

    /// Two sites, three visits; one of them runs.
    static SiteFile two_sites() {
        SiteFile file;
        for (const char* name : {"Città", "B \"2\""}) {
            SiteWithVisits whole{a_site(QString::fromUtf8(name)), {}};
            for (int k = 0; k < (file.empty() ? 2 : 1); ++k) {
                VisitWithRows visit{a_visit(whole.site, 24 * k), {}};
                if (k == 0) visit.visit.ended = Instant{visit.visit.begun.utc + 1.0 / 3, -3600};
                for (int row = 0; row < 5; ++row)
                    visit.rows.push_back(
                        a_row(visit.visit, row, QStringLiteral("00%1").arg(row), 12.4F));
                visit.rows.back().measurement = {};
                visit.rows.back().measurement.instant = visit.rows.back().instant.wall();
                whole.visits.push_back(visit);
            }
            file.push_back(whole);
        }
        return file;
    }

    static QString refusal(const QByteArray& bytes) {
        const SiteFileRead read = read_site_file(bytes);
        if (!read.refused) return {};
        return read.refused->in(texts());
    }

    static QList<QUuid> ids(const SiteFile& file) {
        QList<QUuid> found;
        for (const SiteWithVisits& whole : file) found += whole.site.id;
        return found;
    }

    /// The store's content as a file has it, in the order of the store.
    static QByteArray content(const SiteStore& store) {
        QList<QUuid> all;
        for (const Site& site : store.sites()) all += site.id;
        return site_file_bytes(sites_of(store, all));
    }

    /// `change` made to the JSON of a good file.
    static QByteArray with(
        const std::function<void(QJsonObject& row, QJsonObject& visit)>& change) {
        QJsonObject file = QJsonDocument::fromJson(site_file_bytes(two_sites())).object();
        QJsonArray sites = file["sites"].toArray();
        QJsonObject site = sites[0].toObject();
        QJsonArray visits = site["visits"].toArray();
        QJsonObject visit = visits[0].toObject();
        QJsonArray rows = visit["measurements"].toArray();
        QJsonObject row = rows[0].toObject();
        change(row, visit);
        if (visit.contains("measurements") && visit["measurements"].isArray()) {
            rows[0] = row;
            visit["measurements"] = rows;
        }
        visits[0] = visit;
        site["visits"] = visits;
        sites[0] = site;
        file["sites"] = sites;
        return QJsonDocument(file).toJson();
    }

    static QByteArray with_row(const char* member, const QJsonValue& value) {
        return with([&](QJsonObject& row, QJsonObject&) { row[QLatin1String(member)] = value; });
    }

    /// What a validator of another maker says of each of `files` against the schema, a line each:
    /// "valid", or what is wrong.
    static QStringList validated(const QByteArrayList& files) {
        QProcess validator;
        validator.start(QStringLiteral("python3"),
                        {QStringLiteral("-c"),
                         QStringLiteral("import json, sys, jsonschema\n"
                                        "schema = json.load(open(sys.argv[1]))\n"
                                        "jsonschema.Draft7Validator.check_schema(schema)\n"
                                        "validator = jsonschema.Draft7Validator(schema)\n"
                                        "for file in json.load(sys.stdin):\n"
                                        "  wrong = list(validator.iter_errors(file))\n"
                                        "  print(wrong[0].message[:80] if wrong else 'valid')"),
                         QStringLiteral(PROJECT_FOLDER "/docs/site-file.schema.json")});
        validator.write('[' + files.join(',') + ']');
        validator.closeWriteChannel();
        validator.waitForFinished();
        const QByteArray wrong = validator.readAllStandardError();
        // Install python3-jsonschema where this fails.
        if (!wrong.isEmpty()) return {QString::fromUtf8(wrong)};
        return QString::fromUtf8(validator.readAllStandardOutput()).trimmed().split(u'\n');
    }

    /// A number of single precision of any bits.
    static float any_float(QRandomGenerator& chance) {
        float number = 0;
        do {
            const quint32 bits = chance.generate();
            std::memcpy(&number, &bits, sizeof number);
        } while (!std::isfinite(number));
        return number;
    }

    struct Bad {
        const char* name;
        QByteArray bytes;
        QString told;
        bool by_the_schema;  ///< the schema says so too
    };

    static std::vector<Bad> bad_files() {
        std::vector<Bad> files;
        const QString none = QStringLiteral("This is no file of sites");
        const auto at = [](const char* place) {
            return QStringLiteral("'sites[0].visits[0]%1'").arg(QLatin1String(place));
        };
        const auto row = [&](const char* name, const QByteArray& bytes, const QString& told,
                             bool by_the_schema = true) {
            files.push_back({name, bytes, told, by_the_schema});
        };
        row("empty", "", none, false);
        row("no JSON", "<html>", none, false);
        row("cut off", site_file_bytes(two_sites()).chopped(20), none, false);
        row("another JSON", R"({"format": "geo", "version": 1})", none);
        row("an array", "[]", none);
        row("deep", QByteArray(100000, '['), none, false);
        row("later", R"({"format": "m47-sites", "version": 2, "more": 1})", "later version");
        row("no version", R"({"format": "m47-sites"})", "'version'");
        row("half a version", R"({"format": "m47-sites", "version": 1.5})", "'version'");
        row("sites no list", R"({"format": "m47-sites", "version": 1, "sites": {}})", "'sites'");
        row("no site", R"({"format": "m47-sites", "version": 1, "sites": [7]})", "'sites[0]'");
        row("a member twice", R"({"format": "m47-sites", "version": 1, "sites": [], "sites" : []})",
            "'sites' twice, the second time at byte 52", false);
        // The name may stand behind a quote in a text, and with blanks before its colon.
        row("twice behind a quote",
            "{\"format\": \"m47-sites\", \"version\": 1, \"sites\": "
            "[{\"name\": \"a\\\": {\", \"name\" :\"b\"}]}",
            "'name' twice", false);
        row("more than known", with_row("colour", "red"), at(".measurements[0].colour"));
        row("no id", with_row("id", QJsonValue()), at(".measurements[0].id"));
        row("null id", with_row("id", "00000000-0000-0000-0000-000000000000"), "[0].id'");
        row("id in braces", with_row("id", "{2f6a5f3e-6a0c-4f0c-9a57-0c8f6f1f7a10}"), "[0].id'");
        row("id in capitals", with_row("id", "2F6A5F3E-6A0C-4F0C-9A57-0C8F6F1F7A10"), "[0].id'");
        row("unit", with_row("unit", "volt"), "[0].unit'");
        row("mode", with_row("mode", 3), "[0].mode'");
        row("verdict", with_row("verdict", "pass"), "[0].verdict'");
        row("frequency", with_row("frequency", 1e39), "[0].frequency'");
        row("text for a number", with_row("frequency", "11778"), "[0].frequency'");
        row("reading", with_row("readings", QJsonObject{{"level", 58.3}}), "readings.level'");
        row("no value", with_row("readings", QJsonObject{{"level", QJsonObject()}}),
            "level.value'");
        row("value", with_row("readings", QJsonObject{{"level", QJsonObject{{"value", 1e39}}}}),
            "level.value'");
        row("rate", with_row("readings", QJsonObject{{"ber", QJsonObject{{"value", -1e-9}}}}),
            "ber.value'");
        row("quantity", with_row("readings", QJsonObject{{"colour", QJsonObject{{"value", 1}}}}),
            "readings.colour'");
        row("mark",
            with_row("readings", QJsonObject{{"mer", QJsonObject{{"value", 1}, {"mark", "="}}}}),
            "mer.mark'");
        row("limits", with_row("limits", QJsonObject{{"mer", QJsonObject{{"minimum", "8"}}}}),
            "mer.minimum'");
        row("long text", with_row("plan", QString(10001, u'x')), "[0].plan'");
        row("NUL", with_row("plan", QString(QChar(u'\0'))), "[0].plan'");
        row("instant", with_row("instant", QJsonObject{{"utc", 1e12}, {"offset", 0}}),
            "instant.utc'");
        row("offset", with_row("instant", QJsonObject{{"utc", 0}, {"offset", 0.5}}), ".offset'");
        row("no begin", with([](QJsonObject&, QJsonObject& visit) { visit.remove("begun"); }),
            at(".begun"));
        row("null end", with([](QJsonObject&, QJsonObject& visit) { visit["ended"] = {}; }),
            at(".ended"));
        row("id twice", with([](QJsonObject& one, QJsonObject& visit) {
                one["id"] = visit["measurements"].toArray()[1].toObject()["id"];
            }),
            "comes twice", false);
        row("inf", "{\"format\": \"m47-sites\", \"version\": 1e999}", none, false);
        return files;
    }

  private Q_SLOTS:
    void what_is_written_is_read_to_the_last_bit() {
        SiteFile file = two_sites();
        QRandomGenerator chance(47);
        std::vector<VisitMeasurement>& rows = file[0].visits[0].rows;
        for (int k = 0; k < 2000; ++k) {
            VisitMeasurement row = a_row(file[0].visits[0].visit, k, QString(), any_float(chance));
            row.instant.utc += chance.generateDouble();
            row.measurement.instant = row.instant.wall();
            row.measurement.reading(measurement::Quantity::level).value = any_float(chance);
            row.measurement.reading(measurement::Quantity::ber).value =
                std::fabs(any_float(chance));
            row.measurement.limits[0] = measurement::Limits{chance.generateDouble() * 1e-300, 0.1};
            rows.push_back(row);
        }
        const QByteArray bytes = site_file_bytes(file);
        const SiteFileRead read = read_site_file(bytes);
        QVERIFY2(!read.refused, qPrintable(refusal(bytes)));
        QCOMPARE(site_file_bytes(read.sites), bytes);
        QCOMPARE(read.sites.size(), file.size());
        for (std::size_t s = 0; s < file.size(); ++s) {
            QVERIFY(read.sites[s].site == file[s].site);
            QCOMPARE(read.sites[s].visits.size(), file[s].visits.size());
            for (std::size_t v = 0; v < file[s].visits.size(); ++v) {
                const VisitWithRows& one = file[s].visits[v];
                const VisitWithRows& other = read.sites[s].visits[v];
                QVERIFY(one.visit == other.visit);
                QVERIFY(std::ranges::equal(one.rows, other.rows, same_row));
                for (std::size_t r = 0; r < one.rows.size(); ++r)
                    QCOMPARE(other.rows[r].measurement.instant, one.rows[r].measurement.instant);
            }
        }
    }

    void a_validator_takes_what_is_written_and_what_the_page_shows() {
        QFile page(QStringLiteral(PROJECT_FOLDER "/docs/site-file.md"));
        QVERIFY(page.open(QIODevice::ReadOnly));
        QByteArray example;
        for (const QByteArray& line : page.readAll().split('\n'))
            if (line.startsWith("    ")) example += line + '\n';
        QCOMPARE(refusal(example), QString());
        QCOMPARE(validated({site_file_bytes(two_sites()), site_file_bytes({}), example}),
                 QStringList({"valid", "valid", "valid"}));
    }

    void what_is_none_is_refused_with_one_sentence_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("told");
        for (const Bad& bad : bad_files()) QTest::newRow(bad.name) << bad.bytes << bad.told;
    }
    void what_is_none_is_refused_with_one_sentence() {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, told);
        const QString found = refusal(bytes);
        QVERIFY2(found.contains(told), qPrintable(found));
        QVERIFY(found.endsWith(u'.') || found.endsWith(u')'));
        QVERIFY(found.size() < 300 && !found.contains(u'\n'));
        QVERIFY(read_site_file(bytes).sites.empty());
    }

    void the_schema_refuses_the_same() {
        QByteArrayList files;
        for (const Bad& bad : bad_files())
            if (bad.by_the_schema) files += bad.bytes;
        const QStringList told = validated(files);
        QCOMPARE(told.size(), files.size());
        QVERIFY2(!told.contains("valid"), qPrintable(files.value(told.indexOf("valid"))));
    }

    void what_is_too_large_is_refused_at_once() {
        const QByteArray large(kMostSiteFile + 1, ' ');
        QCOMPARE(refusal(large),
                 QStringLiteral("This file is longer than a file of sites may be."));
        SiteFile file = two_sites();
        file[0].site.name = QString(kMostSiteText + 1, u'x');
        QVERIFY_EXCEPTION_THROWN(site_file_bytes(file), Fault);
        file = two_sites();
        file[0].visits[0].rows.resize(700'000);
        QVERIFY_EXCEPTION_THROWN(site_file_bytes(file), Fault);
    }

    void an_import_twice_changes_nothing() {
        const QTemporaryDir folder;
        const auto store = opened_sites(folder.path());
        const SiteFile file = read_site_file(site_file_bytes(two_sites())).sites;
        const SiteMerge first = plan_merge(file, *store);
        QCOMPARE(merge_text(first, texts()),
                 QStringLiteral("New: 2 sites, 3 visits, 15 measurements. Here already: 0. Not "
                                "alike: 0."));
        QVERIFY(first.changes_anything() && store->sites().empty());
        apply_merge(file, first, *store);
        QCOMPARE(store->sites().size(), 2U);
        const QByteArray after = content(*store);
        const SiteMerge second = plan_merge(file, *store);
        QCOMPARE(second.known, 20);
        QVERIFY(!second.changes_anything() && second.conflicts.empty());
        apply_merge(file, second, *store);
        QCOMPARE(content(*store), after);
        // What was exported here is the same again.
        const SiteFile again = read_site_file(after).sites;
        QCOMPARE(plan_merge(again, *store).known, 20);
        QCOMPARE(sites_of(*store, {ids(file).first(), QUuid::createUuid()}).size(), 1U);
    }

    void what_differs_is_shown_and_chosen() {
        const QTemporaryDir folder;
        const auto store = opened_sites(folder.path());
        SiteFile file = two_sites();
        apply_merge(file, plan_merge(file, *store), *store);
        const QByteArray before = content(*store);
        file[0].site.customer = QStringLiteral("Verdi");
        file[0].visits[0].visit.remarks = QStringLiteral("nuovo");
        VisitMeasurement& row = file[0].visits[1].rows[2];
        row.measurement.reading(measurement::Quantity::mer) = {11.9F, {}};
        row.measurement.limits[2].reset();
        file[1].visits[0].rows.push_back(a_row(file[1].visits[0].visit, 99, "099", 1.0F));
        SiteMerge merge = plan_merge(file, *store);
        QCOMPARE(merge.conflicts.size(), 3U);
        QCOMPARE(merge.new_rows, 1);
        const auto told = [&](std::size_t k, int language = kEnglish) {
            QStringList lines{conflict_title(merge.conflicts[k], texts(language))};
            for (const ConflictLine& line : conflict_lines(merge.conflicts[k], texts(language)))
                lines += line.what + u'|' + line.mine + u'|' + line.theirs;
            return lines;
        };
        QCOMPARE(told(0), QStringList({"Site Città", "Customer|Condominio \"Sole\"|Verdi"}));
        QCOMPARE(told(1, kItalian).mid(1), QStringList({"Note|dopo il temporale|nuovo"}));
        QCOMPARE(told(2).mid(1), QStringList({"MER|>12.4|11.9", "Limits MER|9.5 … |"}));
        QVERIFY(told(2)[0].contains("ASTRA 002"));
        // Nothing was chosen: what is new comes alone.
        apply_merge(file, merge, *store);
        QCOMPARE(plan_merge(file, *store).conflicts.size(), 3U);
        merge = plan_merge(file, *store);
        QCOMPARE(merge.new_rows, 0);
        QVERIFY(!merge.changes_anything());
        for (std::size_t k : {1U, 2U}) merge.conflicts[k].take_theirs = true;
        QVERIFY(merge.changes_anything());
        apply_merge(file, merge, *store);
        const SiteMerge left = plan_merge(file, *store);
        QCOMPARE(left.conflicts.size(), 1U);
        QCOMPARE(left.conflicts[0].id(), file[0].site.id);
        QVERIFY(content(*store) != before);
    }

    void what_came_by_a_file_tells_what_got_worse() {
        const QTemporaryDir folder;
        const auto store = opened_sites(folder.path());
        SiteFile file = two_sites();
        // The second visit at the first site: program 002 has lost 3 dB, 001 has 1 dB less.
        for (VisitMeasurement& row : file[0].visits[1].rows) {
            measurement::Reading& mer = row.measurement.reading(measurement::Quantity::mer);
            if (row.measurement.program.number == "002") mer = {9.4F, {}};
            if (row.measurement.program.number == "001") mer = {11.4F, {}};
        }
        for (SiteWithVisits& whole : file)
            for (VisitWithRows& visit : whole.visits)
                for (VisitMeasurement& row : visit.rows)
                    row.measurement.reading(measurement::Quantity::mer).mark = {};
        apply_merge(file, plan_merge(file, *store), *store);
        const auto worse = what_got_worse(histories_of(*store), 2);
        QCOMPARE(worse.size(), 1U);
        QVERIFY(worse[0].site == file[0].site);
        QCOMPARE(worse[0].program.key.program.number, QStringLiteral("002"));
        QCOMPARE(fall_of(worse[0].program), std::optional(3.0));
        QCOMPARE(worse[0].program.earlier->visit, file[0].visits[0].visit.id);
        QCOMPARE(worse[0].program.later->visit, file[0].visits[1].visit.id);
        QCOMPARE(what_got_worse(histories_of(*store), 0.9).size(), 2U);
    }

    void an_import_is_whole_or_nothing() {
        const QTemporaryDir folder;
        const auto store = opened_sites(folder.path());
        SiteFile file = two_sites();
        apply_merge({file[1]}, plan_merge({file[1]}, *store), *store);
        file[1].site.name = QStringLiteral("theirs");
        const SiteMerge merge = plan_merge(file, *store);
        QCOMPARE(merge.conflicts.size(), 1U);
        // The user looks at the conflict; meanwhile something else is stored.
        Site mine = store->sites().front();
        mine.name = QStringLiteral("changed meanwhile");
        store->store(mine);
        const QByteArray before = content(*store);
        QVERIFY_EXCEPTION_THROWN(apply_merge(file, merge, *store), Fault);
        QCOMPARE(content(*store), before);
        SiteMerge anew = plan_merge(file, *store);
        store->remove_site(file[1].site.id);
        QVERIFY_EXCEPTION_THROWN(apply_merge(file, anew, *store), Fault);
        QVERIFY(store->sites().empty());
    }
};

}  // namespace m47::sites

QTEST_GUILESS_MAIN(m47::sites::ExchangeTest)
#include "exchange_test.moc"
