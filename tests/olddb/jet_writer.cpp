// SPDX-License-Identifier: GPL-3.0-or-later
#include "jet_writer.h"

#include <QStringEncoder>
#include <QtEndian>

namespace m47::olddb {
namespace {

/// Where things stand in a page, by version.
struct Layout {
    qsizetype page;
    qsizetype row_count;
    qsizetype table_rows;
    qsizetype table_columns;
    qsizetype table_map;
    qsizetype table_free_map;
    qsizetype columns;
    qsizetype column_size;  ///< of one column's entry
    qsizetype column_number;
    qsizetype column_variable;
    qsizetype column_row_number;
    qsizetype column_flags;
    qsizetype column_fixed;
    qsizetype column_length;
};
constexpr Layout kLayout3{2048, 8, 12, 25, 35, 39, 43, 18, 1, 3, 5, 13, 14, 16};
constexpr Layout kLayout4{4096, 12, 16, 45, 55, 59, 63, 25, 5, 7, 9, 15, 21, 23};

constexpr int kMapPage = 3;
constexpr int kCatalogPage = 2;
constexpr qsizetype kMapBytes = 64;

template <class Number>
QByteArray little(Number value) {
    QByteArray bytes(sizeof(Number), '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

template <class Number>
void put(QByteArray& page, qsizetype at, Number value) {
    page.replace(at, sizeof(Number), little(value));
}

class Writer {
  public:
    Writer(int version, const QByteArray& header)
        : jet3_(version == 3), layout_(jet3_ ? kLayout3 : kLayout4) {
        QByteArray first = header.first(layout_.page);
        first[0x14] = static_cast<char>(jet3_ ? 0 : 1);
        pages_ = {first, {}, {}, {}};
    }

    QByteArray file(const QList<JetRows>& tables) {
        JetRows catalog{QStringLiteral("MSysObjects"),
                        {{QStringLiteral("Id"), JetKind::long_integer},
                         {QStringLiteral("Name"), JetKind::text},
                         {QStringLiteral("Type"), JetKind::integer},
                         {QStringLiteral("Flags"), JetKind::long_integer},
                         {QStringLiteral("LvProp"), JetKind::ole}},
                        {{kCatalogPage, QStringLiteral("MSysObjects"), 1, qint32(0x80000000), {}}}};
        for (const JetRows& table : tables)
            catalog.rows.append(QVariantList{write_table(table, new_page()), table.name, 1, 0, {}});
        write_table(catalog, kCatalogPage);
        pages_[kMapPage] = data_page(0, maps_);
        QByteArray free = map_of({});
        for (qsizetype page = 0; page < 8 * kMapBytes; ++page)
            if (page >= pages_.size()) set_bit(free, page);
        pages_[1] = data_page(0, {free});
        return QByteArrayList(pages_).join();
    }

  private:
    int new_page() {
        pages_ += QByteArray();
        return static_cast<int>(pages_.size()) - 1;
    }

    static void set_bit(QByteArray& map, qsizetype page) {
        char& byte = map.data()[5 + page / 8];
        byte = static_cast<char>(byte | (1 << (page % 8)));
    }
    static QByteArray map_of(const QList<int>& pages) {
        QByteArray map(5 + kMapBytes, '\0');
        for (const int page : pages) set_bit(map, page);
        return map;
    }

    QByteArray data_page(quint32 owner, const QList<QByteArray>& rows) const {
        QByteArray page(layout_.page, '\0');
        page[0] = page[1] = 1;
        put(page, 4, owner);
        put(page, layout_.row_count, static_cast<quint16>(rows.size()));
        qsizetype end = layout_.page;
        for (qsizetype k = 0; k < rows.size(); ++k) {
            end -= rows[k].size();
            if (end < layout_.row_count + 2 + 2 * rows.size()) qFatal("too much for one page");
            page.replace(end, rows[k].size(), rows[k]);
            put(page, layout_.row_count + 2 + 2 * k, static_cast<quint16>(end));
        }
        return page;
    }

    /// The place of a map as a table tells it.
    quint32 add_map(const QList<int>& pages) {
        maps_ += map_of(pages);
        return static_cast<quint32>(kMapPage << 8 | (maps_.size() - 1));
    }

    static bool is_fixed(JetKind kind) {
        return kind != JetKind::text && kind != JetKind::memo && kind != JetKind::ole;
    }
    static qsizetype length_of(JetKind kind) {
        switch (kind) {
            case JetKind::byte:
                return 1;
            case JetKind::integer:
                return 2;
            case JetKind::long_integer:
            case JetKind::single:
                return 4;
            case JetKind::number:
                return 8;
            default:
                return 0;
        }
    }

    QByteArray encoded(const QString& text) const {
        if (jet3_) return QStringEncoder("windows-1252").encode(text);
        if (text.size() % 2 == 0 && text.size() > 2) return in_runs(text);
        QByteArray wide;
        for (const QChar one : text) wide += little(one.unicode());
        return wide;
    }

    /// Single bytes and UTF-16, with a zero byte at each change.
    static QByteArray in_runs(const QString& text) {
        QByteArray bytes("\xff\xfe");
        bool single = true;
        for (const QChar one : text) {
            if ((one.unicode() <= 0xff) != single) {
                bytes += '\0';
                single = !single;
            }
            bytes += single ? QByteArray(1, one.toLatin1()) : little(one.unicode());
        }
        return bytes;
    }

    quint32 write_long(const QByteArray& bytes, bool chain) {
        const int page = new_page();
        const quint32 owner = qFromLittleEndian<quint32>("LVAL");
        const qsizetype most = 1000;
        if (!chain) {
            pages_[page] = data_page(owner, {bytes});
        } else {
            const QByteArray rest = bytes.mid(most);
            const quint32 next = rest.isEmpty() ? 0 : write_long(rest, true);
            pages_[page] = data_page(owner, {little(next) + bytes.first(qMin(most, bytes.size()))});
        }
        return static_cast<quint32>(page) << 8;
    }

    QByteArray long_field(const QString& text) {
        const QByteArray bytes = encoded(text);
        const auto length = static_cast<quint32>(bytes.size());
        if (text.size() <= 30) return little(length | 0x80000000U) + QByteArray(8, '\0') + bytes;
        const bool chain = bytes.size() > 1000;
        const quint32 place = write_long(bytes, chain);
        return little(chain ? length : length | 0x40000000U) + little(place) + QByteArray(4, '\0');
    }

    static QByteArray fixed_field(JetKind kind, const QVariant& value) {
        switch (kind) {
            case JetKind::byte:
                return little(static_cast<quint8>(value.toInt()));
            case JetKind::integer:
                return little(static_cast<qint16>(value.toInt()));
            case JetKind::long_integer:
                return little(qint32{value.toInt()});
            case JetKind::single:
                return little(value.toFloat());
            case JetKind::number:
                return little(value.toDouble());
            default:
                return {};
        }
    }

    QByteArray offset(qsizetype value) const {
        if (!jet3_) return little(static_cast<quint16>(value));
        if (value > 255) qFatal("a row too long");
        return little(static_cast<quint8>(value));
    }

    QByteArray row_of(const JetRows& table, const QVariantList& values) {
        QByteArray row = offset(table.fields.size());
        QByteArray set((table.fields.size() + 7) / 8, '\0');
        QByteArray variable;
        QByteArray offsets;
        qsizetype variables = 0;
        for (qsizetype k = 0; k < table.fields.size(); ++k) {
            const JetKind kind = table.fields[k].kind;
            const bool on = kind == JetKind::boolean ? values[k].toBool() : values[k].isValid();
            if (on) set[k / 8] = static_cast<char>(set[k / 8] | (1 << (k % 8)));
            if (is_fixed(kind)) row += fixed_field(kind, values[k]);
        }
        for (qsizetype k = 0; k < table.fields.size(); ++k) {
            const JetKind kind = table.fields[k].kind;
            if (is_fixed(kind)) continue;
            offsets.prepend(offset(row.size() + variable.size()));
            ++variables;
            if (!values[k].isValid()) continue;
            variable += kind == JetKind::text ? encoded(values[k].toString())
                                              : long_field(values[k].toString());
        }
        row += variable;
        return row + offset(row.size()) + offsets + offset(variables) + set;
    }

    QByteArray name_of(const QString& name) const {
        if (jet3_) return little(static_cast<quint8>(name.size())) + name.toLatin1();
        QByteArray wide;
        for (const QChar one : name) wide += little(one.unicode());
        return little(static_cast<quint16>(wide.size())) + wide;
    }

    int write_table(const JetRows& table, int page) {
        QList<QByteArray> rows;
        for (const QVariantList& values : table.rows) rows += row_of(table, values);
        const int data = new_page();
        pages_[data] = data_page(static_cast<quint32>(page), rows);
        QByteArray definition(layout_.page, '\0');
        definition[0] = 2;
        definition[1] = 1;
        put(definition, layout_.table_rows, static_cast<quint32>(rows.size()));
        put(definition, layout_.table_columns, static_cast<quint16>(table.fields.size()));
        put(definition, layout_.table_map, add_map({data}));
        put(definition, layout_.table_free_map, add_map({}));
        const quint16 variables = put_columns(definition, table);
        put(definition, layout_.table_columns - 2, variables);
        pages_[page] = definition;
        return page;
    }

    quint16 put_columns(QByteArray& definition, const JetRows& table) const {
        quint16 variables = 0;
        qsizetype fixed = 0;
        qsizetype at = layout_.columns;
        for (qsizetype k = 0; k < table.fields.size(); ++k, at += layout_.column_size) {
            const JetKind kind = table.fields[k].kind;
            definition[at] = static_cast<char>(kind);
            put(definition, at + layout_.column_number, static_cast<quint16>(k));
            put(definition, at + layout_.column_row_number, static_cast<quint16>(k));
            put(definition, at + layout_.column_variable, variables);
            put(definition, at + layout_.column_fixed, static_cast<quint16>(fixed));
            put(definition, at + layout_.column_length,
                static_cast<quint16>(kind == JetKind::text ? 255 : length_of(kind)));
            definition[at + layout_.column_flags] = static_cast<char>(is_fixed(kind) ? 3 : 2);
            fixed += length_of(kind);
            if (!is_fixed(kind)) ++variables;
        }
        for (const JetField& field : table.fields) {
            const QByteArray name = name_of(field.name);
            definition.replace(at, name.size(), name);
            at += name.size();
        }
        if (definition.size() != layout_.page) qFatal("too many fields");
        return variables;
    }

    bool jet3_;
    const Layout& layout_;
    QList<QByteArray> pages_;
    QList<QByteArray> maps_;
};

}  // namespace

QByteArray jet_file(int version, const QByteArray& header, const QList<JetRows>& tables) {
    return Writer(version, header).file(tables);
}

}  // namespace m47::olddb
