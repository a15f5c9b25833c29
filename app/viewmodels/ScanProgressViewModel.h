// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// How far the library's scan is, for the line over the album list: the files found in the
// library's folders, those read so far and those left to read.
#include <QObject>
#include <QString>

namespace library {
class Library;
}

class ScanProgressViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool running READ running NOTIFY changed)
    Q_PROPERTY(int seen READ seen NOTIFY changed)
    Q_PROPERTY(int read READ read NOTIFY changed)
    Q_PROPERTY(int left READ left NOTIFY changed)
    Q_PROPERTY(double fraction READ fraction NOTIFY changed)
    Q_PROPERTY(QString text READ text NOTIFY changed)
public:
    using QObject::QObject;
    // Follows the scans of `library` until `finish`.
    void start(library::Library* library);
    void finish();

    bool running() const { return running_; }
    int seen() const { return seen_; }
    int read() const { return read_; }
    int left() const { return left_; }
    // Of the files to read, the part read.
    double fraction() const { return read_ + left_ > 0 ? double(read_) / (read_ + left_) : 0; }
    QString text() const;

signals:
    void changed();

private:
    bool running_ = false;
    int seen_ = 0, read_ = 0, left_ = 0;
    QMetaObject::Connection connection_;
};
