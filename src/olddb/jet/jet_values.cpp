// SPDX-License-Identifier: GPL-3.0-or-later
#include "jet_values.h"

#include <QByteArray>
#include <QString>
#include <QtEndian>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

#include "jet_file.h"

namespace m47::olddb {
namespace {

// How the place of a long text is told: its length and, in the two highest bits, where it lies.
constexpr quint32 kInTheRow = 0x80000000;
constexpr quint32 kOnOnePage = 0x40000000;
constexpr quint32 kLengthBits = 0x3fffffff;
constexpr qsizetype kPageRowAt = 4;
// In a chain of pages each piece begins with the place of the next.
constexpr qsizetype kChainLink = 4;

// Pages of long texts name no table as their owner.
constexpr qsizetype kOwnerAt = 4;
constexpr char kLongTextOwner[] = "LVAL";

constexpr double kMoneyUnits = 10000;  // of its smallest unit

template <class Number>
Number number_at(QByteArrayView bytes, qsizetype at = 0) {
    if (bytes.size() < at + static_cast<qsizetype>(sizeof(Number)))
        throw JetDamage("a number is cut short");
    return qFromLittleEndian<Number>(bytes.data() + at);
}

double finite(double value) {
    if (!std::isfinite(value)) throw JetDamage("a number without a value");
    return value;
}

/// The double that looks like the single-precision number: 36.6 stays 36.6.
double as_written(float value) {
    finite(static_cast<double>(value));
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    double number = 0;
    std::from_chars(text.data(), end, number);
    return number;
}

QString from_utf16(const QByteArray& bytes) {
    if (bytes.size() % 2 != 0) throw JetDamage("half a character");
    QString text(bytes.size() / 2, Qt::Uninitialized);
    for (qsizetype k = 0; k < text.size(); ++k) text[k] = QChar(number_at<quint16>(bytes, 2 * k));
    if (!text.isValidUtf16()) throw JetDamage("half a character");
    return text;
}

/// Jet 4 keeps a text as UTF-16, or behind a mark as runs of single bytes and of UTF-16, with a
/// zero byte at each change.
QString jet4_text(QByteArrayView bytes) {
    if (!bytes.startsWith("\xff\xfe")) return from_utf16(bytes.toByteArray());
    QByteArray wide;
    bool single = true;
    for (qsizetype at = 2; at < bytes.size();) {
        if (bytes[at] == 0) {
            single = !single;
            ++at;
        } else if (single) {
            wide += bytes[at++];
            wide += '\0';
        } else {
            wide += bytes.sliced(at, qMin<qsizetype>(2, bytes.size() - at)).toByteArray();
            at += 2;
        }
    }
    return from_utf16(wide);
}

QString jet_text(MdbHandle* handle, QByteArrayView bytes) {
    if (handle->f->jet_version != MDB_VER_JET3) return jet4_text(bytes);
    // Bytes of the file's own code page; none takes more than four in UTF-8.
    QByteArray text(4 * bytes.size() + 8, '\0');
    const int length = mdb_unicode2ascii(handle, bytes.data(), static_cast<size_t>(bytes.size()),
                                         text.data(), static_cast<size_t>(text.size()) - 1);
    return QString::fromUtf8(text.constData(), length);
}

QByteArrayView piece_at(MdbHandle* handle, quint32 page_row) {
    void* page = nullptr;
    int start = 0;
    size_t length = 0;
    if (mdb_find_pg_row(handle, static_cast<int>(page_row), &page, &start, &length) != 0 ||
        std::memcmp(static_cast<const char*>(page) + kOwnerAt, kLongTextOwner, 4) != 0 ||
        start < 0 || static_cast<ssize_t>(length) > handle->fmt->pg_size - start)
        throw JetDamage("a long text leads nowhere");
    return {static_cast<const char*>(page) + start, static_cast<qsizetype>(length)};
}

QByteArray chained(MdbHandle* handle, quint32 page_row, qsizetype length) {
    QByteArray bytes;
    while (bytes.size() < length) {
        if (page_row == 0) throw JetDamage("a long text ends early");
        const QByteArrayView piece = piece_at(handle, page_row);
        page_row = number_at<quint32>(piece);
        // A piece without content could lead round in a ring.
        if (piece.size() == kChainLink) throw JetDamage("a long text ends early");
        bytes += piece.sliced(kChainLink).toByteArray();
    }
    return bytes.first(length);
}

QByteArray long_text(MdbHandle* handle, QByteArrayView place) {
    const auto about = number_at<quint32>(place);
    const auto length = static_cast<qsizetype>(about & kLengthBits);
    const auto page_row = number_at<quint32>(place, kPageRowAt);
    if (length == 0) return {};
    if (!(about & (kInTheRow | kOnOnePage))) return chained(handle, page_row, length);
    const QByteArrayView bytes =
        about & kInTheRow ? place.sliced(qMin(place.size(), qsizetype{MDB_MEMO_OVERHEAD}))
                          : piece_at(handle, page_row);
    if (bytes.size() != length) throw JetDamage("a long text has another length than stated");
    return bytes.toByteArray();
}

double decimal(MdbHandle* handle, const MdbColumn& column, int start) {
    char* text = mdb_numeric_to_string(handle, start, column.col_scale, column.col_prec);
    bool good = false;
    const double value = QByteArray(text).toDouble(&good);
    g_free(text);
    if (!good) throw JetDamage("a number without a value");
    return value;
}

}  // namespace

bool is_usable_kind(int col_type) {
    switch (col_type) {
        case MDB_BOOL:
        case MDB_BYTE:
        case MDB_INT:
        case MDB_LONGINT:
        case MDB_MONEY:
        case MDB_FLOAT:
        case MDB_DOUBLE:
        case MDB_TEXT:
        case MDB_MEMO:
        case MDB_NUMERIC:
            return true;
        default:
            return false;
    }
}

QVariant jet_value(MdbHandle* handle, const MdbColumn& column, const MdbField& field) {
    // A Boolean is kept where other kinds keep whether they are set.
    if (column.col_type == MDB_BOOL) return QVariant(field.is_null == 0);
    if (field.is_null) return {};
    if (field.start < 0 || field.siz < 0 || field.start + field.siz > handle->fmt->pg_size)
        throw JetDamage("a value lies outside of its page");
    const QByteArrayView bytes(reinterpret_cast<const char*>(handle->pg_buf) + field.start,
                               field.siz);
    switch (column.col_type) {
        case MDB_BYTE:
            return QVariant(qlonglong{number_at<quint8>(bytes)});
        case MDB_INT:
            return QVariant(qlonglong{number_at<qint16>(bytes)});
        case MDB_LONGINT:
            return QVariant(qlonglong{number_at<qint32>(bytes)});
        case MDB_MONEY:
            return QVariant(static_cast<double>(number_at<qint64>(bytes)) / kMoneyUnits);
        case MDB_FLOAT:
            return QVariant(as_written(number_at<float>(bytes)));
        case MDB_DOUBLE:
            return QVariant(finite(number_at<double>(bytes)));
        case MDB_NUMERIC:
            return QVariant(decimal(handle, column, field.start));
        case MDB_MEMO:
            return QVariant(jet_text(handle, long_text(handle, bytes)));
        default:
            return QVariant(jet_text(handle, bytes));
    }
}

}  // namespace m47::olddb
