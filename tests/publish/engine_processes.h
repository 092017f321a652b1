// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <memory>

#include "process_support.h"

namespace m47::publish {

/// A port of this machine that nobody listens on.
int free_port();

/// A real engine or its agent on the loopback, its files in a folder of its own that outlive it.
class EngineProcess {
  public:
    /// `program` is started with `options` and listens on `port`.
    EngineProcess(const QString& program, const QStringList& options, int port);

    /// Starts it and waits until it answers. False after 20 s.
    bool start();
    /// Ends it at once, in the middle of whatever it does.
    void kill();
    bool running() const { return process_ != nullptr; }
    int port() const { return port_; }
    QString address(const QString& path) const;

  private:
    QString program_;
    QStringList options_;
    int port_;
    std::unique_ptr<ChildProcess> process_;
};

/// The store, with its files in `folder`.
std::unique_ptr<EngineProcess> store_in(const QString& folder);
/// The agent that hands on to `store`, with its files in `folder`.
std::unique_ptr<EngineProcess> agent_in(const QString& folder, const EngineProcess& store);

/// What a GET of `address` answers; empty without an answer of 200.
QByteArray get(const QString& address);

/// All samples of the series that `selector` names, as the engine exports them, one object a
/// series.
QList<QJsonObject> exported(const EngineProcess& store, const QString& selector);

}  // namespace m47::publish
