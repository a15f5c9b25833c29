// SPDX-License-Identifier: GPL-3.0-or-later
#include "SampleLibrary.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <cstdio>
#include <unistd.h>

namespace bench {

std::optional<QStringList> makeSampleLibrary(const QString& corpusDir, const QString& root, int count) {
    QStringList samples;
    QDirIterator it(corpusDir, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString f = it.next();
        if (!f.contains("/malformed/") && !f.endsWith(".md")) samples << f;
    }
    if (samples.isEmpty()) {
        std::fprintf(stderr, "no sample media in %s\n", qPrintable(corpusDir));
        return std::nullopt;
    }
    samples.sort();
    for (int i = 0; i < count; ++i) {
        const QString folder = QStringLiteral("%1/%2").arg(root).arg(i / 100, 3, 10, QChar('0'));
        if (i % 100 == 0) QDir().mkpath(folder);
        const QString& s = samples[i % samples.size()];
        const QString target = QStringLiteral("%1/f%2.%3").arg(folder).arg(i).arg(QFileInfo(s).suffix());
        if (link(s.toLocal8Bit().constData(), target.toLocal8Bit().constData()) != 0 && !QFile::copy(s, target)) {
            std::fprintf(stderr, "can't make %s\n", qPrintable(target));
            return std::nullopt;
        }
    }
    return samples;
}

}  // namespace bench
