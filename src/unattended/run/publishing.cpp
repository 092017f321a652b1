// SPDX-License-Identifier: GPL-3.0-or-later
#include "publishing.h"

#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSysInfo>

#include "http_sender.h"
#include "publish_address.h"

namespace m47::unattended {
namespace {

constexpr double kReportEvery = 60;  // seconds, where no pass ends before

double any_chance() {
    return QRandomGenerator::global()->generateDouble();
}

/// In the place of one that cannot be used: the rows wait in the outbox for a better start.
class NoSender : public publish::HttpSender {
  public:
    explicit NoSender(const QString& reason) : reason_(reason) {}

    void set_target(const publish::HttpTarget&) override {}
    void post(const QByteArray&) override {}
    std::optional<publish::HttpAnswer> answer() override {
        return publish::HttpAnswer{.status = 0, .words = reason_};
    }
    void give_up() override {}
    void work(double) override {}

  private:
    QString reason_;
};

/// What stands behind the port on the command line; its number where that leaves it open.
QString device_name(const Options& options) {
    const QString start = QString::number(options.on_port) + u'=';
    for (const QString& port : options.ports)
        if (port.startsWith(start)) return QFileInfo(port.mid(start.size())).fileName();
    return QStringLiteral("port-%1").arg(options.on_port);
}

publish::Station station_of(const Options& options) {
    const PublishOptions& publish = options.publish;
    return {publish.site.isEmpty() ? QSysInfo::machineHostName() : publish.site,
            publish.meter.isEmpty() ? device_name(options) : publish.meter};
}

/// A meter's own file, also where two are measured from one folder.
QString file_of_meter(const QString& folder, QString meter) {
    static const QRegularExpression kOther(QStringLiteral("[^A-Za-z0-9._-]"));
    return folder + QStringLiteral("m47-") + meter.replace(kOther, QStringLiteral("_")) +
           QStringLiteral(".outbox");
}

}  // namespace

QString outbox_file(const Options& options, const QString& folder) {
    if (options.publish.address.isEmpty()) return {};
    return options.log.isEmpty() ? file_of_meter(folder, station_of(options).meter)
                                 : options.log + QStringLiteral(".outbox");
}

publish::PublishOrder Publishing::order(const QString& folder) const {
    const publish::Station station = station_of(options_);
    return {.station = station,
            .outbox = outbox_file(options_, folder),
            .log = options_.log,
            .limit = options_.publish.limit};
}

/// From the file, else from the environment.
QByteArray Publishing::secret(QString& error) const {
    if (options_.publish.token_file.isEmpty()) return qgetenv(publish::kTokenVariable).trimmed();
    return publish::read_secret(options_.publish.token_file, error);
}

void Publishing::open(link::Clock& clock, const QString& folder) {
    clock_ = &clock;
    if (!wanted()) return;
    QString error;
    const QByteArray authorization = publish::authorization(secret(error));
    auto* sender = error.isEmpty() ? part_.offer<publish::HttpSender>() : nullptr;
    if (!sender && error.isEmpty())
        error = QStringLiteral("the part of the program that publishes cannot be loaded: %1")
                    .arg(part_.fault());
    if (!sender) {
        no_sender_ = std::make_unique<NoSender>(error);
        sender = no_sender_.get();
    }
    sender->set_target({options_.publish.address, authorization});
    publisher_ =
        std::make_unique<publish::Publisher>(order(folder), *sender, clock, texts_, any_chance);
    publisher_->on_remark = on_remark;
    if (publisher_->open()) return;
    lost_ = true;
    publisher_.reset();
}

void Publishing::before_row(const measurement::Measurement& measured, std::string_view line,
                            const QDateTime& moment) {
    if (publisher_) publisher_->before_row(measured, line, moment);
}

void Publishing::after_row() {
    if (!publisher_) return;
    publisher_->after_row();
    publisher_->step();
}

void Publishing::link_is(bool up) {
    if (health_.link_up == up) return;
    health_.link_up = up;
    report();
}

void Publishing::pass_ended(double seconds) {
    ++health_.passes;
    health_.seconds_a_pass = seconds;
    report();
}

void Publishing::report() {
    if (!publisher_) return;
    next_report_ = clock_->steady() + kReportEvery;
    publisher_->report(health_);
}

void Publishing::pass_time(double seconds) {
    if (publisher_ && clock_->steady() >= next_report_) report();
    if (publisher_)
        publisher_->pass_time(seconds);
    else
        clock_->sleep(seconds);
}

PublishedSoFar Publishing::so_far(bool same_outbox) {
    PublishedSoFar found{.health = health_};
    if (publisher_ && same_outbox) found.held = publisher_->take_held();
    return found;
}

void Publishing::go_on(PublishedSoFar so_far) {
    health_.passes = so_far.health.passes;
    health_.retries = so_far.health.retries;
    health_.reconnects = so_far.health.reconnects;
    if (publisher_)
        publisher_->hold_on(std::move(so_far.held));
    else
        lost_ = lost_ || !so_far.held.empty();
}

void Publishing::finish(double seconds, const std::function<bool()>& told_to_stop) {
    if (!publisher_) return;
    publisher_->finish(seconds, told_to_stop);
}

}  // namespace m47::unattended
