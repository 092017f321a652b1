// SPDX-License-Identifier: GPL-3.0-or-later
#include "protocol_page.h"

#include <QStringList>

#include "command_list.h"
#include "diseqc_commands.h"
#include "instrument.h"
#include "program_commands.h"
#include "reply.h"

namespace m47 {
namespace {

constexpr qsizetype kShownLines = 7;
constexpr double kUsualLimit = 15;
/// Where the meaning of a command stands behind it.
constexpr qsizetype kMeaningColumn = 24;
/// A slot's block: its header, four lines of data and the end.
constexpr qsizetype kSlotLines = 6;

constexpr const char* kOpening =
    R"(<!-- Written by docs/write-protocol from the program's own table; do not edit. -->
# The protocol of the meter

RS232, 38400 baud, no parity, 8 data bits, 2 stop bits. The program sends a command and CR, one
character at each tick of its clock. The meter echoes the command with its CR, sends the value of a
query, and ends with `OK` and CR.

- A refused setting is answered `ERROR`, an unknown command `COMMAND ERROR`: the program sends it
  again, three times in all, and then takes the link for lost. A query with a bad argument is
  answered `Invalid Parameter(s)`.
- No echo within 2 s: the meter sleeps. A lone CR wakes it, and the command is sent again.
- The answer is waited for up to 15 s unless a command below names another limit.
- A value may have a range mark before its number, `<` or `>`.

The exchanges below were made with the simulated meter, one after the other from its switching on.
`→` is what the program sends and `←` what the meter answers; `↵` is CR, `␊` LF and `⇥` TAB.
)";

constexpr const char* kDiseqcOpening =
    R"(
## The DiSEqC switching commands

The meter builds the messages on the bus itself. The two runs of sixteen positions are different
commands with the same texts.

| command | text in the lists | answer |
| --- | --- | --- |
)";

constexpr const char* kBlockOpening =
    R"(
## Writing a satellite slot

A slot is written as a block of six S-records with a CR behind each, without a command word: the
header with the slot's number, four lines of data, the end. The program sends the block at one go
and takes the first CR of the answer for the end of it; the limit is 60 s. Here the slots' copy is
written back into slot 0.
)";

QString printable(const QString& bytes) {
    QString text = bytes;
    return text.replace(u'\r', QStringLiteral("↵"))
        .replace(u'\n', QStringLiteral("␊"))
        .replace(u'\t', QStringLiteral("⇥"));
}

/// The lines of an answer, each with its end.
QStringList lines_of(const QString& answer) {
    QStringList lines(QString{});
    for (qsizetype at = 0; at < answer.size(); ++at) {
        lines.back() += answer[at];
        const bool feed_follows = at + 1 < answer.size() && answer[at + 1] == u'\n';
        if ((answer[at] == u'\r' && !feed_follows) || answer[at] == u'\n') lines += QString();
    }
    if (lines.back().isEmpty()) lines.removeLast();
    return lines;
}

class PageWriter {
  public:
    QString write() {
        page_ = QString::fromUtf8(kOpening);
        write_failures();
        for (const link::command::Group& group : link::command::command_list()) {
            page_ += QStringLiteral("\n## %1\n").arg(QLatin1String(group.title));
            for (const link::command::Word* word : group.words) write_word(*word);
        }
        write_diseqc_list();
        write_block();
        return page_;
    }

  private:
    QString ask(const QString& command) {
        const std::string line = command.toLatin1().toStdString();
        return QString::fromLatin1(QByteArray::fromStdString(meter_.handle(line).bytes));
    }

    void write_failures() {
        page_ += QStringLiteral("\n## Refused\n\n```\n");
        write_exchange(link::command::kFrequency + QStringLiteral(" 9999"), "out of range");
        write_exchange(QStringLiteral("TUNE 1000"), "unknown");
        write_exchange(link::command::query(link::command::kSlotName) + u'7', "a bad argument");
        page_ += QStringLiteral("```\n");
    }

    void write_word(const link::command::Word& word) {
        page_ += QStringLiteral("\n### `%1`\n\n%2.").arg(word, QLatin1String(word.purpose));
        const double limit = link::answer_limit(word + QLatin1String(word.uses.front().argument));
        if (limit != kUsualLimit) page_ += QStringLiteral(" Time limit %1 s.").arg(limit);
        page_ += QStringLiteral("\n\n```\n");
        for (const link::command::Usage& use : word.uses)
            write_exchange(word + QLatin1String(use.argument), use.meaning);
        page_ += QStringLiteral("```\n");
    }

    void write_exchange(const QString& command, const char* meaning) {
        write_line(QStringLiteral("→ "), (command + u'\r'), QLatin1String(meaning));
        write_answer(ask(command));
    }

    void write_answer(const QString& answer) {
        const QStringList lines = lines_of(answer);
        const bool cut = lines.size() > kShownLines + 1;
        for (qsizetype k = 0; k < (cut ? kShownLines : lines.size()); ++k)
            write_line(k == 0 ? QStringLiteral("← ") : QStringLiteral("  "), lines[k], {});
        if (!cut) return;
        page_ +=
            QStringLiteral("  … %1 lines, %2 bytes in all\n").arg(lines.size()).arg(answer.size());
    }

    void write_line(const QString& lead, const QString& bytes, const QString& meaning) {
        QString line = lead + printable(bytes);
        if (!meaning.isEmpty())
            line = line.leftJustified(kMeaningColumn) + QStringLiteral("  ") + meaning;
        page_ += line + u'\n';
    }

    void write_diseqc_list() {
        page_ += QString::fromUtf8(kDiseqcOpening);
        int place = 0;
        for (const char* text : programme::kDiseqcCommands) {
            const QString command = programme::diseqc_command(place++);
            const bool accepted = ask(command).endsWith(QStringLiteral("\rOK\r"));
            page_ += QStringLiteral("| `%1` | `%2` | %3 |\n")
                         .arg(command, QLatin1String(text),
                              accepted ? QStringLiteral("OK") : QStringLiteral("refused"));
        }
    }

    void write_block() {
        page_ += QString::fromUtf8(kBlockOpening) + QStringLiteral("\n```\n");
        const QStringList copy = lines_of(ask(link::command::kCopySlots));
        // The echo of the command stands before the records.
        for (const QString& line : copy.mid(1, kSlotLines)) {
            const QString record = line.trimmed();
            write_line(QStringLiteral("→ "), record + u'\r', {});
            write_answer(ask(record));
        }
        page_ += QStringLiteral("```\n");
    }

    meter::Instrument meter_{meter::Options{}};
    QString page_;
};

}  // namespace

QString protocol_page() {
    return PageWriter().write();
}

}  // namespace m47
