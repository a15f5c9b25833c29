// SPDX-License-Identifier: GPL-3.0-or-later
// Files read on many worker threads print what one thread prints, in the order they were named.
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

using namespace testsupport;

namespace {

ProcessResult runWith(int workers, const QStringList& args) {
    qputenv("TESSORIN_WORKERS", QByteArray::number(workers));
    return run(QStringLiteral(TESSORIN_CLI), args);
}

QList<QByteArray> sortedLines(const QByteArray& text) {
    QList<QByteArray> lines = text.split('\n');
    std::sort(lines.begin(), lines.end());
    return lines;
}

TEST(Workers, PrintWhatOneThreadPrintsInTheOrderNamed) {
    // Every sample twice, the broken ones too, so that workers finish out of order.
    QStringList files = corpusFiles() + malformedFiles();
    ASSERT_EQ(files.size(), 73);
    files += files;
    std::reverse(files.begin() + files.size() / 2, files.end());

    const ProcessResult props = runWith(1, QStringList{"props"} + files);
    const QJsonArray entries = QJsonDocument::fromJson(props.out).array();
    ASSERT_EQ(entries.size(), files.size());
    for (qsizetype i = 0; i < files.size(); ++i) EXPECT_EQ(entries[i]["file"].toString(), files[i]) << i;

    for (const QStringList& command : {QStringList{"props"}, QStringList{"info"}, QStringList{"tags"},
                                       QStringList{"tags", "--raw"}, QStringList{"info", "--json"}}) {
        const ProcessResult one = runWith(1, command + files), many = runWith(4, command + files);
        const std::string what = command.join(' ').toStdString();
        EXPECT_FALSE(one.out.isEmpty()) << what;
        EXPECT_TRUE(one.out == many.out) << what;
        EXPECT_EQ(one.exitCode, many.exitCode) << what;
        // Each failed file's line; the log's lines may come in another order from the workers.
        EXPECT_EQ(sortedLines(one.err), sortedLines(many.err)) << what;
    }
}

}  // namespace
