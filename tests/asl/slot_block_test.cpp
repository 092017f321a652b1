// SPDX-License-Identifier: GPL-3.0-or-later
#include "slot_block.h"

#include <QTest>
#include <random>

#include "instrument.h"
#include "slot_comparison.h"

namespace m47::asl {
namespace {

// As the meter's own documentation prints it.
const QString kEmptyText = QStringLiteral(
    "S113000000000000000000000000000000000000EC\rS113001000000000000000000000000000000000DC\r"
    "S113002000000000000000000000000000000000CC\rS10D00302A2A2A2A2A2A2A2A2A2A1E\rS9030000FC");

QByteArray counting_tuning() {
    QByteArray tuning;
    for (int at = 0; at < 48; ++at) tuning += static_cast<char>(at * 5 + 1);
    return tuning;
}

SlotBlock sample() {
    return SlotBlock::of(counting_tuning(), QStringLiteral("NOVA 7W"));
}

/// The answer of a meter, echo and end taken off, as the link hands it over.
QString factory_copy() {
    meter::Instrument instrument{meter::Options{}};
    const QString bytes = QString::fromStdString(instrument.handle("MASTERCOPY 6?").bytes);
    const QString echo = QStringLiteral("MASTERCOPY 6?\r");
    const QString end = QStringLiteral("\rOK\r");
    return bytes.mid(echo.size(), bytes.size() - echo.size() - end.size());
}

/// True when `text` is five records with good counts, addresses and checksums. Independent of the
/// code under test.
bool five_good_records(const QString& text) {
    const QStringList lines = text.split(u'\r');
    if (lines.size() != 5 || lines[4] != QLatin1String("S9030000FC")) return false;
    const int lengths[] = {16, 16, 16, 10};
    for (int at = 0; at < 4; ++at) {
        const QString& line = lines[at];
        const QByteArray bytes = QByteArray::fromHex(line.mid(2).toLatin1());
        int sum = 0;
        for (const char byte : bytes) sum += static_cast<unsigned char>(byte);
        const bool good = line.startsWith(QLatin1String("S1")) && line == line.toUpper() &&
                          line.size() == 2 + 2 * bytes.size() && bytes.size() == lengths[at] + 4 &&
                          bytes[0] == lengths[at] + 3 && bytes[1] == 0 && bytes[2] == at * 16 &&
                          // Reading hex digits skips what is none.
                          line.mid(2).toLatin1() == bytes.toHex().toUpper() && sum % 256 == 255;
        if (!good) return false;
    }
    return true;
}

/// A text with a few faults of the line: bytes changed, lost, added, a stretch lost or repeated.
class Spoiler {
  public:
    explicit Spoiler(unsigned seed) : random_(seed) {}

    QString spoilt(QString text) {
        for (int left = 1 + below(4); left > 0; --left) spoil_once(text);
        return text;
    }
    int below(qsizetype bound) {
        return static_cast<int>(random_() % static_cast<unsigned>(std::max<qsizetype>(bound, 1)));
    }

  private:
    void spoil_once(QString& text) {
        static const QString kCharacters = QStringLiteral("0123456789ABCDEFabcdefS\r\n\t *\u00ff");
        const int at = below(text.size());
        const QChar character = kCharacters[below(kCharacters.size())];
        switch (below(7)) {
            case 0:
                if (!text.isEmpty()) text[at] = character;
                break;
            case 1:
                text.insert(at, character);
                break;
            case 2:
                text.remove(at, 1 + below(3));
                break;
            case 3:
                text.remove(at, below(400));
                break;
            case 4:
                text.truncate(at);
                break;
            case 5:
                text.insert(at, text.mid(below(text.size()), below(300)));
                break;
            default:
                text.remove(0, below(60));
                break;
        }
    }

    std::mt19937 random_;
};

int fuzz_runs() {
    bool given = false;
    const int runs = qEnvironmentVariableIntValue("M47_FUZZ_RUNS", &given);
    return given ? runs : 300;
}

}  // namespace

class SlotBlockTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void the_empty_slot() {
        QCOMPARE(SlotBlock().text(), kEmptyText);
        QVERIFY(SlotBlock().holds_no_satellite());
        QCOMPARE(SlotBlock().name(), QStringLiteral("**********"));
        QCOMPARE(SlotBlock().tuning(), QByteArray(48, '\0'));
        QVERIFY(SlotBlock::parse(kEmptyText) == SlotBlock());
    }

    void headers() {
        QCOMPARE(slot_header(0), QStringLiteral("S00A000041534C2030303065"));
        QCOMPARE(slot_header(12), QStringLiteral("S00A000041534C2030313262"));
    }

    void records_of_a_satellite() {
        QVERIFY(five_good_records(sample().text()));
        QCOMPARE(sample().text().split(u'\r')[3], QStringLiteral("S10D00304E4F564120375720202080"));
        QCOMPARE(sample().name(), QStringLiteral("NOVA 7W"));
        QCOMPARE(sample().bytes().size(), 58);
        QVERIFY(!sample().holds_no_satellite());
    }

    void parse_and_build_are_inverse() {
        std::mt19937 random(6);
        for (int run = 0; run < 300; ++run) {
            QByteArray tuning;
            for (int at = 0; at < 48; ++at) tuning += static_cast<char>(random() % 256);
            QString name;
            for (int at = 0; at < 10; ++at) name += QChar(static_cast<char16_t>(random() % 256));
            const SlotBlock block = SlotBlock::of(tuning, name);
            QVERIFY(five_good_records(block.text()));
            const auto parsed = SlotBlock::parse(block.text());
            QVERIFY(parsed.has_value());
            QVERIFY(*parsed == block);
            QCOMPARE(parsed->text(), block.text());
            QCOMPARE(parsed->tuning(), tuning);
            QCOMPARE(parsed->bytes().mid(48), name.toLatin1());
        }
    }

    void every_single_fault_is_found() {
        const QString good = sample().text();
        for (qsizetype at = 0; at < good.size(); ++at) {
            for (const QChar other : {u'0', u'1', u'A', u'F', u'f', u'S', u'\r', u'\n', u' '}) {
                QString bad = good;
                if (bad[at] == other) continue;
                bad[at] = other;
                QVERIFY2(!SlotBlock::parse(bad), qPrintable(bad));
            }
            QVERIFY(!SlotBlock::parse(good.left(at)));
            QVERIFY(!SlotBlock::parse(QString(good).remove(at, 1)));
            QVERIFY(!SlotBlock::parse(QString(good).insert(at, u'0')));
        }
    }

    void only_the_whole_block_in_its_order() {
        const QStringList lines = sample().text().split(u'\r');
        for (int at = 0; at < 5; ++at) {
            QStringList fewer = lines;
            fewer.removeAt(at);
            QVERIFY(!SlotBlock::parse(fewer.join(u'\r')));
            QStringList more = lines;
            more.insert(at, lines[at]);
            QVERIFY(!SlotBlock::parse(more.join(u'\r')));
        }
        for (int at = 0; at < 4; ++at) {
            QStringList swapped = lines;
            swapped.swapItemsAt(at, at + 1);
            QVERIFY(!SlotBlock::parse(swapped.join(u'\r')));
        }
        QVERIFY(!SlotBlock::parse(sample().text().toLower()));
        QVERIFY(!SlotBlock::parse(sample().text() + u'\r'));
        QVERIFY(!SlotBlock::parse(QString()));
    }

    void names_are_cut_filled_and_trimmed() {
        const auto name = [](const QString& text) { return SlotBlock::of({}, text).name(); };
        QCOMPARE(name(QStringLiteral("TWELVE LETTERS")), QStringLiteral("TWELVE LET"));
        QCOMPARE(name(QStringLiteral("  A  ")), QStringLiteral("A"));
        QCOMPARE(name(QString()), QString());
        QCOMPARE(name(QStringLiteral("A\0\0").left(3)), QStringLiteral("A"));
        QCOMPARE(SlotBlock::of({}, QStringLiteral("A")).bytes().mid(48), QByteArray("A         "));
        const SlotBlock padded = SlotBlock::of({}, QString(QStringLiteral("AB")) + QChar(0));
        QVERIFY(padded.renamed(QStringLiteral("AB")) == padded);
        QCOMPARE(padded.renamed(QStringLiteral("CD")).bytes().mid(48), QByteArray("CD        "));
        QCOMPARE(sample().renamed(QStringLiteral("X")).tuning(), counting_tuning());
    }

    void names_that_the_line_carries() {
        QVERIFY(fits_the_line(QStringLiteral("\u00ff\u00e0")));
        QVERIFY(!fits_the_line(QStringLiteral("\u0100")));
        QVERIFY(fits_the_line(QStringLiteral("H\u00d4TBIRD 13\u00b0")));
        QVERIFY(!fits_the_line(QStringLiteral("13\u20ac")));
        QVERIFY(!fits_the_line(QStringLiteral("A\tB")));
        QVERIFY(!fits_the_line(QStringLiteral("A\rB")));
    }

    void the_rule_cuts_every_slot_out_of_a_whole_copy() {
        const QString copy = factory_copy();
        QVERIFY(copy.startsWith(slot_header(0) + u'\r'));
        const SlotTable table = parse_slots(copy);
        for (int slot = 0; slot < kSlots; ++slot) {
            const QString block = block_in_copy(copy, slot);
            QVERIFY(five_good_records(block));
            QVERIFY(header_in_copy(copy, slot));
            QVERIFY(copy.contains(slot_header(slot) + u'\r' + block));
            QVERIFY(table[static_cast<std::size_t>(slot)] == SlotBlock::parse(block));
        }
        QCOMPARE(table[0]->name(), QStringLiteral("AURORA 13E"));
        QVERIFY(*table[3] == SlotBlock());
    }

    void the_rule_goes_by_the_first_end_record() {
        const QString copy = factory_copy();
        // Something before the first header: the length comes out too long.
        const QString shifted = QStringLiteral("xx") + copy;
        QCOMPARE(block_in_copy(shifted, 0), block_in_copy(copy, 0) + QStringLiteral("\rS"));
        // A missing header counts as position 0.
        const QString headless = QString(copy).replace(slot_header(5), QStringLiteral("?"));
        QCOMPARE(block_in_copy(headless, 5), copy.mid(24, 170));
        QVERIFY(!header_in_copy(headless, 5));
        QCOMPARE(block_in_copy(QString(copy).remove(QStringLiteral("S9030000FC")), 0), QString());
        QCOMPARE(block_in_copy(QString(), 0), QString());
        QVERIFY(!SlotBlock::parse(block_in_copy(copy.left(copy.size() - 1), 19)));
    }

    void a_patch_changes_one_slot_and_no_length() {
        const QString copy = factory_copy();
        const QString block = slot_header(4) + u'\r' + sample().text();
        const QString patched = patched_copy(copy, block);
        QCOMPARE(patched.size(), copy.size());
        QCOMPARE(block_in_copy(patched, 4), sample().text());
        for (int slot = 0; slot < kSlots; ++slot)
            if (slot != 4) QCOMPARE(block_in_copy(patched, slot), block_in_copy(copy, slot));
        // What reaches beyond the end is dropped.
        const QString cut = copy.left(copy.indexOf(slot_header(4)) + 30);
        QCOMPARE(patched_copy(cut, block), cut.left(cut.size() - 30) + block.left(30));
        // Nowhere to put it.
        QCOMPARE(patched_copy(copy, slot_header(20) + u'\r' + sample().text()), copy);
        QCOMPARE(patched_copy(copy, QString()), copy);
        QCOMPARE(patched_copy("ABCDEF", "AB\rx"), QStringLiteral("AB\rxEF"));
        QCOMPARE(patched_copy(QString(), block), QString());
    }

    void names_in_the_answer() {
        const auto names = [](const char* answer) {
            return slot_names(QString::fromLatin1(answer));
        };
        QCOMPARE(names("00\t A B \r01\tC"), QStringList({"A B", "C"}));
        QCOMPARE(names("00\tA\tx\r01\tC"), QStringList({"A\tx", "C"}));
        QCOMPARE(names("\tA\r\tB"), QStringList({"A", "B"}));
        QCOMPARE(names(""), QStringList());
        QCOMPARE(names("0"), QStringList());
        QCOMPARE(names("00\tA\rnothing\r02\tC"), QStringList({"A"}));
        QCOMPARE(names("00\tA\r01"), QStringList({"A"}));
        QString whole;
        QStringList expected;
        for (int slot = 0; slot < 20; ++slot) {
            whole += QStringLiteral("%1\tN%1 \r").arg(slot);
            expected += QStringLiteral("N%1").arg(slot);
        }
        whole.chop(1);
        QCOMPARE(slot_names(whole), expected);
        // The last entry is what stands behind the last TAB.
        QCOMPARE(slot_names(whole + QStringLiteral("\r20\tLAST")).last(), QStringLiteral("LAST"));
    }

    void a_file_keeps_what_is_there() {
        SlotTable table;
        table[0] = sample();
        table[7] = SlotBlock();
        const QString text = slots_text(table, QStringLiteral("\r\n"));
        QCOMPARE(text.count(QStringLiteral("\r\n")), 12);
        QVERIFY(text.startsWith(slot_header(0) + QStringLiteral("\r\nS1130000")));
        QVERIFY(text.endsWith(QStringLiteral("S9030000FC\r\n")));
        QVERIFY(parse_slots(text) == table);
        QVERIFY(parse_slots(QString(text).remove(u'\r')) == table);
        QVERIFY(parse_slots(QString(text).remove(u'\n')) == table);
        // Twice the same slot: neither holds.
        table[0].reset();
        QVERIFY(parse_slots(text + text.left(text.indexOf(slot_header(7)))) == table);
    }

    void comparing_byte_by_byte() {
        QByteArray other = counting_tuning();
        other[0] = '\x7F';
        other[47] = '\x7F';
        const SlotComparison different =
            compare_slots(sample(), SlotBlock::of(other, QStringLiteral("NOVA 7E")));
        QCOMPARE(different.differing, 3);
        QCOMPARE(different.rows.size(), 8);
        QCOMPARE(different.rows[0].differs,
                 (QList<bool>{true, false, false, false, false, false, false, false}));
        QCOMPARE(different.rows[5].differs.last(), true);
        QCOMPARE(different.rows[6].address, 48);
        QCOMPARE(different.rows[6].differs[6], true);
        QCOMPARE(different.rows[7].left.size(), 2);
        QCOMPARE(compare_slots(sample(), sample()).differing, 0);
    }

    void a_spoilt_copy_never_yields_a_half_block() {
        const QString copy = factory_copy();
        Spoiler spoiler(20);
        int whole = 0;
        int refused = 0;
        for (int run = 0; run < fuzz_runs(); ++run) {
            const QString spoilt = spoiler.spoilt(copy);
            for (int slot = 0; slot < kSlots; ++slot) {
                const QString block = block_in_copy(spoilt, slot);
                const auto parsed = SlotBlock::parse(block);
                QCOMPARE(parsed.has_value(), five_good_records(block));
                if (parsed) QCOMPARE(parsed->text(), block);
                ++(parsed ? whole : refused);
            }
            for (const auto& block : parse_slots(spoilt))
                if (block) QVERIFY(five_good_records(block->text()));
            QVERIFY(slot_names(spoilt).size() <= kSlots);
            const QString patch = slot_header(spoiler.below(20)) + u'\r' + sample().text();
            QCOMPARE(patched_copy(spoilt, patch).size(), spoilt.size());
        }
        qInfo("%d copies, %d blocks whole, %d refused", fuzz_runs(), whole, refused);
        QVERIFY(whole > 0);
        QVERIFY(refused > 0);
    }
};

}  // namespace m47::asl

QTEST_APPLESS_MAIN(m47::asl::SlotBlockTest)
#include "slot_block_test.moc"
