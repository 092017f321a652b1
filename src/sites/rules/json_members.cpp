// SPDX-License-Identifier: GPL-3.0-or-later
#include "json_members.h"

#include <algorithm>
#include <cmath>

#include "site_file.h"

namespace m47::sites {
namespace {

constexpr Bilingual kNotSo{"This is no file of sites: '%1' is missing or is not what it has to be.",
                           "Questo non è un file di siti: '%1' manca o non è come deve essere."};
constexpr Bilingual kUnknownMember{"This is no file of sites: nobody knows what '%1' means.",
                                   "Questo non è un file di siti: non si sa che cosa significhi "
                                   "'%1'."};
/// A name in a file may be as long as its writer likes.
constexpr qsizetype kToldPlace = 120;

QString told(const QString& place) {
    return place.size() > kToldPlace ? place.left(kToldPlace) + u'…' : place;
}

}  // namespace

JsonMembers::JsonMembers(const QJsonValue& value, const JsonMembers* parent, const char* name,
                         qsizetype index)
    : parent_(parent), name_(name), index_(index) {
    if (!value.isObject()) throw Refused{{kNotSo, {told(place())}}};
    object_ = value.toObject();
}

QString JsonMembers::place() const {
    if (!parent_) return {};
    const QString here = parent_->place(QString::fromLatin1(name_));
    return index_ < 0 ? here : here + QStringLiteral("[%1]").arg(index_);
}

QString JsonMembers::place(const QString& name) const {
    const QString here = place();
    return here.isEmpty() ? name : here + u'.' + name;
}

void JsonMembers::refuse(const char* name) const {
    throw Refused{{kNotSo, {told(place(QString::fromLatin1(name)))}}};
}

QJsonValue JsonMembers::take(const char* name) {
    const auto found = object_.constFind(QLatin1String(name));
    if (found == object_.constEnd()) return QJsonValue::Undefined;
    taken_.append(name);
    return *found;
}

QString JsonMembers::text(const char* name) {
    const QJsonValue value = take(name);
    if (value.isUndefined()) return {};
    const QString text = value.toString();
    if (!value.isString() || text.size() > kMostSiteText || text.contains(QChar(u'\0')) ||
        !text.isValidUtf16())
        refuse(name);
    return text;
}

QUuid JsonMembers::id(const char* name) {
    const QString text = take(name).toString();
    const QUuid id = QUuid::fromString(text);
    // One spelling alone, or the same id could come twice.
    if (id.isNull() || id.toString(QUuid::WithoutBraces) != text) refuse(name);
    return id;
}

std::optional<double> JsonMembers::number_if(const char* name, double from, double to) {
    if (!has(name)) return {};
    return number(name, from, to);
}

double JsonMembers::number(const char* name, double from, double to) {
    const QJsonValue value = take(name);
    const double number = value.toDouble();
    if (!value.isDouble() || !std::isfinite(number) || number < from || number > to) refuse(name);
    return number;
}

int JsonMembers::whole(const char* name, int from, int to) {
    const double value = number(name, from, to);
    if (std::trunc(value) != value) refuse(name);
    return static_cast<int>(value);
}

QJsonArray JsonMembers::array(const char* name) {
    const QJsonValue value = take(name);
    if (!value.isUndefined() && !value.isArray()) refuse(name);
    return value.toArray();
}

JsonMembers JsonMembers::object(const char* name) {
    return {take(name), this, name};
}

std::optional<JsonMembers> JsonMembers::object_if(const char* name) {
    if (!has(name)) return {};
    return object(name);
}

void JsonMembers::done() const {
    if (taken_.size() == object_.size()) return;
    for (const QString& name : object_.keys())
        if (std::ranges::none_of(taken_,
                                 [&](const char* one) { return name == QLatin1String(one); }))
            throw Refused{{kUnknownMember, {told(place(name))}}};
}

}  // namespace m47::sites
