#include "FileBytes.h"

#include <QFileInfo>

namespace imageio {

bool FileBytes::open(const QString& path, QString* error) {
    auto fail = [&](const QString& why) {
        if (error) *error = why;
        return false;
    };
    const QFileInfo info(path);
    if (!info.exists()) return fail(QStringLiteral("no such file"));
    if (info.isDir()) return fail(QStringLiteral("is a folder"));
    file_.setFileName(path);
    if (!file_.open(QIODevice::ReadOnly)) return fail(file_.errorString());
    bytes_.clear();
    if (file_.size() == 0) return true;
    if (uchar* mapped = file_.map(0, file_.size())) {
        bytes_ = QByteArray::fromRawData(reinterpret_cast<const char*>(mapped), file_.size());
        return true;
    }
    bytes_ = file_.readAll();  // pipes and special files can't be mapped
    if (file_.error() != QFileDevice::NoError) return fail(file_.errorString());
    return true;
}

}  // namespace imageio
