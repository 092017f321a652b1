// SPDX-License-Identifier: GPL-3.0-or-later
#include "old_stream.h"

#include <QDataStream>
#include <QIODevice>
#include <cmath>

namespace m47::olddb {
namespace {

constexpr auto kStreamVersion = QDataStream::Qt_6_0;
constexpr quint32 kStart = 0x4d34374f;
constexpr quint32 kEnd = 0x454e444f;
constexpr quint32 kMostFields = 256;

enum ValueKind : quint8 { kUnset, kText, kWhole, kNumber, kBoolean };

void write_value(QDataStream& stream, const QVariant& value) {
    switch (value.typeId()) {
        case QMetaType::QString:
            stream << quint8{kText} << value.toString();
            break;
        case QMetaType::LongLong:
            stream << quint8{kWhole} << qint64{value.toLongLong()};
            break;
        case QMetaType::Double:
            stream << quint8{kNumber} << value.toDouble();
            break;
        case QMetaType::Bool:
            stream << quint8{kBoolean} << value.toBool();
            break;
        default:
            stream << quint8{kUnset};
    }
}

template <class Value>
Value taken(QDataStream& stream) {
    Value value{};
    stream >> value;
    return value;
}

QString taken_text(QDataStream& stream) {
    const auto text = taken<QString>(stream);
    if (!text.isValidUtf16()) stream.setStatus(QDataStream::ReadCorruptData);
    // The stream tells an empty text from none, the program does not.
    return text.isNull() ? QStringLiteral("") : text;
}

QVariant taken_value(QDataStream& stream) {
    switch (taken<quint8>(stream)) {
        case kUnset:
            return {};
        case kText:
            return taken_text(stream);
        case kWhole:
            return qlonglong{taken<qint64>(stream)};
        case kNumber:
            if (const auto number = taken<double>(stream); std::isfinite(number)) return number;
            break;
        case kBoolean:
            return taken<bool>(stream);
        default:
            break;
    }
    stream.setStatus(QDataStream::ReadCorruptData);
    return {};
}

void write_texts(QDataStream& stream, const QStringList& texts) {
    stream << static_cast<quint32>(texts.size());
    for (const QString& text : texts) stream << text;
}

QStringList taken_texts(QDataStream& stream) {
    QStringList texts;
    for (auto left = taken<quint32>(stream); left > 0 && stream.status() == QDataStream::Ok; --left)
        texts += taken_text(stream);
    return texts;
}

OldTable taken_table(QDataStream& stream) {
    OldTable table;
    table.name = taken_text(stream);
    table.fields = taken_texts(stream);
    if (table.fields.size() > kMostFields) stream.setStatus(QDataStream::ReadCorruptData);
    for (auto left = taken<quint32>(stream); left > 0 && stream.status() == QDataStream::Ok;
         --left) {
        // Each row begins with a byte of its own: one of no fields takes room in the bytes, too.
        if (taken<quint8>(stream) != kUnset) stream.setStatus(QDataStream::ReadCorruptData);
        QVariantList row;
        for (qsizetype k = 0; k < table.fields.size(); ++k) row += taken_value(stream);
        table.rows += row;
    }
    return table;
}

OldDatabase taken_database(QDataStream& stream) {
    OldDatabase database;
    database.version = taken<qint32>(stream);
    database.reader_was_held = taken<bool>(stream);
    for (auto left = taken<quint32>(stream); left > 0 && stream.status() == QDataStream::Ok; --left)
        database.tables += taken_table(stream);
    database.others = taken_texts(stream);
    return database;
}

void write_database(QDataStream& stream, const OldDatabase& database) {
    stream << qint32{database.version} << database.reader_was_held
           << static_cast<quint32>(database.tables.size());
    for (const OldTable& table : database.tables) {
        stream << table.name;
        write_texts(stream, table.fields);
        stream << static_cast<quint32>(table.rows.size());
        for (const QVariantList& row : table.rows) {
            stream << quint8{kUnset};
            for (const QVariant& value : row) write_value(stream, value);
        }
    }
    write_texts(stream, database.others);
}

}  // namespace

QByteArray bytes_of_reading(const OldReading& reading) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(kStreamVersion);
    const auto* database = std::get_if<OldDatabase>(&reading);
    stream << kStart << (database != nullptr);
    if (database)
        write_database(stream, *database);
    else
        stream << std::get<QString>(reading);
    stream << kEnd;
    return bytes;
}

OldReading reading_of_bytes(const QByteArray& bytes) {
    QDataStream stream(bytes);
    stream.setVersion(kStreamVersion);
    OldReading reading;
    const bool started = taken<quint32>(stream) == kStart;
    if (started && taken<bool>(stream))
        reading = taken_database(stream);
    else
        reading = taken_text(stream);
    const bool ended = taken<quint32>(stream) == kEnd;
    if (started && ended && stream.status() == QDataStream::Ok && stream.atEnd()) return reading;
    return QString();
}

}  // namespace m47::olddb
