// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// One app per user: a second start hands its arguments (files, links, --last-photo) to the
// running one over a local socket named from the application id, and ends.
#include <QLocalServer>
#include <QObject>
#include <QStringList>

class SingleInstance : public QObject {
    Q_OBJECT
public:
    static QString serverName();
    // True when a running instance took the arguments: this process should end.
    static bool handOver(const QStringList& arguments);
    // Listens for later starts.
    bool listen();

signals:
    void argumentsReceived(const QStringList& arguments);

private:
    QLocalServer server_;
};
