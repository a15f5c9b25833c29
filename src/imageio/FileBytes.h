#pragma once
// A file's whole content, mapped rather than copied: reading metadata touches only a few pages
// of a large file.
#include <QByteArray>
#include <QFile>
#include <QString>

namespace imageio {

class FileBytes {
public:
    // False with a reason naming the cause when the file is missing or unreadable.
    bool open(const QString& path, QString* error = nullptr);
    // Valid while this object lives.
    const QByteArray& bytes() const { return bytes_; }

private:
    QFile file_;
    QByteArray bytes_;
};

}  // namespace imageio
